// The database object: storing, editing, deleting, ID codes, change
// detection, read-only and interrupted saves, owner maintenance.
#include "StorageFixture.h"

#include "shared/SaveFailures.h"
#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "support/RecordedErrorReports.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

namespace {

class DbXml : public StorageTest {
protected:
    DbXml() : db(settings, &layers) { db.SetDBFilename(path()); }

    QString path() const { return home.file("Events.xml"); }

    static QStringList Descs(const QList<EventPtr>& events) {
        QStringList descs;
        for (const EventPtr& e : events) {
            descs << e->Desc();
        }
        return descs;
    }
    QStringList DescsInFile() { return Descs(LoadEvents(path())); }

    // Moves the file's time stamp so that a change is seen whatever the
    // file system's time resolution.
    void Touch(const QString& file, int secondsLater = 5) {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        const QDateTime when = f.fileTime(QFileDevice::FileModificationTime).addSecs(secondsLater);
        ASSERT_TRUE(f.setFileTime(when, QFileDevice::FileModificationTime));
    }

    clsDbXml db;
};

TEST_F(DbXml, CodesAreUniqueSixDigitsAndAnEditedRecordMovesToTheEnd) {
    static const QRegularExpression sixDigits("^\\d{6}$");
    QSet<QString> codes;
    clsDbXml many(settings);
    for (int i = 0; i < 5000; ++i) { // deleted records keep their codes
        auto e = MakeEvent(QString::number(i));
        e->Deleted = (i % 3 == 0);
        many.StoreRecord(e);
        ASSERT_TRUE(sixDigits.match(e->IDCode).hasMatch() && e->IDCode.toInt() <= 100000);
        codes.insert(e->IDCode);
    }
    EXPECT_EQ(codes.size(), 5000);

    const auto a = MakeEvent(QStringLiteral("A")), b = MakeEvent(QStringLiteral("B"));
    for (const auto& e : {a, b, MakeEvent(QStringLiteral("C"))}) {
        db.StoreRecord(e);
    }
    // An edited copy with A's code replaces A and goes to the end.
    auto edited = MakeEvent(QStringLiteral("A2"));
    edited->IDCode = a->IDCode;
    db.StoreRecord(edited);
    EXPECT_EQ(db.ReadEvent(a->IDCode), edited);
    db.SaveDB();
    EXPECT_EQ(DescsInFile(), (QStringList{"B", "C", "A2"}));
    // Storing as new gives another code and keeps the original.
    auto copy = MakeEvent(QStringLiteral("copy"));
    copy->IDCode = b->IDCode;
    db.StoreRecord(copy, true);
    EXPECT_EQ(std::tuple(copy->IDCode != b->IDCode, db.RecordCount()), std::tuple(true, 4));
    // One event object in two lists: a new code given by one list is found by the other.
    clsDbXml other(settings);
    other.StoreRecord(edited, true);
    EXPECT_EQ(db.ReadEvent(edited->IDCode), edited);
    // Two events with one code (a hand-merged file): taking one leaves the other found.
    auto twin = MakeEvent(QStringLiteral("B twin"));
    twin->IDCode = b->IDCode;
    db.InsertRecord(0, twin);
    EXPECT_TRUE(db.TakeRecord(b));
    EXPECT_EQ(db.ReadEvent(b->IDCode), twin);
}

TEST_F(DbXml, DeletingAndSavingAReadOnlyFile) {
    const auto a = MakeEvent(QStringLiteral("A"));
    db.StoreRecord(a);
    db.StoreRecord(MakeEvent("B"));
    db.DeleteRecord(a->IDCode);
    EXPECT_EQ(std::tuple(a->Deleted, db.RecordCount(), DescsInFile()),
              std::tuple(true, 2, QStringList{"B"}));
    db.DeleteRecord("999999x"); // unknown: still saves
    db.LoadDB(path());
    EXPECT_EQ(std::tuple(db.RecordCount(), db.ReadEvent(a->IDCode)), std::tuple(1, nullptr));
    // A read-only file is made writable and saved.
    ASSERT_TRUE(QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::ReadUser));
    db.StoreRecord(MakeEvent("new"));
    db.SaveDB();
    EXPECT_EQ(std::tuple(DescsInFile(), db.HasUnsavedChanges()),
              std::tuple(QStringList{"B", "new"}, false));
}

