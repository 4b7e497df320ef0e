#include "support/TestSupport.h"

#include "shared/AppPaths.h"
#include "shared/Clock.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <sys/resource.h>

#include <csignal>

TempHome::TempHome() {
    const std::pair<const char*, QString> vars[] = {
        {AppPaths::kHomeVariable, m_dir.path()},
        {"XDG_CONFIG_HOME", m_dir.path() + QStringLiteral("/config")}};
    for (const auto& [name, value] : vars) {
        m_saved.push_back({name, qgetenv(name), qEnvironmentVariableIsSet(name)});
        qputenv(name, QFile::encodeName(value));
    }
}

TempHome::~TempHome() {
    for (const Saved& s : m_saved) {
        s.was ? qputenv(s.name, s.value) : qunsetenv(s.name);
    }
}

QString TempHome::file(const QString& name) const {
    return AppPaths::JoinPath(path(), name);
}

FixedClock::FixedClock(DateValue now) {
    Clock::setFixed(now);
}

FixedClock::FixedClock(const QString& yyyyMmDdHhMm) : FixedClock(D(yyyyMmDdHhMm)) {}

FixedClock::~FixedClock() {
    Clock::reset();
}

DateValue D(const QString& text) {
    const std::optional<DateValue> v = ParseDateValue(text);
    EXPECT_TRUE(v.has_value()) << "not a date: " << text.toStdString();
    return v.value_or(0);
}

EventPtr EventWithEveryField() {
    auto e = std::make_shared<clsEvent>();
    e->setDesc(
        QStringLiteral("Dentist 10:30, caf\u00e9 <b> & 100%\r\nroom 4.?\t;/-_~@\u20ac\u00ff"));
    e->setOwner(QStringLiteral("Ann"));
    e->IDCode = QStringLiteral("012345");
    e->setAlarmSet(true);
    e->setAlarmTime(D("1899-12-30 10:15"));
    e->setDaynumber(-2);
    e->setDayOfMonth(31);
    e->setDayOfWeek(7);
    e->setDaysWarning(3);
    e->setDueDate(D("2009-03-05 17:45"));
    e->setDueTime(D("1899-12-30 10:30"));
    e->setLayer(4);
    e->SharedLayerName = QStringLiteral("Work, home");
    e->Email = QStringLiteral("a@b.c;d@e.f");
    e->setMinutesWarning(15);
    e->setMonthNumber(13);
    e->setPeriod(2);
    e->setRecurrenceType(clsEvent::EveryXMonths);
    e->setRecurring(true);
    e->setStartDate(D("2008-01-31"));
    e->setWeekDays(254);
    e->SharedEvent = true;
    e->Filename = QStringLiteral("C:\\a b\\run.bat");
    e->WavFile = QStringLiteral("/snd/ding.wav");
    e->PlayWav = true;
    e->ShareWithSpecific = true;
    e->ShareNames = QStringLiteral("Bob\r\nCarl Jim\r\n");
    return e;
}

clsEvent RepeatingEvent(const RuleFields& r, const QString& desc) {
    clsEvent e;
    e.setDesc(desc);
    e.setRecurring(true);
    e.setRecurrenceType(r.type);
    e.setWeekDays(r.weekDays);
    e.setDayOfMonth(r.dayOfMonth);
    e.setMonthNumber(r.monthNumber);
    e.setPeriod(r.period);
    e.setDayOfWeek(r.dayOfWeek);
    e.setDaynumber(r.daynumber);
    e.setStartDate(D(QString::fromLatin1(r.start)));
    return e;
}

QList<DateValue> DueDatesUpTo(clsEvent event, DateValue last) {
    QList<DateValue> out;
    for (DateValue d = event.DueDate(); d <= last;) {
        out.append(d);
        event.CalcNextAfterDate(d + 1);
        if (event.DueDate() <= d) {
            break;
        }
        d = event.DueDate();
    }
    return out;
}

QByteArray ReadFileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool WriteFileBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}

QString PdfText(const QString& pdf) {
    QProcess process;
    process.start(QStringLiteral("pdftotext"),
                  {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    return process.waitForFinished(20000) ? QString::fromUtf8(process.readAllStandardOutput())
                                          : QString();
}

// Sets the soft file size limit and returns the one before.
static unsigned long long SwapFileSizeLimit(unsigned long long bytes) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const unsigned long long old = limit.rlim_cur;
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
    return old;
}

FileSizeLimit::FileSizeLimit(unsigned long long bytes)
    : m_old(SwapFileSizeLimit(bytes)), m_oldHandler(std::signal(SIGXFSZ, SIG_IGN)) {}

FileSizeLimit::~FileSizeLimit() {
    SwapFileSizeLimit(m_old);
    std::signal(SIGXFSZ, m_oldHandler);
}
