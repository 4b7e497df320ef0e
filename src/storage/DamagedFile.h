#pragma once

#include <QByteArrayView>
#include <QString>

// A data file of the user's own that could not be read as it is written (no
// header, a record cut off, bytes that are no part of the format) is never
// replaced blindly: before the first save writes over it, a copy of it as it
// was is kept beside it, the log says so, and the user is told once where.
namespace DamagedFile {

// path + ".damaged-" + the minute of now as YYYYMMDD-HHMM; when that name is
// taken, "-2", "-3" and so on follow it.
QString CopyName(const QString& path);

// Copies path to CopyName(path), logs it and tells the user (through the
// error report) that the file was damaged and where its copy is. Returns the
// copy's path, or "" when no copy could be made (logged): the caller must
// then leave the file alone.
QString KeepCopy(const QString& path);

// For the reader of an event file, which finds damage as it splits the
// blocks: whether [from, end) holds only what a save puts between blocks
// (blanks and the "<TVO2>" wrapper tags), and where the text after the XML
// header at the start of a file begins (null when the file, after blanks,
// does not begin with one).
bool OnlyWrappers(const char* from, const char* end);
const char* AfterHeader(const char* from, const char* end);

// Whether the bytes of a task list file are not what a save writes: not empty
// yet without the XML header, or without the root element's end tag at the
// end (a file cut short).
bool TaskFileDamaged(QByteArrayView bytes);

} // namespace DamagedFile
