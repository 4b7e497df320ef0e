// The calendar-server sync against a real server on loopback: what reaches
// the server, what lands in each user's cache, and what a failure leaves.
#include "engine/CalDavSync.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/clsDbXml.h"
#include "support/RadicaleServer.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

#include <map>
#include <memory>

namespace {

// One user's Tarvo: settings, data folder and local events.
struct User {
    QString name;
    QTemporaryDir data;
    cSHAREDSettings settings;
    QList<EventPtr> events;

    User(const QString& n, const QString& url, const QString& others) : name(n) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(n));
        settings.sSet(QStringLiteral("DataPath"), SettingValue(data.path()));
        settings.sSet(QStringLiteral("Networked"), SettingValue(true));
        settings.sSet(QStringLiteral("NetworkMode"), SettingValue(QStringLiteral("caldav")));
        settings.sSet(QStringLiteral("CalDAVUrl"), SettingValue(url));
        settings.sSet(QStringLiteral("CalDAVUser"), SettingValue(n));
        settings.sSet(QStringLiteral("CalDAVUsers"), SettingValue(others));
    }
    EventPtr Add(const QString& id, const QString& desc, int layer = 0) {
        auto e = std::make_shared<clsEvent>();
        e->IDCode = id;
        e->setOwner(name);
        e->setDesc(desc);
        e->setLayer(static_cast<int16_t>(layer));
        e->setDueDate(D(QStringLiteral("2031-05-04")));
        events.append(e);
        return e;
    }
    // The cache's events as "owner:desc", as stored, or as a networked load shows them.
    QStringList Cache(bool networked = false) {
        clsDbXml db(settings);
        db.setNetworked(networked);
        db.LoadDB(DataFiles::CalDavCacheFile(settings));
        QStringList out;
        for (const EventPtr& e : db.Events()) {
            out << e->Owner() + QLatin1Char(':') + e->Desc();
        }
        out.sort();
        return out;
    }
};

class CalDavSyncTest : public ::testing::Test {
protected:
    void SetUp() override {
        START_RADICALE_OR_SKIP(server);
        for (const char* n : {"ann", "bob", "cy"}) {
            users[n] = std::make_unique<User>(QString::fromLatin1(n), server.Url(),
                                              QStringLiteral("ann, bob, cy"));
        }
    }
    User& U(const char* n) { return *users.at(n); }

    CalDavSyncResult Sync(User& u, const QString& password = {}) {
        CalDavSync sync(u.settings);
        QSignalSpy spy(&sync, &CalDavSync::finished);
        sync.Start(u.events, password.isEmpty() ? server.Password(u.name) : password);
        EXPECT_TRUE(spy.wait(60000));
        return spy.isEmpty() ? CalDavSyncResult{} : spy.at(0).at(0).value<CalDavSyncResult>();
    }
    QByteArray Get(const QString& path) { return server.Request("GET", "ann", path).body; }

    TempHome home;
    RadicaleServer server;
    std::map<std::string, std::unique_ptr<User>> users;
};

TEST_F(CalDavSyncTest, PublishChangeUnshareAndDeleteReachTheServerAndTheOthersCaches) {
    User& ann = U("ann");
    EventPtr a = ann.Add("100001", "Team lunch");
    EventPtr b = ann.Add("100002", "Flagged", 3);
    b->SharedEvent = true;
    ann.Add("100003", "Private", 2);
    EventPtr c = ann.Add("100004", "Only for cy");
    c->ShareWithSpecific = true;
    c->ShareNames = QStringLiteral("cy\r\n");
    struct Step {
        std::function<void()> change;
        QStringList resources;
        QString summary;
    } steps[] = {
        {[] {},
         {"100001.ics", "100002.ics", "100004.ics"},
         "Published 3, removed 0; read 1 users, 0 events"},
        {[&] { a->setDesc("Team lunch moved"); },
         {"100001.ics", "100002.ics", "100004.ics"},
         "Published 1, removed 0; read 1 users, 0 events"},
        {[&] { b->SharedEvent = false; },
         {"100001.ics", "100004.ics"},
         "Published 0, removed 1; read 2 users, 0 events"},
        {[&] { a->Deleted = true; },
         {"100004.ics"},
         "Published 0, removed 1; read 2 users, 0 events"},
    };
    for (const Step& step : steps) {
        step.change();
        const CalDavSyncResult r = Sync(ann);
        ASSERT_TRUE(r.ok) << r.error.toStdString();
        EXPECT_EQ(r.Summary(), step.summary);
        EXPECT_EQ(server.Resources("ann"), step.resources);
        if (&step == &steps[1]) {
            EXPECT_TRUE(Get("/ann/tarvo/100001.ics").contains("SUMMARY:Team lunch moved"));
            // Bob sees every shared event; the one for cy only until storage loads it.
            ASSERT_TRUE(Sync(U("bob")).ok);
            EXPECT_EQ(U("bob").Cache(),
                      QStringList({"ann:Flagged", "ann:Only for cy", "ann:Team lunch moved"}));
            EXPECT_EQ(U("bob").Cache(true), QStringList({"ann:Flagged", "ann:Team lunch moved"}));
        }
    }
    ASSERT_TRUE(Sync(U("bob")).ok);
    EXPECT_EQ(U("bob").Cache(), QStringList({"ann:Only for cy"}));
}

