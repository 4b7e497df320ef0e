#pragma once

#include "shared/cSHAREDShowError.h"

class UserDialogs;

// Shows each error report in a new fSHAREDErrorRpt window. The program
// installs one at start-up (cSHAREDShowError::SetSink) and removes it before
// the windows go.
class ErrorReportWindowSink : public ErrorReportSink {
public:
    // Installs itself as the sink; the destructor puts the previous one back.
    // The windows ask and tell the user through dialogs.
    explicit ErrorReportWindowSink(UserDialogs& dialogs);
    ~ErrorReportWindowSink() override;
    ErrorReportWindowSink(const ErrorReportWindowSink&) = delete;
    ErrorReportWindowSink& operator=(const ErrorReportWindowSink&) = delete;

    void ShowReport(const QString& text, const QString& secondText) override;

private:
    UserDialogs& m_dialogs;
    ErrorReportSink* m_previous;
};
