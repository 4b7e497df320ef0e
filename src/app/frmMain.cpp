#include "app/frmMain.h"
#include "app/WindowFit.h"

#include "app/CalendarFileCommands.h"
#include "app/EventListModel.h"
#include "app/EventListView.h"
#include "app/SharedFolderWatch.h"
#include "app/frmRunner.h"
#include "app/platform/DBusNotifier.h"
#include "app/reminders/ReminderWindowFactory.h"
#include "engine/CalDavAutoSync.h"
#include "engine/clsReminder.h"
#include "shared/StatusNotices.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

// The first tick comes soon after start-up, then every 30 seconds.
constexpr int kFirstTickMs = 1500;

struct ToolButton {
    const char* key;
    const char* label;
    const char* tip;
    const char* theme;
    QStyle::StandardPixmap fallback;
};

// In the order they sit on the toolbar.
const ToolButton kButtons[] = {
    {"exit", "Exit", "End the program", "application-exit", QStyle::SP_DialogCloseButton},
    {"addevent", "Add", "Add a new event", "document-new", QStyle::SP_FileIcon},
    {"editevent", "Edit", "Edit selected event", "document-properties",
     QStyle::SP_FileDialogDetailedView},
    {"pushevent", "Push", "Change due date to NEXT occurrence", "go-next", QStyle::SP_ArrowForward},
    {"deleteevent", "Delete", "Delete selected event(s)", "edit-delete", QStyle::SP_TrashIcon},
    {"tasklist", "Tasks", "Show task list", "view-list-details", QStyle::SP_FileDialogListView},
    {"monthview", "Month", "Monthly Calendar", "x-office-calendar", QStyle::SP_FileDialogInfoView},
    {"editlayers", "Categories", "Edit category names", "folder", QStyle::SP_DirIcon},
    {"options", "Settings", "Settings", "preferences-system", QStyle::SP_ComputerIcon},
    {"refresh", "Refresh", "Refresh event list", "view-refresh", QStyle::SP_BrowserReload},
    {"log", "Log", "View program log", "text-x-generic", QStyle::SP_FileDialogContentsView},
    {"help", "Help", "Show help", "help-contents", QStyle::SP_DialogHelpButton},
};

// The desktop theme's icon, else the style's. Help is a question mark: the
// theme's question icon, else its help icon, else the bundled one (some
// themes draw help as a red and white life ring, which reads as Close).
QIcon toolbarIcon(const ToolButton& b) {
    const QString theme = QString::fromLatin1(b.theme);
    if (theme == QLatin1String("help-contents")) {
        // The drawing, and pictures of it for a Qt without its SVG plugin.
        QIcon bundled(QStringLiteral(":/icons/help.svg"));
        bundled.addFile(QStringLiteral(":/icons/help-24.png"));
        bundled.addFile(QStringLiteral(":/icons/help-48.png"));
        return QIcon::fromTheme(QStringLiteral("help-faq"), QIcon::fromTheme(theme, bundled));
    }
    return QIcon::fromTheme(theme, QApplication::style()->standardIcon(b.fallback));
}

} // namespace

