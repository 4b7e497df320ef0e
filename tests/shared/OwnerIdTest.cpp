// Owner IDs become part of file names in the shared folder.
#include "shared/OwnerId.h"
#include "support/TestSupport.h"

TEST(OwnerId, PlainNamesAreAccepted) {
    for (const char* id : {"Fred", "Dad", "Mary-Ann", "J. Smith", "user_2", "Zoë"}) {
        EXPECT_TRUE(OwnerId::Problem(QString::fromUtf8(id)).isEmpty()) << id;
    }
}

TEST(OwnerId, NamesThatWouldLeaveOrBreakTheFileNameAreRefused) {
    const struct {
        QString id;
        const char* why;
    } cases[] = {
        {QStringLiteral("../Fred"), "a path climbing out of the shared folder"},
        {QStringLiteral("Fred..Bob"), "two dots"},
        {QString(65, QLatin1Char('x')), "more than 64 characters"},
        {QStringLiteral("a/b"), "a separator"},
        {QStringLiteral("a\\b"), "the other separator"},
        {QStringLiteral("C:Fred"), "a drive colon"},
        {QStringLiteral("Fr*d"), "a wildcard"},
        {QStringLiteral("Fred?"), "a question mark"},
        {QStringLiteral("\"Fred\""), "quotes"},
        {QStringLiteral("<Fred>"), "angle brackets"},
        {QStringLiteral("Fred|Bob"), "a pipe"},
        {QStringLiteral("Fred\tBob"), "a control character"},
        {QStringLiteral("Fr\u4e00d"), "a character the shared files cannot hold"},
        {QStringLiteral("single"), "the single-user marker"},
        {QStringLiteral(" Not Set "), "the unset marker"},
    };
    for (const auto& c : cases) {
        const QString problem = OwnerId::Problem(c.id);
        EXPECT_FALSE(problem.isEmpty()) << c.why;
        EXPECT_TRUE(problem.contains(c.id.trimmed()))
            << "the message names the ID: " << problem.toStdString();
    }
}
