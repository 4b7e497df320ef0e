#include "storage/IcsEventMapping.h"

#include "shared/Clock.h"
#include "storage/IcsRecurrence.h"

#include <libical/ical.h>

#include <QStringDecoder>
#include <QTimeZone>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>

namespace IcsEventMapping {

void IcalFree::operator()(icalcomponent* c) const {
    icalcomponent_free(c);
}

namespace {

// An X-TARVO-* property: one field of the event record in the text form of
// the event file (dates "YYYY-MM-DD", times "YYYY-MM-DD HH:MM").
struct TarvoField {
    const char* name;
    std::function<QString(const clsEvent&)> get;
    std::function<bool(clsEvent&, const QString&)> set; // false: value not taken
};

constexpr const char* kCategoryField = "X-TARVO-CATEGORY";
constexpr const char* kRecurrenceTypeField = "X-TARVO-RECURRENCE-TYPE";

QString boolText(bool b) {
    return b ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
}

bool setBool(bool& field, const QString& text) {
    if (text.compare(QLatin1String("TRUE"), Qt::CaseInsensitive) == 0) {
        field = true;
    } else if (text.compare(QLatin1String("FALSE"), Qt::CaseInsensitive) == 0) {
        field = false;
    } else {
        return false;
    }
    return true;
}

template <typename T> bool setNumber(const QString& text, const std::function<void(T)>& set) {
    bool ok = false;
    const qlonglong n = text.toLongLong(&ok);
    if (!ok || n < std::numeric_limits<T>::min() || n > std::numeric_limits<T>::max()) {
        return false;
    }
    set(static_cast<T>(n));
    return true;
}

bool setDate(const QString& text, const std::function<void(DateValue)>& set) {
    const std::optional<DateValue> v = ParseDateValue(text);
    if (!v) {
        return false;
    }
    set(*v);
    return true;
}

// Line breaks inside a value are written as LF (the calendar format has no
// CR of its own); share lists are CR LF inside Tarvo.
QString toLf(const QString& s) {
    QString out = s;
    return out.replace(QLatin1String("\r\n"), QLatin1String("\n"));
}
QString toCrLf(const QString& s) {
    QString out = toLf(s);
    return out.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
}

#define TEXT_FIELD(NAME, EXPR)                                                                     \
    TarvoField {                                                                                   \
        NAME, [](const clsEvent& e) { return e.EXPR; }, [](clsEvent& e, const QString& v) {        \
            e.EXPR = v;                                                                            \
            return true;                                                                           \
        }                                                                                          \
    }
#define BOOL_FIELD(NAME, EXPR)                                                                     \
    TarvoField {                                                                                   \
        NAME, [](const clsEvent& e) { return boolText(e.EXPR); },                                  \
            [](clsEvent& e, const QString& v) { return setBool(e.EXPR, v); }                       \
    }
#define BOOL_PROPERTY(NAME, GET, SET)                                                              \
    TarvoField {                                                                                   \
        NAME, [](const clsEvent& e) { return boolText(e.GET()); },                                 \
            [](clsEvent& e, const QString& v) {                                                    \
                bool b = false;                                                                    \
                if (!setBool(b, v)) {                                                              \
                    return false;                                                                  \
                }                                                                                  \
                e.SET(b);                                                                          \
                return true;                                                                       \
            }                                                                                      \
    }
#define NUMBER_PROPERTY(NAME, TYPE, GET, SET)                                                      \
    TarvoField {                                                                                   \
        NAME, [](const clsEvent& e) { return QString::number(e.GET()); },                          \
            [](clsEvent& e, const QString& v) {                                                    \
                return setNumber<TYPE>(v, [&e](TYPE n) { e.SET(n); });                             \
            }                                                                                      \
    }
#define DATE_PROPERTY(NAME, FORMAT, GET, SET)                                                      \
    TarvoField {                                                                                   \
        NAME, [](const clsEvent& e) { return FORMAT(e.GET()); },                                   \
            [](clsEvent& e, const QString& v) {                                                    \
                return setDate(v, [&e](DateValue d) { e.SET(d); });                                \
            }                                                                                      \
    }

const std::vector<TarvoField>& tarvoFields() {
    static const std::vector<TarvoField> fields = {
        TEXT_FIELD("X-TARVO-ID", IDCode),
        TarvoField{"X-TARVO-OWNER", [](const clsEvent& e) { return e.Owner(); },
                   [](clsEvent& e, const QString& v) {
                       e.setOwner(v);
                       return true;
                   }},
        NUMBER_PROPERTY("X-TARVO-LAYER", int16_t, Layer, setLayer),
        TEXT_FIELD("X-TARVO-LAYER-NAME", SharedLayerName),
        BOOL_FIELD("X-TARVO-SHARED", SharedEvent),
        BOOL_FIELD("X-TARVO-SHARE-SPECIFIC", ShareWithSpecific),
        TarvoField{"X-TARVO-SHARE-WITH", [](const clsEvent& e) { return toLf(e.ShareNames); },
                   [](clsEvent& e, const QString& v) {
                       e.ShareNames = toCrLf(v);
                       return true;
                   }},
        TEXT_FIELD("X-TARVO-EMAIL", Email),
        NUMBER_PROPERTY("X-TARVO-DAYS-WARNING", int16_t, DaysWarning, setDaysWarning),
        NUMBER_PROPERTY("X-TARVO-MINUTES-WARNING", int16_t, MinutesWarning, setMinutesWarning),
        BOOL_PROPERTY("X-TARVO-ALARM", AlarmSet, setAlarmSet),
        DATE_PROPERTY("X-TARVO-DUE-DATE", FormatYMD, DueDate, setDueDate),
        DATE_PROPERTY("X-TARVO-DUE-TIME", FormatYMDHM, DueTime, setDueTime),
        DATE_PROPERTY("X-TARVO-ALARM-TIME", FormatYMDHM, AlarmTime, setAlarmTime),
        BOOL_FIELD("X-TARVO-RUN-FILE", ExecFile),
        TEXT_FIELD("X-TARVO-FILE", Filename),
        BOOL_FIELD("X-TARVO-PLAY-SOUND", PlayWav),
        TEXT_FIELD("X-TARVO-SOUND-FILE", WavFile),
        BOOL_PROPERTY("X-TARVO-RECURRING", Recurring, setRecurring),
        NUMBER_PROPERTY(kRecurrenceTypeField, int32_t, RecurrenceType, setRecurrenceType),
        NUMBER_PROPERTY("X-TARVO-WEEKDAYS", int16_t, WeekDays, setWeekDays),
        NUMBER_PROPERTY("X-TARVO-DAY-OF-MONTH", int16_t, DayOfMonth, setDayOfMonth),
        NUMBER_PROPERTY("X-TARVO-MONTH", int16_t, MonthNumber, setMonthNumber),
        NUMBER_PROPERTY("X-TARVO-DAYNUMBER", int16_t, Daynumber, setDaynumber),
        NUMBER_PROPERTY("X-TARVO-DAY-OF-WEEK", int16_t, DayOfWeek, setDayOfWeek),
        NUMBER_PROPERTY("X-TARVO-PERIOD", int16_t, Period, setPeriod),
        DATE_PROPERTY("X-TARVO-START-DATE", FormatYMD, StartDate, setStartDate),
    };
    return fields;
}

#undef TEXT_FIELD
#undef BOOL_FIELD
#undef BOOL_PROPERTY
#undef NUMBER_PROPERTY
#undef DATE_PROPERTY

QByteArray utf8(const QString& s) {
    return s.toUtf8();
}

QString text(const char* s) {
    return s != nullptr ? QString::fromUtf8(s) : QString();
}

icaltimetype dateOf(DateValue day) {
    // The null date has -1 for hour, minute and second, which libical's
    // rule iterator cannot step from.
    icaltimetype t = icaltime_null_time();
    t.is_date = 1;
    t.year = YearOf(day);
    t.month = MonthOf(day);
    t.day = DayOf(day);
    return t;
}

} // namespace

bool Writable(const clsEvent& event) {
    const IcsRecurrence::Pattern pattern = IcsRecurrence::Write(event);
    const auto early = [](DateValue day) { return YearOf(day) <= kLastYear; };
    return early(pattern.start) && std::all_of(pattern.extra.begin(), pattern.extra.end(), early) &&
           std::all_of(pattern.excluded.begin(), pattern.excluded.end(), early);
}

namespace {

// A day, with the event's time of day when it is timed (floating: local time).
icaltimetype timeOf(DateValue day, const clsEvent& e) {
    if (!e.AlarmSet()) {
        return dateOf(day);
    }
    icaltimetype t = icaltime_null_time();
    t.year = YearOf(day);
    t.month = MonthOf(day);
    t.day = DayOf(day);
    t.hour = HourOf(e.DueTime());
    t.minute = MinuteOf(e.DueTime());
    return t;
}

void addText(icalcomponent* c, icalproperty* p) {
    icalcomponent_add_property(c, p);
}

icalproperty* xProperty(const char* name, const QString& value) {
    icalproperty* p = icalproperty_new_x(utf8(value).constData());
    icalproperty_set_x_name(p, name);
    return p;
}

void addAlarm(icalcomponent* vevent, const clsEvent& e) {
    int seconds = 0;
    if (e.AlarmSet()) {
        seconds = e.MinutesWarning() * 60;
    } else if (e.DaysWarning() > 0) {
        seconds = e.DaysWarning() * 86400;
    } else {
        return;
    }
    icalcomponent* alarm = icalcomponent_new(ICAL_VALARM_COMPONENT);
    icalcomponent_add_property(alarm, icalproperty_new_action(ICAL_ACTION_DISPLAY));
    // A display alarm needs a non-empty DESCRIPTION, or readers refuse the
    // whole file.
    const QString text = e.Desc().isEmpty() ? QStringLiteral("Reminder") : toLf(e.Desc());
    icalcomponent_add_property(alarm, icalproperty_new_description(utf8(text).constData()));
    icaltriggertype trigger = icaltriggertype_from_int(-seconds);
    icalcomponent_add_property(alarm, icalproperty_new_trigger(trigger));
    icalcomponent_add_component(vevent, alarm);
}

// The time zone of a DTSTART, EXDATE or RDATE property: UTC, its TZID, or
// none (floating, read as local time). valid() is false for floating times.
QTimeZone zoneOf(icalproperty* p, const icaltimetype& t, QString* unknown) {
    if (icaltime_is_utc(t)) {
        return QTimeZone::utc();
    }
    icalparameter* tz = icalproperty_get_first_parameter(p, ICAL_TZID_PARAMETER);
    if (tz == nullptr || t.is_date) {
        return {};
    }
    QByteArray id(icalparameter_get_tzid(tz));
    QTimeZone zone(id);
    if (!zone.isValid()) {
        zone = QTimeZone(QTimeZone::windowsIdToDefaultIanaId(id));
    }
    if (!zone.isValid() && unknown != nullptr) {
        *unknown = QString::fromUtf8(id);
    }
    return zone;
}

bool isLocalZone(const QTimeZone& zone) {
    return !zone.isValid() || zone == QTimeZone::systemTimeZone() ||
           zone.id() == QTimeZone::systemTimeZoneId();
}

// The local day and time of an iCalendar time given in zone. A time that
// names no real day and time in years 100 to 9999 gives NaN, which every
// comparison refuses.
DateValue localValue(const icaltimetype& t, const QTimeZone& zone) {
    const QDate date(t.year, t.month, t.day);
    if (!date.isValid() || date.year() < kMinYear || date.year() > kMaxYear ||
        (!t.is_date && !QTime::isValid(t.hour, t.minute, t.second))) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (t.is_date) {
        return FromQDate(date);
    }
    const QTime time(t.hour, t.minute, t.second);
    if (!zone.isValid()) {
        return FromQDate(date) + TimeSerial(t.hour, t.minute, t.second);
    }
    return FromQDateTime(QDateTime(date, time, zone).toLocalTime());
}

// The first occurrence on or after today of a rule that Tarvo cannot keep,
// honouring COUNT, UNTIL, RDATE and EXDATE. Empty when none is left.
std::optional<DateValue> nextOccurrence(icalcomponent* v, const icalrecurrencetype* rule,
                                        const icaltimetype& start, const QTimeZone& zone,
                                        DateValue today) {
    QList<DateValue> excluded;
    for (icalproperty* p = icalcomponent_get_first_property(v, ICAL_EXDATE_PROPERTY); p != nullptr;
         p = icalcomponent_get_next_property(v, ICAL_EXDATE_PROPERTY)) {
        const icaltimetype t = icalproperty_get_exdate(p);
        excluded.append(localValue(t, zoneOf(p, t, nullptr)));
    }
    std::optional<DateValue> best;
    auto consider = [&](DateValue v) {
        if (DateOnly(v) >= today && !excluded.contains(v) && (!best || v < *best)) {
            best = v;
        }
    };
    if (rule != nullptr) {
        icalrecur_iterator* it = icalrecur_iterator_new(*rule, start);
        // Without COUNT the iterator may start near today instead of walking
        // every occurrence since DTSTART (a day early: the zone may differ).
        const DateValue from = today - 1;
        if (it != nullptr && rule->count == 0 && DateOnly(localValue(start, zone)) < from) {
            icaltimetype near = start;
            near.year = YearOf(from);
            near.month = MonthOf(from);
            near.day = DayOf(from);
            icalrecur_iterator_set_start(it, near);
        }
        // Bounded: a daily rule needs about 3,650,000 steps for 10,000 years.
        for (int i = 0; it != nullptr && i < 4000000; ++i) {
            const icaltimetype t = icalrecur_iterator_next(it);
            if (icaltime_is_null_time(t)) {
                break;
            }
            const DateValue value = localValue(t, zone);
            if (DateOnly(value) >= today && !excluded.contains(value)) {
                consider(value);
                break;
            }
        }
        if (it != nullptr) {
            icalrecur_iterator_free(it);
        }
    } else {
        consider(localValue(start, zone));
    }
    for (icalproperty* p = icalcomponent_get_first_property(v, ICAL_RDATE_PROPERTY); p != nullptr;
         p = icalcomponent_get_next_property(v, ICAL_RDATE_PROPERTY)) {
        const icaldatetimeperiodtype d = icalproperty_get_rdate(p);
        const icaltimetype t = icaltime_is_null_time(d.time) ? d.period.start : d.time;
        consider(localValue(t, zoneOf(p, t, nullptr)));
    }
    return best;
}

// The seconds before the start of the first VALARM with a trigger relative
// to the start; 0 when there is none.
int alarmSecondsBefore(icalcomponent* v) {
    for (icalcomponent* a = icalcomponent_get_first_component(v, ICAL_VALARM_COMPONENT);
         a != nullptr; a = icalcomponent_get_next_component(v, ICAL_VALARM_COMPONENT)) {
        icalproperty* p = icalcomponent_get_first_property(a, ICAL_TRIGGER_PROPERTY);
        if (p == nullptr) {
            continue;
        }
        const icaltriggertype trigger = icalproperty_get_trigger(p);
        if (!icaltime_is_null_time(trigger.time)) {
            continue; // an absolute moment: no warning period
        }
        const int seconds = icaldurationtype_as_int(trigger.duration);
        return seconds < 0 ? -seconds : 0;
    }
    return 0;
}

void makeOneOff(clsEvent& e, DateValue when) {
    e.setRecurring(false);
    e.setRecurrenceType(clsEvent::DayOfMonthType);
    e.setDayOfMonth(static_cast<int16_t>(DayOf(when)));
    e.setMonthNumber(static_cast<int16_t>(MonthOf(when)));
    e.setDueDate(when);
}

void setWarnings(clsEvent& e, icalcomponent* v, const icaltimetype& start, DateValue when,
                 QString* simplified) {
    const int before = alarmSecondsBefore(v);
    if (start.is_date) {
        e.setAlarmSet(false);
        e.setDaysWarning(static_cast<int16_t>(std::min(9999, (before + 86399) / 86400)));
        return;
    }
    e.setAlarmSet(true);
    e.setDueTime(TimeOnly(when));
    int minutes = before / 60;
    if (minutes > 60) {
        // Tarvo warns at most an hour ahead of an alarm; earlier warnings
        // become days of warning.
        e.setDaysWarning(static_cast<int16_t>(std::min(9999, (before + 86399) / 86400)));
        if (simplified->isEmpty()) {
            *simplified = QStringLiteral("alarm more than 60 minutes ahead");
        }
        minutes = 0;
    }
    e.setMinutesWarning(static_cast<int16_t>(minutes));
    e.setAlarmTime(e.DueTime() - minutes / 1440.0);
}

// Sets every X-TARVO-* field found. True when the record's repeat type is
// among them: only then does the record describe the whole event (its
// repeats, its layer), so that its own fields stand in for the rule; a lone
// field such as the owner, added by hand or by another program, does not.
bool applyTarvoFields(icalcomponent* v, clsEvent& e, QString* category) {
    bool whole = false;
    for (icalproperty* p = icalcomponent_get_first_property(v, ICAL_X_PROPERTY); p != nullptr;
         p = icalcomponent_get_next_property(v, ICAL_X_PROPERTY)) {
        const char* name = icalproperty_get_x_name(p);
        if (name == nullptr) {
            continue;
        }
        if (qstricmp(name, kCategoryField) == 0) {
            *category = text(icalproperty_get_x(p)).trimmed();
            continue;
        }
        for (const TarvoField& f : tarvoFields()) {
            if (qstricmp(name, f.name) == 0) {
                const bool read = f.set(e, text(icalproperty_get_x(p)));
                whole = whole || (read && qstricmp(name, kRecurrenceTypeField) == 0);
                break;
            }
        }
    }
    return whole;
}

QString firstError(icalcomponent* c) {
    if (icalproperty* p = icalcomponent_get_first_property(c, ICAL_XLICERROR_PROPERTY)) {
        return text(icalproperty_get_xlicerror(p)).simplified();
    }
    for (icalcomponent* child = icalcomponent_get_first_component(c, ICAL_ANY_COMPONENT);
         child != nullptr; child = icalcomponent_get_next_component(c, ICAL_ANY_COMPONENT)) {
        const QString error = firstError(child);
        if (!error.isEmpty()) {
            return error;
        }
    }
    return {};
}

} // namespace

IcalComponent ToVEvent(const clsEvent& e, const QString& category, const Options& options) {
    IcalComponent v(icalcomponent_new(ICAL_VEVENT_COMPONENT));
    icalcomponent* c = v.get();
    const QString uid = QStringLiteral("tarvo-") + e.IDCode + QLatin1Char('-') +
                        QString::fromLatin1(QUrl::toPercentEncoding(e.Owner()));
    addText(c, icalproperty_new_uid(utf8(uid).constData()));
    const QDateTime stamp = ToQDateTime(Clock::now()).toUTC();
    icaltimetype dtstamp =
        icaltime_from_timet_with_zone(stamp.toSecsSinceEpoch(), 0, icaltimezone_get_utc_timezone());
    addText(c, icalproperty_new_dtstamp(dtstamp));
    // An empty SUMMARY is an error to calendar readers (the whole file is
    // refused); the property is optional, so an event without a description
    // goes without it.
    if (!e.Desc().isEmpty()) {
        addText(c, icalproperty_new_summary(utf8(toLf(e.Desc())).constData()));
    }

    const IcsRecurrence::Pattern pattern = IcsRecurrence::Write(e);
    addText(c, icalproperty_new_dtstart(timeOf(pattern.start, e)));
    if (!pattern.rule.isEmpty()) {
        addText(c,
                icalproperty_new_rrule(icalrecurrencetype_from_string(pattern.rule.constData())));
    }
    for (DateValue day : pattern.extra) {
        icaldatetimeperiodtype rdate{};
        rdate.time = timeOf(day, e);
        rdate.period = icalperiodtype_null_period();
        addText(c, icalproperty_new_rdate(rdate));
    }
    for (DateValue day : pattern.excluded) {
        addText(c, icalproperty_new_exdate(timeOf(day, e)));
    }
    if (!category.trimmed().isEmpty()) {
        addText(c, icalproperty_new_categories(utf8(category.trimmed()).constData()));
    }
    addAlarm(c, e);
    if (options.tarvoFields) {
        for (const TarvoField& f : tarvoFields()) {
            const QString value = f.get(e);
            if (!value.isEmpty()) {
                addText(c, xProperty(f.name, value));
            }
        }
        // libical writes a comma inside a category as a separator; the
        // whole name travels here too.
        if (!category.trimmed().isEmpty()) {
            addText(c, xProperty(kCategoryField, category.trimmed()));
        }
    }
    return v;
}

ReadEvent FromVEvent(icalcomponent* v, DateValue today, const Options& options) {
    ReadEvent out;
    if (icalcomponent_get_first_property(v, ICAL_RECURRENCEID_PROPERTY) != nullptr) {
        out.skipped = QStringLiteral("changes one occurrence of another event");
        return out;
    }
    if (icalcomponent_get_status(v) == ICAL_STATUS_CANCELLED) {
        out.skipped = QStringLiteral("cancelled");
        return out;
    }
    icalproperty* startProperty = icalcomponent_get_first_property(v, ICAL_DTSTART_PROPERTY);
    if (startProperty == nullptr) {
        out.skipped = QStringLiteral("no start date");
        return out;
    }
    const icaltimetype start = icalproperty_get_dtstart(startProperty);
    if (icaltime_is_null_time(start)) {
        out.skipped = QStringLiteral("no start date");
        return out;
    }
    if (icalproperty* p = icalcomponent_get_first_property(v, ICAL_CATEGORIES_PROPERTY)) {
        out.category = text(icalproperty_get_categories(p)).trimmed();
    }

    QString unknownZone;
    const QTimeZone zone = zoneOf(startProperty, start, &unknownZone);
    const DateValue first = localValue(start, zone);
    if (!InDateRange(first)) {
        out.skipped = QStringLiteral("a start date outside years 100 to 9999");
        return out;
    }
    if (YearOf(first) > kLastYear) {
        out.skipped = QStringLiteral("a start date after the year 3000");
        return out;
    }
    auto event = std::make_shared<clsEvent>();
    clsEvent& e = *event;
    e.setDesc(toCrLf(text(icalcomponent_get_summary(v))));
    e.setStartDate(today);

    icalproperty* ruleProperty = icalcomponent_get_first_property(v, ICAL_RRULE_PROPERTY);
    std::optional<icalrecurrencetype> rule;
    if (ruleProperty != nullptr) {
        rule = icalproperty_get_rrule(ruleProperty);
    }
    QString why;
    std::optional<IcsRecurrence::Rule> tarvoRule;
    if (rule) {
        if (icalcomponent_get_next_property(v, ICAL_RRULE_PROPERTY) != nullptr) {
            why = QStringLiteral("several rules");
        } else if (icalcomponent_get_first_property(v, ICAL_RDATE_PROPERTY) != nullptr ||
                   icalcomponent_get_first_property(v, ICAL_EXDATE_PROPERTY) != nullptr) {
            why = QStringLiteral("extra or excluded dates");
        } else if (!unknownZone.isEmpty()) {
            why = QStringLiteral("unknown time zone ") + unknownZone;
        } else if (!isLocalZone(zone)) {
            why = QStringLiteral("time zone ") + QString::fromUtf8(zone.id());
        } else {
            tarvoRule = IcsRecurrence::Read(*rule, DateOnly(first), &why);
        }
    }

    DateValue when = first;
    if (tarvoRule) {
        IcsRecurrence::Apply(*tarvoRule, e);
        const DateValue from = std::max(today, DateOnly(first));
        if (tarvoRule->type == clsEvent::EveryXMonths || tarvoRule->type == clsEvent::Weekly ||
            tarvoRule->type == clsEvent::EveryXDays) {
            e.setStartDate(first);
        }
        e.CalcNextAfterDate(from);
        when = e.DueDate() + TimeOnly(first);
    } else {
        const std::optional<DateValue> next =
            nextOccurrence(v, rule ? &*rule : nullptr, start, zone, rule ? today : -1e9);
        if (!next) {
            out.skipped = QStringLiteral("in the past");
            // The Tarvo fields may still give the event (with a due date to roll on).
            if (!options.tarvoFields || !applyTarvoFields(v, e, &out.category)) {
                return out;
            }
            out.skipped.clear();
            out.tarvoFields = true;
            out.event = event;
            return out;
        }
        when = *next;
        makeOneOff(e, when);
        out.simplified = rule ? why : QString();
    }
    setWarnings(e, v, start, when, &out.simplified);

    if (options.tarvoFields && applyTarvoFields(v, e, &out.category)) {
        out.tarvoFields = true;
        out.simplified.clear(); // the record's own fields repeat it exactly
    }
    out.event = event;
    return out;
}

Calendar ParseCalendar(const QByteArray& bytes) {
    Calendar out;
    QByteArray data = bytes;
    if (data.startsWith("\xEF\xBB\xBF")) {
        data.remove(0, 3);
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString decoded = decoder.decode(data);
    if (decoder.hasError() || data.contains('\0')) {
        out.error = QStringLiteral("The file is not UTF-8 text, as iCalendar files are.");
        return out;
    }
    if (!decoded.trimmed().startsWith(QLatin1String("BEGIN:VCALENDAR"), Qt::CaseInsensitive)) {
        out.error = QStringLiteral("The file is not an iCalendar file (it does not begin with "
                                   "BEGIN:VCALENDAR).");
        return out;
    }
    icalerror_set_errors_are_fatal(0);
    out.calendar.reset(icalparser_parse_string(data.constData()));
    if (!out.calendar ||
        !decoded.trimmed().endsWith(QLatin1String("END:VCALENDAR"), Qt::CaseInsensitive)) {
        out.calendar.reset();
        out.error = QStringLiteral("The iCalendar file is incomplete: it does not end with "
                                   "END:VCALENDAR.");
        return out;
    }
    const QString error = firstError(out.calendar.get());
    if (!error.isEmpty()) {
        out.error = QStringLiteral("The iCalendar file has an error: ") + error;
        return out;
    }
    auto collect = [&out](icalcomponent* calendar) {
        for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
             c != nullptr; c = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT)) {
            out.events.append(c);
        }
    };
    if (icalcomponent_isa(out.calendar.get()) == ICAL_XROOT_COMPONENT) {
        for (icalcomponent* c =
                 icalcomponent_get_first_component(out.calendar.get(), ICAL_VCALENDAR_COMPONENT);
             c != nullptr;
             c = icalcomponent_get_next_component(out.calendar.get(), ICAL_VCALENDAR_COMPONENT)) {
            collect(c);
        }
    } else {
        collect(out.calendar.get());
    }
    return out;
}

QByteArray WriteCalendar(std::vector<IcalComponent> events) {
    IcalComponent calendar(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_prodid("-//Tarvo//Tarvo 2//EN"));
    for (IcalComponent& e : events) {
        icalcomponent_add_component(calendar.get(), e.release());
    }
    char* text = icalcomponent_as_ical_string_r(calendar.get());
    QByteArray out(text);
    std::free(text);
    return out;
}

} // namespace IcsEventMapping
