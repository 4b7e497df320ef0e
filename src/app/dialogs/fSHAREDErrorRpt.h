#pragma once

#include <QDialog>
#include <QString>

class QGroupBox;
class QPlainTextEdit;
class QPushButton;
class UserDialogs;

// The error report window: shows an error the user must see with the current
// log, takes the user's comments, and lets the report be viewed, or saved to
// a file and copied to the clipboard for sending. Created for each report and
// deleted when closed.
class fSHAREDErrorRpt : public QDialog {
    Q_OBJECT
public:
    // dialogs asks where to save the report and says where it went.
    explicit fSHAREDErrorRpt(UserDialogs& dialogs, QWidget* parent = nullptr);

    // Puts text into txtError (the second text, when given, on the line below)
    // and the current log, or "No log file", into txtLog.
    void ShowError(const QString& text, const QString& secondText = {});

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
    QString reportText() const;

    UserDialogs& m_dialogs;
    QGroupBox* m_fraError = nullptr;
    QGroupBox* m_fraComments = nullptr;
    QPlainTextEdit* m_txtError = nullptr;
    QPlainTextEdit* m_txtLog = nullptr;
    QPlainTextEdit* m_txtUserMessage = nullptr;
};
