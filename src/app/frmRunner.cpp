#include "app/frmRunner.h"

#include "app/SingleInstance.h"
#include "engine/CommandLineWork.h"
#include "shared/cSharedLogging.h"

#include <QLineEdit>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <QVBoxLayout>

frmRunner::frmRunner(QWidget* parent)
    : QWidget(parent, Qt::Window), m_text(new QLineEdit(QString::fromLatin1(kIdle), this)),
      m_server(new QLocalServer(this)) {
    setObjectName(QStringLiteral("frmRunner"));
    setWindowTitle(QStringLiteral("TVORunner"));
    m_text->setObjectName(QStringLiteral("txtRunner"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    m_timer.setObjectName(QStringLiteral("TimerRunner"));
    connect(&m_timer, &QTimer::timeout, this, &frmRunner::TimerRunner_Timer);
    connect(m_server, &QLocalServer::newConnection, this, &frmRunner::acceptConnection);
    m_timer.start(kIntervalMs);
}

frmRunner::~frmRunner() = default;

bool frmRunner::Listen() {
    const QString name = SingleInstance::ServerName();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (m_server->listen(name)) {
        return true;
    }
    // A copy that crashed leaves its socket behind; nobody answered on it
    // (the caller checked), so it can go.
    QLocalServer::removeServer(name);
    if (m_server->listen(name)) {
        return true;
    }
    Log().LogEvent(QStringLiteral("Unable to listen for other copies: ") + m_server->errorString());
    return false;
}

void frmRunner::acceptConnection() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            bool command = false;
            while (socket->canReadLine()) {
                const QByteArray line = socket->readLine().trimmed();
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
            if (command) {
                socket->write("OK\n");
            }
        });
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
