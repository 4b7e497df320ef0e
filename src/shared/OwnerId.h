#pragma once

#include "shared/TextEqual.h"

#include <QString>

// Checks a user ID typed for networked mode. The ID becomes part of a file
// name in the shared folder ("Shared_" + ID + ".xml") and a line of the user
// list, so it must not be able to point elsewhere or break either.
namespace OwnerId {

// "" when the ID can be used; otherwise the message to show. Refused: path
// separators and the other characters a file name cannot hold on any of the
// systems sharing the folder, control characters, characters the data files'
// code page cannot hold, "..", more than kMaxNameLength characters, and the
// reserved names "Single" and "Not Set".
QString Problem(const QString& id);

// Whether name (blanks around it aside) can stand in a file name of the
// shared folder: 1 to kMaxNameLength characters, no slash, backslash or "..", no
// control characters. A name read from the user list or "Tvo.ini" that is not
// one is skipped, so no file outside the shared folder is ever read.
bool IsPlainName(const QString& name);
inline constexpr int kMaxNameLength = 64;

// Characters refused anywhere in an ID.
inline constexpr const char* kForbiddenCharacters = "\\/:*?\"<>|";

// Whether two owner names name the same user: blanks around either side and
// letter case do not count, because the name also names a file in the shared
// folder and file names there are not case-sensitive. Every check of who owns
// an event (publishing, the list, deleting, loading the merged set, the owner
// maintenance) uses this one comparison.
inline bool Same(const QString& a, const QString& b) {
    return TextEqual(a, b);
}

} // namespace OwnerId
