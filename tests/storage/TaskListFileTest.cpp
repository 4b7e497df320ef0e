// The task list file: its exact bytes, raw texts, and the one-time move from
// the old plain-text file.
#include "storage/TaskListFile.h"
#include "support/RecordedErrorReports.h"
#include "support/TestSupport.h"

#include <QFileInfo>

namespace {

const QByteArray kHeader = QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n");

} // namespace

TEST(TaskListFile, SavedBytesReadBackInOrderWithMarkupKept) {
    EXPECT_EQ(TaskListFile::Format({}), kHeader + "<TVO2>\r\n\t<TASK>\r\n\t</TASK>\r\n</TVO2>\r\n");
    TempHome home;
    TaskListFile file(home.path());
    const QStringList tasks{"Buy milk", "Call <Bob> & \"Sue\" \u00e9", "  pad  "};
    ASSERT_TRUE(file.Save(tasks));
    EXPECT_EQ(ReadFileBytes(home.file("tasklist.xml")),
              kHeader + "<TVO2>\r\n\t<TASK>\r\n\t\t<DETAILS>Buy milk</DETAILS>\r\n"
                        "\t\t<DETAILS>Call <Bob> & \"Sue\" \xe9</DETAILS>\r\n"
                        "\t\t<DETAILS>  pad  </DETAILS>\r\n\t</TASK>\r\n</TVO2>\r\n");
    EXPECT_EQ(file.Load(), tasks);
}

TEST(TaskListFile, ParseTakesDetailsInsideTaskElementsOnly) {
    const struct {
        const char* name;
        QByteArray bytes;
        QStringList tasks;
    } cases[] = {
        {"empty file", QByteArray(), {}},
        {"no TASK element", "<TVO2>\r\n<DETAILS>stray</DETAILS>\r\n</TVO2>\r\n", {}},
        {"empty TASK element", "<TASK></TASK><DETAILS>out</DETAILS>", {}},
        {"two TASK elements",
         "<TASK>\r\n<DETAILS>a</DETAILS>\r\n</TASK><DETAILS>out</DETAILS>\r\n"
         "<TASK>\n<DETAILS>b</DETAILS>\n</TASK>",
         {"a", "b"}},
        {"unclosed DETAILS", "<TASK>\r\n\t\t<DETAILS>open end\r\n</TASK>", {"open end"}},
        {"empty task", "<TASK>\r\n<DETAILS></DETAILS>\r\n</TASK>", {QString()}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TaskListFile::Parse(c.bytes), c.tasks) << c.name;
    }
}

TEST(TaskListFile, LegacyFileIsConvertedOnceAndRemoved) {
    TempHome home;
    ASSERT_TRUE(WriteFileBytes(home.file("tasklist.dat"), "first\r\nsecond <x>\r\n\r\nfourth\r\n"));
    TaskListFile file(home.path());
    const QStringList expected{"first", "second <x>", QString(), "fourth"};
    EXPECT_EQ(file.Load(), expected);
    EXPECT_FALSE(QFileInfo::exists(home.file("tasklist.dat")));
    EXPECT_EQ(ReadFileBytes(home.file("tasklist.xml")), TaskListFile::Format(expected));
    // Once the new file exists (its name in any case), an old file is left alone.
    ASSERT_TRUE(QFile::rename(home.file("tasklist.xml"), home.file("TaskList.XML")));
    ASSERT_TRUE(WriteFileBytes(home.file("tasklist.dat"), "old\r\n"));
    EXPECT_EQ(TaskListFile(home.path()).Load(), expected);
    EXPECT_TRUE(QFileInfo::exists(home.file("tasklist.dat")));
    // A last line without its line break is a task too.
    EXPECT_EQ(TaskListFile::ParseLegacy("a\r\nb"), (QStringList{"a", "b"}));
}

TEST(TaskListFile, LegacyFileStaysWhenTheNewFileWouldNotHoldItsTasks) {
    TempHome home;
    const QByteArray old = "plain\r\nx</DETAILS>y\r\n";
    ASSERT_TRUE(WriteFileBytes(home.file("tasklist.dat"), old));
    const QStringList expected{"plain", "x</DETAILS>y"};
    EXPECT_EQ(TaskListFile(home.path()).Load(), expected);
    EXPECT_EQ(ReadFileBytes(home.file("tasklist.dat")), old);
    EXPECT_FALSE(QFileInfo::exists(home.file("tasklist.xml")));
    EXPECT_EQ(TaskListFile(home.path()).Load(), expected) << "converted again, nothing lost";
}

TEST(TaskListFile, ReadOnlyFileIsMadeWritableAndAFailureIsToldOnce) {
    TempHome home;
    RecordedErrorReports reports;
    TaskListFile file(home.path());
    ASSERT_TRUE(file.Save({"old"}));
    QFile(file.XmlPath()).setPermissions(QFileDevice::ReadOwner);
    EXPECT_TRUE(file.Save({"new"}));
    EXPECT_EQ(file.Load(), QStringList{"new"});

    TaskListFile gone(home.file("gone"));
    EXPECT_FALSE(gone.Save({"a"}));
    EXPECT_FALSE(gone.Save({"a", "b"}));
    EXPECT_EQ(reports.texts(),
              QStringList{"Unable to save " + gone.XmlPath() + ": Path not found."});
}
