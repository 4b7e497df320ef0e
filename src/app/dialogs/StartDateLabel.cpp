#include "app/dialogs/StartDateLabel.h"

#include <QKeyEvent>
#include <QMouseEvent>

StartDateLabel::StartDateLabel(const QString& name, QWidget* parent) : QLabel(parent) {
    setObjectName(name);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(QString::fromLatin1(kPrompt));
    // Framed so that it reads as a field, and the frame changes colour with
    // the keyboard focus.
    setStyleSheet(QStringLiteral("QLabel { border: 1px solid palette(mid); padding: 1px 4px; }"
                                 "QLabel:focus { border: 1px solid palette(highlight); }"));
    setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("MM/DD/YYYY")) + 16);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}

void StartDateLabel::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    emit activated();
}

void StartDateLabel::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter) {
        // Taken here, so that Enter does not also press the editor's default
        // button.
        event->accept();
        emit activated();
        return;
    }
    QLabel::keyPressEvent(event);
}
