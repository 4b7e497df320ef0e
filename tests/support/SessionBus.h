#pragma once

#include <QString>

class QProcess;

// Starts a private D-Bus session bus (dbus-daemon) in daemon, listening in
// folder, and returns its address; "" when it cannot start.
QString StartSessionBus(QProcess& daemon, const QString& folder);
