#include "engine/clsReminder.h"

#include "engine/FiredAlarms.h"
#include "engine/IDesktopNotifier.h"
#include "engine/IReminderWindow.h"
#include "shared/IFileOpener.h"
#include "shared/OwnerId.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QMultiMap>

#include <cmath>

namespace {

bool networked(const cSHAREDSettings& settings) {
    return settings.sGet(QStringLiteral("Networked"), false).toBool();
}

// Minute of the day of a time value, or -1 when it is no time of a single day
// (the editor's plain subtraction can push an alarm before midnight).
int alarmMinute(DateValue time) {
    const double minutes = time * 1440.0;
    const double rounded = std::round(minutes);
    if (rounded < 0 || rounded >= 1440 || std::abs(minutes - rounded) > 1e-6) {
        return -1;
    }
    return static_cast<int>(rounded);
}

// Marks deleted the first record of list that holds the code of the one at
// position i, as DeleteRecord would. An event stored without a code got a
// fresh one from the expired database just now, so it may be the first
// holder of that code: firstWithCode is kept true for it.
void markFirstWithCode(const QList<EventPtr>& list, QHash<QString, qsizetype>& firstWithCode,
                       qsizetype i) {
    const QString& code = list.at(i)->IDCode;
    if (code.isEmpty()) {
        // No code was free: the records without one changed as the pass went.
        for (const EventPtr& e : list) {
            if (e->IDCode.isEmpty()) {
                e->Deleted = true;
                return;
            }
        }
    }
    auto it = firstWithCode.find(code);
    if (it == firstWithCode.end()) {
        it = firstWithCode.insert(code, i);
    } else if (it.value() > i) {
        it.value() = i;
    }
    list.at(it.value())->Deleted = true;
}

} // namespace

clsReminder::clsReminder(ReminderServices& services) : m_services(services) {}

IReminderWindow& clsReminder::todayWindow() {
    if (m_today == nullptr) {
        m_today = m_services.windows.CreateReminderWindow();
    }
    return *m_today;
}

IReminderWindow& clsReminder::comingUpWindow() {
    if (m_comingUp == nullptr) {
        m_comingUp = m_services.windows.CreateReminderWindow();
    }
    return *m_comingUp;
}

void clsReminder::UpdateAllEvents() {
    clsDbXml& events = m_services.events;
    // Taken once: events are only marked deleted here, so positions never shift.
    const QList<EventPtr> list = events.Events();
    cSharedDateSubs& dates = cSharedDateSubs::ForSettings(m_services.settings);
    // One reading of the clock for the whole pass: the day cannot change
    // between two events, and reading it costs a look at the time zone.
    const DateValue today = TodayDate();
    // Where each ID code first appears in the list. A passed one-off event is
    // removed as DeleteRecord removes one: the first record with its code is
    // marked. The record is found here without a walk of the list, and the
    // events file is saved once at the end of the pass rather than once per
    // event, which made the pass cost more the more events lay in the past.
    QHash<QString, qsizetype> firstWithCode;
    firstWithCode.reserve(list.size());
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (!firstWithCode.contains(list.at(i)->IDCode)) {
            firstWithCode.insert(list.at(i)->IDCode, i);
        }
    }
    for (qsizetype i = 0; i < list.size(); ++i) {
        const EventPtr& e = list.at(i);
        if (e->Deleted) {
            continue; // already gone from the database
        }
        e->CalcDaysLeft(today);
        if (!IsBeforeDate(e->DueDate(), today)) {
            continue;
        }
        if (e->Recurring()) {
            Log().LogEvent(QStringLiteral("Event expired and updated: ") +
                           dates.ShortFormatDate(e->DueDate()) + QLatin1Char(' ') + e->Desc());
            e->CalcNextAfterDate(today);
            e->CalcDaysLeft(today);
        } else {
            Log().LogEvent(QStringLiteral("Event expired and deleted: ") +
                           dates.ShortFormatDate(e->DueDate()) + QLatin1Char(' ') + e->Desc());
            // The expired database receives the very object that is then
            // marked deleted, so its save leaves it out: a passed one-off
            // event leaves "Events.xml" without reaching "Expired.xml". Users'
            // files have always behaved this way; it is kept.
            m_services.expired.StoreRecord(e, false);
            markFirstWithCode(list, firstWithCode, i);
        }
    }
    // Each save leaves a file alone when its bytes would not change.
    events.SaveDB();
    m_services.expired.SaveDB();
}

