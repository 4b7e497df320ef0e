// Where the data folder is: stored relative to the home folder when inside it,
// and found beside a copied or moved home for settings written before.
#include "StorageFixture.h"

#include "storage/DataFiles.h"

#include <QDir>

namespace {

TEST(DataFolder, InsideTheHomeIsStoredRelativeOutsideAbsolute) {
    TempHome home;
    cSHAREDSettings settings;
    const QString outside = QDir::cleanPath(home.path() + "/../elsewhere");
    const struct {
        QString folder;
        QString stored;
    } cases[] = {
        {home.path(), "."},        {home.path() + "/", "."}, {home.file("data"), "data"},
        {home.file("a/b"), "a/b"}, {outside, outside},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder.toStdString());
        EXPECT_EQ(DataFiles::DataPathValue(c.folder), c.stored);
        settings.sSet("DataPath", SettingValue(c.stored));
        EXPECT_EQ(DataFiles::DataFolder(settings), QDir::cleanPath(c.folder));
    }
}

TEST(DataFolder, AnOldAbsolutePathFollowsTheCopiedOrMovedHome) {
    TempHome scratch;
    const QString root = scratch.path();
    const QString oldHome = root + "/stick/Tarvo", newHome = root + "/copy/Tarvo";
    const QStringList folders = {oldHome + "/data", newHome + "/data", root + "/nas/Tarvo/data"};
    for (const QString& folder : folders) {
        QDir().mkpath(folder);
        WriteFileBytes(folder + "/Events.xml", "");
    }
    WriteFileBytes(newHome + "/Events.xml", "");
    WriteFileBytes(oldHome + "/Tvo.ini", "");
    qputenv("TARVO_HOME", QFile::encodeName(newHome));

    const struct {
        QString stored;
        QString adopted;
    } cases[] = {
        {oldHome + "/data", "data"},         // a copy
        {oldHome, "."},                      // the home itself
        {root + "/gone/Tarvo/data", "data"}, // moved away
        {newHome + "/data", "data"},         // inside the home
        // Another place with the home's name that is no home: kept.
        {root + "/nas/Tarvo/data", root + "/nas/Tarvo/data"},
        {root + "/stick/Other", root + "/stick/Other"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored.toStdString());
        cSHAREDSettings settings;
        settings.sSet("DataPath", SettingValue(c.stored));
        DataFiles::AdoptDataFolder(settings);
        EXPECT_EQ(settings.sGet("DataPath").toText(), c.adopted);
    }
}

} // namespace
