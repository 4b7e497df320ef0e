#include "engine/CalDavSync.h"

#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"

#include <QTimer>

// Placeholder until the protocol work lands: every sync fails at once.
struct CalDavSync::Impl {};

QString CalDavSyncResult::Summary() const {
    return QStringLiteral("Published %1, removed %2; read %3 users, %4 events")
        .arg(published)
        .arg(removed)
        .arg(usersRead)
        .arg(eventsRead);
}

CalDavSync::CalDavSync(cSHAREDSettings& settings, QObject* parent)
    : QObject(parent), m_settings(settings) {}

CalDavSync::~CalDavSync() = default;

void CalDavSync::Start(const QList<EventPtr>& /*localEvents*/, const QString& /*password*/) {
    emit started();
    QTimer::singleShot(0, this, [this] {
        CalDavSyncResult result;
        result.unreachable = true;
        result.error = QStringLiteral("CalDAV sync is not available yet.");
        emit finished(result);
    });
}

bool CalDavSync::Running() const { return false; }

void CalDavSync::TestConnection(const CalDavAccount& /*account*/, const QString& /*password*/,
                                std::function<void(bool, const QString&)> done) {
    QTimer::singleShot(0, this, [done] { done(false, QStringLiteral("Not available yet.")); });
}

QString CalDavSync::CacheFile(const cSHAREDSettings& settings) {
    return DataFiles::CalDavCacheFile(settings);
}

QString CalDavSync::StateFile(const cSHAREDSettings& settings) {
    return DataFiles::CalDavStateFile(settings);
}
