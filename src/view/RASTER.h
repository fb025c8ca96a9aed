// The frame buffer and exact lines in it. The pixels of a clipped line are those that the whole line has
// inside the rectangle, and a line has the same pixels in both directions.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "view/LANES.h"

namespace quelmark {

// Half-open: right and bottom lie outside.
struct PixelRect {
    std::int32_t left, top, right, bottom;
};
constexpr bool IsEmpty(const PixelRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}
// Of rectangles that lie apart: one without width or height, but never with its sides swapped.
PixelRect Intersection(const PixelRect& a, const PixelRect& b);

// A point of the pane; far outside it after a large zoom. Lines beyond PANE_MOST bend there, so that the
// products of their distances fit 128 bits.
struct PanePoint {
    std::int64_t x, y;

    friend auto operator<=>(const PanePoint&, const PanePoint&) = default;
};
inline constexpr std::int64_t PANE_MOST = std::int64_t{1} << 60;

// Pixels row by row, one palette index each; rows are `stride` bytes apart, with unused ones between.
struct FrameBuffer {
    std::int32_t width = 0, height = 0, stride = 0;
    std::vector<std::uint8_t> pixels;

    void Resize(std::int32_t newWidth, std::int32_t newHeight);
    PixelRect Bounds() const { return {0, 0, width, height}; }
    std::uint8_t* Row(std::int32_t y) { return pixels.data() + static_cast<std::ptrdiff_t>(y) * stride; }
    const std::uint8_t* Row(std::int32_t y) const {
        return pixels.data() + static_cast<std::ptrdiff_t>(y) * stride;
    }
};

enum class Ink : std::uint8_t { Set, Or, Xor };

void FillRect(FrameBuffer& frame, const PixelRect& rect, std::uint8_t colour, Ink ink = Ink::Set);
// A line from a to b, both ends included, inside `clip`, which lies within the frame.
void DrawLine(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, std::uint8_t colour,
              Ink ink = Ink::Set);
// The same for a line that lies within the frame altogether.
void DrawLineInside(FrameBuffer& frame, std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1,
                    std::uint8_t colour);

// The closed outline of four points, inside `clip`; the points lie within ±2^29.
void DrawQuad(FrameBuffer& frame, const PixelRect& clip, Lanes x, Lanes y, std::uint8_t colour);

// What the palette's entries look like as 32-bit pixels.
using FramePalette = std::array<std::uint32_t, 16>;

// Palette indices (their lower four bits) to 32-bit pixels, in one pass over the area, which lies within the
// frame. `picture` is where the frame's first pixel goes; `stride` its pixels a row.
void ExpandFrame(const FrameBuffer& frame, const PixelRect& area, const FramePalette& palette,
                 std::uint32_t* picture, std::ptrdiff_t stride);
// After a change of one entry: the pixels of the whole frame that are of it once more, some neighbours with
// them. `changed` becomes the rectangles that hold what was written, row of rectangles by row, from the left
// to the right, none touching the next beside it; none when no pixel is of the entry.
void RecolourFrame(const FrameBuffer& frame, std::uint8_t entry, const FramePalette& palette,
                   std::uint32_t* picture, std::ptrdiff_t stride, std::vector<PixelRect>& changed);

}  // namespace quelmark
