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
    events.SetDBFilename(EventsFile(settings));
    events.LoadDB(events.DBFilename());
    progress("Local events loaded");
    progress("Loading expired events");
    expired.setNetworked(false);
    expired.SetDBFilename(ExpiredFile(settings));
    expired.LoadDB(expired.DBFilename());
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
