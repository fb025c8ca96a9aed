// The program's spine: the whole run, the event loop, errors, shut-down.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/WINDOW.h"

namespace quelmark {

// The whole run of the program in this window. `registerLibraries` registers every built-in function group
// above the interpreter. `programPath` is the real path of the executable (host path); `arguments` are those
// behind the program's name, host text. Returns the exit status.
int HostMain(Window& window, const std::string& programPath, const std::vector<std::string>& arguments,
             void (*registerLibraries)());

Window& HostWindow();
// The client area or the text sizes have changed: panes and views are laid out again.
void HostResized();
// The window system asks to close: sets the quit flag when the can-close handler agrees or there is none. A
// handler that fails or gives no result keeps the window open; while it runs nothing more is asked.
void HostCloseRequested();
// Runs script code on behalf of the window system, inside Window::Deliver: an error does not cross the window
// system's frames, it is kept and raised again when control is back in the wait step.
void HostGuarded(const std::function<void()>& work);
void HostRaiseKept();
// Leaves for the recovery point.
[[noreturn]] void HostUnwind();
// While a button is held: delivers messages, takes button state and pointer, and comes back after a short
// while at the latest.
void HostDeliverHeld();

}  // namespace quelmark
