#include "engine/caldav/CalDavHttp.h"

#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

CalDavProblem CalDavProblem::From(const CalDavReply& reply) {
    CalDavProblem p;
    p.failed = true;
    p.unreachable = reply.unreachable;
    p.error = CalDavErrorLine(reply);
    return p;
}

CalDavProblem CalDavProblem::Text(const QString& error) {
    CalDavProblem p;
    p.failed = true;
    p.error = error;
    return p;
}

QString CalDavErrorLine(const CalDavReply& reply) {
    const QString where =
        reply.url.host() +
        (reply.url.port() > 0 ? QLatin1Char(':') + QString::number(reply.url.port()) : QString());
    if (reply.status == 0) {
        if (reply.unreachable) {
            return QStringLiteral("The CalDAV server %1 did not answer (%2).")
                .arg(where, reply.networkText);
        }
        return QStringLiteral("The connection to the CalDAV server %1 failed (%2).")
            .arg(where, reply.networkText);
    }
    const QString answer =
        QString::number(reply.status) + QLatin1Char(' ') + QString::fromUtf8(reply.reason);
    switch (reply.status) {
    case 401:
        return QStringLiteral("The CalDAV server refused the user name or password (%1)")
            .arg(answer);
    case 403:
        return QStringLiteral("The CalDAV server refused access to %1 (%2)")
            .arg(reply.url.path(), answer);
    case 404:
        return QStringLiteral("The CalDAV server has no %1 (%2)").arg(reply.url.path(), answer);
    default:
        return QStringLiteral("The CalDAV server answered %1 %2 with %3")
            .arg(QString::fromLatin1(reply.verb), reply.url.path(), answer);
    }
}

namespace {

bool noAnswer(QNetworkReply::NetworkError e) {
    switch (e) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // the transfer timeout
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
    case QNetworkReply::UnknownNetworkError:
        return true;
    default:
        return false;
    }
}

} // namespace

CalDavHttp::CalDavHttp(const QString& user, const QString& password, QObject* parent)
    : QObject(parent),
      m_authorization("Basic " + QByteArray(user.toUtf8() + ':' + password.toUtf8()).toBase64()) {}

void CalDavHttp::Send(const QByteArray& verb, const QUrl& url, const QByteArray& body,
                      const Headers& headers, Done done) {
    QNetworkRequest request(url);
    request.setRawHeader("Authorization", m_authorization);
    request.setTransferTimeout(m_timeoutMs);
    // The password goes with every request: never to another server.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::SameOriginRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    for (const auto& [name, value] : headers) {
        request.setRawHeader(name, value);
    }
    ++m_requests;
    QNetworkReply* reply = m_manager.sendCustomRequest(request, verb, body);
    connect(reply, &QNetworkReply::finished, this, [reply, verb, url, done = std::move(done)] {
        reply->deleteLater();
        CalDavReply out;
        out.verb = verb;
        out.url = url;
        out.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        out.reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toByteArray();
        out.body = reply->readAll();
        out.etag = reply->rawHeader("ETag");
        if (out.status == 0) {
            out.networkText = reply->error() == QNetworkReply::OperationCanceledError
                                  ? QStringLiteral("no answer in %1 seconds").arg(kTimeoutMs / 1000)
                                  : reply->errorString();
            out.unreachable = noAnswer(reply->error());
        }
        done(out);
    });
}

namespace CalDavJobs {

void Run(QList<Job> jobs, int width, Finish done) {
    struct Runner {
        QList<Job> jobs;
        qsizetype next = 0;
        int running = 0;
        CalDavProblem first;
        Finish done;
    };
    auto runner = std::make_shared<Runner>();
    runner->jobs = std::move(jobs);
    runner->done = std::move(done);
    auto pump = std::make_shared<std::function<void()>>();
    *pump = [runner, width, weakPump = std::weak_ptr<std::function<void()>>(pump)] {
        // Each job's callback holds the pump, so it lives while jobs run.
        const std::shared_ptr<std::function<void()>> self = weakPump.lock();
        while (!runner->first.failed && runner->running < qMax(1, width) &&
               runner->next < runner->jobs.size()) {
            Job job = std::move(runner->jobs[runner->next++]);
            ++runner->running;
            job([runner, self](const CalDavProblem& problem) {
                --runner->running;
                if (problem.failed && !runner->first.failed) {
                    runner->first = problem;
                }
                (*self)();
            });
        }
        if (runner->running == 0 && runner->done) {
            Finish finish = std::move(runner->done);
            runner->done = nullptr;
            finish(runner->first);
        }
    };
    (*pump)();
}

} // namespace CalDavJobs
