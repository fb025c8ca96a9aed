#include "view/RASTER.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace quelmark {
namespace {

// Wide enough for products of any two pane distances.
__extension__ using Wide = __int128;

// Products of two distances between points within this fit 64 bits.
constexpr std::int64_t NARROW = std::int64_t{1} << 28;

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

constexpr std::int32_t CACHE_LINE = 64;

// ---- stepping by a fixed-point slope ----

// A line of up to STEPS_MOST steps goes across by floor(k · rise / length + 1/2) at step k. With the slope
// rounded up to 48 fractional bits that is (k · slope + half) >> 48 exactly: the error stays under
// STEPS_MOST² / 2^48 < 1 / (2 · STEPS_MOST), the least distance of an exact value below the next integer.
constexpr int SLOPE_BITS = 48;
constexpr std::uint64_t HALF_STEP = std::uint64_t{1} << (SLOPE_BITS - 1);
constexpr std::int64_t STEPS_MOST = 8192;
constexpr std::size_t TABLED_STEPS = 1024;
constexpr std::int32_t FILL_LEAST = 16;  // pixels of a horizontal line that are worth a call

constexpr std::uint64_t RoundedUpInverse(std::uint64_t length) {
    return ((std::uint64_t{1} << SLOPE_BITS) + length - 1) / length;
}

constexpr std::array<std::uint64_t, TABLED_STEPS> INVERSES = [] {
    std::array<std::uint64_t, TABLED_STEPS> table{};
    for (std::size_t length = 1; length < TABLED_STEPS; ++length) {
        table[length] = RoundedUpInverse(length);
    }
    return table;
}();

std::uint64_t SlopeOf(std::uint64_t rise, std::uint64_t length) {
    return rise * (length < TABLED_STEPS ? INVERSES[length] : RoundedUpInverse(length));
}

// `count` pixels, at least one, from a place on the line on, `position` steps across in fixed point from
// where `base` is. No pixel waits for the one before it. Pixels go in fours, the last of them again where
// fewer are left: short lines then have no loop whose end is a guess. Exclusive-or has each pixel once.
template <Ink ink>
void RunBySlope(std::uint8_t* base, std::int64_t count, std::ptrdiff_t along, std::ptrdiff_t across,
                std::uint64_t position, std::uint64_t slope, std::uint8_t colour) {
    const auto at = [&](std::int64_t step) {
        const std::uint64_t there = position + static_cast<std::uint64_t>(step) * slope;
        return base + step * along + static_cast<std::ptrdiff_t>(there >> SLOPE_BITS) * across;
    };
    constexpr std::int64_t AT_ONCE = ink == Ink::Xor ? 1 : 4;
    for (; count > AT_ONCE; count -= AT_ONCE) {
        for (std::int64_t step = 0; step < AT_ONCE; ++step) {
            Put<ink>(at(step), colour);
        }
        position += AT_ONCE * slope;
        base += AT_ONCE * along;
    }
    Put<ink>(base + static_cast<std::ptrdiff_t>(position >> SLOPE_BITS) * across, colour);
    if constexpr (AT_ONCE > 1) {
        Put<ink>(at(std::min<std::int64_t>(1, count - 1)), colour);
        Put<ink>(at(std::min<std::int64_t>(2, count - 1)), colour);
        Put<ink>(at(count - 1), colour);
    }
}

// ---- clipped lines ----

// A line along its major axis u from the smaller u on; v is the other axis. At step k the pixel is v0 + sign
// · floor((2·rise·k + length) / (2·length)).
template <typename Number>
struct MajorLine {
    Number u0, v0;
    Number length, rise;  // both at least 0, rise <= length
    std::int32_t sign;

