#include "storage/EventXmlText.h"

#include "storage/EventXmlCodec.h"
#include "storage/EventXmlTags.h"

#include "shared/TextCodec.h"

namespace EventXmlCodec {
namespace detail {

AnsiTables::AnsiTables() : fromUnicode(0x10000, static_cast<unsigned char>('?')) {
    for (int b = 0; b < 256; ++b) {
        const QString s = TextCodec::FromWindows1252(QByteArray(1, static_cast<char>(b)));
        toUnicode[b] = s.size() == 1 ? s.at(0).unicode() : char16_t(0xFFFD);
    }
    // Every byte decodes to its own character, so the reverse table is
    // exact; characters the code page lacks become "?" as documented for
    // data files (the system encoder would give a SUB control character).
    for (int b = 0; b < 256; ++b) {
        fromUnicode[toUnicode[b]] = static_cast<unsigned char>(b);
    }
}

} // namespace detail

namespace {

inline int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

} // namespace

using detail::ansi;
using detail::AnsiTables;
using detail::putAnsi;
using detail::putPercent;
using detail::scanTo;

QString FromAnsi(QByteArrayView bytes) {
    if (bytes.isEmpty()) {
        return {};
    }
    const AnsiTables& t = ansi();
    QString out(bytes.size(), Qt::Uninitialized);
    char16_t* dst = reinterpret_cast<char16_t*>(out.data());
    const auto* src = reinterpret_cast<const unsigned char*>(bytes.data());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        dst[i] = t.toUnicode[src[i]];
    }
    return out;
}

void AppendAnsi(QByteArray& out, const QString& text) {
    const qsizetype start = out.size();
    out.resize(start + text.size());
    out.truncate(putAnsi(out.data() + start, text) - out.constData());
}

QByteArray PercentEncode(const QString& text) {
    QByteArray out(text.size() * 3 + 1, Qt::Uninitialized); // +1: putPercent copies four bytes
    out.truncate(putPercent(out.data(), text) - out.constData());
    return out;
}

QString PercentDecode(QByteArrayView bytes) {
    const char* p = bytes.data();
    const char* end = p + bytes.size();
    const char* percent = scanTo(p, end, '%');
    if (percent == end) {
        return FromAnsi(bytes);
    }
    const AnsiTables& t = ansi();
    QString out(bytes.size(), Qt::Uninitialized);
    char16_t* dst = reinterpret_cast<char16_t*>(out.data());
    char16_t* const first = dst;
    while (p < end) {
        for (; p < percent; ++p) {
            *dst++ = t.toUnicode[static_cast<unsigned char>(*p)];
        }
        if (p == end) {
            break;
        }
        if (end - p > 2) {
            // Lenient hex: reading stops at the first non-hex digit.
            int code = 0;
            const int hi = hexValue(p[1]);
            if (hi >= 0) {
                const int lo = hexValue(p[2]);
                code = lo >= 0 ? hi * 16 + lo : hi;
            }
            *dst++ = t.toUnicode[static_cast<unsigned char>(code)];
            p += 3;
        } else {
            *dst++ = u'%';
            ++p;
        }
        percent = scanTo(p, end, '%');
    }
    out.truncate(dst - first);
    return out;
}

} // namespace EventXmlCodec
