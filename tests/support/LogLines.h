#pragma once

#include <QStringList>

// The lines of the global logger's file so far, without their "1 HH:MM:SS, "
// prefix, after writing out any buffered actions.
QStringList LoggedTexts();
