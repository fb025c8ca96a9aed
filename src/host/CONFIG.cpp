#include "host/CONFIG.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "ML/ERROR.h"
#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view BLANKS = " \t\r\n\v\f";

std::string configPath;
std::vector<ConfigEntry> entries;

std::string WithSeparator(std::string_view directory) {
    std::string text(directory);
    const std::size_t last = FindLastOf(text, "\\/:");
    if (text.empty() || last != text.size() - 1) {
        text += '\\';
    }
    return text;
}

// The whole path of a relative one; the path as it is when scripts cannot be told the current directory's
// name.
std::string InCurrentDirectory(std::string_view name) {
    const bool absolute =
        name.starts_with('\\') || name.starts_with('/') || (name.size() > 1 && name[1] == ':');
    const auto directory = CurrentDirectory();
    return !absolute && directory ? WithSeparator(*directory) + std::string(name) : std::string(name);
}

// A link is followed, so that the file it means is replaced and not the link.
std::optional<std::string> LinkTarget(const std::string& path) {
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) != nullptr ? std::optional<std::string>(resolved)
                                                         : std::nullopt;
}

// The file gets the permissions of the one whose place it will take.
bool WriteHostFile(const std::string& path, const std::string& like, std::string_view text) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    struct stat status {};
    const bool written = ::stat(like.c_str(), &status) == 0 &&
                         ::fchmod(::fileno(file), status.st_mode & 07777) == 0 &&
                         std::fwrite(text.data(), 1, text.size(), file) == text.size() &&
                         std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0;
    return std::fclose(file) == 0 && written;
}

// The file's text with the entry in it; lines, comments and line ends stay as they are.
std::string TextWithEntry(std::string_view text, std::string_view key, const std::string& line, bool utf8) {
    const std::string_view lineEnd = text.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    std::string out;
    bool replaced = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        const std::string_view old = text.substr(at, end - at);
        const auto entry = ConfigSplit(utf8 ? Utf8ToCp932Lossy(old) : std::string(old));
        if (!replaced && entry && entry->key == key) {
            out += line;
            out += lineEnd;
            replaced = true;
        } else {
            out += old;
        }
        at = end;
    }
    if (!replaced) {
        if (!out.empty() && out.back() != '\n') {
            out += lineEnd;
        }
        out += line;
        out += lineEnd;
    }
    return out;
}

}  // namespace

std::optional<ConfigEntry> ConfigSplit(std::string_view line) {
    const std::size_t start = line.find_first_not_of(BLANKS);
    if (start == std::string_view::npos || line[start] == '#') {
        return std::nullopt;
    }
    line.remove_prefix(start);
    const std::size_t keyEnd = std::min(line.find_first_of(" \t\r\n\v\f="), line.size());
    ConfigEntry entry;
    entry.key = line.substr(0, keyEnd);
    line.remove_prefix(keyEnd);
    const auto skipBlanks = [&line] {
        line.remove_prefix(std::min(line.find_first_not_of(BLANKS), line.size()));
    };
    skipBlanks();
    if (line.starts_with('=')) {
        line.remove_prefix(1);
        skipBlanks();
    }
    entry.value = line.substr(0, line.find_last_not_of(BLANKS) + 1);
    return entry;
}

std::string ConfigSearchPath(std::string_view variable, std::string_view value,
                             std::string_view programDirectory) {
    std::string path(value);
    if (variable == "MODELPATH") {
        return path;
    }
    const char* separator = variable.empty() ? "" : ";";
    for (const char* sub : {"", "MACRO", "QUELMARK", "MODEL"}) {
        path += separator;
        path += programDirectory;
        path += sub;
        separator = ";";
    }
    return path;
}

std::optional<std::string> ConfigFind(std::string_view pathList, std::string_view name) {
    if (PathExists(name)) {
        return InCurrentDirectory(name);
    }
    while (!pathList.empty()) {
        const std::size_t end = std::min(FindFirstOf(pathList, ";"), pathList.size());
        std::string candidate = WithSeparator(pathList.substr(0, end));
        candidate += name;
        if (end > 0 && PathExists(candidate)) {
            return candidate;
        }
        pathList.remove_prefix(std::min(end + 1, pathList.size()));
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> ConfigReadLines(std::string_view path) {
    auto bytes = ReadWholeFile(path);
    if (!bytes) {
        return std::nullopt;
    }
    const bool utf8 = bytes->starts_with(UTF8_MARK);
    std::vector<std::string> lines;
    for (std::size_t at = utf8 ? UTF8_MARK.size() : 0; at < bytes->size();) {
        const std::size_t end = std::min(bytes->find('\n', at), bytes->size());
        const std::string line = bytes->substr(at, end - at);
        lines.push_back(utf8 ? Utf8ToCp932Lossy(line) : line);
        if (utf8 && ConfigSplit(line) && !Utf8ToCp932(line)) {
            FatalError("%s の %d 行目はシフトJISで表せないので使えません。"_sjis,
                       std::string(FileNamePart(path)).c_str(), static_cast<int>(lines.size()));
        }
        at = end + 1;
    }
    return lines;
}

void ConfigKeep(std::string_view path, const std::vector<std::string>& lines) {
    configPath = InCurrentDirectory(path);  // scripts may change the current directory
    entries.clear();
    for (const std::string& line : lines) {
        auto entry = ConfigSplit(line);
        if (entry && !entry->value.empty()) {
            entries.push_back(std::move(*entry));
        }
    }
}

std::string ConfigValue(std::string_view key) {
    const auto found = std::ranges::find(entries, key, &ConfigEntry::key);
    return found == entries.end() ? std::string() : found->value;
}

bool ConfigWrite(std::string_view key, std::string_view value) {
    std::string line(key);
    line += "\t= ";
    line += value;
    const auto entry = ConfigSplit(line);
    if (key.empty() || !entry || entry->key != key || line.find_first_of("\n\0"sv) != std::string::npos) {
        return false;  // it would be read as something else, or as more than one line
    }
    const auto given = HostPath(configPath);
    const auto path = given ? LinkTarget(*given) : given;
    const auto text = path ? ReadWholeFile(configPath) : std::nullopt;
    if (!text || ::access(path->c_str(), W_OK) != 0) {
        return false;
    }
    const bool utf8 = text->starts_with(UTF8_MARK);
    const std::string_view mark = utf8 ? UTF8_MARK : "";
    const std::string changed = std::string(mark) + TextWithEntry(std::string_view(*text).substr(mark.size()),
                                                                  key, utf8 ? Cp932ToUtf8(line) : line, utf8);
    const std::size_t dot = path->rfind('.');
    const std::size_t slash = path->rfind('/');
    const bool hasDot = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string sibling = (hasDot ? path->substr(0, dot) : *path) + ".tmp";
    if (!WriteHostFile(sibling, *path, changed) || std::rename(sibling.c_str(), path->c_str()) != 0) {
        ::unlink(sibling.c_str());
        return false;
    }
    const auto found = std::ranges::find(entries, key, &ConfigEntry::key);
    if (found != entries.end()) {
        found->value = value;
    } else {
        entries.push_back({std::string(key), std::string(value)});
    }
    return true;
}

}  // namespace quelmark
