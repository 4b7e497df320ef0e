#include "storage/StorableText.h"

#include <array>

namespace StorableText {

QString AsIsProblem(const QString& field, const QString& value) {
    if (!value.contains(QLatin1Char('<'))) {
        return {};
    }
    return QStringLiteral("The %1 cannot contain \"<\": please remove it.").arg(field);
}

QString TaskProblem(const QString& task) {
    static const std::array<QString, 4> markers = {
        QStringLiteral("<TASK>"), QStringLiteral("</TASK>"), QStringLiteral("<DETAILS>"),
        QStringLiteral("</DETAILS>")};
    for (const QString& marker : markers) {
        if (task.contains(marker)) {
            return QStringLiteral("A task cannot contain \"%1\": please remove it.").arg(marker);
        }
    }
    // One task is one line of the file.
    if (task.contains(QLatin1Char('\n')) || task.contains(QLatin1Char('\r'))) {
        return QStringLiteral("A task must fit on one line: please remove the line break.");
    }
    return {};
}

bool EventStorable(const clsEvent& e) {
    for (const QString* value :
         {&e.IDCode, &e.Filename, &e.WavFile, &e.SharedLayerName, &e.Email}) {
        if (value->contains(QLatin1Char('<'))) {
            return false;
        }
    }
    return !e.Owner().contains(QLatin1Char('<'));
}

} // namespace StorableText
