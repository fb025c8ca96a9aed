// What compiling the stock scripts costs at start-up: every source file of the stock configuration, in a
// fresh interpreter with the sizes of that configuration. Times are the thread's own; the figure is the
// median over the rounds. Argument: the number of rounds (51).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "ML/ML.h"
#include "MODEL/MDLINIT.h"

namespace {

using namespace quelmark;

double Now() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

std::vector<std::string> StockScripts() {
    std::vector<std::string> paths;
    std::ifstream configuration(QUELMARK_SOURCE_DIR "/stock/Quelmark.ini");
    std::string line;
    while (std::getline(configuration, line)) {
        if (line.starts_with("SourceFile")) {
            paths.push_back(QUELMARK_SOURCE_DIR "/stock/MACRO/" + line.substr(line.find_last_of(" =") + 1));
        }
    }
    return paths;
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 51;
    const std::vector<std::string> paths = StockScripts();
    std::vector<double> whole, compiling;
    for (int round = 0; round < rounds; ++round) {
        const double from = Now();
        InterpreterInit({.codeBytes = 512 << 10, .globals = 4096, .functions = 4096, .stackCells = 1 << 20});
        ModelLibrariesRegister();
        const double registered = Now();
        for (const std::string& path : paths) {
            CompileFile(path);
        }
        compiling.push_back(Now() - registered);
        whole.push_back(Now() - from);
        InterpreterExit();
    }
    const auto median = [](std::vector<double>& values) {
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    std::printf("%d stock scripts: compiled in %.2f ms, with the interpreter made ready %.2f ms\n",
                static_cast<int>(paths.size()), median(compiling), median(whole));
}