frmMain::frmMain(AppContext& app, QWidget* parent)
    : QMainWindow(parent), m_app(app),
      m_windows(std::make_unique<ReminderWindowFactory>(app.settings, app.player)),
      m_services{app.settings, app.events, app.expired, nullptr,
                 *m_windows,   app.opener, app.dialogs} {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QString::fromLatin1(kTitle));
    setWindowIcon(QApplication::windowIcon());
    if (DataFiles::Networked(app.settings)) {
        m_services.shared = &app.shared.SharedSet();
    }
    auto* notifier = new DBusNotifier(QDBusConnection::sessionBus(), this);
    m_services.notifier = notifier;
    connect(notifier, &DBusNotifier::openRequested, this, [this] { showForward(); });
    m_tick = std::make_unique<RefreshTick>(
        m_services,
        RefreshTick::Hooks{[this](bool on) {
                               if (on) {
                                   m_refreshTimer.start(RefreshTick::IntervalMs());
                               } else {
                                   m_refreshTimer.stop();
                               }
                           },
                           [this] { FillEvents(); },
                           [this] { return m_app.settings.SaveSettings(m_app.settingsFile); }});
    m_refreshTimer.setObjectName(QStringLiteral("TimerRefresh"));
    connect(&m_refreshTimer, &QTimer::timeout, this, [this] { onRefreshTimer(); });

    // A change in the shared folder refills the list, unless a command has
    // the refresh stopped (the editor is open): its tick catches up later.
    m_folderWatch = new SharedFolderWatch(
        app.shared, statusBar(),
        [this] {
            if (m_refreshTimer.isActive()) {
                FillEvents();
            }
        },
        this);
    // The calendar server's state stays at the right, beside passing messages.
    m_calDavStatus = new QLabel(statusBar());
    m_calDavStatus->setObjectName(QStringLiteral("lblCalDav"));
    m_calDavStatus->hide();
    statusBar()->addPermanentWidget(m_calDavStatus);
    buildList();
    buildToolbar();
    buildMenus();
    buildTray();
    FillCategories();
    WindowFit::Apply(this, QSize(1180, 640));
}

frmMain::~frmMain() = default;

void frmMain::buildList() {
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* filters = new QHBoxLayout;
    m_showExpired = new QCheckBox(QStringLiteral("Show Expired"), central);
    m_showExpired->setObjectName(QStringLiteral("chkExpired"));
    m_showExpired->setToolTip(QStringLiteral("When ticked, expired events are shown too"));
    auto* show = new QLabel(QStringLiteral("Show:"), central);
    show->setObjectName(QStringLiteral("lbl_layers"));
    m_categories = new QComboBox(central);
    m_categories->setObjectName(QStringLiteral("cmbCategories"));
    m_categories->setToolTip(
        QStringLiteral("Filter out all events except those in the selected category"));
    m_categories->setMinimumContentsLength(18);
    show->setBuddy(m_categories);
    filters->addWidget(m_showExpired);
    filters->addSpacing(16);
    filters->addWidget(show);
    filters->addWidget(m_categories);
    filters->addStretch(1);
    layout->addLayout(filters);

    m_model = new EventListModel(m_app, this);
    m_list = new EventListView(m_model, central);
    layout->addWidget(m_list, 1);
    setCentralWidget(central);

    connect(m_list, &EventListView::doubleClicked, this, [this] { EditSelectedEvent(); });
    connect(m_list, &EventListView::openRequested, this, [this] { EditSelectedEvent(); });
    connect(m_list, &EventListView::rightClicked, this,
            [this](const QPoint& globalPos) { m_rightClick->popup(globalPos); });
    connect(m_showExpired, &QCheckBox::toggled, this, [this] { FillEvents(); });
    connect(m_categories, &QComboBox::activated, this, [this] { FillEvents(); });
}

QAction* frmMain::action(const QString& key) const {
    return findChild<QAction*>(key);
}

