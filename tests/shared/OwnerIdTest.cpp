// Owner IDs become part of file names in the shared folder.
#include "shared/OwnerId.h"
#include "support/TestSupport.h"

// Refused: a path climbing out of the shared folder, two dots, more than 64
// characters, either separator, a drive colon, wildcards, quotes, angle brackets,
// a pipe, a control character, a character the shared files cannot hold, and the
// single-user and unset markers. Plain names pass.
TEST(OwnerId, NamesThatWouldLeaveOrBreakTheFileNameAreRefused) {
    for (const char* id : {"Fred", "Dad", "Mary-Ann", "J. Smith", "user_2", "Zoë"}) {
        EXPECT_EQ(OwnerId::Problem(QString::fromUtf8(id)), QString()) << id;
    }
    EXPECT_EQ(OwnerId::Problem(QString(64, QLatin1Char('x'))), QString()) << "the longest ID";
    const QString cases[] = {
        QStringLiteral("../Fred"),   QStringLiteral("Fred..Bob"), QString(65, QLatin1Char('x')),
        QStringLiteral("a/b"),       QStringLiteral("a\\b"),      QStringLiteral("C:Fred"),
        QStringLiteral("Fr*d"),      QStringLiteral("Fred?"),     QStringLiteral("\"Fred\""),
        QStringLiteral("<Fred>"),    QStringLiteral("Fred|Bob"),  QStringLiteral("Fred\tBob"),
        QStringLiteral("Fr\u4e00d"), QStringLiteral("single"),    QStringLiteral(" Not Set "),
    };
    for (const QString& id : cases) {
        const QString problem = OwnerId::Problem(id);
        EXPECT_TRUE(!problem.isEmpty() && problem.contains(id.trimmed()))
            << "refused, naming the ID: " << id.toStdString() << " -> " << problem.toStdString();
    }
}
