#include "shared/cSHAREDZipFiles.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <zip.h>

namespace {

// The bytes of one archive entry, read back through libzip.
QByteArray EntryBytes(const QString& zipPath, const QString& name) {
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &error);
    if (archive == nullptr) {
        return {};
    }
    QByteArray bytes;
    const QByteArray entry = name.toUtf8();
    zip_stat_t st;
    if (zip_stat(archive, entry.constData(), 0, &st) == 0) {
        zip_file_t* f = zip_fopen(archive, entry.constData(), 0);
        if (f != nullptr) {
            bytes.resize(static_cast<qsizetype>(st.size));
            const zip_int64_t n = zip_fread(f, bytes.data(), st.size);
            bytes.resize(n < 0 ? 0 : static_cast<qsizetype>(n));
            zip_fclose(f);
        }
    }
    zip_discard(archive);
    return bytes;
}

class ZipFilesTest : public ::testing::Test {
protected:
    TempHome home;
    cSHAREDZipFiles zip;
};

TEST_F(ZipFilesTest, ListRefusesDuplicates) {
    const QString a = home.file(QStringLiteral("a.txt"));
    EXPECT_TRUE(zip.AddFile(a));
    // The same file spelled another way is still the same file.
    const QString sameFile = home.path() + QStringLiteral("/./a.txt");
    EXPECT_FALSE(zip.AddFile(sameFile));
    EXPECT_EQ(zip.GetLastMessage(), QStringLiteral("File is already in Zip List"));
    EXPECT_EQ(zip.ZipFileCount(), 1);
}

TEST_F(ZipFilesTest, ArchiveHoldsExistingFilesInListOrderWithTheirBytes) {
    const QByteArray binary("\x00\x01\xff\r\nend", 8);
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("second.bin")), binary));
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("first.txt")), "first"));
    const QString archive = home.file(QStringLiteral("out.zip"));

    zip.setZipFileName(archive);
    zip.AddFile(home.file(QStringLiteral("second.bin")));
    zip.AddFile(home.file(QStringLiteral("missing.txt")));
    zip.AddFile(home.file(QStringLiteral("first.txt")));
    ASSERT_TRUE(zip.MakeZipFile()) << zip.GetLastMessage().toStdString();

    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive),
              QStringList({QStringLiteral("second.bin"), QStringLiteral("first.txt")}));
    EXPECT_EQ(EntryBytes(archive, QStringLiteral("second.bin")), binary);
    EXPECT_EQ(EntryBytes(archive, QStringLiteral("first.txt")), QByteArray("first"));
    EXPECT_TRUE(zip.GetLastMessage().contains(QStringLiteral("missing.txt")));
}

TEST_F(ZipFilesTest, KeptPathsAreRelativeToTheRoot) {
    QDir(home.path()).mkpath(QStringLiteral("Data"));
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("Data/Events.xml")), "x"));
    zip.setZipFileName(home.file(QStringLiteral("out.zip")));
    zip.setIgnorePath(false);
    zip.setRootDirectory(home.path());
    zip.AddFile(home.file(QStringLiteral("Data/Events.xml")));
    ASSERT_TRUE(zip.MakeZipFile());
    EXPECT_EQ(cSHAREDZipFiles::ListEntries(zip.ZipFileName()),
              QStringList(QStringLiteral("Data/Events.xml")));
}

TEST_F(ZipFilesTest, FailureLeavesThePreviousArchive) {
    const QString archive = home.file(QStringLiteral("out.zip"));
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("a.txt")), "a"));
    zip.setZipFileName(archive);
    zip.AddFile(home.file(QStringLiteral("a.txt")));
    ASSERT_TRUE(zip.MakeZipFile());
    const QByteArray before = ReadFileBytes(archive);

    // Nothing left to pack: the old archive is not emptied or removed.
    QFile::remove(home.file(QStringLiteral("a.txt")));
    EXPECT_FALSE(zip.MakeZipFile());
    EXPECT_FALSE(zip.GetLastMessage().isEmpty());
    EXPECT_EQ(ReadFileBytes(archive), before);

    // A target that cannot be written (its folder is missing) fails cleanly.
    ASSERT_TRUE(WriteFileBytes(home.file(QStringLiteral("a.txt")), "a"));
    zip.setZipFileName(home.file(QStringLiteral("no/such/folder/out.zip")));
    EXPECT_FALSE(zip.MakeZipFile());
    EXPECT_FALSE(zip.GetLastMessage().isEmpty());
}

} // namespace
