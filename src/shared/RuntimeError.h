#pragma once

#include <QString>

#include <stdexcept>

// A trapped run-time error: a number and a description, as they appear in the
// log ("Overflow (6)"). Thrown only inside an operation and caught at its edge,
// where it is logged and the operation goes on with defaults; no public
// operation lets one escape.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const QString& description);

    int number() const { return m_number; }
    QString description() const { return m_description; }
    // The text the error handlers log: description + " (" + number + ")".
    QString logText() const;

    static RuntimeError overflow();        // 6, "Overflow"
    static RuntimeError invalidArgument(); // 5, "Invalid procedure call or argument"
    static RuntimeError typeMismatch();    // 13, "Type mismatch"
    static RuntimeError fileNotFound();    // 53, "File not found"

private:
    int m_number;
    QString m_description;
};

// Logs e through the global logger's action list under procedure and module.
void LogRuntimeError(const RuntimeError& e, const QString& procedure, const QString& module);
