#include "app/WindowsLauncher.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>

#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_WIN
constexpr const char* kGuiName = "tarvo-gui.exe";
#else
constexpr const char* kGuiName = "tarvo-gui";
#endif

QString executableFolder(const char* argv0) {
#ifdef Q_OS_LINUX
    const QString self = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    if (!self.isEmpty()) {
        return QFileInfo(self).absolutePath();
    }
#endif
    return QFileInfo(QString::fromLocal8Bit(argv0)).absolutePath();
}

} // namespace

int LaunchWindows([[maybe_unused]] int argc, char** argv) {
    const QDir folder(executableFolder(argv[0]));
    QString gui;
    for (const QString& candidate :
         {folder.filePath(QString::fromLatin1(kGuiName)),
          folder.filePath(QStringLiteral("../libexec/tarvo/") + QString::fromLatin1(kGuiName))}) {
        if (QFileInfo(candidate).isExecutable()) {
            gui = QDir::cleanPath(candidate);
            break;
        }
    }
    if (gui.isEmpty()) {
        std::fprintf(stderr, "Tarvo's window program (%s) is missing beside %s.\n", kGuiName,
                     qPrintable(folder.absolutePath()));
        return 2;
    }
#ifdef Q_OS_UNIX
    const QByteArray path = QFile::encodeName(gui);
    argv[0] = const_cast<char*>(path.constData());
    execv(path.constData(), argv);
    std::perror("tarvo-gui");
    return 2;
#else
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    return QProcess::execute(gui, arguments);
#endif
}
