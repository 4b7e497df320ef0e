#pragma once

#include "engine/caldav/CalDavHttp.h"
#include "engine/caldav/CalDavState.h"
#include "model/clsEvent.h"

#include <QList>
#include <QString>
#include <QUrl>

class clsLayers;

// Publishing: this user's collection holds exactly the user's shared events,
// one resource "<IDCode>.ics" each, written with every Tarvo field.
namespace CalDavPublish {

struct Resource {
    QString name; // "123456.ics"
    QByteArray ics;
    QString hash; // CalDavState::Hash(ics)
};

// The events the shared folder mode would publish (in layer 0 or flagged
// shared, owned by owner, not deleted), each given its layer's name, as
// resources. Events whose dates cannot be written are logged and left out.
QList<Resource> SharedResources(const QList<EventPtr>& events, const QString& owner,
                                const clsLayers& layers);

// Writes what changed since the state's record of what was published and
// deletes what is no longer wanted, updating state.published as each request
// succeeds. A resource changed by someone else since (412) is written again
// over the current one: only its owner writes it. owner: the setting Owner.
struct Counts {
    int published = 0;
    int removed = 0;
};
void Run(CalDavHttp& http, const QUrl& collection, const QList<Resource>& wanted,
         const QString& owner, CalDavState& state, Counts& counts, CalDavJobs::Finish done);

} // namespace CalDavPublish
