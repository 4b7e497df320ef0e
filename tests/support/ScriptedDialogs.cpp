#include "support/ScriptedDialogs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const char* KindName(ScriptedDialogs::Kind kind) {
    switch (kind) {
    case ScriptedDialogs::Kind::Message:
        return "message";
    case ScriptedDialogs::Kind::YesNo:
        return "Yes/No question";
    case ScriptedDialogs::Kind::RetryCancel:
        return "Retry/Cancel question";
    case ScriptedDialogs::Kind::Input:
        return "input box";
    case ScriptedDialogs::Kind::OpenFile:
        return "file chooser";
    case ScriptedDialogs::Kind::SaveFile:
        return "save-file chooser";
    case ScriptedDialogs::Kind::Folder:
        return "folder chooser";
    case ScriptedDialogs::Kind::Date:
        return "date picker";
    }
    return "box";
}

} // namespace

ScriptedDialogs& ScriptedDialogs::answerYes() {
    m_answers.push_back({AnswerKind::Yes, {}});
    return *this;
}

ScriptedDialogs& ScriptedDialogs::answerNo() {
    m_answers.push_back({AnswerKind::No, {}});
    return *this;
}

ScriptedDialogs& ScriptedDialogs::answerRetry() {
    m_answers.push_back({AnswerKind::Retry, {}});
    return *this;
}

ScriptedDialogs& ScriptedDialogs::answerCancel() {
    m_answers.push_back({AnswerKind::Cancel, {}});
    return *this;
}

ScriptedDialogs& ScriptedDialogs::answerText(const QString& text) {
    m_answers.push_back({AnswerKind::Text, text});
    return *this;
}

ScriptedDialogs& ScriptedDialogs::answerDate(DateValue day) {
    m_answers.push_back({AnswerKind::Date, {}, day});
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
        ADD_FAILURE() << "scripted answer does not fit the " << KindName(box) << " \""
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

std::optional<QString> ScriptedDialogs::InputBox(const QString& prompt, const QString& title,
                                                 const QString& defaultText) {
    m_shown.append({Kind::Input, prompt, title, defaultText, {}, Icon::None, false});
    const auto a = take(Kind::Input, {AnswerKind::Text, AnswerKind::Cancel});
    if (a && a->kind == AnswerKind::Text) {
        return a->text;
    }
    return std::nullopt;
}

std::optional<QString> ScriptedDialogs::ChooseOpenFile(const QString& title,
                                                       const QString& startFolder,
                                                       const QString& filter) {
    m_shown.append({Kind::OpenFile, title, {}, filter, startFolder, Icon::None, false});
    const auto a = take(Kind::OpenFile, {AnswerKind::Text, AnswerKind::Cancel});
    if (a && a->kind == AnswerKind::Text) {
        return a->text;
    }
    return std::nullopt;
}

std::optional<QString> ScriptedDialogs::ChooseSaveFile(const QString& title,
                                                       const QString& suggestedPath,
                                                       const QString& filter) {
    m_shown.append({Kind::SaveFile, title, {}, filter, suggestedPath, Icon::None, false});
    const auto a = take(Kind::SaveFile, {AnswerKind::Text, AnswerKind::Cancel});
    if (a && a->kind == AnswerKind::Text) {
        return a->text;
    }
    return std::nullopt;
}

std::optional<QString> ScriptedDialogs::ChooseFolder(const QString& title,
                                                     const QString& startFolder) {
    m_shown.append({Kind::Folder, title, {}, {}, startFolder, Icon::None, false});
    const auto a = take(Kind::Folder, {AnswerKind::Text, AnswerKind::Cancel});
    if (a && a->kind == AnswerKind::Text) {
        return a->text;
    }
    return std::nullopt;
}

std::optional<DateValue> ScriptedDialogs::PickDate(const QString& prompt, DateValue initial) {
    m_shown.append({Kind::Date, prompt, {}, FormatYMD(initial), {}, Icon::None, false});
    const auto a = take(Kind::Date, {AnswerKind::Date, AnswerKind::Cancel});
    if (a && a->kind == AnswerKind::Date) {
        return DateOnly(a->date);
    }
    return std::nullopt;
}
