#include "shared/AppInfo.h"
#include "shared/ErrorReportText.h"
#include "shared/cSHAREDShowError.h"

#include "support/RecordedErrorReports.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

const QString kDashes(75, QLatin1Char('-'));

TEST(ErrorReportText, MailEncodingDoesPercentFirstThenTheRest) {
    const struct {
        const char* text;
        const char* encoded;
    } cases[] = {
        {"50% &?", "50%25%20%26%3F"},
        {"a#b", "a%23b"},
        {"%3F stays literal", "%253F%20stays%20literal"},
        {"one\r\ntwo\nthree\rfour", "one%0D%0Atwo%0D%0Athree%0D%0Afour"},
        {"\r\n\r\n", "%0D%0A%0D%0A"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ErrorReportText::EncodeForMailLink(QString::fromUtf8(c.text)),
                  QString::fromUtf8(c.encoded))
            << c.text;
    }
}

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
    EXPECT_EQ(
        lines[5],
        QStringLiteral("If the 'submit report' button doesn't work on your system, open an email"));
    EXPECT_EQ(lines[6], QStringLiteral("to '") + AppInfo::BugReportAddress() +
                            QStringLiteral("' and paste the following text into it."));
    EXPECT_EQ(lines[7], QStringLiteral("Submitting a bug report helps improve the software."));
    EXPECT_EQ(lines[8], kDashes);
    EXPECT_EQ(lines[9], QString());

    // Without comments there is no empty block for them.
    EXPECT_EQ(ErrorReportText::FullReport("E", {}, "L").split(QStringLiteral("\r\n")).size(), 9);
}

TEST(ErrorReportText, MailLinkCarriesSubjectEncodedBodyAndAttachment) {
    FixedClock clock(QStringLiteral("2026-05-01 10:00"));
    const QString link = ErrorReportText::MailLink("Error 5", "50% &?", "a b\r\nc",
                                                   QStringLiteral("/home/u/log.txt"));
    EXPECT_TRUE(AppInfo::BugReportAddress().contains(QStringLiteral("2026")));
    const QString head = QStringLiteral("mailto:") + AppInfo::BugReportAddress() +
                         QStringLiteral("?subject=Bug Report (") + AppInfo::VersionText() +
                         QStringLiteral(" - ") + AppInfo::Title() + QStringLiteral(")&body=");
    ASSERT_TRUE(link.startsWith(head)) << link.toStdString();
    const QString body = link.mid(head.size()).section(QStringLiteral("&attachment="), 0, 0);
    EXPECT_TRUE(body.startsWith(QStringLiteral("Error%20Report:%20") + AppInfo::VersionText() +
                                QStringLiteral(",%20")));
    EXPECT_TRUE(body.contains(
        QStringLiteral("(Please%20click%20Attach%20and%20add%20the%20file%20log.txt)%0D%0A")));
    EXPECT_TRUE(body.endsWith(
        QStringLiteral("%0D%0AUser:%2050%25%20%26%3F%0D%0AError%205%0D%0Aa%20b%0D%0Ac")));
    EXPECT_TRUE(link.endsWith(QStringLiteral("&attachment=/home/u/log.txt")));
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
