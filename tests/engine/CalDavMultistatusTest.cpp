// What the sync takes from a server's multistatus answers.
#include "engine/caldav/CalDavMultistatus.h"
#include "support/TestSupport.h"

namespace {

// "href status etag summary" per resource (the SUMMARY line of its calendar
// data), then the token and errors.
QString Summary(const QByteArray& xml) {
    const CalDavMultistatus::Answer a = CalDavMultistatus::Parse(xml);
    QStringList out;
    for (const CalDavMultistatus::Resource& r : a.resources) {
        out << QStringLiteral("%1 %2 %3 %4")
                   .arg(r.href)
                   .arg(r.status)
                   .arg(r.etag)
                   .arg(QString::fromUtf8(r.data)
                            .section(QLatin1String("SUMMARY:"), 1)
                            .section(QLatin1Char('\n'), 0, 0)
                            .trimmed());
    }
    out << QStringLiteral("token=") + a.syncToken
        << QStringLiteral("errors=") + a.errors.join(QLatin1Char(','));
    return a.problem.isEmpty() ? out.join(QLatin1String("; ")) : a.problem.left(40);
}

QByteArray Seed(const char* name) {
    // The fuzz target's seeds.
    return ReadFileBytes(QStringLiteral(TARVO_TESTS_DIR "/fuzz/corpus/caldav_answer/") +
                         QLatin1String(name));
}

TEST(CalDavMultistatusTest, ReadsHrefsStatusesETagsDataTokensAndErrors) {
    const struct {
        QByteArray xml;
        QString summary;
    } rows[] = {
        {Seed("sync-collection.xml"),
         "/ann/tarvo/100001.ics 200 \"8aebaf21\" ; /ann/tarvo/gone one.ics 404  ; "
         "token=http://radicale.org/ns/sync/9591d3; errors="},
        {Seed("multiget.xml"), "/bob/tarvo/phone.ics 200 \"e1\" Dentist & more; "
                               "/bob/tarvo/missing.ics 404  ; token=; errors="},
        {Seed("error.xml"), "token=; errors=valid-sync-token"},
        // A property the server could not give does not count as given.
        {"<multistatus "
         "xmlns='DAV:'><response><href>/a.ics</href><propstat><prop><getetag>x</getetag>"
         "</prop><status>HTTP/1.1 404 Not Found</status></propstat></response></multistatus>",
         "/a.ics 0  ; token=; errors="},
        {"<html>Proxy error</html>", "The server's answer is no DAV multistatu"},
        {"<multistatus xmlns='DAV:'><response>", "The server's answer is no readable XML ("},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Summary(row.xml), row.summary) << row.xml.left(60).constData();
    }
}

} // namespace
