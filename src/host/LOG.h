// The log file beside the program (or where QUELMARKLOG says) and the output log: standard output, and the
// log file when there is one. Texts are cp932.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

namespace quelmark {

// Begins a new log for the program of that host path: its path with the three-letter extension "log", no log
// when it has no such extension. A log that cannot be written is told on standard error, and there is none.
void LogOpen(const std::string& programPath);
// To the log file alone; it is opened and closed each time, so that the log survives a crash.
void LogWrite(std::string_view text);
// As printf does; up to 511 bytes.
void LogFormat(const char* format, auto... arguments) {
    char text[512];
    const int length = std::snprintf(text, sizeof text, format, arguments...);
    LogWrite({text, static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(sizeof text) - 1))});
}
// To standard output and the log file.
void OutputWrite(std::string_view text);
// A message before the window can show any: to the output log, and to standard error where that is another
// place.
void TerminalShow(std::string_view message);

}  // namespace quelmark
