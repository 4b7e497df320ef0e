#include "engine/caldav/CalDavState.h"

#include "shared/AtomicFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {
constexpr int kVersion = 1;
}

CalDavState::Collection* CalDavState::Find(const QString& name) {
    for (Collection& c : collections) {
        if (c.user == name) {
            return &c;
        }
    }
    return nullptr;
}

CalDavState CalDavState::Load(const QString& path, const QString& server, const QString& user) {
    CalDavState state;
    state.server = server;
    state.user = user;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return state;
    }
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    if (root.value(QLatin1String("version")).toInt() != kVersion ||
        root.value(QLatin1String("server")).toString() != server ||
        root.value(QLatin1String("user")).toString() != user) {
        return state;
    }
    const QJsonObject published = root.value(QLatin1String("published")).toObject();
    for (auto it = published.begin(); it != published.end(); ++it) {
        const QJsonObject o = it.value().toObject();
        state.published.insert(it.key(), {o.value(QLatin1String("etag")).toString(),
                                          o.value(QLatin1String("hash")).toString()});
    }
    for (const QJsonValue v : root.value(QLatin1String("collections")).toArray()) {
        const QJsonObject o = v.toObject();
        Collection c{o.value(QLatin1String("user")).toString(),
                     o.value(QLatin1String("token")).toString(),
                     {}};
        for (const QJsonValue e : o.value(QLatin1String("entries")).toArray()) {
            const QJsonArray a = e.toArray();
            c.entries.append(
                {a.at(0).toString(), a.at(1).toString(), a.at(2).toString(), a.at(3).toString()});
        }
        state.collections.append(c);
    }
    return state;
}

QString CalDavState::Save(const QString& path) const {
    QJsonObject root;
    root.insert(QLatin1String("version"), kVersion);
    root.insert(QLatin1String("server"), server);
    root.insert(QLatin1String("user"), user);
    QJsonObject publishedObject;
    for (auto it = published.begin(); it != published.end(); ++it) {
        publishedObject.insert(it.key(), QJsonObject{{QLatin1String("etag"), it->etag},
                                                     {QLatin1String("hash"), it->hash}});
    }
    root.insert(QLatin1String("published"), publishedObject);
    QJsonArray collectionArray;
    for (const Collection& c : collections) {
        QJsonArray entries;
        for (const Entry& e : c.entries) {
            entries.append(QJsonArray{e.href, e.etag, e.owner, e.id});
        }
        collectionArray.append(QJsonObject{{QLatin1String("user"), c.user},
                                           {QLatin1String("token"), c.token},
                                           {QLatin1String("entries"), entries}});
    }
    root.insert(QLatin1String("collections"), collectionArray);
    const QByteArray bytes = QJsonDocument(root).toJson(QJsonDocument::Compact);
    QFile old(path);
    if (old.open(QIODevice::ReadOnly) && old.readAll() == bytes) {
        return {}; // unchanged: not even its time stamp moves
    }
    const AtomicFile::Result r = AtomicFile::Write(path, bytes);
    return r.ok() ? QString() : r.description;
}

QString CalDavState::Hash(const QByteArray& ics) {
    static const QRegularExpression stamp(QStringLiteral("^DTSTAMP[:;][^\\n]*\\n"),
                                          QRegularExpression::MultilineOption);
    QString text = QString::fromUtf8(ics);
    text.remove(stamp);
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex());
}
