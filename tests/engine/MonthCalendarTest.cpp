// The month grid and the expansion of events into the days of one month.
#include "engine/MonthCalendar.h"
#include "support/TestSupport.h"

#include <QMap>

namespace {

EventPtr OneOff(const QString& desc, DateValue due, int16_t layer = 1) {
    auto e = std::make_shared<clsEvent>();
    e->setDesc(desc);
    e->setDueDate(due);
    e->setLayer(layer);
    return e;
}

EventPtr Recurring(const QString& desc, int type, DateValue due) {
    EventPtr e = OneOff(desc, due);
    e->setRecurring(true);
    e->setRecurrenceType(type);
    e->setStartDate(due);
    return e;
}

// The month's days of an event, found the slow way: one occurrence after
// another from the event's own due date, as the view has always walked them.
QList<int> StepwiseDays(const clsEvent& event, int year, int month) {
    QList<int> days;
    for (const DateValue d : DueDatesUpTo(event, DateSerial(year, month + 1, 0))) {
        if (d >= DateSerial(year, month, 1)) {
            days.append(DayOf(d));
        }
    }
    return days;
}

QList<int> DaysOf(const MonthCalendar& month, const QString& line) {
    QList<int> days;
    for (int day = 1; day <= month.DayCount(); ++day) {
        days.append(QList<int>(month.Lines(day).count(line), day));
    }
    return days;
}

} // namespace

TEST(MonthCalendar, GridPlacesTheFirstByItsWeekday) {
    const struct {
        int year, month, firstBox, lastBox;
    } cases[] = {
        {2009, 2, 0, 27},                    // 1st a Sunday, 28 days
        {2004, 2, 0, 28},                    // 1st a Sunday, leap year
        {2009, 8, 6, 36},                    // 1st a Saturday, 31 days: the sixth row is needed
        {2009, 3, 0, 30}, {2008, 12, 1, 31}, // 1st a Monday
    };
    for (const auto& c : cases) {
        const MonthCalendar month(c.year, c.month);
        EXPECT_EQ(month.BoxOfDay(1), c.firstBox) << c.year << "-" << c.month;
        EXPECT_EQ(month.BoxOfDay(month.DayCount()), c.lastBox) << c.year << "-" << c.month;
        EXPECT_LT(c.lastBox, MonthCalendar::kBoxCount);
    }
}

TEST(MonthCalendar, OccurrencesMatchStepByStepForEveryRule) {
    FixedClock clock("2009-01-15 10:00");
    // clang-format off
    const struct {
        const char* name;
        RuleFields rule; // its start is also its first due date
    } cases[] = {
        {"weekdays Mon+Fri", {.type = clsEvent::DaysOfWeek, .weekDays = (1 << 1) | (1 << 5), .start = "2008-06-02"}},
        {"day 31 monthly", {.type = clsEvent::DayOfMonthType, .dayOfMonth = 31, .monthNumber = clsEvent::kEveryMonthType1, .start = "2009-01-31"}},
        {"every 1 month from the 31st", {.type = clsEvent::EveryXMonths, .period = 1, .start = "2008-01-31"}},
        {"every 2 weeks", {.type = clsEvent::Weekly, .period = 2, .start = "2008-07-01"}},
        {"last Sunday", {.type = clsEvent::NthWeekday, .monthNumber = clsEvent::kEveryMonthType4, .dayOfWeek = 1, .daynumber = clsEvent::kLastWeekday, .start = "2008-05-25"}},
        {"every 3 days", {.type = clsEvent::EveryXDays, .period = 3, .start = "2008-09-09"}},
        {"every day from months back", {.type = clsEvent::EveryXDays, .period = 1, .start = "2008-10-01"}},
    };
    // clang-format on
    for (const auto& c : cases) {
        for (const auto& [year, month] : {std::pair{2009, 1}, {2009, 2}, {2009, 4}, {2010, 3}}) {
            SCOPED_TRACE(testing::Message() << c.name << " " << year << "-" << month);
            clsEvent event = RepeatingEvent(c.rule);
            event.setDueDate(event.StartDate());
            const QList<int> expected = StepwiseDays(event, year, month);
            MonthCalendar calendar(year, month);
            calendar.AddEvent(event, MonthCalendar::kAllLayers, false);
            EXPECT_EQ(DaysOf(calendar, event.Desc()), expected);
            EXPECT_FALSE(expected.isEmpty());
            if (c.rule.period == 1 && c.rule.type == clsEvent::EveryXDays) {
                EXPECT_EQ(expected.size(), calendar.DayCount()) << "every day, once";
            }
        }
    }
}

