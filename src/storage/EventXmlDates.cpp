#include "storage/EventXmlDates.h"

#include "storage/EventXmlCodec.h"

#include "shared/RuntimeError.h"

#include <QTime>

#include <array>
#include <optional>

namespace EventXmlCodec {
namespace detail {
namespace {

bool isLeap(qint64 y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

unsigned daysInMonth(qint64 y, unsigned m) {
    static constexpr std::array<unsigned, 12> kDays = {31, 28, 31, 30, 31, 30,
                                                       31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : kDays[m - 1];
}

inline bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" exactly, as the writer writes them.
std::optional<DateValue> parseWrittenDate(QByteArrayView t) {
    if (t.size() != 10 && t.size() != 16) {
        return std::nullopt;
    }
    const char* p = t.data();
    static constexpr std::array<int, 8> kDigitPos = {0, 1, 2, 3, 5, 6, 8, 9};
    for (int i : kDigitPos) {
        if (!isDigit(p[i])) {
            return std::nullopt;
        }
    }
    if (p[4] != '-' || p[7] != '-') {
        return std::nullopt;
    }
    const int y = (p[0] - '0') * 1000 + (p[1] - '0') * 100 + (p[2] - '0') * 10 + (p[3] - '0');
    const unsigned m = static_cast<unsigned>((p[5] - '0') * 10 + (p[6] - '0'));
    const unsigned d = static_cast<unsigned>((p[8] - '0') * 10 + (p[9] - '0'));
    if (y < kMinYear || m < 1 || m > 12 || d < 1 || d > daysInMonth(y, m)) {
        return std::nullopt;
    }
    qint64 seconds = 0;
    if (t.size() == 16) {
        if (p[10] != ' ' || p[13] != ':' || !isDigit(p[11]) || !isDigit(p[12]) || !isDigit(p[14]) ||
            !isDigit(p[15])) {
            return std::nullopt;
        }
        const int h = (p[11] - '0') * 10 + (p[12] - '0');
        const int mi = (p[14] - '0') * 10 + (p[15] - '0');
        if (h > 23 || mi > 59) {
            return std::nullopt;
        }
        seconds = h * 3600 + mi * 60;
    }
    return JoinDateValue(daysFromCivil(y, m, d) - kEpoch, seconds);
}

} // namespace

DateValue parseDateTime(QByteArrayView t) {
    if (std::optional<DateValue> v = parseWrittenDate(t)) {
        return *v;
    }
    const QString text = FromAnsi(t);
    if (std::optional<DateValue> v = ParseDateValue(text)) {
        return *v;
    }
    for (const char* form : {"H:mm", "H:mm:ss"}) {
        const QTime time = QTime::fromString(text.trimmed(), QLatin1String(form));
        if (time.isValid()) {
            return FromQTime(time);
        }
    }
    throw RuntimeError::typeMismatch();
}

} // namespace detail

using detail::kMaxDate;
using detail::putDateText;

void AppendYMD(QByteArray& out, DateValue v) {
    char buf[kMaxDate];
    out.append(buf, putDateText(buf, v, false) - buf);
}

void AppendYMDHM(QByteArray& out, DateValue v) {
    char buf[kMaxDate];
    out.append(buf, putDateText(buf, v, true) - buf);
}

} // namespace EventXmlCodec
