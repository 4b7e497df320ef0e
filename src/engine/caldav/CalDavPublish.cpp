#include "engine/caldav/CalDavPublish.h"

#include "shared/Clock.h"
#include "shared/OwnerId.h"
#include "shared/cSharedLogging.h"
#include "storage/IcsEventMapping.h"
#include "storage/clsLayers.h"

#include <QSet>

#include <memory>
#include <vector>

namespace CalDavPublish {

namespace {

constexpr int kParallel = 4;

QUrl resourceUrl(const QUrl& collection, const QString& name) {
    return collection.resolved(QUrl(QString::fromLatin1(QUrl::toPercentEncoding(name))));
}

// Whether a resource's calendar data is an event this user's Tarvo wrote.
bool publishedBy(const QByteArray& ics, const QString& owner) {
    const IcsEventMapping::Calendar calendar = IcsEventMapping::ParseCalendar(ics);
    for (icalcomponent* v : calendar.events) {
        const IcsEventMapping::ReadEvent read =
            IcsEventMapping::FromVEvent(v, DateOnly(Clock::now()), IcsEventMapping::Options{true});
        return read.tarvoFields && OwnerId::Same(read.event->Owner(), owner);
    }
    return false;
}

// One resource written (or deleted) with the precondition its recorded ETag
// gives; after a 412 the current ETag is fetched and the request made once
// more with it. A new name that is taken already is written over only when
// the resource there is this user's own from Tarvo (published by a sync
// whose state was not kept); another program's resource stays as it is.
struct Writer : std::enable_shared_from_this<Writer> {
    CalDavHttp& http;
    QUrl url;
    QString name;
    const Resource* resource; // null: delete
    QString owner;
    CalDavState& state;
    Counts& counts;
    CalDavJobs::Finish done;

    Writer(CalDavHttp& h, QUrl u, QString n, const Resource* r, QString o, CalDavState& s,
           Counts& c, CalDavJobs::Finish d)
        : http(h), url(std::move(u)), name(std::move(n)), resource(r), owner(std::move(o)),
          state(s), counts(c), done(std::move(d)) {}

    void send(const QByteArray& etag, bool retried) {
        CalDavHttp::Headers headers;
        if (!etag.isEmpty()) {
            headers.append(qMakePair(QByteArray("If-Match"), etag));
        } else if (resource != nullptr && !retried) {
            headers.append(qMakePair(QByteArray("If-None-Match"), QByteArray("*")));
        }
        if (resource != nullptr) {
            headers.append(
                qMakePair(QByteArray("Content-Type"), QByteArray("text/calendar; charset=utf-8")));
        }
        const bool asNew = resource != nullptr && etag.isEmpty() && !retried;
        auto self = shared_from_this();
        http.Send(resource != nullptr ? "PUT" : "DELETE", url,
                  resource != nullptr ? resource->ics : QByteArray(), headers,
                  [self, retried, asNew](const CalDavReply& reply) {
                      self->answered(reply, retried, asNew);
                  });
    }

    void answered(const CalDavReply& reply, bool retried, bool asNew) {
        if (reply.status == 412 && !retried) {
            auto self = shared_from_this();
            http.Send(asNew ? "GET" : "HEAD", url, {}, {}, [self, asNew](const CalDavReply& now) {
                if (asNew && now.Ok() && !publishedBy(now.body, self->owner)) {
                    Log().AddAction(QStringLiteral("Not published: another program's resource "
                                                   "has the name ") +
                                        self->url.toString(),
                                    QStringLiteral("Run"), QStringLiteral("CalDavPublish"));
                    self->done({});
                } else if (now.Ok() || now.status == 404) {
                    self->send(now.Ok() ? now.etag : QByteArray(), true);
                } else {
                    self->done(CalDavProblem::From(now));
                }
            });
            return;
        }
        if (resource != nullptr && reply.Ok()) {
            state.published.insert(name, {QString::fromUtf8(reply.etag), resource->hash});
            ++counts.published;
        } else if (resource == nullptr && (reply.Ok() || reply.status == 404)) {
            state.published.remove(name);
            ++counts.removed;
        } else {
            done(CalDavProblem::From(reply));
            return;
        }
        done({});
    }
};

} // namespace

QList<Resource> SharedResources(const QList<EventPtr>& events, const QString& owner,
                                const clsLayers& layers) {
    QList<Resource> out;
    for (const EventPtr& e : events) {
        if (e->Deleted || !(e->SharedEvent || e->Layer() == clsLayers::kShared) ||
            !OwnerId::Same(e->Owner(), owner) || e->IDCode.trimmed().isEmpty()) {
            continue;
        }
        clsEvent copy = *e;
        copy.SharedLayerName = layers.Layer(copy.Layer());
        if (!IcsEventMapping::Writable(copy)) {
            Log().AddAction(QStringLiteral("Not published (a date after the year 3000): ") +
                                copy.IDCode,
                            QStringLiteral("SharedResources"), QStringLiteral("CalDavPublish"));
            continue;
        }
        std::vector<IcsEventMapping::IcalComponent> one;
        one.push_back(
            IcsEventMapping::ToVEvent(copy, copy.SharedLayerName, IcsEventMapping::Options{true}));
        Resource r;
        r.name = copy.IDCode.trimmed() + QStringLiteral(".ics");
        r.ics = IcsEventMapping::WriteCalendar(std::move(one));
        r.hash = CalDavState::Hash(r.ics);
        out.append(r);
    }
    return out;
}

void Run(CalDavHttp& http, const QUrl& collection, const QList<Resource>& wanted,
         const QString& owner, CalDavState& state, Counts& counts, CalDavJobs::Finish done) {
    QList<CalDavJobs::Job> jobs;
    QSet<QString> names;
    auto add = [&](const QString& name, const Resource* resource) {
        jobs.append([&http, &state, &counts, url = resourceUrl(collection, name), name, resource,
                     owner](CalDavJobs::Finish finish) {
            const QByteArray etag = state.published.value(name).etag.toUtf8();
            std::make_shared<Writer>(http, url, name, resource, owner, state, counts,
                                     std::move(finish))
                ->send(etag, false);
        });
    };
    for (const Resource& r : wanted) {
        names.insert(r.name);
        const auto known = state.published.constFind(r.name);
        if (known == state.published.cend() || known->hash != r.hash) {
            add(r.name, &r);
        }
    }
    for (auto it = state.published.cbegin(); it != state.published.cend(); ++it) {
        if (!names.contains(it.key())) {
            add(it.key(), nullptr);
        }
    }
    CalDavJobs::Run(std::move(jobs), kParallel, std::move(done));
}

} // namespace CalDavPublish
