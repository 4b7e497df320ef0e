#include "app/dialogs/fSHAREDErrorRpt.h"
#include "app/WindowFit.h"

#include "app/dialogs/TextViewer.h"
#include "shared/AppPaths.h"
#include "shared/AtomicFile.h"
#include "shared/ErrorReportText.h"
#include "shared/TextCodec.h"
#include "shared/UserDialogs.h"
#include "shared/cSharedLogging.h"

#include <QClipboard>
#include <QDir>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

const QString kModule = QStringLiteral("fSHAREDErrorRpt");

QString& ReportFolderSetting() {
    static QString folder;
    return folder;
}

QPushButton* MakeButton(QWidget* parent, const char* name, const QString& caption,
                        const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(QLatin1String(name));
    b->setToolTip(tip);
    b->setAutoDefault(false);
    return b;
}

QPlainTextEdit* MakeText(QWidget* parent, const char* name, const QString& tip, bool readOnly) {
    auto* t = new QPlainTextEdit(parent);
    t->setObjectName(QLatin1String(name));
    t->setToolTip(tip);
    t->setReadOnly(readOnly);
    return t;
}

} // namespace

fSHAREDErrorRpt::fSHAREDErrorRpt(UserDialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_dialogs(dialogs) {
    setObjectName(QStringLiteral("fSHAREDErrorRpt"));
    setWindowTitle(QStringLiteral("Error Reporter"));
    setAttribute(Qt::WA_DeleteOnClose);

    m_fraError = new QGroupBox(QStringLiteral("Error Details"), this);
    m_fraError->setObjectName(QStringLiteral("fraError"));
    m_txtError =
        MakeText(m_fraError, "txtError", QStringLiteral("This is the error which ocurred"), true);
    auto* errorLayout = new QVBoxLayout(m_fraError);
    errorLayout->addWidget(m_txtError);

    m_txtLog = MakeText(this, "txtLog",
                        QStringLiteral("This is the content of the program's log file"), true);
    m_txtLog->setLineWrapMode(QPlainTextEdit::NoWrap);

    // The comment box appears when the user asks for it.
    m_fraComments = new QGroupBox(QStringLiteral("Enter your own comments here"), this);
    m_fraComments->setObjectName(QStringLiteral("fraComments"));
    m_txtUserMessage =
        MakeText(m_fraComments, "txtUserMessage",
                 QStringLiteral("These comments will be added to your error report."), false);
    auto* commentLayout = new QVBoxLayout(m_fraComments);
    commentLayout->addWidget(m_txtUserMessage);
    m_fraComments->hide();

    auto* cmdEmail =
        MakeButton(this, "cmdEmail", QStringLiteral("Submit Error Report"),
                   QStringLiteral("Saves the report to a file you choose and copies it to the "
                                  "clipboard, ready to send."));
    auto* cmdViewReport = MakeButton(this, "cmdViewReport", QStringLiteral("View Error Report"),
                                     QStringLiteral("If 'Submit Error' doesn't work, click here"));
    auto* cmdViewLog = MakeButton(this, "cmdViewLog", QStringLiteral("View Log File"),
                                  QStringLiteral("Click this button to view the log file"));
    auto* cmdShowComments = MakeButton(
        this, "cmdShowComments", QStringLiteral("Enter Comments"),
        QStringLiteral(
            "If you want to add any comments before submitting an error report, click here."));
    auto* cmdHelp = MakeButton(this, "cmdHelp", QStringLiteral("Help"), {});
    auto* cmdExit = MakeButton(this, "cmdExit", QStringLiteral("Exit"), {});

    connect(cmdEmail, &QPushButton::clicked, this, &fSHAREDErrorRpt::cmdEmail_Click);
    connect(cmdViewReport, &QPushButton::clicked, this, &fSHAREDErrorRpt::cmdViewReport_Click);
    connect(cmdViewLog, &QPushButton::clicked, this, &fSHAREDErrorRpt::cmdViewLog_Click);
    connect(cmdShowComments, &QPushButton::clicked, this, &fSHAREDErrorRpt::cmdShowComments_Click);
    connect(cmdHelp, &QPushButton::clicked, this, &fSHAREDErrorRpt::cmdHelp_Click);
    connect(cmdExit, &QPushButton::clicked, this, &QDialog::close);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {cmdEmail, cmdViewReport, cmdViewLog, cmdShowComments, cmdHelp}) {
        buttons->addWidget(b);
    }
    buttons->addStretch();
    buttons->addWidget(cmdExit);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_fraError, 1);
    layout->addWidget(m_txtLog, 2);
    layout->addWidget(m_fraComments, 1);
    layout->addLayout(buttons);
    WindowFit::Apply(this, QSize(720, 520));
}

