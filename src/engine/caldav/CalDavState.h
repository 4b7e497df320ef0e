#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

// What the last successful sync left, kept between syncs in a JSON file:
// the resources this user published (name, ETag and a hash of what was
// sent), and per collection read its sync token and, per resource, its ETag
// and the event it gave (so an unchanged resource is not downloaded again).
struct CalDavState {
    struct Published {
        QString etag; // "" when the server gave none
        QString hash; // of what was sent; "" makes the next sync write it again
    };
    struct Entry {
        QString href; // decoded path
        QString etag;
        QString owner; // of the event it gave; "" when it gave none
        QString id;    // its ID code
    };
    struct Collection {
        QString user;
        QString token;
        QList<Entry> entries; // in the order their events stand in the cache file
    };

    QString server; // the account the state belongs to
    QString user;
    QMap<QString, Published> published; // by resource name ("123456.ics")
    QList<Collection> collections;

    Collection* Find(const QString& name);

    // A missing or unreadable file, or one of another account, gives an
    // empty state for server and user.
    static CalDavState Load(const QString& path, const QString& server, const QString& user);
    // Atomically; "" on success, otherwise why not.
    QString Save(const QString& path) const;

    // The hash kept for a resource's bytes: the DTSTAMP line (the time of
    // writing) does not count.
    static QString Hash(const QByteArray& ics);
};
