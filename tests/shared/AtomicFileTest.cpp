#include "shared/AtomicFile.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

TEST(AtomicFile, ReplacesTheWholeFileAndLeavesNoTemporaryBehind) {
    TempHome home;
    const QString f = home.file(QStringLiteral("data.xml"));
    ASSERT_TRUE(WriteFileBytes(f, "a much longer old content\r\n"));
    const AtomicFile::Result r = AtomicFile::Write(f, "new\r\n");
    EXPECT_TRUE(r.ok());
    EXPECT_EQ(ReadFileBytes(f), QByteArray("new\r\n"));
    EXPECT_EQ(
        QDir(home.path()).entryList({QStringLiteral("data.xml*")}, QDir::Files | QDir::Hidden),
        QStringList{QStringLiteral("data.xml")});
}

TEST(AtomicFile, RefusesAReadOnlyFileUntilMadeWritableAndAMissingFolder) {
    TempHome home;
    const QString f = home.file(QStringLiteral("data.xml"));
    ASSERT_TRUE(WriteFileBytes(f, "old"));
    ASSERT_TRUE(QFile::setPermissions(f, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    EXPECT_TRUE(AtomicFile::IsReadOnly(f));
    const AtomicFile::Result refused = AtomicFile::Write(f, "new");
    EXPECT_EQ(refused.status, AtomicFile::Status::AccessDenied);
    EXPECT_EQ(refused.errorNumber, 75);
    EXPECT_EQ(ReadFileBytes(f), QByteArray("old"));
    EXPECT_TRUE(AtomicFile::MakeWritable(f));
    EXPECT_FALSE(AtomicFile::IsReadOnly(f));
    EXPECT_TRUE(AtomicFile::Write(f, "new").ok());
    EXPECT_EQ(ReadFileBytes(f), QByteArray("new"));

    const AtomicFile::Result r =
        AtomicFile::Write(home.file(QStringLiteral("no/such/folder/x.ini")), "x");
    EXPECT_EQ(r.status, AtomicFile::Status::OtherError);
    EXPECT_EQ(r.errorNumber, 76);
    EXPECT_EQ(r.description, QStringLiteral("Path not found"));
}

} // namespace
