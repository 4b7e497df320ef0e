// Files far larger than anything the program writes: each is refused or cut
// at its documented limit, quickly and without holding it all in memory.
#include "StorageFixture.h"

#include "shared/FileLimits.h"
#include "shared/StatusNotices.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"

#include <QDir>
#include <QFile>

#include <sys/resource.h>

namespace {

// Peak resident memory of the process so far, in MiB.
long PeakMiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// A file of size bytes that takes no room on disk: text, then zeros.
void WriteSparse(const QString& path, const QByteArray& text, qint64 size) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    ASSERT_TRUE(file.resize(size));
}

class SizeLimits : public StorageTest {};

TEST_F(SizeLimits, ASharedFileOverTheLimitIsRefusedAndToldOnce) {
    const QString folder = home.path();
    settings.sSet(QStringLiteral("SharedDatapath"), SettingValue(folder));
    ASSERT_TRUE(
        SharedDatabases::WriteUserList(QDir(folder).filePath(QStringLiteral("TVOShared.ini")),
                                       {QStringLiteral("Bob"), QStringLiteral("Carl")}));
    const QString bob = QDir(folder).filePath(QStringLiteral("Shared_Bob.xml"));
    WriteSparse(bob, Header(), 200LL * 1024 * 1024);
    clsDbXml carl(settings);
    carl.SetDBFilename(QDir(folder).filePath(QStringLiteral("Shared_Carl.xml")));
    carl.StoreRecord(MakeEvent(QStringLiteral("Carl's party"), QStringLiteral("Carl")), true);
    carl.SaveDB();
    StatusNotices::Take();

    clsDbXml set(settings);
    const long before = PeakMiB();
    for (int tick = 0; tick < 3; ++tick) {
        set.LoadMultiple(QDir(folder).filePath(QStringLiteral("TVOShared.ini")));
        ASSERT_EQ(set.RecordCount(), 1);
        EXPECT_EQ(set.Events().first()->Desc(), QStringLiteral("Carl's party"));
    }
    EXPECT_LT(PeakMiB() - before, 64);
    const QString told = QStringLiteral("Shared file ") + QDir::toNativeSeparators(bob) +
                         QStringLiteral(" is over 32 MB and is not read");
    EXPECT_EQ(StatusNotices::Take(), QStringList{told});
    EXPECT_EQ(NewLogLines().filter(told).size(), 1);
    EXPECT_FALSE(set.DatabaseChanged());

    // A user list too long to be a list of names gives no shared events.
    const QString list = QDir(folder).filePath(QStringLiteral("TVOShared.ini"));
    WriteSparse(list, "Carl\r\n", 1024 * 1024);
    set.LoadMultiple(list);
    EXPECT_EQ(set.RecordCount(), 0);
    EXPECT_EQ(StatusNotices::Take(),
              QStringList{QStringLiteral("Shared file ") + QDir::toNativeSeparators(list) +
                          QStringLiteral(" is over 64 KB and is not read")});
}

TEST_F(SizeLimits, AMillionTinyEventsAreReadUpToTheLimitAndTheFileIsKept) {
    const QString path = home.file(QStringLiteral("Events.xml"));
    QByteArray bytes = Header();
    bytes += QByteArrayLiteral("<EVENT><Desc>x</Desc></EVENT>\r\n").repeated(1000000);
    ASSERT_TRUE(WriteFileBytes(path, bytes));
    clsDbXml db(settings);
    db.LoadDB(path);
    EXPECT_EQ(db.RecordCount(), FileLimits::kMaxEventsPerFile);
    EXPECT_TRUE(Logged(path + QStringLiteral(" holds more events than can be read")));
    EXPECT_EQ(ReadFileBytes(path), bytes);
}

TEST_F(SizeLimits, AnEndlessSettingsLineIsSkippedWithoutHoldingIt) {
    const QString path = home.file(QStringLiteral("Tvo.ini"));
    WriteSparse(path, "Owner,Ann\r\nJunk,", 100LL * 1024 * 1024);
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write("\r\nDataPath,Tarvo data\r\n");
    }
    const long before = PeakMiB();
    cSHAREDSettings loaded;
    loaded.LoadSettings(path);
    EXPECT_LT(PeakMiB() - before, 64);
    EXPECT_EQ(loaded.sGet(QStringLiteral("Owner")).toText(), QStringLiteral("Ann"));
    EXPECT_EQ(loaded.sGet(QStringLiteral("DataPath")).toText(), QStringLiteral("Tarvo data"));
    EXPECT_EQ(loaded.sGet(QStringLiteral("Junk"), QStringLiteral("none")).toText(),
              QStringLiteral("none"));
    EXPECT_TRUE(Logged(QStringLiteral("Skipped a line of ")));
}

} // namespace
