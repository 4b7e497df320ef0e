#include "shared/TextCodec.h"

#include <QHash>
#include <QStringDecoder>

namespace TextCodec {

namespace {

// The code page as a reverse table, built once from the decoder, so that a
// character the code page lacks becomes "?" (the converter would write a
// control byte or drop it).
const QHash<char16_t, char>& encodeTable() {
    static const QHash<char16_t, char> table = [] {
        QHash<char16_t, char> t;
        QStringDecoder decoder("windows-1252", QStringConverter::Flag::Stateless);
        for (int b = 0; b < 256; ++b) {
            const char byte = static_cast<char>(b);
            const QString decoded = decoder.decode(QByteArray(1, byte));
            if (decoded.size() == 1 && decoded.at(0) != QChar::ReplacementCharacter) {
                t.insert(decoded.at(0).unicode(), byte);
            }
        }
        return t;
    }();
    return table;
}

} // namespace

QByteArray ToWindows1252(const QString& text) {
    const QHash<char16_t, char>& table = encodeTable();
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < 0x80) {
            out.append(static_cast<char>(c));
            continue;
        }
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() &&
            QChar::isLowSurrogate(text.at(i + 1).unicode())) {
            ++i; // one character outside the code page, one "?"
            out.append('?');
            continue;
        }
        const auto it = table.constFind(c);
        out.append(it == table.constEnd() ? '?' : *it);
    }
    return out;
}

QString FromWindows1252(const QByteArray& bytes) {
    QStringDecoder decoder("windows-1252", QStringConverter::Flag::Stateless);
    return decoder.decode(bytes);
}

} // namespace TextCodec
