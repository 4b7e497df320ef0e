// Networked mode with three users sharing one folder, each running their own
// settings, layers and databases as their own program would.
#include "StorageFixture.h"

#include "storage/SharedDatabases.h"
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
        local->SetDBFilename(QDir(dataFolder).filePath(name + QStringLiteral("_Events.xml")));
        shared = std::make_unique<SharedDatabases>(settings, layers);
        shared->AttachTo(*local);
    }

    EventPtr Add(const QString& desc, int layer, bool sharedFlag, const QString& onlyFor = {}) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setOwner(settings.sGet(QStringLiteral("Owner")).toText());
        e->setLayer(static_cast<int16_t>(layer));
        e->SharedEvent = sharedFlag;
        if (!onlyFor.isEmpty()) {
            e->ShareWithSpecific = true;
            e->ShareNames = onlyFor + QStringLiteral("\r\n");
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
        QDir(home.path()).mkpath(QStringLiteral("shared"));
        folder = home.file(QStringLiteral("shared"));
        EXPECT_TRUE(WriteFileBytes(File(QStringLiteral("TVOShared.ini")),
                                   " Ann \r\n\r\n  Bob\r\n   \r\nCarl \r\n"));
    }
    QString File(const QString& name) const { return QDir(folder).filePath(name); }

    QString folder;
};

TEST_F(SharedFolder, TheUserListIsTrimmedWithBlankLinesLeftOut) {
    EXPECT_EQ(SharedDatabases::ReadUserList(File(QStringLiteral("TVOShared.ini"))),
              (QStringList{"Ann", "Bob", "Carl"}));
    EXPECT_TRUE(SharedDatabases::ReadUserList(File(QStringLiteral("none.ini"))).isEmpty());

    const QString list = File(QStringLiteral("list2.ini"));
    ASSERT_TRUE(SharedDatabases::WriteUserList(list, {"Ann", "Zo\u00eb"}));
    EXPECT_EQ(ReadFileBytes(list), QByteArray("Ann\r\nZo\xEB\r\n"));
}

TEST_F(SharedFolder, AListEntryThatIsNoPlainFileNamePartIsSkippedAndLogged) {
    // "Shared_x/../../private.xml" would be a file beside the shared folder.
    User bob(QStringLiteral("Bob"), home.path(), home.path());
    bob.Add(QStringLiteral("private"), 0, true);
    bob.local->SaveDB();
    ASSERT_TRUE(QFile::rename(home.file(QStringLiteral("Shared_Bob.xml")),
                              home.file(QStringLiteral("private.xml"))));
    QDir(folder).mkpath(QStringLiteral("Shared_x"));
    ASSERT_TRUE(WriteFileBytes(File(QStringLiteral("TVOShared.ini")),
                               "x/../../private\r\n..\\up\r\nCarl\r\n" + QByteArray(65, 'L') +
                                   "\r\nBad\x01\r\n"));

    User ann(QStringLiteral("Ann"), folder, home.path());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.shared->SharedSet().SharedFiles(), (QStringList{File("Shared_Carl.xml")}));
    EXPECT_EQ(ann.shared->SharedSet().RecordCount(), 0);
    EXPECT_TRUE(Logged(QStringLiteral("Skipped user list entry that cannot name a shared file: "
                                      "x/../../private")));
}

