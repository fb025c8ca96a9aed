#include "host/LOG.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::string logPath;  // host path, empty for no log

bool SameStream(int a, int b) {
    struct stat one {
    }, other{};
    return ::fstat(a, &one) == 0 && ::fstat(b, &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

std::string PathBeside(const std::string& programPath) {
    constexpr std::size_t EXTENSION = 4;  // with its dot
    if (programPath.size() <= EXTENSION) {
        return "";
    }
    const std::size_t dot = programPath.size() - EXTENSION;
    return programPath[dot] == '.' && programPath.find_last_of("./") == dot
               ? programPath.substr(0, dot) + ".log"
               : "";
}

}  // namespace

void LogOpen(const std::string& programPath) {
    const char* name = std::getenv("QUELMARKLOG");
    logPath = name != nullptr ? name : PathBeside(programPath);
    if (logPath.empty()) {
        return;
    }
    ::unlink(logPath.c_str());
    if (!FilePtr(std::fopen(logPath.c_str(), "ab"))) {
        const std::string message = Cp932ToUtf8("ログファイルに書けません: "_sjis) + logPath + "\n";
        std::fwrite(message.data(), 1, message.size(), stderr);
        logPath.clear();
    }
}

void LogWrite(std::string_view text) {
    if (logPath.empty()) {
        return;
    }
    if (const FilePtr file{std::fopen(logPath.c_str(), "ab")}) {
        std::fwrite(text.data(), 1, text.size(), file.get());
    }
}

void OutputWrite(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    LogWrite(text);
}

void TerminalShow(std::string_view message) {
    std::string line(message);
    line += '\n';
    OutputWrite(line);
    std::fflush(stdout);
    if (!SameStream(STDOUT_FILENO, STDERR_FILENO)) {
        const std::string utf8 = Cp932ToUtf8(line);
        std::fwrite(utf8.data(), 1, utf8.size(), stderr);
    }
}

}  // namespace quelmark
