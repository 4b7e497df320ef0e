#include "shared/AppInfo.h"
#include "shared/ErrorReportText.h"
#include "shared/cSHAREDShowError.h"

#include "support/RecordedErrorReports.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

const QString kDashes(75, QLatin1Char('-'));

TEST(ErrorReportText, FullReportLayout) {
    const QString report = ErrorReportText::FullReport("Disk error", "It crashed", "log line");
    const QStringList lines = report.split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 10);
    EXPECT_EQ(lines[0], QStringLiteral("Error Report: ") + AppInfo::VersionText() +
                            QLatin1Char(' ') + AppInfo::BuildText() + QStringLiteral(", ") +
                            AppInfo::OperatingSystemText());
    EXPECT_EQ(lines[1], QStringLiteral("Disk error"));
    EXPECT_EQ(lines[2], QStringLiteral("It crashed"));
    EXPECT_EQ(lines[3], QStringLiteral("log line"));
    EXPECT_EQ(lines[4], kDashes);
    EXPECT_TRUE(lines[5].startsWith(QStringLiteral("'Submit Error Report' saves this report")));
    EXPECT_FALSE(report.contains(QLatin1Char('@'))) << "no mail address is built in";
    EXPECT_EQ(lines[7], QStringLiteral("Submitting a bug report helps improve the software."));
    EXPECT_EQ(lines[8], kDashes);
    EXPECT_EQ(lines[9], QString());

    // Without comments there is no empty block for them.
    EXPECT_EQ(ErrorReportText::FullReport("E", {}, "L").split(QStringLiteral("\r\n")).size(), 9);
}

TEST(ShowError, ErrObjBuildsTheErrorText) {
    RecordedErrorReports reports;
    cSHAREDShowError::ShowErrObj(53, QStringLiteral("File not found"), QStringLiteral("frmMain"),
                                 QStringLiteral("Save"), QStringLiteral("more"));
    cSHAREDShowError::ShowErr(QStringLiteral("plain"));
    EXPECT_EQ(reports.texts(),
              (QStringList{"Error 53 - File not found in frmMain of Save", "plain"}));
    EXPECT_EQ(reports.secondTexts(), (QStringList{"more", ""}));
}

TEST(ShowError, WithoutASinkNothingIsShown) {
    ErrorReportSink* before = cSHAREDShowError::SetSink(nullptr);
    cSHAREDShowError::ShowErr(QStringLiteral("only logged"));
    EXPECT_EQ(cSHAREDShowError::Sink(), nullptr);
    cSHAREDShowError::SetSink(before);
}

} // namespace
