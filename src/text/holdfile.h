// Files that one running program holds against all others, as a sign that it still runs.
#pragma once

#include <string_view>

namespace quelmark {

// True when this program holds the file, which is made when it is missing, until it ends, however it ends.
// False when another holds it or it cannot be opened for writing.
bool HoldFile(std::string_view scriptPath);

}  // namespace quelmark
