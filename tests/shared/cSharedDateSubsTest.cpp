#include "shared/cSharedDateSubs.h"

#include "shared/cSharedLogging.h"
#include "support/LogLines.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

// What the system's way of writing 25 December 2001 teaches: the short format
// and the full one, seen in how 2009-03-05 is then written and read back.
TEST(DateSubs, ProbeGivesTheShortAndFullFormats) {
    // clang-format off
    const struct {
        const char *probe, *format, *fullFormat, *shortSample, *fullSample;
    } probes[] = {
        {"25/12/2001", "DD/MM/YYYY", "DD/MMM/YYYY", "05/03/2009", "05/Mar/2009"},
        {"12/25/01", "MM/DD/YY", "DD/MMM/YYYY", "03/05/09", "05/Mar/2009"},
        {"25.12.2001", "DD.MM.YYYY", "DD.MMM.YYYY", "05.03.2009", "05.Mar.2009"},
        {"2001-12-25", "YYYY-MM-DD", "DD-MMM-YYYY", "2009-03-05", "05-Mar-2009"},
        {"2001/12/25", "YYYY/MM/DD", "DD/MMM/YYYY", "2009/03/05", "05/Mar/2009"},
        {"01/12/25", "YY/MM/DD", "DD/MMM/YYYY", "09/03/05", "05/Mar/2009"},
        {"12/25/2001", "MM/DD/YYYY", "DD/MMM/YYYY", "03/05/2009", "05/Mar/2009"},
        {"25 12 2001", "DD/MM/YYYY", "DD/MMM/YYYY", "05/03/2009", "05/Mar/2009"},
    };
    // clang-format on
    for (const auto& p : probes) {
        SCOPED_TRACE(p.probe);
        cSharedDateSubs subs(QString::fromUtf8(p.probe),
                             QLocale(QLocale::English, QLocale::UnitedStates));
        EXPECT_EQ(subs.DateFormatString, QString::fromUtf8(p.format));
        EXPECT_EQ(subs.FullDateFormatString, QString::fromUtf8(p.fullFormat));
        EXPECT_EQ(subs.ShortFormatDate(D("2009-03-05 17:45")), QString::fromUtf8(p.shortSample));
        EXPECT_EQ(subs.FormatDate(D("2009-03-05")), QString::fromUtf8(p.fullSample));
        EXPECT_EQ(subs.ConvertMyDateVar(QString::fromUtf8(p.shortSample)),
                  std::optional<DateValue>(D("2009-03-05")));
    }
}

TEST(DateSubs, YearFirstWithoutMonthBeforeDayLeavesTheFormatEmpty) {
    // Year first, day before month, the month not found where expected.
    cSharedDateSubs subs("2001/25/12", QLocale(QLocale::English));
    EXPECT_TRUE(subs.DateFormatString.isEmpty());
    EXPECT_EQ(subs.ShortFormatDate(D("2009-03-05")), QString());
}

TEST(DateSubs, WithoutAProbeTheLocaleGivesTheFormatAndMonthNames) {
    const QLocale german(QLocale::German, QLocale::Germany);
    cSharedDateSubs subs(QString(), german);
    EXPECT_EQ(subs.DateFormatString, "DD.MM.YY");
    EXPECT_EQ(subs.FormatDate(D("2009-03-05")),
              "05." + german.monthName(3, QLocale::ShortFormat) + ".2009");
}

TEST(DateSubs, InitialisationLogsItsFindings) {
    cSharedDateSubs subs("25.12.2001", QLocale(QLocale::English));
    const QStringList actions = LoggedTexts();
    const QStringList expected{"Date format: DD.MM.YYYY", "Full date format: DD.MMM.YYYY",
                               "Full date format plus time: DD.MMM.YYYY HH:MM", "Date separator: .",
                               "True string: True False string: False"};
    ASSERT_GE(actions.size(), expected.size());
    EXPECT_EQ(actions.mid(actions.size() - expected.size()), expected);
    subs.FormatDate(D("2009-03-05"));
    subs.ConvertMyDateVar("05.03.2009");
    EXPECT_EQ(LoggedTexts().size(), actions.size()) << "the findings are logged once";
}

TEST(DateSubs, DatesBeyondTheCalendarGiveEmptyTextAndALogLine) {
    cSharedDateSubs subs("25/12/2001", QLocale(QLocale::English));
    const DateValue first = DateSerial(100, 1, 1);
    const DateValue last = DateSerial(9999, 12, 31);
    for (const DateValue bad :
         {std::numeric_limits<double>::quiet_NaN(), 1e12, -1e12, first - 1, last + 1}) {
        EXPECT_EQ(subs.FormatDate(bad), QString()) << bad;
    }
    EXPECT_EQ(subs.FormatDate(first), "01/Jan/0100");
    EXPECT_EQ(subs.FormatDate(last + 0.999), "31/Dec/9999");
    EXPECT_EQ(LoggedTexts().constLast(),
              "Invalid procedure call or argument (5) in FormatDate of module cDateSubs");
}

TEST(DateSubs, ConvertMyDateVarRefusesWhatIsNoDate) {
    cSharedDateSubs subs("25/12/2001", QLocale(QLocale::English));
    EXPECT_EQ(subs.ConvertMyDateVar("31-12-29"), std::optional<DateValue>(D("2029-12-31")));
    EXPECT_EQ(subs.ConvertMyDateVar("1.1.30"), std::optional<DateValue>(D("1930-01-01")));
    EXPECT_EQ(subs.ConvertMyDateVar("1/1/0100"), std::optional<DateValue>(DateSerial(100, 1, 1)));
    for (const char* bad : {"", "31/02/2009", "a/b/c", "1/2", "1/2/3/4", "31/12/0099"}) {
        EXPECT_FALSE(subs.ConvertMyDateVar(QString::fromUtf8(bad)).has_value()) << bad;
    }
}

} // namespace
