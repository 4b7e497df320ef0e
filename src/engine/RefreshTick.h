#pragma once

#include "engine/FiredAlarms.h"
#include "engine/ReminderServices.h"
#include "shared/DateValue.h"

#include <cstdint>
#include <functional>

// The logic of the main window's 30-second refresh timer, kept apart from the
// window so that it runs and is tested with a settable clock and no window.
// On the first tick and the first tick of each new day it shows the day's
// reminders and refills the event list; otherwise, in networked mode, it
// refills the list when the shared files changed. Alarms are checked on every
// tick, so a tick at least once a minute is needed for every alarm to fire.
// Minutes that no tick saw are caught up: when the wall clock jumped forward
// by more than kGapMinutes since the previous tick, or at start-up since the
// last run (the "LastRun" setting, kept at every tick's minute), the alarms
// that fell in between are listed in a "MISSED" window (MissedAlarms).
// tick, so a tick at least once a minute is needed for every alarm to fire;
// each alarm is raised once in its minute, however many ticks see it.
class RefreshTick {
public:
    struct Hooks {
        // Switches the driving timer off for the tick and on again after it.
        std::function<void(bool)> setTimerEnabled;
        // Refills the main window's event list for the selected category.
        std::function<void()> refillList;
        // Writes the settings file (for the last-run minute); false when it
        // could not be written.
        std::function<bool()> saveSettings;
    };

    RefreshTick(ReminderServices& services, Hooks hooks);

    void TimerRefresh_Timer();

    // Records today as seen, for when the day's reminders were just shown
    // another way (the main window's start-up), so the next tick does not
    // show them a second time.
    void markDaySeen();

    // At start-up: the alarms missed since the last run, at most
    // MissedAlarms::kMaxDays back; the next tick measures its gap from now.
    void ShowMissedSinceLastRun();

    // Day of the month seen at the last tick (0 before the first one).
    int16_t storedDay() const { return m_day; }

    static constexpr int kIntervalMs = 30000;
    // kIntervalMs, or the milliseconds in the environment variable
    // TARVO_REFRESH_MS (100 at least), so that tests of several running
    // copies need not wait half a minute for each other.
    static int IntervalMs();
    static constexpr int kGapMinutes = 2;

private:
    // Stores the minute of now as "LastRun" when it changed, and saves.
    void RememberLastRun(DateValue now);

    ReminderServices& m_services;
    Hooks m_hooks;
    int16_t m_day = 0;
    DateValue m_lastTick = 0; // 0 before the first tick
    bool m_lastRunUnsaved = false;
    FiredAlarms m_fired;
};
