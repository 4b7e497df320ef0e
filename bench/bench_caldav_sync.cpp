// The calendar-server sync on a loopback Radicale: three users with 1,000
// shared events each. The first full sync of one user (publishing its 1,000
// events, reading the other two collections) and an unchanged re-sync, each
// with the number of requests it sent.
#include "engine/CalDavSync.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "support/RadicaleServer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>

namespace {

constexpr int kEvents = 1000;
const char* const kUsers[] = {"ann", "bob", "cy"};

struct User {
    QTemporaryDir data;
    cSHAREDSettings settings;
    QList<EventPtr> events;
};

struct Setup {
    RadicaleServer server;
    std::map<QString, std::unique_ptr<User>> users;
    QString problem;

    Setup() {
        if (!server.Start()) {
            problem = server.Problem();
            return;
        }
        int code = 100000;
        for (const char* n : kUsers) {
            const QString name = QString::fromLatin1(n);
            auto u = std::make_unique<User>();
            u->settings.sSet(QStringLiteral("Owner"), SettingValue(name));
            u->settings.sSet(QStringLiteral("DataPath"), SettingValue(u->data.path()));
            u->settings.sSet(QStringLiteral("Networked"), SettingValue(true));
            u->settings.sSet(QStringLiteral("NetworkMode"), SettingValue(QStringLiteral("caldav")));
            u->settings.sSet(QStringLiteral("CalDAVUrl"), SettingValue(server.Url()));
            u->settings.sSet(QStringLiteral("CalDAVUser"), SettingValue(name));
            u->settings.sSet(QStringLiteral("CalDAVUsers"),
                             SettingValue(QStringLiteral("ann,bob,cy")));
            for (int i = 0; i < kEvents; ++i) {
                auto e = std::make_shared<clsEvent>();
                e->IDCode = QString::number(code++);
                e->setOwner(name);
                e->setDesc(QStringLiteral("Shared reminder %1 of %2").arg(i).arg(name));
                e->setDueDate(DateSerial(2027, 1, 1) + i % 365);
                e->setRecurring(i % 3 == 0);
                e->setRecurrenceType(i % 3 == 0 ? clsEvent::DayOfMonthType : 0);
                e->setDayOfMonth(static_cast<int16_t>(i % 28 + 1));
                e->setMonthNumber(13);
                u->events.append(e);
            }
            users[name] = std::move(u);
        }
        for (const char* n : {"bob", "cy"}) {
            const CalDavSyncResult r = Sync(QString::fromLatin1(n));
            if (!r.ok) {
                problem = r.error;
            }
        }
    }

    CalDavSyncResult Sync(const QString& name) {
        User& u = *users.at(name);
        CalDavSync sync(u.settings);
        CalDavSyncResult result;
        QEventLoop loop;
        QObject::connect(&sync, &CalDavSync::finished, &loop, [&](const CalDavSyncResult& r) {
            result = r;
            loop.quit();
        });
        sync.Start(u.events, server.Password(name));
        loop.exec();
        return result;
    }

    // Ann as before her first sync: no collection on the server, no files.
    void ForgetAnn() {
        server.Request("DELETE", QStringLiteral("ann"), QStringLiteral("/ann/tarvo/"));
        QFile::remove(DataFiles::CalDavStateFile(users.at(QStringLiteral("ann"))->settings));
        QFile::remove(DataFiles::CalDavCacheFile(users.at(QStringLiteral("ann"))->settings));
    }
};

Setup& shared() {
    static Setup setup;
    return setup;
}

void report(benchmark::State& state, const CalDavSyncResult& r) {
    if (!r.ok) {
        state.SkipWithError(r.error.toStdString().c_str());
        return;
    }
    state.counters["requests"] = r.requests;
    state.counters["published"] = r.published;
    state.counters["events_read"] = r.eventsRead;
}

void BM_FirstFullSync(benchmark::State& state) {
    Setup& s = shared();
    if (!s.problem.isEmpty()) {
        state.SkipWithError(s.problem.toStdString().c_str());
        return;
    }
    CalDavSyncResult r;
    for (auto _ : state) {
        state.PauseTiming();
        s.ForgetAnn();
        state.ResumeTiming();
        r = s.Sync(QStringLiteral("ann"));
    }
    report(state, r);
}
BENCHMARK(BM_FirstFullSync)
    ->Iterations(1)
    ->Repetitions(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_UnchangedResync(benchmark::State& state) {
    Setup& s = shared();
    if (!s.problem.isEmpty()) {
        state.SkipWithError(s.problem.toStdString().c_str());
        return;
    }
    s.Sync(QStringLiteral("ann"));
    CalDavSyncResult r;
    for (auto _ : state) {
        r = s.Sync(QStringLiteral("ann"));
    }
    report(state, r);
}
BENCHMARK(BM_UnchangedResync)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    Log().setNOLOGGING(true);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
