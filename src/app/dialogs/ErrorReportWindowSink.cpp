#include "app/dialogs/ErrorReportWindowSink.h"

#include "app/dialogs/fSHAREDErrorRpt.h"

ErrorReportWindowSink::ErrorReportWindowSink(UserDialogs& dialogs)
    : m_dialogs(dialogs), m_previous(cSHAREDShowError::SetSink(this)) {}

ErrorReportWindowSink::~ErrorReportWindowSink() {
    if (cSHAREDShowError::Sink() == this) {
        cSHAREDShowError::SetSink(m_previous);
    }
}

void ErrorReportWindowSink::ShowReport(const QString& text, const QString& secondText) {
    // Not modal: the operation that failed goes on, and the report stays
    // open until the user closes it.
    auto* window = new fSHAREDErrorRpt(m_dialogs);
    window->ShowError(text, secondText);
    window->show();
    window->raise();
    window->activateWindow();
}
