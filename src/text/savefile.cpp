#include "text/savefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "text/cp932.h"
#include "text/path.h"

namespace quelmark {
namespace {

constexpr mode_t NEW_FILE_MODE = 0666;

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { Close(); }

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    bool Close() {
        const int number = number_;
        number_ = -1;
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// A link is followed, so that the file it means is replaced, or made, and not the link. "" for links that
// lead nowhere.
std::string Target(std::string path) {
    constexpr int LINKS_MOST = 40;
    char resolved[PATH_MAX];
    for (int links = 0; links < LINKS_MOST; ++links) {
        if (::realpath(path.c_str(), resolved) != nullptr) {
            return resolved;
        }
        const ssize_t length = ::readlink(path.c_str(), resolved, sizeof resolved);
        if (length < 0) {
            return path;
        }
        const std::string_view meant(resolved, static_cast<std::size_t>(length));
        const std::size_t folder = meant.starts_with('/') ? 0 : path.rfind('/') + 1;  // 0 without a separator
        path = path.substr(0, folder).append(meant);
    }
    return "";
}

// The mode that a new file gets.
mode_t FreshMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return NEW_FILE_MODE & ~mask;
}

// Opening a pipe that nobody reads would wait for a reader; it is refused instead.
int OpenToWrite(const std::string& path, int flags) {
    const int number = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | flags, NEW_FILE_MODE);
    if (number >= 0) {
        ::fcntl(number, F_SETFL, ::fcntl(number, F_GETFL) & ~O_NONBLOCK);
    }
    return number;
}

SaveResult WriteDirectly(const std::string& path, std::string_view bytes) {
    Descriptor file(OpenToWrite(path, 0));
    if (!file.IsOpen()) {
        return SaveResult::notOpened;
    }
    return WriteAll(file.Number(), bytes) && file.Close() ? SaveResult::saved : SaveResult::notWritten;
}

}  // namespace

SaveResult SaveReplacing(std::string_view scriptPath, std::string_view bytes) {
    const auto given = HostPath(scriptPath);
    if (!given || given->empty()) {
        return SaveResult::notOpened;
    }
    const std::string path = Target(*given);
    if (path.empty()) {
        return SaveResult::notOpened;
    }
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        return SaveResult::notOpened;
    }
    if (exists && !S_ISREG(status.st_mode)) {
        return WriteDirectly(path, bytes);
    }
    if (exists && ::access(path.c_str(), W_OK) != 0) {
        return SaveResult::notOpened;  // the file itself is protected, whatever its folder allows
    }
    const std::size_t separator = path.rfind('/');
    std::string sibling = separator == std::string::npos ? "" : path.substr(0, separator + 1);
    sibling += ".saving-XXXXXX";
    Descriptor file(::mkostemp(sibling.data(), O_CLOEXEC));
    if (!file.IsOpen()) {
        return SaveResult::notOpened;
    }
    const mode_t mode = exists ? status.st_mode & 07777 : FreshMode();
    const bool complete = WriteAll(file.Number(), bytes) && ::fchmod(file.Number(), mode) == 0 &&
                          ::fsync(file.Number()) == 0 && file.Close() &&
                          ::rename(sibling.c_str(), path.c_str()) == 0;
    if (!complete) {
        ::unlink(sibling.c_str());
        return SaveResult::notWritten;
    }
    return SaveResult::saved;
}

bool BeginsWithUtf8Mark(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    struct stat status {};
    if (!path || ::stat(path->c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    const Descriptor file(::open(path->c_str(), O_RDONLY | O_CLOEXEC));
    char bytes[UTF8_MARK.size()];
    return file.IsOpen() && ::read(file.Number(), bytes, sizeof bytes) == sizeof bytes &&
           std::string_view(bytes, sizeof bytes) == UTF8_MARK;
}

SaveResult SaveAppending(std::string_view scriptPath, std::string_view bytes) {
    const auto path = HostPath(scriptPath);
    if (!path || path->empty()) {
        return SaveResult::notOpened;
    }
    Descriptor file(OpenToWrite(*path, O_CREAT | O_APPEND));
    struct stat before {};
    if (!file.IsOpen() || ::fstat(file.Number(), &before) != 0) {
        return SaveResult::notOpened;
    }
    if (WriteAll(file.Number(), bytes)) {
        return file.Close() ? SaveResult::saved : SaveResult::notWritten;
    }
    if (S_ISREG(before.st_mode) && ::ftruncate(file.Number(), before.st_size) != 0) {
        return SaveResult::notWritten;  // nothing more can be done; the reader reports the incomplete block
    }
    return SaveResult::notWritten;
}

}  // namespace quelmark
