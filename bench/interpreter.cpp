// Script programs against the same programs in Lua: bench/script/<name>.qms and <name>.lua do identical work.
// Each round runs both as processes of their own, one after the other; the figure of a program is the median
// over the rounds of our user time divided by Lua's, so that a busy machine disturbs both alike.
//
//   bench_interpreter [rounds [name...]]
//   bench_interpreter --run file.qms      (what a round starts for our side)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "MATLIB/SETVEC.h"
#include "ML/ML.h"

namespace {

using quelmark::InterpreterSizes;

int RunScript(const char* path) {
    quelmark::InterpreterInit(InterpreterSizes{.codeBytes = 1 << 20, .stackCells = 1 << 20});
    quelmark::MatrixLibraryRegister();
    quelmark::CompileFile(path);
    quelmark::ExecInit();
    quelmark::ExecTopLevel();
    quelmark::InterpreterExit();
    return 0;
}

struct Times {
    double wall = 0;
    double user = 0;
};

// Runs a program with its output thrown away.
Times TimeOf(const std::vector<std::string>& command) {
    const auto start = std::chrono::steady_clock::now();
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : command) {
            arguments.push_back(const_cast<char*>(word.c_str()));
        }
        arguments.push_back(nullptr);
        if (std::freopen("/dev/null", "w", stdout) != nullptr) {
            execvp(arguments[0], arguments.data());
        }
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "%s %s failed\n", command[0].c_str(), command.back().c_str());
        std::exit(1);
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(),
            static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1e6};
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void Compare(const std::string& self, const std::filesystem::path& script, int rounds) {
    std::vector<double> ours, theirs, ratios, wallRatios;
    const std::string lua = std::filesystem::path(script).replace_extension(".lua").string();
    for (int round = 0; round < rounds; ++round) {
        const Times mine = TimeOf({self, "--run", script.string()});
        const Times other = TimeOf({"lua5.4", lua});
        ours.push_back(mine.user);
        theirs.push_back(other.user);
        ratios.push_back(mine.user / other.user);
        wallRatios.push_back(mine.wall / other.wall);
    }
    std::printf("%-12s %8.3f s %8.3f s   ratio %.2f (wall %.2f)\n", script.stem().c_str(), Median(ours),
                Median(theirs), Median(ratios), Median(wallRatios));
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--run") {
        return RunScript(argv[2]);
    }
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    std::vector<std::filesystem::path> scripts;
    for (const auto& entry : std::filesystem::directory_iterator(QUELMARK_SOURCE_DIR "/bench/script")) {
        if (entry.path().extension() == ".qms") {
            scripts.push_back(entry.path());
        }
    }
    std::sort(scripts.begin(), scripts.end());
    std::printf("%-12s %10s %10s\n", "program", "ours", "lua");
    for (const auto& script : scripts) {
        const auto wanted = [&](const char* name) { return script.stem() == name; };
        if (argc <= 2 || std::any_of(argv + 2, argv + argc, wanted)) {
            Compare(std::filesystem::read_symlink("/proc/self/exe").string(), script, rounds);
        }
    }
    return 0;
}
