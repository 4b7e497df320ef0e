#pragma once

#include "app/AppContext.h"
#include "engine/EventCommands.h"
#include "engine/RefreshTick.h"
#include "engine/ReminderServices.h"

#include <QLocalServer>
#include <QMainWindow>
#include <QTimer>

#include <functional>
#include <memory>

class EventListModel;
class EventListView;
class QAction;
class QCheckBox;
class QComboBox;

class QMenu;
class QSystemTrayIcon;
class QUndoStack;
class EventChangeCommand;
class ReminderWindowFactory;
class frmRunner;

// The main window: the event list with its category filter, the toolbar and
// menus with every command, the tray icon, and the timers that drive the
// reminders. Closing it with the close box hides it in the tray; the program
// goes on running until Quit.
class frmMain : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMain(AppContext& app, QWidget* parent = nullptr);
    ~frmMain() override;

    // The start-up part of loading: the runner on the channel that start-up
    // claimed (none in tests), categories, reminders, the list, the saved
    // size; shows the window unless silentStart. Starts the timers.
    void FormLoad(bool silentStart, std::unique_ptr<QLocalServer> channel = nullptr);

    // Rebuilds the list with the current category filter, keeping the
    // selected position.
    void FillEvents();
    // Shows the notices the core posted (StatusNotices) in the status bar.
    void showNotices();
    static constexpr int kNoticeMs = 60000;
    // Another copy of the program asked this one to come forward.
    void Runner_ShowWindow();

    // The toolbar's dispatch by key.
    void Toolbar1_ButtonClick(const QString& key);
    void AddEvent();
    void EditSelectedEvent();
    void PushSelectedEvent();
    void DeleteSelectedEvents();
    void Tasklist();
    void MonthView();
    void EditLayers();
    void EditOptions();
    // The options window left CalDAV mode and the user chose to stop
    // sharing: takes back what this user published, without waiting; the
    // outcome goes to the status bar.
    void StopCalDavSharing();
    void ManualBackup();
    void ViewBackups();
    void CheckForUpdate();
    void ShowHelp();
    // Networked mode through a calendar server: (re)starts the syncing for
    // the settings now stored, or stops it in any other mode.
    void StartCalDav();
    void ShowAbout();
    void ViewLog();
    // index 0 = Find, 1 = Find Next.
    void mnuFind_Click(int index);
    void ShareWith();
    // Saves and ends the program (the tray's Quit, the toolbar's exit).
    void Quit();

    EventListModel& model() { return *m_model; }
    EventListView& list() { return *m_list; }
    QTimer& refreshTimer() { return m_refreshTimer; }
    // Undo and redo of the changes made from this window (frmMainHistory.cpp).
    QUndoStack& history() { return *m_history; }
    // The rows selected, in list order.
    QList<EventCommands::ListRow> SelectedRows() const;
    int SelectedRow() const;
    void SelectRow(int row);
    bool trayAvailable() const;

    static constexpr const char* kTitle = "Tarvo 2 - Quillmere Software";

signals:
    // The options were saved: databases and lists have been reloaded.
    void optionsReloaded();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildList();
    void buildToolbar();
    void buildMenus();
    void buildTray();
    void FillCategories();
    // The saved size (and maximised state); true when the window is to open
    // maximised. Saving keeps the normal size of a maximised window.
    bool RestoreWindowSize();
    void SaveWindowSize();
    int currentLayer() const;
    void ReloadDatabases();
    // The refresh timer's work: the tick, the calendar server's, notices.
    void onRefreshTimer();
    void showForward();
    bool guard(const QString& refusal);
    QAction* action(const QString& key) const;
    // Pops menu up below the toolbar button of key.
    void popupUnderButton(QMenu* menu, const QString& key);
    // The Edit menu with Undo and Redo, after the File menu.
    void buildEditMenu();
    // Pushes a change that was just made onto the history (unless it
    // changed nothing).
    void record(EventChangeCommand* command);
    // Refills after an undo or redo and selects the events it touched.
    void historyStepDone(const QList<EventPtr>& touched, bool applied);
    std::function<void(const QList<EventPtr>&, bool)> stepDone();

    AppContext& m_app;
    std::unique_ptr<ReminderWindowFactory> m_windows;
    ReminderServices m_services;
    std::unique_ptr<RefreshTick> m_tick;
    QTimer m_refreshTimer;
    frmRunner* m_runner = nullptr;
    EventListModel* m_model = nullptr;
    EventListView* m_list = nullptr;
    QCheckBox* m_showExpired = nullptr;
    QComboBox* m_categories = nullptr;
    QMenu* m_trayMenu = nullptr;
    QMenu* m_settingMenu = nullptr;
    QMenu* m_helpMenu = nullptr;
    QMenu* m_rightClick = nullptr;
    QSystemTrayIcon* m_tray = nullptr;
    QUndoStack* m_history = nullptr;
    class SharedFolderWatch* m_folderWatch = nullptr;
    class CalDavAutoSync* m_calDav = nullptr;
    class QLabel* m_calDavStatus = nullptr;
    QString m_searchTerm;
    bool m_quitting = false;
};
