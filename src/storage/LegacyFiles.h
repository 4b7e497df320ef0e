#pragma once

#include <QString>

// Where the fixed-record files of earlier versions lie beside their XML
// successors.
namespace LegacyFiles {

// The XML file's path without its extension, followed by ".dat"; an existing
// file that differs only in letter case is preferred ("events.dat" for
// "Events.xml").
QString DatPathFor(const QString& xmlPath);

} // namespace LegacyFiles
