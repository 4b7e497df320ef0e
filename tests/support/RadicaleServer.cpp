#include "support/RadicaleServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

bool RadicaleServer::Start() {
    QTcpServer probe;
    if (m_port == 0 && probe.listen(QHostAddress::LocalHost, 0)) {
        m_port = probe.serverPort();
        probe.close();
    }
    QFile users(m_dir.filePath(QStringLiteral("users")));
    QFile config(m_dir.filePath(QStringLiteral("config")));
    if (!QFile::exists(QStringLiteral("/usr/bin/radicale")) || m_port == 0 ||
        !users.open(QIODevice::WriteOnly) || !config.open(QIODevice::WriteOnly)) {
        m_problem =
            QStringLiteral("/usr/bin/radicale, a free port or a temporary folder is missing");
        return false;
    }
    for (const char* name : {"ann", "bob", "cy"}) {
        users.write(QByteArray(name) + ':' + Password(QLatin1String(name)).toUtf8() + '\n');
    }
    config.write(QStringLiteral("[server]\nhosts = 127.0.0.1:%1\n[auth]\ntype = htpasswd\n"
                                "htpasswd_filename = %2\nhtpasswd_encryption = plain\n"
                                "[rights]\ntype = owner_write\n[storage]\nfilesystem_folder = %3\n"
                                "[logging]\nlevel = warning\n")
                     .arg(m_port)
                     .arg(users.fileName(), m_dir.filePath(QStringLiteral("storage")))
                     .toUtf8());
    users.close();
    config.close();
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->start(QStringLiteral("/usr/bin/radicale"),
                     {QStringLiteral("--config"), config.fileName()});
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 15000 && m_process->waitForStarted(5000)) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_port);
        if (socket.waitForConnected(200)) {
            return true;
        }
        if (m_process->waitForFinished(100)) {
            break;
        }
    }
    m_problem = m_process->errorString() + QLatin1Char(' ') +
                QString::fromUtf8(m_process->readAll()).trimmed().right(300);
    return false;
}

void RadicaleServer::Stop() {
    if (m_process && m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(5000)) {
            m_process->kill();
            m_process->waitForFinished(2000);
        }
    }
    m_process.reset();
}

QStringList RadicaleServer::Resources(const QString& user) const {
    return QDir(m_dir.filePath(QStringLiteral("storage/collection-root/%1/tarvo").arg(user)))
        .entryList({QStringLiteral("*.ics")}, QDir::Files, QDir::Name);
}

RadicaleServer::Reply RadicaleServer::Request(const QByteArray& verb, const QString& user,
                                              const QString& path, const QByteArray& body) {
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(Url()).resolved(QUrl(path)));
    request.setRawHeader("Authorization",
                         "Basic " + (user + QLatin1Char(':') + Password(user)).toUtf8().toBase64());
    QNetworkReply* reply = manager.sendCustomRequest(request, verb, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    if (!reply->isFinished()) {
        loop.exec();
    }
    Reply out{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll()};
    delete reply;
    return out;
}
