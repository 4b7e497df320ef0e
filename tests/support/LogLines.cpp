#include "support/LogLines.h"

#include "shared/TextCodec.h"
#include "shared/cSharedLogging.h"
#include "support/TestSupport.h"

QStringList LoggedTexts() {
    Log().WriteActionsToLog();
    const QString text = TextCodec::FromWindows1252(ReadFileBytes(Log().CurrentLogFilename()));
    QStringList out;
    for (const QString& line : text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts)) {
        const qsizetype comma = line.indexOf(QStringLiteral(", "));
        out << (comma < 0 ? line : line.mid(comma + 2));
    }
    return out;
}
