#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QList>
#include <QString>

class cSHAREDSettings;
class clsDbXml;
class clsLayers;

// Where command-line work and imports store events: the user's own events
// database, its settings (owner, date style) and the category table.
struct EventStore {
    cSHAREDSettings& settings;
    QString settingsFile; // "Tvo.ini", saved when an import names a new category
    clsLayers& layers;
    clsDbXml& events;
};

// The outcome of a command: an exit code (0 done, 1 bad input, 2 a file
// that cannot be read or written) and the line to show the user.
struct CommandResult {
    int exitCode = 0;
    QString message;

    static constexpr int kDone = 0;
    static constexpr int kBadInput = 1;
    static constexpr int kFileError = 2;
};

// iCalendar files in and out of the events database.
namespace CalendarTransfer {

// Writes events (deleted ones left out) to an iCalendar file at path,
// atomically, each in its layer's category and with Tarvo's own fields.
CommandResult Export(const QList<EventPtr>& events, const clsLayers& layers, const QString& path);

// Adds the events of an iCalendar file to the events database like the
// editor's input: new ID codes, the current owner, categories matched to
// layers by name (a new name takes a free layer), one save (which publishes
// shared events in networked mode). Nothing is stored when the file cannot
// be read, is no calendar, or holds a value the event file cannot keep.
// The message says how many events were added, simplified and skipped.
CommandResult Import(const QString& path, EventStore& store, DateValue today);

} // namespace CalendarTransfer
