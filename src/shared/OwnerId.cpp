#include "shared/OwnerId.h"

#include "shared/TextCodec.h"
#include "shared/TextEqual.h"

namespace OwnerId {

bool IsPlainName(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > kMaxNameLength ||
        trimmed.contains(QLatin1String(".."))) {
        return false;
    }
    for (const QChar c : trimmed) {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') ||
            c.category() == QChar::Other_Control) {
            return false;
        }
    }
    return true;
}

QString Problem(const QString& id) {
    const QString trimmed = id.trimmed();
    const QString forbidden = QLatin1String(kForbiddenCharacters);
    for (const QChar c : trimmed) {
        if (forbidden.contains(c) || c.unicode() < 0x20 || c.unicode() == 0x7f) {
            return QStringLiteral(
                       "The ID \"%1\" cannot be used: it becomes part of a file name in the "
                       "shared folder, so it must not contain any of \\ / : * ? \" < > | or "
                       "control characters.")
                .arg(trimmed);
        }
    }
    if (!IsPlainName(trimmed)) {
        return QStringLiteral("The ID \"%1\" cannot be used: it must be 1 to %2 characters long "
                              "and must not contain \"..\".")
            .arg(trimmed)
            .arg(kMaxNameLength);
    }
    // The user list and the events are written in the data files' code page;
    // a character it lacks would come back as "?" and name another file.
    if (TextCodec::FromWindows1252(TextCodec::ToWindows1252(trimmed)) != trimmed) {
        return QStringLiteral("The ID \"%1\" cannot be used: it contains characters that the "
                              "shared files cannot hold. Please use plain letters and digits.")
            .arg(trimmed);
    }
    // "Single" marks single-user events and "Not Set" an unfinished setup;
    // either as a real ID would be mistaken for those.
    if (TextEqual(trimmed, QStringLiteral("Single")) ||
        TextEqual(trimmed, QStringLiteral("Not Set"))) {
        return QStringLiteral("The ID \"%1\" is reserved by the program. Please choose another ID.")
            .arg(trimmed);
    }
    return {};
}

} // namespace OwnerId
