// What the sync takes from a server's multistatus answers that the loopback
// server does not give: relative hrefs, properties it could not give, and
// answers that are no multistatus at all.
#include "engine/caldav/CalDavMultistatus.h"
#include "support/TestSupport.h"

namespace {

TEST(CalDavMultistatusTest, ReadsRelativeHrefsAndRefusesWhatIsNoMultistatus) {
    const struct {
        QByteArray xml;
        QString read; // "href status etag" of the first resource, or the problem
    } rows[] = {
        {"<multistatus xmlns='DAV:'><response><href>a%20b.ics</href><propstat><prop><getetag>x"
         "</getetag></prop><status>HTTP/1.1 404 Not Found</status></propstat></response>"
         "</multistatus>",
         "/ann/tarvo/a b.ics 0 "},
        {"<html>Proxy error</html>", "The server's answer is no DAV multistatus."},
        {"<multistatus xmlns='DAV:'><response>", "The server's answer is no readable XML"},
    };
    for (const auto& row : rows) {
        const CalDavMultistatus::Answer a =
            CalDavMultistatus::Parse(row.xml, QUrl(QStringLiteral("http://h/ann/tarvo/")));
        const QString read = a.resources.isEmpty() ? a.problem.left(row.read.size())
                                                   : QStringLiteral("%1 %2 %3")
                                                         .arg(a.resources[0].href)
                                                         .arg(a.resources[0].status)
                                                         .arg(a.resources[0].etag);
        EXPECT_EQ(read, row.read);
    }
}

} // namespace
