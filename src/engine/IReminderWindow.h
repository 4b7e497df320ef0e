#pragma once

#include <QString>

// What the reminder engine asks of a reminder window. The engine never sees a
// real window: frmReminder implements this, tests use a recording fake.
// A window is created hidden, shows itself at its first timer tick, and lives
// on after the engine pass that filled it.
class IReminderWindow {
public:
    virtual ~IReminderWindow() = default;

    virtual void ClearList() = 0;
    // Adds a line; the window orders lines by the day count in them.
    virtual void AddToList(const QString& text) = 0;
    // Sets the heading label and the window caption.
    virtual void Heading(const QString& text) = 0;
    // Sets the window caption only (the heading with its date, after Heading).
    virtual void Caption(const QString& text) = 0;
    // Whether the window plays a sound when it comes up, and which file (a
    // file that does not exist, empty included, means the default sound).
    virtual void setSoundFlag(bool on) = 0;
    virtual void setSoundFile(const QString& path) = 0;
    // The sound plays only when the window first comes up, not again at
    // each of its repeats (a catch-up list, not a live alarm).
    virtual void setSoundOnce(bool once) = 0;
    // Keeps the window above all others (alarms).
    virtual void MakeTopmost() = 0;
    // Closes the window for good; used for windows that received no line.
    virtual void Unload() = 0;
};

// Makes new, hidden reminder windows; each engine pass asks for its own.
class IReminderWindowFactory {
public:
    virtual ~IReminderWindowFactory() = default;
    // The window stays owned by the windowing side (it deletes itself when
    // unloaded); the engine only keeps the pointer for the pass.
    virtual IReminderWindow* CreateReminderWindow() = 0;
};
