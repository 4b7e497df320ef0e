// The reminder engine against real databases in a temporary folder, a fixed
// clock and recording windows.
#include "engine/clsReminder.h"
#include "engine/RefreshTick.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/FakeReminderWindows.h"
#include "support/LogLines.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <algorithm>

namespace {

class ReminderEngine : public ::testing::Test {
protected:
    ReminderEngine() {
        settings.sSet("Owner", QStringLiteral("Ann"));
        events.SetDBFilename(home.file("Events.xml"));
        expired.SetDBFilename(home.file("Expired.xml"));
    }

    // An event of the given owner in the given list (the user's own by default).
    EventPtr add(const QString& desc, const QString& due, bool recurring = false,
                 clsDbXml* db = nullptr, const QString& owner = "Ann") {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setDueDate(D(due));
        e->setRecurring(recurring);
        e->setOwner(owner);
        (db != nullptr ? *db : events).StoreRecord(e, true);
        return e;
    }
    EventPtr addAlarm(const QString& desc, const QString& due, int h, int m, int warning,
                      clsDbXml* db = nullptr, const QString& owner = "Ann") {
        EventPtr e = add(desc, due, false, db, owner);
        e->setAlarmSet(true);
        e->setDueTime(TimeSerial(h, m));
        e->setMinutesWarning(static_cast<int16_t>(warning));
        e->setAlarmTime(e->DueTime() - TimeSerial(0, warning));
        return e;
    }
    // An alarm without warning that opens a file.
    EventPtr addRun(const QString& desc, const QString& due, int h, int m, const QString& file,
                    clsDbXml* db = nullptr, const QString& owner = "Ann") {
        EventPtr e = addAlarm(desc, due, h, m, 0, db, owner);
        e->ExecFile = true;
        e->Filename = file;
        return e;
    }
    // A repeating event's rule.
    static void repeat(const EventPtr& e, int32_t type, int16_t period, const QString& start) {
        e->setRecurring(true);
        e->setRecurrenceType(type);
        e->setPeriod(period);
        e->setStartDate(D(start));
    }
    // The networked set-up, with "Ann" and "Bob" in the shared folder's user list.
    void networked() {
        settings.sSet("Networked", true);
        settings.sSet("SharedDatapath", home.path());
        WriteFileBytes(home.file("TVOShared.ini"), "Ann\r\nBob\r\n");
    }
    // Saves and reads the events back, as the program does between runs.
    void saveAndReload() {
        events.SaveDB();
        events.LoadDB(events.DBFilename());
    }
    QStringList newLogLines() { return LoggedTexts().mid(logStart); }

