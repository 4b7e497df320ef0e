#pragma once

#include <QStringList>

class cSHAREDSettings;

// The people an event can be shared with (the editor's list, "Share with
// ..."): the shared folder's user list, or, through a calendar server, the
// users whose events this user sees (CalDAVUsers).
namespace ShareableUsers {

QStringList For(const cSHAREDSettings& settings);

} // namespace ShareableUsers
