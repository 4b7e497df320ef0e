// The event file as bytes: what SaveDB writes and what LoadDB makes of
// written and hand-edited files (whole hand-made files are in data/).
#include "StorageFixture.h"

#include "shared/TextCodec.h"
#include "storage/EventXmlCodec.h"
#include "storage/clsDbXml.h"
#include "support/LogLines.h"

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
    // Escaped text keeps letters, digits and four marks; other characters are
    // their code page's codes in upper-case hex.
    const EventPtr e = EventWithEveryField();
    e->setDaysLeft(-40000);
    const QByteArray expected = Header() +
                                "<TVO2>\r\n"
                                "\t<EVENT>\r\n"
                                "\t\t<IDCode>012345</IDCode>\r\n"
                                "\t\t<AlarmSet>-1</AlarmSet>\r\n"
                                "\t\t<AlarmTime>1899-12-30 10:15</AlarmTime>\r\n"
                                "\t\t<DayNumber>-2</DayNumber>\r\n"
                                "\t\t<DayOfMonth>31</DayOfMonth>\r\n"
                                "\t\t<DayOfWeek>7</DayOfWeek>\r\n"
                                "\t\t<DaysLeft>-40000</DaysLeft>\r\n"
                                "\t\t<DaysWarning>3</DaysWarning>\r\n"
                                "\t\t<Deleted>0</Deleted>\r\n"
                                "\t\t<MailSent>0</MailSent>\r\n"
                                "\t\t<Desc>Dentist%2010:30,%20caf%E9%20%3Cb%3E%20%26%20100%25%0D%"
                                "0Aroom%204.?%09%3B%2F%2D%5F%7E%40%80%FF</Desc>\r\n"
                                "\t\t<DueDate>2009-03-05</DueDate>\r\n"
                                "\t\t<DueTime>1899-12-30 10:30</DueTime>\r\n"
                                "\t\t<Layer>4</Layer>\r\n"
                                "\t\t<SharedLayerName>Work, home</SharedLayerName>\r\n"
                                "\t\t<Email>a@b.c;d@e.f</Email>\r\n"
                                "\t\t<MinutesWarning>15</MinutesWarning>\r\n"
                                "\t\t<MonthNumber>13</MonthNumber>\r\n"
                                "\t\t<Owner>Ann</Owner>\r\n"
                                "\t\t<Period>2</Period>\r\n"
                                "\t\t<RecurrenceType>2</RecurrenceType>\r\n"
                                "\t\t<Recurring>-1</Recurring>\r\n"
                                "\t\t<StartDate>2008-01-31</StartDate>\r\n"
                                "\t\t<WeekDays>254</WeekDays>\r\n"
                                "\t\t<SharedEvent>-1</SharedEvent>\r\n"
                                "\t\t<ExecFile>0</ExecFile>\r\n"
                                "\t\t<Filename>C:\\a b\\run.bat</Filename>\r\n"
                                "\t\t<WavFile>/snd/ding.wav</WavFile>\r\n"
                                "\t\t<PlayWav>-1</PlayWav>\r\n"
                                "\t\t<ShareWithSpecific>-1</ShareWithSpecific>\r\n"
                                "\t\t<ShareNames>Bob%0D%0ACarl%20Jim%0D%0A</ShareNames>\r\n"
                                "\t</EVENT>\r\n"
                                "</TVO2>\r\n";
    const QByteArray bytes = SaveBytes({e});
    EXPECT_EQ(bytes, expected);

    // Read back and saved again, every field gives the same bytes.
    const QList<EventPtr> back = LoadBytes(bytes);
    ASSERT_EQ(back.size(), 1);
    EXPECT_EQ(back.first()->Desc(), e->Desc());
    EXPECT_EQ(SaveBytes(back), expected);
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
        const DateValue v = i < 9 ? QList<DateValue>{0.0, -1.25, -0.5, 2.999999999, 39876.75,
                                                     2958465.99999, -657434.0, 0.041666666,
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