    TempHome home;
    cSHAREDSettings settings;
    clsDbXml events{settings};
    clsDbXml expired{settings};
    FakeReminderWindowFactory windows;
    FakeFileOpener opener;
    ScriptedDialogs dialogs;
    FakeDesktopNotifier notifier;
    ReminderServices services{settings, events, expired, nullptr,
                              windows,  opener, dialogs, &notifier};
    qsizetype logStart = LoggedTexts().size();
};

// Coming up within each event's warning days, soonest first in the
// notification; today's events with the last sound chosen, run files left out.
TEST_F(ReminderEngine, ComingUpAndTodayWindowsAndTheirNotifications) {
    FixedClock clock("2009-03-05 08:00");
    add("Dentist", "2009-03-08")->setDaysWarning(3);
    add("Too early", "2009-03-08")->setDaysWarning(2);
    add("Bill", "2009-03-06")->setDaysWarning(7);
    add("Only on the day", "2009-03-06")->setDaysWarning(0);
    ShowReminders(services);
    EXPECT_EQ(windows.shown().size(), 1u) << "no today window without events today";

    EventPtr a = add("Birthday", "2009-03-05");
    a->PlayWav = true;
    a->WavFile = "/sounds/a.wav";
    add("Call", "2009-03-05")->PlayWav = true; // no file of its own: keeps a's
    add("Backup script", "2009-03-05")->ExecFile = true;
    windows.made.clear();
    ShowReminders(services);
    FakeReminderWindow* comingUp = windows.withHeading("COMING UP");
    FakeReminderWindow* today = windows.withHeading("TODAY!");
    ASSERT_TRUE(comingUp != nullptr && today != nullptr);
    EXPECT_EQ(std::tie(comingUp->lines, today->lines, today->soundFlag, today->soundFile),
              std::make_tuple(QStringList{"In 3 days: Dentist", "In 1 day: Bill"},
                              QStringList{"Birthday", "Call"}, true, QString("/sounds/a.wav")));
    const QStringList log = newLogLines();
    EXPECT_TRUE(log.contains("Showing upcoming reminders") &&
                log.contains("Showing today's reminders"));
    using Sent = FakeDesktopNotifier::Sent;
    const Sent soonestFirst{"COMING UP", {"In 1 day: Bill", "In 3 days: Dentist"}, false};
    EXPECT_EQ(notifier.sent,
              (QList<Sent>{soonestFirst, soonestFirst, {"TODAY!", today->lines, false}}));

    settings.sSet("DesktopNotifications", false);
    ShowReminders(services);
    EXPECT_EQ(notifier.sent.size(), 3) << "switched off in the options";
}

// The day's pass: a recurring event rolls on, one-offs leave the event file
// (not into "Expired.xml", as users' files always behaved), also without ID
// codes; each file is saved once, and not at all when nothing changed.
TEST_F(ReminderEngine, PassedEventsRollForwardOrLeaveInOneSave) {
    FixedClock clock("2009-03-05 08:00");
    repeat(add("Team meeting", "2009-03-04"), clsEvent::Weekly, 1, "2009-03-04");
    const QString onceId = add("Parcel", "2009-03-04")->IDCode;
    add("Letter", "2009-03-03")->IDCode.clear();
    add("Card", "2009-03-02")->IDCode.clear();
    add("Later", "2009-03-09");
    // Two passed events sharing a code (a hand-edited file): removing by code
    // takes the first one twice, so the second stays, as it always did.
    add("Twin A", "2009-03-01")->IDCode = "777777";
    add("Twin B", "2009-03-01")->IDCode = "777777";
    saveAndReload();
    int saves = 0; // the publisher runs at the end of every save
    events.setPublisher([&saves](clsDbXml&) { ++saves; });
    ShowReminders(services);

    EXPECT_EQ(saves, 1);
    const QStringList log = newLogLines();
    EXPECT_TRUE(log.contains("Event expired and updated: 04/03/2009 Team meeting") &&
                log.contains("Event expired and deleted: 04/03/2009 Parcel"));
    clsDbXml reread(settings);
    reread.LoadDB(events.DBFilename());
    QStringList left;
    for (const EventPtr& e : reread.Events()) {
        left << FormatYMD(e->DueDate()) + ' ' + e->Desc();
    }
    EXPECT_EQ(left,
              QStringList({"2009-03-11 Team meeting", "2009-03-09 Later", "2009-03-01 Twin B"}));
    clsDbXml rereadExpired(settings);
    rereadExpired.LoadDB(expired.DBFilename());
    EXPECT_FALSE(rereadExpired.ReadEvent(onceId));

    // The same day again: nothing changes, so neither file is written.
    const QDateTime old(QDate(2001, 1, 1), QTime(0, 0));
    for (const QString& path : {events.DBFilename(), expired.DBFilename()}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        ASSERT_TRUE(file.setFileTime(old, QFileDevice::FileModificationTime));
    }
    ShowReminders(services);
    EXPECT_EQ(QFileInfo(events.DBFilename()).lastModified(), old);
    EXPECT_EQ(QFileInfo(expired.DBFilename()).lastModified(), old);
}

TEST_F(ReminderEngine, AlarmFiresInItsMinuteOnTheDueDayOnly) {
    addAlarm("Doctor", "2009-03-05", 9, 0, 15);
    saveAndReload(); // the alarm time as it comes back from the file
    const struct {
        const char* now;
        bool fires;
    } ticks[] = {{"2009-03-05 08:44", false},
                 {"2009-03-05 08:45", true},
                 {"2009-03-05 08:46", false},
                 {"2009-03-04 08:45", false},
                 {"2009-03-05 09:00", false}};
    for (const auto& t : ticks) {
        FixedClock clock(QString::fromLatin1(t.now));
        windows.made.clear();
        CheckAlarms(services);
        EXPECT_EQ(windows.shown().size(), t.fires ? 1u : 0u) << t.now;
        if (FakeReminderWindow* alarm = windows.withHeading("ALARM!")) {
            EXPECT_EQ(std::tie(alarm->lines, alarm->soundFlag, alarm->topmost,
                               notifier.sent.last().heading, notifier.sent.last().critical),
                      std::make_tuple(QStringList{"Doctor"}, true, true, "ALARM!", true));
        }
    }
}

// A run-a-file alarm opens its file (blanks trimmed) or logs its absence; in
// networked mode another user's file is never opened, only shown, whether the
// other users' events come from the shared folder or the calendar server's cache.
TEST_F(ReminderEngine, RunFileEventsOpenOnlyTheUsersOwnFiles) {
    FixedClock clock("2009-03-05 07:00");
    networked();
    settings.sSet("DataPath", home.path());
    const QString script = home.file("backup.sh");
    WriteFileBytes(script, "#!/bin/sh\n");
    addRun("Run backup", "2009-03-05", 7, 0, "  " + script + " ");
    EventPtr missing = addRun("Run missing", "2009-03-05", 7, 0, home.file("gone.sh"));
    addAlarm("Ann's alarm", "2009-03-05", 7, 0, 0);
    clsLayers layers(settings);
    SharedDatabases others(settings, layers);
    const struct {
        const char* mode;
        QString file; // where Bob's shared events are read from
    } sources[] = {{"folder", home.file("Shared_Bob.xml")},
                   {"caldav", DataFiles::CalDavCacheFile(settings)}};
    for (const auto& source : sources) {
        SCOPED_TRACE(source.mode);
        settings.sSet("NetworkMode", source.mode);
        clsDbXml bobsFile(settings);
        bobsFile.SetDBFilename(source.file);
        addRun("Bob's task", "2009-03-05", 7, 0, script, &bobsFile, "Bob");
        bobsFile.SaveDB();
        others.ReloadSharedSet();
        services.shared = &others.SharedSet();
        opener.opened.clear();
        windows.made.clear();
        logStart = LoggedTexts().size();
        CheckAlarms(services);

        EXPECT_EQ(opener.opened, QStringList{script});
        QStringList shown;
        for (const FakeReminderWindow* w : windows.shown()) {
            shown += w->lines;
        }
        EXPECT_EQ(shown, QStringList({"Ann's alarm", "Bob's task"}));
        const QStringList log = newLogLines();
        EXPECT_TRUE(log.contains("Can't run " + missing->Filename + " - file not found"));
        EXPECT_EQ(log.filter(script).filter("Bob").size(), 1);
        QFile::remove(source.file);
    }
}

TEST_F(ReminderEngine, OnlyTheOwnerDeletesInNetworkedMode) {
    EventPtr mine = add("Mine", "2009-03-05", false, nullptr, " ann "); // the same user
    EventPtr bobs = add("Bob's", "2009-03-05", false, nullptr, "Bob");

    settings.sSet("Networked", true);
    EXPECT_FALSE(DeleteEvent(services, bobs->IDCode));
    EXPECT_EQ(dialogs.texts(),
              QStringList{"You're not the owner of this event.  Only Bob can delete it."});
    EXPECT_TRUE(DeleteEvent(services, mine->IDCode) && mine->Deleted && !bobs->Deleted);

    settings.sSet("Networked", false);
    EXPECT_TRUE(DeleteEvent(services, bobs->IDCode)) << "single-user mode has no owners to check";
    EXPECT_FALSE(DeleteEvent(services, "999999"));
    EXPECT_EQ(dialogs.count(), 1);

    EventPtr old = add("Old", "2009-03-01", false, &expired);
    EXPECT_FALSE(DeleteExpiredEvent(services, "000000"));
    EXPECT_TRUE(DeleteExpiredEvent(services, old->IDCode) && old->Deleted);
}

// ---- the refresh tick ----

class RefreshTickTest : public ReminderEngine {
protected:
    RefreshTick tick{services,
                     {[this](bool on) { timerStates << on; }, [this] { ++refills; },
                      [this] { return ++saves > 0; }}};
    QList<bool> timerStates;
    int refills = 0;
    int saves = 0;