void clsReminder::DisplayReminders() {
    UpdateAllEvents();
    // Made (and so shown) in this order: today's window comes up last, on top.
    IReminderWindow& comingUp = comingUpWindow();
    IReminderWindow& today = todayWindow();
    today.ClearList();
    comingUp.ClearList();

    const DateValue todayDate = TodayDate();
    const QString dated =
        QStringLiteral(" - ") +
        cSharedDateSubs::ForSettings(m_services.settings).ShortFormatDate(todayDate);
    const QList<EventPtr> list = m_services.events.Events();
    bool anyComingUp = false;
    QMultiMap<int, QString> comingUpByDays; // the notification's lines, soonest first
    for (const EventPtr& e : list) {
        if (e->Deleted) {
            continue;
        }
        const auto days = static_cast<int>(std::llround(DateOnly(e->DueDate()) - todayDate));
        if (days >= 1 && days <= e->DaysWarning()) {
            const QString line =
                QStringLiteral("In ") + QString::number(days) +
                (days == 1 ? QStringLiteral(" day: ") : QStringLiteral(" days: ")) + e->Desc();
            comingUp.AddToList(line);
            comingUpByDays.insert(days, line);
            anyComingUp = true;
        }
    }
    if (anyComingUp) {
        Log().LogEvent(QStringLiteral("Showing upcoming reminders"));
        comingUp.Heading(QStringLiteral("COMING UP"));
        NotifyDesktop(m_services, QStringLiteral("COMING UP"), comingUpByDays.values(), false);
        comingUp.Caption(QStringLiteral("COMING UP") + dated);
    } else {
        comingUp.Unload();
        m_comingUp = nullptr;
    }

    today.setSoundFile(QString());
    today.setSoundFlag(false);
    bool anyToday = false;
    QStringList todayLines; // for the notification
    for (const EventPtr& e : list) {
        if (e->Deleted || DateOnly(e->DueDate()) != todayDate || e->ExecFile) {
            continue; // run-a-file events belong to the alarm pass
        }
        today.AddToList(e->Desc());
        anyToday = true;
        todayLines << e->Desc();
        if (e->PlayWav) {
            today.setSoundFlag(true);
            if (!e->WavFile.isEmpty()) {
                today.setSoundFile(e->WavFile); // the last such event wins
            }
        }
    }
    if (anyToday) {
        Log().LogEvent(QStringLiteral("Showing today's reminders"));
        today.Heading(QStringLiteral("TODAY!"));
        NotifyDesktop(m_services, QStringLiteral("TODAY!"), todayLines, false);
        today.Caption(QStringLiteral("TODAY!") + dated);
    } else {
        today.Unload();
        m_today = nullptr;
    }
    QCoreApplication::processEvents();
}

void clsReminder::DisplayAlarms(clsDbXml& db, FiredAlarms* fired) {
    // Each database gets a window of its own, so that the shared database's
    // pass cannot clear or close a window that the user's own alarms filled.
    IReminderWindow& alarm = *m_services.windows.CreateReminderWindow();
    alarm.ClearList();
    const DateValue now = Now();
    const int minute = HourOf(now) * 60 + MinuteOf(now);
    const DateValue today = DateOnly(now);
    const bool foreign = &db == m_services.shared;

    QList<EventPtr> runList;
    QStringList lines; // for the desktop notification
    const QList<EventPtr> list = db.Events();
    for (const EventPtr& e : list) {
        if (e->Deleted || !e->AlarmSet() || DateOnly(e->DueDate()) != today ||
            alarmMinute(e->AlarmTime()) != minute) {
            continue;
        }
        if (fired != nullptr && !fired->FirstInMinute(*e, now)) {
            continue; // an earlier tick of this minute raised it
        }
        if (e->ExecFile && !foreign) {
            runList.append(e);
            continue;
        }
        if (e->ExecFile) {
            Log().LogEvent(QStringLiteral("Not opening ") + e->Filename.trimmed() +
                           QStringLiteral(" - the event belongs to ") + e->Owner() +
                           QStringLiteral(" and only the owner's own events open files"));
        }
        alarm.AddToList(e->Desc());
        lines << e->Desc();
    }
    for (const EventPtr& e : runList) {
        const QString file = e->Filename.trimmed();
        if (!file.isEmpty() && QFileInfo::exists(file)) {
            m_services.opener.OpenDocument(file);
        } else {
            Log().LogEvent(QStringLiteral("Can't run ") + file +
                           QStringLiteral(" - file not found"));
        }
    }
    if (!lines.isEmpty()) {
        alarm.Heading(QStringLiteral("ALARM!"));
        alarm.Caption(QStringLiteral("ALARM! - ") +
                      cSharedDateSubs::ForSettings(m_services.settings).ShortFormatDateTime(now));
        alarm.setSoundFlag(true);
        alarm.MakeTopmost();
        NotifyDesktop(m_services, QStringLiteral("ALARM!"), lines, true);
    } else {
        alarm.Unload();
    }
}

void ShowReminders(ReminderServices& services) {
    clsReminder reminder(services);
    reminder.DisplayReminders();
}

void CheckAlarms(ReminderServices& services, FiredAlarms* fired) {
    clsReminder reminder(services);
    reminder.DisplayAlarms(services.events, fired);
    if (networked(services.settings) && services.shared != nullptr) {
        reminder.DisplayAlarms(*services.shared, fired);
    }
}

bool DeleteEvent(ReminderServices& services, const QString& idCode) {
    const EventPtr e = services.events.ReadEvent(idCode);
    if (!e) {
        return false;
    }
    const QString refusal = DeleteOwnerRefusal(services.settings, *e);
    if (!refusal.isEmpty()) {
        services.dialogs.Message(refusal);
        return false;
    }
    services.events.DeleteRecord(idCode);
    return true;
}

QString DeleteOwnerRefusal(const cSHAREDSettings& settings, const clsEvent& e) {
    const QString owner =
        settings.sGet(QStringLiteral("Owner"), QStringLiteral("Not Set")).toText();
    if (networked(settings) && !OwnerId::Same(e.Owner(), owner)) {
        return QStringLiteral("You're not the owner of this event.  Only ") + e.Owner() +
               QStringLiteral(" can delete it.");
    }
    return {};
}

bool DeleteExpiredEvent(ReminderServices& services, const QString& idCode) {
    if (!services.expired.ReadEvent(idCode)) {
        return false;
    }
    services.expired.DeleteRecord(idCode);
    return true;
}