TEST_F(SharedFolder, ThreeUsersPublishAndSeeEachOthersEvents) {
    User bob(QStringLiteral("Bob"), folder, home.path());
    bob.layers.setLayer(5, QStringLiteral("Work"));
    bob.Add(QStringLiteral("bob to all"), 0, false);
    bob.Add(QStringLiteral("bob work for Ann"), 5, true, QStringLiteral("ann"));
    bob.Add(QStringLiteral("bob for Dave only"), 2, true, QStringLiteral("Dave"));
    bob.Add(QStringLiteral("bob private"), 2, false);
    bob.local->SaveDB(); // publishes Shared_Bob.xml

    const QString bobFile = File(QStringLiteral("Shared_Bob.xml"));
    const QString carlFile = File(QStringLiteral("Shared_Carl.xml"));
    const QString annFile = File(QStringLiteral("Shared_Ann.xml"));
    ASSERT_TRUE(QFile::exists(bobFile));
    EXPECT_FALSE(ReadFileBytes(bobFile).contains("bob%20private"));
    EXPECT_TRUE(ReadFileBytes(bobFile).contains("<SharedLayerName>Work</SharedLayerName>"));

    // Ann loads the merged set.
    User ann(QStringLiteral("Ann"), folder, home.path());
    const qsizetype logStart = Log().pendingActions().size();
    ann.shared->ReloadSharedSet();
    clsDbXml& set = ann.shared->SharedSet();
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann"}))
        << "an event shared with Dave only is invisible to Ann";
    EXPECT_EQ(set.SharedFiles(), (QStringList{bobFile, carlFile}));
    EXPECT_EQ(set.DBFilename(), annFile);
    EXPECT_FALSE(QFile::exists(annFile)) << "loading never writes";
    const QStringList log = Log().pendingActions().mid(logStart);
    EXPECT_TRUE(log.contains(QStringLiteral("Found shared database  Ann ")));
    EXPECT_TRUE(log.contains(QStringLiteral("Not loading - belongs to current user (Ann)")));
    EXPECT_TRUE(log.contains(QStringLiteral("Loading from ") + bobFile));
    EXPECT_TRUE(log.contains(carlFile + QStringLiteral(" not found. Setting null refresh date.")));
    EXPECT_TRUE(log.contains(QStringLiteral("Setting Database filename to Shared_Ann.xml")));

    // Bob's layer name "Work" is new to Ann: it takes her highest free slot.
    const EventPtr work = set.Events().at(1);
    EXPECT_EQ(ann.layers.Layer(work->Layer()), QStringLiteral("Work"));
    EXPECT_EQ(ann.settings.sGet(QStringLiteral("Layer") + QString::number(work->Layer())).toText(),
              QStringLiteral("Work"));
    EXPECT_EQ(set.Events().at(0)->Layer(), 0) << "\"Shared\" is layer 0 on every machine";

    // Carl's missing file is watched: the set changes once it appears.
    EXPECT_FALSE(set.DatabaseChanged());
    User carl(QStringLiteral("Carl"), folder, home.path());
    carl.Add(QStringLiteral("carl to all"), 0, false);
    carl.local->SaveDB();
    EXPECT_TRUE(set.DatabaseChanged());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann", "carl to all"}));
    EXPECT_FALSE(set.DatabaseChanged());

    // Ann publishes; an old event of hers in her file goes, others' files stay as they are.
    {
        clsDbXml old(ann.settings, nullptr);
        old.SetDBFilename(annFile);
        auto stale = std::make_shared<clsEvent>();
        stale->setDesc(QStringLiteral("stale"));
        stale->setOwner(QStringLiteral("Ann"));
        old.StoreRecord(stale);
        old.SaveDB();
    }
    const QByteArray bobBefore = ReadFileBytes(bobFile);
    const QByteArray carlBefore = ReadFileBytes(carlFile);
    const auto bobTime = QFileInfo(bobFile).lastModified();
    ann.Add(QStringLiteral("ann layer zero"), 0, false);
    const EventPtr flagged = ann.Add(QStringLiteral("ann flagged"), 3, true);
    const EventPtr notHers = ann.Add(QStringLiteral("not hers"), 0, true);
    notHers->setOwner(QStringLiteral("Bob"));
    ann.Add(QStringLiteral("ann private"), 1, false);
    ann.local->SaveDB();

    EXPECT_EQ(flagged->SharedLayerName, QStringLiteral("Layer 3"));
    clsDbXml published(ann.settings, nullptr);
    published.LoadDB(annFile);
    QStringList descs;
    for (const EventPtr& e : published.Events()) {
        descs << e->Desc();
    }
    EXPECT_EQ(descs, (QStringList{"ann layer zero", "ann flagged"}));
    EXPECT_EQ(ReadFileBytes(bobFile), bobBefore);
    EXPECT_EQ(ReadFileBytes(carlFile), carlBefore);
    EXPECT_EQ(QFileInfo(bobFile).lastModified(), bobTime);
    EXPECT_EQ(ann.SharedDescs(), (QStringList{"bob to all", "bob work for Ann", "carl to all"}))
        << "publishing ends by reloading the merged set";
}

TEST_F(SharedFolder, AMissingUserListGivesAnEmptySetAndTheMergedSetIsNeverSaved) {
    QFile::remove(File(QStringLiteral("TVOShared.ini")));
    User ann(QStringLiteral("Ann"), folder, home.path());
    ann.shared->ReloadSharedSet();
    EXPECT_EQ(ann.shared->SharedSet().RecordCount(), 0);
    EXPECT_FALSE(ann.shared->SharedSet().DatabaseChanged());
    ann.shared->SharedSet().SaveDB();
    EXPECT_FALSE(QFile::exists(File(QStringLiteral("Shared_Ann.xml"))));
}

TEST_F(SharedFolder, AnOwnerNameTheOptionsRefusePublishesNothing) {
    // The options' own rule: separators, characters a file name or the code
    // page cannot hold, control characters, the reserved names.
    for (const QString& owner :
         {QStringLiteral("../Ann"), QStringLiteral("a\\b"), QStringLiteral("x:y"),
          QStringLiteral("  "), QStringLiteral("x\u007f"), QStringLiteral("\u0141ukasz"),
          QStringLiteral("Not Set")}) {
        User user(owner, folder, home.path());
        user.Add(QStringLiteral("layer zero"), 0, false);
        user.local->SaveDB();
        EXPECT_EQ(QDir(folder).entryList(QDir::Files), (QStringList{"TVOShared.ini"}))
            << owner.toStdString();
        EXPECT_FALSE(QFile::exists(home.file(QStringLiteral("Ann.xml"))));
    }
    EXPECT_TRUE(Logged(QStringLiteral("Owner name unusable as a file name.")));
}

TEST_F(SharedFolder, WithoutASharedFolderNothingIsPublishedOrRead) {
    User ann(QStringLiteral("Ann"), QString(), home.path());
    const QString cwd = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder)); // where a relative name would land
    ann.Add(QStringLiteral("layer zero"), 0, false);
    ann.local->SaveDB();
    ann.shared->ReloadSharedSet();
    QDir::setCurrent(cwd);
    EXPECT_FALSE(QFile::exists(File(QStringLiteral("Shared_Ann.xml"))));
    EXPECT_EQ(ann.shared->SharedSet().RecordCount(), 0);
    EXPECT_TRUE(Logged(QStringLiteral("No shared data path set.")));
}

} // namespace
