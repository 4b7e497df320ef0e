#include "app/SingleInstance.h"

#include "shared/AppPaths.h"
#include "shared/cSharedLogging.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QLocalServer>
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

Claimed Claim(const QString& command) {
    Claimed claimed;
    const QString name = ServerName();
    if (HandOver(command)) {
        claimed.handedOver = true;
        return claimed;
    }
    claimed.server = std::make_unique<QLocalServer>();
    claimed.server->setSocketOptions(QLocalServer::UserAccessOption);
    if (claimed.server->listen(name)) {
        return claimed;
    }
    // Another copy may have claimed the name since nobody answered above;
    // otherwise the socket is a crashed copy's and can go.
    if (claimed.server->serverError() == QAbstractSocket::AddressInUseError && HandOver(command)) {
        claimed.handedOver = true;
        claimed.server.reset();
        return claimed;
    }
    QLocalServer::removeServer(name);
    if (!claimed.server->listen(name)) {
        Log().LogEvent(QStringLiteral("Unable to listen for other copies: ") +
                       claimed.server->errorString());
    }
    return claimed;
}

} // namespace SingleInstance
