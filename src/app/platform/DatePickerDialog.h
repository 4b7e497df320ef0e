#pragma once

#include <QDate>
#include <QDialog>

class QCalendarWidget;

// The date picker: a prompt above a month calendar, with OK and Cancel.
// A double click or Enter on a day accepts it.
class DatePickerDialog : public QDialog {
    Q_OBJECT
public:
    DatePickerDialog(const QString& prompt, const QDate& initial, QWidget* parent = nullptr);

    QDate selectedDate() const;

private:
    QCalendarWidget* m_calendar;
};
