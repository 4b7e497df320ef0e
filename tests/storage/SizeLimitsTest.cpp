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

// A file of size bytes that takes no room on disk: text, zeros, then the tail.
void WriteSparse(const QString& path, const QByteArray& text, qint64 size,
                 const QByteArray& tail = {}) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size() &&
                file.resize(size) && file.seek(size) && file.write(tail) == tail.size());
}

class SizeLimits : public StorageTest {};

TEST_F(SizeLimits, ASharedFileOverTheLimitIsRefusedAndToldOnce) {
    settings.sSet(QStringLiteral("SharedDatapath"), SettingValue(home.path()));
    const QString list = home.file("TVOShared.ini");
    ASSERT_TRUE(SharedDatabases::WriteUserList(list, {"Bob", "Carl"}));
    const QString bob = home.file("Shared_Bob.xml");
    WriteSparse(bob, Header(), 200LL * 1024 * 1024);
    SaveEvents(home.file("Shared_Carl.xml"), {MakeEvent("Party", "Carl")}, true);
    StatusNotices::Take();

    clsDbXml set(settings);
    const long before = PeakMiB();
    for (int tick = 0; tick < 3; ++tick) {
        set.LoadMultiple(list);
        ASSERT_EQ(set.RecordCount(), 1);
        EXPECT_EQ(set.Events().first()->Desc(), "Party");
    }
    EXPECT_LT(PeakMiB() - before, 64);
    const QString told =
        "Shared file " + QDir::toNativeSeparators(bob) + " is over 32 MB and is not read";
    EXPECT_EQ(StatusNotices::Take(), QStringList{told});
    EXPECT_EQ(NewLogLines().filter(told).size(), 1);
    EXPECT_FALSE(set.DatabaseChanged());

    // A user list too long to be a list of names gives no shared events.
    WriteSparse(list, "Carl\r\n", 1024 * 1024);
    set.LoadMultiple(list);
    EXPECT_EQ(set.RecordCount(), 0);
    EXPECT_EQ(StatusNotices::Take(), QStringList{"Shared file " + QDir::toNativeSeparators(list) +
                                                 " is over 64 KB and is not read"});
}

TEST_F(SizeLimits, AMillionTinyEventsAreReadUpToTheLimitAndTheFileIsKept) {
    const QString path = home.file("Events.xml");
    QByteArray bytes = Header();
    bytes += QByteArrayLiteral("<EVENT><Desc>x</Desc></EVENT>\r\n").repeated(1000000);
    ASSERT_TRUE(WriteFileBytes(path, bytes));
    clsDbXml db(settings);
    db.LoadDB(path);
    EXPECT_EQ(db.RecordCount(), FileLimits::kMaxEventsPerFile);
    EXPECT_TRUE(Logged(path + " holds more events than can be read"));
    EXPECT_EQ(ReadFileBytes(path), bytes);
}

TEST_F(SizeLimits, ADamagedFileLogsItsFirstThousandConversionErrorsOnly) {
    // Each block lacks its numbers and dates: a dozen errors or more apiece.
    const QString path = home.file("Events.xml");
    ASSERT_TRUE(WriteFileBytes(path, Header() + QByteArray("<EVENT></EVENT>\r\n").repeated(100)));
    clsDbXml db(settings);
    db.LoadDB(path);
    EXPECT_EQ(db.RecordCount(), 100);
    EXPECT_EQ(NewLogLines().filter("Type mismatch (13)").size(), 1000);
    EXPECT_EQ(NewLogLines().filter(" more conversion errors in " + path + " are not logged").size(),
              1);
}

TEST_F(SizeLimits, AnEndlessSettingsLineIsSkippedWithoutHoldingIt) {
    const QString path = home.file("Tvo.ini");
    WriteSparse(path, "Owner,Ann\r\nJunk,", 100LL * 1024 * 1024, "\r\nDataPath,Tarvo data\r\n");
    [[maybe_unused]] const long before = PeakMiB();
    cSHAREDSettings loaded;
    loaded.LoadSettings(path);
#ifndef __SANITIZE_ADDRESS__ // its quarantine holds freed blocks, so the peak says nothing
    EXPECT_LT(PeakMiB() - before, 64);
#endif
    EXPECT_EQ(loaded.sGet("Owner").toText(), "Ann");
    EXPECT_EQ(loaded.sGet("DataPath").toText(), "Tarvo data");
    EXPECT_EQ(loaded.sGet("Junk", "none").toText(), "none");
    EXPECT_TRUE(Logged("Skipped a line of "));
}

} // namespace
