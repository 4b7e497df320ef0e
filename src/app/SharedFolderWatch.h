#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

class QLabel;
class QStatusBar;
class SharedDatabases;

// Networked mode's eye on the shared folder: watches the folder and its user
// list so that another user's change, or the folder coming back after a
// network drive or a removable disk was away, refills the list soon rather
// than at the next refresh tick; and says in the status bar, once, while the
// folder cannot be reached. The refresh tick's change detection stays the
// fallback (a watch on a folder that went away is dropped by the system).
class SharedFolderWatch : public QObject {
    Q_OBJECT
public:
    // refill: called (a moment after a burst of changes) to reload the list.
    SharedFolderWatch(SharedDatabases& shared, QStatusBar* statusBar, std::function<void()> refill,
                      QObject* parent = nullptr);

    // After every fill of the list: watches what is there to watch, and
    // updates the status bar when the folder went away or came back.
    // networked false stops watching and clears the message.
    void Update(bool networked);

private:
    SharedDatabases& m_shared;
    QLabel* m_notice; // in the status bar, shown while the folder is away
    std::function<void()> m_refill;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    bool m_away = false;
};
