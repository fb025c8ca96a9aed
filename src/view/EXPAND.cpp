// From palette indices to what a window shows.
#include <bit>
#include <cstring>

#include "view/RASTER.h"

namespace quelmark {
namespace {

// Pixels that are worth a table of pairs.
constexpr std::int64_t PAIRS_LEAST = 4096;

struct PixelPair {
    std::uint32_t first, second;
};
using PairPalette = std::array<PixelPair, 256>;  // by the first index and sixteen times the second

PairPalette PairsOf(const FramePalette& palette) {
    PairPalette pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = {palette[i & 15U], palette[i >> 4U]};
    }
    return pairs;
}

// Eight pixels a turn, two a table entry; how many pixels that were. The first pixel is the lowest byte of
// the eight, which some processors have otherwise.
std::int32_t ExpandPairs(const std::uint8_t* from, std::int32_t count, const PairPalette& pairs,
                         std::uint32_t* to) {
    std::int32_t x = 0;
    for (; x + 8 <= count && std::endian::native == std::endian::little; x += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, from + x, sizeof eight);
        eight &= 0x0F0F0F0F0F0F0F0FU;
        eight |= eight >> 4U;
        for (std::size_t pair = 0; pair < 4; ++pair) {
            std::memcpy(to + x + 2 * pair, &pairs[eight >> (16 * pair) & 255U], sizeof(PixelPair));
        }
    }
    return x;
}

}  // namespace

void ExpandFrame(const FrameBuffer& frame, const PixelRect& area, const FramePalette& palette,
                 std::uint32_t* picture, std::ptrdiff_t stride) {
    if (IsEmpty(area)) {
        return;
    }
    const std::int32_t width = area.right - area.left;
    const bool byPairs = std::int64_t{width} * (area.bottom - area.top) >= PAIRS_LEAST;
    const PairPalette pairs = byPairs ? PairsOf(palette) : PairPalette{};
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        const std::uint8_t* const from = frame.Row(y) + area.left;
        std::uint32_t* const to = picture + y * stride + area.left;
        for (std::int32_t x = byPairs ? ExpandPairs(from, width, pairs, to) : 0; x < width; ++x) {
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
