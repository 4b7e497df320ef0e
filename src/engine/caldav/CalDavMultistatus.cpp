#include "engine/caldav/CalDavMultistatus.h"

#include <QUrl>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <functional>

namespace CalDavMultistatus {

namespace {

constexpr const char* kDav = "DAV:";
constexpr const char* kCalDav = "urn:ietf:params:xml:ns:caldav";

bool is(const QXmlStreamReader& xml, const char* ns, const char* name) {
    return xml.name() == QLatin1String(name) && xml.namespaceUri() == QLatin1String(ns);
}

// "HTTP/1.1 404 Not Found" -> 404
int statusOf(const QString& line) {
    const QStringList parts = line.simplified().split(QLatin1Char(' '));
    return parts.size() >= 2 ? parts.at(1).toInt() : 0;
}

// "" for an href that names no path on a server ("http:x", "mailto:a").
QString pathOf(const QString& href, const QUrl& request) {
    const QString path = request.resolved(QUrl(href.trimmed())).path(QUrl::FullyDecoded);
    return path.startsWith(QLatin1Char('/')) ? path : QString();
}

void readResponse(QXmlStreamReader& xml, const QUrl& request, Answer& out) {
    Resource r;
    int propStatus = 0;
    QString etag;
    QByteArray data;
    int depth = 1;
    while (depth > 0 && !xml.atEnd()) {
        xml.readNext();
        if (xml.isEndElement()) {
            --depth;
            if (is(xml, kDav, "propstat")) {
                // Only properties that came (200) count.
                if (propStatus >= 200 && propStatus < 300) {
                    r.etag = etag;
                    r.data = data;
                    r.status = r.status == 0 ? propStatus : r.status;
                }
                propStatus = 0;
                etag.clear();
                data.clear();
            }
            continue;
        }
        if (!xml.isStartElement()) {
            continue;
        }
        if (is(xml, kDav, "href") && r.href.isEmpty()) {
            r.href = pathOf(xml.readElementText(), request);
        } else if (is(xml, kDav, "status")) {
            const int status = statusOf(xml.readElementText());
            if (depth == 1) {
                r.status = status; // the whole resource's status
            } else {
                propStatus = status;
            }
        } else if (is(xml, kDav, "getetag")) {
            etag = xml.readElementText().trimmed();
        } else if (is(xml, kCalDav, "calendar-data")) {
            data = xml.readElementText().toUtf8();
        } else {
            ++depth;
        }
    }
    if (!r.href.isEmpty()) {
        out.resources.append(r);
    }
}

} // namespace

Answer Parse(const QByteArray& xmlBytes, const QUrl& request) {
    Answer out;
    QXmlStreamReader xml(xmlBytes);
    bool root = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        if (!root) {
            root = true;
            if (!is(xml, kDav, "multistatus") && !is(xml, kDav, "error")) {
                out.problem = QStringLiteral("The server's answer is no DAV multistatus.");
                return out;
            }
            if (is(xml, kDav, "error")) {
                while (xml.readNextStartElement()) {
                    out.errors.append(xml.name().toString());
                    xml.skipCurrentElement();
                }
            }
            continue;
        }
        if (is(xml, kDav, "response")) {
            readResponse(xml, request, out);
        } else if (is(xml, kDav, "sync-token")) {
            out.syncToken = xml.readElementText().trimmed();
        }
    }
    if (xml.hasError()) {
        out.problem = QStringLiteral("The server's answer is no readable XML (%1 at line %2).")
                          .arg(xml.errorString())
                          .arg(xml.lineNumber());
    } else if (!root) {
        out.problem = QStringLiteral("The server's answer is empty.");
    }
    return out;
}

namespace {

QByteArray document(const std::function<void(QXmlStreamWriter&)>& body) {
    QByteArray out;
    QXmlStreamWriter xml(&out);
    xml.writeStartDocument();
    xml.writeNamespace(QLatin1String(kDav), QStringLiteral("d"));
    xml.writeNamespace(QLatin1String(kCalDav), QStringLiteral("c"));
    body(xml);
    xml.writeEndDocument();
    return out;
}

void etagProperty(QXmlStreamWriter& xml, bool withData) {
    xml.writeStartElement(QLatin1String(kDav), QStringLiteral("prop"));
    xml.writeEmptyElement(QLatin1String(kDav), QStringLiteral("getetag"));
    if (withData) {
        xml.writeEmptyElement(QLatin1String(kCalDav), QStringLiteral("calendar-data"));
    }
    xml.writeEndElement();
}

} // namespace

QByteArray SyncCollectionBody(const QString& token) {
    return document([&](QXmlStreamWriter& xml) {
        xml.writeStartElement(QLatin1String(kDav), QStringLiteral("sync-collection"));
        xml.writeTextElement(QLatin1String(kDav), QStringLiteral("sync-token"), token);
        xml.writeTextElement(QLatin1String(kDav), QStringLiteral("sync-level"),
                             QStringLiteral("1"));
        etagProperty(xml, false);
        xml.writeEndElement();
    });
}

QByteArray MultigetBody(const QStringList& paths) {
    return document([&](QXmlStreamWriter& xml) {
        xml.writeStartElement(QLatin1String(kCalDav), QStringLiteral("calendar-multiget"));
        etagProperty(xml, true);
        for (const QString& path : paths) {
            QUrl url;
            url.setPath(path, QUrl::DecodedMode);
            xml.writeTextElement(QLatin1String(kDav), QStringLiteral("href"),
                                 QString::fromLatin1(url.toEncoded()));
        }
        xml.writeEndElement();
    });
}

QByteArray PropfindBody() {
    return document([](QXmlStreamWriter& xml) {
        xml.writeStartElement(QLatin1String(kDav), QStringLiteral("propfind"));
        xml.writeStartElement(QLatin1String(kDav), QStringLiteral("prop"));
        xml.writeEmptyElement(QLatin1String(kDav), QStringLiteral("resourcetype"));
        xml.writeEndElement();
        xml.writeEndElement();
    });
}

} // namespace CalDavMultistatus
