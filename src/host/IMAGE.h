// Pictures of the views as PNG files.
#pragma once

#include <string>

#include "view/RASTER.h"

namespace quelmark {

// A part of the frame as a PNG with a palette of 16 colours, one byte a pixel (ISO/IEC 15948, compressed by
// zlib). "" when the part is empty.
std::string PngOf(const PixelRect& part);

}  // namespace quelmark
