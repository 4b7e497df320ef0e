#include "shared/RuntimeError.h"

#include "shared/cSharedLogging.h"

RuntimeError::RuntimeError(int number, const QString& description)
    : std::runtime_error(description.toStdString()), m_number(number), m_description(description) {}

QString RuntimeError::logText() const {
    return m_description + QStringLiteral(" (") + QString::number(m_number) + QStringLiteral(")");
}

RuntimeError RuntimeError::overflow() {
    return {6, QStringLiteral("Overflow")};
}

RuntimeError RuntimeError::invalidArgument() {
    return {5, QStringLiteral("Invalid procedure call or argument")};
}

RuntimeError RuntimeError::typeMismatch() {
    return {13, QStringLiteral("Type mismatch")};
}

RuntimeError RuntimeError::fileNotFound() {
    return {53, QStringLiteral("File not found")};
}

void LogRuntimeError(const RuntimeError& e, const QString& procedure, const QString& module) {
    Log().AddAction(e.logText(), procedure, module);
}
