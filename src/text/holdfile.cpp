#include "text/holdfile.h"

#include <sys/file.h>

#include <string>
#include <unordered_map>

#include "text/path.h"

namespace quelmark {
namespace {

std::unordered_map<std::string, FilePtr> heldFiles;  // by host path

}  // namespace

bool HoldFile(std::string_view scriptPath) {
    const auto path = HostPath(scriptPath);
    if (!path || heldFiles.contains(*path)) {
        return path.has_value();
    }
    FilePtr file = OpenFile(scriptPath, "ae");
    if (!file || ::flock(::fileno(file.get()), LOCK_EX | LOCK_NB) != 0) {
        return false;
    }
    heldFiles.emplace(*path, std::move(file));
    return true;
}

}  // namespace quelmark
