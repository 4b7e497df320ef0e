#include "engine/RefreshTick.h"

#include "engine/clsReminder.h"
#include "shared/cSHAREDSettings.h"
#include "storage/clsDbXml.h"

RefreshTick::RefreshTick(ReminderServices& services, Hooks hooks)
    : m_services(services), m_hooks(std::move(hooks)) {}

void RefreshTick::TimerRefresh_Timer() {
    if (m_hooks.setTimerEnabled) {
        m_hooks.setTimerEnabled(false);
    }
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
    if (m_hooks.setTimerEnabled) {
        m_hooks.setTimerEnabled(true);
    }
}

void RefreshTick::markDaySeen() {
    m_day = static_cast<int16_t>(DayOf(Now()));
}
