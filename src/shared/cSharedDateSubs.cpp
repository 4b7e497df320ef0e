#include "shared/cSharedDateSubs.h"

#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"

#include <QRegularExpression>

#include <cmath>

namespace {

const QString kModule = QStringLiteral("cDateSubs");

// 1-based position of what in text, 0 when absent.
int InStr(const QString& text, const QString& what) {
    return static_cast<int>(text.indexOf(what)) + 1;
}

QString TwoDigits(int n) {
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

} // namespace

cSharedDateSubs::cSharedDateSubs(const QString& probeText, const QLocale& locale)
    : m_probe(probeText.isEmpty() ? SystemProbeText(locale) : probeText), m_locale(locale) {
    Initialise();
}

cSharedDateSubs& cSharedDateSubs::ForDateStyle(int dateStyle) {
    // Each made on first use, so the log shows only the styles in use.
    if (dateStyle == 1) {
        static cSharedDateSubs dayFirst(QStringLiteral("25/12/2001"));
        return dayFirst;
    }
    static cSharedDateSubs monthFirst(QStringLiteral("12/25/2001"));
    return monthFirst;
}

cSharedDateSubs& cSharedDateSubs::ForSettings(const cSHAREDSettings& settings) {
    return ForDateStyle(settings.sGet(QStringLiteral("DateStyle"), 1).toInt());
}

QString cSharedDateSubs::SystemProbeText(const QLocale& locale) {
    return locale.toString(QDate(2001, 12, 25), QLocale::ShortFormat);
}

QString cSharedDateSubs::fDateSeparator() const {
    for (const char* sep : {"/", ".", "-"}) {
        if (m_probe.contains(QLatin1String(sep))) {
            return QLatin1String(sep);
        }
    }
    return QStringLiteral("/");
}

QString cSharedDateSubs::fLocalDateFormatString() {
    const QString& s = m_probe;
    int y = InStr(s, QStringLiteral("2001"));
    bool twoDigitYear = false;
    if (y == 0) {
        y = InStr(s, QStringLiteral("01"));
        twoDigitYear = true;
    }
    const int m = InStr(s, QStringLiteral("12"));
    const int d = InStr(s, QStringLiteral("25"));

    QString f;
    if (y != 1) {
        SysDateYearField = 3;
        if (m <= d) {
            f = QStringLiteral("MM/DD/YYYY");
            SysDateMonthField = 1;
            SysDateDayField = 2;
        } else {
            f = QStringLiteral("DD/MM/YYYY");
            SysDateMonthField = 2;
            SysDateDayField = 1;
        }
    } else {
        SysDateYearField = 1;
        if (m > y && d > m) {
            f = QStringLiteral("YYYY/MM/DD");
            SysDateMonthField = 2;
            SysDateDayField = 3;
        } else if (m < d) {
            f = QStringLiteral("YYYY/DD/MM");
            SysDateMonthField = 3;
            SysDateDayField = 2;
        }
    }
    if (s.contains(QLatin1Char('.'))) {
        f.replace(QLatin1Char('/'), QLatin1Char('.'));
    }
    if (s.contains(QLatin1Char('-'))) {
        f.replace(QLatin1Char('/'), QLatin1Char('-'));
    }
    if (twoDigitYear) {
        f.replace(QStringLiteral("YYYY"), QStringLiteral("YY"));
    }
    return f;
}

QString cSharedDateSubs::fLocalFullDateFormat() const {
    QString f = QStringLiteral("DD/MMM/YYYY");
    if (m_probe.contains(QLatin1Char('.'))) {
        f.replace(QLatin1Char('/'), QLatin1Char('.'));
    }
    if (m_probe.contains(QLatin1Char('-'))) {
        f.replace(QLatin1Char('/'), QLatin1Char('-'));
    }
    return f;
}

void cSharedDateSubs::Initialise() {
    if (m_initialised) {
        return;
    }
    m_initialised = true;

    // The toolkit has no locale words for true and false; these are what the
    // program writes and recognises.
    TrueStr = QStringLiteral("True");
    FalseStr = QStringLiteral("False");

    DateFormatString = fLocalDateFormatString();
    FullDateFormatString = fLocalFullDateFormat();
    FullDateFormatPlusTimeString = FullDateFormatString + QStringLiteral(" HH:MM");
    DateSeparator = fDateSeparator();

    Log().AddAction(QStringLiteral("Date format: ") + DateFormatString);
    Log().AddAction(QStringLiteral("Full date format: ") + FullDateFormatString);
    Log().AddAction(QStringLiteral("Full date format plus time: ") + FullDateFormatPlusTimeString);
    Log().AddAction(QStringLiteral("Date separator: ") + DateSeparator);
    Log().AddAction(QStringLiteral("True string: ") + TrueStr + QStringLiteral(" False string: ") +
                    FalseStr);
}

QString cSharedDateSubs::FormatWith(DateValue date, const QString& format, const QLocale& locale) {
    // Outside years 100..9999 there is no date to show.
    static const DateValue first = FromQDate(QDate(kMinYear, 1, 1));
    static const DateValue last = FromQDate(QDate(kMaxYear, 12, 31)) + 1;
    if (!std::isfinite(date) || date <= first - 1 || date >= last) {
        return {};
    }
    const QDateTime dt = ToQDateTime(date);
    if (!dt.isValid()) {
        return {};
    }
    const QDate day = dt.date();
    const QTime time = dt.time();
    QString out;
    bool afterHours = false; // "MM" right after "HH:" means minutes
    qsizetype i = 0;
    auto at = [&](const char* token) {
        return format.mid(i, static_cast<qsizetype>(qstrlen(token)))
                   .compare(QLatin1String(token), Qt::CaseInsensitive) == 0;
    };
    while (i < format.size()) {
        if (at("YYYY")) {
            out += QStringLiteral("%1").arg(day.year(), 4, 10, QLatin1Char('0'));
            i += 4;
        } else if (at("YY")) {
            out += TwoDigits(day.year() % 100);
            i += 2;
        } else if (at("MMMM")) {
            out += locale.monthName(day.month(), QLocale::LongFormat);
            i += 4;
        } else if (at("MMM")) {
            out += locale.monthName(day.month(), QLocale::ShortFormat);
            i += 3;
        } else if (at("MM")) {
            out += TwoDigits(afterHours ? time.minute() : day.month());
            i += 2;
        } else if (at("DDDD")) {
            out += locale.dayName(day.dayOfWeek(), QLocale::LongFormat);
            i += 4;
        } else if (at("DDD")) {
            out += locale.dayName(day.dayOfWeek(), QLocale::ShortFormat);
            i += 3;
        } else if (at("DD")) {
            out += TwoDigits(day.day());
            i += 2;
        } else if (at("HH")) {
            out += TwoDigits(time.hour());
            i += 2;
            if (i < format.size() && format.at(i) == QLatin1Char(':')) {
                out += QLatin1Char(':');
                ++i;
                afterHours = true;
                continue;
            }
        } else if (at("NN")) {
            out += TwoDigits(time.minute());
            i += 2;
        } else if (at("SS")) {
            out += TwoDigits(time.second());
            i += 2;
        } else {
            out += format.at(i);
            ++i;
        }
        afterHours = false;
    }
    return out;
}

QString cSharedDateSubs::format(DateValue date, const QString& formatString,
                                const char* procedure) {
    Initialise();
    const QString text = FormatWith(date, formatString, m_locale);
    if (text.isEmpty() && !formatString.isEmpty()) {
        Log().AddAction(QStringLiteral("Invalid procedure call or argument (5)"),
                        QLatin1String(procedure), kModule);
    }
    return text;
}

QString cSharedDateSubs::FormatDate(DateValue date) {
    return format(date, FullDateFormatString, "FormatDate");
}

QString cSharedDateSubs::FormatDatePlusTime(DateValue date) {
    return format(date, FullDateFormatString, "FormatDatePlusTime");
}

QString cSharedDateSubs::LocalDateFormat() {
    Initialise();
    return DateFormatString;
}

QString cSharedDateSubs::ShortFormatDate(DateValue date) {
    return format(date, DateFormatString, "ShortFormatDate");
}

QString cSharedDateSubs::ShortFormatDateTime(DateValue date) {
    return format(date, DateFormatString + QStringLiteral(" HH:MM"), "ShortFormatDateTime");
}

QString cSharedDateSubs::ShortFormatDayDate(DateValue date) {
    return format(date, QStringLiteral("DDD ") + DateFormatString, "ShortFormatDayDate");
}

QString cSharedDateSubs::DayMonth(DateValue date) {
    return DayMonth(ToQDate(date));
}

QString cSharedDateSubs::DayMonth(const QDate& d) {
    Initialise();
    if (!d.isValid() || SysDateDayField == SysDateMonthField) {
        return {};
    }
    const QString day = TwoDigits(d.day());
    const QString month = TwoDigits(d.month());
    return SysDateDayField < SysDateMonthField ? day + DateSeparator + month
                                               : month + DateSeparator + day;
}

std::optional<DateValue> cSharedDateSubs::ConvertMyDateVar(const QString& text) {
    Initialise();
    static const QRegularExpression separators(QStringLiteral("[/.\\-]"));
    const QStringList parts = text.trimmed().split(separators);
    if (parts.size() != 3 || SysDateYearField < 1 || SysDateMonthField < 1 || SysDateDayField < 1) {
        return std::nullopt;
    }
    bool okY = false;
    bool okM = false;
    bool okD = false;
    const QString yearText = parts.at(SysDateYearField - 1).trimmed();
    int year = yearText.toInt(&okY);
    const int month = parts.at(SysDateMonthField - 1).trimmed().toInt(&okM);
    const int day = parts.at(SysDateDayField - 1).trimmed().toInt(&okD);
    if (!okY || !okM || !okD) {
        return std::nullopt;
    }
    if (yearText.size() <= 2) {
        year += year < 30 ? 2000 : 1900;
    }
    const QDate d(year, month, day);
    if (!d.isValid() || year < kMinYear || year > kMaxYear) {
        return std::nullopt;
    }
    return FromQDate(d);
}
