// When the desktop syncs with the calendar server and what its status line
// and log say, along one morning of ticks and answers; and the saves that
// start syncs.
#include "engine/CalDavSchedule.h"
#include "engine/CalDavAutoSync.h"
#include "engine/CalDavPassword.h"
#include "engine/CalDavSync.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsLayers.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <QTest>

namespace {

TEST(CalDavSchedule, TicksAnswersStatusAndLog) {
    // what: 'T' a refresh tick (started when it wants a sync), 'O' a sync
    // that worked (published count in error), 'U' no answer, 'F' a refusal.
    const struct {
        // status: after the step
        // logged: '-' for a tick that starts nothing
        const char* at;
        char what;
        const char *error, *status, *logged;
    } steps[] = {
        {"10:00:00", 'T', "", "Syncing with the CalDAV server\u2026", ""},
        {"10:00:02", 'O', "2", "Synced 10:00",
         "CalDAV sync: Published 2, removed 0; read 1 user, 3 events"},
        {"10:00:30", 'T', "", "Synced 10:00", "-"},
        {"10:00:59", 'T', "", "Syncing with the CalDAV server\u2026", ""},
        {"10:01:00", 'O', "0", "Synced 10:01", ""},
        {"10:02:00", 'T', "", "Syncing with the CalDAV server\u2026", ""},
        {"10:03:10", 'T', "", "Syncing with the CalDAV server\u2026", "-"}, // still running
        {"10:03:11", 'U', "Connection refused", "Server unreachable since 10:03, working offline",
         "CalDAV server unreachable: Connection refused"},
        {"10:04:11", 'T', "", "Server unreachable since 10:03, working offline", ""},
        {"10:04:12", 'U', "Connection refused", "Server unreachable since 10:03, working offline",
         ""},
        {"10:05:12", 'T', "", "Server unreachable since 10:03, working offline", ""},
        {"10:05:13", 'F', "401 Unauthorized", "CalDAV sync failed: 401 Unauthorized",
         "CalDAV sync failed: 401 Unauthorized"},
        {"10:07:14", 'T', "", "CalDAV sync failed: 401 Unauthorized", ""},
        {"10:07:15", 'F', "403 Forbidden", "CalDAV sync failed: 403 Forbidden",
         "CalDAV sync failed: 403 Forbidden"},
        {"10:08:15", 'T', "", "CalDAV sync failed: 403 Forbidden", ""},
        {"10:08:16", 'U', "Timed out", "Server unreachable since 10:08, working offline",
         "CalDAV server unreachable: Timed out"},
        {"10:09:16", 'T', "", "Server unreachable since 10:08, working offline", ""},
        {"10:09:20", 'O', "0", "Synced 10:09",
         "CalDAV sync works again: Published 0, removed 0; read 1 user, 3 events"},
    };
    CalDavSchedule schedule;
    EXPECT_EQ(schedule.Status(), QString());
    for (const auto& s : steps) {
        const DateValue now = D("2009-03-05 " + QString::fromLatin1(s.at).left(5)) +
                              QString::fromLatin1(s.at).right(2).toInt() / 86400.0;
        if (s.what == 'T') {
            const bool wants = schedule.TickWantsSync(now);
            EXPECT_EQ(wants, *s.logged != '-') << s.at;
            if (wants) {
                schedule.Started(now);
            }
        } else {
            const bool ok = s.what == 'O';
            const QString error = QString::fromLatin1(s.error);
            const CalDavSyncResult result{
                ok, s.what == 'U', ok ? QString() : error, ok ? error.toInt() : 0, 0, 1, 3};
            EXPECT_EQ(schedule.Finished(result, now), QString::fromUtf8(s.logged)) << s.at;
        }
        EXPECT_EQ(schedule.Status(), QString::fromUtf8(s.status)) << s.at;
    }

    // No account or no password: nothing syncs, and the status says why.
    schedule.Block("No password is stored for ann at http://127.0.0.1/");
    EXPECT_FALSE(schedule.TickWantsSync(D("2009-03-05 11:00")));
    EXPECT_EQ(schedule.Status(), "No password is stored for ann at http://127.0.0.1/");
}

// Saves of the events database start syncs, a burst of them only one.
TEST(CalDavAutoSync, OneSyncAfterStartUpAndOneAfterABurstOfSaves) {
    TempHome home;
    WriteFileBytes(home.file("Tvo.ini"),
                   "NETWORKED,-1\r\nNETWORKMODE,caldav\r\nCALDAVURL,http://127.0.0.1:9/\r\n"
                   "CALDAVUSER,ann\r\n");
    cSHAREDSettings settings;
    settings.LoadSettings(home.file("Tvo.ini"));
    clsLayers layers{settings};
    clsDbXml events{settings, &layers};
    events.SetDBFilename(home.file("Events.xml"));
    SharedDatabases shared{settings, layers};
    qputenv(CalDavPassword::kEnvironmentVariable, "pw");
    CalDavAutoSync sync(settings, events, shared);
    QSignalSpy started(&sync.Sync(), &CalDavSync::started);
    sync.AttachToEvents();
    sync.Begin();
    EXPECT_TRUE(QTest::qWaitFor([&] { return started.count() == 1; }, 2000));
    for (int i = 0; i < 3; ++i) {
        events.SaveDB();
    }
    QTest::qWait(CalDavAutoSync::kSettleMs + 500);
    EXPECT_EQ(started.count(), 2);
    qunsetenv(CalDavPassword::kEnvironmentVariable);
}

} // namespace
