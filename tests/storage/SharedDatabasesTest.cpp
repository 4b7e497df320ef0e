// Networked mode with three users sharing one folder, each running their own
// settings, layers and databases as their own program would.
#include "StorageFixture.h"

#include "storage/DataFiles.h"
#include "storage/SharedDatabases.h"
#include "storage/SharedUserList.h"
#include "storage/clsDbXml.h"

#include <QDir>
#include <QFile>

#include <memory>

namespace {

// One user's program: settings, layers, the local database and the shared pair.
struct User {
    User(const QString& name, const QString& folder, const QString& dataFolder) : layers(settings) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(name));
        settings.sSet(QStringLiteral("Networked"), SettingValue(true));
        settings.sSet(QStringLiteral("SharedDatapath"), SettingValue(folder));
        layers.LoadLayers();
        local = std::make_unique<clsDbXml>(settings, &layers);
        local->SetDBFilename(QDir(dataFolder).filePath(name + "_Events.xml"));
        shared = std::make_unique<SharedDatabases>(settings, layers);
        shared->AttachTo(*local);
    }

    EventPtr Add(const QString& desc, int layer, bool sharedFlag, const QString& onlyFor = {}) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setOwner(settings.sGet("Owner").toText());
        e->setLayer(static_cast<int16_t>(layer));
        e->SharedEvent = sharedFlag;
        if (!onlyFor.isEmpty()) {
            e->ShareWithSpecific = true;
            e->ShareNames = onlyFor + "\r\n";
        }
        local->StoreRecord(e);
        return e;
    }

    QStringList SharedDescs() {
        QStringList descs;
        for (const EventPtr& e : shared->SharedSet().Events()) {
            descs << e->Desc();
        }
        return descs;
    }

    cSHAREDSettings settings;
    clsLayers layers;
    std::unique_ptr<clsDbXml> local;
    std::unique_ptr<SharedDatabases> shared;
};

class SharedFolder : public StorageTest {
protected:
    SharedFolder() {
        QDir(home.path()).mkpath("shared");
        folder = home.file("shared");
        EXPECT_TRUE(
            WriteFileBytes(File("TVOShared.ini"), " Ann \r\n\r\n  Bob\r\n   \r\nCarl \r\n"));
    }
    QString File(const QString& name) const { return QDir(folder).filePath(name); }

    QString folder;
};

TEST_F(SharedFolder, IdsThatWouldMeetInAFileNameOrInShareWithClash) {
    using SharedUserList::ClashKind;
    const QStringList listed{"Ann", "Fred", "Bob"};
    struct Case {
        const char* id;
        ClashKind kind;
        const char* with;
    } const cases[] = {
        {"ann", ClashKind::CaseOnly, "Ann"}, {" Ann ", ClashKind::Same, "Ann"},
        {"Ed", ClashKind::Tail, "Fred"},     {"ALFRED", ClashKind::Tail, "Fred"},
        {"ob", ClashKind::None, ""}, // the tail of this user's own ID
        {"BOB", ClashKind::None, ""},        {"Carl", ClashKind::None, ""},
    };
    for (const Case& c : cases) {
        const SharedUserList::Clash clash =
            SharedUserList::FindClash(listed, QString::fromUtf8(c.id), "Bob");
        EXPECT_EQ(clash.kind, c.kind) << c.id;
        EXPECT_EQ(clash.listed, QString::fromUtf8(c.with)) << c.id;
    }
    EXPECT_EQ(SharedUserList::WithRenamed({"Ann", "Bob", "anna"}, "ann", "Anna"),
              (QStringList{"Anna", "Bob"}));
    EXPECT_EQ(SharedUserList::WithAdded({"Ann"}, "ANN"), QStringList{"Ann"});
    // The list is written in the code page with a line end after each name.
    const QString list = File("list2.ini");
    ASSERT_TRUE(SharedDatabases::WriteUserList(list, {"Ann", "Zo\u00eb"}));
    EXPECT_EQ(ReadFileBytes(list), QByteArray("Ann\r\nZo\xEB\r\n"));
}

