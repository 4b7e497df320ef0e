#include "storage/SharedDatabases.h"

#include "shared/AppPaths.h"
#include "shared/OwnerId.h"
#include "shared/TextCodec.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/SharedUserList.h"
#include "storage/clsLayers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <filesystem>

SharedDatabases::SharedDatabases(cSHAREDSettings& settings, clsLayers& layers)
    : m_settings(settings), m_layers(layers), m_sharedSet(settings, &layers),
      m_publish(settings, &layers) {
    m_sharedSet.setNetworked(true);
}

QString SharedDatabases::SharedFileName(const QString& owner) {
    return QStringLiteral("Shared_") + owner + QStringLiteral(".xml");
}

QString SharedDatabases::SharedFolder() const {
    return m_settings.sGet(QStringLiteral("SharedDatapath"), SettingValue(QString())).toText();
}

bool SharedDatabases::SharedFolderReachable() const {
    const QString folder = SharedFolder().trimmed();
    return !folder.isEmpty() && QFileInfo(folder).isDir() && QDir(folder).isReadable();
}

QString SharedDatabases::UserListFile() const {
    return AppPaths::JoinPath(SharedFolder(), QStringLiteral("TVOShared.ini"));
}

QString SharedDatabases::OwnSharedFile() const {
    return AppPaths::JoinPath(SharedFolder(), SharedFileName(m_publish.CurrentOwner()));
}

void SharedDatabases::AttachTo(clsDbXml& local) {
    local.setPublisher([this](clsDbXml& db) { PublishSharedEvents(db); });
}

void SharedDatabases::PublishSharedEvents(const clsDbXml& local) {
    if (DataFiles::CalDavMode(m_settings)) {
        // The calendar server's sync publishes; the shared folder is left alone.
        ReloadSharedSet();
        return;
    }
    if (SharedFolder().trimmed().isEmpty()) {
        // Without a shared folder the file would land wherever the program
        // happens to run.
        Log().AddAction(QStringLiteral("No shared data path set. Shared events not published."),
                        QStringLiteral("PublishSharedEvents"), QStringLiteral("SharedDatabases"));
        return;
    }
    const QString owner = m_publish.CurrentOwner();
    // The owner name becomes part of a file name in the shared folder; one
    // that the options would refuse is refused here too (a hand-edited
    // settings file), so nothing lands outside the folder or under a name
    // that another user's name could also give.
    if (owner.trimmed().isEmpty() || !OwnerId::Problem(owner).isEmpty()) {
        Log().AddAction(
            QStringLiteral("Owner name unusable as a file name. Shared events not published."),
            QStringLiteral("PublishSharedEvents"), QStringLiteral("SharedDatabases"));
        return;
    }
    // This user's old events in the file are marked deleted, so only what
    // follows is published under this name; the file is then written once
    // (and not at all when its bytes stay the same), so other users never
    // read it without this user's events.
    m_publish.LoadDB(OwnSharedFile());
    for (const EventPtr& event : m_publish.Events()) {
        if (OwnerId::Same(event->Owner(), owner)) {
            event->Deleted = true;
        }
    }
    for (const EventPtr& event : local.Events()) {
        if ((event->SharedEvent || event->Layer() == clsLayers::kShared) &&
            OwnerId::Same(event->Owner(), owner)) {
            event->SharedLayerName = m_layers.Layer(event->Layer());
            m_publish.StoreRecord(event);
        }
    }
    m_publish.SaveDB();
    ReloadSharedSet();
}

QString SharedDatabases::MergedSource() const {
    return DataFiles::CalDavMode(m_settings) ? DataFiles::CalDavCacheFile(m_settings)
                                             : UserListFile();
}

void SharedDatabases::ReloadSharedSet() {
    if (DataFiles::CalDavMode(m_settings)) {
        m_sharedSet.LoadMergedFile(DataFiles::CalDavCacheFile(m_settings));
        return;
    }
    // No shared folder: an empty set rather than a list file looked up
    // wherever the program runs.
    m_sharedSet.LoadMultiple(SharedFolder().trimmed().isEmpty() ? QString() : UserListFile());
}

bool SharedDatabases::UsableListName(const QString& name) {
    // Anyone who can write the shared folder can write the list; a name that
    // is no plain file-name part could make a shared file's path point
    // outside the folder.
    if (OwnerId::IsPlainName(name)) {
        return true;
    }
    Log().AddAction(QStringLiteral("Skipped user list entry that cannot name a shared file: ") +
                        name.left(OwnerId::kMaxNameLength),
                    QStringLiteral("ReadUserList"), QStringLiteral("SharedDatabases"));
    return false;
}

