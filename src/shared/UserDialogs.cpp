#include "shared/UserDialogs.h"

#include <QStringList>

QString QtFileFilter(const QString& filter) {
    if (!filter.contains(QLatin1Char('|'))) {
        return filter;
    }
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList out;
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        const QString description = parts.at(i).trimmed();
        QString pattern = i + 1 < parts.size() ? parts.at(i + 1).trimmed() : QString();
        pattern.replace(QLatin1Char(';'), QLatin1Char(' '));
        if (description.isEmpty() && pattern.isEmpty()) {
            continue;
        }
        if (pattern.isEmpty() ||
            description.contains(QLatin1Char('(') + pattern + QLatin1Char(')'))) {
            out << description;
        } else if (description.isEmpty()) {
            out << pattern;
        } else {
            out << description + QStringLiteral(" (") + pattern + QLatin1Char(')');
        }
    }
    return out.join(QStringLiteral(";;"));
}
