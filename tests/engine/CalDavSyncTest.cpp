// The calendar-server sync against a real server on loopback: what reaches
// the server, what lands in each user's cache, and what a failure leaves.
#include "engine/CalDavSync.h"
#include "engine/caldav/CalDavState.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/RadicaleServer.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include <map>
#include <memory>

namespace {

// One user's Tarvo: settings, data folder and local events.
struct User {
    QTemporaryDir data;
    cSHAREDSettings settings;
    QList<EventPtr> events;

    User(const QString& name, const QString& url) {
        const QString values[][2] = {{"Owner", name},           {"DataPath", data.path()},
                                     {"NetworkMode", "caldav"}, {"CalDAVUrl", url},
                                     {"CalDAVUser", name},      {"CalDAVUsers", "ann, bob, cy"}};
        for (const auto& [key, value] : values) {
            settings.sSet(key, SettingValue(value));
        }
        settings.sSet("Networked", SettingValue(true));
    }
    EventPtr Add(const QString& id, const QString& desc, int layer = 0) {
        auto e = std::make_shared<clsEvent>();
        e->IDCode = id;
        e->setOwner(settings.sGet("Owner").toText());
        e->setDesc(desc);
        e->setLayer(static_cast<int16_t>(layer));
        e->setDueDate(D("2031-05-04"));
        events.append(e);
        return e;
    }
    QList<EventPtr> Cache(bool networked = false) {
        clsDbXml db(settings);
        db.setNetworked(networked); // as storage loads it: the share-with filter applies
        db.LoadDB(DataFiles::CalDavCacheFile(settings));
        return db.Events();
    }
    // The cache's events as "owner:desc/layer name", sorted.
    QStringList Shown(bool networked = false) {
        QStringList out;
        for (const EventPtr& e : Cache(networked)) {
            out << e->Owner() + ':' + e->Desc() + '/' + e->SharedLayerName;
        }
        out.sort();
        return out;
    }
    QByteArray File(bool state) {
        return ReadFileBytes(state ? DataFiles::CalDavStateFile(settings)
                                   : DataFiles::CalDavCacheFile(settings));
    }
    // TestConnection's answer: "ok: line" or "failed: line".
    QString TestConnection(const QString& password) {
        return Answer([&](CalDavSync& sync, auto done) {
            sync.TestConnection(CalDavAccount::FromSettings(settings), password, done);
        });
    }
    // A call that answers through a callback, never at once: "ok: line" or "failed: line".
    template <typename Call> QString Answer(Call call) {
        CalDavSync sync(settings);
        QString answer;
        call(sync,
             [&](bool ok, const QString& line) { answer = (ok ? "ok: " : "failed: ") + line; });
        EXPECT_TRUE(answer.isEmpty()); // the caller never waits
        EXPECT_TRUE(QTest::qWaitFor([&] { return !answer.isEmpty(); }, 20000));
        return answer;
    }
};

class CalDavSyncTest : public ::testing::Test {
protected:
    void SetUp() override {
        START_RADICALE_OR_SKIP(server);
        for (const char* n : {"ann", "bob", "cy"}) {
            users[n] = std::make_unique<User>(QLatin1String(n), server.Url());
        }
    }
    User& U(const char* n) { return *users.at(n); }
    CalDavSyncResult Sync(const char* name, const QString& password = {}) {
        CalDavSync sync(U(name).settings);
        QSignalSpy spy(&sync, &CalDavSync::finished);
        sync.Start(U(name).events,
                   password.isEmpty() ? server.Password(QLatin1String(name)) : password);
        EXPECT_TRUE(spy.wait(60000));
        return spy.isEmpty() ? CalDavSyncResult{} : spy.at(0).at(0).value<CalDavSyncResult>();
    }
    QByteArray Get(const QString& path) { return server.Request("GET", "ann", path).body; }
    // Another client's event "Dentist" in ann's collection, stored as <name>.ics.
    void PutPhoneEvent(const QString& name, const QByteArray& start) {
        const QByteArray ics = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Phone//EN\r\n"
                               "BEGIN:VEVENT\r\nUID:phone-1\r\nDTSTAMP:20260101T000000Z\r\n" +
                               start + "\r\nSUMMARY:Dentist\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
        ASSERT_EQ(server.Request("PUT", "ann", "/ann/tarvo/" + name + ".ics", ics).status, 201);
    }

