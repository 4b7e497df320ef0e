#include "shared/DateValue.h"
#include "shared/Clock.h"
#include "shared/RuntimeError.h"
#include "support/TestSupport.h"

#include <QDateTime>

namespace {

struct SerialCase {
    int y, m, d;
    const char* expected;
};

TEST(DateValue, SerialRollsMonthsAndDaysOver) {
    const SerialCase cases[] = {
        {2009, 13, 1, "2010-01-01"},  {2009, 0, 1, "2008-12-01"},   {2009, -11, 1, "2008-01-01"},
        {2009, -12, 1, "2007-12-01"}, {2009, 25, 1, "2011-01-01"},  {2009, 4, 31, "2009-05-01"},
        {2009, 3, 0, "2009-02-28"},   {2008, 3, 0, "2008-02-29"},   {2009, 1, -1, "2008-12-30"},
        {2009, 2, 31, "2009-03-03"},  {2009, 12, 32, "2010-01-01"}, {2000, 2, 29, "2000-02-29"},
        {2100, 2, 29, "2100-03-01"},  {2024, 2, 29, "2024-02-29"},  {2009, 1, 400, "2010-02-04"},
        {9999, 12, 31, "9999-12-31"}, {100, 1, 1, "0100-01-01"},
    };
    for (const SerialCase& c : cases) {
        EXPECT_EQ(FormatYMD(DateSerial(c.y, c.m, c.d)), QString::fromLatin1(c.expected))
            << c.y << "-" << c.m << "-" << c.d;
    }
}

// Day 0 is 1899-12-30; negative values count the day toward zero and the time
// by the fraction's size (-1.25 is 1899-12-29 06:00); a hair before midnight
// is midnight of the next day, as its text shows.
TEST(DateValue, TheEpochNegativeValuesAndRounding) {
    EXPECT_EQ(QList<DateValue>({DateSerial(1899, 12, 30), DateSerial(1899, 12, 29),
                                DateSerial(1900, 1, 1), DateSerial(2026, 11, 21)}),
              QList<DateValue>({0.0, -1.0, 2.0, 46347.0}));
    EXPECT_THROW(DateSerial(10000, 1, 1), RuntimeError);
    EXPECT_THROW(DateSerial(9999, 13, 1), RuntimeError);
    EXPECT_THROW(DateSerial(99, 12, 31), RuntimeError);
    EXPECT_EQ(FormatYMDHM(-1.25), "1899-12-29 06:00");
    EXPECT_EQ(DateOnly(-1.25), -1.0);
    EXPECT_EQ(FormatHM(TimeOnly(-1.25)), "06:00");
    EXPECT_EQ(FormatYMDHM(-0.5), "1899-12-30 12:00"); // the same moment as 0.5
    EXPECT_EQ(*ParseDateValue("1899-12-29 06:00"), -1.25);
    EXPECT_EQ(FromQDateTime(QDateTime(QDate(1899, 12, 28), QTime(18, 0))), -2.75);
    EXPECT_EQ(DateOnly(DateSerial(2009, 3, 5) + 0.9999999999), DateSerial(2009, 3, 6));
}

TEST(DateValue, WeekdayCountsFromTheGivenFirstDay) {
    // 2009-03-01 was a Sunday, 1899-12-30 a Saturday.
    // clang-format off
    const struct {
        DateValue day;
        int fromSunday, fromMonday;
    } cases[] = {{DateSerial(2009, 3, 1), 1, 7}, {DateSerial(2009, 3, 2), 2, 1},
                 {DateSerial(2009, 3, 7), 7, 6}, {0, 7, 6}, {-1.25, 6, 5}}; // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(Weekday(c.day, FirstDay::Sunday), c.fromSunday) << c.day;
        EXPECT_EQ(Weekday(c.day, FirstDay::Monday), c.fromMonday) << c.day;
    }
}

TEST(DateValue, TextFormsRoundTrip) {
    const DateValue v = DateSerial(2009, 3, 5) + TimeSerial(7, 5, 59);
    EXPECT_EQ(FormatYMDHM(v), "2009-03-05 07:05"); // seconds dropped, not rounded
    EXPECT_EQ(*ParseDateValue("2009-03-05"), DateSerial(2009, 3, 5));
    EXPECT_EQ(*ParseDateValue(" 2009-03-05 07:05 "), DateSerial(2009, 3, 5) + TimeSerial(7, 5));
    EXPECT_EQ(*ParseDateValue("2009-03-05 07:05:59"), v);
    EXPECT_EQ(FormatYMDHM(*ParseDateValue("2024-02-29 23:59")), "2024-02-29 23:59");
}

TEST(DateValue, ParseRefusesWhatIsNoDate) {
    for (const char* bad :
         {"", "2009", "2009-02-30", "2009-13-01", "2009-03-05 24:00", "2009-03-05 12:60",
          "2009-03-05 12:00:60", "05/03/2009", "2009-03-05x", "abc", "0099-12-31"}) {
        EXPECT_FALSE(ParseDateValue(QString::fromLatin1(bad)).has_value()) << bad;
    }
}

TEST(Clock, FixedAdvancedAndReset) {
    {
        FixedClock clock("2009-12-31 23:59");
        EXPECT_EQ(FormatYMDHM(Now()), "2009-12-31 23:59");
        Clock::advance(60);
        EXPECT_EQ(FormatYMDHM(Now()), "2010-01-01 00:00");
        EXPECT_EQ(TodayDate(), DateSerial(2010, 1, 1));
        // Before today compares whole days: earlier today is not before.
        Clock::advance(15 * 3600);
        EXPECT_TRUE(IsBeforeDate(DateSerial(2009, 12, 31) + 0.99));
        EXPECT_FALSE(IsBeforeDate(DateSerial(2010, 1, 1)));
        EXPECT_FALSE(IsBeforeDate(DateSerial(2010, 1, 1) + 0.1));
        EXPECT_TRUE(IsBeforeDate(DateSerial(2009, 3, 5), DateSerial(2009, 3, 6)));
    }
    const double drift = std::abs(Now() - FromQDateTime(QDateTime::currentDateTime()));
    EXPECT_LT(drift, 5.0 / 86400);
}

// A start moment from the environment runs on from there (the end-to-end
// scripts start the program that way); a text that is no moment is refused.
TEST(Clock, EnvironmentRefusesWhatIsNoMoment) {
    qputenv(Clock::kEnvironmentVariable, "tomorrow");
    EXPECT_FALSE(Clock::initFromEnvironment());
    qunsetenv(Clock::kEnvironmentVariable);
    EXPECT_TRUE(Clock::initFromEnvironment());
}

} // namespace
