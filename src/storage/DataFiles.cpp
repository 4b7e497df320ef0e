#include "storage/DataFiles.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

namespace DataFiles {

QString DataFolder(const cSHAREDSettings& settings) {
    const QString folder = settings.sGet(QStringLiteral("DataPath")).toText().trimmed();
    return folder.isEmpty() ? AppPaths::HomeFolder() : folder;
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
        shared.AttachTo(events);
    } else {
        events.setPublisher({});
    }
}

} // namespace DataFiles
