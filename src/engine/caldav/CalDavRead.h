#pragma once

#include "engine/caldav/CalDavHttp.h"
#include "engine/caldav/CalDavState.h"
#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QHash>
#include <QString>
#include <QUrl>

// Reading one user's collection: what changed since the collection's sync
// token (REPORT sync-collection), then the changed resources only, in
// batches (REPORT calendar-multiget).
namespace CalDavRead {

struct Collection {
    QUrl url;
    QString user;     // the collection's user (CalDAVUser of whoever owns it)
    bool own = false; // this user's own collection
    QString ownOwner; // own: the setting Owner, whose Tarvo resources are published ones
    DateValue today = 0;
};

struct Outcome {
    bool answered = false;         // the collection exists and was read
    bool publishedChanged = false; // own: a published resource changed or went behind our back
};

// Updates state (the collection's token and entries, and for the own
// collection the ETags of the published resources) and events (path -> event).
// A resource another program put into a collection (no X-TARVO-OWNER) is an
// event of the collection's user with an ID code derived from its path.
void Run(CalDavHttp& http, const Collection& collection, CalDavState& state,
         CalDavState::Collection& kept, QHash<QString, EventPtr>& events, Outcome& outcome,
         CalDavJobs::Finish done);

// The ID code of an event read from a resource without Tarvo's fields:
// six digits derived from its path, the same at every read.
QString IdForPath(const QString& path);

// The event of one resource's calendar data; null (with the reason logged)
// when it holds none Tarvo can show.
struct ReadResource {
    EventPtr event;
    bool tarvo = false; // written by Tarvo (X-TARVO-* fields)
};
ReadResource EventOf(const QByteArray& ics, const QString& path, const Collection& collection);

} // namespace CalDavRead
