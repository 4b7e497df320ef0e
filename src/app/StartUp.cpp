#include "app/StartUp.h"

#include "app/AppBackup.h"

#include "shared/AppPaths.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/BackupArchive.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDB2.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "storage/clsSounds.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>

StartUp::StartUp(AppContext& app, std::function<bool(AppContext&)> firstTimeOptions)
    : m_app(app), m_firstTimeOptions(std::move(firstTimeOptions)) {}

void StartUp::LoadSettings() {
    Log().LogEvent(QStringLiteral("TVO Startup"), true);
    // The default alarm sound is on disk before anything looks for it (the
    // first-time options refuse a sound file that does not exist).
    WriteDefaultAlarmWav(AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("alarm.wav")));
    m_app.settings.LoadSettings(m_app.settingsFile);
    Log().LogEvent(QStringLiteral("Options loaded"));
    DataFiles::AdoptDataFolder(m_app.settings);
    m_silentStart = m_app.settings.sGet(QStringLiteral("SilentStart"), false).toBool();
    Log().LogEvent(QStringLiteral("Loading category names"));
    m_app.layers.LoadLayers();
}

bool StartUp::Run() {
    cSHAREDSettings& settings = m_app.settings;
    LoadSettings();

    if (settings.sGet(QStringLiteral("Owner"), QStringLiteral("Not Set")).toText() ==
        QLatin1String("Not Set")) {
        if (!m_firstTimeOptions || !m_firstTimeOptions(m_app)) {
            Log().LogEvent(QStringLiteral("First time setup cancelled"));
            return false;
        }
        m_silentStart = settings.sGet(QStringLiteral("SilentStart"), false).toBool();
    }

    Log().LogEvent(QStringLiteral("Shared DB file: ") + m_app.shared.OwnSharedFile());
    Log().LogEvent(QStringLiteral("DB file: ") + DataFiles::EventsFile(settings));
    Log().LogEvent(QStringLiteral("Expired DB file: ") + DataFiles::ExpiredFile(settings));

    Log().LogEvent(QStringLiteral("Loading local events"));
    ConvertLegacyDatabases(DataFiles::DataFolder(settings), settings, m_app.layers, m_app.dialogs);
    DataFiles::LoadDatabases(settings, m_app.events, m_app.expired, m_app.shared, true);

    if (settings.sGet(QStringLiteral("NoAutoBackups"), false).toBool()) {
        Log().LogEvent(QStringLiteral("Autobackups disabled"));
    } else {
        BackUpData(m_app, QString::fromLatin1(kAutobackupKind));
        Log().LogEvent(QStringLiteral("Data automatically zipped to Autobackups folder in ") +
                       AppPaths::HomeFolder());
    }
    return true;
}

StartUp::FirstStartTraces::FirstStartTraces()
    : m_home(AppPaths::HomeFolderPath()), m_homeExisted(QFileInfo::exists(m_home)) {
    for (const char* name : {"log.txt", "alarm.wav"}) {
        const QString file = AppPaths::JoinPath(m_home, QString::fromLatin1(name));
        if (!QFileInfo::exists(file)) {
            m_newFiles.append(file);
        }
    }
}

void StartUp::FirstStartTraces::RemoveNew() const {
    for (const QString& file : m_newFiles) {
        QFile::remove(file);
    }
    if (!m_homeExisted) {
        QDir().rmdir(m_home); // only when nothing else is in it
    }
}
