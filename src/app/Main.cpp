#include "app/Main.h"

#include "app/AppContext.h"
#include "app/QuitOnSignal.h"
#include "app/SingleInstance.h"
#include "app/StartUp.h"
#include "app/dialogs/ErrorReportWindowSink.h"
#include "app/dialogs/frmOptions.h"
#include "app/frmMain.h"
#include "app/platform/QtFileOpener.h"
#include "app/platform/QtSoundPlayer.h"
#include "app/platform/QtUserDialogs.h"
#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/AppResources.h"
#include "shared/Clock.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"

#include <QApplication>
#include <QIcon>
#include <QLocalServer>
#include <QTextStream>

int Main(QApplication& app) {
    QApplication::setApplicationName(AppInfo::Title()); // names the home folder
    QApplication::setApplicationVersion(AppInfo::VersionText());
    // The menu entry's name, so that desktops match windows to it.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.example.tarvo"));

    // One copy per user and home folder, claimed before anything else, so
    // that a copy started while this one is still starting (first-time
    // options open, a large file loading) wakes this one and ends.
    const StartUp::FirstStartTraces traces; // before anything is written
    SingleInstance::Claimed instance = SingleInstance::Claim(QStringLiteral("SHOW"));
    if (instance.handedOver) {
        return 0;
    }

    AppResources::Init();
    QApplication::setWindowIcon(QIcon(QString::fromLatin1(AppResources::kIcon)));
    QApplication::setQuitOnLastWindowClosed(false); // the tray keeps the program alive

    if (!Clock::initFromEnvironment()) {
        QTextStream(stderr) << "Ignoring " << Clock::kEnvironmentVariable
                            << ": expected \"YYYY-MM-DD HH:MM\".\n";
    }

    QtUserDialogs dialogs;
    ErrorReportWindowSink errorReports(dialogs); // errors the user must see open the report window
    cSHAREDSettings settings(&dialogs);
    clsLayers layers(settings);
    clsDbXml events(settings, &layers);
    clsDbXml expired(settings, &layers);
    SharedDatabases shared(settings, layers);
    // Other users' category names take only slots free of this user's events.
    layers.setOwnEventsTest([&events, &expired](int layer) {
        for (const clsDbXml* db : {&events, &expired}) {
            for (const EventPtr& e : db->Events()) {
                if (!e->Deleted && e->Layer() == layer) {
                    return true;
                }
            }
        }
        return false;
    });
    QtFileOpener opener;
    QtSoundPlayer player;
    AppContext context{
        settings, AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("Tvo.ini")),
        layers,   events,
        expired,  shared,
        dialogs,  opener,
        player};

    StartUp startUp(context, [](AppContext& c) { return frmOptions::RunFirstTimeSetup(c); });
    if (!startUp.Run()) {
        // The first-time setup was cancelled: nothing of this start stays.
        traces.RemoveNew();
        return 0;
    }

    Log().LogEvent(QStringLiteral("Loading main form"));
    frmMain window(context);
    dialogs.setParentWidget(&window);
    window.FormLoad(startUp.SilentStart(), std::move(instance.server));
    QuitOnSignal([&window] { window.Quit(); });
    const int code = app.exec();
    Log().WriteActionsToLog();
    return code;
}
