#pragma once

#include <QLineEdit>
#include <QString>

// Small control makers shared by the event editor's source files.
namespace EventEditorWidgets {

inline QString S(const char* text) {
    return QString::fromUtf8(text);
}

// A line edit about chars digits wide.
inline QLineEdit* makeNumberBox(QWidget* parent, const QString& name, int chars) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setMaximumWidth(box->fontMetrics().horizontalAdvance(QLatin1Char('0')) * (chars + 1) + 16);
    return box;
}

} // namespace EventEditorWidgets
