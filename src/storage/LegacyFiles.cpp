#include "storage/LegacyFiles.h"

#include "shared/AppPaths.h"

#include <QFileInfo>

namespace LegacyFiles {

QString DatPathFor(const QString& xmlPath) {
    if (xmlPath.isEmpty()) {
        return {};
    }
    const QFileInfo info(xmlPath);
    // completeBaseName keeps inner dots: "My.Events.xml" -> "My.Events.dat".
    const QString name = info.completeBaseName() + QStringLiteral(".dat");
    const QString folder = info.path();
    return AppPaths::JoinPath(folder, AppPaths::FindCaseInsensitive(folder, name));
}

} // namespace LegacyFiles
