#include "shared/SettingValue.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

// What callers read out of a value: the conversions every option reader uses.
struct Conversion {
    const char* name;
    SettingValue value;
    QString text;
    bool flag;
    int32_t number;
    int16_t number16;
};

void PrintTo(const Conversion& c, std::ostream* os) {
    *os << c.name;
}

class SettingValueConversion : public ::testing::TestWithParam<Conversion> {};

TEST_P(SettingValueConversion, GivesWhatReadersExpect) {
    const Conversion& c = GetParam();
    EXPECT_EQ(c.value.toText(), c.text);
    EXPECT_EQ(c.value.toBool(), c.flag);
    EXPECT_EQ(c.value.toInt(), c.number);
    EXPECT_EQ(c.value.toInt16(), c.number16);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SettingValueConversion,
    ::testing::Values(
        Conversion{"empty", SettingValue(), "", false, 0, 0},
        Conversion{"integer", SettingValue(9000), "9000", true, 9000, 9000},
        Conversion{"minus_one", SettingValue(-1), "-1", true, -1, -1},
        Conversion{"integer_zero", SettingValue(0), "0", false, 0, 0},
        Conversion{"bool_true", SettingValue(true), "True", true, -1, -1},
        Conversion{"bool_false", SettingValue(false), "False", false, 0, 0},
        // Values read from the file keep their blanks: " 9000 ", "-1 ".
        Conversion{"text_number_with_blanks", SettingValue(" 9000 "), " 9000 ", true, 9000, 9000},
        Conversion{"text_minus_one_trailing_blank", SettingValue("-1 "), "-1 ", true, -1, -1},
        Conversion{"text_zero_with_blanks", SettingValue(" 0 "), " 0 ", false, 0, 0},
        Conversion{"text_true_any_case", SettingValue(" tRuE "), " tRuE ", true, 0, 0},
        Conversion{"text_word", SettingValue("C:\\Data"), "C:\\Data", false, 0, 0},
        Conversion{"blank_text", SettingValue("  "), "  ", false, 0, 0},
        Conversion{"text_fraction_rounds_half_even", SettingValue("2.5"), "2.5", true, 2, 2},
        Conversion{"beyond_16_bits", SettingValue(70000), "70000", true, 70000, 0},
        Conversion{"beyond_32_bits_text", SettingValue("9999999999"), "9999999999", true, 0, 0}),
    [](const ::testing::TestParamInfo<Conversion>& info) { return std::string(info.param.name); });

TEST(SettingValue, ComparesByTypeAndContents) {
    EXPECT_EQ(SettingValue("5"), SettingValue(QStringLiteral("5")));
    EXPECT_NE(SettingValue("5"), SettingValue(5));
    EXPECT_NE(SettingValue(true), SettingValue(-1));
}

} // namespace
