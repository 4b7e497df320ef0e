#include "engine/CalDavAutoSync.h"

#include "engine/CalDavPassword.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

#include <QPointer>

CalDavAutoSync::CalDavAutoSync(cSHAREDSettings& settings, clsDbXml& events, SharedDatabases& shared,
                               QObject* parent)
    : QObject(parent), m_events(events), m_shared(shared),
      m_account(CalDavAccount::FromSettings(settings)), m_sync(settings) {
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, &CalDavAutoSync::startNow);
    connect(&m_sync, &CalDavSync::started, this, [this] {
        m_schedule.Started(Now());
        report();
    });
    connect(&m_sync, &CalDavSync::finished, this, [this](const CalDavSyncResult& result) {
        const QString line = m_schedule.Finished(result, Now());
        if (!line.isEmpty()) {
            Log().LogEvent(line);
        }
        // Nothing local is touched on a failure; the cache stays as the
        // last good sync left it.
        m_shared.ReloadSharedSet();
        emit sharedSetReloaded();
        report();
    });
}

CalDavAutoSync::~CalDavAutoSync() = default;

void CalDavAutoSync::AttachToEvents() {
    // The events database outlives this object, and may have been given
    // another publisher by then (the options changed the mode).
    m_events.setPublisher([self = QPointer<CalDavAutoSync>(this)](clsDbXml&) {
        if (self) {
            self->m_settle.start();
        }
    });
}

void CalDavAutoSync::Begin() {
    if (const QString problem = m_account.Problem(); !problem.isEmpty()) {
        m_schedule.Block(problem);
        Log().LogEvent(QStringLiteral("CalDAV sync off: ") + problem);
        report();
        return;
    }
    CalDavPassword::Read(m_account, this, [this](const QString& password, const QString& error) {
        m_passwordRead = true;
        if (!error.isEmpty()) {
            m_schedule.Block(error);
            Log().LogEvent(QStringLiteral("CalDAV sync off: ") + error);
            report();
            return;
        }
        m_password = password;
        startNow();
    });
}

void CalDavAutoSync::Tick() {
    if (m_passwordRead && m_schedule.TickWantsSync(Now())) {
        startNow();
    }
}

void CalDavAutoSync::startNow() {
    m_settle.stop();
    // A save before the password has come is covered by the first sync.
    if (m_passwordRead && !m_schedule.Blocked()) {
        m_sync.Start(m_events.Events(), m_password);
    }
}

void CalDavAutoSync::report() {
    const QString status = m_schedule.Status();
    if (status != m_shown) {
        m_shown = status;
        emit statusChanged(status);
    }
}