TEST_F(SharedFolder, AListEntryThatIsNoPlainFileNamePartIsSkippedAndLogged) {
    // "Shared_x/../../private.xml" would be a file beside the shared folder.
    User bob("Bob", home.path(), home.path());
    bob.Add("private", 0, true);
    bob.local->SaveDB();
    ASSERT_TRUE(QFile::rename(home.file("Shared_Bob.xml"), home.file("private.xml")));
    QDir(folder).mkpath("Shared_x");
    ASSERT_TRUE(WriteFileBytes(File("TVOShared.ini"), "x/../../private\r\n..\\up\r\nCarl\r\n" +
                                                          QByteArray(65, 'L') + "\r\nBad\x01\r\n"));

    User ann("Ann", folder, home.path());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.shared->SharedSet().SharedFiles(), (QStringList{File("Shared_Carl.xml")}));
    EXPECT_EQ(ann.shared->SharedSet().RecordCount(), 0);
    EXPECT_TRUE(Logged(QStringLiteral("Skipped user list entry that cannot name a shared file: "
                                      "x/../../private")));
}

TEST_F(SharedFolder, ThreeUsersPublishAndSeeEachOthersEvents) {
    User bob("Bob", folder, home.path());
    bob.layers.setLayer(5, "Work");
    bob.Add("bob to all", 0, false);
    bob.Add("bob work for Ann", 5, true, "ann");
    bob.Add("bob for Dave only", 2, true, "Dave");
    bob.Add("bob private", 2, false);
    bob.local->SaveDB(); // publishes Shared_Bob.xml

    const QString bobFile = File("Shared_Bob.xml");
    const QString carlFile = File("Shared_Carl.xml");
    const QString annFile = File("Shared_Ann.xml");
    ASSERT_TRUE(QFile::exists(bobFile));
    EXPECT_FALSE(ReadFileBytes(bobFile).contains("bob%20private"));
    EXPECT_TRUE(ReadFileBytes(bobFile).contains("<SharedLayerName>Work</SharedLayerName>"));

    // Ann loads the merged set.
    User ann("Ann", folder, home.path());
    const qsizetype logStart = Log().pendingActions().size();
    ann.shared->ReloadSharedSet();
    clsDbXml& set = ann.shared->SharedSet();
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann"}))
        << "an event shared with Dave only is invisible to Ann";
    EXPECT_EQ(set.SharedFiles(), (QStringList{bobFile, carlFile})) << "names trimmed, blanks out";
    EXPECT_EQ(set.DBFilename(), annFile);
    EXPECT_FALSE(QFile::exists(annFile)) << "loading never writes";
    const QStringList log = Log().pendingActions().mid(logStart);
    EXPECT_TRUE(log.contains("Found shared database  Ann "));
    EXPECT_TRUE(log.contains("Not loading - belongs to current user (Ann)"));
    EXPECT_TRUE(log.contains("Loading from " + bobFile));
    EXPECT_TRUE(log.contains(carlFile + " not found. Setting null refresh date."));
    EXPECT_TRUE(log.contains("Setting Database filename to Shared_Ann.xml"));

    // Bob's category "Work" is new to Ann: it takes her highest free slot;
    // "Shared" is layer 0 on every machine.
    EXPECT_EQ(ann.layers.Layer(set.Events().at(1)->Layer()), "Work");
    EXPECT_EQ(set.Events().at(0)->Layer(), 0);

    // Carl's missing file is watched: the set changes once it appears.
    EXPECT_FALSE(set.DatabaseChanged());
    User carl("Carl", folder, home.path());
    carl.Add("carl to all", 0, false);
    carl.local->SaveDB();
    EXPECT_TRUE(set.DatabaseChanged());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann", "carl to all"}));
    EXPECT_FALSE(set.DatabaseChanged());

    // Ann publishes; an old event of hers in her file goes, others' files stay as they are.
    ASSERT_TRUE(WriteFileBytes(annFile, Header() + "<EVENT><Desc>stale</Desc></EVENT>\r\n"));
    const QByteArray bobBefore = ReadFileBytes(bobFile);
    ann.Add("ann layer zero", 0, false);
    const EventPtr flagged = ann.Add("ann flagged", 3, true);
    const EventPtr notHers = ann.Add("not hers", 0, true);
    notHers->setOwner("Bob");
    ann.Add("ann private", 1, false);
    ann.local->SaveDB();

    EXPECT_EQ(flagged->SharedLayerName, "Layer 3");
    User reader("Bob", folder, home.path());
    reader.shared->ReloadSharedSet();
    EXPECT_EQ(reader.SharedDescs(), (QStringList{"ann layer zero", "ann flagged", "carl to all"}))
        << "Ann's file holds her shared and layer-zero events only";
    EXPECT_EQ(ReadFileBytes(bobFile), bobBefore) << "others' files are never written";
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann", "carl to all"}))
        << "publishing ends by reloading the merged set";
}

