#include "view/RASTER.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace quelmark {
namespace {

// Wide enough for products of any two pane distances.
__extension__ using Wide = __int128;

template <Ink ink>
void Put(std::uint8_t* pixel, std::uint8_t colour) {
    if constexpr (ink == Ink::Set) {
        *pixel = colour;
    } else if constexpr (ink == Ink::Or) {
        *pixel |= colour;
    } else {
        *pixel ^= colour;
    }
}

// `count` + 1 pixels: each step goes `along`, and `across` as well whenever the error runs over.
template <Ink ink>
void Run(std::uint8_t* pixel, std::int64_t count, std::ptrdiff_t along, std::ptrdiff_t across,
         std::int64_t error, std::int64_t rise, std::int64_t run, std::uint8_t colour) {
    Put<ink>(pixel, colour);
    while (count-- > 0) {
        error += rise;
        const bool over = error >= run;
        pixel += along + (over ? across : 0);
        error -= over ? run : 0;
        Put<ink>(pixel, colour);
    }
}

Wide FloorDivide(Wide a, Wide b) {
    const Wide quotient = a / b;
    return a % b < 0 ? quotient - 1 : quotient;
}

// A line along its major axis u from the smaller u on; v is the other axis. At step k the pixel is v0 + sign
// · floor((2·rise·k + length) / (2·length)).
struct MajorLine {
    Wide u0, v0;
    Wide length, rise;  // both at least 0, rise <= length
    std::int32_t sign;

    Wide StepsAcross(Wide k) const {
        return length == 0 ? 0 : FloorDivide(2 * rise * k + length, 2 * length);
    }
    // The first step that has gone `across` pixels.
    Wide FirstStep(Wide across) const {
        const Wide needed = 2 * length * across - length;
        return needed <= 0 ? 0 : (needed + 2 * rise - 1) / (2 * rise);
    }
};

// Cuts the steps [first, last] to those whose v lies in [low, high).
bool CutAcross(const MajorLine& line, Wide low, Wide high, Wide& first, Wide& last) {
    // In steps across from v0, counted in the line's own direction.
    const Wide least = line.sign > 0 ? low - line.v0 : line.v0 - (high - 1);
    const Wide most = line.sign > 0 ? high - 1 - line.v0 : line.v0 - low;
    if (most < 0) {
        return false;
    }
    if (line.rise == 0) {
        return least <= 0;
    }
    if (least > 0) {
        first = std::max(first, line.FirstStep(least));
    }
    last = std::min(last, line.FirstStep(most + 1) - 1);
    return first <= last;
}

template <Ink ink>
void DrawMajor(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, bool steep,
               std::uint8_t colour) {
    if (steep) {
        std::swap(a.x, a.y);
        std::swap(b.x, b.y);
    }
    if (a.x > b.x) {
        std::swap(a, b);
    }
    const Wide delta = static_cast<Wide>(b.y) - a.y;
    const MajorLine line{a.x, a.y, static_cast<Wide>(b.x) - a.x, delta < 0 ? -delta : delta,
                         delta < 0 ? -1 : 1};
    const Wide uLow = steep ? clip.top : clip.left;
    const Wide uHigh = steep ? clip.bottom : clip.right;
    Wide first = std::max<Wide>(0, uLow - line.u0);
    Wide last = std::min<Wide>(line.length, uHigh - 1 - line.u0);
    if (first > last ||
        !CutAcross(line, steep ? clip.left : clip.top, steep ? clip.right : clip.bottom, first, last)) {
        return;
    }
    const Wide across = line.StepsAcross(first);
    const auto u = static_cast<std::int32_t>(line.u0 + first);
    const auto v = static_cast<std::int32_t>(line.v0 + line.sign * across);
    std::uint8_t* pixel = steep ? frame.Row(u) + v : frame.Row(v) + u;
    const Wide error = 2 * line.rise * first + line.length - 2 * line.length * across;
    // Far ends make the numbers too large for the loop's: scaled down together they still step at the same
    // pixels only when exact, so such a line is stepped by the formula.
    constexpr Wide LIMIT = Wide{1} << 60;
    const std::ptrdiff_t along = steep ? frame.stride : 1;
    const std::ptrdiff_t side = (steep ? 1 : frame.stride) * line.sign;
    if (2 * line.length < LIMIT) {
        Run<ink>(pixel, static_cast<std::int64_t>(last - first), along, side,
                 static_cast<std::int64_t>(error), static_cast<std::int64_t>(2 * line.rise),
                 static_cast<std::int64_t>(2 * line.length), colour);
        return;
    }
    Wide gone = across;
    for (Wide k = first; k <= last; ++k) {
        const Wide now = line.StepsAcross(k);
        pixel += now != gone ? side : 0;
        gone = now;
        Put<ink>(pixel, colour);
        pixel += along;
    }
}

template <Ink ink>
void DrawAny(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, std::uint8_t colour) {
    const Wide width = static_cast<Wide>(b.x) - a.x;
    const Wide height = static_cast<Wide>(b.y) - a.y;
    const bool steep = (height < 0 ? -height : height) > (width < 0 ? -width : width);
    DrawMajor<ink>(frame, clip, a, b, steep, colour);
}

bool Inside(const PixelRect& rect, const PanePoint& point) {
    return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}

}  // namespace

PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

void FrameBuffer::Resize(std::int32_t newWidth, std::int32_t newHeight) {
    width = newWidth;
    height = newHeight;
    stride = newWidth;
    pixels.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height), 0);
}

void FillRect(FrameBuffer& frame, const PixelRect& wanted, std::uint8_t colour, Ink ink) {
    const PixelRect rect = Intersection(wanted, frame.Bounds());
    if (IsEmpty(rect)) {
        return;
    }
    const auto count = static_cast<std::size_t>(rect.right - rect.left);
    for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
        std::uint8_t* row = frame.Row(y) + rect.left;
        if (ink == Ink::Set) {
            std::memset(row, colour, count);
        } else {
            for (std::size_t x = 0; x < count; ++x) {
                row[x] = static_cast<std::uint8_t>(ink == Ink::Or ? row[x] | colour : row[x] ^ colour);
            }
        }
    }
}

void DrawLineInside(FrameBuffer& frame, std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1,
                    std::uint8_t colour) {
    const std::int32_t width = std::abs(x1 - x0);
    const std::int32_t height = std::abs(y1 - y0);
    const bool steep = height > width;
    if (steep ? y0 > y1 : x0 > x1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    std::uint8_t* pixel = frame.Row(y0) + x0;
    if (!steep && height == 0) {
        std::memset(pixel, colour, static_cast<std::size_t>(width) + 1);
        return;
    }
    const std::ptrdiff_t stride = frame.stride;
    std::int32_t count = steep ? height : width;
    const std::int32_t rise = 2 * (steep ? width : height);
    const std::int32_t run = 2 * count;
    const std::ptrdiff_t along = steep ? stride : 1;
    const std::ptrdiff_t diagonal = steep ? stride + (x1 < x0 ? -1 : 1) : 1 + (y1 < y0 ? -stride : stride);
    std::int32_t error = count - run;  // kept below 0: it runs over at 0
    for (;;) {
        *pixel = colour;
        if (count-- == 0) {
            return;
        }
        error += rise;
        if (error >= 0) {
            error -= run;
            pixel += diagonal;
        } else {
            pixel += along;
        }
    }
}

void DrawLine(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, std::uint8_t colour,
              Ink ink) {
    if (IsEmpty(clip)) {
        return;
    }
    // Most lines lie wholly on one side of the rectangle or wholly inside.
    if ((a.x < clip.left && b.x < clip.left) || (a.x >= clip.right && b.x >= clip.right) ||
        (a.y < clip.top && b.y < clip.top) || (a.y >= clip.bottom && b.y >= clip.bottom)) {
        return;
    }
    if (ink == Ink::Set && Inside(clip, a) && Inside(clip, b)) {
        DrawLineInside(frame, static_cast<std::int32_t>(a.x), static_cast<std::int32_t>(a.y),
                       static_cast<std::int32_t>(b.x), static_cast<std::int32_t>(b.y), colour);
        return;
    }
    switch (ink) {
        case Ink::Set:
            return DrawAny<Ink::Set>(frame, clip, a, b, colour);
        case Ink::Or:
            return DrawAny<Ink::Or>(frame, clip, a, b, colour);
        case Ink::Xor:
            return DrawAny<Ink::Xor>(frame, clip, a, b, colour);
    }
}

}  // namespace quelmark
