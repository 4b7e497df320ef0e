#include "storage/BackupArchive.h"

#include "shared/Clock.h"
#include "shared/cSHAREDZipFiles.h"
#include "shared/cSharedLogging.h"
#include "support/LogLines.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class BackupArchiveTest : public ::testing::Test {
protected:
    BackupArchiveTest() {
        QDir(home.path()).mkpath("Data");
        sources.eventsDb = home.file("Data/Events.xml");
        sources.expiredDb = home.file("Data/Expired.xml");
        sources.settingsFile = home.file("Tvo.ini");
        sources.logFile = home.file("log.txt");
        sources.dataPath = home.file("Data");
        m_oldLog = Log().CurrentLogFilename();
        Log().OverrideLogFilename(sources.logFile);
    }
    ~BackupArchiveTest() override { Log().OverrideLogFilename(m_oldLog); }

    TempHome home;
    BackupSources sources;
    QString m_oldLog;
};

// The archive is named by weekday and kind in the home folder, and holds the
// files that exist, in their fixed order, the old event files found by any case.
TEST_F(BackupArchiveTest, ArchiveHoldsTheFilesThatExistInOrderAndChangesNone) {
    FixedClock clock("2026-11-16 09:00");
    const QList<QPair<QString, QByteArray>> present = {
        {sources.eventsDb, "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n"},
        {sources.settingsFile, "Owner=Ann\r\n"},
        {home.file("Data/tasklist.xml"), "tasks"},
        {home.file("Data/events.dat"), "old"},
        {home.file("Data/Expired.dat"), QByteArray(498, ' ')},
    };
    for (const auto& [path, bytes] : present) {
        ASSERT_TRUE(WriteFileBytes(path, bytes));
    }
    const QDateTime stamp = QFileInfo(sources.eventsDb).lastModified();
    QFile::remove(sources.logFile);

    ASSERT_TRUE(BackupDataToZip("Autobackup", sources));

    const QString archive = home.file("Autobackups/Mon Autobackup.zip");
    EXPECT_EQ(BackupArchivePath("Autobackup", TodayDate()), archive);
    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive),
              QStringList({"Events.xml", "Tvo.ini", "tasklist.xml", "events.dat", "Expired.dat"}));
    for (const auto& [path, bytes] : present) {
        EXPECT_EQ(ReadFileBytes(path), bytes) << path.toStdString();
    }
    EXPECT_EQ(QFileInfo(sources.eventsDb).lastModified(), stamp);
    EXPECT_TRUE(LoggedTexts().contains("Backup to " + archive + " complete"));

    // The same weekday next week replaces the archive: the first backup's log
    // is in it now, the settings file removed in between is not.
    QFile::remove(sources.settingsFile);
    Clock::advance(7 * 24 * 3600);
    ASSERT_TRUE(BackupDataToZip("Autobackup", sources));
    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive),
              QStringList({"Events.xml", "log.txt", "tasklist.xml", "events.dat", "Expired.dat"}));
    EXPECT_EQ(QDir(home.file("Autobackups")).entryList(QDir::Files),
              QStringList("Mon Autobackup.zip"));

    // A file where the folder should be: the reason comes back and both go to the log.
    ASSERT_TRUE(QDir(home.file("Autobackups")).removeRecursively());
    ASSERT_TRUE(WriteFileBytes(home.file("Autobackups"), "in the way"));
    QString why;
    EXPECT_FALSE(BackupDataToZip("Manual", sources, &why));
    EXPECT_EQ(why, "Unable to create the folder " + home.file("Autobackups"));
    const QStringList log = LoggedTexts();
    EXPECT_TRUE(log.contains("Backup to " + home.file("Autobackups/Mon Manual.zip") + " failed"));
    EXPECT_TRUE(log.contains(why + " in BackupDataToZip of module modTVO"));
}

} // namespace
