#include "app/platform/QtFileOpener.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

bool QtFileOpener::OpenDocument(const QString& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
}
