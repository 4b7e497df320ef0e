#include "storage/BackupArchive.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDZipFiles.h"
#include "shared/cSharedLogging.h"
#include "storage/LegacyFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

namespace {
const QString kProc = QStringLiteral("BackupDataToZip");
const QString kModule = QStringLiteral("modTVO");
} // namespace

QStringList BackupFileList(const BackupSources& sources) {
    return {
        sources.eventsDb,
        sources.expiredDb,
        sources.settingsFile,
        sources.logFile,
        AppPaths::JoinPath(sources.dataPath, QStringLiteral("tasklist.xml")),
        LegacyFiles::DatPathFor(sources.eventsDb),
        LegacyFiles::DatPathFor(sources.expiredDb),
    };
}

QString BackupArchivePath(const QString& kind, DateValue today) {
    const QString folder =
        AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("Autobackups"));
    const QString weekday = QLocale().dayName(ToQDate(today).dayOfWeek(), QLocale::ShortFormat);
    return AppPaths::JoinPath(folder, weekday + QLatin1Char(' ') + kind + QStringLiteral(".zip"));
}

bool BackupDataToZip(const QString& kind, const BackupSources& sources, QString* reason) {
    const QString archive = BackupArchivePath(kind, TodayDate());
    cSHAREDZipFiles zip;
    zip.setZipFileName(archive);
    for (const QString& path : BackupFileList(sources)) {
        if (!path.isEmpty() && !zip.AddFile(path)) {
            // Two settings naming the same file: it goes in once.
            Log().AddAction(zip.GetLastMessage() + QStringLiteral(": ") + path, kProc, kModule);
        }
    }
    QString why;
    if (const QString folder = QFileInfo(archive).path(); !QDir().mkpath(folder)) {
        why = QStringLiteral("Unable to create the folder ") + folder;
    } else if (!zip.MakeZipFile()) {
        why = zip.GetLastMessage();
    }
    const bool ok = why.isEmpty();
    if (!ok) {
        Log().AddAction(why, kProc, kModule);
        if (reason != nullptr) {
            *reason = why;
        }
    }
    Log().LogEvent(QStringLiteral("Backup to ") + archive +
                   (ok ? QStringLiteral(" complete") : QStringLiteral(" failed")));
    return ok;
}
