#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A calendar server for tests: Radicale on 127.0.0.1 and a free port, users
// ann, bob and cy (password "pw-" + name, stored plain), everyone reading and
// only the owner writing, its storage in a temporary folder.
class RadicaleServer {
public:
    ~RadicaleServer() { Stop(); }

    // Waits until the port answers; false (Problem() says why) when the
    // server cannot start. Starts again on the same port and storage.
    bool Start();
    void Stop();
    QString Problem() const { return m_problem; }
    QString Url() const { return QStringLiteral("http://127.0.0.1:%1/").arg(m_port); }
    static QString Password(const QString& user) { return QStringLiteral("pw-") + user; }

    // The resource names in a user's "tarvo" collection, sorted.
    QStringList Resources(const QString& user) const;

    // One request as user, waited for (the tests' own checks, another client).
    struct Reply {
        int status = 0;
        QByteArray body;
    };
    Reply Request(const QByteArray& verb, const QString& user, const QString& path,
                  const QByteArray& body = {});

private:
    QTemporaryDir m_dir;
    std::unique_ptr<QProcess> m_process;
    quint16 m_port = 0;
    QString m_problem;
};

#define START_RADICALE_OR_SKIP(server)                                                             \
    if (!(server).Start()) {                                                                       \
        GTEST_SKIP() << "Radicale cannot start: " << (server).Problem().toStdString();             \
    }
