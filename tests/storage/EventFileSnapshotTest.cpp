// The agenda's mapped read of an event file gives, for the events due in
// time, exactly what the database's own load gives.
#include "storage/EventFileSnapshot.h"
#include "storage/EventXmlCodec.h"
#include "storage/StorageFixture.h"
#include "storage/clsDbXml.h"

namespace {
QByteArray block(const char* fields) {
    return QByteArray("<TVO2>\r\n\t<EVENT>\r\n") + fields + "\t</EVENT>\r\n</TVO2>\r\n";
}
} // namespace

TEST_F(StorageTest, SnapshotReadsWhatLoadDbReadsForEventsDueInTime) {
    const QString path = home.file(QStringLiteral("Events.xml"));
    WriteFileBytes(path, Header() +
                             block("<Desc>Single%20owner</Desc><Owner>Single</Owner>"
                                   "<DueDate>2030-06-03</DueDate><Recurring>-1</Recurring>"
                                   "<RecurrenceType>5</RecurrenceType><Period>2</Period>") +
                             block("<Desc>Later</Desc><DueDate>2030-07-01</DueDate>") +
                             block("<Desc>Deleted</Desc><DueDate>2030-06-02</DueDate>"
                                   "<Deleted>-1</Deleted>") +
                             block("<desc>Lower%20case</desc><duedate>2030-06-04</duedate>") +
                             block("<Desc>Hand%20edited</Desc><DueDate>2030-6-5</DueDate>") +
                             block("<Desc>No%2031%20June</Desc><DueDate>2030-06-31</DueDate>") +
                             block("<Desc>Month%200</Desc><DueDate>2031-00-10</DueDate>") +
                             block("<Desc>For%20Bob</Desc><DueDate>2030-06-05</DueDate>"
                                   "<ShareWithSpecific>-1</ShareWithSpecific><ShareNames>Bob%0D%0A"
                                   "</ShareNames>"));
    const DateValue last = D(QStringLiteral("2030-06-08"));
    clsDbXml db(settings);
    db.setNetworked(true);
    db.LoadDB(path);
    QStringList expected;
    for (const EventPtr& e : db.Events()) {
        if (e->DueDate() <= last) {
            QByteArray bytes;
            EventXmlCodec::AppendBlock(bytes, *e);
            expected << QString::fromLatin1(bytes);
        }
    }
    QStringList got;
    for (const EventPtr& e : EventFileSnapshot::Read(path, QStringLiteral("Ann"), true, last)) {
        QByteArray bytes;
        EventXmlCodec::AppendBlock(bytes, *e);
        got << QString::fromLatin1(bytes);
    }
    EXPECT_EQ(got.size(), 5);
    EXPECT_EQ(got, expected);
}
