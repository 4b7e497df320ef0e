#pragma once

#include "shared/UserDialogs.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <deque>

// The dialog seam for tests: every box "shown" is recorded, and answers come
// from a queue filled by the test in the order the boxes will appear.
//
//   ScriptedDialogs dialogs;
//   dialogs.answerNo();                        // the next Yes/No gets No
//   dialogs.answerText("Buy milk");            // the next input box gets this
//   ... run the code ...
//   EXPECT_EQ(dialogs.texts(), QStringList{"Are you sure ...?", "Enter a todo item:"});
//   EXPECT_TRUE(dialogs.allAnswersUsed());
//
// With the queue empty, each box gets the cautious answer: OK, No, Cancel, and
// cancel for input boxes, choosers and the date picker. An answer of the wrong
// kind for the box at hand (a text for a Yes/No question) fails the test.
class ScriptedDialogs : public UserDialogs {
public:
    enum class Kind { Message, YesNo, RetryCancel, Input, OpenFile, SaveFile, Folder, Date };

    // One box as it was shown.
    struct Shown {
        Kind kind;
        QString text;   // message, question or prompt
        QString title;  // as passed (empty = application title)
        QString extra;  // input default, file filter, or the date picker's start day
        QString folder; // a chooser's start folder (or suggested name)
        Icon icon = Icon::None;
        bool defaultYes = false;
    };

    // Queue answers, consumed first in first out.
    ScriptedDialogs& answerYes() { return answer(AnswerKind::Yes); }
    ScriptedDialogs& answerNo() { return answer(AnswerKind::No); }
    ScriptedDialogs& answerRetry() { return answer(AnswerKind::Retry); }
    // Cancel for Retry/Cancel, an input box, a chooser or the date picker.
    ScriptedDialogs& answerCancel() { return answer(AnswerKind::Cancel); }
    // A typed text (input box), a chosen file or folder.
    ScriptedDialogs& answerText(const QString& text) { return answer(AnswerKind::Text, text); }
    ScriptedDialogs& answerDate(DateValue day) { return answer(AnswerKind::Date, {}, day); }

    // Every box shown so far, oldest first.
    const QList<Shown>& shown() const { return m_shown; }
    // The texts (messages, questions, prompts) of every box, oldest first.
    QStringList texts() const;
    // The text of the newest box, or "" when none was shown.
    QString lastText() const;
    qsizetype count() const { return m_shown.size(); }
    bool allAnswersUsed() const { return m_answers.empty(); }
    // Forgets what was shown and drops unused answers.
    void clear();

    void Message(const QString& text, const QString& title, Icon icon) override;
    bool AskYesNo(const QString& text, const QString& title, bool defaultYes) override;
    bool AskRetryCancel(const QString& text, const QString& title) override;
    std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                    const QString& defaultText) override;
    std::optional<QString> ChooseOpenFile(const QString& title, const QString& startFolder,
                                          const QString& filter) override;
    std::optional<QString> ChooseSaveFile(const QString& title, const QString& suggestedPath,
                                          const QString& filter) override;
    std::optional<QString> ChooseFolder(const QString& title, const QString& startFolder) override;
    std::optional<DateValue> PickDate(const QString& prompt, DateValue initial) override;

private:
    enum class AnswerKind { Yes, No, Retry, Cancel, Text, Date };
    struct Answer {
        AnswerKind kind;
        QString text;
        DateValue date = 0;
    };

    ScriptedDialogs& answer(AnswerKind kind, const QString& text = {}, DateValue day = 0);
    // Records a box answered by a text (input box, chooser) or Cancel.
    std::optional<QString> textAnswer(const Shown& box);

    // The next queued answer, if any; a wrong kind fails the test and is
    // treated as no answer.
    std::optional<Answer> take(Kind box, std::initializer_list<AnswerKind> fitting);

    QList<Shown> m_shown;
    std::deque<Answer> m_answers;
};
