#include "engine/CalDavSchedule.h"

#include "engine/CalDavSync.h"

void CalDavSchedule::Block(const QString& why) {
    m_blocked = why;
}

bool CalDavSchedule::TickWantsSync(DateValue now) const {
    return !Blocked() && !m_running && (m_lastStart == 0 || now - m_lastStart >= kTickGapDays);
}

void CalDavSchedule::Started(DateValue now) {
    m_running = true;
    m_lastStart = now;
}

QString CalDavSchedule::Finished(const CalDavSyncResult& result, DateValue now) {
    m_running = false;
    const Outcome before = m_outcome;
    if (result.ok) {
        m_outcome = Outcome::Synced;
        m_since = now;
        m_error.clear();
        if (before == Outcome::Unreachable || before == Outcome::Failed) {
            return QStringLiteral("CalDAV sync works again: ") + result.Summary();
        }
        return result.published + result.removed > 0 || before == Outcome::None
                   ? QStringLiteral("CalDAV sync: ") + result.Summary()
                   : QString();
    }
    if (result.unreachable) {
        if (before != Outcome::Unreachable) {
            m_since = now;
        }
        m_outcome = Outcome::Unreachable;
    } else {
        m_outcome = Outcome::Failed;
    }
    if (result.error == m_error && before == m_outcome) {
        return {};
    }
    m_error = result.error;
    return (m_outcome == Outcome::Unreachable ? QStringLiteral("CalDAV server unreachable: ")
                                              : QStringLiteral("CalDAV sync failed: ")) +
           result.error;
}

QString CalDavSchedule::Status() const {
    if (Blocked()) {
        return m_blocked;
    }
    switch (m_outcome) {
    case Outcome::Unreachable:
        return QStringLiteral("Server unreachable since %1, working offline")
            .arg(FormatHM(m_since));
    case Outcome::Failed:
        return QStringLiteral("CalDAV sync failed: ") + m_error;
    case Outcome::Synced:
        if (!m_running) {
            return QStringLiteral("Synced ") + FormatHM(m_since);
        }
        break;
    case Outcome::None:
        if (!m_running) {
            return {};
        }
        break;
    }
    return QStringLiteral("Syncing with the CalDAV server\u2026");
}
