#pragma once

// Makes the requests to end that come from outside the window (SIGTERM from a service manager or
// `kill`, SIGINT from Ctrl+C in a terminal, SIGHUP from a closed terminal) end Korvel the way
// closing its window does: QCoreApplication::quit() on the GUI thread, so that recordings are
// finished, the phones' servers stopped and their tunnels removed as the objects go. A second
// request while that runs ends the process at once.
namespace QuitOnSignal {

// Once, after the application object exists. False when the requests could not be caught; they
// then end the process at once, as before.
bool install();

} // namespace QuitOnSignal
