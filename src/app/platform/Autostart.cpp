#include "app/platform/Autostart.h"

#include "shared/AtomicFile.h"
#include "shared/cSharedLogging.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

const QString kModule = QStringLiteral("Autostart");

// One argument of an Exec line: quoted when it holds a character the desktop
// entry format reserves, with the characters that need it escaped inside the
// quotes. The backslashes are then doubled again, because Exec is also a
// string value whose own escapes are read first; "%" starts a field code, so
// a literal one is doubled.
QString execArgument(QString arg) {
    arg.replace(QLatin1Char('%'), QStringLiteral("%%"));
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool quote = arg.isEmpty();
    for (const QChar c : arg) {
        quote = quote || reserved.contains(c);
    }
    if (!quote) {
        return arg;
    }
    QString out;
    for (const QChar c : arg) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') ||
            c == QLatin1Char('\\')) {
            out += QLatin1Char('\\');
        }
        out += c;
    }
    out.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    return QLatin1Char('"') + out + QLatin1Char('"');
}

} // namespace

namespace Autostart {

QString EntryPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/tarvo.desktop");
}

bool IsEnabled() {
    return QFileInfo::exists(EntryPath());
}

QByteArray EntryText(const QString& program) {
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=Tarvo\n"
                                        "GenericName=Reminders\n"
                                        "Comment=Reminders, alarms and a calendar for your events\n"
                                        "Exec=") +
                         execArgument(program) +
                         QStringLiteral("\n"
                                        "Icon=tarvo\n"
                                        "Terminal=false\n"
                                        "X-GNOME-Autostart-enabled=true\n");
    return text.toUtf8();
}

bool Apply(bool enabled, const QString& program) {
    const QString path = EntryPath();
    if (!enabled) {
        if (!QFileInfo::exists(path) || QFile::remove(path)) {
            return true;
        }
        Log().AddAction(QStringLiteral("Unable to remove ") + path, QStringLiteral("Apply"),
                        kModule);
        return false;
    }
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        Log().AddAction(QStringLiteral("Unable to create ") + folder, QStringLiteral("Apply"),
                        kModule);
        return false;
    }
    const AtomicFile::Result result = AtomicFile::Write(path, EntryText(program));
    if (!result.ok()) {
        Log().AddAction(QStringLiteral("Unable to write ") + path + QStringLiteral(": ") +
                            result.description,
                        QStringLiteral("Apply"), kModule);
    }
    return result.ok();
}

} // namespace Autostart
