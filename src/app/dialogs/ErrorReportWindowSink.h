#pragma once

#include "shared/cSHAREDShowError.h"

// Shows each error report in a new fSHAREDErrorRpt window. The program
// installs one at start-up (cSHAREDShowError::SetSink) and removes it before
// the windows go.
class ErrorReportWindowSink : public ErrorReportSink {
public:
    // Installs itself as the sink; the destructor puts the previous one back.
    ErrorReportWindowSink();
    ~ErrorReportWindowSink() override;
    ErrorReportWindowSink(const ErrorReportWindowSink&) = delete;
    ErrorReportWindowSink& operator=(const ErrorReportWindowSink&) = delete;

    void ShowReport(const QString& text, const QString& secondText) override;

private:
    ErrorReportSink* m_previous;
};
