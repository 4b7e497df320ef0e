#pragma once

#include <QLabel>

// The start-date field of the event editor's interval tabs: a framed,
// underlined label that takes the keyboard focus and reports a click, Space
// or Enter as activated(); the editor then asks for a date and writes it in.
class StartDateLabel : public QLabel {
    Q_OBJECT
public:
    // The field's tool tip, and the prompt of the date picker it opens.
    static constexpr const char* kPrompt = "Enter start date for this event";

    explicit StartDateLabel(const QString& name, QWidget* parent = nullptr);

signals:
    void activated();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
