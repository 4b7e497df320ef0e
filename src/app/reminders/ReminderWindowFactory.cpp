#include "app/reminders/ReminderWindowFactory.h"

#include "app/reminders/frmReminder.h"

ReminderWindowFactory::ReminderWindowFactory(cSHAREDSettings& settings, ISoundPlayer& player)
    : m_settings(settings), m_player(player) {}

IReminderWindow* ReminderWindowFactory::CreateReminderWindow() {
    return new frmReminder(m_settings, m_player); // deletes itself when closed or unloaded
}
