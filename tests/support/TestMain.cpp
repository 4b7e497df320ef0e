// The main of every test program: a QApplication on the offscreen platform
// (window tests need one, core tests do not mind), a fixed English locale so
// nothing depends on the machine, and the global logger writing into a
// throw-away folder.
#include <QApplication>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include "shared/cSharedLogging.h"

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("TARVO_HOME", QFile::encodeName(home.path()));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    // Fix the log's place for the whole run, before any test moves TARVO_HOME.
    Log().LogEvent(QStringLiteral("Tests started"), true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
