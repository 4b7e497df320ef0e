// The event file as bytes: what SaveDB writes and what LoadDB makes of
// written and hand-edited files (whole hand-made files are in data/).
#include "StorageFixture.h"

#include "shared/TextCodec.h"
#include "storage/EventXmlCodec.h"
#include "storage/clsDbXml.h"
#include "support/LogLines.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

namespace {

class EventFileFormat : public StorageTest {
protected:
    QString path() const { return home.file(QStringLiteral("Events.xml")); }

    QByteArray SaveBytes(const QList<EventPtr>& events) { return SaveEvents(path(), events); }
    QList<EventPtr> LoadBytes(const QByteArray& bytes) {
        EXPECT_TRUE(WriteFileBytes(path(), bytes));
        return LoadEvents(path());
    }
};

TEST_F(EventFileFormat, OneEventIsWrittenFieldByFieldInTheFileOrder) {
    EXPECT_EQ(SaveBytes({}), Header()) << "an empty database is the header line alone";
    // Every field in the file's order (data/every-field/expected.xml): escaped
    // text keeps letters, digits and four marks; other characters are their
    // code page's codes in upper-case hex.
    const EventPtr e = EventWithEveryField();
    e->setDaysLeft(-40000);
    const QByteArray bytes = SaveBytes({e});
    EXPECT_EQ(bytes, ReadFileBytes(QFileInfo(QStringLiteral(__FILE__))
                                       .dir()
                                       .filePath(QStringLiteral("data/every-field/expected.xml"))));
    // Read back (and saved again by the data-case test) every field gives the same.
    const QList<EventPtr> back = LoadBytes(bytes);
    ASSERT_EQ(back.size(), 1);
    EXPECT_EQ(back.first()->Desc(), e->Desc());
}

TEST_F(EventFileFormat, RawTextFieldsAreWrittenUnescapedAndCutAtTheirClosingTag) {
    auto plain = MakeEvent(QStringLiteral("a"), QStringLiteral("<Tom & Jerry>"));
    auto cut = MakeEvent(QStringLiteral("b"), QStringLiteral("Al</Owner>ice"));
    plain->Email = QStringLiteral("\u00c5sa@x");
    // A character the code page lacks (in its plane or outside) is one "?",
    // raw or escaped.
    plain->Filename = QString::fromUtf16(u"x\U0001F600y");
    cut->ShareNames = QString::fromUtf16(u"\U0001F600\u0416\r\n");
    const QByteArray bytes = SaveBytes({plain, cut});
    EXPECT_TRUE(bytes.contains("<Owner><Tom & Jerry></Owner>"));
    EXPECT_TRUE(bytes.contains("<Email>\xC5sa@x</Email>"));
    EXPECT_TRUE(bytes.contains("<Filename>x?y</Filename>"));
    EXPECT_TRUE(bytes.contains("<ShareNames>%3F%3F%0D%0A</ShareNames>"));
    // Escaped fields three times their length in characters are written whole.
    auto escaped = MakeEvent(QString(3000, QLatin1Char('<')));
    escaped->ShareNames = QString(3000, QLatin1Char('\n'));
    const QByteArray tail =
        "<ShareNames>" + QByteArray("%0A").repeated(3000) + "</ShareNames>\r\n\t</EVENT>";
    EXPECT_TRUE(SaveBytes({escaped}).contains(tail));

    const QList<EventPtr> back = LoadBytes(bytes);
    ASSERT_EQ(back.size(), 2);
    EXPECT_EQ(back[0]->Owner(), QStringLiteral("<Tom & Jerry>"));
    EXPECT_EQ(back[0]->Email, QStringLiteral("\u00c5sa@x"));
    EXPECT_EQ(back[1]->Owner(), QStringLiteral("Al"));
}

// The file's own fast conversions give what the shared ones give: every
// byte and character of the code page ("?" for the rest), and dates.
TEST_F(EventFileFormat, FastConversionsAgreeWithTheSharedOnes) {
    for (int u = 0; u < 0x10000; ++u) {
        const QString ch(QChar(static_cast<char16_t>(u)));
        QByteArray mine;
        EventXmlCodec::AppendAnsi(mine, ch);
        const QByteArray system = TextCodec::ToWindows1252(ch);
        const bool held = system.size() == 1 && TextCodec::FromWindows1252(system) == ch;
        ASSERT_EQ(mine, held ? system : QByteArray("?")) << u;
        ASSERT_EQ(EventXmlCodec::FromAnsi(QByteArray(1, char(u))),
                  TextCodec::FromWindows1252(QByteArray(1, char(u))));
    }
    QRandomGenerator random(7);
    for (int i = 0; i < 2000; ++i) {
        const DateValue v = i < 9 ? QList<DateValue>{0.0,
                                                     -1.25,
                                                     -0.5,
                                                     2.999999999,
                                                     39876.75,
                                                     2958465.99999,
                                                     -657434.0,
                                                     0.041666666,
                                                     39876.0 + 59.0 / 1440 + 29.9 / 86400}[i]
                                  : -657433.0 + random.bounded(2958465.0 + 657433.0);
        QByteArray ymd;
        QByteArray ymdhm;
        EventXmlCodec::AppendYMD(ymd, v);
        EventXmlCodec::AppendYMDHM(ymdhm, v);
        ASSERT_EQ(QString::fromLatin1(ymd), FormatYMD(v)) << v;
        ASSERT_EQ(QString::fromLatin1(ymdhm), FormatYMDHM(v)) << v;
    }
    // Within a second of 10000-01-01 the time would round into a year the
    // file cannot hold: it stays on the last day.
    QByteArray last;
    EventXmlCodec::AppendYMDHM(last, 2958465.9999999);
    EXPECT_EQ(last, QByteArray("9999-12-31 23:59"));
}

} // namespace
