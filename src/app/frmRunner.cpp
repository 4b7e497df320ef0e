#include "app/frmRunner.h"

#include "app/SingleInstance.h"
#include "engine/CommandLineWork.h"
#include "shared/cSharedLogging.h"

#include <QLineEdit>
#include <QLocalServer>
#include <QLocalSocket>
#include <QVBoxLayout>

frmRunner::frmRunner(std::unique_ptr<QLocalServer> server, QWidget* parent)
    : QWidget(parent, Qt::Window), m_text(new QLineEdit(QString::fromLatin1(kIdle), this)),
      m_server(server.release()) {
    setObjectName(QStringLiteral("frmRunner"));
    setWindowTitle(QStringLiteral("TVORunner"));
    m_text->setObjectName(QStringLiteral("txtRunner"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    m_timer.setObjectName(QStringLiteral("TimerRunner"));
    connect(&m_timer, &QTimer::timeout, this, &frmRunner::TimerRunner_Timer);
    if (m_server != nullptr) {
        m_server->setParent(this);
        connect(m_server, &QLocalServer::newConnection, this, &frmRunner::acceptConnection);
        acceptConnection(); // copies that called while this one was starting
    }
    m_timer.start(kIntervalMs);
}

frmRunner::~frmRunner() = default;

void frmRunner::acceptConnection() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        socket->setParent(this);
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readCommands(socket); });
        // What arrived before the connection was taken up (during start-up)
        // raised no signal here.
        if (socket->bytesAvailable() > 0) {
            readCommands(socket);
        }
    }
}

void frmRunner::readCommands(QLocalSocket* socket) {
    bool command = false;
    while (socket->canReadLine()) {
        const QByteArray line = socket->readLine().trimmed();
        // A work request from the command line is answered at once; anything
        // else is a command for the runner's timer (SHOW).
        if (m_requests && CommandLineWork::IsRequestLine(line)) {
            Log().LogEvent(QStringLiteral("Command passed in: ") +
                           CommandLineWork::RequestSummary(line));
            socket->write(m_requests(line) + '\n');
            socket->flush();
        } else if (!line.isEmpty()) {
            m_text->setText(QString::fromUtf8(line));
            command = true;
        }
    }
    if (command && socket->state() == QLocalSocket::ConnectedState) {
        socket->write("OK\n");
    }
}

QString frmRunner::text() const {
    return m_text->text();
}

void frmRunner::TimerRunner_Timer() {
    const QString command = m_text->text();
    if (command == QString::fromLatin1(kIdle)) {
        return;
    }
    m_timer.stop();
    Log().LogEvent(QStringLiteral("Command passed in: ") + command);
    emit commandReceived(command);
    m_text->setText(QString::fromLatin1(kIdle));
    m_timer.start(kIntervalMs);
}
