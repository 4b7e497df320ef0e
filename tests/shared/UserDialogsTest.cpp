#include "shared/UserDialogs.h"

#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <gtest/gtest-spi.h>
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

TEST(ScriptedDialogs, AnswersInOrderAndRecordsEveryBox) {
    ScriptedDialogs d;
    d.answerYes().answerText("Buy milk").answerRetry().answerDate(D("2009-03-05 10:30"));
    UserDialogs& ui = d;

    EXPECT_TRUE(ui.AskYesNo("Delete?"));
    EXPECT_EQ(ui.InputBox("Enter a todo item:", "Enter a task"),
              std::optional<QString>("Buy milk"));
    EXPECT_TRUE(ui.AskRetryCancel("Disk full"));
    EXPECT_EQ(ui.PickDate("Enter start date for this event", D("2009-01-01")), D("2009-03-05"));
    ui.Message("Done");

    EXPECT_TRUE(d.allAnswersUsed());
    EXPECT_EQ(d.texts(), (QStringList{"Delete?", "Enter a todo item:", "Disk full",
                                      "Enter start date for this event", "Done"}));
    EXPECT_EQ(d.shown().at(1).title, QStringLiteral("Enter a task"));
    EXPECT_EQ(d.shown().at(3).extra, QStringLiteral("2009-01-01"));
    EXPECT_EQ(d.lastText(), QStringLiteral("Done"));
}

TEST(ScriptedDialogs, EmptyQueueGivesCautiousAnswers) {
    ScriptedDialogs d;
    EXPECT_FALSE(d.AskYesNo("Sure?", {}, true));
    EXPECT_FALSE(d.AskRetryCancel("Retry?", {}));
    EXPECT_FALSE(d.InputBox("Name?", {}, "x").has_value());
    EXPECT_FALSE(d.ChooseOpenFile("Pick", "/tmp", "WAV files (*.wav)|*.wav").has_value());
    EXPECT_FALSE(d.ChooseFolder("Folder", "/tmp").has_value());
    EXPECT_FALSE(d.PickDate("When?", D("2009-01-01")).has_value());
    EXPECT_EQ(d.count(), 6);
    EXPECT_EQ(d.shown().at(3).folder, QStringLiteral("/tmp"));
    EXPECT_EQ(d.shown().at(3).extra, QStringLiteral("WAV files (*.wav)|*.wav"));
}

TEST(ScriptedDialogs, AnswerOfTheWrongKindFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(
        {
            ScriptedDialogs d;
            d.answerText("oops");
            EXPECT_FALSE(d.AskYesNo("Sure?", {}, true));
        },
        "does not fit the Yes/No question");
}

TEST(ScriptedDialogs, CancelAndAcceptedEmptyInputDiffer) {
    ScriptedDialogs d;
    d.answerCancel().answerText("");
    EXPECT_FALSE(d.InputBox("a", {}, {}).has_value());
    EXPECT_EQ(d.InputBox("b", {}, {}), std::optional<QString>(QString()));
}

} // namespace
