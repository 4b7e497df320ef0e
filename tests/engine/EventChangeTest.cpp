// Recorded changes put events back in their places among untouched ones, and
// refuse once the database has been loaded again.
#include "engine/EventChange.h"
#include "shared/cSHAREDSettings.h"
#include "storage/clsDbXml.h"
#include "support/TestSupport.h"

namespace {

TEST(EventChange, UndoPutsEventsBackAmongTheOthersAndRefusesAfterALoad) {
    TempHome home;
    cSHAREDSettings settings;
    clsDbXml db(settings);
    db.SetDBFilename(home.file(QStringLiteral("Events.xml")));
    QList<EventPtr> list;
    for (const char* desc : {"A", "B", "C", "D", "E"}) {
        list.append(std::make_shared<clsEvent>());
        list.last()->setDesc(QString::fromLatin1(desc));
        db.StoreRecord(list.last(), true);
    }
    db.SaveDB();
    const QByteArray before = ReadFileBytes(db.DBFilename());

    // Three edits move A, B and D to the end; C is deleted; a new event is added.
    EventChange change;
    for (int i : {0, 1, 2, 3}) {
        change.Watch(db, list[i]);
    }
    change.Watch(db, list[4]); // its place moves up by one when A goes to the end
    db.StoreRecord(list[0]);
    list[3]->setDesc(QStringLiteral("D2"));
    db.StoreRecord(list[3]);
    change.Watch(db, list[3]); // again after its edit: the first look counts
    db.StoreRecord(list[1]);
    list[2]->Deleted = true;
    auto added = std::make_shared<clsEvent>();
    db.StoreRecord(added, true);
    change.WatchAdded(db, added);
    db.SaveDB();
    change.Finish();
    const QByteArray after = ReadFileBytes(db.DBFilename());
    EXPECT_EQ(change.Count(), 6);

    ASSERT_TRUE(change.Undo());
    EXPECT_EQ(ReadFileBytes(db.DBFilename()), before);
    EXPECT_EQ(db.RecordCount(), 5);
    ASSERT_TRUE(change.Redo());
    EXPECT_EQ(ReadFileBytes(db.DBFilename()), after);
    EventChange untouched; // watched but left alone: nothing recorded
    untouched.Watch(db, list[4]);
    untouched.Finish();
    EXPECT_EQ(untouched.Count(), 0);

    db.LoadDB(db.DBFilename());
    EXPECT_FALSE(change.Undo());
    EXPECT_EQ(ReadFileBytes(db.DBFilename()), after);
}

} // namespace
