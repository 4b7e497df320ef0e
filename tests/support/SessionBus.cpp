#include "support/SessionBus.h"

#include "support/TestSupport.h"

#include <QFile>
#include <QProcess>

QString StartSessionBus(QProcess& daemon, const QString& folder) {
    const QString config = folder + QStringLiteral("/bus.conf");
    WriteFileBytes(config,
                   "<busconfig><type>session</type><listen>unix:dir=" + QFile::encodeName(folder) +
                       "</listen><policy context=\"default\"><allow send_destination=\"*\""
                       "/><allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
                       "</busconfig>");
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                  QStringLiteral("--config-file=") + config});
    if (!daemon.waitForStarted() || !daemon.waitForReadyRead(5000)) {
        return {};
    }
    return QString::fromUtf8(daemon.readLine().trimmed());
}
