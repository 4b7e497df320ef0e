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

TEST(DateValue, SerialKnowsTheEpochAndItsRange) {
    EXPECT_EQ(DateSerial(1899, 12, 30), 0.0);
    EXPECT_EQ(DateSerial(1899, 12, 29), -1.0);
    EXPECT_EQ(DateSerial(1900, 1, 1), 2.0);
    EXPECT_EQ(DateSerial(2026, 11, 21), 46347.0);
    EXPECT_THROW(DateSerial(10000, 1, 1), RuntimeError);
    EXPECT_THROW(DateSerial(9999, 13, 1), RuntimeError);
    EXPECT_THROW(DateSerial(99, 12, 31), RuntimeError);
}

TEST(DateValue, NegativeValuesFollowTheOleRule) {
    // -1.25 is 1899-12-29 06:00: day toward zero, time is the fraction's size.
    EXPECT_EQ(FormatYMDHM(-1.25), QStringLiteral("1899-12-29 06:00"));
    EXPECT_EQ(DateOnly(-1.25), -1.0);
    EXPECT_EQ(FormatHM(TimeOnly(-1.25)), QStringLiteral("06:00"));
    // -0.5 and 0.5 are the same moment, noon of day 0.
    EXPECT_EQ(DateOnly(-0.5), 0.0);
    EXPECT_EQ(FormatYMDHM(-0.5), QStringLiteral("1899-12-30 12:00"));
    EXPECT_EQ(*ParseDateValue(QStringLiteral("1899-12-29 06:00")), -1.25);
    EXPECT_EQ(FromQDateTime(QDateTime(QDate(1899, 12, 28), QTime(18, 0))), -2.75);
}

TEST(DateValue, DateOnlyDropsTheTimeAndRoundsToTheSecond) {
    const DateValue v = DateSerial(2009, 3, 5) + TimeSerial(17, 45);
    EXPECT_EQ(DateOnly(v), DateSerial(2009, 3, 5));
    EXPECT_EQ(FormatHM(TimeOnly(v)), QStringLiteral("17:45"));
    // A hair before midnight is midnight of the next day, as its text shows.
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
    EXPECT_EQ(FormatYMDHM(v), QStringLiteral("2009-03-05 07:05")); // seconds dropped, not rounded
    EXPECT_EQ(*ParseDateValue(QStringLiteral("2009-03-05")), DateSerial(2009, 3, 5));
    EXPECT_EQ(*ParseDateValue(QStringLiteral(" 2009-03-05 07:05 ")),
              DateSerial(2009, 3, 5) + TimeSerial(7, 5));
    EXPECT_EQ(*ParseDateValue(QStringLiteral("2009-03-05 07:05:59")), v);
    EXPECT_EQ(FormatYMDHM(*ParseDateValue(QStringLiteral("2024-02-29 23:59"))),
              QStringLiteral("2024-02-29 23:59"));
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
        FixedClock clock(QStringLiteral("2009-12-31 23:59"));
        EXPECT_EQ(FormatYMDHM(Now()), QStringLiteral("2009-12-31 23:59"));
        Clock::advance(60);
        EXPECT_EQ(FormatYMDHM(Now()), QStringLiteral("2010-01-01 00:00"));
        EXPECT_EQ(TodayDate(), DateSerial(2010, 1, 1));
        // Before today compares whole days: earlier today is not before.
        Clock::advance(15 * 3600);
        EXPECT_TRUE(IsBeforeDate(DateSerial(2009, 12, 31) + 0.99));
        EXPECT_FALSE(IsBeforeDate(DateSerial(2010, 1, 1)));
        EXPECT_FALSE(IsBeforeDate(DateSerial(2010, 1, 1) + 0.1));
        EXPECT_TRUE(IsBeforeDate(DateSerial(2009, 3, 5), DateSerial(2009, 3, 6)));
    }
    EXPECT_TRUE(Clock::isSystem());
    const double drift = std::abs(Now() - FromQDateTime(QDateTime::currentDateTime()));
    EXPECT_LT(drift, 5.0 / 86400);
}

TEST(Clock, EnvironmentStartsARunningClock) {
    qputenv(Clock::kEnvironmentVariable, "2030-06-01 08:30");
    EXPECT_TRUE(Clock::initFromEnvironment());
    EXPECT_FALSE(Clock::isSystem());
    EXPECT_EQ(FormatYMDHM(Now()), QStringLiteral("2030-06-01 08:30"));
    EXPECT_GE(Now(), *ParseDateValue(QStringLiteral("2030-06-01 08:30")));

    qputenv(Clock::kEnvironmentVariable, "tomorrow");
    Clock::reset();
    EXPECT_FALSE(Clock::initFromEnvironment());
    EXPECT_TRUE(Clock::isSystem());
    qunsetenv(Clock::kEnvironmentVariable);
    EXPECT_TRUE(Clock::initFromEnvironment());
    EXPECT_TRUE(Clock::isSystem());
}

} // namespace
