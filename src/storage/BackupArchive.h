#pragma once

#include "shared/DateValue.h"

#include <QString>
#include <QStringList>

// The ZIP backups of the user's data files: one archive per weekday and kind
// in the home folder's "Autobackups", so a rolling week of archives is kept
// without any clean-up.

// The files a backup collects. Start-up and the main window fill it from the
// process-wide objects.
struct BackupSources {
    QString eventsDb;     // DBFilename of the local database ("Events.xml")
    QString expiredDb;    // DBFilename of the expired database ("Expired.xml")
    QString settingsFile; // "Tvo.ini"
    QString logFile;      // the logger's current file
    QString dataPath;     // the data folder, for "tasklist.xml"
};

// Kinds of backup, part of the archive name.
inline constexpr const char* kAutobackupKind = "Autobackup";
inline constexpr const char* kManualBackupKind = "Manual";

// The seven paths in archive order: the two databases, the settings, the log,
// the task list and the legacy ".dat" files of both databases.
QStringList BackupFileList(const BackupSources& sources);

// home + "Autobackups" + (short weekday name of the locale) + " " + kind + ".zip"
QString BackupArchivePath(const QString& kind, DateValue today);

// Writes the archive for today's weekday, replacing the one of a week ago, and
// logs "Backup to <archive> complete" or "... failed". Files that do not exist
// are left out. The data files themselves are only read. True on success; on
// failure reason (when given) receives why.
bool BackupDataToZip(const QString& kind, const BackupSources& sources, QString* reason = nullptr);
