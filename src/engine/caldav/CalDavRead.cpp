#include "engine/caldav/CalDavRead.h"

#include "engine/caldav/CalDavMultistatus.h"
#include "shared/OwnerId.h"
#include "shared/cSharedLogging.h"
#include "storage/IcsEventMapping.h"

#include <QCryptographicHash>
#include <QMap>
#include <QSet>

#include <memory>

namespace CalDavRead {

namespace {

constexpr int kBatch = 100;
const QString kModule = QStringLiteral("CalDavRead");

QString nameOf(const QString& path) {
    return path.section(QLatin1Char('/'), -1);
}

// One collection's read, alive while its requests are.
struct Reader : std::enable_shared_from_this<Reader> {
    CalDavHttp& http;
    Collection c;
    CalDavState& state;
    CalDavState::Collection& kept;
    QHash<QString, EventPtr>& events;
    Outcome& outcome;
    CalDavJobs::Finish done;
    QMap<QString, CalDavState::Entry> entries; // by path
    QString token;
    bool created = false;

    Reader(CalDavHttp& h, Collection col, CalDavState& s, CalDavState::Collection& k,
           QHash<QString, EventPtr>& e, Outcome& o, CalDavJobs::Finish d)
        : http(h), c(std::move(col)), state(s), kept(k), events(e), outcome(o), done(std::move(d)) {
        for (const CalDavState::Entry& entry : kept.entries) {
            entries.insert(entry.href, entry);
        }
    }

    void list(const QString& since) {
        auto self = shared_from_this();
        http.Send("REPORT", c.url, CalDavMultistatus::SyncCollectionBody(since),
                  {{"Depth", "0"}, {"Content-Type", "application/xml; charset=utf-8"}},
                  [self, since](const CalDavReply& reply) { self->listed(reply, since); });
    }

    void listed(const CalDavReply& reply, const QString& since) {
        if (reply.status == 404) {
            missing(reply);
            return;
        }
        const CalDavMultistatus::Answer answer = CalDavMultistatus::Parse(reply.body, reply.url);
        if (!reply.Ok()) {
            // A token the server no longer knows: list everything again.
            if (!since.isEmpty() && answer.errors.contains(QLatin1String("valid-sync-token"))) {
                list(QString());
                return;
            }
            done(CalDavProblem::From(reply));
            return;
        }
        if (!answer.problem.isEmpty()) {
            done(CalDavProblem::Text(answer.problem + QStringLiteral(" (") + c.url.toString() +
                                     QLatin1Char(')')));
            return;
        }
        outcome.answered = true;
        token = answer.syncToken;
        const QString base = c.url.path(QUrl::FullyDecoded);
        QSet<QString> seen;
        QStringList fetch;
        for (const CalDavMultistatus::Resource& r : answer.resources) {
            if (r.href == base || !r.href.startsWith(base)) {
                continue;
            }
            const QString name = nameOf(r.href);
            const bool gone = r.status == 404;
            seen.insert(r.href);
            if (c.own && state.published.contains(name)) {
                CalDavState::Published& p = state.published[name];
                if (gone) {
                    state.published.remove(name); // written again as new
                    outcome.publishedChanged = true;
                } else if (p.etag.isEmpty()) {
                    p.etag = r.etag;
                } else if (p.etag != r.etag) {
                    p = {r.etag, QString()}; // changed by someone else: the owner's copy wins
                    outcome.publishedChanged = true;
                }
                continue;
            }
            if (gone) {
                entries.remove(r.href);
                events.remove(r.href);
            } else if (!entries.contains(r.href) || entries.value(r.href).etag != r.etag ||
                       r.etag.isEmpty()) {
                fetch.append(r.href);
            }
        }
        if (since.isEmpty()) {
            // A full listing: what it does not name is gone.
            for (auto it = entries.begin(); it != entries.end();) {
                if (!seen.contains(it.key())) {
                    events.remove(it.key());
                    it = entries.erase(it);
                } else {
                    ++it;
                }
            }
            for (auto it = state.published.begin(); c.own && it != state.published.end();) {
                if (!seen.contains(base + it.key())) {
                    it = state.published.erase(it); // written again as new
                    outcome.publishedChanged = true;
                } else {
                    ++it;
                }
            }
        }
        QList<CalDavJobs::Job> jobs;
        for (qsizetype i = 0; i < fetch.size(); i += kBatch) {
            auto self = shared_from_this();
            jobs.append([self, batch = fetch.mid(i, kBatch)](const CalDavJobs::Finish& finish) {
                self->http.Send(
                    "REPORT", self->c.url, CalDavMultistatus::MultigetBody(batch),
                    {{"Depth", "1"}, {"Content-Type", "application/xml; charset=utf-8"}},
                    [self, finish](const CalDavReply& reply) { finish(self->fetched(reply)); });
            });
        }
        auto self = shared_from_this();
        CalDavJobs::Run(std::move(jobs), 2, [self](const CalDavProblem& problem) {
            if (!problem.failed) {
                self->keep();
            }
            self->done(problem);
        });
    }

