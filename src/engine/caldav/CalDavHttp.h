#pragma once

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPair>
#include <QString>
#include <QUrl>

#include <functional>

// What a calendar server answered to one request.
struct CalDavReply {
    QByteArray verb;
    QUrl url;
    int status = 0;    // the HTTP status; 0 when the server gave no answer
    QByteArray reason; // "Unauthorized"
    QByteArray body;
    QByteArray etag;          // the ETag header, as given (quotes included)
    QString networkText;      // what went wrong below HTTP ("" when nothing did)
    bool unreachable = false; // no answer: refused, host not found, timed out

    bool Ok() const { return status >= 200 && status < 300; }
};

// Why a step of a sync failed; a null problem means it did not.
struct CalDavProblem {
    bool failed = false;
    bool unreachable = false;
    QString error; // one line for the user

    static CalDavProblem From(const CalDavReply& reply);
    static CalDavProblem Text(const QString& error);
};

// The one line a user sees for a failed request: "The CalDAV server refused
// the user name or password (401 Unauthorized)".
QString CalDavErrorLine(const CalDavReply& reply);

// Requests to one calendar server as one user (Basic authentication sent
// with every request, so no request is answered 401 first). Every request
// ends by its callback, never by waiting; a request without any answer for
// kTimeoutMs ends as unreachable.
class CalDavHttp : public QObject {
    Q_OBJECT
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;
    using Done = std::function<void(const CalDavReply&)>;
    static constexpr int kTimeoutMs = 20000;

    CalDavHttp(const QString& user, const QString& password, QObject* parent = nullptr);

    void Send(const QByteArray& verb, const QUrl& url, const QByteArray& body,
              const Headers& headers, Done done);
    // Requests sent so far.
    int Requests() const { return m_requests; }
    void setTimeout(int ms) { m_timeoutMs = ms; }

private:
    QNetworkAccessManager m_manager;
    QByteArray m_authorization;
    int m_requests = 0;
    int m_timeoutMs = kTimeoutMs;
};

// Runs jobs with at most `width` of them waiting for the server at once, in
// order. After the first failure no further job starts; done follows when the
// started ones have ended, with the first problem (or none).
namespace CalDavJobs {
using Finish = std::function<void(const CalDavProblem&)>;
using Job = std::function<void(Finish)>;
void Run(QList<Job> jobs, int width, Finish done);
} // namespace CalDavJobs
