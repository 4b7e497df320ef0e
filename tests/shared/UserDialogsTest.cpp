#include "shared/UserDialogs.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

TEST(QtFileFilter, TurnsDescriptionPatternPairsIntoQtFilters) {
    const struct {
        const char* given;
        const char* expected;
    } cases[] = {
        {"WAV files (*.wav)|*.wav", "WAV files (*.wav)"},
        {"Sounds|*.wav;*.mp3|All files|*.*", "Sounds (*.wav *.mp3);;All files (*.*)"},
        {"WAV files (*.wav);;All files (*)", "WAV files (*.wav);;All files (*)"},
        {"", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(QtFileFilter(QString::fromUtf8(c.given)), QString::fromUtf8(c.expected))
            << c.given;
    }
}

} // namespace
