#include "engine/CalDavPassword.h"

#include "engine/CalDavAccount.h"

#include <QMetaObject>
#include <QObject>

// Only the environment variable for now; the secret store comes next.
namespace CalDavPassword {

namespace {
QString fromEnvironment(bool* set) {
    *set = qEnvironmentVariableIsSet(kEnvironmentVariable);
    return qEnvironmentVariable(kEnvironmentVariable);
}
} // namespace

void Read(const CalDavAccount& account, QObject* context,
          std::function<void(const QString&, const QString&)> done) {
    QString error;
    const QString password = ReadNow(account, &error);
    QMetaObject::invokeMethod(
        context, [done, password, error] { done(password, error); }, Qt::QueuedConnection);
}

QString ReadNow(const CalDavAccount& /*account*/, QString* error) {
    bool set = false;
    const QString password = fromEnvironment(&set);
    if (error != nullptr) {
        *error = set ? QString() : QStringLiteral("No CalDAV password is stored.");
    }
    return password;
}

void Write(const CalDavAccount& /*account*/, const QString& /*password*/, QObject* context,
           std::function<void(const QString&)> done) {
    QMetaObject::invokeMethod(
        context, [done] { done(QStringLiteral("The secret store is not available.")); },
        Qt::QueuedConnection);
}

} // namespace CalDavPassword
