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

    // Saves the events into a fresh database file and returns its bytes.
    QByteArray SaveBytes(const QList<EventPtr>& events) {
        clsDbXml db(settings, &layers);
        db.SetDBFilename(path());
        for (const EventPtr& e : events) {
            db.StoreRecord(e);
        }
        db.SaveDB();
        return ReadFileBytes(path());
    }

    QList<EventPtr> LoadBytes(const QByteArray& bytes) {
        EXPECT_TRUE(WriteFileBytes(path(), bytes));
        clsDbXml db(settings, &layers);
        db.LoadDB(path());
        return db.Events();
    }
};

TEST_F(EventFileFormat, OneEventIsWrittenFieldByFieldInTheFileOrder) {
    EXPECT_EQ(SaveBytes({}), Header()) << "an empty database is the header line alone";
    // Escaped text keeps letters, digits and four marks; other characters are
    // their code page's codes in upper-case hex.
    auto e = MakeEvent(
        QStringLiteral("Dentist 10:30, caf\u00e9 <b> & 100%\r\nroom 4.?\t;/-_~@\u20ac\u00ff"));
    e->IDCode = QStringLiteral("012345");
    e->setAlarmSet(true);
    e->setAlarmTime(D("1899-12-30 10:15"));
    e->setDaynumber(-2);
    e->setDayOfMonth(31);
    e->setDayOfWeek(7);
    e->setDaysLeft(-40000);
    e->setDaysWarning(3);
    e->setDueDate(D("2009-03-05 17:45"));
    e->setDueTime(D("1899-12-30 10:30"));
    e->setLayer(4);
    e->SharedLayerName = QStringLiteral("Work");
    e->Email = QStringLiteral("a@b.c;d@e.f");
    e->setMinutesWarning(15);
    e->setMonthNumber(13);
    e->setPeriod(2);
    e->setRecurrenceType(clsEvent::EveryXMonths);
    e->setRecurring(true);
    e->setStartDate(D("2008-01-31"));
    e->setWeekDays(254);
    e->SharedEvent = true;
    e->Filename = QStringLiteral("C:\\a b\\run.bat");
    e->WavFile = QStringLiteral("/snd/ding.wav");
    e->PlayWav = true;
    e->ShareWithSpecific = true;
    e->ShareNames = QStringLiteral("Bob\r\nCarl\r\n");

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
                                "\t\t<SharedLayerName>Work</SharedLayerName>\r\n"
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
                                "\t\t<ShareNames>Bob%0D%0ACarl%0D%0A</ShareNames>\r\n"
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

// A saved file with one field edited by hand: what that field reads as (seen
// in the file saved again, every other byte unchanged) and the fault logged.
TEST_F(EventFileFormat, AHandEditedFieldReadsAsTheNearestValueAndABadNumberIsLogged) {
    const QByteArray saved = SaveBytes({MakeEvent(QStringLiteral("x"))});
    const auto with = [&](const char* tag, const char* value) {
        QByteArray bytes = saved;
        const QByteArray open = QByteArray("<") + tag + ">";
        const qsizetype from = bytes.indexOf(open) + open.size();
        return bytes.replace(from, bytes.indexOf('<', from) - from, value);
    };
    const char* const kBad = "Type mismatch (13)";
    const struct {
        const char *tag, *typed, *read, *logged; // logged "" = read without a fault
    } cases[] = {
        {"AlarmSet", "- 1", "0", ""}, // only the exact text -1 is true
        {"Recurring", "1", "0", ""},
        {"PlayWav", "-1", "-1", ""},
        {"DaysWarning", "7x", "0", kBad},
        {"DaysWarning", "inf", "0", kBad},
        {"DayOfMonth", "99999", "0", "Overflow (6)"},
        {"DayOfMonth", "40000.4", "0", "Overflow (6)"},
        {"DayOfMonth", "-32768", "-32768", ""},
        {"DayOfMonth", "+31", "31", ""},
        {"Layer", " 5 ", "5", ""},
        {"MonthNumber", "2.5", "2", ""}, // half rounds to even
        {"WeekDays", "3.5", "4", ""},
        {"StartDate", "2010-06-01 13:30", "2010-06-01", ""},
        {"DueDate", "2009-02-30", "1899-12-30", kBad},
        // Dates and times read only when real; anything else is day 0, and logged.
        {"AlarmTime", "2000-02-29", "2000-02-29 00:00", ""},
        {"AlarmTime", "2009-02-29", "1899-12-30 00:00", kBad},
        {"AlarmTime", "1900-02-29", "1899-12-30 00:00", kBad},
        {"AlarmTime", "2009-03-05 23:59", "2009-03-05 23:59", ""},
        {"AlarmTime", "2009-03-05 24:00", "1899-12-30 00:00", kBad},
        {"AlarmTime", "2009-03-05 10:75", "1899-12-30 00:00", kBad},
        {"AlarmTime", "2009-03-05 10:1/", "1899-12-30 00:00", kBad},
        {"AlarmTime", "2O09-03-05", "1899-12-30 00:00", kBad},
        {"AlarmTime", "2009x03-05", "1899-12-30 00:00", kBad},
    };
    for (const auto& c : cases) {
        const qsizetype mark = LoggedTexts().size();
        EXPECT_EQ(SaveBytes(LoadBytes(with(c.tag, c.typed))), with(c.tag, c.read)) << c.typed;
        const QStringList faults =
            LoggedTexts().mid(mark).filter(QStringLiteral(" in TransferXMLToObject"));
        const QString logged = QString::fromLatin1(c.logged);
        EXPECT_EQ(faults, logged.isEmpty() ? QStringList()
                                           : QStringList{logged + " in TransferXMLToObject of "
                                                                  "module clsDbXml"})
            << c.typed;
    }
}

TEST_F(EventFileFormat, AnsiTablesAgreeWithTheSystemConversion) {
    for (int b = 0; b < 256; ++b) {
        const QByteArray byte(1, static_cast<char>(b));
        ASSERT_EQ(EventXmlCodec::FromAnsi(byte), TextCodec::FromWindows1252(byte)) << b;
    }
    // Every character the code page holds is written as the system writes
    // it; any other becomes "?".
    for (int u = 0; u < 0x10000; ++u) {
        const QString ch(QChar(static_cast<char16_t>(u)));
        QByteArray mine;
        EventXmlCodec::AppendAnsi(mine, ch);
        ASSERT_EQ(mine.size(), 1) << u;
        const QByteArray system = TextCodec::ToWindows1252(ch);
        const bool held = system.size() == 1 && TextCodec::FromWindows1252(system) == ch;
        ASSERT_EQ(mine, held ? system : QByteArray("?")) << u;
    }
}

TEST_F(EventFileFormat, DatesAreWrittenAsTheSharedFormattingWritesThem) {
    QList<DateValue> values = {
        0.0,      1.0,           -1.25,     -0.5,        2.999999999,
        39876.75, 2958465.99999, -657434.0, 0.041666666, 39876.0 + 59.0 / 1440 + 29.9 / 86400};
    QRandomGenerator random(7);
    for (int i = 0; i < 2000; ++i) {
        values.append(-657433.0 + random.bounded(2958465.0 + 657433.0));
    }
    for (const DateValue v : values) {
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
