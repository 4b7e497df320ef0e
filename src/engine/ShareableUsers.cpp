#include "engine/ShareableUsers.h"

#include "engine/CalDavAccount.h"
#include "shared/AppPaths.h"
#include "shared/cSHAREDSettings.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"

namespace ShareableUsers {

QStringList For(const cSHAREDSettings& settings) {
    if (DataFiles::CalDavMode(settings)) {
        return CalDavAccount::FromSettings(settings).users;
    }
    const QString folder = settings.sGet(QStringLiteral("SharedDatapath"), QString()).toText();
    return SharedDatabases::ReadUserList(
        AppPaths::JoinPath(folder, QStringLiteral("TVOShared.ini")));
}

} // namespace ShareableUsers
