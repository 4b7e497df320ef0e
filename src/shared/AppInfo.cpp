#include "shared/AppInfo.h"

#include "shared/DateValue.h"

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

// The two addresses below are the places to change for a distribution.
QString BugReportAddress() {
    return QStringLiteral("bugs") + QString::number(YearOf(TodayDate())) +
           QStringLiteral("@tarvo.example.org");
}

QUrl HelpUrl() {
    return QUrl(QStringLiteral("https://tarvo.example.org/help/"));
}

} // namespace AppInfo