QStringList SharedDatabases::ReadUserList(const QString& listPath) {
    QFile file(listPath);
    if (!file.exists()) {
        return {};
    }
    if (!file.open(QIODevice::ReadOnly)) {
        Log().AddAction(file.errorString() + QStringLiteral(" (75)"),
                        QStringLiteral("ReadUserList"), QStringLiteral("SharedDatabases"));
        return {};
    }
    QStringList names;
    const QString text = TextCodec::FromWindows1252(file.readAll());
    for (const QString& line : text.split(QLatin1String(TextCodec::kLineEnd))) {
        const QString name = line.trimmed();
        if (name.isEmpty()) {
            continue;
        }
        if (UsableListName(name)) {
            names.append(name);
        }
    }
    return names;
}

bool SharedDatabases::WriteUserList(const QString& listPath, const QStringList& names) {
    QByteArray bytes;
    for (const QString& name : names) {
        bytes += TextCodec::ToWindows1252(name) + TextCodec::kLineEnd;
    }
    QSaveFile file(listPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        Log().AddAction(file.errorString() + QStringLiteral(" (75)"),
                        QStringLiteral("WriteUserList"), QStringLiteral("SharedDatabases"));
        return false;
    }
    return true;
}

bool SharedDatabases::EmptySharedFile(const QString& id) {
    const QString path = AppPaths::JoinPath(SharedFolder(), SharedFileName(id.trimmed()));
    if (!QFileInfo::exists(path)) {
        return true;
    }
    clsDbXml empty(m_settings);
    empty.SetDBFilename(path);
    empty.SaveDB();
    return !empty.HasUnsavedChanges();
}

namespace {

// Whether two paths name one file (a case-only change of the ID on a file
// system that ignores letter case gives the same file twice).
bool sameFile(const QString& a, const QString& b) {
    std::error_code error;
    return std::filesystem::equivalent(std::filesystem::path(a.toStdU16String()),
                                       std::filesystem::path(b.toStdU16String()), error);
}

} // namespace

QString SharedDatabases::ChangeOwnId(const QString& oldId, const QString& newId, clsDbXml* local) {
    if (DataFiles::CalDavMode(m_settings)) {
        // Nothing of the shared folder belongs to this mode; the next sync
        // publishes under the server account, whatever the ID.
        m_settings.sSet(QStringLiteral("Owner"), newId.trimmed());
        ReloadSharedSet();
        return {};
    }
    const QString folder = SharedFolder();
    const QString oldFile = AppPaths::JoinPath(folder, SharedFileName(oldId.trimmed()));
    const bool renamed = oldId.trimmed() != newId.trimmed() && OwnerId::Problem(oldId).isEmpty() &&
                         !OwnerId::Same(oldId, QStringLiteral("Not Set"));
    QString error;
    if (renamed) {
        const QString oldName = oldId.trimmed();
        const QString newName = newId.trimmed();
        if (!SharedUserList::Modify(
                UserListFile(),
                [&](const QStringList& names) {
                    return SharedUserList::WithRenamed(names, oldName, newName);
                },
                &error)) {
            error = QStringLiteral("The user list ") + UserListFile() +
                    QStringLiteral(" could not be changed (") + error +
                    QStringLiteral("), so it still names \"") + oldName + QStringLiteral("\".");
        }
    }
    m_settings.sSet(QStringLiteral("Owner"), newId.trimmed());
    if (local != nullptr) {
        AttachTo(*local);
        PublishSharedEvents(*local);
    }
    if (renamed && QFileInfo::exists(oldFile) &&
        !sameFile(oldFile, AppPaths::JoinPath(folder, SharedFileName(newId.trimmed())))) {
        Log().AddAction(QStringLiteral("Emptying ") + oldFile, QStringLiteral("ChangeOwnId"),
                        QStringLiteral("SharedDatabases"));
        if (!EmptySharedFile(oldId) && error.isEmpty()) {
            error = QStringLiteral("The old shared file ") + oldFile +
                    QStringLiteral(" could not be emptied.");
        }
    }
    return error;
}

QString SharedDatabases::StopSharing(const QString& ownId) {
    if (DataFiles::CalDavMode(m_settings)) {
        return {}; // nothing of this user lies in the shared folder
    }
    QString error;
    if (!SharedUserList::Modify(
            UserListFile(),
            [&](const QStringList& names) { return SharedUserList::WithRemoved(names, ownId); },
            &error)) {
        error = QStringLiteral("The user list ") + UserListFile() +
                QStringLiteral(" could not be changed (") + error + QStringLiteral(").");
    }
    if (OwnerId::Problem(ownId).isEmpty() && !EmptySharedFile(ownId) && error.isEmpty()) {
        error = QStringLiteral("Your shared file ") +
                AppPaths::JoinPath(SharedFolder(), SharedFileName(ownId.trimmed())) +
                QStringLiteral(" could not be emptied.");
    }
    Log().AddAction(QStringLiteral("Stopped sharing as ") + ownId, QStringLiteral("StopSharing"),
                    QStringLiteral("SharedDatabases"));
    return error;
}
