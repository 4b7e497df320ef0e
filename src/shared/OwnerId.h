#pragma once

#include <QString>

// Checks a user ID typed for networked mode. The ID becomes part of a file
// name in the shared folder ("Shared_" + ID + ".xml") and a line of the user
// list, so it must not be able to point elsewhere or break either.
namespace OwnerId {

// "" when the ID can be used; otherwise the message to show. Refused: path
// separators and the other characters a file name cannot hold on any of the
// systems sharing the folder, control characters, characters the data files'
// code page cannot hold, and the reserved names "Single" and "Not Set".
QString Problem(const QString& id);

// Characters refused anywhere in an ID.
inline constexpr const char* kForbiddenCharacters = "\\/:*?\"<>|";

} // namespace OwnerId
