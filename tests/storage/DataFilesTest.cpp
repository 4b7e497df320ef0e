// Where the data folder is: stored relative to the home folder when inside it,
// and found beside a copied or moved home for settings written before.
#include "StorageFixture.h"

#include "storage/DataFiles.h"

#include <QDir>

namespace {

TEST(DataFolder, InsideTheHomeIsStoredRelativeOutsideAbsolute) {
    TempHome home;
    cSHAREDSettings settings;
    const QString outside = QDir::cleanPath(home.path() + QStringLiteral("/../elsewhere"));
    const struct {
        QString folder;
        QString stored;
    } cases[] = {
        {home.path(), QStringLiteral(".")},
        {home.path() + QStringLiteral("/"), QStringLiteral(".")},
        {home.file(QStringLiteral("data")), QStringLiteral("data")},
        {home.file(QStringLiteral("a/b")), QStringLiteral("a/b")},
        {outside, outside},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder.toStdString());
        EXPECT_EQ(DataFiles::DataPathValue(c.folder), c.stored);
        settings.sSet(QStringLiteral("DataPath"), SettingValue(c.stored));
        EXPECT_EQ(DataFiles::DataFolder(settings), QDir::cleanPath(c.folder));
    }
}

TEST(DataFolder, AnOldAbsolutePathFollowsTheCopiedOrMovedHome) {
    TempHome scratch;
    const QString root = scratch.path();
    const QString oldHome = root + QStringLiteral("/stick/Tarvo");
    const QString newHome = root + QStringLiteral("/copy/Tarvo");
    const QStringList folders = {oldHome + QStringLiteral("/data"),
                                 newHome + QStringLiteral("/data"),
                                 root + QStringLiteral("/nas/Tarvo/data")};
    for (const QString& folder : folders) {
        QDir().mkpath(folder);
        WriteFileBytes(folder + QStringLiteral("/Events.xml"), "");
    }
    WriteFileBytes(newHome + QStringLiteral("/Events.xml"), "");
    WriteFileBytes(oldHome + QStringLiteral("/Tvo.ini"), "");
    qputenv("TARVO_HOME", QFile::encodeName(newHome));

    const struct {
        QString stored;
        QString adopted;
    } cases[] = {
        {oldHome + QStringLiteral("/data"), QStringLiteral("data")},         // a copy
        {oldHome, QStringLiteral(".")},                                      // the home itself
        {root + QStringLiteral("/gone/Tarvo/data"), QStringLiteral("data")}, // moved away
        {newHome + QStringLiteral("/data"), QStringLiteral("data")},         // inside the home
        // Another place with the home's name that is no home: kept.
        {root + QStringLiteral("/nas/Tarvo/data"), root + QStringLiteral("/nas/Tarvo/data")},
        {root + QStringLiteral("/stick/Other"), root + QStringLiteral("/stick/Other")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored.toStdString());
        cSHAREDSettings settings;
        settings.sSet(QStringLiteral("DataPath"), SettingValue(c.stored));
        DataFiles::AdoptDataFolder(settings);
        EXPECT_EQ(settings.sGet(QStringLiteral("DataPath")).toText(), c.adopted);
    }
}

} // namespace
