#include "shared/SettingValue.h"

#include <cmath>
#include <limits>
#include <optional>

namespace {

// The number in a text with blanks around it, as a double; nullopt when the
// text is not a number.
std::optional<double> NumberInText(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty()) {
        return std::nullopt;
    }
    bool ok = false;
    const double d = t.toDouble(&ok);
    if (!ok || !std::isfinite(d)) {
        return std::nullopt;
    }
    return d;
}

} // namespace

SettingValue::SettingValue(const QString& text) : m_type(Type::Text), m_text(text) {}

SettingValue::SettingValue(const char* text)
    : m_type(Type::Text), m_text(QString::fromUtf8(text)) {}

SettingValue::SettingValue(int32_t number) : m_type(Type::Integer), m_number(number) {}

SettingValue::SettingValue(bool flag) : m_type(Type::Boolean), m_number(flag ? -1 : 0) {}

QString SettingValue::toText() const {
    switch (m_type) {
    case Type::Empty:
        return {};
    case Type::Text:
        return m_text;
    case Type::Integer:
        return QString::number(m_number);
    case Type::Boolean:
        return m_number != 0 ? QStringLiteral("True") : QStringLiteral("False");
    }
    return {};
}

bool SettingValue::toBool() const {
    switch (m_type) {
    case Type::Empty:
        return false;
    case Type::Integer:
    case Type::Boolean:
        return m_number != 0;
    case Type::Text: {
        if (m_text.trimmed().compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) {
            return true;
        }
        const auto d = NumberInText(m_text);
        return d && *d != 0.0;
    }
    }
    return false;
}

int32_t SettingValue::toInt() const {
    switch (m_type) {
    case Type::Empty:
        return 0;
    case Type::Integer:
    case Type::Boolean:
        return m_number;
    case Type::Text: {
        const auto d = NumberInText(m_text);
        if (!d) {
            return 0;
        }
        const double r = std::nearbyint(*d); // default rounding mode: half to even
        if (r < std::numeric_limits<int32_t>::min() || r > std::numeric_limits<int32_t>::max()) {
            return 0;
        }
        return static_cast<int32_t>(r);
    }
    }
    return 0;
}

int16_t SettingValue::toInt16() const {
    const int32_t n = toInt();
    if (n < std::numeric_limits<int16_t>::min() || n > std::numeric_limits<int16_t>::max()) {
        return 0;
    }
    return static_cast<int16_t>(n);
}
