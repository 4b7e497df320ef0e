#include "storage/EventXmlCodec.h"

#include "shared/RuntimeError.h"
#include "shared/cSharedLogging.h"
#include "storage/EventXmlDates.h"
#include "storage/EventXmlTags.h"
#include "storage/EventXmlText.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace EventXmlCodec {

using namespace detail;

namespace {

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
constexpr int kNumberFields = 13;
constexpr int kDateFields = 5;
constexpr int kBoolFields = 10;

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

} // namespace

// ---------------------------------------------------------------------------

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

bool TextCache::CountError() {
    return ++m_errors <= kMaxLoggedErrors;
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

// Sets field f of e from its value v (empty for a missing tag); a value
// that does not convert throws RuntimeError.
void setField(clsEvent& e, int f, QByteArrayView v, TextCache* cache) {
    auto text = [cache](int slot, QByteArrayView raw) {
        return cache != nullptr ? cache->Text(slot, raw) : FromAnsi(raw);
    };
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
}

// What a missing tag gives for each field: nothing, or the conversion error
// of an empty value. Found once, by trying it, so that a file of events
// without most of their tags costs no exception per missing tag.
const std::array<QString, kFieldCount>& missingFieldErrors() {
    static const std::array<QString, kFieldCount> errors = [] {
        std::array<QString, kFieldCount> texts;
        clsEvent probe;
        for (int f = 0; f < kFieldCount; ++f) {
            try {
                setField(probe, f, QByteArrayView(), nullptr);
            } catch (const RuntimeError& error) {
                texts[f] = error.logText();
            }
        }
        return texts;
    }();
    return errors;
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

    auto report = [&](const QString& error) {
        if (cache == nullptr || cache->CountError()) {
            Log().AddAction(error, procedure, module);
        }
    };
    const std::array<QString, kFieldCount>& missing = missingFieldErrors();
    auto event = std::make_shared<clsEvent>();
    clsEvent& e = *event;
    for (int f = 0; f < kFieldCount; ++f) {
        // A missing tag is an empty value: fine for text and booleans,
        // a conversion error for numbers and dates.
        if (open[f] == nullptr) {
            if (!missing[f].isEmpty()) {
                report(missing[f]);
            } else {
                setField(e, f, QByteArrayView(), cache);
            }
            continue;
        }
        try {
            setField(e, f, value(f), cache);
        } catch (const RuntimeError& error) {
            report(error.logText());
        }
    }
    return event;
}

} // namespace EventXmlCodec
