#include "storage/EventFileSnapshot.h"

#include "storage/EventXmlCodec.h"
#include "storage/EventXmlTags.h"

#include <QByteArrayView>
#include <QFile>

#include <cstring>
#include <optional>
#include <string_view>

namespace EventFileSnapshot {

namespace {

// The first "</EVENT>" at or after from, or -1: its "V" is rare in the
// file, so memchr finds the candidates.
qsizetype findEndTag(QByteArrayView bytes, qsizetype from) {
    constexpr std::string_view kTag = "</EVENT>";
    const char* data = bytes.data();
    const char* end = data + bytes.size();
    for (const char* p = data + from + 3; p < end;) {
        const auto* v = static_cast<const char*>(std::memchr(p, 'V', std::size_t(end - p)));
        if (v == nullptr) {
            return -1;
        }
        const char* start = v - 3;
        if (end - start >= 8 && std::memcmp(start, kTag.data(), kTag.size()) == 0) {
            return start - data;
        }
        p = v + 1;
    }
    return -1;
}

// The due day of a block whose <DueDate> holds a plain "YYYY-MM-DD" (as
// every saved file has it); nothing when only the full conversion can tell.
std::optional<DateValue> quickDueDate(QByteArrayView block) {
    using EventXmlCodec::detail::findTagNoCase;
    const char* end = block.data() + block.size();
    const char* tag = findTagNoCase(block.data(), end, "<DueDate>");
    if (tag == nullptr || end - tag < 9 + 10 + 10) {
        return std::nullopt;
    }
    const char* v = tag + 9;
    auto digits = [v](int from, int count) {
        int n = 0;
        for (int i = from; i < from + count; ++i) {
            if (v[i] < '0' || v[i] > '9') {
                return -1;
            }
            n = n * 10 + (v[i] - '0');
        }
        return n;
    };
    const int y = digits(0, 4);
    const int m = digits(5, 2);
    const int d = digits(8, 2);
    if (y < kMinYear || m < 1 || m > 12 || d < 1 || d > DaysInMonth(y, m) || v[4] != '-' ||
        v[7] != '-' || findTagNoCase(v + 10, v + 20, "</DueDate>") != v + 10) {
        return std::nullopt;
    }
    return DateSerial(y, m, d);
}

} // namespace

QList<EventPtr> Read(const QString& path, const QString& owner, bool networked, DateValue dueUpTo) {
    QList<EventPtr> events;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0) {
        return events;
    }
    const qint64 size = file.size();
    const uchar* mapped = file.map(0, size);
    QByteArray copy;
    if (mapped == nullptr) {
        copy = file.readAll(); // a file system that cannot map
    }
    const QByteArrayView bytes =
        mapped != nullptr
            ? QByteArrayView(reinterpret_cast<const char*>(mapped), static_cast<qsizetype>(size))
            : QByteArrayView(copy);

    const QString procedure = QStringLiteral("TransferXMLToObject");
    const QString module = QStringLiteral("clsDbXml");
    const QString single = QStringLiteral("Single");
    EventXmlCodec::TextCache cache;
    // Blocks end at "</EVENT>" (exact case); a piece is an event only when
    // it holds "<EVENT>" in any case, as the database reads them.
    constexpr qsizetype kEndSize = 8; // "</EVENT>"
    qsizetype from = 0;
    while (from < bytes.size()) {
        const qsizetype end = findEndTag(bytes, from);
        const qsizetype pieceEnd = end < 0 ? bytes.size() : end;
        const QByteArrayView piece = bytes.sliced(from, pieceEnd - from);
        from = end < 0 ? bytes.size() : end + kEndSize;
        if (!EventXmlCodec::ContainsNoCase(piece, "<EVENT>")) {
            continue;
        }
        if (const std::optional<DateValue> due = quickDueDate(piece); due && *due > dueUpTo) {
            continue;
        }
        EventPtr event = EventXmlCodec::ParseBlock(piece, procedure, module, &cache);
        if (event->Owner().isEmpty() || event->Owner() == single) {
            event->setOwner(owner);
        }
        if (event->Deleted ||
            (networked && event->ShareWithSpecific && !event->NameInShared(owner))) {
            continue;
        }
        events.append(event);
    }
    return events;
}

} // namespace EventFileSnapshot
