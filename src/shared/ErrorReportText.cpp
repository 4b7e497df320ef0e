#include "shared/ErrorReportText.h"

#include "shared/AppInfo.h"
#include "shared/TextCodec.h"
#include "shared/cSharedLogging.h"

#include <QFile>
#include <QStringList>

namespace ErrorReportText {

namespace {

const QString kCrLf = QLatin1String(TextCodec::kLineEnd);

QString FirstLine() {
    return QStringLiteral("Error Report: ") + AppInfo::VersionText() + QLatin1Char(' ') +
           AppInfo::BuildText() + QStringLiteral(", ") + AppInfo::OperatingSystemText();
}

} // namespace

QString CurrentLogText() {
    Log().WriteActionsToLog();
    const QString name = Log().CurrentLogFilename();
    QFile f(name);
    if (name.isEmpty() || !f.exists() || !f.open(QIODevice::ReadOnly)) {
        return QLatin1String(kNoLogFile);
    }
    return TextCodec::FromWindows1252(f.readAll());
}

QString FullReport(const QString& error, const QString& comments, const QString& log) {
    const QString dashes(75, QLatin1Char('-'));
    QStringList blocks{FirstLine(), error};
    if (!comments.isEmpty()) {
        blocks << comments;
    }
    blocks << log << dashes
           << QStringLiteral(
                  "'Submit Error Report' saves this report to a file and copies it to the")
           << QStringLiteral("clipboard: send it to whoever looks after your copy of the program.")
           << QStringLiteral("Submitting a bug report helps improve the software.") << dashes;
    return blocks.join(kCrLf) + kCrLf;
}

} // namespace ErrorReportText
