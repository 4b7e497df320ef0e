#pragma once

#include "app/AppContext.h"

#include <QStringList>

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

    // What a start may create before the first-time setup is accepted (the
    // home folder, its log and the default alarm sound), noted before
    // anything is written, so that a cancelled first start takes away what
    // it made and leaves the disk as it found it.
    class FirstStartTraces {
    public:
        FirstStartTraces();
        void RemoveNew() const;

    private:
        QString m_home;
        bool m_homeExisted;
        QStringList m_newFiles;
    };

private:
    AppContext& m_app;
    std::function<bool(AppContext&)> m_firstTimeOptions;
    bool m_silentStart = false;
};
