#pragma once

#include <QtGlobal>

// The sizes past which Tarvo stops reading a file, in one place. Each limit
// lies far above anything the program itself writes, so only a damaged or
// hostile file reaches one; each one reached is logged and told.
namespace FileLimits {

// Another user's shared file larger than this is not read at all (it would
// be read again at every refresh while it changes): logged once and named in
// the main window's status bar. 32 MiB holds some 35,000 ordinary events.
inline constexpr qint64 kMaxSharedFileBytes = qint64(32) * 1024 * 1024;

// A user list ("TVOShared.ini") larger than this is not read either: some
// 4,000 names, each a file looked at on every refresh.
inline constexpr qint64 kMaxUserListBytes = 64 * 1024;

// Events read from one event file at most: one per ID code ("000000" to
// "100000"), so a file the program wrote never holds more. Reading stops
// there; an own file that goes on counts as damaged, so it is copied before
// the first save replaces it and the rest survives in the copy.
inline constexpr qsizetype kMaxEventsPerFile = 100001;

// A line of the settings file longer than this is skipped (logged) instead
// of held as a value: no setting needs more than a few hundred characters.
inline constexpr qsizetype kMaxSettingsLineBytes = 64 * 1024;

} // namespace FileLimits
