#include "shared/AppInfo.h"

#include <QSysInfo>

namespace AppInfo {

QString Title() {
    return QStringLiteral("Tarvo");
}

QString VersionText() {
    return QStringLiteral(TARVO_VERSION);
}

QString OperatingSystemText() {
    return QSysInfo::prettyProductName() + QStringLiteral(" (") + QSysInfo::kernelType() +
           QLatin1Char(' ') + QSysInfo::kernelVersion() + QLatin1Char(')');
}

QString BuildText() {
    return QStringLiteral("Qt ") + QLatin1String(QT_VERSION_STR);
}

} // namespace AppInfo