    Number StepsAcross(Number k) const { return length == 0 ? 0 : (2 * rise * k + length) / (2 * length); }
    // The first step that has gone `across` pixels.
    Number FirstStep(Number across) const {
        const Number needed = 2 * length * across - length;
        return needed <= 0 ? 0 : (needed + 2 * rise - 1) / (2 * rise);
    }
};

// Cuts the steps [first, last] to those whose v lies in [low, high).
template <typename Number>
bool CutAcross(const MajorLine<Number>& line, Number low, Number high, Number& first, Number& last) {
    // In steps across from v0, counted in the line's own direction.
    const Number least = line.sign > 0 ? low - line.v0 : line.v0 - (high - 1);
    const Number most = line.sign > 0 ? high - 1 - line.v0 : line.v0 - low;
    if (most < 0 || least > line.rise) {
        return false;
    }
    if (line.rise == 0) {
        return least <= 0;
    }
    if (least > 0) {
        first = std::max(first, line.FirstStep(least));
    }
    if (most < line.rise) {
        last = std::min(last, line.FirstStep(most + 1) - 1);
    }
    return first <= last;
}

// The steps one by one, by an error term that neither rounds nor overflows.
template <Ink ink, typename Number>
void RunByError(std::uint8_t* pixel, const MajorLine<Number>& line, Number first, Number last, Number across,
                std::ptrdiff_t along, std::ptrdiff_t side, std::uint8_t colour) {
    const Number run = 2 * line.length, rise = 2 * line.rise;
    Number error = rise * first + line.length - run * across - run;  // runs over at 0
    for (Number count = last - first;; --count) {
        Put<ink>(pixel, colour);
        if (count == 0) {
            return;
        }
        error += rise;
        const bool over = error >= 0;
        pixel += along + (over ? side : 0);
        error -= over ? run : 0;
    }
}

template <Ink ink, typename Number>
void DrawMajor(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, bool steep,
               std::uint8_t colour) {
    if (steep) {
        std::swap(a.x, a.y);
        std::swap(b.x, b.y);
    }
    if (a.x > b.x) {
        std::swap(a, b);
    }
    const Number delta = static_cast<Number>(b.y) - a.y;
    const MajorLine<Number> line{a.x, a.y, static_cast<Number>(b.x) - a.x, delta < 0 ? -delta : delta,
                                 delta < 0 ? -1 : 1};
    const Number uLow = steep ? clip.top : clip.left;
    const Number uHigh = steep ? clip.bottom : clip.right;
    Number first = std::max<Number>(0, uLow - line.u0);
    Number last = std::min<Number>(line.length, uHigh - 1 - line.u0);
    if (first > last || !CutAcross<Number>(line, steep ? clip.left : clip.top,
                                           steep ? clip.right : clip.bottom, first, last)) {
        return;
    }
    const std::ptrdiff_t along = steep ? frame.stride : 1;
    const std::ptrdiff_t side = (steep ? 1 : frame.stride) * line.sign;
    const Number across = line.StepsAcross(first);
    const auto u = static_cast<std::int32_t>(line.u0 + first);
    const auto v = static_cast<std::int32_t>(line.v0 + line.sign * across);
    std::uint8_t* const pixel = steep ? frame.Row(u) + v : frame.Row(v) + u;
    if (0 < line.length && line.length <= STEPS_MOST) {
        const std::uint64_t slope =
            SlopeOf(static_cast<std::uint64_t>(line.rise), static_cast<std::uint64_t>(line.length));
        const std::uint64_t position = static_cast<std::uint64_t>(first) * slope + HALF_STEP -
                                       (static_cast<std::uint64_t>(across) << SLOPE_BITS);
        RunBySlope<ink>(pixel, static_cast<std::int64_t>(last - first) + 1, along, side, position, slope,
                        colour);
    } else {
        RunByError<ink>(pixel, line, first, last, across, along, side, colour);
    }
}

bool IsNarrow(const PanePoint& point) {
    return -NARROW < point.x && point.x < NARROW && -NARROW < point.y && point.y < NARROW;
}

template <Ink ink>
void DrawAny(FrameBuffer& frame, const PixelRect& clip, PanePoint a, PanePoint b, std::uint8_t colour) {
    if (IsNarrow(a) && IsNarrow(b)) {
        const bool steep = std::abs(b.y - a.y) > std::abs(b.x - a.x);
        return DrawMajor<ink, std::int64_t>(frame, clip, a, b, steep, colour);
    }
    a = {std::clamp(a.x, -PANE_MOST, PANE_MOST), std::clamp(a.y, -PANE_MOST, PANE_MOST)};
    b = {std::clamp(b.x, -PANE_MOST, PANE_MOST), std::clamp(b.y, -PANE_MOST, PANE_MOST)};
    const bool steep = std::abs(b.y - a.y) > std::abs(b.x - a.x);
    DrawMajor<ink, Wide>(frame, clip, a, b, steep, colour);
}

// A line within the frame, from a point on. What depends on its direction is chosen without a branch, since
// directions follow no pattern.
inline void DrawInside(FrameBuffer& frame, std::int32_t x, std::int32_t y, std::int32_t dx, std::int32_t dy,
                       std::uint8_t colour) {
    const std::int32_t width = std::abs(dx), height = std::abs(dy);
    const std::int32_t length = std::max(width, height), rise = std::min(width, height);
    if (length > STEPS_MOST) {
        return DrawLine(frame, frame.Bounds(), {x, y}, {x + dx, y + dy}, colour);
    }
    const bool steep = height > width;
    // From the smaller end of the major axis on; the other axis then goes with the product's sign.
    const std::int32_t back = (steep ? dy : dx) >> 31;
    const std::ptrdiff_t stride = frame.stride;
    std::uint8_t* const pixel = frame.Row(y + (dy & back)) + (x + (dx & back));
    const std::ptrdiff_t along = steep ? stride : 1;
    const std::ptrdiff_t turn = (dx ^ dy) >> 31;
    const std::ptrdiff_t across = ((stride + 1 - along) ^ turn) - turn;
    if (height == 0 && width >= FILL_LEAST) {
        std::memset(pixel, colour, static_cast<std::size_t>(width) + 1);
        return;
    }
    const std::uint64_t slope = SlopeOf(static_cast<std::uint64_t>(rise), static_cast<std::uint64_t>(length));
    RunBySlope<Ink::Set>(pixel, length + 1, along, across, HALF_STEP, slope, colour);
}

// ---- four lines at once ----

Lanes Following(Lanes v) {
    return __builtin_shufflevector(v, v, 1, 2, 3, 0);
}
Lanes Magnitude(Lanes v) {
    return (v ^ (v >> 31)) - (v >> 31);
}
Lanes Chosen(Lanes mask, Lanes yes, Lanes no) {
    return (yes & mask) | (no & ~mask);
}

// The lines from each corner of a quad within the frame to the next, prepared like one line of DrawInside.
// Offsets are from the frame's first pixel.
struct QuadLines {
    Lanes corner;         // offsets of the corners
    Lanes start, end;     // offsets, along the major axis
    Lanes length, rise;   // length >= rise
    Lanes along, across;  // offsets of a step