    // The MISSED window's lines as the user reads them: the real window puts
    // each line above the earlier ones, the fake appends.
    QStringList missedLines() const {
        FakeReminderWindow* w = windows.withHeading("MISSED");
        QStringList shown = w != nullptr ? w->lines : QStringList();
        std::reverse(shown.begin(), shown.end());
        return shown;
    }
};

TEST_F(RefreshTickTest, ANewDayShowsRemindersOnceAndEachAlarmIsRaisedOnceInItsMinute) {
    FixedClock clock("2009-03-05 08:44");
    add("Today's thing", "2009-03-05");
    repeat(addAlarm("Pills", "2009-03-05", 9, 0, 15), clsEvent::EveryXDays, 1, "2009-03-05");
    addRun("Backup", "2009-03-05", 8, 45, home.file("Events.xml"));
    events.SaveDB();
    const QDateTime stamp = QFileInfo(events.DBFilename()).lastModified();
    const struct {
        int advance;                        // seconds since the last tick
        int refills, today, alarms, opened; // so far
    } ticks[] = {
        {0, 1, 1, 0, 0},              // the first tick: a new day
        {60, 1, 1, 1, 1},             // 08:45: the alarms, no second pass of the day
        {30, 1, 1, 1, 1},             // the same minute again
        {29, 1, 1, 1, 1},             //
        {24 * 3600 - 59, 2, 2, 2, 1}, // the next day's 08:45: the daily alarm only
    };
    for (const auto& t : ticks) {
        Clock::advance(t.advance);
        tick.TimerRefresh_Timer();
        QMap<QString, int> headings;
        for (const auto& w : windows.made) {
            ++headings[w->heading];
        }
        EXPECT_EQ(QList<qsizetype>({refills, headings.value("TODAY!"), headings.value("ALARM!"),
                                    opener.opened.size()}),
                  QList<qsizetype>({t.refills, t.today, t.alarms, t.opened}))
            << t.advance;
        if (t.refills == 1) {
            EXPECT_EQ(QFileInfo(events.DBFilename()).lastModified(), stamp)
                << "the ticks of one day touch no data file";
        }
    }
    EXPECT_EQ(tick.storedDay(), 6);
    EXPECT_EQ(timerStates.mid(0, 2), (QList<bool>{false, true}))
        << "the timer is off during its own tick";
}

TEST_F(RefreshTickTest, NetworkedRefillsWhenTheSharedFilesChange) {
    FixedClock clock("2009-03-05 10:00");
    networked();
    clsDbXml shared(settings);
    shared.LoadMultiple(home.file("TVOShared.ini"));
    services.shared = &shared;

    tick.TimerRefresh_Timer();
    EXPECT_EQ(refills, 1);
    tick.TimerRefresh_Timer();
    EXPECT_EQ(refills, 1) << "nothing changed";
    WriteFileBytes(home.file("Shared_Bob.xml"), "");
    tick.TimerRefresh_Timer();
    EXPECT_EQ(refills, 2) << "Bob's file appeared";
}

// Alarms missed while the program was not running (seven days back at most)
// or while the computer slept are listed once; a missed file is never run late.
TEST_F(RefreshTickTest, MissedAlarmsAreListedAfterAStartOrAClockJump) {
    FixedClock clock("2009-03-05 07:00");
    addAlarm("Doctor", "2009-03-05", 8, 0, 0);
    EventPtr daily = addAlarm("Pills", "2009-03-05", 9, 0, 0);
    daily->setRecurring(true);
    daily->setWeekDays(254); // every day
    addRun("Backup", "2009-03-05", 8, 30, home.file("Events.xml"));
    addAlarm("Too old", "2009-02-25", 8, 0, 0);
    addAlarm("Yesterday", "2009-03-04", 7, 0, 0);
    addAlarm("Now", "2009-03-05", 7, 0, 0);
    settings.sSet("Networked", true); // others' alarms are missed too
    clsDbXml shared(settings);
    addAlarm("Bob's call", "2009-03-05", 8, 15, 0, &shared, "Bob");
    services.shared = &shared;
    settings.sSet("LastRun", QStringLiteral("2009-02-20 07:00"));
    tick.ShowMissedSinceLastRun();
    EXPECT_EQ(missedLines(), (QStringList{"Missed while Tarvo was not running:",
                                          "Wed 03/04/2009 07:00  Yesterday"}))
        << "seven days back at most: not the alarm of 02/25";
    windows.made.clear();
    settings.sSet("LastRun", QStringLiteral("2009-03-04 07:00"));
    tick.ShowMissedSinceLastRun();
    EXPECT_TRUE(missedLines().isEmpty())
        << "the last run's minute and this minute have their ticks";

    for (int advance : {0, 20, 70}) {
        Clock::advance(advance);
        tick.TimerRefresh_Timer();
    }
    EXPECT_TRUE(missedLines().isEmpty()) << "90 seconds is no gap";
    EXPECT_EQ(saves, 2) << "the last run is saved once a minute";

    Clock::advance(27 * 3600); // asleep until Friday 10:01:30
    windows.made.clear();
    notifier.sent.clear();
    tick.TimerRefresh_Timer();
    const QStringList expected = {"Missed while the computer was asleep:",
                                  "Thu 03/05/2009 08:00  Doctor",
                                  "Thu 03/05/2009 08:15  Bob's call",
                                  "Thu 03/05/2009 08:30  Backup (its file was not opened)",
                                  "Thu 03/05/2009 09:00  Pills",
                                  "Fri 03/06/2009 09:00  Pills"};
    EXPECT_EQ(missedLines(), expected);
    FakeReminderWindow* missed = windows.withHeading("MISSED");
    ASSERT_NE(missed, nullptr);
    EXPECT_TRUE(missed->soundFlag && missed->soundOnce && missed->topmost);
    EXPECT_TRUE(opener.opened.isEmpty()) << "a missed file is never run late";
    EXPECT_TRUE(
        newLogLines().contains("Missed alarm: 2009-03-05 08:30 Backup - its file is not run late"));
    EXPECT_EQ(notifier.sent.value(0).lines, expected);
    EXPECT_NE(windows.withHeading("TODAY!"), nullptr) << "then the new day's pass";
    EXPECT_EQ(settings.sGet("LastRun").toText(), "2009-03-06 10:01");
}

} // namespace
