#include "engine/CalDavPassword.h"

#include "engine/CalDavAccount.h"

#include <QEventLoop>
#include <QMetaObject>
#include <QObject>
#include <qt6keychain/keychain.h>

#include <memory>
#include <optional>
#include <utility>

// The secret store through QtKeychain: one entry per account under the
// service kService, keyed user + "@" + server address. The insecure fallback
// (a plain settings file) stays off: a password that cannot go to the
// secret store is not stored at all.
namespace CalDavPassword {

namespace {

const QString kService = QStringLiteral("Tarvo CalDAV");

QString keyOf(const CalDavAccount& account) {
    return account.user + QLatin1Char('@') + account.server.toString();
}

QString whose(const CalDavAccount& account) {
    return account.user + QStringLiteral(" at ") + account.server.toString();
}

template <typename JobType> JobType* newJob(const CalDavAccount& account) {
    auto* job = new JobType(kService);
    job->setAutoDelete(true);
    job->setInsecureFallback(false);
    job->setKey(keyOf(account));
    return job;
}

// Runs an asynchronous call with a local event loop until its answer comes.
template <typename Answer, typename Call> Answer waitFor(Call call) {
    auto answer = std::make_shared<std::optional<Answer>>();
    QObject context;
    QEventLoop loop;
    call(&context, [answer, &loop](Answer value) {
        *answer = std::move(value);
        loop.quit();
    });
    if (!answer->has_value()) {
        loop.exec();
    }
    return **answer;
}

} // namespace

void Read(const CalDavAccount& account, QObject* context,
          std::function<void(const QString&, const QString&)> done) {
    if (qEnvironmentVariableIsSet(kEnvironmentVariable)) {
        const QString password = qEnvironmentVariable(kEnvironmentVariable);
        QMetaObject::invokeMethod(
            context, [done = std::move(done), password] { done(password, QString()); },
            Qt::QueuedConnection);
        return;
    }
    auto* job = newJob<QKeychain::ReadPasswordJob>(account);
    const QString who = whose(account);
    QObject::connect(
        job, &QKeychain::Job::finished, context, [done = std::move(done), who](QKeychain::Job* j) {
            const auto* read = static_cast<QKeychain::ReadPasswordJob*>(j);
            switch (j->error()) {
            case QKeychain::NoError:
                done(read->textData(), QString());
                break;
            case QKeychain::EntryNotFound:
                done(QString(), QStringLiteral("No password is stored for ") + who +
                                    QStringLiteral("; enter it in Options"));
                break;
            default:
                done(QString(), QStringLiteral("The password for ") + who +
                                    QStringLiteral(" cannot be read from the secret store: ") +
                                    j->errorString());
            }
        });
    job->start();
}

QString ReadNow(const CalDavAccount& account, QString* error) {
    using Answer = std::pair<QString, QString>;
    const Answer answer = waitFor<Answer>([&account](QObject* context, auto reply) {
        Read(account, context, [reply](const QString& password, const QString& why) {
            reply({password, why});
        });
    });
    if (error != nullptr) {
        *error = answer.second;
    }
    return answer.first;
}

void Write(const CalDavAccount& account, const QString& password, QObject* context,
           std::function<void(const QString&)> done) {
    auto* job = newJob<QKeychain::WritePasswordJob>(account);
    job->setTextData(password);
    const QString who = whose(account);
    QObject::connect(job, &QKeychain::Job::finished, context,
                     [done = std::move(done), who](QKeychain::Job* j) {
                         done(j->error() == QKeychain::NoError
                                  ? QString()
                                  : QStringLiteral("The password for ") + who +
                                        QStringLiteral(" cannot be stored in the secret store: ") +
                                        j->errorString());
                     });
    job->start();
}

QString WriteNow(const CalDavAccount& account, const QString& password) {
    return waitFor<QString>([&](QObject* context, auto reply) {
        Write(account, password, context, [reply](const QString& error) { reply(error); });
    });
}

} // namespace CalDavPassword
