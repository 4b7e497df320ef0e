#pragma once

#include <QString>

// Starting Tarvo at login, the freedesktop way: an entry "tarvo.desktop" in
// the user's autostart folder ($XDG_CONFIG_HOME/autostart, by default
// ~/.config/autostart). Its presence is the setting; nothing about it is
// kept in Tarvo's own settings file.
namespace Autostart {

// Where the entry lives (it need not exist).
QString EntryPath();
// Whether the entry is there.
bool IsEnabled();
// The entry's text for the given program file.
QByteArray EntryText(const QString& program);
// Writes the entry for program, or removes it. Logs and returns false when
// the file cannot be written or removed.
bool Apply(bool enabled, const QString& program);

} // namespace Autostart
