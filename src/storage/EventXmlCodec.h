#pragma once

#include "model/clsEvent.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

// The event file's record format, on the Windows-1252 bytes of the file: one
// "<TVO2>" wrapper per event around an "<EVENT>" element with one line per
// field. It looks like XML but is read by searching for tags without regard
// to letter case, and only Desc and ShareNames are escaped (percent codes of
// the Windows-1252 byte). Other text fields are written raw, so a value that
// holds its own closing tag is cut short there on reading; that is the format.
namespace EventXmlCodec {

// The file's first line (followed by CR LF).
inline constexpr char kHeader[] = "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>";

// Appends the block of one event, without the CR LF that ends it in a file.
void AppendBlock(QByteArray& out, const clsEvent& event);

// Values that repeat from event to event in one file (owner, layer name, file
// and sound paths, mail addresses): equal bytes give one shared string
// instead of a new one per event. It also counts the conversion errors of one
// read, so that a damaged file logs the first kMaxLoggedErrors of them only.
class TextCache {
public:
    QString Text(int slot, QByteArrayView raw);
    static constexpr int kSlots = 6;

    static constexpr qsizetype kMaxLoggedErrors = 1000;
    // Counts one error; true while it is still to be logged.
    bool CountError();
    // Errors counted beyond the logged ones.
    qsizetype UnloggedErrors() const { return std::max<qsizetype>(0, m_errors - kMaxLoggedErrors); }

private:
    struct Entry {
        QByteArray raw;
        QString text;
    };
    static constexpr std::size_t kEntries = 16;
    std::array<std::array<Entry, kEntries>, kSlots> m_entries;
    std::array<std::size_t, kSlots> m_used{};
    std::array<std::size_t, kSlots> m_next{};
    qsizetype m_errors = 0;
};

// Builds a new event from the text of one block. A missing tag leaves the
// field at its default; a field that does not convert is logged under
// procedure/module and left at its default, the other fields are still read.
EventPtr ParseBlock(QByteArrayView block, const QString& procedure, const QString& module,
                    TextCache* cache = nullptr);

// Whether hay holds needle (which starts with '<'), ignoring ASCII case.
bool ContainsNoCase(QByteArrayView hay, std::string_view needle);

// Letters, digits and ": . , ?" stay; every other character becomes "%" and
// the upper-case hex of its Windows-1252 code (space %20, CR LF %0D%0A).
QByteArray PercentEncode(const QString& text);
// Lenient reverse: "%" with two characters after it is replaced by the byte
// of their hex value (reading stops at the first non-hex digit, none gives 0).
QString PercentDecode(QByteArrayView bytes);

// Windows-1252 conversion through lookup tables built once from the system's
// decoder, so no converter is built per field. Characters outside the code
// page are written as "?".
QString FromAnsi(QByteArrayView bytes);
void AppendAnsi(QByteArray& out, const QString& text);

// "YYYY-MM-DD" / "YYYY-MM-DD HH:MM" appended, as FormatYMD/FormatYMDHM give.
void AppendYMD(QByteArray& out, DateValue v);
void AppendYMDHM(QByteArray& out, DateValue v);

} // namespace EventXmlCodec
