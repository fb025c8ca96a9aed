// Start-up: the command line, the configuration and its limits, the search for the scripts and their
// compilation. Keeps what scripts may ask of it later: the program's directory and its arguments.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quelmark {

// What the system hands to the program, as host text: the real path of the executable, and the arguments
// behind its name.
struct CommandLine {
    const std::string& programPath;
    const std::vector<std::string>& arguments;
};

// Everything up to the scripts' first statement: reads the configuration, makes interpreter, model store,
// host tables and views, and compiles every script that the configuration names. A fault is a fatal error.
void StartUp(const CommandLine& commandLine, void (*registerLibraries)());
// The directory of the executable in drive-letter form, with its separator.
const std::string& ProgramDirectory();
// The argument at an index, 0 the program's path; "" beyond the last.
std::string ProgramArgument(std::int32_t index);

}  // namespace quelmark
