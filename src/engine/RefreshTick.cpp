#include "engine/RefreshTick.h"

#include "engine/MissedAlarms.h"
#include "engine/clsReminder.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"

RefreshTick::RefreshTick(ReminderServices& services, Hooks hooks)
    : m_services(services), m_hooks(std::move(hooks)) {}

void RefreshTick::TimerRefresh_Timer() {
    if (m_hooks.setTimerEnabled) {
        m_hooks.setTimerEnabled(false);
    }
    const DateValue now = Now();
    // Before the day's pass moves any event on, so their alarms are found.
    if (m_lastTick > 0 && now - m_lastTick > kGapMinutes / 1440.0) {
        MissedAlarms::Show(m_services, m_lastTick, now, QString::fromLatin1(MissedAlarms::kAsleep));
    }
    m_lastTick = now;
    const auto day = static_cast<int16_t>(DayOf(Now()));
    if (day != m_day) {
        m_day = day;
        ShowReminders(m_services);
        if (m_hooks.refillList) {
            m_hooks.refillList();
        }
    } else if (m_services.settings.sGet(QStringLiteral("Networked"), false).toBool() &&
               m_services.shared != nullptr && m_services.shared->DatabaseChanged()) {
        if (m_hooks.refillList) {
            m_hooks.refillList();
        }
    }
    CheckAlarms(m_services, &m_fired);
    RememberLastRun(now);
    if (m_hooks.setTimerEnabled) {
        m_hooks.setTimerEnabled(true);
    }
}

void RefreshTick::ShowMissedSinceLastRun() {
    const DateValue now = Now();
    const std::optional<DateValue> last =
        ParseDateValue(m_services.settings.sGet(QStringLiteral("LastRun"), QString()).toText());
    if (last) {
        MissedAlarms::Show(m_services, *last, now, QString::fromLatin1(MissedAlarms::kNotRunning));
    }
    m_lastTick = now;
}

void RefreshTick::RememberLastRun(DateValue now) {
    const QString minute = FormatYMDHM(now);
    if (m_lastRunUnsaved ||
        m_services.settings.sGet(QStringLiteral("LastRun"), QString()).toText() == minute) {
        return;
    }
    m_services.settings.sSet(QStringLiteral("LastRun"), minute);
    // One failure is reported (by the save itself) and then saving stops,
    // rather than asking the user again every minute.
    if (m_hooks.saveSettings && !m_hooks.saveSettings()) {
        m_lastRunUnsaved = true;
        Log().AddAction(QStringLiteral("The last-run time cannot be saved"),
                        QStringLiteral("TimerRefresh_Timer"), QStringLiteral("frmMain"));
    }
}

int RefreshTick::IntervalMs() {
    bool ok = false;
    const int ms = qEnvironmentVariableIntValue("TARVO_REFRESH_MS", &ok);
    return ok && ms >= 100 ? ms : kIntervalMs;
}

void RefreshTick::markDaySeen() {
    m_day = static_cast<int16_t>(DayOf(Now()));
}
