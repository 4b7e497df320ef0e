#pragma once

#include <QString>

// The program's text-equality routine for names typed by users (owners,
// layers, ID codes in tables): blanks around either side do not count, and
// neither does letter case, because an owner name also names a file in the
// shared folder and file names there are not case-sensitive.
inline bool TextEqual(const QString& a, const QString& b) {
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}
