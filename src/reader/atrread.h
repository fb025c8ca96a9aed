// Attribute blocks of shape files.
#pragma once

#include <cstdint>
#include <string_view>

namespace quelmark {

// Reads the block whose "atr" is the current token. Mode 1 merges by name, mode 0 makes a new attribute.
// `file` becomes the attribute's file. False when the block could not be read; the reader stands behind it,
// or where it failed.
bool ReadAttributeBlock(std::string_view file, std::int32_t mode);
// Skips a block from its current token on: up to and including its closing brace.
void SkipBlock();

}  // namespace quelmark
