#pragma once

#include <QString>

// Where errors the user must see are sent. The program installs the error
// report window (fSHAREDErrorRpt through ErrorReportWindowSink); tests install
// a recorder. Without a sink the report only reaches the log.
class ErrorReportSink {
public:
    virtual ~ErrorReportSink() = default;
    // Shows one report: the error text and a second text (often empty).
    virtual void ShowReport(const QString& text, const QString& secondText) = 0;
};

// Entry points for errors the user must see (routine run-time errors are only
// logged). Callable from core code: the window lives behind ErrorReportSink.
namespace cSHAREDShowError {

// Shows text (and the second text) in a new error report.
void ShowErr(const QString& text, const QString& secondText = {});

// Installs the sink (not owned); nullptr leaves reports to the log only.
// Returns the sink that was installed before.
ErrorReportSink* SetSink(ErrorReportSink* sink);
ErrorReportSink* Sink();

} // namespace cSHAREDShowError
