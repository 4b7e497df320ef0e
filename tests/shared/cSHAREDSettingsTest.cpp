#include "shared/cSHAREDSettings.h"
#include "shared/SaveFailures.h"

#include "shared/cSharedLogging.h"
#include "support/RecordedErrorReports.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

class SettingsFileTest : public ::testing::Test {
protected:
    QString ini() const { return home.file(QStringLiteral("Tvo.ini")); }
    QByteArray saved() {
        EXPECT_TRUE(settings.SaveSettings(ini()));
        return ReadFileBytes(ini());
    }

    TempHome home;
    ScriptedDialogs dialogs;
    RecordedErrorReports reports;
    cSHAREDSettings settings{&dialogs};
};

TEST_F(SettingsFileTest, SavesUpperCasedKeysIntegersInPrintLayoutWindows1252AndCrLf) {
    settings.sSet("Timer", 9000);
    settings.sSet("NoSounds", true);
    settings.sSet("networked", false);
    settings.sSet("DataPath", "C:\\Tarvo, Data");
    settings.sSet("Empty", SettingValue());
    settings.sSet("Owner", QStringLiteral("J\u00FCrgen \u20AC"));
    EXPECT_EQ(saved(),
              QByteArray("TIMER, 9000 \r\nNOSOUNDS,-1 \r\nNETWORKED, 0 \r\n"
                         "DATAPATH,C:\\Tarvo, Data\r\nEMPTY,\r\nOWNER,J\xFCrgen \x80\r\n"));
}

// Lines split at their first comma and keep their blanks as text; lines without
// a key are skipped; a later duplicate replaces the value in the first one's
// place; bare LF ends a line. True and false words (any case, blanks around)
// become -1 and 0 when the file is loaded, and read as booleans when set as text.
TEST_F(SettingsFileTest, LinesKeysDuplicatesAndTruthWords) {
    ASSERT_TRUE(WriteFileBytes(
        ini(), "OWNER,Fred,Smith\r\nno comma here\r\n,starts with comma\r\n  ,blank key\r\n"
               "GOOD,1\nB,2\r\n\r\ngood,3\r\nNOSOUNDS,-1 \r\nT, true \r\nF,FALSE\r\nX,truely\r\n"));
    settings.LoadSettings(ini());
    EXPECT_EQ(saved(), QByteArray("OWNER,Fred,Smith\r\nGOOD,3\r\nB,2\r\nNOSOUNDS,-1 \r\nT,-1 \r\n"
                                  "F, 0 \r\nX,truely\r\n"));
    EXPECT_EQ(std::tuple(settings.sGet("owner").toText(), settings.sGet("NoSounds"),
                         settings.sGet("NoSounds").toBool(), settings.sGet("F"), reports.texts()),
              std::tuple("Fred,Smith", SettingValue("-1 "), true, SettingValue(0), QStringList()));

    for (const auto& [stored, expected] : QList<QPair<const char*, SettingValue>>{
             {" true ", true}, {"False", false}, {"truth", "truth"}, {"-1", "-1"}}) {
        settings.sSet("K", stored);
        EXPECT_EQ(settings.sGet("K"), expected) << stored;
    }
}

TEST_F(SettingsFileTest, LoadReplacesEverythingAndMissingOrUnreadableFilesLeaveItEmpty) {
    settings.sSet("Old", 1);
    settings.LoadSettings(home.file(QStringLiteral("missing.ini")));
    EXPECT_EQ(
        std::tuple(settings.SettingsCount(), settings.sGet("Old", 7).toInt(), reports.texts()),
        std::tuple(0, 7, QStringList()));

    // A folder under the file's name cannot be read as a file.
    ASSERT_TRUE(QDir(home.path()).mkdir(QStringLiteral("Tvo.ini")));
    settings.LoadSettings(ini());
    EXPECT_EQ(settings.SettingsCount(), 0);
    ASSERT_EQ(reports.texts().size(), 1);
    EXPECT_TRUE(reports.texts().first().startsWith(QStringLiteral("Error ")));
    EXPECT_TRUE(reports.texts().first().contains(QStringLiteral(" in setting file. Line: ")));
    EXPECT_TRUE(reports.texts().first().endsWith(QStringLiteral(" of ") + ini()));
}

// Keys ignore case and commas; a replaced or deleted entry leaves the others in place.
TEST_F(SettingsFileTest, KeysIgnoreCaseAndCommasAndDeletingKeepsTheOrder) {
    for (const auto& [key, value] :
         {std::pair{"My,Key", "v"}, {"Datapath", "a"}, {"C", "C"}, {"DataPath", "b"}, {"D", "D"}}) {
        settings.sSet(key, value);
    }
    EXPECT_TRUE(settings.IsSettingPresent("my,key"));
    EXPECT_EQ(settings.sGet("DATAPATH").toText(), QStringLiteral("b"));
    EXPECT_EQ(saved(), QByteArray("MYKEY,v\r\nDATAPATH,b\r\nC,C\r\nD,D\r\n"));
    settings.DeleteSettingByName("datapath");
    settings.DeleteSettingByName("nothing");
    settings.DeleteSettingByName("MYKEY");
    settings.sSet("B", "again");
    EXPECT_EQ(saved(), QByteArray("C,C\r\nD,D\r\nB,again\r\n"));
}

// Real file operations, except for failures the test asks for.
class ScriptedFileAccess : public SettingsFileAccess {
public:
    QList<AtomicFile::Status> failures; // handed out by the next writes
    bool canMakeWritable = true;
    int writes = 0;
    int makeWritableCalls = 0;

