#pragma once

#include "shared/AtomicFile.h"
#include "shared/SettingValue.h"

#include <QHash>
#include <QList>
#include <QString>

#include <cstdint>

class UserDialogs;

// The file operations a settings save needs; the defaults are the real ones
// (AtomicFile). Tests replace them to simulate a full disk or a file that
// cannot be made writable.
class SettingsFileAccess {
public:
    virtual ~SettingsFileAccess() = default;
    virtual AtomicFile::Result Write(const QString& path, const QByteArray& bytes);
    virtual bool MakeWritable(const QString& path);
};

// The program's option store: an ordered list of named values, read from and
// written to a small text file with one "KEY,value" line each (Windows-1252,
// CR LF). Keys are found regardless of letter case and never contain commas.
// Values keep the type they were stored with, except that booleans are stored
// as the integers -1 and 0 and file values stay text (but "TRUE"/"FALSE"
// become -1/0 on load).
//
// A set is a numbered list kept in ordinary entries: S_1, S_2, ... with the
// last used number in S_INDEX (S upper-cased).
class cSHAREDSettings {
public:
    // dialogs asks the user about save failures (read-only file, full disk);
    // without it those questions are answered Cancel and only logged.
    explicit cSHAREDSettings(UserDialogs* dialogs = nullptr);

    // nullptr restores the real file operations. Not owned.
    void setFileAccess(SettingsFileAccess* access);

    int32_t SettingsCount() const { return static_cast<int32_t>(m_entries.size()); }

    // Adds or replaces; a boolean is stored as -1/0, commas leave the key, and
    // a replaced entry keeps its key spelling and position.
    void sSet(const QString& key, const SettingValue& v) { StoreSetting(key, v); }
    void StoreSetting(const QString& key, const SettingValue& v);
    // The stored value, or def when the key is absent. A text whose trimmed
    // content is TRUE or FALSE (any case) comes back as
    // a boolean.
    SettingValue sGet(const QString& key, const SettingValue& def = {}) const {
        return RetrieveSetting(key, def);
    }
    SettingValue RetrieveSetting(const QString& key, const SettingValue& def = {}) const;
    bool IsSettingPresent(const QString& key) const;

    void DeleteAllSettings();
    void DeleteSettingByName(const QString& key);

    // Writes every entry in order as "UPPERKEY,value" + CR LF, atomically.
    // A read-only file is made writable and saved; when that is impossible the
    // user is told and false comes back. A full disk asks Retry/Cancel; other
    // failures go to the error report. The old file stays intact on failure.
    bool SaveSettings(const QString& file);
    // Replaces the contents by the file's; a missing file leaves the store
    // empty. Lines without a comma or with a blank key are skipped.
    void LoadSettings(const QString& file);

    // The bytes SaveSettings writes.
    QByteArray FileBytes() const;

private:
    struct Entry {
        QString key;
        SettingValue value;
    };

    void AddSetting(const QString& key, SettingValue value);
    // Index into m_entries, or -1.
    qsizetype find(const QString& key) const;
    void removeAt(qsizetype index);
    // The lookup form of a key: commas removed, case folded.
    static QString lookupKey(const QString& key);

    UserDialogs* m_dialogs = nullptr;
    SettingsFileAccess* m_access = nullptr;
    QList<Entry> m_entries;
    QHash<QString, qsizetype> m_index; // lookupKey -> position in m_entries
};

// The drive a path lies on, for the disk-full question: the letter of a
// "C:\..." path, else the root of the file system holding it.
QString DriveOfPath(const QString& path);
