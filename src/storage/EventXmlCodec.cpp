#include "storage/EventXmlCodec.h"

#include "shared/RuntimeError.h"
#include "shared/TextCodec.h"
#include "shared/cSharedLogging.h"

#include <QLocale>
#include <QTime>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace EventXmlCodec {
namespace {

// ---------------------------------------------------------------------------
// Fields, in the order they are written.

enum Field : int {
    fIDCode,
    fAlarmSet,
    fAlarmTime,
    fDayNumber,
    fDayOfMonth,
    fDayOfWeek,
    fDaysLeft,
    fDaysWarning,
    fDeleted,
    fMailSent,
    fDesc,
    fDueDate,
    fDueTime,
    fLayer,
    fSharedLayerName,
    fEmail,
    fMinutesWarning,
    fMonthNumber,
    fOwner,
    fPeriod,
    fRecurrenceType,
    fRecurring,
    fStartDate,
    fWeekDays,
    fSharedEvent,
    fExecFile,
    fFilename,
    fWavFile,
    fPlayWav,
    fShareWithSpecific,
    fShareNames,
    kFieldCount
};

// Written as "DayNumber"; the reader has always asked for "Daynumber", which
// only works because tags are matched without regard to case.
constexpr std::array<std::string_view, kFieldCount> kTags = {
    "IDCode",         "AlarmSet",       "AlarmTime",   "DayNumber", "DayOfMonth",
    "DayOfWeek",      "DaysLeft",       "DaysWarning", "Deleted",   "MailSent",
    "Desc",           "DueDate",        "DueTime",     "Layer",     "SharedLayerName",
    "Email",          "MinutesWarning", "MonthNumber", "Owner",     "Period",
    "RecurrenceType", "Recurring",      "StartDate",   "WeekDays",  "SharedEvent",
    "ExecFile",       "Filename",       "WavFile",     "PlayWav",   "ShareWithSpecific",
    "ShareNames"};

constexpr std::size_t kMaxTagLength = 17; // "ShareWithSpecific"

// "\t\t<Tag>" and "</Tag>\r\n" for the writer; the longer of the two is
// the tag and five more bytes.
constexpr std::size_t kTagTextCapacity = kMaxTagLength + 8;
static_assert(kTagTextCapacity >= kMaxTagLength + 5);

struct TagText {
    std::array<char, kTagTextCapacity> text{};
    std::size_t size = 0;
};

struct TagTexts {
    std::array<TagText, kFieldCount> open;
    std::array<TagText, kFieldCount> close;
    std::size_t total = 0; // all of them together
    TagTexts() {
        for (int f = 0; f < kFieldCount; ++f) {
            const std::string o = "\t\t<" + std::string(kTags[f]) + '>';
            const std::string c = "</" + std::string(kTags[f]) + ">\r\n";
            std::memcpy(open[f].text.data(), o.data(), o.size());
            open[f].size = o.size();
            std::memcpy(close[f].text.data(), c.data(), c.size());
            close[f].size = c.size();
            total += o.size() + c.size();
        }
    }
};

const TagTexts kTagTexts;

inline char lowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}

// Field names in lower case. Names are letters only, and for a letter L a
// byte b is L in either case exactly when (b | 0x20) equals lower-case L.
struct LowerTags {
    std::array<std::array<char, kMaxTagLength>, kFieldCount> names{};
    LowerTags() {
        for (int f = 0; f < kFieldCount; ++f) {
            for (std::size_t i = 0; i < kTags[f].size(); ++i) {
                names[f][i] = lowerAscii(kTags[f][i]);
            }
        }
    }
};

const LowerTags kLowerTags;

inline bool isName(const char* p, int f) {
    const char* lower = kLowerTags.names[f].data();
    const std::size_t n = kTags[f].size();
    for (std::size_t i = 0; i < n; ++i) {
        if (static_cast<char>(p[i] | 0x20) != lower[i]) {
            return false;
        }
    }
    return true;
}

