// Starting other programs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quelmark {

inline constexpr std::uint32_t CHILD_WAIT_MILLISECONDS = 60000;

// The words of a command line as a process gets them (UTF-8): blanks and tabs part them, double quotes hold a
// word together, a word that begins with the drive letter becomes a host path.
std::vector<std::string> CommandWords(std::string_view commandLine);
// Starts the command (cp932): its program is looked for in the program directory first, then as given. With
// `wait` returns when the program has ended or `waitMost` milliseconds have passed; the window stays alive
// meanwhile. Nothing is reported when it cannot be started. A help file is opened with the system's viewer.
void ChildStart(std::string_view command, bool wait, std::uint32_t waitMost = CHILD_WAIT_MILLISECONDS);

}  // namespace quelmark