TEST_F(SharedFolder, AnOwnerNameTheOptionsRefusePublishesNothing) {
    // The options' own rule: separators, characters a file name or the code
    // page cannot hold, control characters, the reserved names.
    for (const QString owner :
         {"../Ann", "a\\b", "x:y", "  ", "x\u007f", "\u0141ukasz", "Not Set"}) {
        User user(owner, folder, home.path());
        user.Add("layer zero", 0, false);
        user.local->SaveDB();
        EXPECT_EQ(QDir(folder).entryList(QDir::Files), (QStringList{"TVOShared.ini"}))
            << owner.toStdString();
        EXPECT_FALSE(QFile::exists(home.file("Ann.xml")));
    }
    EXPECT_TRUE(Logged("Owner name unusable as a file name."));
}

TEST_F(SharedFolder, ANewOwnIdRenamesTheListEntryAndEmptiesTheOldFileOnlyWhenItChanged) {
    User ann("Ann", folder, home.path());
    ann.Add("ann to all", 0, false);
    ann.local->SaveDB();
    const QByteArray list = ReadFileBytes(File("TVOShared.ini"));
    ASSERT_TRUE(WriteFileBytes(File("Shared_Not Set.xml"), "kept"));

    // Other blanks around the same ID, or an old ID that was no name at all:
    // nothing in the folder changes.
    EXPECT_EQ(ann.shared->ChangeOwnId(" Ann", "Ann ", ann.local.get()), QString());
    EXPECT_EQ(ann.shared->ChangeOwnId("Not Set", "Ann", ann.local.get()), QString());
    EXPECT_EQ(ReadFileBytes(File("TVOShared.ini")), list);
    EXPECT_EQ(ReadFileBytes(File("Shared_Not Set.xml")), "kept");

    ann.local->RenameOwner("Ann", "Anna"); // as the options do first
    EXPECT_EQ(ann.shared->ChangeOwnId("Ann", "Anna", ann.local.get()), QString());
    EXPECT_EQ(SharedDatabases::ReadUserList(File("TVOShared.ini")),
              (QStringList{"Anna", "Bob", "Carl"}));
    EXPECT_FALSE(ReadFileBytes(File("Shared_Ann.xml")).contains("ann%20to%20all"));
    EXPECT_TRUE(ReadFileBytes(File("Shared_Anna.xml")).contains("ann%20to%20all"));
}

