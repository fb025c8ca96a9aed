#include "text/path.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "text/cp932.h"

namespace quelmark {
namespace {

constexpr off_t TEXT_BYTES_MOST = 1 << 30;

bool Exists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

bool IsDirectory(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsRegular(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

char AsciiLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

bool SameButCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (AsciiLower(a[i]) != AsciiLower(b[i])) {
            return false;
        }
    }
    return true;
}

struct DirectoryClose {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

// The entry of a directory whose name differs from `name` in case at most; empty when there is none. Of
// several the first in byte order, so that the answer does not depend on the file system.
std::string EntryBesideCase(const std::string& directory, std::string_view name) {
    std::string found;
    const std::unique_ptr<DIR, DirectoryClose> entries(
        ::opendir(directory.empty() ? "." : directory.c_str()));
    while (entries) {
        const dirent* entry = ::readdir(entries.get());
        if (entry == nullptr) {
            break;
        }
        if (SameButCase(entry->d_name, name) && (found.empty() || found > entry->d_name)) {
            found = entry->d_name;
        }
    }
    return found;
}

// UTF-8 with slashes, without the drive.
std::optional<std::string> Plain(std::string_view scriptPath) {
    if (scriptPath.size() >= 2 && scriptPath[1] == ':') {
        scriptPath.remove_prefix(2);
    }
    std::string slashes(scriptPath);
    ReplaceCharacter(slashes, '\\', '/');
    if (slashes.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::string utf8 = Cp932ToUtf8(slashes);
    if (utf8.find("\xEF\xBF\xBD") != std::string::npos) {
        return std::nullopt;  // no cp932 text: it names nothing
    }
    return utf8;
}

// The flags of open for a mode of fopen.
int OpenFlags(std::string_view mode) {
    const bool both = mode.find('+') != std::string_view::npos;
    switch (mode[0]) {
        case 'w':
            return O_CREAT | O_TRUNC | (both ? O_RDWR : O_WRONLY);
        case 'a':
            return O_CREAT | O_APPEND | (both ? O_RDWR : O_WRONLY);
        default:
            return both ? O_RDWR : O_RDONLY;
    }
}

}  // namespace

std::optional<std::string> HostPath(std::string_view scriptPath) {
    auto plain = Plain(scriptPath);
    if (!plain || Exists(*plain)) {
        return plain;
    }
    std::string built;
    for (std::size_t at = 0; at < plain->size();) {
        if ((*plain)[at] == '/') {
            built += '/';
            ++at;
            continue;
        }
        const std::size_t end = std::min(plain->find('/', at), plain->size());
        std::string component = plain->substr(at, end - at);
        if (!Exists(built + component)) {
            const std::string other = EntryBesideCase(built, component);
            if (other.empty()) {
                return built + plain->substr(at);
            }
            component = other;
        }
        built += component;
        at = end;
    }
    return built;
}

std::optional<std::string> ScriptPath(std::string_view hostPath) {
    auto text = Utf8ToCp932(hostPath);
    if (!text) {
        return std::nullopt;
    }
    ReplaceCharacter(*text, '/', '\\');
    if (text->starts_with('\\')) {
        text->insert(0, "C:");
    }
    return text;
}

bool PathExists(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    return path && Exists(*path);
}

bool PathIsDirectory(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    return path && IsDirectory(*path);
}

std::optional<std::string> CurrentDirectory() {
    char buffer[PATH_MAX];
    if (::getcwd(buffer, sizeof buffer) == nullptr) {
        return "C:\\";
    }
    return ScriptPath(buffer);
}

std::string_view FileNamePart(std::string_view scriptPath) {
    const std::size_t separator = FindLastOf(scriptPath, "\\/");
    return separator == std::string_view::npos ? scriptPath : scriptPath.substr(separator + 1);
}

std::string_view DirectoryPart(std::string_view scriptPath) {
    const std::size_t separator = FindLastOf(scriptPath, "\\/");
    return separator == std::string_view::npos ? std::string_view() : scriptPath.substr(0, separator + 1);
}

std::string FileStamp(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    struct stat status {};
    if (!path || path->empty() || ::stat(path->c_str(), &status) != 0) {
        return "";
    }
    return std::to_string(status.st_size) + ' ' + std::to_string(status.st_mtim.tv_sec) + '.' +
           std::to_string(status.st_mtim.tv_nsec);
}

bool HasExtension(std::string_view scriptPath) {
    return FindLastOf(FileNamePart(scriptPath), ".") != std::string_view::npos;
}

FilePtr OpenFile(std::string_view scriptPath, const char* mode) {
    const auto path = HostPath(scriptPath);
    if (!path || IsDirectory(*path)) {
        return nullptr;
    }
    // Opening a pipe would wait for its other end.
    const int descriptor = ::open(path->c_str(), OpenFlags(mode) | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return nullptr;
    }
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    FilePtr file(::fdopen(descriptor, mode));
    if (!file) {
        ::close(descriptor);
    }
    return file;
}

FilePtr OpenRegularFile(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    if (!path || !IsRegular(*path)) {
        return nullptr;
    }
    return FilePtr(std::fopen(path->c_str(), "rb"));
}

std::optional<std::string> ReadWholeFile(std::string_view scriptPath) {
    const FilePtr file = OpenRegularFile(scriptPath);
    struct stat status {};
    if (!file || ::fstat(::fileno(file.get()), &status) != 0 || status.st_size > TEXT_BYTES_MOST) {
        return std::nullopt;
    }
    std::string text;
    text.resize(static_cast<std::size_t>(status.st_size));
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    char buffer[65536];  // for what has been added since
    for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0;) {
        text.append(buffer, count);
    }
    if (std::ferror(file.get()) != 0) {
        return std::nullopt;
    }
    return text;
}

}  // namespace quelmark
