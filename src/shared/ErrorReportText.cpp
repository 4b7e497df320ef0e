#include "shared/ErrorReportText.h"

#include "shared/AppInfo.h"
#include "shared/TextCodec.h"
#include "shared/cSharedLogging.h"

#include <QFile>
#include <QFileInfo>
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

QString EncodeForMailLink(const QString& text) {
    QString s = text;
    s.replace(QLatin1Char('%'), QStringLiteral("%25"));
    s.replace(QLatin1Char('?'), QStringLiteral("%3F"));
    s.replace(QLatin1Char('&'), QStringLiteral("%26"));
    s.replace(QLatin1Char('#'), QStringLiteral("%23"));
    s.replace(kCrLf, QStringLiteral("%0D%0A"));
    s.replace(QLatin1Char('\n'), QStringLiteral("%0D%0A"));
    s.replace(QLatin1Char('\r'), QStringLiteral("%0D%0A"));
    s.replace(QLatin1Char(' '), QStringLiteral("%20"));
    return s;
}

QString FullReport(const QString& error, const QString& comments, const QString& log) {
    const QString dashes(75, QLatin1Char('-'));
    QStringList blocks{FirstLine(), error};
    if (!comments.isEmpty()) {
        blocks << comments;
    }
    blocks << log << dashes
           << QStringLiteral(
                  "If the 'submit report' button doesn't work on your system, open an email")
           << QStringLiteral("to '") + AppInfo::BugReportAddress() +
                  QStringLiteral("' and paste the following text into it.")
           << QStringLiteral("Submitting a bug report helps improve the software.") << dashes;
    return blocks.join(kCrLf) + kCrLf;
}

QString MailLink(const QString& error, const QString& comments, const QString& log,
                 const QString& logFilePath) {
    const QString body = QStringLiteral("Error Report: ") + AppInfo::VersionText() +
                         QStringLiteral(", ") + AppInfo::OperatingSystemText() +
                         QStringLiteral(" (Please click Attach and add the file ") +
                         QFileInfo(logFilePath).fileName() + QLatin1Char(')') + kCrLf +
                         QStringLiteral("User: ") + comments + kCrLf + error + kCrLf + log;
    return QStringLiteral("mailto:") + AppInfo::BugReportAddress() +
           QStringLiteral("?subject=Bug Report (") + AppInfo::VersionText() +
           QStringLiteral(" - ") + AppInfo::Title() + QStringLiteral(")&body=") +
           EncodeForMailLink(body) + QStringLiteral("&attachment=") +
           EncodeForMailLink(logFilePath);
}

} // namespace ErrorReportText
