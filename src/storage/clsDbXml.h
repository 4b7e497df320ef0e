#pragma once

#include "model/clsEvent.h"
#include "shared/AtomicFile.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

class cSHAREDSettings;
class clsLayers;

// One event database: an ordered in-memory list of events bound to one file
// ("Events.xml", "Expired.xml" or a user's "Shared_" + owner + ".xml"), with
// whole-file load and save, store/replace by ID code, delete by flag, and
// change detection by the file's time stamp. In networked mode the same class
// holds the merged set of other users' shared files (LoadMultiple).
//
// Saves are atomic: the file is written beside the old one and then put in
// its place, so an interrupted save leaves the previous file whole.
class clsDbXml {
public:
    // settings: read for "Owner" and the shared folder. layers: used in
    // networked mode to map an event's SharedLayerName to a local layer.
    explicit clsDbXml(cSHAREDSettings& settings, clsLayers* layers = nullptr);
    ~clsDbXml();
    clsDbXml(const clsDbXml&) = delete;
    clsDbXml& operator=(const clsDbXml&) = delete;

    void SetDBFilename(const QString& path);
    QString DBFilename() const { return m_fileName; }

    // Whether the file (or, for a merged set, any of its files or the user
    // list itself) has a time stamp other than the one recorded at the last
    // load or save. A file that was missing then counts as changed as soon as
    // it exists, so a shared folder that comes back is read again.
    bool DatabaseChanged() const;
    // Reads path into the list (emptied first unless append). Owner "Single"
    // or empty becomes the current owner; deleted records are left out; in
    // networked mode events shared only with others are left out and layers
    // are mapped by name. An absent or unreadable file gives no records. A
    // damaged file (see DamagedFile) gives the events that could be read, and
    // the first save that would replace it keeps a copy of it first.
    void LoadDB(const QString& path, bool append = false);
    // Rewrites DBFilename from the list, leaving out deleted records; a file
    // that already holds exactly those bytes is left alone (not even its time
    // stamp changes). A read-only file is made writable first. When the file still cannot be
    // written it is left as it is, the failure is logged and told to the user
    // once (SaveFailures), and the list keeps the changes for a later save.
    void SaveDB();
    // Whether the last save of the list failed (until a save or a load).
    bool HasUnsavedChanges() const { return m_unsaved; }
    // Objects in the list, deleted-marked ones included.
    int32_t RecordCount() const { return static_cast<int32_t>(m_events.size()); }
    // Marks the record deleted (it stays in the list until the next load) and saves.
    void DeleteRecord(const QString& idCode);
    // The list's own object with that ID code, or null.
    EventPtr ReadEvent(const QString& idCode) const;
    // Appends the event. An empty ID code or asNew gives it a fresh code;
    // otherwise a record with the same code is taken out first, so an edited
    // record moves to the end. Does not save.
    void StoreRecord(const EventPtr& event, bool asNew = false);

    // For undo: takes this object out of the list (false when it is not in
    // it) and puts an object back at a position (clamped to the list), both
    // without saving.
    bool TakeRecord(const EventPtr& event);
    void InsertRecord(qsizetype index, const EventPtr& event);
    // Counts the times the list was emptied (a load replaces it): objects
    // taken from the list before a newer count are no longer in it.
    quint64 ListGeneration() const { return m_generation; }

    // Owner maintenance (names compared trimmed, case ignored), each saving.
    void SetAllToSingleUser();
    void RenameOwner(const QString& oldOwner, const QString& newOwner);
    // Builds the merged set from the user list file "TVOShared.ini": every
    // other user's "Shared_" + name + ".xml" in the shared folder, in list
    // order; DBFilename becomes this user's own shared file (never written
    // here: the set is read-only). A file over FileLimits::kMaxSharedFileBytes
    // (or a user list over kMaxUserListBytes) is left out, logged and posted
    // to the status bar once.
    void LoadMultiple(const QString& listPath);
    // Builds the merged set from one file that already holds every other
    // user's shared events (the calendar server's cache), with the same
    // filter and layer mapping; DBFilename becomes that file, which is never
    // written here. DatabaseChanged follows its time stamp; a missing file
    // gives an empty set.
    void LoadMergedFile(const QString& path);

    // Networked mode changes how LoadDB filters and maps layers.
    bool Networked() const { return m_networked; }
    void setNetworked(bool on) { m_networked = on; }
    // When a publisher is set, SaveDB ends by calling it with this database
    // (the user's shared events are then rewritten; see SharedDatabases).
    void setPublisher(std::function<void(clsDbXml&)> publisher) {
        m_publisher = std::move(publisher);
    }
    bool Publishing() const { return static_cast<bool>(m_publisher); }
    bool IsMergedSet() const { return m_mergedSet; }
    // The files of a merged set, in list order.
    QStringList SharedFiles() const { return m_sharedFiles; }

    // The list, in order (for windows and the reminder engine).
    const QList<EventPtr>& Events() const { return m_events; }

    // The current user's name: the setting "Owner", "Not Set" when absent.
    QString CurrentOwner() const;

    static constexpr const char* kReadOnlyMessage = "Output file readonly. Unable to write events.";

private:
    QString RandomIDCode() const;
    QString NewIDCode() const;
    int32_t FindRecordIndex(const QString& idCode) const; // 0-based; -1 when none
    void append(const EventPtr& event);
    void removeAt(qsizetype index);
    void clearList();
    void adjustLoaded(clsEvent& event, const QString& owner);
    static qint64 fileStamp(const QString& path);
    // Before a save replaces a file loaded damaged: its copy, once. False
    // when the copy could not be made, and then the file must stay.
    bool keepDamagedCopy();
    static AtomicFile::Result damagedCopyFailed();
    // A shared file over limit bytes: logged and posted once while it stays so.
    void refuseLarge(const QString& file, qint64 limit);

    cSHAREDSettings& m_settings;
    clsLayers* m_layers;
    QList<EventPtr> m_events;
    // How many listed events carry each ID code, so lookups and the check of
    // a fresh code need no walk of the list. An event may sit in two lists
    // at once (an expiring event is stored into the expired list before the
    // events list deletes it), so a code given by one database can make
    // another one's index stale: every code is given through
    // AssignNewIDCode, which counts the codes given in the process; an index
    // built before the latest one is rebuilt on its next use. Built on first
    // need after a load, so loads that are only read never pay for it.
    const QHash<QString, int>& idIndex() const;
    bool indexCurrent() const;
    void AssignNewIDCode(clsEvent& event);
    mutable QHash<QString, int> m_idCounts;
    mutable bool m_indexValid = true;
    mutable quint64 m_indexGeneration = 0;
    static quint64 s_codesGiven; // ID codes given so far, by any database
    QString m_fileName;
    qint64 m_stamp = 0;           // ms since the epoch; 0 = file absent
    QStringList m_sharedFiles;    // merged set: files in list order
    QList<qint64> m_sharedStamps; // and their stamps when loaded (0 = absent)
    QString m_listFile;           // merged set: the user list it was built from
    qint64 m_listStamp = 0;       // and its stamp then (0 = absent or unreachable)
    bool m_mergedSet = false;
    quint64 m_generation = 0;
    bool m_unsaved = false;
    QString m_damagedFile;   // loaded damaged, not yet copied
    QSet<QString> m_refused; // merged set: files refused for their size
    bool m_networked = false;
    std::function<void(clsDbXml&)> m_publisher;
};
