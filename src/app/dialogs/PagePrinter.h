#pragma once

#include <QFont>
#include <QPainter>
#include <QString>

class QPagedPaintDevice;
class QPrinter;

// Prints a heading and lines of text down the pages of a printer (or a PDF
// writer), starting a new page when one is full. Tabs expand; a line too
// long for the page wraps at word boundaries.
class PagePrinter {
public:
    explicit PagePrinter(QPagedPaintDevice& device);

    // false when the device cannot be painted on (printer not ready, PDF file
    // not writable); nothing is printed then.
    bool begin();
    void heading(const QString& text);
    void line(const QString& text);
    // label in a first column as wide as labelSample; text beside it,
    // wrapped within its own column.
    void row(const QString& label, const QString& text, const QString& labelSample);
    // Vertical gap of about one line.
    void gap();
    void newPage();
    // Finishes the last page.
    void end();

    QPainter& painter() { return m_painter; }

private:
    void print(const QString& text, const QFont& font, int indent = 0, const QString& label = {});

    QPagedPaintDevice& m_device;
    QPainter m_painter;
    QFont m_bodyFont;
    QFont m_headingFont;
    int m_y = 0;
};

// "Unable to print. " + name + " not ready", naming the printer (or the PDF
// file when printing to one).
QString PrinterNotReadyText(const QPrinter& printer);
