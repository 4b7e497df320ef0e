#pragma once

#include <QString>

#include <cstdint>

// One option's value as the settings store keeps it: empty, text, a 32-bit
// integer or a boolean. Readers convert it themselves and must accept numbers
// held as text with blanks around them (values read from the file stay text).
class SettingValue {
public:
    enum class Type { Empty, Text, Integer, Boolean };

    SettingValue() = default;
    SettingValue(const QString& text); // NOLINT(google-explicit-constructor)
    SettingValue(const char* text);    // NOLINT(google-explicit-constructor)
    SettingValue(int32_t number);      // NOLINT(google-explicit-constructor)
    SettingValue(bool flag);           // NOLINT(google-explicit-constructor)

    Type type() const { return m_type; }
    bool isEmpty() const { return m_type == Type::Empty; }
    bool isText() const { return m_type == Type::Text; }
    bool isInteger() const { return m_type == Type::Integer; }
    bool isBoolean() const { return m_type == Type::Boolean; }

    // Plain text form: text as it is, integers in decimal, booleans "True" /
    // "False", empty as "".
    QString toText() const;
    // True for a non-zero number (integer, or text that is a number with
    // blanks around it), for boolean true and for the text "True" in any case.
    bool toBool() const;
    // The number held as integer or as text with blanks around it (a decimal
    // fraction is rounded half to even); boolean true is -1; anything else,
    // and a number beyond 32 bits, gives 0.
    int32_t toInt() const;
    // As toInt, and 0 beyond the 16-bit range.
    int16_t toInt16() const;

    // Same type and same contents.
    bool operator==(const SettingValue& other) const = default;

private:
    Type m_type = Type::Empty;
    QString m_text;
    int32_t m_number = 0;
};
