#include "app/platform/QtUserDialogs.h"

#include "app/platform/DatePickerDialog.h"
#include "support/ModalHelper.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QCalendarWidget>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace {

// What a message box looked like when it came up.
struct SeenBox {
    QString text;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

// Answers the next message box with button and remembers how it looked.
void Answer(QMessageBox::StandardButton button, SeenBox* seen) {
    WhenModalAppears([button, seen](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        seen->text = box->text();
        seen->buttons = box->standardButtons();
        if (box->defaultButton() != nullptr) {
            seen->defaultButton = box->standardButton(box->defaultButton());
        }
        box->button(button)->click();
    });
}

// Plain messages and the default title are answered through the real
// program by tests/e2e (lib/family.sh waits for "Tarvo" boxes).
TEST(QtUserDialogs, QuestionsShowTheirButtonsAndDefaultAndReturnTheAnswer) {
    QtUserDialogs dialogs;
    SeenBox seen;
    Answer(QMessageBox::Yes, &seen);
    EXPECT_TRUE(dialogs.AskYesNo("Delete?\rAll of it?", {}, false));
    EXPECT_EQ(seen.text, "Delete?\nAll of it?");
    EXPECT_EQ(seen.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen.defaultButton, QMessageBox::No);
    Answer(QMessageBox::No, &seen);
    EXPECT_FALSE(dialogs.AskYesNo("Delete?", {}, true));
    EXPECT_EQ(seen.defaultButton, QMessageBox::Yes);

    Answer(QMessageBox::Retry, &seen);
    EXPECT_TRUE(dialogs.AskRetryCancel("Disk full", {}));
    EXPECT_EQ(seen.buttons, QMessageBox::Retry | QMessageBox::Cancel);
}

TEST(QtUserDialogs, InputBoxIsAsWideAsItsWindowAndGivesTheTypedText) {
    QWidget list;
    list.resize(560, 300);
    QtUserDialogs dialogs(&list);
    QString prompt;
    WhenModalAppears([&prompt](QWidget* w) {
        auto* box = qobject_cast<QInputDialog*>(w);
        ASSERT_NE(box, nullptr);
        prompt = box->labelText();
        EXPECT_GE(box->width(), 560) << "as wide as the window it is opened from";
        EXPECT_EQ(box->textValue(), "old");
        box->setTextValue("Buy milk");
        box->accept();
    });
    EXPECT_EQ(dialogs.InputBox("Enter a todo item:", "Enter a task", "old"),
              std::optional<QString>("Buy milk"));
    EXPECT_EQ(prompt, "Enter a todo item:");
}

TEST(QtUserDialogs, DatePickerStartsAtTheGivenDayAndReturnsTheChosenOne) {
    QtUserDialogs dialogs;
    WhenModalAppears([](QWidget* w) {
        auto* picker = qobject_cast<DatePickerDialog*>(w);
        ASSERT_NE(picker, nullptr);
        auto* calendar = picker->findChild<QCalendarWidget*>(QStringLiteral("calDate"));
        EXPECT_EQ(calendar->selectedDate(), QDate(2009, 3, 5));
        calendar->setSelectedDate(QDate(2009, 4, 1));
        picker->accept();
    });
    EXPECT_EQ(dialogs.PickDate("Enter start date for this event", D("2009-03-05 14:00")),
              std::optional<DateValue>(D("2009-04-01")));

    WhenModalAppears([](QWidget* w) { qobject_cast<QDialog*>(w)->reject(); });
    EXPECT_FALSE(dialogs.PickDate("x", D("2009-03-05")).has_value());
}

} // namespace
