#include "storage/MonthViewEvents.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"

MonthViewEvents::MonthViewEvents(cSHAREDSettings& settings, clsLayers* layers)
    : m_settings(settings), m_local(settings, layers), m_shared(settings, layers) {}

bool MonthViewEvents::Networked() const {
    return m_settings.sGet(QStringLiteral("Networked"), SettingValue(false)).toBool();
}

void MonthViewEvents::Load(const QString& eventsFile) {
    m_local.LoadDB(eventsFile);
    if (DataFiles::CalDavMode(m_settings)) {
        m_shared.LoadMergedFile(DataFiles::CalDavCacheFile(m_settings));
        return;
    }
    const QString folder =
        m_settings.sGet(QStringLiteral("SharedDatapath"), SettingValue(QString()))
            .toText()
            .trimmed();
    if (folder.isEmpty()) {
        m_shared.LoadMultiple(QString());
        return;
    }
    m_shared.LoadMultiple(AppPaths::JoinPath(folder, QStringLiteral("TVOShared.ini")));
}

QList<EventPtr> MonthViewEvents::Events() const {
    QList<EventPtr> all = m_local.Events();
    all.append(m_shared.Events());
    return all;
}
