#pragma once

#include "app/dialogs/PrintSetup.h"

// Asks the user with the platform's print dialog, which also offers printing
// to a PDF file for users without a printer.
class QtPrintSetup : public PrintSetup {
public:
    bool Prepare(QPrinter& printer, const QString& docName, QWidget* parent) override;

    // The instance windows use when no other setup is given.
    static PrintSetup& Instance();
};
