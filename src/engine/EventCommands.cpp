#include "engine/EventCommands.h"

#include "engine/clsReminder.h"
#include "storage/clsDbXml.h"

namespace EventCommands {

QString EditRefusal(const ListRow& row) {
    return row.marker == kOtherUsersMarker
               ? QStringLiteral("You can't edit a shared item belonging to someone else")
               : QString();
}

QString PushRefusal(const ListRow& row) {
    return row.marker == kOtherUsersMarker
               ? QStringLiteral("You can't push a shared item belonging to someone else")
               : QString();
}

bool DeleteRows(ReminderServices& services, const QList<ListRow>& rows) {
    bool skipped = false;
    for (const ListRow& row : rows) {
        if (row.marker == kOtherUsersMarker) {
            skipped = true;
        } else if (row.marker == kExpiredMarker) {
            DeleteExpiredEvent(services, row.idCode);
        } else {
            DeleteEvent(services, row.idCode);
        }
    }
    return skipped;
}

EventPtr PushToNextOccurrence(ReminderServices& services, const ListRow& row) {
    if (!PushRefusal(row).isEmpty()) {
        return nullptr;
    }
    clsDbXml& db = row.marker == kExpiredMarker ? services.expired : services.events;
    const EventPtr e = db.ReadEvent(row.idCode);
    if (!e) {
        return nullptr;
    }
    // The next occurrence strictly after the current due date.
    e->CalcNextAfterDate(DateOnly(e->DueDate()) + 1);
    e->CalcDaysLeft();
    db.SaveDB();
    return e;
}

int FindRow(const QStringList& eventTexts, const QString& term, int start) {
    for (int i = std::max(start, 0); i < eventTexts.size(); ++i) {
        if (eventTexts.at(i).contains(term, Qt::CaseInsensitive)) {
            return i;
        }
    }
    return -1;
}

} // namespace EventCommands
