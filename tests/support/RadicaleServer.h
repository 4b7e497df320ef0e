#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A calendar server for tests: Radicale on 127.0.0.1 and a free port, with
// plain-text passwords, everyone reading and only the owner writing, and its
// storage in a temporary folder. Start() waits until the port answers.
class RadicaleServer {
public:
    // name:password pairs
    explicit RadicaleServer(QList<QPair<QString, QString>> users = {
                                {QStringLiteral("ann"), QStringLiteral("pw-ann")},
                                {QStringLiteral("bob"), QStringLiteral("pw-bob")},
                                {QStringLiteral("cy"), QStringLiteral("pw-cy")}});
    ~RadicaleServer();

    // False (with Problem() saying why) when the server cannot start. A
    // stopped server starts again on the same port with the same storage.
    bool Start();
    void Stop();
    QString Problem() const { return m_problem; }

    QString Url() const; // "http://127.0.0.1:<port>/"
    quint16 Port() const { return m_port; }
    QString Password(const QString& user) const;

    // The resource names in a user's "tarvo" collection, sorted.
    QStringList Resources(const QString& user) const;

    // One request as user (blocking; for the tests' own checks and for
    // playing another client).
    struct Reply {
        int status = 0;
        QByteArray etag;
        QByteArray body;
    };
    Reply Request(const QByteArray& verb, const QString& user, const QString& path,
                  const QByteArray& body = {},
                  const QList<QPair<QByteArray, QByteArray>>& headers = {});

private:
    QList<QPair<QString, QString>> m_users;
    QTemporaryDir m_dir;
    std::unique_ptr<QProcess> m_process;
    quint16 m_port = 0;
    QString m_problem;
};

// Skips the test when the server cannot start.
#define START_RADICALE_OR_SKIP(server)                                                             \
    if (!(server).Start()) {                                                                       \
        GTEST_SKIP() << "Radicale cannot start: " << (server).Problem().toStdString();             \
    }
