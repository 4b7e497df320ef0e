#pragma once

#include <QString>

#include <cstdint>

// The number at the start of a text, read the lenient way users' entries have
// always been read: blanks, tabs and line feeds are skipped anywhere, then an
// optional sign, digits and a decimal point; reading stops at the first other
// character. No number gives 0 ("abc" is 0, "12abc" is 12, " 1 2" is 12).
double NumericPrefix(const QString& text);

// NumericPrefix rounded half to even and held in 16 bits (clamped).
int16_t NumericPrefixInt16(const QString& text);
