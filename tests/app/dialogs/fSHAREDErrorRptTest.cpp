#include "app/dialogs/fSHAREDErrorRpt.h"
#include "app/dialogs/ErrorReportWindowSink.h"
#include "shared/AppInfo.h"
#include "shared/ErrorReportText.h"
#include "shared/TextCodec.h"
#include "shared/cSHAREDShowError.h"
#include "shared/cSharedLogging.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

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
