#include "app/dialogs/clsOptions2.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"

clsOptions2::clsOptions2(cSHAREDSettings& settings, QString settingsFile, QString localEventFile)
    : m_settings(settings), m_settingsFile(std::move(settingsFile)),
      m_localEventFile(std::move(localEventFile)) {}

QString clsOptions2::FolderPart(const QString& path) {
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return cut < 0 ? QString() : path.left(cut + 1);
}

QString clsOptions2::WithSeparator(const QString& path) {
    if (path.trimmed().isEmpty() || path.endsWith(QLatin1Char('/')) ||
        path.endsWith(QLatin1Char('\\'))) {
        return path;
    }
    const bool backslashes = path.contains(QLatin1Char('\\')) && !path.contains(QLatin1Char('/'));
    return path + (backslashes ? QLatin1Char('\\') : QLatin1Char('/'));
}

QString clsOptions2::DefaultAlarmFile() {
    return AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("alarm.wav"));
}

void clsOptions2::LoadOptions() {
    m_settings.LoadSettings(m_settingsFile);
    const QString dataFolder = DataFiles::DataFolder(m_settings);
    const QString localFolder =
        m_localEventFile.isEmpty() ? dataFolder : FolderPart(m_localEventFile);
    m_owner = m_settings.sGet(QStringLiteral("Owner"), QStringLiteral("Not Set")).toText();
    m_sharedDBFilename =
        WithSeparator(m_settings.sGet(QStringLiteral("SharedDataPath"), localFolder).toText()) +
        SharedDatabases::SharedFileName(m_owner);
    m_dateStyle = m_settings.sGet(QStringLiteral("DateStyle"), 1).toInt16();
    m_networked = m_settings.sGet(QStringLiteral("Networked"), false).toBool();
    m_wavFile = m_settings.sGet(QStringLiteral("WavFile"), DefaultAlarmFile()).toText();
    m_noSounds = m_settings.sGet(QStringLiteral("NoSounds"), false).toBool();
    m_datapath = dataFolder;
}

bool clsOptions2::SaveOptions() {
    m_settings.sSet(QStringLiteral("SharedDatapath"), FolderPart(m_sharedDBFilename));
    m_settings.sSet(QStringLiteral("Owner"), m_owner);
    m_settings.sSet(QStringLiteral("DateStyle"), static_cast<int32_t>(m_dateStyle));
    m_settings.sSet(QStringLiteral("Networked"), m_networked);
    m_settings.sSet(QStringLiteral("WavFile"), m_wavFile);
    m_settings.sSet(QStringLiteral("NoSounds"), m_noSounds);
    m_settings.sSet(QStringLiteral("DataPath"), DataFiles::DataPathValue(m_datapath));
    return m_settings.SaveSettings(m_settingsFile);
}
