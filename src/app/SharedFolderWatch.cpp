#include "app/SharedFolderWatch.h"

#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QStatusBar>

namespace {
// Changes come in bursts (a file is written, renamed into place, a lock
// file comes and goes); one refill after they settle.
constexpr int kSettleMs = 400;
} // namespace

SharedFolderWatch::SharedFolderWatch(SharedDatabases& shared, QStatusBar* statusBar,
                                     std::function<void()> refill, QObject* parent)
    : QObject(parent), m_shared(shared), m_refill(std::move(refill)) {
    // A widget of the status bar rather than a message: it stays while the
    // folder is away, also after a passing message (a push) has come and gone.
    m_notice = new QLabel(statusBar);
    m_notice->setObjectName(QStringLiteral("lblSharedFolder"));
    m_notice->hide();
    statusBar->addWidget(m_notice, 1);
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        if (m_refill) {
            m_refill();
        }
    });
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settle, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settle,
            qOverload<>(&QTimer::start));
}

void SharedFolderWatch::Update(bool networked) {
    const QString folder = networked ? m_shared.SharedFolder().trimmed() : QString();
    const bool away = !folder.isEmpty() && !m_shared.SharedFolderReachable();
    QStringList wanted;
    if (!folder.isEmpty() && !away) {
        wanted << QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
        if (QFileInfo::exists(m_shared.UserListFile())) {
            wanted << QDir::cleanPath(QFileInfo(m_shared.UserListFile()).absoluteFilePath());
        }
    }
    QStringList watched = m_watcher.files() + m_watcher.directories();
    for (const QString& path : std::as_const(watched)) {
        if (!wanted.contains(path)) {
            m_watcher.removePath(path);
        }
    }
    watched = m_watcher.files() + m_watcher.directories();
    for (const QString& path : std::as_const(wanted)) {
        if (!watched.contains(path)) {
            m_watcher.addPath(path);
        }
    }

    if (away && !m_away) {
        const QString text = QStringLiteral("The shared folder %1 cannot be reached. Other "
                                            "users' events will show again when it is back.")
                                 .arg(folder);
        Log().LogEvent(QStringLiteral("Shared folder unreachable: ") + folder);
        m_notice->setText(text);
        m_notice->show();
    } else if (!away && m_away) {
        Log().LogEvent(QStringLiteral("Shared folder reachable again: ") + folder);
        m_notice->hide();
    }
    m_away = away;
}