TEST(MonthCalendar, TextLengthsOwnersAndOrder) {
    const DateValue day = D("2009-03-05");
    auto longOneOff = OneOff("Dentist appointment downtown", day);
    auto longRecurring = Recurring("Weekly team meeting in room 4", clsEvent::EveryXDays, day);
    longRecurring->setPeriod(7);
    longRecurring->setOwner("Bob");
    longOneOff->setOwner("Ann");

    // Rules that cannot advance are listed once, without hanging.
    auto unknown = Recurring("odd", 9, D("2009-03-20"));
    auto emptyMask = Recurring("mask", clsEvent::DaysOfWeek, D("2009-03-06"));
    emptyMask->setWeekDays(0);

    MonthCalendar plain(2009, 3);
    plain.AddEvents({longOneOff, longRecurring, unknown, emptyMask, OneOff("Rent", D("2009-03-01")),
                     OneOff("Tax", D("2009-03-31"))},
                    MonthCalendar::kAllLayers, false);
    EXPECT_EQ(plain.TotalLines(), 1 + 4 + 2 + 2);
    EXPECT_EQ(plain.Lines(20), QStringList{"odd"});
    EXPECT_EQ(plain.Lines(5), (QStringList{"Dentist appo", "Weekly team meeting in"}));
    EXPECT_EQ(plain.Lines(12), QStringList{"Weekly team meeting in"});
    // The event lists show the whole descriptions.
    EXPECT_EQ(plain.FullLines(5),
              (QStringList{"Dentist appointment downtown", "Weekly team meeting in room 4"}));
    // The month as text: a heading, a line for every day, a line end after the last.
    const QStringList text = plain.EventListText().split(QLatin1Char('\n'));
    ASSERT_EQ(text.size(), 1 + 31 + 1);
    EXPECT_EQ(text[0], "Events for March 2009");
    EXPECT_EQ(text[1], "Sun 1\tRent");
    EXPECT_EQ(text[5], "Thu 5\tDentist appointment downtown; Weekly team meeting in room 4");
    EXPECT_EQ(text[31], "Tue 31\tTax");

    longRecurring->setDueDate(day);
    longRecurring->setStartDate(day);
    MonthCalendar networked(2009, 3);
    networked.AddEvents({longOneOff, longRecurring}, MonthCalendar::kAllLayers, true);
    EXPECT_EQ(networked.Lines(5),
              (QStringList{"Dentist appo [Ann]", "Weekly team meeting in [Bob]"}));
}

TEST(MonthCalendar, LayerFilter) {
    const DateValue day = D("2009-03-05");
    auto sharedInThree = OneOff("flagged", day, 3);
    sharedInThree->SharedEvent = true;
    const QList<EventPtr> all{OneOff("two", day, 2), OneOff("three", day, 3), sharedInThree,
                              OneOff("zero", day, 0)};
    const QMap<int, QStringList> expected{
        {2, {"two"}},
        {3, {"three", "flagged"}},
        {0, {"flagged", "zero"}},
        {20, {"two", "three", "flagged", "zero"}},
        {7, {}},
    };
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        MonthCalendar month(2009, 3);
        month.AddEvents(all, it.key(), false);
        EXPECT_EQ(month.Lines(5), it.value()) << "layer " << it.key();
    }
}
