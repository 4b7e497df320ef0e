#pragma once

#include <QDialog>
#include <QString>

class QTextBrowser;

// A read-only window inside the program for the log, an error report and the
// built-in help page, so that none of them depends on the desktop having a
// program to open them. One window per name: showing a name again refreshes
// and raises the window that is already open.
class TextViewer : public QDialog {
    Q_OBJECT
public:
    // Shows plain text under title; atEnd scrolls to the last line (a log).
    static TextViewer* ShowText(QWidget* parent, const QString& name, const QString& title,
                                const QString& text, bool atEnd);
    // The current log file, buffered lines included, scrolled to its end.
    static TextViewer* ShowLog(QWidget* parent);
    // The help page built into the program, at the section anchor if given
    // ("about").
    static TextViewer* ShowHelp(QWidget* parent, const QString& anchor = {});

    QTextBrowser* browser() const { return m_browser; }

    static constexpr const char* kHelpPage = "qrc:/help.html";

private:
    TextViewer(QWidget* parent, const QString& name);
    static TextViewer* find(QWidget* parent, const QString& name);
    void present();

    QTextBrowser* m_browser;
};
