#include "shared/AppInfo.h"
#include "shared/ErrorReportText.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

const QString kDashes(75, QLatin1Char('-'));

TEST(ErrorReportText, FullReportLayout) {
    const QString report = ErrorReportText::FullReport("Disk error", "It crashed", "log line");
    QStringList lines = report.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 10);
    EXPECT_TRUE(lines[5].startsWith(QStringLiteral("'Submit Error Report' saves this report")));
    EXPECT_FALSE(report.contains(QLatin1Char('@'))) << "no mail address is built in";
    lines.remove(5, 2);
    EXPECT_EQ(lines,
              (QStringList{QStringLiteral("Error Report: ") + AppInfo::VersionText() + ' ' +
                               AppInfo::BuildText() + QStringLiteral(", ") +
                               AppInfo::OperatingSystemText(),
                           "Disk error", "It crashed", "log line", kDashes,
                           "Submitting a bug report helps improve the software.", kDashes, ""}));
    // Without comments there is no empty block for them.
    EXPECT_EQ(ErrorReportText::FullReport("E", {}, "L").split(QStringLiteral("\r\n")).size(), 9);
}

} // namespace
