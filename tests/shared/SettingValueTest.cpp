#include "shared/SettingValue.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

// What callers read out of a value: the conversions every option reader uses.
// Values read from the file keep their blanks: " 9000 ", "-1 ".
TEST(SettingValue, ConversionsGiveWhatReadersExpect) {
    // clang-format off
    const struct {
        SettingValue value;
        QString text;
        bool flag;
        int32_t number;
        int16_t number16;
    } cases[] = {
        {SettingValue(), "", false, 0, 0},           {SettingValue(9000), "9000", true, 9000, 9000},
        {SettingValue(-1), "-1", true, -1, -1},      {SettingValue(0), "0", false, 0, 0},
        {SettingValue(true), "True", true, -1, -1},  {SettingValue(false), "False", false, 0, 0},
        {SettingValue(" 9000 "), " 9000 ", true, 9000, 9000},
        {SettingValue("-1 "), "-1 ", true, -1, -1},  {SettingValue(" 0 "), " 0 ", false, 0, 0},
        {SettingValue(" tRuE "), " tRuE ", true, 0, 0},
        {SettingValue("C:\\Data"), "C:\\Data", false, 0, 0}, {SettingValue("  "), "  ", false, 0, 0},
        {SettingValue("2.5"), "2.5", true, 2, 2}, // rounds half to even
        {SettingValue(70000), "70000", true, 70000, 0}, // beyond 16 bits
        {SettingValue("9999999999"), "9999999999", true, 0, 0}, // beyond 32 bits
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(c.value.toText(), c.text);
        EXPECT_EQ(c.value.toBool(), c.flag);
        EXPECT_EQ(c.value.toInt(), c.number);
        EXPECT_EQ(c.value.toInt16(), c.number16);
    }
}

} // namespace
