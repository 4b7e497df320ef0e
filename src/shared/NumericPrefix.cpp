#include "shared/NumericPrefix.h"

#include <algorithm>
#include <cmath>
#include <limits>

double NumericPrefix(const QString& text) {
    QString digits;
    bool seenPoint = false;
    bool seenSign = false;
    for (const QChar c : text) {
        if (c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n') ||
            c == QLatin1Char('\r')) {
            continue;
        }
        if ((c == QLatin1Char('-') || c == QLatin1Char('+')) && digits.isEmpty() && !seenSign) {
            seenSign = true;
            digits += c;
        } else if (c == QLatin1Char('.') && !seenPoint) {
            seenPoint = true;
            digits += c;
        } else if (c.isDigit() && c.unicode() < 128) {
            digits += c;
        } else {
            break;
        }
    }
    bool ok = false;
    const double value = digits.toDouble(&ok);
    return ok ? value : 0.0;
}

int16_t NumericPrefixInt16(const QString& text) {
    const double rounded = std::nearbyint(NumericPrefix(text)); // half to even
    return static_cast<int16_t>(std::clamp(rounded, double(std::numeric_limits<int16_t>::min()),
                                           double(std::numeric_limits<int16_t>::max())));
}