TEST_F(CalDavSyncTest, AnotherClientsEventSurvivesTheOwnersSyncAndReachesBothCaches) {
    User& ann = U("ann");
    ann.Add("100001", "Team lunch");
    ASSERT_TRUE(Sync(ann).ok);
    const QByteArray phone = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Phone//EN\r\n"
                             "BEGIN:VEVENT\r\nUID:phone-1\r\nDTSTAMP:20260101T000000Z\r\n"
                             "DTSTART;TZID=Europe/Berlin:20310601T100000\r\nSUMMARY:Dentist\r\n"
                             "END:VEVENT\r\nEND:VCALENDAR\r\n";
    ASSERT_EQ(server.Request("PUT", "ann", "/ann/tarvo/phone-1.ics", phone).status, 201);
    const QByteArray stored = Get("/ann/tarvo/phone-1.ics");
    ann.events.clear(); // Tarvo unpublishes its own event, never the phone's
    ASSERT_TRUE(Sync(ann).ok);
    EXPECT_EQ(server.Resources("ann"), QStringList({"phone-1.ics"}));
    EXPECT_EQ(Get("/ann/tarvo/phone-1.ics"), stored);
    ASSERT_TRUE(Sync(U("bob")).ok);
    EXPECT_EQ(ann.Cache(), QStringList({"ann:Dentist"}));
    EXPECT_EQ(U("bob").Cache(), QStringList({"ann:Dentist"}));
    // Read in local time (the tests run in UTC), with an ID code of its own.
    clsDbXml db(U("bob").settings);
    db.LoadDB(DataFiles::CalDavCacheFile(U("bob").settings));
    ASSERT_EQ(db.Events().size(), 1);
    EXPECT_EQ(FormatYMDHM(db.Events().at(0)->DueDate() + db.Events().at(0)->DueTime()),
              QStringLiteral("2031-06-01 08:00"));
    EXPECT_EQ(db.Events().at(0)->IDCode.size(), 6);
}

TEST_F(CalDavSyncTest, TheOwnersCopyWinsOverAChangeBehindItsBack) {
    // Changed locally too (the write meets a 412), or not (the read notices).
    for (bool changedLocally : {true, false}) {
        User& ann = U("ann");
        ann.events.clear();
        EventPtr a = ann.Add(changedLocally ? "200001" : "200002", "Original");
        ASSERT_TRUE(Sync(ann).ok);
        const QString path = QStringLiteral("/ann/tarvo/") + a->IDCode + QStringLiteral(".ics");
        QByteArray other = Get(path);
        other.replace("SUMMARY:Original", "SUMMARY:Changed elsewhere");
        ASSERT_EQ(server.Request("PUT", "ann", path, other).status, 201);
        if (changedLocally) {
            a->setDesc("Owner's change");
        }
        const CalDavSyncResult r = Sync(ann);
        ASSERT_TRUE(r.ok) << r.error.toStdString();
        EXPECT_EQ(r.published, 1);
        EXPECT_TRUE(Get(path).contains(QByteArray(QByteArray("SUMMARY:") + a->Desc().toUtf8())))
            << changedLocally;
    }
}

