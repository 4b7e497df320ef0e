#include "app/dialogs/fSHAREDErrorRpt.h"
#include "app/dialogs/ErrorReportWindowSink.h"
#include "app/dialogs/TextViewer.h"
#include "shared/ErrorReportText.h"
#include "shared/TextCodec.h"
#include "shared/cSHAREDShowError.h"
#include "shared/cSharedLogging.h"

#include "DialogsFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

namespace {

// The window with scripted dialogs and its log file in a temporary folder.
class ErrorReportWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Actions buffered by earlier tests go to their own log, not this one.
        Log().WriteActionsToLog();
        m_oldLog = Log().CurrentLogFilename();
        Log().OverrideLogFilename(home.file("log.txt"));
        fSHAREDErrorRpt::SetReportFolder(home.file("reports"));
    }
    void TearDown() override {
        fSHAREDErrorRpt::SetReportFolder({});
        if (!m_oldLog.isEmpty()) {
            Log().OverrideLogFilename(m_oldLog);
        }
    }

    template <typename T> T* child(const char* name) { return Control<T>(&window, name); }
    void click(const char* name) { QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton); }

    QString viewerText(const char* name) {
        auto* viewer = window.findChild<TextViewer*>(QLatin1String(name));
        EXPECT_NE(viewer, nullptr) << name;
        return viewer != nullptr && viewer->isVisible() ? viewer->browser()->toPlainText()
                                                        : QString();
    }

    TempHome home;
    ScriptedDialogs dialogs;
    fSHAREDErrorRpt window{dialogs};

private:
    QString m_oldLog;
};

// The error with its detail, and the log with its buffered actions (or
// "No log file"), also in the program's own log viewer; help opens inside
// the program.
TEST_F(ErrorReportWindowTest, ShowsTheErrorAndTheLogAndHelp) {
    window.ShowError("Error 53 - File not found", "detail");
    EXPECT_EQ(child<QPlainTextEdit>("txtError")->toPlainText(),
              "Error 53 - File not found\ndetail");
    EXPECT_EQ(child<QPlainTextEdit>("txtLog")->toPlainText(), "No log file");

    ASSERT_TRUE(WriteFileBytes(home.file("log.txt"), "1 10:00:00, started\r\n"));
    Log().AddAction("something recent");
    window.ShowError("E");
    const QString log = child<QPlainTextEdit>("txtLog")->toPlainText();
    EXPECT_TRUE(log.startsWith("1 10:00:00, started") && log.contains("something recent"));
    Log().AddAction("the newest line");
    click("cmdViewLog");
    EXPECT_TRUE(viewerText("frmLog").trimmed().endsWith("the newest line"));
    click("cmdHelp");
    EXPECT_TRUE(viewerText("frmHelp").contains("About Tarvo"));
}

TEST_F(ErrorReportWindowTest, TheReportIsViewedAndSubmitted) {
    window.ShowError("Bad thing");
    click("cmdShowComments");
    EXPECT_TRUE(child<QGroupBox>("fraComments")->isVisibleTo(&window));
    QTest::keyClicks(child<QPlainTextEdit>("txtUserMessage"), "my words");
    click("cmdViewReport");

    const QString expected = ErrorReportText::FullReport("Bad thing", "my words", "No log file");
    EXPECT_EQ(TextCodec::FromWindows1252(ReadFileBytes(fSHAREDErrorRpt::FullLogPath())), expected);
    EXPECT_EQ(viewerText("frmReport"), QString(expected).replace("\r\n", "\n"));

    // Submit saves where the user says and copies to the clipboard.
    const QString file = home.file("report.txt");
    dialogs.answerCancel();
    click("cmdEmail");
    EXPECT_FALSE(QFileInfo::exists(file));
    ASSERT_EQ(dialogs.count(), 1) << "cancelling the chooser says nothing more";

    dialogs.answerText(file);
    click("cmdEmail");
    const QString report = TextCodec::FromWindows1252(ReadFileBytes(file));
    EXPECT_TRUE(report.startsWith("Error Report: "));
    EXPECT_TRUE(report.contains("Bad thing") && report.contains("my words"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), report);
    EXPECT_EQ(dialogs.lastText(),
              "The error report was saved to " + file +
                  QStringLiteral(" and copied to the clipboard.\r\nSend the file, or paste the "
                                 "report into a message, to whoever looks after your copy of "
                                 "Tarvo."));
}

TEST(ErrorReportWindowSink, EachReportOpensAWindowThatExitCloses) {
    ScriptedDialogs dialogs;
    ErrorReportWindowSink sink(dialogs);
    cSHAREDShowError::ShowErr("Shown to the user");
    fSHAREDErrorRpt* window = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* r = qobject_cast<fSHAREDErrorRpt*>(w); r != nullptr && r->isVisible()) {
            window = r;
        }
    }
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->findChild<QPlainTextEdit*>("txtError")->toPlainText(), "Shown to the user");
    QPointer<fSHAREDErrorRpt> guard(window);
    QTest::mouseClick(window->findChild<QPushButton*>("cmdExit"), Qt::LeftButton);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(guard.isNull());
}

} // namespace
