#pragma once

#include "app/AppContext.h"

#include <functional>

// The program's start-up steps after the single-instance check, in their
// order and with their log lines: a fresh log, the settings, the categories,
// the first-time setup, the database names, the one-time conversion of old
// files, the databases, the automatic backup. The main window comes after.
class StartUp {
public:
    // firstTimeOptions runs the first-time setup (its log line, the message and
    // the options window) when no owner is set; false = cancelled.
    StartUp(AppContext& app, std::function<bool(AppContext&)> firstTimeOptions);

    // The fresh log, the default alarm sound, the settings and categories.
    void LoadSettings();
    // Everything up to the main window. False when the first-time setup was
    // cancelled: the program ends without loading any database.
    bool Run();

    bool SilentStart() const { return m_silentStart; }

private:
    AppContext& m_app;
    std::function<bool(AppContext&)> m_firstTimeOptions;
    bool m_silentStart = false;
};
