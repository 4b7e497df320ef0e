#pragma once

#include "engine/ReminderServices.h"

#include <QString>

class FiredAlarms;
class clsEvent;
class IReminderWindow;

// One pass of the reminder engine: rolls past events forward or moves them
// out, lists what is due today and what is coming up within its warning
// days, and raises the alarms of the current minute. Each pass gets its own
// windows; a window that receives no line is closed at the end of the pass,
// so only windows with content come up. Windows outlive the pass.
class clsReminder {
public:
    explicit clsReminder(ReminderServices& services);

    // Recurring events whose due date has passed move to their next date;
    // past one-off events leave the events database. Both databases are saved.
    void UpdateAllEvents();
    // UpdateAllEvents, then the "COMING UP" and "TODAY!" windows.
    void DisplayReminders();
    // The "ALARM!" window for the events of db whose alarm minute is now, and
    // the files of due run-a-file events (only the user's own: a file named
    // by another user's shared event is never opened here). With fired, an
    // alarm already raised in this minute is not raised again.
    void DisplayAlarms(clsDbXml& db, FiredAlarms* fired = nullptr);

private:
    IReminderWindow& todayWindow();
    IReminderWindow& comingUpWindow();

    ReminderServices& m_services;
    IReminderWindow* m_today = nullptr;
    IReminderWindow* m_comingUp = nullptr;
};

// The engine's entry points for the main window.
// A new pass that shows the day's reminders.
void ShowReminders(ReminderServices& services);
// A new pass that raises this minute's alarms: the events database, then in
// networked mode the shared database. fired: see DisplayAlarms.
void CheckAlarms(ReminderServices& services, FiredAlarms* fired = nullptr);
// Deletes an event on the user's command. In networked mode only the owner
// may: anyone else is told who can. True when the event was deleted.
bool DeleteEvent(ReminderServices& services, const QString& idCode);

// Why the user may not delete this event of the events database: in
// networked mode, when another user owns it; "" when the user may.
QString DeleteOwnerRefusal(const cSHAREDSettings& settings, const clsEvent& e);
bool DeleteExpiredEvent(ReminderServices& services, const QString& idCode);
