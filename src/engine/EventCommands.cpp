#include "engine/EventCommands.h"

#include "engine/clsReminder.h"
#include "storage/clsDbXml.h"

namespace EventCommands {

QString EditRefusal(const ListRow& row) {
    return row.otherUsers ? QStringLiteral("You can't edit a shared item belonging to someone else")
                          : QString();
}

QString PushRefusal(const ListRow& row) {
    return row.otherUsers ? QStringLiteral("You can't push a shared item belonging to someone else")
                          : QString();
}

namespace {

clsDbXml& databaseOf(ReminderServices& services, const ListRow& row) {
    return row.marker == kExpiredMarker ? services.expired : services.events;
}

} // namespace

QStringList DeleteRefusals(ReminderServices& services, const QList<ListRow>& rows,
                           QList<ListRow>* allowed) {
    QStringList refusals;
    for (const ListRow& row : rows) {
        QString refusal;
        if (row.otherUsers) {
            refusal = kDeleteRefusal;
        } else if (row.marker != kExpiredMarker) {
            const EventPtr e = services.events.ReadEvent(row.idCode);
            refusal = e ? DeleteOwnerRefusal(services.settings, *e) : QString();
        }
        if (refusal.isEmpty()) {
            allowed->append(row);
        } else if (!refusals.contains(refusal)) {
            refusals.append(refusal);
        }
    }
    return refusals;
}

bool DeleteRows(ReminderServices& services, const QList<ListRow>& rows, EventChange* change) {
    if (change != nullptr) {
        for (const ListRow& row : rows) {
            if (row.otherUsers) {
                continue;
            }
            change->Watch(databaseOf(services, row),
                          databaseOf(services, row).ReadEvent(row.idCode));
        }
    }
    bool skipped = false;
    for (const ListRow& row : rows) {
        if (row.otherUsers) {
            skipped = true;
        } else if (row.marker == kExpiredMarker) {
            DeleteExpiredEvent(services, row.idCode);
        } else {
            DeleteEvent(services, row.idCode);
        }
    }
    if (change != nullptr) {
        change->Finish();
    }
    return skipped;
}

EventPtr PushToNextOccurrence(ReminderServices& services, const ListRow& row, EventChange* change) {
    if (!PushRefusal(row).isEmpty()) {
        return nullptr;
    }
    clsDbXml& db = databaseOf(services, row);
    const EventPtr e = db.ReadEvent(row.idCode);
    if (!e) {
        return nullptr;
    }
    if (change != nullptr) {
        change->Watch(db, e);
    }
    // The next occurrence strictly after the current due date.
    e->CalcNextAfterDate(DateOnly(e->DueDate()) + 1);
    e->CalcDaysLeft();
    db.SaveDB();
    if (change != nullptr) {
        change->Finish();
    }
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
