#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

// Field names of the event record and the case-insensitive tag search the
// block reader relies on. Internal to the event record format.
namespace EventXmlCodec::detail {

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
inline constexpr std::array<std::string_view, kFieldCount> kTags = {
    "IDCode",         "AlarmSet",       "AlarmTime",   "DayNumber", "DayOfMonth",
    "DayOfWeek",      "DaysLeft",       "DaysWarning", "Deleted",   "MailSent",
    "Desc",           "DueDate",        "DueTime",     "Layer",     "SharedLayerName",
    "Email",          "MinutesWarning", "MonthNumber", "Owner",     "Period",
    "RecurrenceType", "Recurring",      "StartDate",   "WeekDays",  "SharedEvent",
    "ExecFile",       "Filename",       "WavFile",     "PlayWav",   "ShareWithSpecific",
    "ShareNames"};

inline constexpr std::size_t kMaxTagLength = 17; // "ShareWithSpecific"

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

inline const LowerTags kLowerTags;

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

inline bool equalsNoCase(const char* a, std::string_view b) {
    for (std::size_t i = 0; i < b.size(); ++i) {
        if (lowerAscii(a[i]) != lowerAscii(b[i])) {
            return false;
        }
    }
    return true;
}

// The field whose tag name is [name, name+len), ignoring case; -1 if none.
inline int fieldOfName(const char* name, std::size_t len) {
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
inline const char* findTagNoCase(const char* from, const char* end, std::string_view needle) {
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
QByteArray removeAllNoCase(QByteArrayView text, std::string_view needle);

} // namespace EventXmlCodec::detail