void frmMain::buildToolbar() {
    auto* bar = addToolBar(QStringLiteral("Toolbar"));
    bar->setObjectName(QStringLiteral("Toolbar1"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (const ToolButton& b : kButtons) {
        const QIcon icon = toolbarIcon(b);
        QAction* a = bar->addAction(icon, QString::fromLatin1(b.label));
        a->setObjectName(QString::fromLatin1(b.key));
        a->setToolTip(QString::fromLatin1(b.tip));
        const QString key = QString::fromLatin1(b.key);
        connect(a, &QAction::triggered, this, [this, key] { Toolbar1_ButtonClick(key); });
    }
    action(QStringLiteral("addevent"))->setShortcut(QKeySequence::New);
    action(QStringLiteral("deleteevent"))->setShortcut(QKeySequence::Delete);
    action(QStringLiteral("refresh"))->setShortcut(QKeySequence::Refresh);
    action(QStringLiteral("exit"))->setShortcut(QKeySequence::Quit);
    action(QStringLiteral("editevent"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    action(QStringLiteral("pushevent"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_P));
    action(QStringLiteral("monthview"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    action(QStringLiteral("tasklist"))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
}

void frmMain::buildMenus() {
    auto item = [this](QMenu* menu, const char* name, const QString& caption, auto slot) {
        QAction* a = menu->addAction(caption);
        a->setObjectName(QString::fromLatin1(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };

    m_trayMenu = new QMenu(QStringLiteral("Main"), this);
    m_trayMenu->setObjectName(QStringLiteral("mnuMain"));
    item(m_trayMenu, "mnuShow", QStringLiteral("Show"), [this] { showForward(); });
    item(m_trayMenu, "mnuExit", QStringLiteral("Quit"), [this] { Quit(); });

    m_settingMenu = new QMenu(QStringLiteral("SettingMenu"), this);
    m_settingMenu->setObjectName(QStringLiteral("mnuSettingMenu"));
    item(m_settingMenu, "mnuSettings", QStringLiteral("Settings"), [this] { EditOptions(); });
    item(m_settingMenu, "mnuBackup", QStringLiteral("Backup"), [this] { ManualBackup(); });
    m_settingMenu->addSeparator();
    item(m_settingMenu, "mnuViewBackups", QStringLiteral("View backups"),
         [this] { ViewBackups(); });
    m_settingMenu->addSeparator();
    item(m_settingMenu, "mnuCheckForUpdate", QStringLiteral("Check for Update"),
         [this] { CheckForUpdate(); });

    m_helpMenu = new QMenu(QStringLiteral("HelpMenu"), this);
    m_helpMenu->setObjectName(QStringLiteral("mnuHelpMenu"));
    // F1 belongs to this item only: the toolbar's Help button opens this menu.
    item(m_helpMenu, "mnuHelp", QStringLiteral("Help"), [this] {
        ShowHelp();
    })->setShortcut(QKeySequence::HelpContents);
    item(m_helpMenu, "mnuAbout", QStringLiteral("About TVO"), [this] { ShowAbout(); });

    m_rightClick = new QMenu(this);
    m_rightClick->setObjectName(QStringLiteral("mnuRightClick"));
    item(m_rightClick, "mnuFind", QStringLiteral("Find"), [this] {
        mnuFind_Click(0);
    })->setShortcut(QKeySequence::Find);
    item(m_rightClick, "mnuFindNext", QStringLiteral("Find Next"), [this] {
        mnuFind_Click(1);
    })->setShortcut(QKeySequence::FindNext);
    m_rightClick->addSeparator();
    item(m_rightClick, "mnuShareWith", QStringLiteral("Share with ..."), [this] { ShareWith(); });
    // Find and Find Next work from the keyboard anywhere in the window.
    addActions(m_rightClick->actions());

    // The usual menu bar, so every command is where a desktop user looks.
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    for (const char* key : {"addevent", "editevent", "pushevent", "deleteevent"}) {
        file->addAction(action(QString::fromLatin1(key)));
    }
    file->addSeparator();
    item(file, "mnuExportCalendar", QString::fromUtf8(CalendarFileCommands::kExportCaption),
         [this] { CalendarFileCommands::ExportToCalendar(m_app); });
    item(file, "mnuImportCalendar", QString::fromUtf8(CalendarFileCommands::kImportCaption),
         [this] {
             if (CalendarFileCommands::ImportFromCalendar(m_app)) {
                 FillCategories();
                 FillEvents();
             }
         });
    file->addSeparator();
    file->addAction(action(QStringLiteral("exit")));
    buildEditMenu();
    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    view->addAction(action(QStringLiteral("monthview")));
    view->addAction(action(QStringLiteral("tasklist")));
    view->addAction(action(QStringLiteral("refresh")));
    view->addSeparator();
    view->addAction(findChild<QAction*>(QStringLiteral("mnuFind")));
    view->addAction(findChild<QAction*>(QStringLiteral("mnuFindNext")));
    QMenu* tools = menuBar()->addMenu(QStringLiteral("&Tools"));
    tools->addAction(action(QStringLiteral("editlayers")));
    tools->addActions(m_settingMenu->actions());
    tools->addSeparator();
    tools->addAction(action(QStringLiteral("log")));
    menuBar()->addMenu(m_helpMenu)->setText(QStringLiteral("&Help"));
}

void frmMain::buildTray() {
    m_tray = new QSystemTrayIcon(QApplication::windowIcon(), this);
    m_tray->setObjectName(QStringLiteral("TrayIcon"));
    m_tray->setToolTip(QStringLiteral("Double-click to open"));
    m_tray->setContextMenu(m_trayMenu);
    connect(m_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::DoubleClick || reason == QSystemTrayIcon::Trigger) {
                    showForward();
                } else if (reason != QSystemTrayIcon::Context) {
                    Log().AddAction(QStringLiteral("&H") +
                                        QString::number(static_cast<int>(reason), 16).toUpper() +
                                        QStringLiteral(" in 'mousemove' untrapped"),
                                    QStringLiteral("TrayIcon_MouseMove"),
                                    QStringLiteral("frmMain"));
                }
            });
}

bool frmMain::trayAvailable() const {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void frmMain::FormLoad(bool silentStart, std::unique_ptr<QLocalServer> channel) {
    m_runner = new frmRunner(std::move(channel), this);
    m_runner->hide();
    connect(m_runner, &frmRunner::commandReceived, this, [this] { Runner_ShowWindow(); });
    m_runner->setRequestHandler([this](const QByteArray& request) {
        const QByteArray reply = CalendarFileCommands::HandleRequest(m_app, request);
        FillCategories();
        FillEvents();
        return reply;
    });

    Log().LogEvent(QStringLiteral("Copying layer names into main form"));
    FillCategories();
    // Before the day's reminders move any passed event on.
    m_tick->ShowMissedSinceLastRun();
    Log().LogEvent(QStringLiteral("Displaying Reminders"));
    ShowReminders(m_services);
    m_tick->markDaySeen(); // the first tick need not show them again
    Log().LogEvent(QStringLiteral("Filling events"));
    FillEvents();
    showNotices();
    // The other users' events are on the list from the cache already; the
    // first sync brings them up to date.
    StartCalDav();

    Log().LogEvent(QStringLiteral("Setting main window width and height"));
    const bool maximise = RestoreWindowSize();

    Log().LogEvent(QStringLiteral("Displaying system tray icon"));
    if (trayAvailable()) {
        m_tray->show();
    } else {
        Log().LogEvent(QStringLiteral(
            "No system tray on this desktop: closing the window hides it; start Tarvo again "
            "to bring it back"));
    }
    if (!silentStart || !trayAvailable()) {
        maximise ? showMaximized() : show();
    }
    QTimer::singleShot(kFirstTickMs, this, [this] { onRefreshTimer(); });
}

void frmMain::onRefreshTimer() {
    m_tick->TimerRefresh_Timer();
    if (m_calDav != nullptr) {
        m_calDav->Tick();
    }
    showNotices();
}

void frmMain::showNotices() {
    const QStringList notices = StatusNotices::Take();
    if (!notices.isEmpty()) {
        statusBar()->showMessage(notices.join(QStringLiteral(" \u2014 ")), kNoticeMs);
    }
}

bool frmMain::RestoreWindowSize() {
    const cSHAREDSettings& settings = m_app.settings;
    const int width = settings.sGet(QStringLiteral("MainWindowWidth")).toInt();
    const int height = settings.sGet(QStringLiteral("MainWindowHeight")).toInt();
    const QRect screen = QApplication::primaryScreen() != nullptr
                             ? QApplication::primaryScreen()->availableGeometry()
                             : QRect(0, 0, 1280, 800);
    if (width > 0 && height > 0) {
        // A size saved on a larger monitor is shrunk to this one.
        WindowFit::Apply(this, QSize(width, height));
    }
    // A size that fills nine tenths of the screen both ways opens maximised,
    // as does a window that was maximised when the program ended.
    return settings.sGet(QStringLiteral("MainWindowMaximised"), false).toBool() ||
           (width > screen.width() * 9 / 10 && height > screen.height() * 9 / 10);
}

void frmMain::SaveWindowSize() {
    if (isMinimized()) {
        return;
    }
    // A maximised window keeps the size it had before, to go back to.
    const QSize normal = isMaximized() ? normalGeometry().size() : size();
    if (normal.isValid()) {
        m_app.settings.sSet(QStringLiteral("MainWindowWidth"),
                            static_cast<int32_t>(normal.width()));
        m_app.settings.sSet(QStringLiteral("MainWindowHeight"),
                            static_cast<int32_t>(normal.height()));
    }
    m_app.settings.sSet(QStringLiteral("MainWindowMaximised"), isMaximized());
}

void frmMain::FillCategories() {
    // The chosen filter survives new names; the first filling shows all.
    const int previous = m_categories->currentIndex();
    m_categories->clear();
    for (int i = 0; i < clsLayers::kCount; ++i) {
        m_categories->addItem(m_app.layers.Layer(i).trimmed(), i);
    }
    m_categories->setCurrentIndex(previous >= 0 ? previous : clsLayers::kAllCategories);
}

int frmMain::currentLayer() const {
    return m_categories->currentIndex() < 0 ? clsLayers::kAllCategories
                                            : m_categories->currentData().toInt();
}

void frmMain::FillEvents() {
    // Keeps the selected position, as the list always has.
    m_list->FillEvents(currentLayer(), m_showExpired->isChecked());
    m_folderWatch->Update(DataFiles::Networked(m_app.settings) &&
                          !DataFiles::CalDavMode(m_app.settings));
}

void frmMain::StartCalDav() {
    delete m_calDav;
    m_calDav = nullptr;
    const bool on = DataFiles::CalDavMode(m_app.settings);
    m_calDavStatus->clear();
    m_calDavStatus->setVisible(on);
    if (!on) {
        return;
    }
    m_calDav = new CalDavAutoSync(m_app.settings, m_app.events, m_app.shared, this);
    connect(m_calDav, &CalDavAutoSync::statusChanged, m_calDavStatus, &QLabel::setText);
    // As a change in the shared folder does: not while a command has the
    // refresh stopped (the editor is open); its tick catches up later.
    connect(m_calDav, &CalDavAutoSync::sharedSetReloaded, this, [this] {
        if (m_refreshTimer.isActive()) {
            FillEvents();
        }
    });
    m_calDav->AttachToEvents();
    m_calDav->Begin();
}

QList<EventCommands::ListRow> frmMain::SelectedRows() const {
    QList<EventCommands::ListRow> out;
    for (int row : m_list->selectedRows()) {
        out.append(m_model->listRow(row));
    }
    return out;
}

int frmMain::SelectedRow() const {
    return m_list->selectedRow();
}

void frmMain::SelectRow(int row) {
    m_list->selectRow(row);
}

void frmMain::showForward() {
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    raise();
    activateWindow();
}

void frmMain::Runner_ShowWindow() {
    if (isVisible() && !isMinimized()) {
        Log().LogEvent(QStringLiteral("Main window visible - doing nothing"));
    } else {
        Log().LogEvent(QStringLiteral("Main window NOT visible - showing it"));
    }
    showForward();
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (!m_quitting) {
        // The close box hides the window; the program goes on in the tray.
        event->ignore();
        hide();
        if (!trayAvailable()) {
            Log().LogEvent(QStringLiteral("Main window hidden; no system tray to show it from"));
        }
        return;
    }
    SaveWindowSize();
    event->accept();
}

void frmMain::Quit() {
    m_quitting = true;
    m_refreshTimer.stop();
    close();
    m_tray->hide();
    // Every change to the events was saved when it was made; one whose save
    // failed gets a last try (the file may be writable again). The settings
    // (the window size among them) are written now.
    for (clsDbXml* db : {&m_app.events, &m_app.expired}) {
        if (db->HasUnsavedChanges()) {
            db->SaveDB();
        }
    }
    m_app.settings.SaveSettings(m_app.settingsFile);
    Log().LogEvent(QStringLiteral("TVO ending"));
    Log().WriteActionsToLog();
    QApplication::quit();
}
