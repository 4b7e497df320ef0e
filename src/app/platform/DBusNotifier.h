#pragma once

#include "engine/IDesktopNotifier.h"

#include <QDBusConnection>
#include <QObject>
#include <QSet>

class QDBusPendingCallWatcher;

// Desktop notifications through the freedesktop service
// org.freedesktop.Notifications on the session bus: the program's icon,
// urgency critical for alarms, and an action that brings the main window
// forward. Calls never block; when no service answers, nothing fails and the
// log says so once.
class DBusNotifier : public QObject, public IDesktopNotifier {
    Q_OBJECT
public:
    // bus: the session bus, or (in tests) a private one.
    explicit DBusNotifier(const QDBusConnection& bus = QDBusConnection::sessionBus(),
                          QObject* parent = nullptr);

    void Notify(const QString& heading, const QStringList& lines, bool critical) override;

    static constexpr const char* kService = "org.freedesktop.Notifications";
    static constexpr const char* kPath = "/org/freedesktop/Notifications";
    static constexpr const char* kOpenAction = "default";

signals:
    // The user chose the notification's action: show the main window.
    void openRequested();

private slots:
    // The service's signal ActionInvoked(id, action key), for every client.
    void onActionInvoked(uint id, const QString& action);

private:
    void onReply(QDBusPendingCallWatcher* call);
    void reportUnavailable(const QString& why);

    QDBusConnection m_bus;
    QSet<uint> m_ours; // the ids of the notifications this program sent
    bool m_listening = false;
    bool m_reported = false;
};
