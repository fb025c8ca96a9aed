// quelmarkc: the editor without a window, for batch work and tests.
#include <filesystem>
#include <string>
#include <vector>

#include "MODEL/MDLINIT.h"
#include "host/HOST.h"
#include "host/console/CONSOLE.h"

int main(int argc, char** argv) {
    std::error_code failed;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", failed).string();
    quelmark::ConsoleWindow window;
    return quelmark::HostMain(window, failed ? std::string(argv[0]) : program,
                              std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc),
                              quelmark::ModelLibrariesRegister);
}
