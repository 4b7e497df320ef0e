#include "app/SingleInstance.h"

#include "shared/AppPaths.h"
#include "shared/cSharedLogging.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QLocalSocket>

#include <algorithm>

namespace SingleInstance {

QString ServerName() {
    const QByteArray who = qgetenv("USER") + '|' + AppPaths::HomeFolder().toUtf8();
    const QByteArray hash =
        QCryptographicHash::hash(who, QCryptographicHash::Sha1).toHex().left(16);
    return QStringLiteral("tarvo-") + QString::fromLatin1(hash);
}

bool HandOver(const QString& command) {
    QLocalSocket socket;
    socket.connectToServer(ServerName());
    if (!socket.waitForConnected(1000)) {
        Log().LogEvent(QStringLiteral("Unable to find instance of TVO"));
        return false;
    }
    socket.write(command.toUtf8() + '\n');
    if (!socket.waitForBytesWritten(2000)) {
        Log().LogEvent(QStringLiteral("Error running other instance: ") + socket.errorString());
        return false;
    }
    socket.waitForReadyRead(2000); // the running copy's acknowledgement
    socket.disconnectFromServer();
    return true;
}

std::optional<QByteArray> Request(const QByteArray& line, int timeoutMs) {
    QLocalSocket socket;
    socket.connectToServer(ServerName());
    if (!socket.waitForConnected(1000)) {
        return std::nullopt;
    }
    socket.write(line + '\n');
    socket.waitForBytesWritten(2000);
    QDeadlineTimer deadline(timeoutMs);
    while (!socket.canReadLine() && !deadline.hasExpired() &&
           socket.state() == QLocalSocket::ConnectedState) {
        socket.waitForReadyRead(static_cast<int>(std::min<qint64>(deadline.remainingTime(), 500)));
    }
    const QByteArray reply = socket.canReadLine() ? socket.readLine().trimmed() : QByteArray();
    socket.disconnectFromServer();
    return reply;
}

} // namespace SingleInstance
