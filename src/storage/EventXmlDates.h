#pragma once

#include "shared/DateValue.h"
#include "storage/EventXmlText.h"

#include <QByteArrayView>
#include <QString>

#include <cstddef>

// The date forms of the event record, "YYYY-MM-DD" and "YYYY-MM-DD HH:MM",
// written and read with plain calendar arithmetic. Internal to the record
// format.
namespace EventXmlCodec::detail {

inline constexpr std::size_t kMaxDate = 24; // the slow path's widest form

// Dates without QDate: the loader and the writer handle two dates per event.

constexpr qint64 daysFromCivil(qint64 y, unsigned m, unsigned d) {
    y -= m <= 2 ? 1 : 0;
    const qint64 era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<qint64>(doe) - 719468;
}

inline constexpr qint64 kEpoch = daysFromCivil(1899, 12, 30);

struct Civil {
    qint64 y;
    unsigned m;
    unsigned d;
};

constexpr Civil civilFromDays(qint64 z) {
    z += 719468;
    const qint64 era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const qint64 y = static_cast<qint64>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    return {y + (m <= 2 ? 1 : 0), m, d};
}

inline void put2(char* p, unsigned v) {
    p[0] = static_cast<char>('0' + v / 10);
    p[1] = static_cast<char>('0' + v % 10);
}

// Writes "YYYY-MM-DD" (and " HH:MM") at p and returns the end; null when
// the year needs the shared formatter.
inline char* writeFast(char* buf, DateValue v, bool withTime) {
    DayAndSeconds s = SplitDateValue(v);
    // A moment after the last representable day (one within a second of
    // 10000-01-01 rounds there) is stored as that day's last minute: a year
    // 10000 would read back as no date at all.
    if (s.day > static_cast<qint64>(kLastDayValue)) {
        s = {static_cast<qint64>(kLastDayValue), 86399};
    }
    const Civil c = civilFromDays(s.day + kEpoch);
    if (c.y < 1 || c.y > 9999) {
        return nullptr;
    }
    const auto y = static_cast<unsigned>(c.y);
    put2(buf, y / 100);
    put2(buf + 2, y % 100);
    buf[4] = '-';
    put2(buf + 5, c.m);
    buf[7] = '-';
    put2(buf + 8, c.d);
    if (!withTime) {
        return buf + 10;
    }
    buf[10] = ' ';
    put2(buf + 11, static_cast<unsigned>(s.seconds / 3600));
    buf[13] = ':';
    put2(buf + 14, static_cast<unsigned>(s.seconds / 60 % 60));
    return buf + 16;
}

inline char* putDateText(char* p, DateValue v, bool withTime) {
    if (char* q = writeFast(p, v, withTime)) {
        return q;
    }
    const QString slow = withTime ? FormatYMDHM(v) : FormatYMD(v);
    return putAnsi(p, slow.left(static_cast<qsizetype>(kMaxDate)));
}

// A general date-time text: the written forms first, then what the shared
// parser and a bare time of day accept. Throws Type mismatch otherwise.
DateValue parseDateTime(QByteArrayView t);

} // namespace EventXmlCodec::detail
