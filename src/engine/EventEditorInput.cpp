#include "engine/EventEditorInput.h"

#include "storage/StorableText.h"

#include "model/clsEvent.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedDateSubs.h"
#include "storage/clsSounds.h"

#include <QFileInfo>
#include <QLocale>

#include <cmath>
#include <limits>

namespace EventEditorRules {

namespace {

EventEditorOutcome fail(const char* message, const QString& focus = {}) {
    return {false, QString::fromLatin1(message), {}, focus};
}

EventEditorOutcome dataError() {
    return {false, QString::fromLatin1(kDataError), QString::fromLatin1(kErrorTitle), {}};
}

// A box's number as a 16-bit field takes it: rounded half to even; empty
// when the text is no number or does not fit (the editor's "data fields"
// error).
std::optional<int16_t> Int16Of(const QString& text) {
    const std::optional<double> value = Number(text);
    if (!value) {
        return std::nullopt;
    }
    const double rounded = std::nearbyint(*value);
    if (rounded < std::numeric_limits<int16_t>::min() ||
        rounded > std::numeric_limits<int16_t>::max()) {
        return std::nullopt;
    }
    return static_cast<int16_t>(rounded);
}

// Start date and period of an interval tab (types 2, 3 and 5).
// The tab's controls are named after its unit: "txt" + unit + "Period" and
// "lbl" + unit + "StartDate".
EventEditorOutcome saveInterval(const QString& start, const QString& period, clsEvent& event,
                                cSharedDateSubs& dates, const char* unit) {
    const std::optional<DateValue> day = ParseStartDate(start, dates);
    if (!day) {
        return fail(kBadStartDate, QStringLiteral("lbl%1StartDate").arg(QLatin1String(unit)));
    }
    if (!Number(period)) {
        return fail(kBadPeriod, QStringLiteral("txt%1Period").arg(QLatin1String(unit)));
    }
    const std::optional<int16_t> count = Int16Of(period);
    if (!count) {
        return dataError();
    }
    event.setStartDate(*day);
    event.setPeriod(*count);
    return {true, {}, {}, {}};
}

} // namespace

QString BadTimeMessage(const QString& text) {
    return QStringLiteral("Time field ") + text + QStringLiteral(" is not valid, please correct");
}

QString NormaliseTime(const QString& text) {
    QString t = text;
    t.replace(QLatin1Char(';'), QLatin1Char(':'));
    t = t.trimmed();
    if (t.size() == 4 && t.at(0).isDigit() && t.at(1) == QLatin1Char(':')) {
        t.prepend(QLatin1Char('0'));
    }
    return t;
}

bool TimeInRange(const QString& text) {
    if (text.size() != 5 || text.at(2) != QLatin1Char(':')) {
        return false;
    }
    const std::optional<double> hours = Number(text.left(2));
    const std::optional<double> minutes = Number(text.right(2));
    return hours && minutes && *hours >= 0 && *hours <= 23 && *minutes >= 0 && *minutes <= 59;
}

std::optional<DateValue> TimeValue(const QString& text) {
    const QTime t = QTime::fromString(text, QStringLiteral("HH:mm"));
    if (!t.isValid()) {
        return std::nullopt;
    }
    return TimeSerial(t.hour(), t.minute());
}

std::optional<double> Number(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) {
        return std::nullopt;
    }
    bool ok = false;
    double value = QLocale::c().toDouble(t, &ok);
    if (!ok) {
        value = QLocale().toDouble(t, &ok);
    }
    if (!ok || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<DateValue> ParseStartDate(const QString& text, cSharedDateSubs& dates) {
    std::optional<DateValue> day = dates.ConvertMyDateVar(text);
    if (!day) {
        day = ParseDateValue(text);
    }
    if (!day || *day != DateOnly(*day)) {
        return std::nullopt;
    }
    return day;
}

QString AlarmAdvice(const QString& time, const QString& minutesWarning) {
    const QString t = NormaliseTime(time);
    const std::optional<DateValue> due = TimeInRange(t) ? TimeValue(t) : std::nullopt;
    if (!due) {
        return {};
    }
    const std::optional<double> warning =
        Number(minutesWarning.trimmed().isEmpty() ? QStringLiteral("0") : minutesWarning);
    if (!warning) {
        return {};
    }
    const int dueMinute = HourOf(*due) * 60 + MinuteOf(*due);
    const int minute =
        ((dueMinute - static_cast<int>(std::nearbyint(*warning))) % 1440 + 1440) % 1440;
    const int hour12 = (minute / 60) % 12 == 0 ? 12 : (minute / 60) % 12;
    return QStringLiteral("(Alarm will sound at %1:%2%3)")
        .arg(hour12)
        .arg(minute % 60, 2, 10, QLatin1Char('0'))
        .arg(minute < 720 ? QStringLiteral("am") : QStringLiteral("pm"));
}

EventEditorOutcome Save(EventEditorInput& in, clsEvent& event, cSHAREDSettings& settings) {
    // An event without words would be a blank row in every list.
    if (in.desc.trimmed().isEmpty()) {
        return fail(kNoDescription, QStringLiteral("txtDesc"));
    }
    if (!in.makeNoise) {
        in.wavFile.clear();
    }
    // Fields the events file keeps as they are (StorableText); the owner
    // comes from the settings, which a hand edit may have given a "<".
    const QString owner =
        settings.sGet(QStringLiteral("Owner"), QStringLiteral("Not Set")).toText();
    const struct {
        bool used;
        const QString& value;
        const char* name;
        const char* focus;
    } asIs[] = {{in.makeNoise, in.wavFile, "sound file", "cmdPickWav"},
                {in.runFile, in.execFile, "file to run", "cmdPickFile"},
                {in.emailTo, in.email, "e-mail address", "txtEmailAlert"},
                {true, owner, "user ID in the options", ""}};
    for (const auto& field : asIs) {
        const QString problem =
            field.used ? StorableText::AsIsProblem(QLatin1String(field.name), field.value)
                       : QString();
        if (!problem.isEmpty()) {
            return {false, problem, QString::fromLatin1(kErrorTitle),
                    QString::fromLatin1(field.focus)};
        }
    }

    if (in.timed) {
        in.time = NormaliseTime(in.time);
        if (!TimeInRange(in.time)) {
            return fail(kTimeRange, QStringLiteral("txtTime"));
        }
        if (in.minutesWarning.isEmpty()) {
            in.minutesWarning = QStringLiteral("0");
        }
        const std::optional<double> warning = Number(in.minutesWarning);
        if (!warning) {
            return dataError();
        }
        if (*warning > 60) {
            return fail(kMaxWarning, QStringLiteral("txtMinutesWarning"));
        }
    }

    event.setDesc(in.desc);

    if (in.minutesWarning.trimmed().isEmpty()) {
        in.minutesWarning = QStringLiteral("0");
    }
    if (in.daysWarning.trimmed().isEmpty()) {
        in.daysWarning = QStringLiteral("0");
    }

    if (in.shared) {
        event.SharedEvent = true;
        if (in.specificShare) {
            QString names;
            for (const QString& user : std::as_const(in.selectedUsers)) {
                names += user + QStringLiteral("\r\n");
            }
            event.ShareNames = names;
            event.ShareWithSpecific = true;
        } else {
            event.ShareNames.clear();
            event.ShareWithSpecific = false;
        }
    } else {
        event.SharedEvent = false;
        event.ShareWithSpecific = false;
        event.ShareNames.clear();
    }

    if (in.emailTo) {
        event.Email = in.email;
        if (!in.email.isEmpty()) {
            settings.sSet(QStringLiteral("DefaultEmail"), in.email);
        }
    } else {
        event.Email.clear();
    }

    event.setOwner(owner);

    if (in.timed) {
        const std::optional<DateValue> due = TimeValue(in.time);
        if (!due) {
            return {false, BadTimeMessage(in.time), QString::fromLatin1(kErrorTitle),
                    QStringLiteral("txtTime")};
        }
        const std::optional<int16_t> minutes = Int16Of(in.minutesWarning);
        if (!minutes) {
            return dataError();
        }
        event.setDueTime(*due);
        event.setMinutesWarning(*minutes);
        // Plain subtraction: an alarm before midnight is not wrapped round.
        event.setAlarmTime(*due - *minutes / 1440.0);
        event.setAlarmSet(true);
    } else {
        event.setAlarmSet(false);
    }

    if (in.makeNoise) {
        if (in.wavFile.isEmpty() || !QFileInfo::exists(in.wavFile)) {
            in.wavFile = DefaultWavFile(settings);
        }
        event.WavFile = in.wavFile;
        event.PlayWav = true;
    } else {
        event.PlayWav = false;
        event.WavFile.clear();
    }

    event.setRecurring(in.repeat);

    if (in.runFile) {
        event.ExecFile = true;
        event.Filename = in.execFile;
    } else {
        event.ExecFile = false;
    }

    event.setRecurrenceType(in.recurrenceType);
    const std::optional<int16_t> days = Int16Of(in.daysWarning);
    if (!days) {
        return dataError();
    }
    event.setDaysWarning(*days);
    event.setStartDate(TodayDate());
    event.setLayer(static_cast<int16_t>(in.layer));

    cSharedDateSubs& dates = cSharedDateSubs::ForSettings(settings);
    switch (in.recurrenceType) {
    case clsEvent::DaysOfWeek: {
        int mask = 0;
        for (int i = 1; i <= 7; ++i) {
            if (in.days.at(i)) {
                mask += 1 << i;
            }
        }
        if (mask == 0) {
            // A weekday event on no day would never fall due.
            return fail(kNoWeekday, QStringLiteral("chkDay1"));
        }
        event.setWeekDays(static_cast<int16_t>(mask));
        return {true, {}, {}, {}};
    }
    case clsEvent::DayOfMonthType: {
        if (!Number(in.dayOfMonth)) {
            return fail(kBadDayOfMonth, QStringLiteral("txtDayOfMonth"));
        }
        const std::optional<int16_t> day = Int16Of(in.dayOfMonth);
        if (!day) {
            return dataError();
        }
        event.setDayOfMonth(*day);
        event.setMonthNumber(static_cast<int16_t>(in.monthNamesIndex + 1));
        return {true, {}, {}, {}};
    }
    case clsEvent::EveryXMonths:
        return saveInterval(in.monthlyStart, in.monthlyPeriod, event, dates, "Monthly");
    case clsEvent::Weekly:
        return saveInterval(in.weeklyStart, in.weeklyPeriod, event, dates, "Weekly");
    case clsEvent::NthWeekday:
        event.setDaynumber(static_cast<int16_t>(in.dayNumberIndex + 1));
        event.setDayOfWeek(static_cast<int16_t>(in.dayNameIndex + 1));
        event.setMonthNumber(static_cast<int16_t>(in.monthsIndex));
        return {true, {}, {}, {}};
    case clsEvent::EveryXDays:
        return saveInterval(in.dailyStart, in.dailyPeriod, event, dates, "Daily");
    default:
        return {true, {}, {}, {}};
    }
}

} // namespace EventEditorRules
