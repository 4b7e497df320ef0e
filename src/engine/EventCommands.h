#pragma once

#include "engine/EventChange.h"
#include "engine/ReminderServices.h"
#include "model/clsEvent.h"

#include <QList>
#include <QString>
#include <QStringList>

// The rules behind the main window's list commands, kept out of the window:
// which rows a command may touch, deleting a selection, pushing an event to
// its next occurrence, and searching the list.
namespace EventCommands {

// A row of the event list as the commands see it.
struct ListRow {
    QString idCode;
    QString marker; // "" own, "*" own shared, "S" another user's, "E" expired
    // The event came from another user's shared file or names another owner.
    // Ownership is decided by this, never by the marker: another user's event
    // whose day has passed is still theirs.
    bool otherUsers = false;
};

inline const QString kOtherUsersMarker = QStringLiteral("S");
inline const QString kExpiredMarker = QStringLiteral("E");

// The refusal for editing or pushing a row, or "" when the row may be changed.
// Another user's event is refused whatever its days left.
QString EditRefusal(const ListRow& row);
QString PushRefusal(const ListRow& row);
inline const QString kDeleteQuestion =
    QStringLiteral("Are you sure you want to delete the selected event(s)?");
inline const QString kDeleteRefusal =
    QStringLiteral("You can't delete events belonging to another user");

// What keeps rows of a selection from being deleted, to be said before the
// delete question: kDeleteRefusal (once) for other users' rows and, in
// networked mode, the owner's refusal for each event of one's own file that
// another user owns. The rows that may go are put in `allowed`.
QStringList DeleteRefusals(ReminderServices& services, const QList<ListRow>& rows,
                           QList<ListRow>* allowed);

// Deletes the rows in list order: expired rows from the expired database,
// the others from the events database; other users' rows are skipped (by
// ownership, not by marker). True
// when any row was skipped (the caller then shows kDeleteRefusal). With a
// change, the rows' events are recorded in it for undo.
bool DeleteRows(ReminderServices& services, const QList<ListRow>& rows,
                EventChange* change = nullptr);

// Moves the row's event to its next occurrence after its current due date and
// saves its database (recorded in change, when given). The event, or null
// when it is not found.
EventPtr PushToNextOccurrence(ReminderServices& services, const ListRow& row,
                              EventChange* change = nullptr);

// The first row at or after start whose text contains term, ignoring case;
// -1 when none (the search does not wrap).
int FindRow(const QStringList& eventTexts, const QString& term, int start);

} // namespace EventCommands
