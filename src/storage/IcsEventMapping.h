#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <vector>

struct icalcomponent_impl;
using icalcomponent = struct icalcomponent_impl;

// One event as an iCalendar VEVENT and back, for files and for calendar
// servers alike. The standard properties carry what other calendar
// programs understand: SUMMARY, DTSTART (a date for untimed events, a
// floating local time for timed ones), RRULE (with RDATE/EXDATE where a
// rule alone cannot repeat Tarvo's dates), CATEGORIES (the layer's name) and
// a VALARM (minutes before a timed event, days before an untimed one).
// Optionally every field of the event record is also written as an
// X-TARVO-* property, so that Tarvo reads back exactly the event it wrote.
namespace IcsEventMapping {

struct IcalFree {
    void operator()(icalcomponent* c) const;
};
using IcalComponent = std::unique_ptr<icalcomponent, IcalFree>;

struct Options {
    bool tarvoFields = true; // write and read the X-TARVO-* properties
};

// The last year whose dates the iCalendar library writes: a later DTSTART
// comes out as a null time that no reader accepts.
constexpr int kLastYear = 3000;

// Whether every day the VEVENT of event names lies in kLastYear or before.
bool Writable(const clsEvent& event);

// The VEVENT of event; category is its layer's name ("" for none).
IcalComponent ToVEvent(const clsEvent& event, const QString& category, const Options& options);

// What one VEVENT gave.
struct ReadEvent {
    EventPtr event;           // null when the VEVENT was skipped
    QString category;         // its first category ("" when none)
    QString skipped;          // why nothing was read
    QString simplified;       // why a repeating event became its next occurrence only
    bool tarvoFields = false; // the X-TARVO-* fields were read
};

// Reads a VEVENT. A rule that one of Tarvo's types repeats exactly becomes
// that type; any other repeating event becomes a "Show Once" event on its
// first occurrence on or after today. Owner and ID code are left for the
// caller unless the X-TARVO-* fields give them.
ReadEvent FromVEvent(icalcomponent* vevent, DateValue today, const Options& options);

// A parsed calendar file and its VEVENTs (owned by calendar).
struct Calendar {
    IcalComponent calendar;
    QList<icalcomponent*> events;
    QString error; // why the bytes are no usable calendar; "" when they are
};
Calendar ParseCalendar(const QByteArray& bytes);

// A calendar file (UTF-8, CR LF) holding the given VEVENTs.
QByteArray WriteCalendar(std::vector<IcalComponent> events);

} // namespace IcsEventMapping
