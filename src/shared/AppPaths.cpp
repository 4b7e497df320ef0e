#include "shared/AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace AppPaths {

QString HomeFolder() {
    const QString folder = HomeFolderPath();
    QDir().mkpath(folder);
    return folder;
}

QString HomeFolderPath() {
    QString folder = qEnvironmentVariable(kHomeVariable);
    if (folder.isEmpty() && QCoreApplication::instance() != nullptr) {
        const QString exeFolder = QCoreApplication::applicationDirPath();
        if (QFileInfo::exists(JoinPath(exeFolder, QStringLiteral("Tvo.ini")))) {
            folder = exeFolder;
        }
    }
    if (folder.isEmpty()) {
        folder = JoinPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
                          QStringLiteral("Tarvo"));
    }
    folder = QDir::cleanPath(QDir(folder).absolutePath());
    return QDir::toNativeSeparators(folder);
}

QString JoinPath(const QString& folder, const QString& name) {
    if (folder.isEmpty()) {
        return name;
    }
    QString f = folder;
    while (f.size() > 1 && (f.endsWith(QLatin1Char('/')) || f.endsWith(QDir::separator()))) {
        f.chop(1);
    }
    if (f == QStringLiteral("/")) {
        return f + name;
    }
    return f + QDir::separator() + name;
}

QString FindCaseInsensitive(const QString& folder, const QString& name) {
    const QDir dir(folder);
    if (dir.exists(name)) {
        return name;
    }
    const QStringList entries = dir.entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0) {
            return entry;
        }
    }
    return name;
}

} // namespace AppPaths
