#include "app/platform/QtUserDialogs.h"

#include "app/platform/DatePickerDialog.h"
#include "shared/AppInfo.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace {

QMessageBox::Icon BoxIcon(UserDialogs::Icon icon) {
    switch (icon) {
    case UserDialogs::Icon::None:
        return QMessageBox::NoIcon;
    case UserDialogs::Icon::Information:
        return QMessageBox::Information;
    case UserDialogs::Icon::Warning:
        return QMessageBox::Warning;
    case UserDialogs::Icon::Critical:
        return QMessageBox::Critical;
    case UserDialogs::Icon::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

} // namespace

QtUserDialogs::QtUserDialogs(QWidget* parent) : m_parent(parent) {}

QString QtUserDialogs::TitleOr(const QString& title) {
    return title.isEmpty() ? AppInfo::Title() : title;
}

QString QtUserDialogs::DisplayText(const QString& text) {
    QString s = text;
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    s.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return s;
}

void QtUserDialogs::Message(const QString& text, const QString& title, Icon icon) {
    QMessageBox box(BoxIcon(icon), TitleOr(title), DisplayText(text), QMessageBox::Ok, m_parent);
    box.exec();
}

bool QtUserDialogs::AskYesNo(const QString& text, const QString& title, bool defaultYes) {
    QMessageBox box(QMessageBox::Question, TitleOr(title), DisplayText(text),
                    QMessageBox::Yes | QMessageBox::No, m_parent);
    box.setDefaultButton(defaultYes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

bool QtUserDialogs::AskRetryCancel(const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::Warning, TitleOr(title), DisplayText(text),
                    QMessageBox::Retry | QMessageBox::Cancel, m_parent);
    box.setDefaultButton(QMessageBox::Retry);
    box.setEscapeButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Retry;
}

std::optional<QString> QtUserDialogs::InputBox(const QString& prompt, const QString& title,
                                               const QString& defaultText) {
    // Over the window the user works in, and as wide as it (up to a long
    // line), so that the entry of a task or a search term is as wide as the
    // list it goes into.
    QWidget* over =
        QApplication::activeWindow() != nullptr ? QApplication::activeWindow() : m_parent.data();
    QInputDialog box(over);
    box.setWindowTitle(TitleOr(title));
    box.setLabelText(DisplayText(prompt));
    box.setTextValue(defaultText);
    if (over != nullptr) {
        constexpr int kWidest = 720;
        box.resize(std::max(box.sizeHint().width(), std::min(over->width(), kWidest)),
                   box.sizeHint().height());
    }
    if (box.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return box.textValue();
}

std::optional<QString> QtUserDialogs::ChooseOpenFile(const QString& title,
                                                     const QString& startFolder,
                                                     const QString& filter) {
    const QString chosen =
        QFileDialog::getOpenFileName(m_parent, TitleOr(title), startFolder, QtFileFilter(filter));
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    return QDir::toNativeSeparators(chosen);
}

std::optional<QString> QtUserDialogs::ChooseSaveFile(const QString& title,
                                                     const QString& suggestedPath,
                                                     const QString& filter) {
    const QString chosen =
        QFileDialog::getSaveFileName(m_parent, TitleOr(title), suggestedPath, QtFileFilter(filter));
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    return QDir::toNativeSeparators(chosen);
}

std::optional<QString> QtUserDialogs::ChooseFolder(const QString& title,
                                                   const QString& startFolder) {
    const QString chosen = QFileDialog::getExistingDirectory(m_parent, TitleOr(title), startFolder);
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    return QDir::toNativeSeparators(chosen);
}

std::optional<DateValue> QtUserDialogs::PickDate(const QString& prompt, DateValue initial) {
    DatePickerDialog box(DisplayText(prompt), ToQDate(initial), m_parent);
    if (box.exec() != QDialog::Accepted || !box.selectedDate().isValid()) {
        return std::nullopt;
    }
    return FromQDate(box.selectedDate());
}
