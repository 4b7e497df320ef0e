#pragma once

#include "shared/DateValue.h"

#include <QString>

struct CalDavSyncResult;

// When the desktop syncs with the calendar server, and what it says about
// it. Kept apart from timers and windows so that it runs with a settable
// clock: every call is given the moment it happens.
//
// A sync runs once after start-up, after every save of the events (the
// caller gathers a burst of saves into one), and on the refresh tick when
// the last one started at least a minute ago. The status line says
// "Syncing with the CalDAV server…", then "Synced HH:MM", or "Server
// unreachable since HH:MM, working offline" with the time of the first
// failure in a row, or the server's answer to a sync that failed. A failure
// is logged once, not at every retry, until the answer changes or a sync
// succeeds; retries keep the failure in the status line rather than
// flashing "Syncing…" each minute.
class CalDavSchedule {
public:
    // Why no sync can run (no usable account, no password): shown as the
    // status from then on (a new schedule starts with a new account).
    void Block(const QString& why);
    bool Blocked() const { return !m_blocked.isEmpty(); }

    // Whether the refresh tick at now is to start a sync.
    bool TickWantsSync(DateValue now) const;

    void Started(DateValue now);
    // Takes a sync's result; returns the line to log ("" when there is
    // nothing new to say).
    QString Finished(const CalDavSyncResult& result, DateValue now);

    bool Running() const { return m_running; }
    QString Status() const;

    // A little under a minute (less a millisecond for rounding), so that
    // ticks a minute apart never skip one.
    static constexpr double kTickGapDays = 58.999 / 86400.0;

private:
    enum class Outcome { None, Synced, Unreachable, Failed };

    QString m_blocked;
    bool m_running = false;
    DateValue m_lastStart = 0; // 0 before the first sync
    DateValue m_since = 0;     // synced at, or unreachable since
    Outcome m_outcome = Outcome::None;
    QString m_error; // the failure last logged
};
