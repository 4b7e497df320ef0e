#include "model/clsEvent.h"
#include "support/TestSupport.h"

namespace {

TEST(clsEvent, DateSettersKeepTheDateOnly) {
    clsEvent e;
    e.setDueTime(TimeSerial(9, 30));
    e.setDueDate(D(QStringLiteral("2009-03-05 17:45")));
    e.setStartDate(D(QStringLiteral("2009-03-01 23:59")));
    EXPECT_EQ(FormatYMDHM(e.DueDate()), QStringLiteral("2009-03-05 00:00"));
    EXPECT_EQ(FormatYMDHM(e.StartDate()), QStringLiteral("2009-03-01 00:00"));
    EXPECT_EQ(FormatHM(e.DueTime()), QStringLiteral("09:30")) << "the time field is untouched";

    e.setDueDate(-1.25); // 1899-12-29 06:00: the day is -1, not a truncated -1 plus a bit
    EXPECT_EQ(e.DueDate(), -1.0);
}

TEST(clsEvent, NameInSharedMatchesEntryEndsIgnoringCase) {
    // The end of an entry is anchored, its start is not (a tail matches); an entry
    // without its CR LF is not listed.
    // clang-format off
    struct Case {
        const char *list, *name;
        bool expected;
    } cases[] = {{"Ann\r\n", "ann", true}, {"Anne\r\n", "Ann", false}, {"JoAnn\r\n", "Ann", true},
                 {"JimBob\r\nAnn\r\n", "Bob", true}, {"Ann\r\nBob\r\n", "BOB", true},
                 {"Ann", "Ann", false}, {"", "Ann", false}, {"Ann\nBob\n", "Ann", false}};
    // clang-format on
    for (const Case& c : cases) {
        clsEvent e;
        e.ShareNames = QString::fromLatin1(c.list);
        EXPECT_EQ(e.NameInShared(QString::fromLatin1(c.name)), c.expected)
            << c.name << " in " << c.list;
    }
}

TEST(clsEvent, DaysLeftCountsWholeDaysFromToday) {
    FixedClock clock(QStringLiteral("2009-03-05 23:30"));
    clsEvent e;
    // clang-format off
    const struct {
        const char* due;
        int32_t days;
    } cases[] = {{"2009-03-05", 0}, {"2009-03-06", 1}, {"2009-03-04", -1}, {"2010-03-05", 365},
                 {"2008-03-05", -365}}; // clang-format on
    for (const auto& c : cases) {
        e.setDueDate(D(QString::fromLatin1(c.due)));
        e.CalcDaysLeft();
        EXPECT_EQ(e.DaysLeft(), c.days) << c.due;
    }
}

} // namespace
