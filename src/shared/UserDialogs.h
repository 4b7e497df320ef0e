#pragma once

#include "shared/DateValue.h"

#include <QString>

#include <optional>

// Everything that asks the user something or tells the user something in a
// small modal box goes through this interface, so that core code stays free of
// windows and every such flow can be driven by a test. The Qt implementation
// (app/platform/QtUserDialogs) shows real dialogs; tests use ScriptedDialogs.
//
// An empty title means the application's title. Texts are shown exactly as
// given: a "\r" or "\r\n" inside a text is a line break.
class UserDialogs {
public:
    // The symbol beside a message; purely cosmetic.
    enum class Icon { None, Information, Warning, Critical, Question };

    virtual ~UserDialogs() = default;

    // A message with an OK button.
    virtual void Message(const QString& text, const QString& title = {},
                         Icon icon = Icon::Information) = 0;

    // A question with Yes and No buttons; true for Yes. defaultYes chooses the
    // button that Enter presses. Closing the box counts as No.
    virtual bool AskYesNo(const QString& text, const QString& title = {},
                          bool defaultYes = true) = 0;

    // A question with Retry and Cancel buttons; true for Retry. Closing the box
    // counts as Cancel.
    virtual bool AskRetryCancel(const QString& text, const QString& title = {}) = 0;

    // An input box with a prompt and a default answer. std::nullopt when the
    // user cancels; an accepted empty box gives an empty text.
    virtual std::optional<QString> InputBox(const QString& prompt, const QString& title = {},
                                            const QString& defaultText = {}) = 0;

    // Chooses an existing file to open. filter is either Qt's form
    // ("WAV files (*.wav);;All files (*)") or description|pattern pairs
    // ("WAV files (*.wav)|*.wav"); see QtFileFilter. std::nullopt on cancel.
    virtual std::optional<QString> ChooseOpenFile(const QString& title, const QString& startFolder,
                                                  const QString& filter) = 0;

    // Chooses the name of a file to write, starting at suggestedPath (a folder
    // or a full name); the filter as for ChooseOpenFile. std::nullopt on cancel.
    virtual std::optional<QString>
    ChooseSaveFile(const QString& title, const QString& suggestedPath, const QString& filter) = 0;

    // Chooses a folder; std::nullopt on cancel.
    virtual std::optional<QString> ChooseFolder(const QString& title,
                                                const QString& startFolder) = 0;

    // Picks a day, starting at initial (its time part is ignored); the result is
    // a whole day. std::nullopt on cancel.
    virtual std::optional<DateValue> PickDate(const QString& prompt, DateValue initial) = 0;
};

// A file filter in Qt's form. Pairs "description|pattern|description|pattern"
// become "description (pattern);;..." (the pattern is added only when the
// description does not already show it, and ";" between patterns becomes a
// blank); a filter without "|" is returned unchanged.
QString QtFileFilter(const QString& filter);
