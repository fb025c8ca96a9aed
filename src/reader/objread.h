// Reads shape files into the model store.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quelmark {

// Start-up directory, with its trailing separator, that the part search begins with.
void ReaderInit(std::string_view programDirectory);

// Asked now and then while reading whether the ESC key has been pressed; null: never.
using CancelCheck = bool (*)();
void ReaderSetCancelCheck(CancelCheck check);

// Reads a shape file (".suf" is added to a name without an extension): attributes, objects, polygons. Mode 1
// merges objects by name, mode 0 always creates. True when no fault of severity 10 or more was reported.
bool ReadShapeFile(std::string_view name, std::int32_t mode);
// Reads a frame file: the shape that its `obj` names, found by the part search and placed by its `mat`. A
// shape file is read as by ReadShapeFile.
bool ReadFrameFile(std::string_view name, std::int32_t mode);
// Reads the attribute blocks of a shape file; mode 1 merges by name. True as above.
bool ReadAttributeFile(std::string_view name, std::int32_t mode);
// What was read last ended before its time: a table or the data buffer is full, its references are too many,
// or the ESC key was pressed.
bool ReadWasStopped();
// The part search: true and the path found, or false and the name as given.
bool FindPartFile(std::string_view name, std::string_view shapeDirectory, std::string& path);

}  // namespace quelmark
