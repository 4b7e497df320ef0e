#pragma once

#include <QDialog>
#include <QString>
#include <QUrl>

#include <functional>

class QGroupBox;
class QPlainTextEdit;
class QPushButton;

// The error report window: shows an error the user must see with the current
// log, takes the user's comments, and lets the report be viewed as a file or
// sent by mail. Created for each report and deleted when closed.
class fSHAREDErrorRpt : public QDialog {
    Q_OBJECT
public:
    // Opens a file or a link with its associated program.
    using UrlOpener = std::function<bool(const QUrl&)>;

    explicit fSHAREDErrorRpt(QWidget* parent = nullptr);

    // Puts text into txtError (the second text, when given, on the line below)
    // and the current log, or "No log file", into txtLog.
    void ShowError(const QString& text, const QString& secondText = {});

    // How every report window opens files and links; an empty opener restores
    // the platform's (QDesktopServices). Tests record instead.
    static void SetUrlOpener(UrlOpener opener);
    // Where "FullLog.txt" is written; empty restores the default, the user's
    // temporary folder.
    static void SetReportFolder(const QString& folder);
    static QString ReportFolder();
    // The full path of "FullLog.txt".
    static QString FullLogPath();

private:
    void cmdEmail_Click();
    void cmdViewReport_Click();
    void cmdViewLog_Click();
    void cmdShowComments_Click();
    void cmdHelp_Click();
    bool open(const QUrl& url, const QString& procedure);

    QGroupBox* m_fraError = nullptr;
    QGroupBox* m_fraComments = nullptr;
    QPlainTextEdit* m_txtError = nullptr;
    QPlainTextEdit* m_txtLog = nullptr;
    QPlainTextEdit* m_txtUserMessage = nullptr;
};
