#include "storage/DataFiles.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

#include <QDir>
#include <QFileInfo>

namespace DataFiles {

namespace {

const QString kDataPath = QStringLiteral("DataPath");

// folder relative to home ("." for home itself), or "" when it lies outside.
QString RelativeToHome(const QString& folder, const QString& home) {
    const QString rel = QDir(home).relativeFilePath(QDir::cleanPath(folder));
    if (rel.isEmpty() || rel == QStringLiteral(".")) {
        return QStringLiteral(".");
    }
    if (rel == QStringLiteral("..") || rel.startsWith(QStringLiteral("../")) ||
        QDir::isAbsolutePath(rel)) {
        return {};
    }
    return QDir::toNativeSeparators(rel);
}

bool HoldsEvents(const QString& folder) {
    return QFileInfo::exists(AppPaths::JoinPath(
        folder, AppPaths::FindCaseInsensitive(folder, QStringLiteral("Events.xml"))));
}

// For an absolute data folder of another home: the same place beside this
// home, or "" when there is none.
QString MovedDataFolder(const QString& oldFolder, const QString& home) {
    const QString homeName = QFileInfo(home).fileName();
    const QStringList parts =
        QDir::cleanPath(QDir::fromNativeSeparators(oldFolder)).split(QLatin1Char('/'));
    for (qsizetype k = parts.size() - 1; k >= 0; --k) {
        if (homeName.isEmpty() || parts.at(k).compare(homeName, Qt::CaseInsensitive) != 0) {
            continue;
        }
        const QString rest = parts.mid(k + 1).join(QLatin1Char('/'));
        const QString candidate = rest.isEmpty() ? home : QDir(home).filePath(rest);
        const QString oldHome = parts.mid(0, k + 1).join(QLatin1Char('/'));
        const bool oldGone = !QFileInfo::exists(oldFolder);
        const bool oldWasAHome =
            QFileInfo::exists(QDir(oldHome).filePath(QStringLiteral("Tvo.ini")));
        if (HoldsEvents(candidate) && (oldGone || oldWasAHome) &&
            QDir::cleanPath(oldHome) != QDir::cleanPath(QDir::fromNativeSeparators(home))) {
            return candidate;
        }
        return {};
    }
    return {};
}

} // namespace

QString DataFolder(const cSHAREDSettings& settings) {
    const QString folder = settings.sGet(kDataPath).toText().trimmed();
    if (folder.isEmpty()) {
        return AppPaths::HomeFolder();
    }
    if (QDir::isRelativePath(folder)) {
        return QDir::toNativeSeparators(
            QDir::cleanPath(QDir(AppPaths::HomeFolder()).filePath(folder)));
    }
    return folder;
}

QString DataPathValue(const QString& folder) {
    const QString trimmed = folder.trimmed();
    if (trimmed.isEmpty()) {
        return trimmed;
    }
    const QString home = AppPaths::HomeFolder();
    const QString absolute = QDir(home).absoluteFilePath(trimmed);
    const QString rel = RelativeToHome(absolute, home);
    return rel.isEmpty() ? QDir::toNativeSeparators(QDir::cleanPath(absolute)) : rel;
}

void AdoptDataFolder(cSHAREDSettings& settings) {
    const QString value = settings.sGet(kDataPath).toText().trimmed();
    if (value.isEmpty() || QDir::isRelativePath(value)) {
        return;
    }
    const QString home = AppPaths::HomeFolder();
    QString adopted = RelativeToHome(value, home);
    if (adopted.isEmpty()) {
        const QString moved = MovedDataFolder(value, home);
        if (moved.isEmpty()) {
            return; // a data folder outside the home stays where it is
        }
        adopted = RelativeToHome(moved, home);
        Log().LogEvent(QStringLiteral("Data folder ") + value +
                       QStringLiteral(" belongs to an earlier place of the home folder; using ") +
                       moved);
    }
    settings.sSet(kDataPath, SettingValue(adopted));
}

QString EventsFile(const cSHAREDSettings& settings) {
    return AppPaths::JoinPath(DataFolder(settings), QStringLiteral("Events.xml"));
}

QString ExpiredFile(const cSHAREDSettings& settings) {
    return AppPaths::JoinPath(DataFolder(settings), QStringLiteral("Expired.xml"));
}

bool Networked(const cSHAREDSettings& settings) {
    return settings.sGet(QStringLiteral("Networked"), false).toBool();
}

bool CalDavMode(const cSHAREDSettings& settings) {
    return Networked(settings) && settings.sGet(QStringLiteral("NetworkMode"), QString())
                                          .toText()
                                          .trimmed()
                                          .compare(QLatin1String("caldav"), Qt::CaseInsensitive) == 0;
}

QString CalDavCacheFile(const cSHAREDSettings& settings) {
    return AppPaths::JoinPath(DataFolder(settings), QStringLiteral("CalDAVShared.xml"));
}

QString CalDavStateFile(const cSHAREDSettings& settings) {
    return AppPaths::JoinPath(DataFolder(settings), QStringLiteral("CalDAVState.json"));
}

namespace {

// Loads db from path, unless db holds changes to that very file that could
// not be saved: reading the file would throw them away.
void Reload(clsDbXml& db, const QString& path) {
    if (db.HasUnsavedChanges() && db.DBFilename() == path) {
        Log().AddAction(QStringLiteral("Not reloading ") + path +
                            QStringLiteral(": it holds changes that could not be saved yet"),
                        QStringLiteral("LoadDatabases"), QStringLiteral("DataFiles"));
        return;
    }
    db.SetDBFilename(path);
    db.LoadDB(path);
}

} // namespace

void LoadDatabases(cSHAREDSettings& settings, clsDbXml& events, clsDbXml& expired,
                   SharedDatabases& shared, bool logProgress) {
    auto progress = [logProgress](const char* text) {
        if (logProgress) {
            Log().LogEvent(QString::fromLatin1(text));
        }
    };
    const bool networked = Networked(settings);
    // The user's own files load as in single-user mode: the filter for events
    // shared with named people and the mapping of layer names belong to the
    // other users' files only. Applied here they would drop an own event
    // shared with someone else and move own events between layers.
    events.setNetworked(false);
    Reload(events, EventsFile(settings));
    progress("Local events loaded");
    progress("Loading expired events");
    expired.setNetworked(false);
    Reload(expired, ExpiredFile(settings));
    progress("Expired events loaded");
    if (networked) {
        shared.SharedSet().setNetworked(true);
        shared.ReloadSharedSet();
    }
    if (networked && !CalDavMode(settings)) {
        shared.AttachTo(events);
    } else {
        // In the calendar-server mode the caller attaches the publisher that
        // starts a sync; the folder's publisher must not stay on.
        events.setPublisher({});
    }
}

} // namespace DataFiles
