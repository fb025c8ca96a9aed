// From palette indices to what a window shows.
#include <cstring>

#include "view/RASTER.h"

namespace quelmark {

void ExpandFrame(const FrameBuffer& frame, const PixelRect& area, const FramePalette& palette,
                 std::uint32_t* picture, std::ptrdiff_t stride) {
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        const std::uint8_t* const from = frame.Row(y);
        std::uint32_t* const to = picture + y * stride;
        for (std::int32_t x = area.left; x < area.right; ++x) {
            to[x] = palette[from[x] & 15U];
        }
    }
}

PixelRect RowsWith(const FrameBuffer& frame, std::uint8_t colour) {
    PixelRect rows{0, 0, frame.width, 0};
    for (std::int32_t y = 0; y < frame.height; ++y) {
        if (std::memchr(frame.Row(y), colour, static_cast<std::size_t>(frame.width)) != nullptr) {
            rows.top = rows.bottom == 0 ? y : rows.top;
            rows.bottom = y + 1;
        }
    }
    return rows;
}

}  // namespace quelmark
