#pragma once

#include <QByteArray>
#include <QString>

// Data files are Windows-1252 bytes on every platform, so that a shared
// folder can mix users of different systems. Characters outside the code page
// are written as "?".
namespace TextCodec {

QByteArray ToWindows1252(const QString& text);
QString FromWindows1252(const QByteArray& bytes);

// CR LF, the line end of every file the program writes.
inline constexpr const char* kLineEnd = "\r\n";

} // namespace TextCodec
