#pragma once

#include <functional>

// Ends the program cleanly when the system asks it to (SIGTERM, SIGINT, SIGHUP on
// a logout): quit runs on the event loop, so data and settings are saved as on
// a normal Quit. Does nothing on systems without such signals.
void QuitOnSignal(std::function<void()> quit);
