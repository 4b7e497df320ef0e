#include "support/RadicaleServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

namespace {
constexpr const char* kRadicale = "/usr/bin/radicale";
}

RadicaleServer::RadicaleServer(QList<QPair<QString, QString>> users) : m_users(std::move(users)) {}

RadicaleServer::~RadicaleServer() {
    Stop();
}

QString RadicaleServer::Url() const {
    return QStringLiteral("http://127.0.0.1:%1/").arg(m_port);
}

QString RadicaleServer::Password(const QString& user) const {
    for (const auto& [name, password] : m_users) {
        if (name == user) {
            return password;
        }
    }
    return {};
}

bool RadicaleServer::Start() {
    if (!QFile::exists(QLatin1String(kRadicale))) {
        m_problem = QStringLiteral("/usr/bin/radicale is not installed");
        return false;
    }
    if (!m_dir.isValid()) {
        m_problem = QStringLiteral("no temporary folder");
        return false;
    }
    if (m_port == 0) {
        QTcpServer probe;
        if (!probe.listen(QHostAddress::LocalHost, 0)) {
            m_problem = QStringLiteral("no free port");
            return false;
        }
        m_port = probe.serverPort();
    }
    QFile users(m_dir.filePath(QStringLiteral("users")));
    QFile config(m_dir.filePath(QStringLiteral("config")));
    if (!users.open(QIODevice::WriteOnly) || !config.open(QIODevice::WriteOnly)) {
        m_problem = QStringLiteral("cannot write the configuration");
        return false;
    }
    for (const auto& [name, password] : m_users) {
        users.write((name + QLatin1Char(':') + password + QLatin1Char('\n')).toUtf8());
    }
    users.close();
    config.write(QStringLiteral("[server]\nhosts = 127.0.0.1:%1\n"
                                "[auth]\ntype = htpasswd\nhtpasswd_filename = %2\n"
                                "htpasswd_encryption = plain\n"
                                "[rights]\ntype = owner_write\n"
                                "[storage]\nfilesystem_folder = %3\n"
                                "[logging]\nlevel = warning\n")
                     .arg(m_port)
                     .arg(users.fileName(), m_dir.filePath(QStringLiteral("storage")))
                     .toUtf8());
    config.close();
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    m_process->start(QLatin1String(kRadicale), {QStringLiteral("--config"), config.fileName()});
    if (!m_process->waitForStarted(5000)) {
        m_problem = m_process->errorString();
        return false;
    }
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 15000) {
        if (m_process->state() != QProcess::Running) {
            m_problem = QString::fromUtf8(m_process->readAll()).trimmed().right(400);
            return false;
        }
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_port);
        if (socket.waitForConnected(200)) {
            return true;
        }
        QThread::msleep(50);
    }
    m_problem = QStringLiteral("the port did not answer within 15 seconds");
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
    QDir dir(m_dir.filePath(QStringLiteral("storage/collection-root/") + user +
                            QStringLiteral("/tarvo")));
    return dir.entryList({QStringLiteral("*.ics")}, QDir::Files, QDir::Name);
}

RadicaleServer::Reply RadicaleServer::Request(const QByteArray& verb, const QString& user,
                                              const QString& path, const QByteArray& body,
                                              const QList<QPair<QByteArray, QByteArray>>& headers) {
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(Url()).resolved(QUrl(path)));
    request.setRawHeader("Authorization",
                         "Basic " + (user + QLatin1Char(':') + Password(user)).toUtf8().toBase64());
    for (const auto& [name, value] : headers) {
        request.setRawHeader(name, value);
    }
    QNetworkReply* reply = manager.sendCustomRequest(request, verb, body);
    if (!reply->isFinished()) {
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(10000, &loop, &QEventLoop::quit);
        loop.exec();
    }
    Reply out;
    out.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    out.etag = reply->rawHeader("ETag");
    out.body = reply->readAll();
    delete reply;
    return out;
}
