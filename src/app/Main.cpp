#include "app/Main.h"

#include "shared/AppInfo.h"
#include "shared/AppPaths.h"
#include "shared/Clock.h"
#include "shared/cSharedLogging.h"

#include <QApplication>
#include <QIcon>
#include <QTextStream>

int Main(QApplication& app) {
    QApplication::setApplicationName(AppInfo::Title());
    QApplication::setApplicationVersion(AppInfo::VersionText());
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/tarvo.png")));

    QTextStream err(stderr);
    if (!Clock::initFromEnvironment()) {
        err << "Ignoring " << Clock::kEnvironmentVariable << "=\""
            << qEnvironmentVariable(Clock::kEnvironmentVariable)
            << "\": expected \"YYYY-MM-DD HH:MM\".\n";
    }

    // Each run begins a fresh log.
    Log().LogEvent(QStringLiteral("TVO Startup"), true);

    QTextStream out(stdout);
    out << AppInfo::Title() << ' ' << AppInfo::VersionText() << ": start-up reached the log ("
        << Log().CurrentLogFilename() << ").\n"
        << "There is no main window yet; the program ends here.\n";
    Log().WriteActionsToLog();
    Q_UNUSED(app);
    return 0;
}
