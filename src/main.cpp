#include "app/CommandLineMain.h"
#include "app/WindowsLauncher.h"

#include <QCoreApplication>

// The command line runs here without loading the window libraries; the
// windows run in tarvo-gui, which replaces this process.
int main(int argc, char* argv[]) {
    if (IsCommandLine(argc, argv)) {
        QCoreApplication app(argc, argv);
        return RunCommandLine(app);
    }
    return LaunchWindows(argc, argv);
}
