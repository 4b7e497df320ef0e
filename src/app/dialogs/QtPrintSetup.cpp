#include "app/dialogs/QtPrintSetup.h"

#include "shared/AppInfo.h"

#include <QPrintDialog>

bool QtPrintSetup::Prepare(QPrinter& printer, const QString& docName, QWidget* parent) {
    printer.setDocName(docName);
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(AppInfo::Title());
    return dialog.exec() == QDialog::Accepted;
}

PrintSetup& QtPrintSetup::Instance() {
    static QtPrintSetup setup;
    return setup;
}
