#include "storage/BackupArchive.h"

#include "shared/AppPaths.h"
#include "shared/cSHAREDZipFiles.h"
#include "shared/cSharedLogging.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class BackupArchiveTest : public ::testing::Test {
protected:
    BackupArchiveTest() {
        QDir(home.path()).mkpath(QStringLiteral("Data"));
        sources.eventsDb = home.file(QStringLiteral("Data/Events.xml"));
        sources.expiredDb = home.file(QStringLiteral("Data/Expired.xml"));
        sources.settingsFile = home.file(QStringLiteral("Tvo.ini"));
        sources.logFile = home.file(QStringLiteral("log.txt"));
        sources.dataPath = home.file(QStringLiteral("Data"));
        m_oldLog = Log().CurrentLogFilename();
        Log().OverrideLogFilename(sources.logFile);
    }
    ~BackupArchiveTest() override { Log().OverrideLogFilename(m_oldLog); }

    QString LastLogLine() const {
        const QStringList lines = QString::fromLatin1(ReadFileBytes(Log().CurrentLogFilename()))
                                      .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        return lines.isEmpty() ? QString() : lines.last();
    }

    TempHome home;
    BackupSources sources;
    QString m_oldLog;
};

TEST_F(BackupArchiveTest, ArchiveIsNamedByWeekdayAndKindInTheHomeFolder) {
    const QString autobackups = home.file(QStringLiteral("Autobackups"));
    EXPECT_EQ(BackupArchivePath(QStringLiteral("Autobackup"), D("2026-11-16")),
              AppPaths::JoinPath(autobackups, QStringLiteral("Mon Autobackup.zip")));
    EXPECT_EQ(BackupArchivePath(QStringLiteral("Manual"), D("2026-11-21")),
              AppPaths::JoinPath(autobackups, QStringLiteral("Sat Manual.zip")));
}

TEST_F(BackupArchiveTest, ListsTheSevenFilesInOrderWithLegacyFilesFoundByAnyCase) {
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("Data/events.dat")), "old"));
    const QStringList files = BackupFileList(sources);
    ASSERT_EQ(files.size(), 7);
    EXPECT_EQ(files.mid(0, 4), QStringList({sources.eventsDb, sources.expiredDb,
                                            sources.settingsFile, sources.logFile}));
    EXPECT_EQ(QFileInfo(files[4]).fileName(), QStringLiteral("tasklist.xml"));
    EXPECT_EQ(QFileInfo(files[5]).fileName(), QStringLiteral("events.dat"));
    EXPECT_EQ(QFileInfo(files[6]).fileName(), QStringLiteral("Expired.dat"));
}

TEST_F(BackupArchiveTest, ArchiveListsExactlyTheFilesThatExistAndChangesNone) {
    FixedClock clock(QStringLiteral("2026-11-16 09:00"));
    const QList<QPair<QString, QByteArray>> present = {
        {sources.eventsDb, "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n"},
        {sources.settingsFile, "Owner=Ann\r\n"},
        {home.file(QStringLiteral("Data/tasklist.xml")), "tasks"},
        {home.file(QStringLiteral("Data/Expired.dat")), QByteArray(498, ' ')},
    };
    for (const auto& [path, bytes] : present) {
        ASSERT_TRUE(WriteFileBytes(path, bytes));
    }
    const QDateTime stamp = QFileInfo(sources.eventsDb).lastModified();
    QFile::remove(sources.logFile);

    ASSERT_TRUE(BackupDataToZip(QStringLiteral("Autobackup"), sources));

    const QString archive = home.file(QStringLiteral("Autobackups/Mon Autobackup.zip"));
    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive),
              QStringList({QStringLiteral("Events.xml"), QStringLiteral("Tvo.ini"),
                           QStringLiteral("tasklist.xml"), QStringLiteral("Expired.dat")}));
    for (const auto& [path, bytes] : present) {
        EXPECT_EQ(ReadFileBytes(path), bytes) << path.toStdString();
    }
    EXPECT_EQ(QFileInfo(sources.eventsDb).lastModified(), stamp);
    EXPECT_TRUE(LastLogLine().endsWith(QStringLiteral("Backup to ") + archive +
                                       QStringLiteral(" complete")))
        << LastLogLine().toStdString();
}

TEST_F(BackupArchiveTest, SameWeekdayNextWeekReplacesTheArchive) {
    ASSERT_TRUE(WriteFileBytes(sources.eventsDb, "week one"));
    ASSERT_TRUE(WriteFileBytes(sources.settingsFile, "ini"));
    {
        FixedClock clock(QStringLiteral("2026-11-16 09:00"));
        ASSERT_TRUE(BackupDataToZip(QStringLiteral("Autobackup"), sources));
    }
    QFile::remove(sources.settingsFile);
    ASSERT_TRUE(WriteFileBytes(sources.eventsDb, "week two"));
    {
        FixedClock clock(QStringLiteral("2026-11-23 09:00"));
        ASSERT_TRUE(BackupDataToZip(QStringLiteral("Autobackup"), sources));
    }
    const QString archive = home.file(QStringLiteral("Autobackups/Mon Autobackup.zip"));
    // The first backup's log line is in the second archive; the settings file
    // removed in between is not.
    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive),
              QStringList({QStringLiteral("Events.xml"), QStringLiteral("log.txt")}));
    EXPECT_EQ(QDir(home.file(QStringLiteral("Autobackups"))).entryList(QDir::Files),
              QStringList(QStringLiteral("Mon Autobackup.zip")));
}

TEST_F(BackupArchiveTest, FailureIsLoggedAndReturned) {
    FixedClock clock(QStringLiteral("2026-11-16 09:00"));
    ASSERT_TRUE(WriteFileBytes(sources.eventsDb, "data"));
    // A plain file where the folder should be: the archive cannot be made.
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("Autobackups")), "in the way"));

    EXPECT_FALSE(BackupDataToZip(QStringLiteral("Manual"), sources));
    EXPECT_TRUE(LastLogLine().endsWith(QStringLiteral(" failed"))) << LastLogLine().toStdString();
    EXPECT_EQ(ReadFileBytes(sources.eventsDb), QByteArray("data"));
}

} // namespace
