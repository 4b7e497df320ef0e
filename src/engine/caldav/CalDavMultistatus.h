#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// The XML a calendar server answers to REPORT and PROPFIND (a DAV
// multistatus), and the request bodies of the reports a sync sends.
namespace CalDavMultistatus {

// One <response>: a resource and what the server says of it.
struct Resource {
    QString href;    // the path, percent-decoded ("/ann/tarvo/123456.ics")
    int status = 0;  // 200 when its properties came, 404 when it is gone
    QString etag;    // as given, quotes included
    QByteArray data; // calendar-data, UTF-8
};

struct Answer {
    QList<Resource> resources;
    QString syncToken;
    QStringList errors; // the conditions named in a DAV error body ("valid-sync-token")
    QString problem;    // why the bytes are no multistatus or error body; "" when they are
};

// Reads a multistatus (or a DAV error body). Hrefs may be whole addresses,
// paths or relative to the address asked (request); all come back as
// decoded paths.
Answer Parse(const QByteArray& xmlBytes, const QUrl& request);

// REPORT sync-collection asking for the ETags of what changed since token
// (everything when token is "").
QByteArray SyncCollectionBody(const QString& token);
// REPORT calendar-multiget asking for the ETag and data of each path.
QByteArray MultigetBody(const QStringList& paths);
// PROPFIND (Depth 0) asking for the resource type.
QByteArray PropfindBody();

} // namespace CalDavMultistatus
