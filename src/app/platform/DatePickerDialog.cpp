#include "app/platform/DatePickerDialog.h"
#include "app/WindowFit.h"

#include "shared/AppInfo.h"

#include <QCalendarWidget>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

DatePickerDialog::DatePickerDialog(const QString& prompt, const QDate& initial, QWidget* parent)
    : QDialog(parent), m_calendar(new QCalendarWidget(this)) {
    setObjectName(QStringLiteral("DatePickerDialog"));
    setWindowTitle(AppInfo::Title());

    auto* label = new QLabel(prompt, this);
    label->setObjectName(QStringLiteral("lblPrompt"));
    label->setWordWrap(true);

    m_calendar->setObjectName(QStringLiteral("calDate"));
    m_calendar->setGridVisible(true);
    if (initial.isValid()) {
        m_calendar->setSelectedDate(initial);
    }
    connect(m_calendar, &QCalendarWidget::activated, this, &QDialog::accept);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_calendar);
    layout->addWidget(buttons);
    WindowFit::Apply(this, sizeHint());
}

QDate DatePickerDialog::selectedDate() const {
    return m_calendar->selectedDate();
}