    TempHome home;
    RadicaleServer server;
    std::map<std::string, std::unique_ptr<User>> users;
};

TEST_F(CalDavSyncTest, PublishChangeUnshareAndDeleteReachTheServerAndTheOwnersCopyWins) {
    User& ann = U("ann");
    ann.settings.sSet(clsLayers::SettingKey(3), SettingValue("Work"));
    EventPtr a = ann.Add("100001", "Team lunch");
    EventPtr b = ann.Add("100002", "Flagged", 3);
    b->SharedEvent = true;
    ann.Add("100003", "Private", 2);
    EventPtr c = ann.Add("100004", "Only for cy");
    c->ShareWithSpecific = true;
    c->ShareNames = "cy\r\n";
    const QString path = "/ann/tarvo/100001.ics";
    // Another client changes ann's event behind her back: her copy wins,
    // whether she changed it too (her write meets a 412) or not (her read
    // notices).
    const auto elsewhere = [&] {
        const QByteArray theirs =
            Get(path).replace(QByteArray("SUMMARY:" + a->Desc().toUtf8()), "SUMMARY:Elsewhere");
        ASSERT_EQ(server.Request("PUT", "ann", path, theirs).status, 201);
    };
    // clang-format off
    const struct {
        std::function<void()> change;
        QString resources; // ann's collection after the sync
        QString summary;
    } steps[] = {
        {[] {}, "100001 100002 100004", "Published 3, removed 0; read 1 user, 0 events"},
        {[&] { a->setDesc("Moved"); }, "100001 100002 100004", "Published 1, removed 0; read 1 user, 0 events"},
        {[&] { elsewhere(), a->setDesc("Owner's change"); }, "100001 100002 100004", "Published 1, removed 0; read 2 users, 0 events"},
        {elsewhere, "100001 100002 100004", "Published 1, removed 0; read 2 users, 0 events"},
        {[&] { b->SharedEvent = false; }, "100001 100004", "Published 0, removed 1; read 2 users, 0 events"},
        {[&] { a->Deleted = true; }, "100004", "Published 0, removed 1; read 2 users, 0 events"},
    };
    // clang-format on
    for (const auto& step : steps) {
        step.change();
        const CalDavSyncResult r = Sync("ann");
        ASSERT_TRUE(r.ok) << r.error.toStdString();
        EXPECT_EQ(r.Summary(), step.summary);
        EXPECT_EQ(server.Resources("ann").join(' ').remove(".ics"), step.resources);
        EXPECT_TRUE(a->Deleted || Get(path).contains(QByteArray("SUMMARY:" + a->Desc().toUtf8())));
        if (&step == &steps[1]) {
            ASSERT_TRUE(Sync("bob").ok);
            EXPECT_EQ(U("bob").Shown(), QStringList({"ann:Flagged/Work", "ann:Moved/Shared",
                                                     "ann:Only for cy/Shared"}));
            EXPECT_EQ(U("bob").Shown(true), QStringList({"ann:Flagged/Work", "ann:Moved/Shared"}));
        }
    }
    ASSERT_TRUE(Sync("bob").ok);
    EXPECT_EQ(U("bob").Shown(), QStringList({"ann:Only for cy/Shared"}));
}

TEST_F(CalDavSyncTest, AnotherClientsEventSurvivesTheOwnersSyncAndReachesBothCaches) {
    U("ann").Add("100001", "Team lunch");
    ASSERT_TRUE(Sync("ann").ok);
    // Named as a Tarvo event of ann's that is shared next.
    PutPhoneEvent("100002", "DTSTART;TZID=Europe/Berlin:20310601T100000");
    const QByteArray stored = Get("/ann/tarvo/100002.ics");
    U("ann").events.clear(); // Tarvo unpublishes its own event, never the phone's
    U("ann").Add("100002", "Not over the phone's");
    ASSERT_TRUE(Sync("ann").ok);
    ASSERT_TRUE(Sync("bob").ok);
    EXPECT_EQ(server.Resources("ann"), QStringList({"100002.ics"}));
    EXPECT_EQ(Get("/ann/tarvo/100002.ics"), stored);
    EXPECT_EQ(U("ann").Shown(), QStringList({"ann:Dentist/"}));
    ASSERT_EQ(U("bob").Shown(), QStringList({"ann:Dentist/"}));
    // In local time (the tests run in UTC), with an ID code of its own.
    const EventPtr e = U("bob").Cache().at(0);
    EXPECT_EQ(FormatYMDHM(e->DueDate() + e->DueTime()), "2031-06-01 08:00");
    EXPECT_EQ(e->IDCode.size(), 6);
}

TEST_F(CalDavSyncTest, FailuresLeaveCacheAndStateAndALaterSyncCatchesUp) {
    EventPtr a = U("ann").Add("100001", "Before");
    ASSERT_TRUE(Sync("ann").ok);
    const QByteArray cache = U("ann").File(false), state = U("ann").File(true);
    a->setDesc("Offline change");
    CalDavSyncResult r = Sync("ann", "wrong");
    EXPECT_FALSE(r.ok || r.unreachable);
    EXPECT_EQ(r.error, "The CalDAV server refused the user name or password (401 Unauthorized)");
    EXPECT_EQ(U("ann").TestConnection("wrong"), "failed: " + r.error);
    ASSERT_TRUE(Sync("bob").ok); // cy has no collection yet
    EXPECT_EQ(U("ann").TestConnection("pw-ann"),
              "ok: Connected as ann; 1 of 2 users' calendars readable");
    server.Stop();
    r = Sync("ann");
    EXPECT_TRUE(!r.ok && r.unreachable) << r.error.toStdString();
    EXPECT_EQ(std::pair(U("ann").File(false), U("ann").File(true)), std::pair(cache, state));
    ASSERT_TRUE(server.Start());
    r = Sync("ann");
    EXPECT_EQ(r.published, 1) << r.error.toStdString();
    EXPECT_TRUE(Get("/ann/tarvo/100001.ics").contains("SUMMARY:Offline change"));
}

TEST_F(CalDavSyncTest, AnUnchangedResyncCostsOneRequestPerCollection) {
    for (const char* n : {"bob", "cy", "ann"}) {
        for (int i = 0; i < 3; ++i) {
            U(n).Add(QStringLiteral("30000%1").arg(i), QStringLiteral("Event %1").arg(i));
        }
        ASSERT_TRUE(Sync(n).ok);
    }
    const QByteArray cache = U("ann").File(false);
    CalDavSyncResult r = Sync("ann");
    EXPECT_EQ(std::pair(r.requests, r.eventsRead), std::pair(3, 6));
    // A sync token the server no longer knows: each collection is listed
    // again, nothing downloaded again.
    ASSERT_TRUE(WriteFileBytes(DataFiles::CalDavStateFile(U("ann").settings),
                               U("ann").File(true).replace("/ns/sync/", "/ns/sync/x")));
    r = Sync("ann");
    EXPECT_EQ(r.requests, 6) << r.error.toStdString();
    EXPECT_EQ(U("ann").File(false), cache);
}

TEST_F(CalDavSyncTest, StopSharingRemovesOnlyWhatTarvoPublishedAndALaterSyncPublishesAfresh) {
    User& ann = U("ann");
    ann.Add("100001", "Team lunch");
    ann.Add("100002", "Review");
    ASSERT_TRUE(Sync("ann").ok);
    PutPhoneEvent("phone-1", "DTSTART:20310601T100000Z");
    const CalDavAccount account = CalDavAccount::FromSettings(ann.settings);
    const QString stateFile = DataFiles::CalDavStateFile(ann.settings);
    const auto stop = [&](const QString& password) {
        return ann.Answer([&](CalDavSync& sync, auto done) {
            sync.StopSharing(account, password, stateFile, done);
        });
    };
    EXPECT_EQ(stop("wrong"), "failed: Could not stop sharing on the CalDAV server; 2 events stay "
                             "there: The CalDAV server refused the user name or password (401 "
                             "Unauthorized)");
    EXPECT_EQ(server.Resources("ann").size(), 3);
    EXPECT_EQ(stop("pw-ann"), "ok: Stopped sharing on the CalDAV server: removed 2 events");
    EXPECT_EQ(server.Resources("ann"), QStringList({"phone-1.ics"}));
    EXPECT_TRUE(CalDavState::Load(stateFile, account.server.toString(), "ann").published.isEmpty());
    const CalDavSyncResult again = Sync("ann");
    EXPECT_EQ(again.published, 2) << again.error.toStdString();
    EXPECT_EQ(server.Resources("ann").size(), 3);
}

TEST_F(CalDavSyncTest, ASilentServerDoesNotBlock) {
    QTcpServer silent; // accepts and never answers
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost, 0));
    U("ann").settings.sSet(
        "CalDAVUrl", SettingValue(QStringLiteral("http://127.0.0.1:%1/").arg(silent.serverPort())));
    U("ann").Add("100001", "Waiting");
    CalDavSync sync(U("ann").settings);
    QElapsedTimer clock;
    clock.start();
    sync.Start(U("ann").events, "pw");
    EXPECT_LT(clock.elapsed(), 100);
    QTest::qWait(500); // events keep flowing: a blocking wait would hold this up
    EXPECT_LT(clock.elapsed(), 1500);
    EXPECT_TRUE(sync.Running());
}

} // namespace
