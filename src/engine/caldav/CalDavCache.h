#pragma once

#include "engine/caldav/CalDavState.h"
#include "model/clsEvent.h"

#include <QHash>
#include <QList>
#include <QString>

class cSHAREDSettings;

// The cache file (the merged set read from the server, in the event-file
// format) split back into the resources that gave its events, so a sync
// downloads only what changed.
namespace CalDavCache {

// Per collection user, the event of each resource path.
using Events = QHash<QString, QHash<QString, EventPtr>>;

// Reads the cache file along the state's entries. When the file does not
// hold the events the state lists (deleted, damaged, edited by hand), the
// state's collections are emptied, so the next reads start over.
Events Load(cSHAREDSettings& settings, const QString& path, CalDavState& state);

// The events in the order of the state's collections and entries.
QList<EventPtr> InStateOrder(const CalDavState& state, const Events& events);

// Writes the events atomically (a file holding the same bytes is left
// alone). "" on success, otherwise why not.
QString Save(cSHAREDSettings& settings, const QString& path, const QList<EventPtr>& events);

} // namespace CalDavCache
