#pragma once

#include "shared/cSHAREDShowError.h"

#include <QStringList>

// Catches error reports for the life of the object instead of showing them,
// and puts the previous sink back afterwards.
class RecordedErrorReports : public ErrorReportSink {
public:
    RecordedErrorReports() : m_previous(cSHAREDShowError::SetSink(this)) {}
    ~RecordedErrorReports() override { cSHAREDShowError::SetSink(m_previous); }
    RecordedErrorReports(const RecordedErrorReports&) = delete;
    RecordedErrorReports& operator=(const RecordedErrorReports&) = delete;

    void ShowReport(const QString& text, const QString& secondText) override {
        m_texts << text;
        m_secondTexts << secondText;
    }

    // The error texts reported, oldest first.
    const QStringList& texts() const { return m_texts; }
    const QStringList& secondTexts() const { return m_secondTexts; }

private:
    ErrorReportSink* m_previous;
    QStringList m_texts;
    QStringList m_secondTexts;
};