    QuadLines(std::int32_t stride, Lanes corners, Lanes dx, Lanes dy) : corner(corners) {
        const Lanes width = Magnitude(dx), height = Magnitude(dy);
        const Lanes steep = height > width;
        length = Chosen(steep, height, width);
        rise = Chosen(steep, width, height);
        const Lanes back = Chosen(steep, dy, dx) >> 31;
        start = Chosen(back, Following(corner), corner);
        end = Chosen(back, corner, Following(corner));
        along = Chosen(steep, Every(stride), Every(1));
        const Lanes turn = (dx ^ dy) >> 31;
        across = (Chosen(steep, Every(1), Every(stride)) ^ turn) - turn;
    }
};

void PutFour(FrameBuffer& frame, Lanes offsets, std::uint8_t colour) {
    std::uint8_t* const first = frame.pixels.data();
    for (int i = 0; i < LANES; ++i) {
        first[offsets[i]] = colour;
    }
}

// Lines of no more than SHORT steps have at most two pixels between their ends. The one after the start goes
// across when the rise is at least half the length, the one before the end of three steps likewise; a line
// that lacks one draws a corner again.
constexpr std::int32_t SHORT = 3;

void DrawShort(FrameBuffer& frame, const QuadLines& lines, std::uint8_t colour) {
    const Lanes step = lines.along + (lines.across & (lines.rise + lines.rise >= lines.length));
    PutFour(frame, lines.corner, colour);
    PutFour(frame, lines.start + (step & (lines.length > 1)), colour);
    if (Any(lines.length == SHORT)) {
        PutFour(frame, lines.end - (step & (lines.length == SHORT)), colour);
    }
}

// Lines of no more than STEPPED steps go side by side, a step of each at a time, by their error terms; one
// that has come to its end waits there.
constexpr std::int32_t STEPPED = 16;

void DrawStepped(FrameBuffer& frame, const QuadLines& lines, std::uint8_t colour) {
    PutFour(frame, lines.corner, colour);
    const Lanes run = lines.length + lines.length, rise = lines.rise + lines.rise;
    Lanes offset = lines.start, error = -lines.length, left = lines.length - 1;
    do {
        error += rise;
        const Lanes over = ~(error >> 31);
        const Lanes going = left > 0;
        offset += (lines.along + (lines.across & over)) & going;
        error -= run & over;
        left += going;
        PutFour(frame, offset, colour);
    } while (Any(left > 0));
}

void DrawEach(FrameBuffer& frame, const QuadLines& lines, std::uint8_t colour) {
    for (int i = 0; i < LANES; ++i) {
        const std::int32_t length = lines.length[i], rise = lines.rise[i];
        std::uint8_t* const pixel = frame.pixels.data() + lines.start[i];
        if (length >= FILL_LEAST && rise == 0 && lines.along[i] == 1) {
            std::memset(pixel, colour, static_cast<std::size_t>(length) + 1);
            continue;
        }
        const std::uint64_t slope =
            SlopeOf(static_cast<std::uint64_t>(rise), static_cast<std::uint64_t>(length));
        RunBySlope<Ink::Set>(pixel, length + 1, lines.along[i], lines.across[i], HALF_STEP, slope, colour);
    }
}

// The outline of a quad that lies within the frame altogether.
// At the start of a cache line its loops run at the same speed whatever is compiled before them; elsewhere
// the redraw of a dense model took up to a third longer.
[[gnu::aligned(64), gnu::noinline]] void DrawQuadInside(FrameBuffer& frame, Lanes x, Lanes y,
                                                        std::uint8_t colour) {
    const Lanes dx = Following(x) - x, dy = Following(y) - y;
    const Lanes corner = y * frame.stride + x;
    // A line to one of the eight neighbours is its ends.
    if (!Any((dx > 1) | (dx < -1) | (dy > 1) | (dy < -1))) {
        PutFour(frame, corner, colour);
        return;
    }
    const QuadLines lines(frame.stride, corner, dx, dy);
    if (!Any(lines.length > SHORT)) {
        DrawShort(frame, lines, colour);
    } else if (!Any(lines.length > STEPPED)) {
        DrawStepped(frame, lines, colour);
    } else if (!Any(lines.length > static_cast<std::int32_t>(STEPS_MOST))) {
        DrawEach(frame, lines, colour);
    } else {
        for (int i = 0; i < LANES; ++i) {
            const int next = (i + 1) % LANES;
            DrawLineInside(frame, x[i], y[i], x[next], y[next], colour);
        }
    }
}

bool Inside(const PixelRect& rect, const PanePoint& point) {
    return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}

}  // namespace