TEST_F(DbXml, ChangeDetectionFollowsTheFileTimeStamp) {
    db.LoadDB(path());
    EXPECT_FALSE(db.DatabaseChanged()) << "absent and still absent";

    // Another program creates the file.
    SaveEvents(path(), {MakeEvent("from elsewhere")});
    EXPECT_TRUE(db.DatabaseChanged());
    db.LoadDB(path());
    EXPECT_EQ(std::tuple(db.RecordCount(), db.DatabaseChanged()), std::tuple(1, false));

    // Our own save does not count as a change; a later write elsewhere does,
    // and so does a stamp that moved backwards.
    db.SaveDB();
    EXPECT_FALSE(db.DatabaseChanged());
    Touch(path(), 10);
    EXPECT_TRUE(db.DatabaseChanged());
    db.LoadDB(path());
    Touch(path(), -100);
    EXPECT_TRUE(db.DatabaseChanged());
}

// A file that cannot be written (here: its folder is gone) is told once; the
// events stay in memory and reach the file once it can be written again.
TEST_F(DbXml, AFailedSaveIsToldOnceAndTheEventsWaitForTheNextSave) {
    RecordedErrorReports reports;
    const QString folder = home.file("data");
    const QString file = QDir(folder).filePath("Events.xml");
    db.SetDBFilename(file);
    db.StoreRecord(MakeEvent("first"));
    db.SaveDB();
    db.StoreRecord(MakeEvent("second"));
    db.SaveDB();
    EXPECT_TRUE(db.HasUnsavedChanges());
    ASSERT_EQ(reports.texts(), QStringList{"Unable to save " + file + ": Path not found."});
    EXPECT_EQ(reports.secondTexts().first(), SaveFailures::AdviceText());
    // Reloading the databases (after the options) keeps what is not saved.
    settings.sSet("DataPath", SettingValue(folder));
    clsDbXml expired(settings, &layers);
    SharedDatabases shared(settings, layers);
    DataFiles::LoadDatabases(settings, db, expired, shared);
    EXPECT_EQ(db.RecordCount(), 2);

    ASSERT_TRUE(QDir().mkpath(folder));
    db.SaveDB();
    EXPECT_EQ(std::tuple(db.HasUnsavedChanges(), LoadEvents(file).size()), std::tuple(false, 2));

    QDir(folder).removeRecursively(); // fails again: told again
    db.SaveDB();
    EXPECT_EQ(reports.texts().size(), 2);
}

#ifdef Q_OS_UNIX
TEST_F(DbXml, ASaveCutOffPartWayLeavesThePreviousFileWhole) {
    for (int i = 0; i < 200; ++i) {
        db.StoreRecord(MakeEvent(QStringLiteral("event %1").arg(i)));
    }
    db.SaveDB();
    const QByteArray before = ReadFileBytes(path());
    ASSERT_GT(before.size(), 100000);

    for (int i = 0; i < 200; ++i) {
        db.StoreRecord(MakeEvent(QStringLiteral("more %1").arg(i)));
    }
    {
        const FileSizeLimit limit(before.size() / 2);
        db.SaveDB();
    }
    EXPECT_EQ(ReadFileBytes(path()), before);
    EXPECT_TRUE(NewLogLines().join('\n').contains("in SaveDB of module clsDbXml"));
    const QStringList leftovers = QDir(home.path()).entryList(QDir::Files).filter("Events.xml");
    EXPECT_EQ(leftovers, QStringList{"Events.xml"}) << "no half-written copy stays behind";

    db.SaveDB(); // the next save goes through
    EXPECT_EQ(DescsInFile().size(), 400);
}
#endif

