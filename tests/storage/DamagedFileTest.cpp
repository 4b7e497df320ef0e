// Own files that cannot be read as written: what could be read is kept, and
// the file as it was survives in a copy made before the first save.
#include "StorageFixture.h"

#include "storage/TaskListFile.h"
#include "storage/clsDbXml.h"
#include "support/RecordedErrorReports.h"

#include <QDir>

namespace {

class DamagedFiles : public StorageTest {
protected:
    // The file a save of three events writes.
    QByteArray ThreeEvents() {
        return SaveEvents(home.file("written.xml"),
                          {MakeEvent("Dentist"), MakeEvent("Rent"), MakeEvent("Mum's birthday")},
                          true);
    }
    QStringList Copies() const { return QDir(home.path()).entryList({"*.damaged-*"}, QDir::Files); }
};

TEST_F(DamagedFiles, EventFileIsCopiedOnceBeforeItsFirstSave) {
    FixedClock clock("2026-11-25 14:07");
    const QByteArray good = ThreeEvents();
    const qsizetype firstEnd = good.indexOf("</EVENT>") + 8;
    const struct {
        const char* name;
        QByteArray bytes;
        int readable; // events that can be read (a cut-off one with what it has)
    } cases[] = {
        {"cut off in the last event", good.left(good.size() - 60), 3},
        {"no header", good.mid(Header().size()), 3},
        {"an end tag before the header", "</EVENT>" + good, 3},
        {"text between events", good.left(firstEnd) + "\x01garbage" + good.mid(firstEnd), 3},
        {"not the format at all", QByteArray("PK\x03\x04 zip bytes"), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = home.file("Events.xml");
        ASSERT_TRUE(WriteFileBytes(path, c.bytes));
        RecordedErrorReports reports;
        clsDbXml db(settings);
        db.LoadDB(path);
        EXPECT_EQ(db.RecordCount(), c.readable);
        db.SaveDB();
        db.SaveDB();

        const QString copy = path + ".damaged-20261125-1407";
        EXPECT_EQ(Copies(), QStringList{QFileInfo(copy).fileName()});
        EXPECT_EQ(ReadFileBytes(copy), c.bytes);
        ASSERT_EQ(reports.texts().size(), 1);
        EXPECT_TRUE(reports.texts().first().contains(QDir::toNativeSeparators(copy)));
        EXPECT_EQ(LoadEvents(path).size(), c.readable);
        QFile::remove(copy);
    }
    // A file as the program writes it is no cause for a copy.
    ASSERT_TRUE(WriteFileBytes(home.file("Expired.xml"), good));
    clsDbXml expired(settings);
    expired.LoadDB(home.file("Expired.xml"));
    expired.StoreRecord(MakeEvent("New"), true);
    expired.SaveDB();
    EXPECT_TRUE(Copies().isEmpty());
}

TEST_F(DamagedFiles, TaskListCutShortKeepsItsTasksAndACopy) {
    FixedClock clock("2026-11-25 14:07");
    const QByteArray whole = TaskListFile::Format({"Buy milk", "Post"});
    const QByteArray cut = whole.left(whole.indexOf("</TASK>"));
    TaskListFile file(home.path());
    ASSERT_TRUE(WriteFileBytes(file.XmlPath(), cut));
    RecordedErrorReports reports;
    const QStringList tasks = file.Load();
    EXPECT_EQ(tasks, (QStringList{"Buy milk", "Post"}));
    ASSERT_TRUE(file.Save(tasks));
    EXPECT_EQ(ReadFileBytes(file.XmlPath() + ".damaged-20261125-1407"), cut);
    EXPECT_EQ(ReadFileBytes(file.XmlPath()), whole);
    EXPECT_EQ(reports.texts().size(), 1);
}

} // namespace
