// The program's spine outside the interpreter: start-up, the event loop with its recovery point, shutdown;
// and what a window implementation calls back. `main` of each program makes its Window and calls HostMain.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/WINDOW.h"

namespace quelmark {

// The run of the program, from the configuration to the final report. `arguments` as the process got them
// (UTF-8); `registerLibrary` (MODEL/MDLINIT.h) registers the built-in functions above the interpreter. The
// result is the exit status: 0, or 1 after a fatal error. No exit() happens inside, so the caller can take
// its window down in order.
int HostMain(Window& window, int argc, char** argv, void (*registerLibrary)());

// The window has a new client size or font: the views are laid out and drawn again, every pane invalidated.
// To be called inside Window::Deliver; before the host has started it does nothing.
void HostResized();

// The window that HostMain was given; null outside it.
extern Window* MainWindow;

// ---- state of the run, shared by the host's modules ----

extern bool QuitFlag;
// True once the scripts' top-level code has run: errors then return to the recovery point.
extern bool Started;
// Program directory with its trailing separator, and the search path (script paths, ";" between).
extern std::string ProgramDirectory;
extern std::string SearchPath;
// The argument vector in cp932, "--dump" removed; 0 is the program file.
const std::string* ProgramArgument(std::int32_t index);

}  // namespace quelmark