    AtomicFile::Result Write(const QString& path, const QByteArray& bytes) override {
        ++writes;
        if (!failures.isEmpty()) {
            const AtomicFile::Status st = failures.takeFirst();
            const bool full = st == AtomicFile::Status::DiskFull;
            return {st, full ? 61 : 57,
                    full ? QStringLiteral("No space left on device")
                         : QStringLiteral("Device I/O error")};
        }
        return SettingsFileAccess::Write(path, bytes);
    }
    bool MakeWritable(const QString& path) override {
        ++makeWritableCalls;
        return canMakeWritable && SettingsFileAccess::MakeWritable(path);
    }
};

class SettingsSaveFailureTest : public SettingsFileTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(WriteFileBytes(ini(), kOld));
        settings.setFileAccess(&access);
        settings.sSet("Timer", 9000);
    }

    const QByteArray kOld = "OLD,contents\r\n";
    const QByteArray kNew = "TIMER, 9000 \r\n";
    ScriptedFileAccess access;
};

TEST_F(SettingsSaveFailureTest, ReadOnlyFileIsMadeWritableOrLeftAloneAndToldOnce) {
    ASSERT_TRUE(QFile::setPermissions(ini(), QFile::ReadOwner | QFile::ReadGroup));
    ASSERT_TRUE(AtomicFile::IsReadOnly(ini()));
    access.canMakeWritable = false;
    EXPECT_FALSE(settings.SaveSettings(ini()));
    EXPECT_FALSE(settings.SaveSettings(ini()));
    EXPECT_EQ(ReadFileBytes(ini()), kOld);
    EXPECT_EQ(reports.texts(),
              QStringList{QStringLiteral("Unable to save ") + ini() +
                          QStringLiteral(": the file is read-only and cannot be made writable.")});
    EXPECT_EQ(reports.secondTexts(), QStringList{SaveFailures::AdviceText()});
    access.canMakeWritable = true; // the user fixed it: the next save writes, without a word
    EXPECT_TRUE(settings.SaveSettings(ini()));
    EXPECT_EQ(std::tuple(ReadFileBytes(ini()), AtomicFile::IsReadOnly(ini()),
                         reports.texts().size(), dialogs.count()),
              std::tuple(kNew, false, 1, 0));
}

TEST_F(SettingsSaveFailureTest, FullDiskAsksRetryCancel) {
    access.failures = {AtomicFile::Status::DiskFull, AtomicFile::Status::DiskFull};
    dialogs.answerRetry().answerRetry();
    EXPECT_TRUE(settings.SaveSettings(ini()));
    ASSERT_EQ(std::tuple(access.writes, ReadFileBytes(ini()), dialogs.count()),
              std::tuple(3, kNew, 2));
    EXPECT_EQ(dialogs.shown().first().kind, ScriptedDialogs::Kind::RetryCancel);
    EXPECT_TRUE(dialogs.shown().first().text.startsWith(
        QStringLiteral("You've run out of disk space on drive ")));
    EXPECT_TRUE(dialogs.shown().first().text.endsWith(QStringLiteral(
        ":\rPlease clear some space and then click Retry, else click Cancel to abort.")));

    ASSERT_TRUE(WriteFileBytes(ini(), kOld));
    access.failures = {AtomicFile::Status::DiskFull};
    dialogs.answerCancel();
    EXPECT_FALSE(settings.SaveSettings(ini()));
    EXPECT_EQ(std::tuple(access.writes, ReadFileBytes(ini()), dialogs.allAnswersUsed()),
              std::tuple(4, kOld, true));
    cSHAREDSettings withoutDialogs; // answers Cancel itself
    withoutDialogs.setFileAccess(&access);
    access.failures = {AtomicFile::Status::DiskFull};
    EXPECT_FALSE(withoutDialogs.SaveSettings(ini()));
    EXPECT_EQ(access.writes, 5);
}

// Other errors, and a refusal that remains after making the file writable, go
// to the error report without a question (once until a save succeeds).
TEST_F(SettingsSaveFailureTest, OtherErrorsGoToTheErrorReport) {
    access.failures = {AtomicFile::Status::OtherError};
    EXPECT_FALSE(settings.SaveSettings(ini()));
    EXPECT_EQ(ReadFileBytes(ini()), kOld);
    EXPECT_EQ(reports.texts(), QStringList{QStringLiteral("Unable to save ") + ini() +
                                           QStringLiteral(": 57 - Device I/O error.")});
    EXPECT_TRUE(settings.SaveSettings(ini()));
    access.failures = {AtomicFile::Status::AccessDenied, AtomicFile::Status::AccessDenied};
    EXPECT_FALSE(settings.SaveSettings(ini()));
    EXPECT_EQ(std::tuple(access.writes, access.makeWritableCalls, reports.texts().size(),
                         dialogs.count()),
              std::tuple(4, 1, 2, 0));
}

TEST_F(SettingsSaveFailureTest, AWriteThatFailsHalfWayLeavesTheOldFileIntact) {
    for (int i = 0; i < 200; ++i) {
        settings.sSet(QStringLiteral("Key%1").arg(i), QString(40, QLatin1Char('x')));
    }

    // A file size limit makes the real write fail part of the way through.
    bool ok = true;
    {
        const FileSizeLimit limit(1024);
        ok = settings.SaveSettings(ini());
    }
    EXPECT_EQ(std::tuple(ok, ReadFileBytes(ini())), std::tuple(false, kOld));
    ASSERT_EQ(reports.texts().size(), 1);
    EXPECT_TRUE(reports.texts().first().startsWith(QStringLiteral("Unable to save ") + ini()));
    // No half-written temporary is left beside it.
    EXPECT_EQ(QDir(home.path()).entryList({QStringLiteral("Tvo.ini*")}, QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("Tvo.ini")});
}

} // namespace
