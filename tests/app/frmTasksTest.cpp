// The task list window offscreen, with scripted input boxes.
#include "app/dialogs/frmTasks.h"
#include "app/dialogs/PrintSetup.h"
#include "shared/cSHAREDSettings.h"
#include "storage/TaskListFile.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QFileInfo>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

class TaskList : public ::testing::Test {
protected:
    TaskList() { settings.sSet(QStringLiteral("Datapath"), SettingValue(home.path())); }

    frmTasks& open() {
        window = std::make_unique<frmTasks>(settings, dialogs);
        return *window;
    }
    void click(const char* name) {
        QTest::mouseClick(window->findChild<QPushButton*>(QString::fromLatin1(name)),
                          Qt::LeftButton);
    }
    QString xml() const { return home.file(QStringLiteral("tasklist.xml")); }
    QStringList onDisk() const { return TaskListFile::Parse(ReadFileBytes(xml())); }

    TempHome home;
    cSHAREDSettings settings;
    ScriptedDialogs dialogs;
    std::unique_ptr<frmTasks> window;
};

TEST_F(TaskList, AddAppendsAndSavesEachTime) {
    open();
    EXPECT_FALSE(QFileInfo::exists(xml())) << "opening writes nothing";
    dialogs.answerText(QStringLiteral("Buy milk")).answerText(QStringLiteral("Call <Bob> & Sue"));
    click("cmd_add");
    EXPECT_EQ(onDisk(), QStringList{QStringLiteral("Buy milk")});
    click("cmd_add");
    EXPECT_EQ(onDisk(),
              (QStringList{QStringLiteral("Buy milk"), QStringLiteral("Call <Bob> & Sue")}));
    EXPECT_EQ(dialogs.shown().at(0).text, QStringLiteral("Enter a todo item:"));
    EXPECT_EQ(dialogs.shown().at(0).title, QStringLiteral("Enter a task"));

    frmTasks reopened(settings, dialogs);
    EXPECT_EQ(reopened.Tasks(), window->Tasks());
}

TEST_F(TaskList, ATaskMarkerIsRefusedAndTheTextOfferedAgain) {
    open();
    dialogs.answerText(QStringLiteral("see </DETAILS> here"))
        .answerText(QStringLiteral("see details here"));
    click("cmd_add");
    EXPECT_EQ(onDisk(), QStringList{QStringLiteral("see details here")});
    ASSERT_EQ(dialogs.count(), 3);
    EXPECT_EQ(dialogs.shown().at(1).text,
              QStringLiteral("A task cannot contain \"</DETAILS>\": please remove it."));
    EXPECT_EQ(dialogs.shown().at(2).extra, QStringLiteral("see </DETAILS> here"));
}

TEST_F(TaskList, CancelledOrEmptyAnswersWriteNothing) {
    ASSERT_TRUE(TaskListFile(home.path()).Save({QStringLiteral("one")}));
    const QByteArray before = ReadFileBytes(xml());
    const qint64 stamp = QFileInfo(xml()).lastModified().toMSecsSinceEpoch();
    open();
    window->Select(0);
    dialogs.answerCancel().answerText(QString()).answerCancel().answerText(QString());
    click("cmd_add");
    click("cmd_add");
    click("cmd_change");
    click("cmd_change");
    EXPECT_TRUE(dialogs.allAnswersUsed());
    EXPECT_EQ(window->Tasks(), QStringList{QStringLiteral("one")});
    EXPECT_EQ(ReadFileBytes(xml()), before);
    EXPECT_EQ(QFileInfo(xml()).lastModified().toMSecsSinceEpoch(), stamp);
}

TEST_F(TaskList, ChangeOrDeleteNeedASelection) {
    ASSERT_TRUE(TaskListFile(home.path()).Save({QStringLiteral("one")}));
    open();
    click("cmd_change");
    click("cmd_delete");
    EXPECT_EQ(dialogs.texts(), (QStringList{QStringLiteral("Please select a task first"),
                                            QStringLiteral("Please select a task first")}));
    EXPECT_EQ(window->Tasks(), QStringList{QStringLiteral("one")});
}

TEST_F(TaskList, ChangeReplacesInPlace) {
    ASSERT_TRUE(TaskListFile(home.path())
                    .Save({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    open();
    window->Select(1);
    dialogs.answerText(QStringLiteral("B!"));
    click("cmd_change");
    EXPECT_EQ(dialogs.shown().at(0).title, QStringLiteral("Change Task"));
    EXPECT_EQ(dialogs.shown().at(0).extra, QStringLiteral("b")) << "starts with the task";
    EXPECT_EQ(onDisk(),
              (QStringList{QStringLiteral("a"), QStringLiteral("B!"), QStringLiteral("c")}));
}

TEST_F(TaskList, DeleteKeepsASelectionWhileTasksRemain) {
    ASSERT_TRUE(TaskListFile(home.path())
                    .Save({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    open();
    const struct {
        int select;
        QStringList left;
        int selectedAfter;
    } steps[] = {
        {1, {QStringLiteral("a"), QStringLiteral("c")}, 1},
        {1, {QStringLiteral("a")}, 0},
        {0, {}, -1},
    };
    // No keeps the task; Yes deletes it.
    window->Select(1);
    dialogs.answerNo();
    click("cmd_delete");
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Are you sure you want to delete this task?\r\n\r\nb"));
    EXPECT_EQ(window->Tasks().size(), 3);
    for (const auto& s : steps) {
        window->Select(s.select);
        dialogs.answerYes();
        click("cmd_delete");
        EXPECT_EQ(window->Tasks(), s.left);
        EXPECT_EQ(onDisk(), s.left);
        EXPECT_EQ(window->SelectedIndex(), s.selectedAfter);
    }
    EXPECT_EQ(ReadFileBytes(xml()), TaskListFile::Format({}))
        << "an empty list is still a whole file";
    EXPECT_EQ(dialogs.count(), 4);
}

TEST_F(TaskList, LegacyFileIsShownAndConverted) {
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("tasklist.dat")), "first\r\nsecond\r\n"));
    open();
    EXPECT_EQ(window->Tasks(), (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
    EXPECT_FALSE(QFileInfo::exists(home.file(QStringLiteral("tasklist.dat"))));
    EXPECT_EQ(onDisk(), window->Tasks());
}

TEST_F(TaskList, PrintsNumberedTasksToPdf) {
    FixedClock clock(QStringLiteral("2009-03-10 09:00"));
    settings.sSet(QStringLiteral("DateStyle"), SettingValue(1));
    ASSERT_TRUE(
        TaskListFile(home.path()).Save({QStringLiteral("Buy milk"), QStringLiteral("Fix bike")}));
    open();
    const QString pdf = home.file(QStringLiteral("tasks.pdf"));
    PdfPrintSetup setup(pdf);
    window->setPrintSetup(&setup);
    click("cmd_print");
    const QString text = PdfText(pdf);
    for (const char* expected :
         {"Tarvo task list", "Printed 10/03/2009", "1) Buy milk", "2) Fix bike"}) {
        EXPECT_TRUE(text.contains(QString::fromLatin1(expected))) << expected << "\n"
                                                                  << text.toStdString();
    }
    EXPECT_EQ(dialogs.count(), 0);

    const QString nowhere = home.file(QStringLiteral("missing/tasks.pdf"));
    PdfPrintSetup broken(nowhere);
    window->setPrintSetup(&broken);
    click("cmd_print");
    EXPECT_EQ(dialogs.lastText(),
              QStringLiteral("Unable to print. ") + nowhere + QStringLiteral(" not ready"));
}

} // namespace