TEST_F(CalDavSyncTest, FailuresLeaveCacheAndStateAndALaterSyncCatchesUp) {
    User& ann = U("ann");
    EventPtr a = ann.Add("100001", "Before");
    ASSERT_TRUE(Sync(ann).ok);
    const QByteArray cache = ReadFileBytes(DataFiles::CalDavCacheFile(ann.settings));
    const QByteArray state = ReadFileBytes(DataFiles::CalDavStateFile(ann.settings));
    a->setDesc("Offline change");

    CalDavSyncResult r = Sync(ann, QStringLiteral("wrong"));
    EXPECT_FALSE(r.ok);
    EXPECT_FALSE(r.unreachable);
    EXPECT_EQ(r.error, "The CalDAV server refused the user name or password (401 Unauthorized)");

    server.Stop();
    r = Sync(ann);
    EXPECT_FALSE(r.ok);
    EXPECT_TRUE(r.unreachable) << r.error.toStdString();
    EXPECT_EQ(ReadFileBytes(DataFiles::CalDavCacheFile(ann.settings)), cache);
    EXPECT_EQ(ReadFileBytes(DataFiles::CalDavStateFile(ann.settings)), state);

    ASSERT_TRUE(server.Start());
    r = Sync(ann);
    ASSERT_TRUE(r.ok) << r.error.toStdString();
    EXPECT_EQ(r.published, 1);
    EXPECT_TRUE(Get("/ann/tarvo/100001.ics").contains("SUMMARY:Offline change"));
}

TEST_F(CalDavSyncTest, AnUnchangedResyncCostsOneRequestPerCollection) {
    for (const char* n : {"bob", "cy"}) {
        for (int i = 0; i < 3; ++i) {
            U(n).Add(QStringLiteral("30000%1").arg(i), QStringLiteral("Event %1").arg(i));
        }
        ASSERT_TRUE(Sync(U(n)).ok);
    }
    User& ann = U("ann");
    ASSERT_TRUE(Sync(ann).ok);
    const QByteArray cache = ReadFileBytes(DataFiles::CalDavCacheFile(ann.settings));
    CalDavSyncResult r = Sync(ann);
    EXPECT_EQ(r.requests, 3);
    EXPECT_EQ(r.eventsRead, 6);
    // A sync token the server no longer knows: everything is listed again,
    // nothing downloaded again.
    const QString stateFile = DataFiles::CalDavStateFile(ann.settings);
    QByteArray state = ReadFileBytes(stateFile);
    state.replace("http://radicale.org/ns/sync/", "http://radicale.org/ns/sync/x");
    ASSERT_TRUE(WriteFileBytes(stateFile, state));
    r = Sync(ann);
    ASSERT_TRUE(r.ok) << r.error.toStdString();
    EXPECT_EQ(r.requests, 6);
    EXPECT_EQ(ReadFileBytes(DataFiles::CalDavCacheFile(ann.settings)), cache);
}

TEST_F(CalDavSyncTest, ASilentServerDoesNotBlock) {
    QTcpServer silent; // accepts and never answers
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost, 0));
    User& ann = U("ann");
    ann.settings.sSet(
        QStringLiteral("CalDAVUrl"),
        SettingValue(QStringLiteral("http://127.0.0.1:%1/").arg(silent.serverPort())));
    ann.Add("100001", "Waiting");
    CalDavSync sync(ann.settings);
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(10);
    QElapsedTimer clock;
    clock.start();
    sync.Start(ann.events, QStringLiteral("pw"));
    EXPECT_LT(clock.elapsed(), 100);
    QTest::qWait(500);
    EXPECT_TRUE(sync.Running());
    EXPECT_GE(ticks, 20);
}

TEST_F(CalDavSyncTest, TestConnectionSaysWhoAndHowManyCalendarsAreReadable) {
    ASSERT_TRUE(Sync(U("bob")).ok); // cy has no collection yet
    struct Row {
        QString password;
        bool ok;
        QString line;
    } rows[] = {
        {"pw-ann", true, "Connected as ann; 1 of 2 users' calendars readable"},
        {"wrong", false, "The CalDAV server refused the user name or password (401 Unauthorized)"},
    };
    for (const Row& row : rows) {
        CalDavSync sync(U("ann").settings);
        std::optional<std::pair<bool, QString>> answer;
        sync.TestConnection(CalDavAccount::FromSettings(U("ann").settings), row.password,
                            [&](bool ok, const QString& line) { answer.emplace(ok, line); });
        ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, 20000));
        EXPECT_EQ(answer->first, row.ok);
        EXPECT_EQ(answer->second, row.line);
    }
}

} // namespace
