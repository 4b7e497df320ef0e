#pragma once

#include "engine/CalendarTransfer.h"

#include <QByteArray>
#include <QList>
#include <QString>

// The work behind the command line, done either by the command-line process
// itself or, while Tarvo runs, by the running copy on its request (so its
// in-memory lists and the files stay one).
namespace CommandLineWork {

// tarvo --add "description" --date DATE [--time HH:MM] [--category NAME]
struct AddRequest {
    QString description;
    QString date;     // the user's date style or YYYY-MM-DD
    QString time;     // "" for an untimed event
    QString category; // "" for the editor's first category
};

// Adds a "Show Once" event through the editor's rules and saves.
CommandResult Add(const AddRequest& request, EventStore& store, DateValue today);

// The agenda lines: every occurrence from today through today + days, one
// line each ("Mon 03/06/2030 09:30  Dentist  [Work]"), by date and time,
// dates in the date style. others are other users' shared events, whose
// lines end with their owner ("  from Bob"). The events are walked through
// their occurrences (their due dates move): pass copies loaded for the purpose.
QStringList Agenda(const QList<EventPtr>& events, const QList<EventPtr>& others,
                   const clsLayers& layers, DateValue today, int days, int dateStyle);

// A request line for the running copy, and its handling there: the reply
// line carries the result.
QByteArray AddRequestLine(const AddRequest& request);
QByteArray ImportRequestLine(const QString& absolutePath);
bool IsRequestLine(const QByteArray& line);
// A short text for the running copy's log ("add", "import FILE").
QString RequestSummary(const QByteArray& line);
QByteArray Perform(const QByteArray& line, EventStore& store, DateValue today);
// The result in a reply line; a reply that is not one gives exit code 2.
CommandResult ReplyResult(const QByteArray& reply);

} // namespace CommandLineWork