void fSHAREDErrorRpt::ShowError(const QString& text, const QString& secondText) {
    QString shown = text;
    if (!secondText.isEmpty()) {
        shown += QLatin1Char('\n') + secondText;
    }
    m_txtError->setPlainText(shown);
    m_txtLog->setPlainText(ErrorReportText::CurrentLogText());
}

void fSHAREDErrorRpt::SetReportFolder(const QString& folder) {
    ReportFolderSetting() = folder;
}

QString fSHAREDErrorRpt::ReportFolder() {
    const QString& set = ReportFolderSetting();
    return set.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::TempLocation) : set;
}

QString fSHAREDErrorRpt::FullLogPath() {
    return AppPaths::JoinPath(ReportFolder(), QStringLiteral("FullLog.txt"));
}

QString fSHAREDErrorRpt::reportText() const {
    return ErrorReportText::FullReport(m_txtError->toPlainText(), m_txtUserMessage->toPlainText(),
                                       m_txtLog->toPlainText());
}

void fSHAREDErrorRpt::cmdEmail_Click() {
    // No mail address is built in: the report goes where the user says, and
    // to the clipboard, to be sent however the user sends things.
    const std::optional<QString> path = m_dialogs.ChooseSaveFile(
        QStringLiteral("Save the error report"),
        AppPaths::JoinPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                           QStringLiteral("Tarvo error report.txt")),
        QStringLiteral("Text files (*.txt)|*.txt"));
    if (!path) {
        return;
    }
    const QString report = reportText();
    QGuiApplication::clipboard()->setText(report);
    const AtomicFile::Result r = AtomicFile::Write(*path, TextCodec::ToWindows1252(report));
    if (!r.ok()) {
        Log().AddAction(r.description + QStringLiteral(": ") + *path,
                        QStringLiteral("cmdEmail_Click"), kModule);
        m_dialogs.Message(QStringLiteral("The report could not be saved to ") + *path +
                              QStringLiteral(" (") + r.description +
                              QStringLiteral(").\r\nIt is on the clipboard: paste it into your "
                                             "message."),
                          {}, UserDialogs::Icon::Warning);
        return;
    }
    m_dialogs.Message(QStringLiteral("The error report was saved to ") + *path +
                      QStringLiteral(" and copied to the clipboard.\r\nSend the file, or paste "
                                     "the report into a message, to whoever looks after your "
                                     "copy of Tarvo."));
}

void fSHAREDErrorRpt::cmdViewReport_Click() {
    const QString report = reportText();
    const QString path = FullLogPath();
    QDir().mkpath(ReportFolder());
    const AtomicFile::Result r = AtomicFile::Write(path, TextCodec::ToWindows1252(report));
    if (!r.ok()) {
        Log().AddAction(r.description + QStringLiteral(" (") + QString::number(r.errorNumber) +
                            QLatin1Char(')'),
                        QStringLiteral("cmdViewReport_Click"), kModule);
    }
    TextViewer::ShowText(this, QStringLiteral("frmReport"),
                         QStringLiteral("Error report - ") + path, report, false);
}

void fSHAREDErrorRpt::cmdViewLog_Click() {
    TextViewer::ShowLog(this);
}

void fSHAREDErrorRpt::cmdShowComments_Click() {
    m_fraComments->show();
    m_txtUserMessage->setFocus();
}

void fSHAREDErrorRpt::cmdHelp_Click() {
    TextViewer::ShowHelp(this);
}
