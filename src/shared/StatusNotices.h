#pragma once

#include <QStringList>

// Short notices for the main window's status bar from code that has no
// window (a shared file refused for its size, say). Code posts them; the
// window takes and shows them after each refresh.
namespace StatusNotices {

void Post(const QString& text);
// The notices posted since the last Take, oldest first; the list is emptied.
QStringList Take();

} // namespace StatusNotices
