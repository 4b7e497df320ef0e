#include "shared/cSHAREDShowError.h"

#include "shared/cSharedLogging.h"

#include <exception>

namespace {

ErrorReportSink* g_sink = nullptr;

const QString kModule = QStringLiteral("cShowError");

} // namespace

namespace cSHAREDShowError {

ErrorReportSink* SetSink(ErrorReportSink* sink) {
    ErrorReportSink* old = g_sink;
    g_sink = sink;
    return old;
}

ErrorReportSink* Sink() {
    return g_sink;
}

void ShowErr(const QString& text, const QString& secondText) {
    // Every report is logged as well, so it survives a window that fails.
    Log().LogEvent(QStringLiteral("Error report: ") + text);
    if (g_sink == nullptr) {
        return;
    }
    try {
        g_sink->ShowReport(text, secondText);
    } catch (const std::exception& e) {
        Log().AddAction(QString::fromLocal8Bit(e.what()), QStringLiteral("ShowErr"), kModule);
    }
}

} // namespace cSHAREDShowError
