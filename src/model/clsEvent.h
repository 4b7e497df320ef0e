#pragma once

#include "shared/DateValue.h"

#include <QString>

#include <cstdint>
#include <memory>

// One reminder event: what it is, when it is due, how it repeats, how early
// to warn, what to do when it falls due, and the owner/sharing bookkeeping of
// networked mode. A plain data object; its own behaviour is the recurrence
// computation that moves DueDate forward and the NameInShared test.
//
// Events are shared objects: a database list holds references, two lists may
// hold the same event, and a change through one is seen through all (the
// reminder engine relies on this when it moves an event to the expired list).
class clsEvent {
public:
    // Recurrence codes (RecurrenceType), one per editor tab.
    enum Recurrence : int32_t {
        DaysOfWeek = 0,     // next day whose weekday bit is set in WeekDays
        DayOfMonthType = 1, // day DayOfMonth of MonthNumber, 13 = every month
        EveryXMonths = 2,   // every Period months from StartDate
        Weekly = 3,         // every Period weeks from StartDate
        NthWeekday = 4,     // Daynumber-th DayOfWeek of MonthNumber, 0 = every month
        EveryXDays = 5,     // every Period days from StartDate
    };
    // MonthNumber meaning "every month": 13 for type 1, 0 for type 4.
    static constexpr int16_t kEveryMonthType1 = 13;
    static constexpr int16_t kEveryMonthType4 = 0;
    // Daynumber 5 or more means the last such weekday of the month.
    static constexpr int16_t kLastWeekday = 5;

    // The twelve plain fields.
    QString IDCode;        // six digits, given by the database on first store
    bool ExecFile = false; // open Filename at alarm time instead of an alarm line
    QString Filename;
    QString WavFile; // sound chosen for the event; empty when none
    bool PlayWav = false;
    QString SharedLayerName; // layer name, so other users can map it to their index
    bool ShareWithSpecific = false;
    QString ShareNames;    // each user name followed by CR LF
    bool MailSent = false; // cleared on every recomputation of the due date
    QString Email;
    bool SharedEvent = false;
    bool Deleted = false; // marked for removal; skipped when saving

    // True when ShareNames holds name + CR LF, ignoring case. Only the end of
    // an entry is anchored, so "Bob" is found in "JimBob\r\n"; that is how
    // sharing has always matched and is kept.
    bool NameInShared(const QString& name) const;

    // Every field equal (undo uses it to leave out records a change did not touch).
    friend bool operator==(const clsEvent&, const clsEvent&) = default;

    DateValue AlarmTime() const { return m_AlarmTime; }
    void setAlarmTime(DateValue v) { m_AlarmTime = v; }
    QString Owner() const { return m_Owner; }
    void setOwner(const QString& v) { m_Owner = v; }
    int16_t Layer() const { return m_Layer; }
    void setLayer(int16_t v) { m_Layer = v; }
    int32_t DaysLeft() const { return m_DaysLeft; }
    void setDaysLeft(int32_t v) { m_DaysLeft = v; }
    int16_t Period() const { return m_Period; }
    void setPeriod(int16_t v) { m_Period = v; }
    DateValue StartDate() const { return m_StartDate; }
    void setStartDate(DateValue v) { m_StartDate = DateOnly(v); }
    int16_t DayOfWeek() const { return m_DayOfWeek; }
    void setDayOfWeek(int16_t v) { m_DayOfWeek = v; }
    int16_t Daynumber() const { return m_Daynumber; }
    void setDaynumber(int16_t v) { m_Daynumber = v; }
    int16_t MonthNumber() const { return m_MonthNumber; }
    void setMonthNumber(int16_t v) { m_MonthNumber = v; }
    int16_t DayOfMonth() const { return m_DayOfMonth; }
    void setDayOfMonth(int16_t v) { m_DayOfMonth = v; }
    int16_t WeekDays() const { return m_WeekDays; }
    void setWeekDays(int16_t v) { m_WeekDays = v; }
    bool AlarmSet() const { return m_AlarmSet; }
    void setAlarmSet(bool v) { m_AlarmSet = v; }
    int32_t RecurrenceType() const { return m_RecurrenceType; }
    void setRecurrenceType(int32_t v) { m_RecurrenceType = v; }
    int16_t MinutesWarning() const { return m_MinutesWarning; }
    void setMinutesWarning(int16_t v) { m_MinutesWarning = v; }
    int16_t DaysWarning() const { return m_DaysWarning; }
    void setDaysWarning(int16_t v) { m_DaysWarning = v; }
    bool Recurring() const { return m_Recurring; }
    void setRecurring(bool v) { m_Recurring = v; }
    QString Desc() const { return m_Desc; }
    void setDesc(const QString& v) { m_Desc = v; }
    DateValue DueTime() const { return m_DueTime; }
    void setDueTime(DateValue v) { m_DueTime = v; }
    DateValue DueDate() const { return m_DueDate; }
    // Stores the date part only; a time of day given with it is dropped.
    void setDueDate(DateValue v) { m_DueDate = DateOnly(v); }

    // DueDate := the first occurrence on or after today.
    void CalcNextDueDate();
    // DueDate := the first occurrence on or after the given moment (its time
    // of day matters for the day-of-month rule).
    void CalcNextAfterDate(DateValue after);
    // DaysLeft := DueDate - today, in whole days (negative when past).
    void CalcDaysLeft();
    // The same against a today read once for a pass over many events.
    void CalcDaysLeft(DateValue today);

    // The recurrence computation behind the two above. Sets DueDate (and
    // StartDate for the interval rules) and clears MailSent. An unknown type
    // leaves DueDate alone. A search that cannot end on hand-edited data (an
    // empty day mask, a Period below 1, a weekday or month out of range, a day
    // of month below 1) gives up after a bound, leaves DueDate and StartDate as
    // they were and logs the event's description.
    void CalcDueDate(DateValue from);
    // The Daynumber-th DayOfWeek (or the last, for 5 and over) of the month of d.
    DateValue DayCountDate(DateValue d);

private:
    DateValue m_AlarmTime = 0;
    QString m_Owner;
    int16_t m_Layer = 0;
    int32_t m_DaysLeft = 0;
    int16_t m_Period = 0;
    DateValue m_StartDate = 0;
    int16_t m_DayOfWeek = 0;
    int16_t m_Daynumber = 0;
    int16_t m_MonthNumber = 0;
    int16_t m_DayOfMonth = 0;
    int16_t m_WeekDays = 0;
    bool m_AlarmSet = false;
    int32_t m_RecurrenceType = 0;
    int16_t m_MinutesWarning = 0;
    int16_t m_DaysWarning = 0;
    bool m_Recurring = false;
    QString m_Desc;
    DateValue m_DueTime = 0;
    DateValue m_DueDate = 0;
};

using EventPtr = std::shared_ptr<clsEvent>;
