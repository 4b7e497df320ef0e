#pragma once

#include "storage/clsDbXml.h"

#include <QString>
#include <QStringList>

class cSHAREDSettings;
class clsLayers;

// Networked mode's two databases besides the local one: the merged set of
// the other users' shared events, and the object that rewrites this user's
// own "Shared_" + owner + ".xml". Each shared file has one writer, its
// owner: nothing here writes a file named after anybody else.
// In the calendar-server mode (DataFiles::CalDavMode) the merged set is the
// server's cache file instead, and nothing here writes to the shared folder:
// publishing, changing the ID and stopping only touch the settings and the set.
class SharedDatabases {
public:
    SharedDatabases(cSHAREDSettings& settings, clsLayers& layers);

    // The merged set (networked, read-only).
    clsDbXml& SharedSet() { return m_sharedSet; }

    // Makes every SaveDB of local end by publishing its shared events.
    void AttachTo(clsDbXml& local);
    // Rewrites this user's shared file with the local events that are in
    // layer 0 or flagged shared and belong to this user (each given its
    // layer's name), then reloads the merged set.
    void PublishSharedEvents(const clsDbXml& local);
    // LoadMultiple of the user list file; in the calendar-server mode
    // LoadMergedFile of the cache file.
    void ReloadSharedSet();
    // Where ReloadSharedSet reads from: the user list file, or the cache file.
    QString MergedSource() const;

    // The setting "SharedDatapath".
    QString SharedFolder() const;
    // Whether the shared folder is set and can be reached now (a network
    // drive or a removable disk may be away for a while).
    bool SharedFolderReachable() const;

    // Saving the options with a changed ID (networked): the old name in the
    // user list becomes the new one, the Owner setting takes the new ID and
    // local's shared events are published under it, and then the old shared
    // file is emptied (header only), so the others always find the events
    // under exactly one listed name. "" on success, otherwise what failed.
    QString ChangeOwnId(const QString& oldId, const QString& newId, clsDbXml* local);
    // Leaving networked mode and no longer sharing: the ID is taken off the
    // user list and its shared file emptied (header only). "" on success.
    QString StopSharing(const QString& ownId);
    // Rewrites a user's shared file with the header only, when it exists.
    bool EmptySharedFile(const QString& id);
    // Shared folder + "TVOShared.ini".
    QString UserListFile() const;
    // Shared folder + "Shared_" + the setting "Owner" + ".xml".
    QString OwnSharedFile() const;

    // "Shared_" + owner + ".xml".
    static QString SharedFileName(const QString& owner);
    // The names of a user list file: lines trimmed, blank lines left out,
    // names that are no plain file-name part (OwnerId::IsPlainName) logged
    // and left out; an absent file is an empty list.
    static QStringList ReadUserList(const QString& listPath);
    // Whether a (trimmed) name of the list can name a shared file
    // (OwnerId::IsPlainName); logs the name when it cannot.
    static bool UsableListName(const QString& name);
    // Rewrites the list whole (atomically), each name followed by CR LF.
    static bool WriteUserList(const QString& listPath, const QStringList& names);

private:
    cSHAREDSettings& m_settings;
    clsLayers& m_layers;
    clsDbXml m_sharedSet;
    clsDbXml m_publish;
};
