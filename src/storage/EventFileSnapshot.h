#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QList>
#include <QString>

// A one-time read of an event file for a reader that changes nothing and
// looks only a few days ahead (the command line's agenda): the file is
// mapped into memory rather than copied, and only the records due in time
// are converted, then filtered as clsDbXml::LoadDB filters them (owner
// "Single" or empty becomes owner; deleted records, and in networked mode
// events shared only with others, are left out). Layers are not re-mapped.
// Only files replaced whole when saved (as Tarvo saves its own) may be read
// this way: a file cut short while mapped would end the process.
namespace EventFileSnapshot {

// The events of path due on or before dueUpTo; the others are left out
// without being converted (an event, repeating or not, is not due before its
// DueDate). An absent or unreadable file gives none.
QList<EventPtr> Read(const QString& path, const QString& owner, bool networked, DateValue dueUpTo);

} // namespace EventFileSnapshot
