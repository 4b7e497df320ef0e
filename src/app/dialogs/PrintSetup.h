#pragma once

#include <QPrinter>
#include <QString>

class QWidget;

// Chooses and sets up the printer for one print job. The program asks the
// user with the platform's print dialog (QtPrintSetup); tests and scripted
// runs send the job to a PDF file instead, so no dialog ever opens there.
class PrintSetup {
public:
    virtual ~PrintSetup() = default;
    // Prepares printer for the job docName; false when the user cancels.
    virtual bool Prepare(QPrinter& printer, const QString& docName, QWidget* parent) = 0;
};

// Sends every job to one PDF file, without asking.
class PdfPrintSetup : public PrintSetup {
public:
    explicit PdfPrintSetup(QString fileName) : m_fileName(std::move(fileName)) {}
    bool Prepare(QPrinter& printer, const QString& docName, QWidget*) override {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(m_fileName);
        printer.setDocName(docName);
        return true;
    }

private:
    QString m_fileName;
};
