#pragma once

class QCoreApplication;

// The command line: tarvo --help, --version, --agenda [DAYS], --sync,
// --export FILE, --import FILE, --add "description" --date DATE
// [--time HH:MM] [--category NAME]. It runs before any window exists, under
// a bare QCoreApplication, and never restarts the log. While a copy of Tarvo
// runs, --add and --import hand their work to it and wait for its answer;
// otherwise, when sharing through a calendar server, a sync follows them.
// Exit codes: 0 done, 1 bad input (one line on stderr), 2 files unreadable
// or the calendar server unusable (not set up, unreachable, refusing).

// Whether the arguments ask for command-line work rather than the windows:
// any argument starting with "--", or -h / -v.
bool IsCommandLine(int argc, char** argv);

// Does the work the arguments ask for; returns the exit code.
int RunCommandLine(QCoreApplication& app);
