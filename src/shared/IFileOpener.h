#pragma once

#include <QString>

// Opens a document or program with whatever the platform associates with it
// (the reminder engine's run-a-file events, the error report's files). The Qt
// implementation uses QDesktopServices; tests record the requests.
class IFileOpener {
public:
    virtual ~IFileOpener() = default;
    // True when the platform accepted the request.
    virtual bool OpenDocument(const QString& path) = 0;
};
