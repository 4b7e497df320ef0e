#include "storage/SharedUserList.h"

#include "shared/OwnerId.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"

#include <QFileInfo>
#include <QLockFile>

namespace SharedUserList {

namespace {

bool endsWith(const QString& longer, const QString& tail) {
    return longer.size() > tail.size() && longer.endsWith(tail, Qt::CaseInsensitive);
}

} // namespace

Clash FindClash(const QStringList& names, const QString& id, const QString& ownId) {
    const QString typed = id.trimmed();
    for (const QString& listed : names) {
        const QString name = listed.trimmed();
        if (name.isEmpty() || OwnerId::Same(name, ownId)) {
            continue;
        }
        if (OwnerId::Same(name, typed)) {
            return {name == typed ? ClashKind::Same : ClashKind::CaseOnly, name};
        }
        if (endsWith(name, typed) || endsWith(typed, name)) {
            return {ClashKind::Tail, name};
        }
    }
    return {};
}

QString ClashMessage(const Clash& clash, const QString& id) {
    const QString typed = id.trimmed();
    switch (clash.kind) {
    case ClashKind::CaseOnly:
    case ClashKind::Same:
        return QStringLiteral(
                   "The ID \"%1\" is already used by another user as \"%2\". IDs that differ "
                   "only in letter case name the same shared file, so each of you would wipe "
                   "the other's shared events. Please choose another ID.")
            .arg(typed, clash.listed);
    case ClashKind::Tail:
        return QStringLiteral(
                   "The ID \"%1\" cannot be used beside the listed ID \"%2\": \"Share with\" "
                   "finds a user by the end of a name, so events shared with the longer ID "
                   "would also reach the shorter one. Please choose an ID that neither ends "
                   "with another user's ID nor is the end of one.")
            .arg(typed, clash.listed);
    case ClashKind::None:
        break;
    }
    return {};
}

QString TakeOverQuestion(const QString& id) {
    return QStringLiteral("The ID \"%1\" is already in the user list. If it is yours (for "
                          "example after reinstalling Tarvo), you can take it over. If someone "
                          "else uses it, each of you would wipe the other's shared events.\n\n"
                          "Take over the ID \"%1\"?")
        .arg(id.trimmed());
}

bool Modify(const QString& listPath, const std::function<QStringList(QStringList)>& change,
            QString* error) {
    QLockFile lock(listPath + QStringLiteral(".lock"));
    lock.setStaleLockTime(kStaleLockMs);
    if (!lock.tryLock(2 * kStaleLockMs)) {
        const QString reason = lock.error() == QLockFile::LockFailedError
                                   ? QStringLiteral("another program is changing the user list")
                                   : QStringLiteral("the lock file cannot be created in ") +
                                         QFileInfo(listPath).absolutePath();
        Log().AddAction(QStringLiteral("Unable to lock ") + listPath + QStringLiteral(": ") +
                            reason,
                        QStringLiteral("Modify"), QStringLiteral("SharedUserList"));
        if (error != nullptr) {
            *error = reason;
        }
        return false;
    }
    const QStringList before = SharedDatabases::ReadUserList(listPath);
    const QStringList after = change(before);
    if (after == before && QFileInfo::exists(listPath)) {
        return true;
    }
    if (!SharedDatabases::WriteUserList(listPath, after)) {
        if (error != nullptr) {
            *error = QStringLiteral("the file cannot be written");
        }
        return false;
    }
    return true;
}

QStringList WithAdded(QStringList names, const QString& id) {
    for (const QString& name : names) {
        if (OwnerId::Same(name, id)) {
            return names;
        }
    }
    names.append(id.trimmed());
    return names;
}

QStringList WithRenamed(QStringList names, const QString& oldId, const QString& newId) {
    qsizetype at = -1;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (OwnerId::Same(names.at(i), oldId)) {
            at = i;
            break;
        }
    }
    if (at < 0) {
        return names;
    }
    QStringList out;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (i == at) {
            out.append(newId.trimmed());
        } else if (!OwnerId::Same(names.at(i), oldId) && !OwnerId::Same(names.at(i), newId)) {
            out.append(names.at(i));
        }
    }
    return out;
}

QStringList WithRemoved(QStringList names, const QString& id) {
    names.removeIf([&id](const QString& name) { return OwnerId::Same(name, id); });
    return names;
}

} // namespace SharedUserList