    CalDavProblem fetched(const CalDavReply& reply) {
        if (!reply.Ok()) {
            return CalDavProblem::From(reply);
        }
        const CalDavMultistatus::Answer answer = CalDavMultistatus::Parse(reply.body, reply.url);
        if (!answer.problem.isEmpty()) {
            return CalDavProblem::Text(answer.problem);
        }
        for (const CalDavMultistatus::Resource& r : answer.resources) {
            if (r.status == 404) {
                entries.remove(r.href);
                events.remove(r.href);
                continue;
            }
            const ReadResource read = EventOf(r.data, r.href, c);
            if (c.own && read.tarvo && OwnerId::Same(read.event->Owner(), c.ownOwner)) {
                // Published by this user's Tarvo without a record of it (the
                // state file was lost): the publish step rewrites or deletes it.
                state.published.insert(nameOf(r.href), {r.etag, QString()});
                outcome.publishedChanged = true;
                entries.remove(r.href);
                events.remove(r.href);
                continue;
            }
            CalDavState::Entry entry{r.href, r.etag, QString(), QString()};
            if (read.event) {
                entry.owner = read.event->Owner();
                entry.id = read.event->IDCode;
                events.insert(r.href, read.event);
            } else {
                events.remove(r.href);
            }
            entries.insert(r.href, entry);
        }
        return {};
    }

    void missing(const CalDavReply& reply) {
        if (c.own && !created) {
            // Made here, then listed once, for the sync token of the new collection.
            auto self = shared_from_this();
            http.Send("MKCALENDAR", c.url, {}, {}, [self](const CalDavReply& reply) {
                if (!reply.Ok()) {
                    self->done(CalDavProblem::From(reply));
                    return;
                }
                self->created = true;
                self->state.published.clear(); // nothing of it can be there
                self->list(QString());
            });
            return;
        }
        if (c.own) {
            done(CalDavProblem::From(reply));
            return;
        }
        // The user has not published anything yet (logged when a collection
        // read before went away, not at every sync of a user still to start).
        if (!kept.token.isEmpty() || !kept.entries.isEmpty()) {
            Log().AddAction(QStringLiteral("No shared calendar any more at ") + c.url.toString(),
                            QStringLiteral("Run"), kModule);
        }
        entries.clear();
        events.clear();
        keep();
        done({});
    }

    void keep() {
        kept.token = token;
        kept.entries = entries.values();
    }
};

} // namespace

QString IdForPath(const QString& path) {
    const QByteArray h = QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha1);
    const quint32 n = (quint32(uchar(h[0])) << 24) | (quint32(uchar(h[1])) << 16) |
                      (quint32(uchar(h[2])) << 8) | quint32(uchar(h[3]));
    return QStringLiteral("%1").arg(n % 1000000u, 6, 10, QLatin1Char('0'));
}

ReadResource EventOf(const QByteArray& ics, const QString& path, const Collection& c) {
    ReadResource out;
    const IcsEventMapping::Calendar calendar = IcsEventMapping::ParseCalendar(ics);
    QString why = calendar.error;
    for (icalcomponent* v : calendar.events) {
        IcsEventMapping::ReadEvent read =
            IcsEventMapping::FromVEvent(v, c.today, IcsEventMapping::Options{true});
        if (!read.event) {
            why = read.skipped;
            continue;
        }
        clsEvent& e = *read.event;
        if (!read.tarvoFields || e.Owner().trimmed().isEmpty()) {
            e.setOwner(c.user);
        }
        if (!read.tarvoFields || e.IDCode.trimmed().isEmpty()) {
            e.IDCode = IdForPath(path);
        }
        if (e.SharedLayerName.isEmpty()) {
            e.SharedLayerName = read.category;
        }
        if (!read.simplified.isEmpty()) {
            Log().AddAction(path + QStringLiteral(" is shown at its next occurrence only (") +
                                read.simplified + QLatin1Char(')'),
                            QStringLiteral("EventOf"), kModule);
        }
        out.event = read.event;
        out.tarvo = read.tarvoFields;
        return out;
    }
    Log().AddAction(path + QStringLiteral(" not read: ") +
                        (why.isEmpty() ? QStringLiteral("no event") : why),
                    QStringLiteral("EventOf"), kModule);
    return out;
}

void Run(CalDavHttp& http, const Collection& collection, CalDavState& state,
         CalDavState::Collection& kept, QHash<QString, EventPtr>& events, Outcome& outcome,
         CalDavJobs::Finish done) {
    std::make_shared<Reader>(http, collection, state, kept, events, outcome, std::move(done))
        ->list(kept.token);
}

} // namespace CalDavRead
