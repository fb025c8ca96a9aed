// The window library's own raster painter, measured beside the views: the same lines, already projected, on a
// 32-bit picture in memory, which is the format that it draws fastest. Built without the library there is
// none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quelmark {

struct Line {
    int x0, y0, x1, y1;
};

bool PainterIsThere();
// A picture of this size; the lines that PainterDrawLines and PainterTurnLines then draw.
void PainterBegin(int width, int height, const std::vector<Line>& lines);
void PainterEnd();
void PainterFill();
void PainterDrawLines();
// By exclusive-or.
void PainterTurnLines();
// A picture of palette indices, `stride` bytes a row, drawn whole.
void PainterDrawIndexed(const std::uint8_t* pixels, int width, int height, std::ptrdiff_t stride);

}  // namespace quelmark
