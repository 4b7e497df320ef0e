#pragma once

#include "shared/UserDialogs.h"

#include <QPointer>
#include <QWidget>

// The dialog seam with real Qt dialogs, modal to a parent window and titled
// with the application's title unless a title is given.
class QtUserDialogs : public UserDialogs {
public:
    explicit QtUserDialogs(QWidget* parent = nullptr);

    // The window the boxes are modal to (may change as windows come and go).
    void setParentWidget(QWidget* parent) { m_parent = parent; }
    QWidget* parentWidget() const { return m_parent; }

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

    // The title a box gets: the given one, else the application's title.
    static QString TitleOr(const QString& title);
    // Line breaks as the boxes show them: "\r\n" and a lone "\r" become "\n".
    static QString DisplayText(const QString& text);

private:
    QPointer<QWidget> m_parent;
};
