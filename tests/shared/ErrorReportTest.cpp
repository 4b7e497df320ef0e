#include "shared/AppInfo.h"
#include "shared/ErrorReportText.h"
#include "shared/TextCodec.h"
#include "shared/cSHAREDShowError.h"
#include "shared/cSharedLogging.h"
#include "shared/fSHAREDErrorRpt.h"
#include "shared/ui/ErrorReportWindowSink.h"

#include "support/RecordedErrorReports.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

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

// The window with its links recorded instead of opened and its log file in a
// temporary folder.
class ErrorReportWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_oldLog = Log().CurrentLogFilename();
        Log().OverrideLogFilename(home.file(QStringLiteral("log.txt")));
        fSHAREDErrorRpt::SetUrlOpener([this](const QUrl& url) {
            opened << url;
            return true;
        });
        fSHAREDErrorRpt::SetReportFolder(home.file(QStringLiteral("reports")));
    }
    void TearDown() override {
        fSHAREDErrorRpt::SetUrlOpener({});
        fSHAREDErrorRpt::SetReportFolder({});
        if (!m_oldLog.isEmpty()) {
            Log().OverrideLogFilename(m_oldLog);
        }
    }

    template <typename T> T* child(const char* name) {
        T* w = window.findChild<T*>(QLatin1String(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void click(const char* name) { QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton); }

    TempHome home;
    QList<QUrl> opened;
    fSHAREDErrorRpt window;

private:
    QString m_oldLog;
};

TEST_F(ErrorReportWindowTest, ControlsCarryTheirCaptionsAndTips) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Error Reporter"));
    const struct {
        const char* name;
        const char* caption;
        const char* tip;
    } buttons[] = {
        {"cmdEmail", "Submit Error Report",
         "You will get a chance to preview the report before sending."},
        {"cmdViewReport", "View Error Report", "If 'Submit Error' doesn't work, click here"},
        {"cmdViewLog", "View Log File", "Click this button to view the log file"},
        {"cmdShowComments", "Enter Comments",
         "If you want to add any comments before submitting an error report, click here."},
        {"cmdHelp", "Help", ""},
    };
    for (const auto& b : buttons) {
        auto* button = child<QPushButton>(b.name);
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->text(), QString::fromUtf8(b.caption));
        EXPECT_EQ(button->toolTip(), QString::fromUtf8(b.tip));
    }
    EXPECT_NE(child<QPushButton>("cmdExit"), nullptr);
    EXPECT_EQ(child<QPlainTextEdit>("txtError")->toolTip(),
              QStringLiteral("This is the error which ocurred"));
    EXPECT_EQ(child<QPlainTextEdit>("txtLog")->toolTip(),
              QStringLiteral("This is the content of the program's log file"));
    EXPECT_EQ(child<QPlainTextEdit>("txtUserMessage")->toolTip(),
              QStringLiteral("These comments will be added to your error report."));
    EXPECT_EQ(child<QGroupBox>("fraError")->title(), QStringLiteral("Error Details"));
    EXPECT_EQ(child<QGroupBox>("fraComments")->title(),
              QStringLiteral("Enter your own comments here"));
}

TEST_F(ErrorReportWindowTest, ShowsTheErrorAndNoLogFileWhenThereIsNone) {
    window.ShowError(QStringLiteral("Error 53 - File not found in frmMain of Save"));
    EXPECT_EQ(child<QPlainTextEdit>("txtError")->toPlainText(),
              QStringLiteral("Error 53 - File not found in frmMain of Save"));
    EXPECT_EQ(child<QPlainTextEdit>("txtLog")->toPlainText(), QStringLiteral("No log file"));
}

TEST_F(ErrorReportWindowTest, ShowsTheLogWithItsBufferedActions) {
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("log.txt")), "1 10:00:00, started\r\n"));
    Log().AddAction(QStringLiteral("something recent"));
    window.ShowError(QStringLiteral("E"), QStringLiteral("detail"));
    EXPECT_EQ(child<QPlainTextEdit>("txtError")->toPlainText(), QStringLiteral("E\ndetail"));
    const QString log = child<QPlainTextEdit>("txtLog")->toPlainText();
    EXPECT_TRUE(log.startsWith(QStringLiteral("1 10:00:00, started")));
    EXPECT_TRUE(log.contains(QStringLiteral("something recent")));
}

TEST_F(ErrorReportWindowTest, ViewReportWritesFullLogAndOpensIt) {
    window.ShowError(QStringLiteral("Bad thing"));
    click("cmdShowComments");
    EXPECT_TRUE(child<QGroupBox>("fraComments")->isVisibleTo(&window));
    QTest::keyClicks(child<QPlainTextEdit>("txtUserMessage"), QStringLiteral("my words"));
    click("cmdViewReport");

    const QString path = fSHAREDErrorRpt::FullLogPath();
    ASSERT_EQ(opened, QList<QUrl>{QUrl::fromLocalFile(path)});
    const QString report = TextCodec::FromWindows1252(ReadFileBytes(path));
    EXPECT_EQ(report,
              ErrorReportText::FullReport(QStringLiteral("Bad thing"), QStringLiteral("my words"),
                                          QStringLiteral("No log file")));
}

TEST_F(ErrorReportWindowTest, SubmitOpensTheMailLink) {
    window.ShowError(QStringLiteral("Bad thing"));
    click("cmdShowComments");
    auto* comments = child<QPlainTextEdit>("txtUserMessage");
    QTest::keyClicks(comments, QStringLiteral("50% &?#"));
    QTest::keyClick(comments, Qt::Key_Return);
    QTest::keyClicks(comments, QStringLiteral("ok"));
    click("cmdEmail");
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened[0].scheme(), QStringLiteral("mailto"));
    const QString sent = opened[0].toString(QUrl::FullyEncoded);
    EXPECT_TRUE(sent.contains(QStringLiteral("User:%2050%25%20%26%3F%23%0D%0Aok%0D%0ABad%20thing")))
        << sent.toStdString();
}

TEST_F(ErrorReportWindowTest, ViewLogAndHelpOpenTheirTargets) {
    click("cmdViewLog");
    click("cmdHelp");
    EXPECT_EQ(opened, (QList<QUrl>{QUrl::fromLocalFile(home.file(QStringLiteral("log.txt"))),
                                   AppInfo::HelpUrl()}));
}

TEST(ErrorReportWindowSink, EachReportOpensAWindowThatExitCloses) {
    ErrorReportWindowSink sink;
    cSHAREDShowError::ShowErr(QStringLiteral("Shown to the user"));
    fSHAREDErrorRpt* window = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* r = qobject_cast<fSHAREDErrorRpt*>(w); r != nullptr && r->isVisible()) {
            window = r;
        }
    }
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->findChild<QPlainTextEdit*>(QStringLiteral("txtError"))->toPlainText(),
              QStringLiteral("Shown to the user"));
    QPointer<fSHAREDErrorRpt> guard(window);
    QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("cmdExit")), Qt::LeftButton);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());
}

} // namespace
