#include "host/CHILD.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>
#include <thread>

#include "ML/ML.h"
#include "host/HOST.h"
#include "host/STARTUP.h"
#include "text/cp932.h"
#include "text/path.h"

extern char** environ;

namespace quelmark {
namespace {

constexpr const char* EXTENSIONS[] = {"", ".COM", ".EXE", ".BAT", ".PIF"};

std::vector<pid_t> running;  // started and not waited for

bool IsFile(std::string_view path) {
    return PathExists(path) && !PathIsDirectory(path);
}

std::string_view ProgramName(std::string_view command) {
    command = command.substr(0, command.find(' '));
    return command.substr(0, command.find('\t'));
}

char AsciiUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - ('a' - 'A')) : character;
}

bool IsHelpFile(std::string_view name) {
    if (name.size() <= 4) {
        return false;
    }
    std::string ending(name.substr(name.size() - 4));
    for (char& character : ending) {
        character = AsciiUpper(character);
    }
    return ending == ".HLP";
}

// The program's file in the program directory, with one of the extensions of programs.
std::optional<std::string> InProgramDirectory(std::string_view name) {
    for (const char* extension : EXTENSIONS) {
        std::string candidate = ProgramDirectory() + std::string(name) + extension;
        if (IsFile(candidate)) {
            return candidate;
        }
    }
    return std::nullopt;
}

void ReapEnded() {
    std::erase_if(running, [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
}

std::optional<pid_t> Spawn(const std::vector<std::string>& words) {
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (const std::string& word : words) {
        argv.push_back(const_cast<char*>(word.c_str()));
    }
    argv.push_back(nullptr);
    // What this program ignores is the child's to decide.
    sigset_t defaults;
    ::sigemptyset(&defaults);
    ::sigaddset(&defaults, SIGXFSZ);
    ::sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = 0;
    std::fflush(stdout);
    const bool spawned =
        !words.empty() && ::posix_spawnp(&process, argv[0], nullptr, &attributes, argv.data(), environ) == 0;
    ::posix_spawnattr_destroy(&attributes);
    return spawned ? std::optional(process) : std::nullopt;
}

// An error leaves the wait, the break key and the window's close among them; the process runs on.
void WaitFor(pid_t process, std::uint32_t waitMost) {
    using Clock = std::chrono::steady_clock;
    constexpr auto POLL = std::chrono::milliseconds(5);
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(waitMost);
    running.push_back(process);
    while (::waitpid(process, nullptr, WNOHANG) == 0) {
        if (Clock::now() >= end) {
            return;
        }
        HostWindow().Deliver(0);
        ExecPoll();
        HostWindow().KeepLastKey();
        std::this_thread::sleep_for(POLL);
    }
    std::erase(running, process);
}

}  // namespace

std::vector<std::string> CommandWords(std::string_view commandLine) {
    std::vector<std::string> words;
    bool inWord = false;
    bool quoted = false;
    for (std::size_t i = 0; i < commandLine.size(); ++i) {
        const char character = commandLine[i];
        if ((character == ' ' || character == '\t') && !quoted) {
            inWord = false;
            continue;
        }
        if (!inWord) {
            words.emplace_back();
            inWord = true;
        }
        if (character == '"') {
            quoted = !quoted;
            continue;
        }
        words.back() += character;
        if (IsLeadByte(static_cast<unsigned char>(character)) && i + 1 < commandLine.size()) {
            words.back() += commandLine[++i];
        }
    }
    for (std::string& word : words) {
        const bool hasDrive = word.size() > 2 && AsciiUpper(word[0]) == 'C' && word[1] == ':' &&
                              (word[2] == '\\' || word[2] == '/');
        word = hasDrive ? HostPath(word).value_or(word) : Cp932ToUtf8(word);
    }
    return words;
}

void ChildStart(std::string_view command, bool wait, std::uint32_t waitMost) {
    ReapEnded();
    const std::string_view name = ProgramName(command);
    const auto found = InProgramDirectory(name);
    if (IsHelpFile(name) && (found || IsFile(name))) {
        HostWindow().OpenDocument(HostPath(found ? *found : name).value_or(""));
        return;
    }
    std::vector<std::string> words = CommandWords(command);
    if (found && !words.empty()) {
        words[0] = HostPath(*found).value_or(words[0]);
    } else if (!words.empty() && IsFile(name)) {
        // A file of the current directory is a program too, as it is where names carry drives.
        const std::string file = HostPath(name).value_or(words[0]);
        words[0] = file.find('/') == std::string::npos ? "./" + file : file;
    }
    HostWindow().Deliver(0);  // a program that draws into the window is not painted over
    const auto process = Spawn(words);
    if (!process) {
        return;
    }
    if (wait) {
        WaitFor(*process, waitMost);
    } else {
        running.push_back(*process);
    }
}

}  // namespace quelmark
