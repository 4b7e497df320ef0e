// The main of every test program: a fixed English locale so nothing depends on
// the machine, and the global logger writing into a throw-away folder. Window
// tests get a QApplication on the offscreen platform; the core's tests run
// under a bare QCoreApplication, which proves they need no display.
#ifdef TARVO_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "shared/cSharedLogging.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("TARVO_HOME", QFile::encodeName(home.path()));
    // Nothing a test does reaches the user's own desktop: the login entry
    // goes to a throw-away folder (each TempHome has its own), and
    // notifications to a bus that does not exist.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/config")));
    qputenv("DBUS_SESSION_BUS_ADDRESS", QFile::encodeName(QStringLiteral("unix:path=") +
                                                          home.path() + QStringLiteral("/no-bus")));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    TestApplication app(argc, argv);
    // Fix the log's place for the whole run, before any test moves TARVO_HOME.
    Log().LogEvent(QStringLiteral("Tests started"), true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
