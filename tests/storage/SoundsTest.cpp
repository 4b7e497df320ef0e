#include "storage/clsSounds.h"

#include "shared/cSHAREDSettings.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QFileInfo>

namespace {

class SoundsTest : public ::testing::Test {
protected:
    void WriteTable(const QByteArray& bytes) {
        ASSERT_TRUE(WriteFileBytes(home.file("EventWavs.ini"), bytes));
    }
    QByteArray TableBytes() const { return ReadFileBytes(home.file("EventWavs.ini")); }

    TempHome home;
    clsSounds sounds{home.path()};
};

TEST_F(SoundsTest, LooksUpSoundsByIdCode) {
    WriteTable("123456,C:\\Sounds\\bell.wav\r\n"
               "no comma here\r\n"
               " 222222 ,/home/ann/My, Sounds/gong.wav\r\n"
               "333333,/a.wav,extra\r\n"
               "444444,/gl\xf6"
               "ckchen.wav\r\n");
    struct Case {
        const char* id;
        int line;
        QString wav;
    };
    const Case cases[] = {
        {"123456", 0, "C:\\Sounds\\bell.wav"},
        {"222222", 2, "/home/ann/My"}, // cut at the comma in the path
        {"333333", 3, "/a.wav"},
        {"444444", 4, "/gl\u00f6ckchen.wav"},
        {"no comma here", -1, QString()},
        {"999999", -1, QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(sounds.IDCodePresent(QString::fromLatin1(c.id)), c.line);
        EXPECT_EQ(sounds.GetWavName(QString::fromLatin1(c.id)), c.wav);
    }
}

TEST_F(SoundsTest, TheTableIsCreatedAppendedToAndRewrittenInPlace) {
    // Reading or deleting does not create a missing table; adding does.
    EXPECT_EQ(sounds.GetWavName("123456"), QString());
    sounds.Delete("123456");
    EXPECT_FALSE(QFileInfo::exists(sounds.EventWavsFilename()));
    sounds.AddorChange("123456", "/b\u00e9ll.wav");
    EXPECT_EQ(TableBytes(), QByteArray("123456,/b\xe9ll.wav\r\n"));

    // A table without a final line end still gets a line of its own.
    WriteTable("111111,/one.wav\r\n222222,/two.wav\r\n333333,/three.wav");
    clsSounds other(home.path());
    other.AddorChange("444444", "/four.wav");
    EXPECT_EQ(TableBytes(), QByteArray("111111,/one.wav\r\n222222,/two.wav\r\n333333,/three.wav"
                                       "\r\n444444,/four.wav\r\n"));
    other.AddorChange("222222", "/new.wav");
    other.Delete("111111");
    EXPECT_EQ(TableBytes(),
              QByteArray("222222,/new.wav\r\n333333,/three.wav\r\n444444,/four.wav\r\n"));
    clsSounds reread(home.path());
    EXPECT_EQ(reread.GetWavName("222222"), "/new.wav");
    EXPECT_EQ(reread.IDCodePresent("111111"), -1);
}

TEST(DefaultAlarmWav, MissingSoundFallsBackToTheHomeFolderAndIsStoredBack) {
    TempHome home;
    const QString homeWav = home.file("alarm.wav");
    const QString userWav = home.file("mine.wav");
    ASSERT_TRUE(WriteFileBytes(userWav, "RIFF"));
    // No key, a file gone, an empty value, and a sound of the user's own.
    const std::optional<QString> cases[] = {std::nullopt, home.file("gone.wav"), QString(),
                                            userWav};
    for (const std::optional<QString>& setting : cases) {
        SCOPED_TRACE(setting.value_or("no key").toStdString());
        QFile::remove(homeWav);
        cSHAREDSettings settings;
        if (setting) {
            settings.sSet(QStringLiteral("WavFile"), SettingValue(*setting));
        }
        const bool own = setting == userWav;
        const QString expected = own ? userWav : homeWav;
        EXPECT_EQ(DefaultWavFile(settings), expected);
        EXPECT_EQ(settings.sGet("WavFile").toText(), expected);
        // The built-in sound is there to be played.
        const QByteArray wav = ReadFileBytes(homeWav);
        EXPECT_EQ(wav.startsWith("RIFF") && wav.mid(8, 4) == "WAVE" && wav.size() > 1000, !own);
    }
    // A sound of the user's own under the built-in name is never overwritten.
    ASSERT_TRUE(WriteFileBytes(homeWav, "user's own sound"));
    ASSERT_TRUE(WriteDefaultAlarmWav(homeWav));
    EXPECT_EQ(ReadFileBytes(homeWav), QByteArray("user's own sound"));
}

} // namespace
