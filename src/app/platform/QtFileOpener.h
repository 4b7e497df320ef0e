#pragma once

#include "shared/IFileOpener.h"

// Opens files with the platform's associated program (QDesktopServices).
class QtFileOpener : public IFileOpener {
public:
    bool OpenDocument(const QString& path) override;
};
