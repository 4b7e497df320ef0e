#include "app/dialogs/PagePrinter.h"

#include <QFontMetrics>
#include <QPagedPaintDevice>
#include <QPrinter>

#include <algorithm>
#include <climits>

PagePrinter::PagePrinter(QPagedPaintDevice& device)
    : m_device(device), m_bodyFont(QStringLiteral("Sans Serif"), 10),
      m_headingFont(QStringLiteral("Sans Serif"), 14, QFont::Bold) {}

bool PagePrinter::begin() {
    if (!m_painter.begin(&m_device)) {
        return false;
    }
    m_y = 0;
    return true;
}

void PagePrinter::heading(const QString& text) {
    print(text, m_headingFont);
}
void PagePrinter::line(const QString& text) {
    print(text, m_bodyFont);
}

void PagePrinter::row(const QString& label, const QString& text, const QString& labelSample) {
    const int indent =
        QFontMetrics(m_bodyFont, &m_device).horizontalAdvance(labelSample + QStringLiteral("  "));
    print(text, m_bodyFont, indent, label);
}

void PagePrinter::gap() {
    m_y += QFontMetrics(m_bodyFont, &m_device).lineSpacing();
}

void PagePrinter::newPage() {
    m_device.newPage();
    m_y = 0;
}

void PagePrinter::end() {
    if (m_painter.isActive()) {
        m_painter.end();
    }
}

void PagePrinter::print(const QString& text, const QFont& font, int indent, const QString& label) {
    m_painter.setFont(font);
    const int width = m_device.width() - indent;
    const int flags = Qt::TextWordWrap | Qt::TextExpandTabs | Qt::AlignLeft | Qt::AlignTop;
    const QRect needed = m_painter.boundingRect(QRect(0, 0, width, INT_MAX), flags, text);
    const int height = std::max(needed.height(), QFontMetrics(font, &m_device).height());
    if (m_y > 0 && m_y + height > m_device.height()) {
        newPage();
    }
    if (!label.isEmpty()) {
        m_painter.drawText(QRect(0, m_y, indent, height), flags, label);
    }
    m_painter.drawText(QRect(indent, m_y, width, height), flags, text);
    m_y += height;
}

QString PrinterNotReadyText(const QPrinter& printer) {
    QString name = printer.printerName();
    if (name.isEmpty()) {
        name = printer.outputFileName();
    }
    return QStringLiteral("Unable to print. ") + name + QStringLiteral(" not ready");
}