TEST_F(SharedFolder, WithoutAFolderOrAUserListNothingIsPublishedOrRead) {
    User nowhere("Ann", QString(), home.path());
    const QString cwd = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder)); // where a relative name would land
    nowhere.Add("layer zero", 0, false);
    nowhere.local->SaveDB();
    nowhere.shared->ReloadSharedSet();
    QDir::setCurrent(cwd);
    EXPECT_FALSE(QFile::exists(File("Shared_Ann.xml")));
    EXPECT_EQ(nowhere.shared->SharedSet().RecordCount(), 0);
    EXPECT_TRUE(Logged("No shared data path set."));

    // A missing user list gives an empty set; the merged set is never saved.
    QFile::remove(File("TVOShared.ini"));
    User ann("Ann", folder, home.path());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.shared->SharedSet().RecordCount(), 0);
    EXPECT_FALSE(ann.shared->SharedSet().DatabaseChanged());
    ann.shared->SharedSet().SaveDB();
    EXPECT_FALSE(QFile::exists(File("Shared_Ann.xml")));
    // The list comes back: the set counts as changed, so it is read again.
    ASSERT_TRUE(WriteFileBytes(File("TVOShared.ini"), "Ann\r\nBob\r\n"));
    EXPECT_TRUE(ann.shared->SharedSet().DatabaseChanged());
}

// Through a calendar server the merged set is the sync's cache file: the same
// filter and layer mapping, never saved, and nothing goes to the shared folder.
TEST_F(SharedFolder, TheServersCacheIsTheMergedSetAndTheFolderStaysUntouched) {
    User ann("Ann", folder, home.path());
    ann.settings.sSet(QStringLiteral("NetworkMode"), SettingValue(QStringLiteral("caldav")));
    ann.settings.sSet(QStringLiteral("DataPath"), SettingValue(home.path()));
    const QString cache = DataFiles::CalDavCacheFile(ann.settings);
    const QByteArray cacheBytes =
        Header() + "<TVO2>\r\n<EVENT><Desc>bob%20to%20all</Desc><Owner>Bob</Owner></EVENT>\r\n"
                   "<EVENT><Desc>bob%20work</Desc><Owner>Bob</Owner><SharedLayerName>Work"
                   "</SharedLayerName><ShareWithSpecific>-1</ShareWithSpecific><ShareNames>"
                   "Ann%0D%0A</ShareNames></EVENT>\r\n<EVENT><Desc>carl%20for%20Dave</Desc>"
                   "<Owner>Carl</Owner><ShareWithSpecific>-1</ShareWithSpecific><ShareNames>"
                   "Dave%0D%0A</ShareNames></EVENT>\r\n</TVO2>\r\n";
    ASSERT_TRUE(WriteFileBytes(cache, cacheBytes));

    clsDbXml expired(ann.settings, &ann.layers);
    DataFiles::LoadDatabases(ann.settings, *ann.local, expired, *ann.shared);
    clsDbXml& set = ann.shared->SharedSet();
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work"}));
    EXPECT_EQ(ann.layers.Layer(set.Events().at(1)->Layer()), "Work");
    EXPECT_FALSE(ann.local->Publishing()) << "the sync publishes, not the folder";

    ann.Add("ann layer zero", 0, false);
    ann.local->SaveDB();
    ann.shared->PublishSharedEvents(*ann.local);
    set.SaveDB();
    EXPECT_EQ(ReadFileBytes(cache), cacheBytes) << "the merged set is never saved";
    EXPECT_TRUE(ann.shared->ChangeOwnId("Ann", "Anna", ann.local.get()).isEmpty());
    EXPECT_TRUE(ann.shared->StopSharing("Anna").isEmpty());
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{"TVOShared.ini"});
    EXPECT_EQ(ReadFileBytes(File("TVOShared.ini")), " Ann \r\n\r\n  Bob\r\n   \r\nCarl \r\n");

    // Changes follow the cache's time stamp; a missing cache is an empty set.
    EXPECT_FALSE(set.DatabaseChanged());
    ASSERT_TRUE(QFile::remove(cache));
    EXPECT_TRUE(set.DatabaseChanged());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(set.RecordCount(), 0);
    EXPECT_FALSE(set.DatabaseChanged());
    ASSERT_TRUE(WriteFileBytes(cache, cacheBytes));
    EXPECT_TRUE(set.DatabaseChanged());
}

} // namespace
