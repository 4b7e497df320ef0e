#include "engine/IDesktopNotifier.h"

#include "engine/ReminderServices.h"
#include "shared/cSHAREDSettings.h"

void NotifyDesktop(ReminderServices& services, const QString& heading, const QStringList& lines,
                   bool critical) {
    if (services.notifier != nullptr && !lines.isEmpty() &&
        services.settings.sGet(QStringLiteral("DesktopNotifications"), true).toBool()) {
        services.notifier->Notify(heading, lines, critical);
    }
}
