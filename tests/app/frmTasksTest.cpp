// The task list window offscreen, with scripted input boxes. Its printout is
// read back by the date-style test.
#include "app/dialogs/frmTasks.h"
#include "shared/cSHAREDSettings.h"
#include "storage/TaskListFile.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QFileInfo>
#include <QPushButton>
#include <QTest>

namespace {

class TaskList : public ::testing::Test {
protected:
    TaskList() {
        settings.sSet("Datapath", SettingValue(home.path()));
        window = std::make_unique<frmTasks>(settings, dialogs);
    }

    void click(const char* name, int times = 1) {
        while (times-- > 0) {
            QTest::mouseClick(window->findChild<QPushButton*>(name), Qt::LeftButton);
        }
    }
    QString xml() const { return home.file("tasklist.xml"); }
    QStringList onDisk() const { return TaskListFile::Parse(ReadFileBytes(xml())); }

    TempHome home;
    cSHAREDSettings settings;
    ScriptedDialogs dialogs;
    std::unique_ptr<frmTasks> window;
};

// Every change is saved at once; cancelled or empty answers and a missing
// selection change nothing, and No keeps the task.
TEST_F(TaskList, EachChangeIsSavedAndRefusalsKeepTheFile) {
    click("cmd_change");
    EXPECT_EQ(dialogs.texts(), QStringList{"Please select a task first"});
    EXPECT_FALSE(QFileInfo::exists(xml())) << "nothing asked, nothing written";
    dialogs.clear();
    dialogs.answerText("a").answerText("Call <Bob> & Sue");
    click("cmd_add", 2);
    dialogs.answerText("c").answerCancel().answerText(QString());
    click("cmd_add", 3);
    EXPECT_EQ(dialogs.shown().at(0).title, "Enter a task");
    EXPECT_EQ(onDisk(), (QStringList{"a", "Call <Bob> & Sue", "c"}));

    window->Select(1);
    dialogs.answerText("b");
    click("cmd_change");
    EXPECT_EQ(dialogs.shown().last().extra, "Call <Bob> & Sue");
    EXPECT_EQ(onDisk(), (QStringList{"a", "b", "c"}));

    dialogs.answerNo();
    click("cmd_delete");
    EXPECT_EQ(dialogs.lastText(), "Are you sure you want to delete this task?\r\n\r\nb");
    const struct {
        int select;
        QStringList left;
        int selectedAfter;
    } steps[] = {{1, {"a", "c"}, 1}, {1, {"a"}, 0}, {0, {}, -1}};
    for (const auto& s : steps) {
        window->Select(s.select);
        dialogs.answerYes();
        click("cmd_delete");
        EXPECT_EQ(onDisk(), s.left);
        EXPECT_EQ(window->SelectedIndex(), s.selectedAfter);
    }
    EXPECT_TRUE(dialogs.allAnswersUsed());
    EXPECT_EQ(ReadFileBytes(xml()), TaskListFile::Format({})) << "still a whole file";
    EXPECT_TRUE(frmTasks(settings, dialogs).Tasks().isEmpty());
}

// A task marker would change the file's structure: refused, and the text
// offered again for correction.
TEST_F(TaskList, ATaskMarkerIsRefusedAndTheTextOfferedAgain) {
    dialogs.answerText("see </DETAILS> here").answerText("see details here");
    click("cmd_add");
    EXPECT_EQ(onDisk(), QStringList{"see details here"});
    ASSERT_EQ(dialogs.count(), 3);
    EXPECT_EQ(dialogs.shown().at(1).text,
              "A task cannot contain \"</DETAILS>\": please remove it.");
    EXPECT_EQ(dialogs.shown().at(2).extra, "see </DETAILS> here");
}

} // namespace