TEST_F(DbXml, OwnerOperationsCompareTrimmedNamesAndSave) {
    const auto ann = MakeEvent(QStringLiteral("ann's"), QStringLiteral(" Ann "));
    const auto bob = MakeEvent(QStringLiteral("bob's"), QStringLiteral("Bob"));
    const auto bob2 = MakeEvent(QStringLiteral("bob's too"), QStringLiteral("bob"));
    for (const auto& e : {ann, bob, bob2}) {
        db.StoreRecord(e);
    }
    db.RenameOwner("BOB ", "Robert");
    EXPECT_EQ(QStringList({bob->Owner(), bob2->Owner(), ann->Owner()}),
              QStringList({"Robert", "Robert", " Ann "}));
    EXPECT_TRUE(ReadFileBytes(path()).contains("<Owner>Robert</Owner>"));

    db.SetAllToSingleUser();
    EXPECT_TRUE(ReadFileBytes(path()).contains("<Owner>Single</Owner>"));
    settings.sSet("Owner", SettingValue("Zoe"));
    db.LoadDB(path());
    ASSERT_EQ(db.RecordCount(), 3);
    EXPECT_EQ(db.Events().first()->Owner(), "Zoe");
}

TEST_F(DbXml, NetworkedLoadingFiltersByShareNamesAndMapsLayersByName) {
    layers.LoadLayers();
    for (int i = 1; i <= 18; ++i) {
        layers.setLayer(i, QStringLiteral("Mine %1").arg(i)); // only 19 is free
    }
    // desc, share names, layer name, for specific users, visible, layer, layer once loaded
    const std::tuple<const char*, const char*, const char*, bool, bool, int16_t, int16_t> rows[] = {
        {"for all, known layer", "", "Mine 4", false, true, 9, 4},
        {"for Ann", "Bob\r\nANN\r\n", "Mine 4", true, true, 4, 4},
        {"for JoAnn", "JoAnn\r\n", "", true, true, 6, 6}, // tail match, kept layer
        {"for Anne", "Anne\r\n", "Mine 1", true, false, 1, 0},
        {"new layer", "", "Travel", false, true, 3, 19},
        {"no slot left", "", "Hobby", false, true, 7, 7},
    };
    clsDbXml writer(settings, nullptr);
    writer.SetDBFilename(path());
    for (const auto& [desc, names, layerName, specific, visible, layer, loadedLayer] : rows) {
        auto e = MakeEvent(QString::fromLatin1(desc), QStringLiteral("Bob"));
        e->ShareWithSpecific = specific;
        e->ShareNames = QString::fromLatin1(names);
        e->SharedLayerName = QString::fromLatin1(layerName);
        e->setLayer(layer);
        writer.StoreRecord(e);
    }
    writer.SaveDB();

    clsDbXml plain(settings, &layers);
    plain.LoadDB(path());
    EXPECT_EQ(plain.RecordCount(), 6) << "single-user mode neither filters nor maps";
    EXPECT_EQ(plain.Events().at(0)->Layer(), 9);

    db.setNetworked(true);
    db.LoadDB(path());
    const QStringList loaded = Descs(db.Events());
    for (const auto& [desc, names, layerName, specific, visible, layer, loadedLayer] : rows) {
        const auto at = loaded.indexOf(QString::fromLatin1(desc));
        ASSERT_EQ(at >= 0, visible) << desc;
        if (visible) {
            EXPECT_EQ(db.Events().at(at)->Layer(), loadedLayer) << desc;
        }
    }
    EXPECT_EQ(layers.Layer(19), "Travel");
}

TEST_F(DbXml, AnUnreadableFileGivesNoRecordsAndIsLoggedUnderTheOldLabels) {
    ASSERT_TRUE(QDir().mkpath(path())); // a folder where the file should be
    db.LoadDB(path());
    EXPECT_EQ(db.RecordCount(), 0);
    EXPECT_TRUE(NewLogLines().join('\n').contains("in LoadAllEvents of module clsDB2"));
}

} // namespace
