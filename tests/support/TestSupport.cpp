#include "support/TestSupport.h"

#include "shared/AppPaths.h"
#include "shared/Clock.h"

#include <QDir>
#include <QFile>

TempHome::TempHome() {
    m_hadHome = qEnvironmentVariableIsSet(AppPaths::kHomeVariable);
    m_oldHome = qgetenv(AppPaths::kHomeVariable);
    qputenv(AppPaths::kHomeVariable, QFile::encodeName(m_dir.path()));
}

TempHome::~TempHome() {
    if (m_hadHome) {
        qputenv(AppPaths::kHomeVariable, m_oldHome);
    } else {
        qunsetenv(AppPaths::kHomeVariable);
    }
}

QString TempHome::file(const QString& name) const {
    return AppPaths::JoinPath(path(), name);
}

FixedClock::FixedClock(DateValue now) {
    Clock::setFixed(now);
}

FixedClock::FixedClock(const QString& yyyyMmDdHhMm) {
    Clock::setFixed(D(yyyyMmDdHhMm));
}

FixedClock::~FixedClock() {
    Clock::reset();
}

DateValue D(const QString& text) {
    const std::optional<DateValue> v = ParseDateValue(text);
    EXPECT_TRUE(v.has_value()) << "not a date: " << text.toStdString();
    return v.value_or(0);
}

QByteArray ReadFileBytes(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return {};
    }
    return f.readAll();
}

bool WriteFileBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
