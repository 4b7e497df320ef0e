#include "shared/cSHAREDZipFiles.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <zip.h>

namespace {

// The bytes of one (small) archive entry, read back through libzip.
QByteArray EntryBytes(const QString& zipPath, const char* name) {
    zip_t* archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, nullptr);
    zip_file_t* f = archive == nullptr ? nullptr : zip_fopen(archive, name, 0);
    QByteArray bytes(4096, '\0');
    const zip_int64_t n = f == nullptr ? -1 : zip_fread(f, bytes.data(), bytes.size());
    bytes.resize(n < 0 ? 0 : static_cast<qsizetype>(n));
    if (f != nullptr) {
        zip_fclose(f);
    }
    zip_discard(archive); // accepts null
    return bytes;
}

class ZipFilesTest : public ::testing::Test {
protected:
    TempHome home;
    cSHAREDZipFiles zip;
};

// Missing files are left out (and named in the message), the rest keep list
// order and their bytes; the same file spelled another way is refused.
TEST_F(ZipFilesTest, ArchiveHoldsExistingFilesInListOrderWithTheirBytes) {
    const QByteArray binary("\x00\x01\xff\r\nend", 8);
    ASSERT_TRUE(WriteFileBytes(home.file("second.bin"), binary));
    ASSERT_TRUE(WriteFileBytes(home.file("first.txt"), "first"));
    const QString archive = home.file("out.zip");

    zip.setZipFileName(archive);
    EXPECT_TRUE(zip.AddFile(home.file("second.bin")));
    EXPECT_FALSE(zip.AddFile(home.path() + "/./second.bin"));
    EXPECT_EQ(zip.GetLastMessage(), "File is already in Zip List");
    zip.AddFile(home.file("missing.txt"));
    zip.AddFile(home.file("first.txt"));
    ASSERT_TRUE(zip.MakeZipFile()) << zip.GetLastMessage().toStdString();

    EXPECT_EQ(cSHAREDZipFiles::ListEntries(archive), QStringList({"second.bin", "first.txt"}));
    EXPECT_EQ(EntryBytes(archive, "second.bin"), binary);
    EXPECT_EQ(EntryBytes(archive, "first.txt"), QByteArray("first"));
    EXPECT_TRUE(zip.GetLastMessage().contains("missing.txt"));
}

TEST_F(ZipFilesTest, FailureLeavesThePreviousArchive) {
    const QString archive = home.file("out.zip");
    ASSERT_TRUE(WriteFileBytes(home.file("a.txt"), "a"));
    zip.setZipFileName(archive);
    zip.AddFile(home.file("a.txt"));
    ASSERT_TRUE(zip.MakeZipFile());
    const QByteArray before = ReadFileBytes(archive);

    // Nothing left to pack: the old archive is not emptied or removed.
    QFile::remove(home.file("a.txt"));
    EXPECT_FALSE(zip.MakeZipFile());
    EXPECT_FALSE(zip.GetLastMessage().isEmpty());
    EXPECT_EQ(ReadFileBytes(archive), before);

    // A target that cannot be written (its folder is missing) fails cleanly.
    ASSERT_TRUE(WriteFileBytes(home.file("a.txt"), "a"));
    zip.setZipFileName(home.file("no/such/folder/out.zip"));
    EXPECT_FALSE(zip.MakeZipFile());
    EXPECT_FALSE(zip.GetLastMessage().isEmpty());
}

} // namespace
