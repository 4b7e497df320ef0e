#pragma once

// Starts the program with its windows: the "tarvo-gui" executable beside
// this one (or in ../libexec/tarvo), which replaces this process so that it
// keeps its process ID, arguments and environment. The command-line
// executable thereby never loads the window libraries, and a terminal
// agenda starts in a few milliseconds. Returns only on failure (exit code 2).
int LaunchWindows(int argc, char** argv);
