#pragma once

#include "engine/IReminderWindow.h"

class ISoundPlayer;
class cSHAREDSettings;

// Makes real reminder windows (frmReminder) for the engine.
class ReminderWindowFactory : public IReminderWindowFactory {
public:
    ReminderWindowFactory(cSHAREDSettings& settings, ISoundPlayer& player);
    IReminderWindow* CreateReminderWindow() override;

private:
    cSHAREDSettings& m_settings;
    ISoundPlayer& m_player;
};