// The next c in [p, end), or end. Gaps between tags are short, so a plain
// loop beats a library call here.
inline const char* scanTo(const char* p, const char* end, char c) {
    while (p < end && *p != c) {
        ++p;
    }
    return p;
}

bool equalsNoCase(const char* a, std::string_view b) {
    for (std::size_t i = 0; i < b.size(); ++i) {
        if (lowerAscii(a[i]) != lowerAscii(b[i])) {
            return false;
        }
    }
    return true;
}

// The field whose tag name is [name, name+len), ignoring case; -1 if none.
int fieldOfName(const char* name, std::size_t len) {
    // Few tags share a length, so a length check first rejects almost all.
    for (int f = 0; f < kFieldCount; ++f) {
        if (kTags[f].size() == len && isName(name, f)) {
            return f;
        }
    }
    return -1;
}

// First case-insensitive occurrence of needle (which starts with '<') in
// [from, end); nullptr when none.
const char* findTagNoCase(const char* from, const char* end, std::string_view needle) {
    while (from < end) {
        const auto* lt =
            static_cast<const char*>(std::memchr(from, '<', static_cast<std::size_t>(end - from)));
        if (lt == nullptr || static_cast<std::size_t>(end - lt) < needle.size()) {
            return nullptr;
        }
        if (equalsNoCase(lt, needle)) {
            return lt;
        }
        from = lt + 1;
    }
    return nullptr;
}

// Removes every case-insensitive occurrence of needle, left to right.
QByteArray removeAllNoCase(QByteArrayView text, std::string_view needle) {
    QByteArray out;
    out.reserve(text.size());
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end) {
        const char* hit = findTagNoCase(p, end, needle);
        if (hit == nullptr) {
            out.append(p, end - p);
            break;
        }
        out.append(p, hit - p);
        p = hit + needle.size();
    }
    return out;
}

// ---------------------------------------------------------------------------
// Windows-1252 tables, taken from the system's decoder once.

