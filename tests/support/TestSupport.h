#pragma once

#include "model/clsEvent.h"
#include "shared/DateValue.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

// A test's own home folder: TARVO_HOME points at a fresh temporary folder for
// the life of the object, and XDG_CONFIG_HOME at its "config" subfolder (where
// the login entry goes); the global logger writes nowhere.
class TempHome {
public:
    TempHome();
    ~TempHome();
    Q_DISABLE_COPY(TempHome)

    QString path() const { return m_dir.path(); }
    // path + separator + name
    QString file(const QString& name) const;

private:
    QTemporaryDir m_dir;
    struct Saved {
        const char* name;
        QByteArray value;
        bool was;
    };
    std::vector<Saved> m_saved;
};

// Fixes the clock for the life of the object and puts it back afterwards.
class FixedClock {
public:
    explicit FixedClock(DateValue now);
    explicit FixedClock(const QString& yyyyMmDdHhMm);
    ~FixedClock();
    Q_DISABLE_COPY(FixedClock)
};

// "YYYY-MM-DD" or "YYYY-MM-DD HH:MM" as a date value; fails the test when the
// text is not one.
DateValue D(const QString& text);

// Event "012345" of "Ann", with every field the event file and the iCalendar
// fields carry set away from its default, and awkward characters in its texts.
EventPtr EventWithEveryField();

// The rule fields of a repeating event.
struct RuleFields {
    int32_t type = 0;
    int16_t weekDays = 0, dayOfMonth = 0, monthNumber = 0, period = 0, dayOfWeek = 0, daynumber = 0;
    const char* start = "1899-12-30";
};
// A repeating event named desc with those fields; its due date is left at 0.
clsEvent RepeatingEvent(const RuleFields& rule, const QString& desc = QStringLiteral("x"));
// The event's due dates from its own up to last, each the next occurrence
// after the one before (the walk the program has always made).
QList<DateValue> DueDatesUpTo(clsEvent event, DateValue last);

QByteArray ReadFileBytes(const QString& path);
// The text of a PDF file as pdftotext lays it out; "" when it cannot be read.
QString PdfText(const QString& pdf);
bool WriteFileBytes(const QString& path, const QByteArray& bytes);

// Lets gtest print QStrings readably in failure messages.
void PrintTo(const QString& s, std::ostream* os);

// While the object lives, the process may write no file beyond `bytes`, so a
// save is cut off part-way as by a crash or a full disk (Unix only).
class FileSizeLimit {
public:
    explicit FileSizeLimit(unsigned long long bytes);
    ~FileSizeLimit();
    Q_DISABLE_COPY(FileSizeLimit)

private:
    unsigned long long m_old = 0;
    void (*m_oldHandler)(int) = nullptr;
};
