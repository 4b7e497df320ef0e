#pragma once

#include "engine/CalDavSchedule.h"
#include "engine/CalDavSync.h"

#include <QObject>
#include <QString>
#include <QTimer>

class cSHAREDSettings;
class clsDbXml;
class SharedDatabases;

// Networked mode through a calendar server, as the desktop runs it: reads
// the password once, syncs after start-up, after saves of the events
// database and on the refresh tick (CalDavSchedule decides), loads the
// other users' events again after each sync, and keeps a status line. The
// window connects its timer, list and status bar to it and nothing more.
class CalDavAutoSync : public QObject {
    Q_OBJECT
public:
    CalDavAutoSync(cSHAREDSettings& settings, clsDbXml& events, SharedDatabases& shared,
                   QObject* parent = nullptr);
    ~CalDavAutoSync() override;

    // Makes every save of the events database start a sync, a burst of
    // saves within kSettleMs giving one (in place of the shared folder's
    // publishing).
    void AttachToEvents();
    // Reads the password, then syncs once. Without a usable account or
    // password nothing syncs and the status says why.
    void Begin();
    // The refresh tick: a sync when the last one started a minute ago.
    void Tick();

    QString Status() const { return m_schedule.Status(); }
    CalDavSync& Sync() { return m_sync; }

    static constexpr int kSettleMs = 1000;

signals:
    void statusChanged(const QString& text);
    // A sync finished and the other users' events were loaded again.
    void sharedSetReloaded();

private:
    void startNow();
    void report();

    clsDbXml& m_events;
    SharedDatabases& m_shared;
    CalDavAccount m_account;
    CalDavSchedule m_schedule;
    CalDavSync m_sync;
    QTimer m_settle;
    QString m_password;
    bool m_passwordRead = false;
    QString m_shown;
};