struct AnsiTables {
    std::array<char16_t, 256> toUnicode{};
    std::vector<unsigned char> fromUnicode; // indexed by UTF-16 code unit
    AnsiTables() : fromUnicode(0x10000, static_cast<unsigned char>('?')) {
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
};

const AnsiTables& ansi() {
    static const AnsiTables tables;
    return tables;
}

// ---------------------------------------------------------------------------
// Dates without QDate: the loader and the writer handle two dates per event.

constexpr qint64 kSecondsPerDay = 86400;

constexpr qint64 daysFromCivil(qint64 y, unsigned m, unsigned d) {
    y -= m <= 2 ? 1 : 0;
    const qint64 era = (y >= 0 ? y : y - 399) / 400;
    const auto yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<qint64>(doe) - 719468;
}

constexpr qint64 kEpoch = daysFromCivil(1899, 12, 30);

struct Civil {
    qint64 y;
    unsigned m;
    unsigned d;
};

constexpr Civil civilFromDays(qint64 z) {
    z += 719468;
    const qint64 era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const qint64 y = static_cast<qint64>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    return {y + (m <= 2 ? 1 : 0), m, d};
}

bool isLeap(qint64 y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

unsigned daysInMonth(qint64 y, unsigned m) {
    static constexpr std::array<unsigned, 12> kDays = {31, 28, 31, 30, 31, 30,
                                                       31, 31, 30, 31, 30, 31};
    return m == 2 && isLeap(y) ? 29 : kDays[m - 1];
}

// The same split into day and rounded seconds as the shared date formatting.
struct Split {
    qint64 day;
    qint64 seconds;
};

Split splitValue(DateValue v) {
    if (!std::isfinite(v)) {
        v = 0;
    }
    v = std::clamp(v, -4.0e6, 4.0e6);
    double whole = 0;
    const double frac = std::modf(v, &whole);
    Split s{static_cast<qint64>(whole), std::llround(std::fabs(frac) * kSecondsPerDay)};
    if (s.seconds >= kSecondsPerDay) {
        s.seconds -= kSecondsPerDay;
        s.day += 1;
    }
    return s;
}

DateValue joinValue(qint64 day, qint64 seconds) {
    const double t = static_cast<double>(seconds) / kSecondsPerDay;
    return day >= 0 ? static_cast<double>(day) + t : static_cast<double>(day) - t;
}

inline void put2(char* p, unsigned v) {
    p[0] = static_cast<char>('0' + v / 10);
    p[1] = static_cast<char>('0' + v % 10);
}

// Writes "YYYY-MM-DD" (and " HH:MM") at p and returns the end; null when
// the year needs the shared formatter.
char* writeFast(char* buf, DateValue v, bool withTime) {
    const Split s = splitValue(v);
    const Civil c = civilFromDays(s.day + kEpoch);
    if (c.y < 1 || c.y > 9999) {
        return nullptr;
    }
    const auto y = static_cast<unsigned>(c.y);
    put2(buf, y / 100);
    put2(buf + 2, y % 100);
    buf[4] = '-';
    put2(buf + 5, c.m);
    buf[7] = '-';
    put2(buf + 8, c.d);
    if (!withTime) {
        return buf + 10;
    }
    buf[10] = ' ';
    put2(buf + 11, static_cast<unsigned>(s.seconds / 3600));
    buf[13] = ':';
    put2(buf + 14, static_cast<unsigned>(s.seconds / 60 % 60));
    return buf + 16;
}

inline bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" exactly, as the writer writes them.
std::optional<DateValue> parseWrittenDate(QByteArrayView t) {
    if (t.size() != 10 && t.size() != 16) {
        return std::nullopt;
    }
    const char* p = t.data();
    static constexpr std::array<int, 8> kDigitPos = {0, 1, 2, 3, 5, 6, 8, 9};
    for (int i : kDigitPos) {
        if (!isDigit(p[i])) {
            return std::nullopt;
        }
    }
    if (p[4] != '-' || p[7] != '-') {
        return std::nullopt;
    }
    const int y = (p[0] - '0') * 1000 + (p[1] - '0') * 100 + (p[2] - '0') * 10 + (p[3] - '0');
    const unsigned m = static_cast<unsigned>((p[5] - '0') * 10 + (p[6] - '0'));
    const unsigned d = static_cast<unsigned>((p[8] - '0') * 10 + (p[9] - '0'));
    if (y < kMinYear || m < 1 || m > 12 || d < 1 || d > daysInMonth(y, m)) {
        return std::nullopt;
    }
    qint64 seconds = 0;
    if (t.size() == 16) {
        if (p[10] != ' ' || p[13] != ':' || !isDigit(p[11]) || !isDigit(p[12]) || !isDigit(p[14]) ||
            !isDigit(p[15])) {
            return std::nullopt;
        }
        const int h = (p[11] - '0') * 10 + (p[12] - '0');
        const int mi = (p[14] - '0') * 10 + (p[15] - '0');
        if (h > 23 || mi > 59) {
            return std::nullopt;
        }
        seconds = h * 3600 + mi * 60;
    }
    return joinValue(daysFromCivil(y, m, d) - kEpoch, seconds);
}

// A general date-time text: the written forms first, then what the shared
// parser and a bare time of day accept. Throws Type mismatch otherwise.
DateValue parseDateTime(QByteArrayView t) {
    if (std::optional<DateValue> v = parseWrittenDate(t)) {
        return *v;
    }
    const QString text = FromAnsi(t);
    if (std::optional<DateValue> v = ParseDateValue(text)) {
        return *v;
    }
    for (const char* form : {"H:mm", "H:mm:ss"}) {
        const QTime time = QTime::fromString(text.trimmed(), QLatin1String(form));
        if (time.isValid()) {
            return FromQTime(time);
        }
    }
    throw RuntimeError::typeMismatch();
}

// ---------------------------------------------------------------------------
// Numbers: blanks around allowed, fractions rounded half to even, as the
// locale's integer conversion does.

inline bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

qint64 parseInteger(QByteArrayView t, qint64 min, qint64 max) {
    const char* p = t.data();
    const char* end = p + t.size();
    const char* b = p;
    const char* e = end;
    while (b < e && isBlank(*b)) {
        ++b;
    }
    while (e > b && isBlank(e[-1])) {
        --e;
    }
    qint64 value = 0;
    const auto [ptr, ec] = std::from_chars(b, e, value);
    if (b < e && ec == std::errc() && ptr == e && *b != '+') {
        if (value < min || value > max) {
            throw RuntimeError::overflow();
        }
        return value;
    }
    if (ec == std::errc::result_out_of_range) {
        throw RuntimeError::overflow();
    }
    // Anything else goes through the locale: "+5", "2.5", "1,000".
    const QString text = FromAnsi(QByteArrayView(b, e - b));
    bool ok = false;
    double d = QLocale().toDouble(text, &ok);
    if (!ok) {
        d = QLocale::c().toDouble(text, &ok);
    }
    if (!ok || !std::isfinite(d)) {
        throw RuntimeError::typeMismatch();
    }
    const double r = std::nearbyint(d);
    if (r < static_cast<double>(min) || r > static_cast<double>(max)) {
        throw RuntimeError::overflow();
    }
    return static_cast<qint64>(r);
}

int16_t toInt16(QByteArrayView t) {
    return static_cast<int16_t>(
        parseInteger(t, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
}

int32_t toInt32(QByteArrayView t) {
    return static_cast<int32_t>(
        parseInteger(t, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

inline bool toBoolean(QByteArrayView t) {
    return t.size() == 2 && t[0] == '-' && t[1] == '1';
}

// ---------------------------------------------------------------------------
// Writing: into a buffer sized beforehand for the block's longest form, so
// every field is a plain copy.

constexpr std::string_view kBlockStart = "<TVO2>\r\n\t<EVENT>\r\n";
constexpr std::string_view kBlockEnd = "\t</EVENT>\r\n</TVO2>";
constexpr std::size_t kMaxNumber = 12; // "-2147483648"
constexpr std::size_t kMaxDate = 24;   // the slow path's widest form
constexpr int kNumberFields = 13;
constexpr int kDateFields = 5;
constexpr int kBoolFields = 10;
constexpr std::size_t kSlack = kTagTextCapacity; // see put(char*, TagText)

inline char* put(char* p, std::string_view s) {
    std::memcpy(p, s.data(), s.size());
    return p + s.size();
}

// Copies the whole fixed-size array (a constant-size copy the compiler
// inlines) and moves on by the text's length; the block's buffer has slack
// for the bytes beyond it.
inline char* put(char* p, const TagText& t) {
    std::memcpy(p, t.text.data(), t.text.size());
    return p + t.size;
}

char* putAnsi(char* p, const QString& text) {
    const AnsiTables& t = ansi();
    const char16_t* src = reinterpret_cast<const char16_t*>(text.constData());
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = src[i];
        p[i] = c < 0x80 ? static_cast<char>(c) : static_cast<char>(t.fromUnicode[c]);
    }
    return p + n;
}

// Letters, digits and ": . , ?" are written as they are.
constexpr std::array<bool, 128> kKeptAsIs = [] {
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

constexpr std::array<PercentForm, 256> kAsciiForms = makePercentForms(true);
constexpr std::array<PercentForm, 256> kEscapedForms = makePercentForms(false);

char* putPercent(char* p, const QString& text) {
    const AnsiTables& t = ansi();
    for (const QChar qc : text) {
        const char16_t c = qc.unicode();
        const PercentForm& form = c < 0x80 ? kAsciiForms[c] : kEscapedForms[t.fromUnicode[c]];
        std::memcpy(p, form.text.data(), form.text.size());
        p += form.size;
    }
    return p;
}

inline char* putDateText(char* p, DateValue v, bool withTime) {
    if (char* q = writeFast(p, v, withTime)) {
        return q;
    }
    const QString slow = withTime ? FormatYMDHM(v) : FormatYMD(v);
    return putAnsi(p, slow.left(static_cast<qsizetype>(kMaxDate)));
}

struct FieldWriter {
    char* p;
    void text(int f, const QString& v) {
        p = putAnsi(put(p, kTagTexts.open[f]), v);
        p = put(p, kTagTexts.close[f]);
    }
    void percent(int f, const QString& v) {
        p = putPercent(put(p, kTagTexts.open[f]), v);
        p = put(p, kTagTexts.close[f]);
    }
    void number(int f, qint64 v) {
        p = put(p, kTagTexts.open[f]);
        p = std::to_chars(p, p + kMaxNumber, v).ptr;
        p = put(p, kTagTexts.close[f]);
    }
    void boolean(int f, bool v) {
        p = put(put(p, kTagTexts.open[f]), v ? std::string_view("-1") : std::string_view("0"));
        p = put(p, kTagTexts.close[f]);
    }
    void date(int f, DateValue v, bool withTime) {
        p = putDateText(put(p, kTagTexts.open[f]), v, withTime);
        p = put(p, kTagTexts.close[f]);
    }
};

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

// ---------------------------------------------------------------------------

bool ContainsNoCase(QByteArrayView hay, std::string_view needle) {
    return findTagNoCase(hay.data(), hay.data() + hay.size(), needle) != nullptr;
}

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
    putAnsi(out.data() + start, text);
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

void AppendYMD(QByteArray& out, DateValue v) {
    char buf[kMaxDate];
    out.append(buf, putDateText(buf, v, false) - buf);
}

void AppendYMDHM(QByteArray& out, DateValue v) {
    char buf[kMaxDate];
    out.append(buf, putDateText(buf, v, true) - buf);
}

void AppendBlock(QByteArray& out, const clsEvent& e) {
    const qsizetype bound = static_cast<qsizetype>(kBlockStart.size() + kBlockEnd.size() +
                                                   kTagTexts.total + kNumberFields * kMaxNumber +
                                                   kDateFields * kMaxDate + kBoolFields * 2) +
                            e.IDCode.size() + e.SharedLayerName.size() + e.Email.size() +
                            e.Owner().size() + e.Filename.size() + e.WavFile.size() +
                            3 * (e.Desc().size() + e.ShareNames.size());
    const qsizetype start = out.size();
    out.resize(start + bound);
    FieldWriter w{put(out.data() + start, kBlockStart)};
    w.text(fIDCode, e.IDCode);
    w.boolean(fAlarmSet, e.AlarmSet());
    w.date(fAlarmTime, e.AlarmTime(), true);
    w.number(fDayNumber, e.Daynumber());
    w.number(fDayOfMonth, e.DayOfMonth());
    w.number(fDayOfWeek, e.DayOfWeek());
    w.number(fDaysLeft, e.DaysLeft());
    w.number(fDaysWarning, e.DaysWarning());
    w.boolean(fDeleted, e.Deleted);
    w.boolean(fMailSent, e.MailSent);
    w.percent(fDesc, e.Desc());
    w.date(fDueDate, e.DueDate(), false);
    w.date(fDueTime, e.DueTime(), true);
    w.number(fLayer, e.Layer());
    w.text(fSharedLayerName, e.SharedLayerName);
    w.text(fEmail, e.Email);
    w.number(fMinutesWarning, e.MinutesWarning());
    w.number(fMonthNumber, e.MonthNumber());
    w.text(fOwner, e.Owner());
    w.number(fPeriod, e.Period());
    w.number(fRecurrenceType, e.RecurrenceType());
    w.boolean(fRecurring, e.Recurring());
    w.date(fStartDate, e.StartDate(), false);
    w.number(fWeekDays, e.WeekDays());
    w.boolean(fSharedEvent, e.SharedEvent);
    w.boolean(fExecFile, e.ExecFile);
    w.text(fFilename, e.Filename);
    w.text(fWavFile, e.WavFile);
    w.boolean(fPlayWav, e.PlayWav);
    w.boolean(fShareWithSpecific, e.ShareWithSpecific);
    w.percent(fShareNames, e.ShareNames);
    w.p = put(w.p, kBlockEnd);
    out.truncate(w.p - out.constData());
}

QString TextCache::Text(int slot, QByteArrayView raw) {
    if (raw.isEmpty()) {
        return {};
    }
    auto& entries = m_entries[slot];
    for (std::size_t i = 0; i < m_used[slot]; ++i) {
        if (entries[i].raw == raw) {
            return entries[i].text;
        }
    }
    // A new value takes a free entry, or the oldest one.
    std::size_t i = m_used[slot] < kEntries ? m_used[slot]++ : m_next[slot]++ % kEntries;
    entries[i].raw = raw.toByteArray();
    entries[i].text = FromAnsi(raw);
    return entries[i].text;
}

EventPtr ParseBlock(QByteArrayView block, const QString& procedure, const QString& module,
                    TextCache* cache) {
    const char* begin = block.data();
    const char* end = begin + block.size();

    // One pass over the '<' of the block finds the first opening tag of
    // every field (a tag's first occurrence is always at some '<'). When the
    // next '<' after an opening tag is its closing tag, as in every written
    // file, the value is known at once and the pass goes on after the
    // closing tag: nothing in between can start another tag.
    std::array<const char*, kFieldCount> open{};
    std::array<const char*, kFieldCount> quickEnd{};
    int found = 0;
    int expected = 0; // fields usually come in the written order
    for (const char* p = begin; p < end && found < kFieldCount;) {
        const char* lt = scanTo(p, end, '<');
        if (lt == end) {
            break;
        }
        p = lt + 1;
        if (p == end || *p == '/') {
            continue;
        }
        const char* limit = p + std::min<std::ptrdiff_t>(end - p, kMaxTagLength + 1);
        const char* gt = scanTo(p, limit, '>');
        if (gt == limit) {
            continue;
        }
        const auto len = static_cast<std::size_t>(gt - p);
        int f = -1;
        if (expected < kFieldCount && kTags[expected].size() == len && isName(p, expected)) {
            f = expected;
        } else {
            f = fieldOfName(p, len);
        }
        if (f < 0 || open[f] != nullptr) {
            continue;
        }
        open[f] = lt;
        ++found;
        expected = f + 1;
        const char* valueStart = gt + 1;
        const char* next = scanTo(valueStart, end, '<');
        if (static_cast<std::size_t>(end - next) >= len + 3 && next[1] == '/' &&
            next[len + 2] == '>' && isName(next + 2, f)) {
            quickEnd[f] = next;
            p = next + len + 3;
        } else {
            p = valueStart;
        }
    }

    // The value of field f: from its opening tag to the first closing tag
    // after it (or the block's end), every opening and closing tag removed.
    char closeBuf[kMaxTagLength + 3];
    QByteArray scratch;
    auto value = [&](int f) -> QByteArrayView {
        const std::string_view tag = kTags[f];
        const char* valueStart = open[f] + tag.size() + 2;
        if (quickEnd[f] != nullptr) {
            return QByteArrayView(valueStart, quickEnd[f] - valueStart);
        }
        closeBuf[0] = '<';
        closeBuf[1] = '/';
        std::memcpy(closeBuf + 2, tag.data(), tag.size());
        closeBuf[tag.size() + 2] = '>';
        const std::string_view closeTag(closeBuf, tag.size() + 3);
        const char* close = findTagNoCase(valueStart, end, closeTag);
        const char* valueEnd = close != nullptr ? close : end;
        const QByteArrayView inner(valueStart, valueEnd - valueStart);
        if (!inner.contains('<')) {
            return inner;
        }
        const std::string_view openTag(open[f], tag.size() + 2);
        scratch = removeAllNoCase(QByteArrayView(open[f], valueEnd - open[f]), openTag);
        scratch = removeAllNoCase(scratch, closeTag);
        return scratch;
    };

    auto text = [cache](int slot, QByteArrayView v) {
        return cache != nullptr ? cache->Text(slot, v) : FromAnsi(v);
    };

    auto event = std::make_shared<clsEvent>();
    clsEvent& e = *event;
    for (int f = 0; f < kFieldCount; ++f) {
        try {
            // A missing tag is an empty value: fine for text and booleans,
            // a conversion error for numbers and dates.
            const QByteArrayView v = open[f] != nullptr ? value(f) : QByteArrayView();
            switch (f) {
            case fIDCode:
                e.IDCode = FromAnsi(v);
                break;
            case fAlarmSet:
                e.setAlarmSet(toBoolean(v));
                break;
            case fAlarmTime:
                e.setAlarmTime(parseDateTime(v));
                break;
            case fDayNumber:
                e.setDaynumber(toInt16(v));
                break;
            case fDayOfMonth:
                e.setDayOfMonth(toInt16(v));
                break;
            case fDayOfWeek:
                e.setDayOfWeek(toInt16(v));
                break;
            case fDaysLeft:
                e.setDaysLeft(toInt32(v));
                break;
            case fDaysWarning:
                e.setDaysWarning(toInt16(v));
                break;
            case fDeleted:
                e.Deleted = toBoolean(v);
                break;
            case fMailSent:
                e.MailSent = toBoolean(v);
                break;
            case fDesc:
                e.setDesc(PercentDecode(v));
                break;
            case fDueDate:
                e.setDueDate(parseDateTime(v));
                break;
            case fDueTime:
                e.setDueTime(parseDateTime(v));
                break;
            case fLayer:
                e.setLayer(toInt16(v));
                break;
            case fSharedLayerName:
                e.SharedLayerName = text(0, v);
                break;
            case fEmail:
                e.Email = text(1, v);
                break;
            case fMinutesWarning:
                e.setMinutesWarning(toInt16(v));
                break;
            case fMonthNumber:
                e.setMonthNumber(toInt16(v));
                break;
            case fOwner:
                e.setOwner(text(2, v));
                break;
            case fPeriod:
                e.setPeriod(toInt16(v));
                break;
            case fRecurrenceType:
                e.setRecurrenceType(toInt32(v));
                break;
            case fRecurring:
                e.setRecurring(toBoolean(v));
                break;
            case fStartDate:
                e.setStartDate(parseDateTime(v));
                break;
            case fWeekDays:
                e.setWeekDays(toInt16(v));
                break;
            case fSharedEvent:
                e.SharedEvent = toBoolean(v);
                break;
            case fExecFile:
                e.ExecFile = toBoolean(v);
                break;
            case fFilename:
                e.Filename = text(3, v);
                break;
            case fWavFile:
                e.WavFile = text(4, v);
                break;
            case fPlayWav:
                e.PlayWav = toBoolean(v);
                break;
            case fShareWithSpecific:
                e.ShareWithSpecific = toBoolean(v);
                break;
            case fShareNames:
                e.ShareNames = PercentDecode(v);
                break;
            default:
                break;
            }
        } catch (const RuntimeError& error) {
            Log().AddAction(error.logText(), procedure, module);
        }
    }
    return event;
}

} // namespace EventXmlCodec
