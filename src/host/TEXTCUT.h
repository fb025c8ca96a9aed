// Small helpers for cp932 text that is kept in a limited room or shown on one line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quelmark {

// At most `bytes` bytes, never half a double-byte character.
std::string_view CutText(std::string_view text, std::size_t bytes);
// The lines of a text, split at line ends; a line end at the very end starts no further line.
std::vector<std::string> SplitLines(std::string_view text);
// Control characters shown as blanks.
std::string OneLineText(std::string_view text);

}  // namespace quelmark
