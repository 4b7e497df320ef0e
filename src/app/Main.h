#pragma once

class QApplication;

// Start-up: runs the program's start-up steps in order and then the event
// loop. Returns the process exit code.
int Main(QApplication& app);
