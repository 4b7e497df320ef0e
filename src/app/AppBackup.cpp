#include "app/AppBackup.h"

#include "app/AppContext.h"
#include "shared/cSharedLogging.h"
#include "storage/BackupArchive.h"
#include "storage/DataFiles.h"
#include "storage/clsDbXml.h"

bool BackUpData(AppContext& app, const QString& kind, QString* reason) {
    const BackupSources sources{app.events.DBFilename(), app.expired.DBFilename(), app.settingsFile,
                                Log().CurrentLogFilename(), DataFiles::DataFolder(app.settings)};
    return BackupDataToZip(kind, sources, reason);
}
