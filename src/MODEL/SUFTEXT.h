// The text that the model's writers put into files: attribute and object blocks of shape files, and frame
// files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "MATLIB/SETMAT.h"
#include "MODEL/ATR.h"

namespace quelmark {

// Each text below is nothing, with a warning that quotes the name, when a name in it could not be read back:
// one that is empty, a number or longer than 31 bytes, or that has a blank, a bracket or the beginning of a
// comment.
using SufText = std::optional<std::string>;

SufText AttributeText(const AttributeRecord& attribute);
// Every attribute.
SufText AttributesText();
// The selected polygons, whatever their object, as a block of this name.
SufText ObjectText(std::string_view name);
// Every attribute, then every object with its own polygons; polygons whose number names no object are in a
// block "no". With selectedOnly the selected polygons, their attributes and their objects alone.
SufText ModelText(bool selectedOnly);
// A one-frame scene that places the shape `object` by the matrix. `background` is red, green, blue, 1.0 at
// most bright; black is left out. `angle` is the eye's, in degrees.
SufText FrameText(const Matrix& matrix, std::string_view object, const Vector& background,
                  std::int32_t angle);

inline constexpr std::int32_t FILE_OVERWRITE = 0, FILE_APPEND = 1;
// Puts a block into a file: mode FILE_APPEND adds it, every other replaces the file. False, with the warning
// "ファイルがオープンできません", when it cannot be opened; false when there is no text, or not all of it
// could be written.
bool SaveBlock(std::string_view fileName, const SufText& text, std::int32_t mode);

}  // namespace quelmark
