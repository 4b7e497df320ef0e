#include "shared/SaveFailures.h"

#include "shared/cSHAREDShowError.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace SaveFailures {

namespace {

// The files whose last save failed and was reported (absolute paths).
QSet<QString>& reported() {
    static QSet<QString> files;
    return files;
}

QString key(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

QString ReportText(const QString& path, const QString& why) {
    return QStringLiteral("Unable to save ") + QDir::toNativeSeparators(path) +
           QStringLiteral(": ") + why + QLatin1Char('.');
}

QString AdviceText() {
    return QStringLiteral("Your changes are kept while the program runs. Make the file and its "
                          "folder writable (clear the read-only flag, check the permissions or "
                          "free some disk space); they are saved with your next change, or when "
                          "the program ends.");
}

void Failed(const QString& path, const QString& why) {
    if (reported().contains(key(path))) {
        return;
    }
    reported().insert(key(path));
    cSHAREDShowError::ShowErr(ReportText(path, why), AdviceText());
}

void Saved(const QString& path) {
    reported().remove(key(path));
}

} // namespace SaveFailures
