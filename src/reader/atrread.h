// Attribute blocks of shape files.
#pragma once

#include <cstdint>
#include <string_view>

namespace quelmark {

// Reads the block whose "atr" is the current token and stands behind it afterwards; behind a faulty header in
// front of the next block. Mode 1 merges by name, mode 0 makes a new attribute. `file` becomes the
// attribute's file.
void ReadAttributeBlock(std::string_view file, std::int32_t mode);

}  // namespace quelmark
