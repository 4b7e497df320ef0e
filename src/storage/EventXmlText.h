#pragma once

#include <QString>

#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

// Windows-1252 conversion and percent codes for the event record, written
// straight into a buffer the caller has sized. Internal to the record format.
namespace EventXmlCodec::detail {

// Windows-1252 tables, taken from the system's decoder once.
struct AnsiTables {
    std::array<char16_t, 256> toUnicode{};
    std::vector<unsigned char> fromUnicode; // indexed by UTF-16 code unit
    AnsiTables();
};

inline const AnsiTables& ansi() {
    static const AnsiTables tables;
    return tables;
}

// True when src[i] starts a character outside the Basic Multilingual Plane
// (a surrogate pair): it is one character, written as one "?".
inline bool startsPair(const char16_t* src, qsizetype i, qsizetype n) {
    return src[i] >= 0xD800 && src[i] <= 0xDBFF && i + 1 < n && src[i + 1] >= 0xDC00 &&
           src[i + 1] <= 0xDFFF;
}

// Writes text as Windows-1252, one byte per character (at most one per UTF-16
// unit), and returns the end.
inline char* putAnsi(char* p, const QString& text) {
    const AnsiTables& t = ansi();
    const char16_t* src = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = src[i];
        if (c < 0x80) {
            *p++ = static_cast<char>(c);
            continue;
        }
        if (startsPair(src, i, n)) {
            ++i; // surrogates are not in the code page: "?"
        }
        *p++ = static_cast<char>(t.fromUnicode[c]);
    }
    return p;
}

// Letters, digits and ": . , ?" are written as they are.
inline constexpr std::array<bool, 128> kKeptAsIs = [] {
    std::array<bool, 128> keep{};
    for (int c = 0; c < 128; ++c) {
        keep[c] = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                  c == ':' || c == '.' || c == ',' || c == '?';
    }
    return keep;
}();

// How a character is written: ASCII ones by this table (themselves, or "%"
// and two hex digits), any other as "%" and the hex of its Windows-1252 byte
// (which may be that of "?"). Four bytes are copied and the pointer moves
// on by the length.
struct PercentForm {
    std::array<char, 4> text{};
    std::size_t size = 0;
};

constexpr std::array<PercentForm, 256> makePercentForms(bool keepAscii) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::array<PercentForm, 256> forms{};
    for (int b = 0; b < 256; ++b) {
        if (keepAscii && b < 128 && kKeptAsIs[b]) {
            forms[b].text[0] = static_cast<char>(b);
            forms[b].size = 1;
        } else {
            forms[b].text = {'%', kHex[b >> 4], kHex[b & 0xF], 0};
            forms[b].size = 3;
        }
    }
    return forms;
}

inline constexpr std::array<PercentForm, 256> kAsciiForms = makePercentForms(true);
inline constexpr std::array<PercentForm, 256> kEscapedForms = makePercentForms(false);

inline char* putPercent(char* p, const QString& text) {
    const AnsiTables& t = ansi();
    const char16_t* src = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = src[i];
        if (c >= 0x80 && startsPair(src, i, n)) {
            ++i;
        }
        const PercentForm& form = c < 0x80 ? kAsciiForms[c] : kEscapedForms[t.fromUnicode[c]];
        std::memcpy(p, form.text.data(), form.text.size());
        p += form.size;
    }
    return p;
}

} // namespace EventXmlCodec::detail
