// Data-driven cases: each folder under data/ holds a hand-made "input.xml",
// the "expected.xml" that loading it and saving it again must give, and
// optionally "expected.log", the conversion faults loading logs, in order.
#include "StorageFixture.h"

#include "storage/EventFileSnapshot.h"
#include "storage/EventXmlCodec.h"
#include "storage/clsDbXml.h"

#include <QDir>
#include <QFileInfo>

namespace {

QString CasesFolder() {
    return QFileInfo(QStringLiteral(__FILE__)).dir().filePath(QStringLiteral("data"));
}

class StorageCases : public StorageTest {};

TEST_F(StorageCases, LoadingAndSavingGivesTheExpectedFile) {
    const QStringList cases = QDir(CasesFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_FALSE(cases.isEmpty()) << "no cases in " << CasesFolder().toStdString();
    for (const QString& name : cases) {
        const QDir dir(QDir(CasesFolder()).filePath(name));
        const QString input = home.file(name + QStringLiteral(".xml"));
        ASSERT_TRUE(
            WriteFileBytes(input, ReadFileBytes(dir.filePath(QStringLiteral("input.xml")))));
        const qsizetype mark = LoggedTexts().size();
        clsDbXml db(settings, &layers);
        db.LoadDB(input);
        const QStringList faults = LoggedTexts().mid(mark).filter(" in TransferXMLToObject");
        db.SetDBFilename(home.file(name + QStringLiteral("-saved.xml")));
        db.SaveDB();
        const QByteArray saved = ReadFileBytes(db.DBFilename());
        const QString expectedPath = dir.filePath(QStringLiteral("expected.xml"));
        if (qEnvironmentVariableIsSet("TARVO_WRITE_EXPECTED") && !QFileInfo::exists(expectedPath)) {
            WriteFileBytes(expectedPath, saved); // to start a new case; review it by hand
        }
        EXPECT_EQ(saved, ReadFileBytes(expectedPath)) << "case " << name.toStdString();
        if (const QByteArray log = ReadFileBytes(dir.filePath("expected.log")); !log.isEmpty()) {
            EXPECT_EQ(faults, QString::fromLatin1(log).split('\n', Qt::SkipEmptyParts))
                << "case " << name.toStdString();
        }
    }
}

// The agenda's mapped read of an event file gives, for the events due in
// time, exactly what the database's own networked load gives.
TEST_F(StorageCases, TheSnapshotReadsWhatLoadingReadsForEventsDueInTime) {
    const DateValue last = D(QStringLiteral("2030-06-08"));
    const auto blocks = [&](const QList<EventPtr>& events) {
        QStringList out;
        for (const EventPtr& e : events) {
            QByteArray bytes;
            EventXmlCodec::AppendBlock(bytes, *e);
            out << QString::fromLatin1(bytes);
        }
        return out;
    };
    qsizetype read = 0;
    for (const QString& name : QDir(CasesFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString input = QDir(CasesFolder()).filePath(name + QStringLiteral("/input.xml"));
        clsDbXml db(settings);
        db.setNetworked(true);
        db.LoadDB(input);
        QList<EventPtr> due = db.Events();
        due.removeIf([&](const EventPtr& e) { return e->DueDate() > last; });
        const QList<EventPtr> got =
            EventFileSnapshot::Read(input, QStringLiteral("Ann"), true, last);
        read += got.size();
        EXPECT_EQ(blocks(got), blocks(due)) << name.toStdString();
    }
    EXPECT_GT(read, 10);
}

} // namespace