PixelRect Intersection(const PixelRect& a, const PixelRect& b) {
    const std::int32_t left = std::max(a.left, b.left), top = std::max(a.top, b.top);
    return {left, top, std::max(std::min(a.right, b.right), left),
            std::max(std::min(a.bottom, b.bottom), top)};
}

void FrameBuffer::Resize(std::int32_t newWidth, std::int32_t newHeight) {
    width = newWidth;
    height = newHeight;
    // An odd number of cache lines, so that the pixels of a column spread over the whole cache.
    stride = ((newWidth + CACHE_LINE - 1) / CACHE_LINE | 1) * CACHE_LINE;
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
    DrawInside(frame, x0, y0, x1 - x0, y1 - y0, colour);
}

void DrawQuad(FrameBuffer& frame, const PixelRect& clip, Lanes x, Lanes y, std::uint8_t colour) {
    const Lanes left = x < clip.left, right = x >= clip.right, above = y < clip.top, below = y >= clip.bottom;
    if (!Any(left | right | above | below)) {
        DrawQuadInside(frame, x, y, colour);
        return;
    }
    for (int i = 0; i < LANES; ++i) {
        const int next = (i + 1) % LANES;
        DrawLine(frame, clip, {x[i], y[i]}, {x[next], y[next]}, colour);
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
    if (ink == Ink::Set && Inside(clip, a) && Inside(clip, b) &&
        std::max(std::abs(b.x - a.x), std::abs(b.y - a.y)) <= STEPS_MOST) {
        DrawLineInside(frame, static_cast<std::int32_t>(a.x), static_cast<std::int32_t>(a.y),
                       static_cast<std::int32_t>(b.x), static_cast<std::int32_t>(b.y), colour);
        return;
    }
    if (ink == Ink::Set && a.y == b.y) {  // what is inside of it is one run
        const std::int64_t left = std::max<std::int64_t>(std::min(a.x, b.x), clip.left);
        const std::int64_t right = std::min<std::int64_t>(std::max(a.x, b.x), clip.right - 1);
        std::memset(frame.Row(static_cast<std::int32_t>(a.y)) + left, colour,
                    static_cast<std::size_t>(right - left) + 1);
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
