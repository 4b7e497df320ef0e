#include "app/platform/DBusNotifier.h"

#include "shared/cSharedLogging.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace {

const QString kInterface = QString::fromLatin1(DBusNotifier::kService);

// The urgency levels of the notification format.
constexpr uchar kNormal = 1;
constexpr uchar kCritical = 2;

} // namespace

DBusNotifier::DBusNotifier(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus) {}

void DBusNotifier::Notify(const QString& heading, const QStringList& lines, bool critical) {
    if (!m_bus.isConnected()) {
        reportUnavailable(QStringLiteral("no session bus (") + m_bus.lastError().message() +
                          QLatin1Char(')'));
        return;
    }
    if (!m_listening) {
        // A signal connection needs a slot named in text; it is the only way
        // Qt D-Bus delivers a bus signal to an object.
        m_listening = m_bus.connect(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                    kInterface, QStringLiteral("ActionInvoked"), this,
                                    SLOT(onActionInvoked(uint, QString)));
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(QString::fromLatin1(kService), QString::fromLatin1(kPath),
                                       kInterface, QStringLiteral("Notify"));
    QVariantMap hints;
    hints.insert(QStringLiteral("urgency"), QVariant::fromValue(critical ? kCritical : kNormal));
    hints.insert(QStringLiteral("desktop-entry"), QStringLiteral("org.example.tarvo"));
    // Servers may read the body as simple markup, so the text is escaped.
    call << QStringLiteral("Tarvo") << uint(0) << QStringLiteral("tarvo") << heading
         << lines.join(QLatin1Char('\n')).toHtmlEscaped()
         << QStringList{QString::fromLatin1(kOpenAction), QStringLiteral("Open Tarvo")} << hints
         << int(-1);
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DBusNotifier::onReply);
}

void DBusNotifier::onReply(QDBusPendingCallWatcher* call) {
    const QDBusPendingReply<uint> reply = *call;
    if (reply.isError()) {
        reportUnavailable(reply.error().message());
    } else {
        m_ours.insert(reply.value());
    }
    call->deleteLater();
}

void DBusNotifier::onActionInvoked(uint id, const QString& action) {
    if (m_ours.contains(id) && action == QLatin1String(kOpenAction)) {
        emit openRequested();
    }
}

void DBusNotifier::reportUnavailable(const QString& why) {
    if (!m_reported) {
        m_reported = true;
        Log().LogEvent(QStringLiteral("Desktop notifications are unavailable: ") + why);
    }
}
