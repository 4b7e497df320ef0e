#pragma once

#include <QString>
#include <QStringList>

struct ReminderServices;

// The desktop's notification service, as the reminder engine sees it: the
// same heading and lines as a reminder window, shown where the desktop shows
// notifications. The program's implementation talks D-Bus; tests record.
class IDesktopNotifier {
public:
    virtual ~IDesktopNotifier() = default;
    // critical: an alarm, which the desktop should not let slip by.
    virtual void Notify(const QString& heading, const QStringList& lines, bool critical) = 0;
};

// Sends heading and lines to the services' notifier, unless there is none,
// there are no lines, or the setting DesktopNotifications (on by default) is
// off.
void NotifyDesktop(ReminderServices& services, const QString& heading, const QStringList& lines,
                   bool critical);
