// Script functions that read and write shape and frame files.
#pragma once

#include <cstdint>

namespace quelmark {

// Writes the selected polygons as object `objno` into that object's file. False when the slot is unused, the
// file cannot be opened (with a warning) or not written whole.
bool ObjWrite(std::int32_t objno, std::int32_t mode);

void FileLibraryRegister();

}  // namespace quelmark
