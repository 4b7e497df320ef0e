#include "engine/CalDavSync.h"

#include "engine/caldav/CalDavCache.h"
#include "engine/caldav/CalDavHttp.h"
#include "engine/caldav/CalDavMultistatus.h"
#include "engine/caldav/CalDavPublish.h"
#include "engine/caldav/CalDavRead.h"
#include "engine/caldav/CalDavState.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/clsLayers.h"

#include <QPointer>
#include <QTimer>

#include <map>
#include <memory>

QString CalDavSyncResult::Summary() const {
    const auto count = [](int n, const char* one, const char* many) -> QString {
        return QString::number(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
    };
    return QStringLiteral("Published %1, removed %2; read %3, %4")
        .arg(published)
        .arg(removed)
        .arg(count(usersRead, "user", "users"), count(eventsRead, "event", "events"));
}

namespace {

const QString kModule = QStringLiteral("CalDavSync");

// One sync, from the state and cache files to their new versions: the own
// collection (read first while the server is new to this state), publishing,
// the own collection again (a published resource changed by someone else is
// written again at once), then every listed user's collection. Nothing is
// written unless every step succeeded.
class SyncRun : public QObject {
public:
    SyncRun(cSHAREDSettings& settings, const CalDavAccount& account, QString owner,
            QList<CalDavPublish::Resource> wanted, const QString& password,
            std::function<void(const CalDavSyncResult&)> finish)
        : m_settings(settings), m_account(account), m_owner(std::move(owner)),
          m_http(account.user, password, this), m_wanted(std::move(wanted)),
          m_finish(std::move(finish)) {}

    void Begin() {
        m_state = CalDavState::Load(DataFiles::CalDavStateFile(m_settings),
                                    m_account.server.toString(), m_account.user);
        CalDavCache::Events cached =
            CalDavCache::Load(m_settings, DataFiles::CalDavCacheFile(m_settings), m_state);
        // The collections in reading order, own first; users no longer listed drop out.
        QList<CalDavState::Collection> collections;
        QStringList users{m_account.user};
        users += m_account.users;
        for (const QString& user : users) {
            const CalDavState::Collection* known = m_state.Find(user);
            collections.append(known != nullptr ? *known : CalDavState::Collection{user, {}, {}});
            m_events[user] = cached.value(user);
        }
        m_state.collections = collections;
        if (m_state.collections.first().token.isEmpty()) {
            readOwn([this] { publish([this] { readOthers(0); }); });
        } else {
            publish([this] {
                readOwn([this] {
                    if (m_ownOutcome.publishedChanged) {
                        publish([this] { readOthers(0); });
                    } else {
                        readOthers(0);
                    }
                });
            });
        }
    }

private:
    CalDavRead::Collection collection(const QString& user, bool own) const {
        return {m_account.CollectionUrl(user), user, own, m_owner, DateOnly(Clock::now())};
    }

    void readOwn(const std::function<void()>& next) {
        m_ownOutcome = {};
        CalDavRead::Run(m_http, collection(m_account.user, true), m_state,
                        m_state.collections.first(), m_events[m_account.user], m_ownOutcome,
                        [this, next](const CalDavProblem& p) { p.failed ? fail(p) : next(); });
    }

    void publish(const std::function<void()>& next) {
        CalDavPublish::Run(m_http, m_account.CollectionUrl(m_account.user), m_wanted, m_owner,
                           m_state, m_counts,
                           [this, next](const CalDavProblem& p) { p.failed ? fail(p) : next(); });
    }

    void readOthers(qsizetype index) {
        if (index + 1 >= m_state.collections.size()) {
            commit();
            return;
        }
        CalDavState::Collection& kept = m_state.collections[index + 1];
        auto outcome = std::make_shared<CalDavRead::Outcome>();
        CalDavRead::Run(m_http, collection(kept.user, false), m_state, kept, m_events[kept.user],
                        *outcome, [this, index, outcome](const CalDavProblem& p) {
                            if (p.failed) {
                                fail(p);
                                return;
                            }
                            m_othersRead += outcome->answered ? 1 : 0;
                            readOthers(index + 1);
                        });
    }

    void commit() {
        CalDavCache::Events all;
        for (auto it = m_events.begin(); it != m_events.end(); ++it) {
            all.insert(it->first, it->second);
        }
        const QList<EventPtr> events = CalDavCache::InStateOrder(m_state, all);
        QString error =
            CalDavCache::Save(m_settings, DataFiles::CalDavCacheFile(m_settings), events);
        if (error.isEmpty()) {
            error = m_state.Save(DataFiles::CalDavStateFile(m_settings));
        }
        if (!error.isEmpty()) {
            fail(CalDavProblem::Text(error));
            return;
        }
        m_result.ok = true;
        m_result.published = m_counts.published;
        m_result.removed = m_counts.removed;
        m_result.usersRead = m_othersRead + (m_ownOutcome.answered ? 1 : 0);
        m_result.eventsRead = static_cast<int>(events.size());
        m_result.requests = m_http.Requests();
        Log().AddAction(m_result.Summary() +
                            QStringLiteral(" (%1 requests)").arg(m_result.requests),
                        QStringLiteral("Sync"), kModule);
        done();
    }

    void fail(const CalDavProblem& problem) {
        m_result.ok = false;
        m_result.unreachable = problem.unreachable;
        m_result.error = problem.error;
        m_result.requests = m_http.Requests();
        Log().AddAction(QStringLiteral("Sync failed: ") + problem.error, QStringLiteral("Sync"),
                        kModule);
        done();
    }

    void done() {
        if (m_finish) {
            auto finish = std::move(m_finish);
            m_finish = nullptr;
            finish(m_result);
        }
    }

    cSHAREDSettings& m_settings;
    CalDavAccount m_account;
    QString m_owner;
    CalDavHttp m_http;
    QList<CalDavPublish::Resource> m_wanted;
    std::function<void(const CalDavSyncResult&)> m_finish;
    CalDavState m_state;
    std::map<QString, QHash<QString, EventPtr>> m_events; // references stay valid
    CalDavRead::Outcome m_ownOutcome;
    CalDavPublish::Counts m_counts;
    int m_othersRead = 0;
    CalDavSyncResult m_result;
};

} // namespace

struct CalDavSync::Impl {
    QPointer<SyncRun> run;
    bool pending = false;
    QList<EventPtr> pendingEvents;
    QString pendingPassword;
};

CalDavSync::CalDavSync(cSHAREDSettings& settings, QObject* parent)
    : QObject(parent), m_settings(settings), m_impl(new Impl) {}

CalDavSync::~CalDavSync() {
    delete m_impl->run;
    delete m_impl;
}

void CalDavSync::Start(const QList<EventPtr>& localEvents, const QString& password) {
    if (m_impl->run) {
        // One more sync after this one, with the latest events.
        m_impl->pending = true;
        m_impl->pendingEvents.clear();
        for (const EventPtr& e : localEvents) {
            m_impl->pendingEvents.append(std::make_shared<clsEvent>(*e));
        }
        m_impl->pendingPassword = password;
        return;
    }
    const CalDavAccount account = CalDavAccount::FromSettings(m_settings);
    const QString owner =
        m_settings.sGet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Not Set"))).toText();
    emit started();
    const QString problem = account.Problem();
    if (!problem.isEmpty()) {
        QTimer::singleShot(0, this, [this, problem] {
            CalDavSyncResult result;
            result.error = problem;
            emit finished(result);
        });
        return;
    }
    clsLayers layers(m_settings);
    layers.LoadLayers();
    auto* run = new SyncRun(m_settings, account, owner,
                            CalDavPublish::SharedResources(localEvents, owner, layers), password,
                            [this](const CalDavSyncResult& result) {
                                m_impl->run->deleteLater();
                                m_impl->run = nullptr;
                                emit finished(result);
                                if (m_impl->pending && !m_impl->run) {
                                    m_impl->pending = false;
                                    Start(m_impl->pendingEvents, m_impl->pendingPassword);
                                }
                            });
    m_impl->run = run;
    QTimer::singleShot(0, run, [run] { run->Begin(); });
}

bool CalDavSync::Running() const {
    return !m_impl->run.isNull();
}

void CalDavSync::TestConnection(const CalDavAccount& account, const QString& password,
                                std::function<void(bool, const QString&)> done) {
    const QString problem = account.Problem();
    if (!problem.isEmpty()) {
        QTimer::singleShot(0, this, [done, problem] { done(false, problem); });
        return;
    }
    // Logging in (the user's own folder on the server), then each listed
    // user's collection (this user's own is not counted: it is made by the
    // first sync).
    auto* http = new CalDavHttp(account.user, password, this);
    const QByteArray body = CalDavMultistatus::PropfindBody();
    const CalDavHttp::Headers headers{{"Depth", "0"},
                                      {"Content-Type", "application/xml; charset=utf-8"}};
    const QUrl home = account.server.resolved(
        QUrl(QString::fromLatin1(QUrl::toPercentEncoding(account.user)) + QLatin1Char('/')));
    http->Send(
        "PROPFIND", home, body, headers, [=, done = std::move(done)](const CalDavReply& login) {
            if (!login.Ok() && login.status != 404) {
                http->deleteLater();
                done(false, CalDavErrorLine(login));
                return;
            }
            QList<CalDavJobs::Job> jobs;
            auto readable = std::make_shared<int>(0);
            for (const QString& user : account.users) {
                jobs.append([=](const CalDavJobs::Finish& finish) {
                    http->Send("PROPFIND", account.CollectionUrl(user), body, headers,
                               [=](const CalDavReply& reply) {
                                   *readable += reply.Ok() ? 1 : 0;
                                   finish(reply.status == 0 ? CalDavProblem::From(reply)
                                                            : CalDavProblem{});
                               });
                });
            }
            CalDavJobs::Run(jobs, 4, [=](const CalDavProblem& p) {
                http->deleteLater();
                if (p.failed) {
                    done(false, p.error);
                    return;
                }
                done(true, QStringLiteral("Connected as %1; %2 of %3 users' calendars readable")
                               .arg(account.user)
                               .arg(*readable)
                               .arg(account.users.size()));
            });
        });
}

void CalDavSync::StopSharing(const CalDavAccount& account, const QString& password,
                             const QString& stateFile,
                             std::function<void(bool, const QString&)> done) {
    struct Run {
        CalDavState state;
        CalDavPublish::Counts counts;
    };
    auto run = std::make_shared<Run>();
    run->state = CalDavState::Load(stateFile, account.server.toString(), account.user);
    const QString owner =
        m_settings.sGet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Not Set"))).toText();
    auto finish = [run, stateFile, done = std::move(done)](const CalDavProblem& p) {
        QString error = p.failed ? p.error : run->state.Save(stateFile);
        if (p.failed && run->counts.removed > 0) {
            run->state.Save(stateFile); // what was removed is no longer recorded
        }
        const QString line =
            error.isEmpty()
                ? QStringLiteral("Stopped sharing on the CalDAV server: removed %1 %2")
                      .arg(run->counts.removed)
                      .arg(run->counts.removed == 1 ? QStringLiteral("event")
                                                    : QStringLiteral("events"))
                : QStringLiteral("Could not stop sharing on the CalDAV server; %1 events stay "
                                 "there: %2")
                      .arg(run->state.published.size())
                      .arg(error);
        Log().AddAction(line, QStringLiteral("StopSharing"), kModule);
        done(error.isEmpty(), line);
    };
    const QString problem = account.Problem();
    QTimer::singleShot(0, this, [=] {
        if (!problem.isEmpty()) {
            finish(CalDavProblem::Text(problem));
            return;
        }
        auto* http = new CalDavHttp(account.user, password, this);
        // Publishing an empty set deletes every resource the state records.
        CalDavPublish::Run(*http, account.CollectionUrl(account.user), {}, owner, run->state,
                           run->counts, [http, finish](const CalDavProblem& p) {
                               http->deleteLater();
                               finish(p);
                           });
    });
}
