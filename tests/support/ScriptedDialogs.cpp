#include "support/ScriptedDialogs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const char* const kKindNames[] = {"message",        "Yes/No question", "Retry/Cancel question",
                                  "input box",      "file chooser",    "save-file chooser",
                                  "folder chooser", "date picker"};

} // namespace

ScriptedDialogs& ScriptedDialogs::answer(AnswerKind kind, const QString& text, DateValue day) {
    m_answers.push_back({kind, text, day});
    return *this;
}

QStringList ScriptedDialogs::texts() const {
    QStringList out;
    for (const Shown& s : m_shown) {
        out << s.text;
    }
    return out;
}

QString ScriptedDialogs::lastText() const {
    return m_shown.isEmpty() ? QString() : m_shown.constLast().text;
}

void ScriptedDialogs::clear() {
    m_shown.clear();
    m_answers.clear();
}

std::optional<ScriptedDialogs::Answer>
ScriptedDialogs::take(Kind box, std::initializer_list<AnswerKind> fitting) {
    if (m_answers.empty()) {
        return std::nullopt;
    }
    const Answer a = m_answers.front();
    m_answers.pop_front();
    if (std::find(fitting.begin(), fitting.end(), a.kind) == fitting.end()) {
        ADD_FAILURE() << "scripted answer does not fit the " << kKindNames[int(box)] << " \""
                      << m_shown.constLast().text.toStdString() << '"';
        return std::nullopt;
    }
    return a;
}

void ScriptedDialogs::Message(const QString& text, const QString& title, Icon icon) {
    m_shown.append({Kind::Message, text, title, {}, {}, icon, false});
}

bool ScriptedDialogs::AskYesNo(const QString& text, const QString& title, bool defaultYes) {
    m_shown.append({Kind::YesNo, text, title, {}, {}, Icon::Question, defaultYes});
    const auto a = take(Kind::YesNo, {AnswerKind::Yes, AnswerKind::No});
    return a && a->kind == AnswerKind::Yes;
}

bool ScriptedDialogs::AskRetryCancel(const QString& text, const QString& title) {
    m_shown.append({Kind::RetryCancel, text, title, {}, {}, Icon::Warning, false});
    const auto a = take(Kind::RetryCancel, {AnswerKind::Retry, AnswerKind::Cancel});
    return a && a->kind == AnswerKind::Retry;
}

std::optional<QString> ScriptedDialogs::textAnswer(const Shown& box) {
    m_shown.append(box);
    const auto a = take(box.kind, {AnswerKind::Text, AnswerKind::Cancel});
    return a && a->kind == AnswerKind::Text ? std::optional<QString>(a->text) : std::nullopt;
}

std::optional<QString> ScriptedDialogs::InputBox(const QString& prompt, const QString& title,
                                                 const QString& defaultText) {
    return textAnswer({Kind::Input, prompt, title, defaultText, {}});
}

std::optional<QString> ScriptedDialogs::ChooseOpenFile(const QString& title,
                                                       const QString& startFolder,
                                                       const QString& filter) {
    return textAnswer({Kind::OpenFile, title, {}, filter, startFolder});
}

std::optional<QString> ScriptedDialogs::ChooseSaveFile(const QString& title,
                                                       const QString& suggestedPath,
                                                       const QString& filter) {
    return textAnswer({Kind::SaveFile, title, {}, filter, suggestedPath});
}

std::optional<QString> ScriptedDialogs::ChooseFolder(const QString& title,
                                                     const QString& startFolder) {
    return textAnswer({Kind::Folder, title, {}, {}, startFolder});
}

std::optional<DateValue> ScriptedDialogs::PickDate(const QString& prompt, DateValue initial) {
    m_shown.append({Kind::Date, prompt, {}, FormatYMD(initial), {}});
    const auto a = take(Kind::Date, {AnswerKind::Date, AnswerKind::Cancel});
    return a && a->kind == AnswerKind::Date ? std::optional<DateValue>(DateOnly(a->date))
                                            : std::nullopt;
}
