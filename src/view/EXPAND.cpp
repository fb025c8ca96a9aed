// From palette indices to what a window shows.
#include <algorithm>
#include <cstring>

#include "view/RASTER.h"
#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace quelmark {
namespace {

constexpr std::uint8_t ENTRY_BITS = 15;

// Byte 0 of every entry of a palette, byte 1, 2 and 3.
struct Planes {
    alignas(16) std::uint8_t byte[4][16];

    explicit Planes(const FramePalette& palette) {
        for (unsigned k = 0; k < 4; ++k) {
            for (std::size_t i = 0; i < palette.size(); ++i) {
                byte[k][i] = static_cast<std::uint8_t>(palette[i] >> (8 * k));
            }
        }
    }
};

void ExpandPlain(const std::uint8_t* from, std::int32_t count, const FramePalette& palette,
                 std::uint32_t* to) {
    for (std::int32_t x = 0; x < count; ++x) {
        to[x] = palette[from[x] & ENTRY_BITS];
    }
}

#if defined(__x86_64__)

bool CanShuffle() {
    return __builtin_cpu_supports("ssse3") != 0;
}

// Sixteen pixels a turn, each plane looked up for all of them at once; how many pixels that were.
[[gnu::target("ssse3")]] std::int32_t ExpandShuffled(const std::uint8_t* from, std::int32_t count,
                                                     const Planes& planes, std::uint32_t* to) {
    const auto plane = [&planes](int k) __attribute__((target("ssse3"))) {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(planes.byte[k]));
    };
    const __m128i blue = plane(0), green = plane(1), red = plane(2), rest = plane(3);
    const __m128i bits = _mm_set1_epi8(ENTRY_BITS);
    std::int32_t x = 0;
    for (; x + 16 <= count; x += 16) {
        const __m128i indices =
            _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + x)), bits);
        const __m128i b = _mm_shuffle_epi8(blue, indices), g = _mm_shuffle_epi8(green, indices);
        const __m128i r = _mm_shuffle_epi8(red, indices), a = _mm_shuffle_epi8(rest, indices);
        const __m128i lowBG = _mm_unpacklo_epi8(b, g), highBG = _mm_unpackhi_epi8(b, g);
        const __m128i lowRA = _mm_unpacklo_epi8(r, a), highRA = _mm_unpackhi_epi8(r, a);
        auto* const pixels = reinterpret_cast<__m128i*>(to + x);
        _mm_storeu_si128(pixels, _mm_unpacklo_epi16(lowBG, lowRA));
        _mm_storeu_si128(pixels + 1, _mm_unpackhi_epi16(lowBG, lowRA));
        _mm_storeu_si128(pixels + 2, _mm_unpacklo_epi16(highBG, highRA));
        _mm_storeu_si128(pixels + 3, _mm_unpackhi_epi16(highBG, highRA));
    }
    return x;
}

#else

bool CanShuffle() {
    return false;
}
std::int32_t ExpandShuffled(const std::uint8_t*, std::int32_t, const Planes&, std::uint32_t*) {
    return 0;
}

#endif

// A palette made ready for runs of pixels, on this processor.
class Expander {
  public:
    explicit Expander(const FramePalette& wanted) : palette(wanted), planes(wanted), shuffles(CanShuffle()) {}

    void Run(const std::uint8_t* from, std::int32_t count, std::uint32_t* to) const {
        const std::int32_t done = shuffles ? ExpandShuffled(from, count, planes, to) : 0;
        ExpandPlain(from + done, count - done, palette, to + done);
    }

  private:
    const FramePalette& palette;
    Planes planes;
    bool shuffles;
};

// What is written again together: pixels up to the end of their block, and the blocks of a band of rows.
constexpr std::int32_t BLOCK = 128, BAND = 32;

// One rectangle for each run of blocks that hold something new.
void AddRuns(const std::vector<bool>& blocks, PixelRect band, std::vector<PixelRect>& rects) {
    for (auto from = blocks.begin(); (from = std::find(from, blocks.end(), true)) != blocks.end();) {
        const auto to = std::find(from, blocks.end(), false);
        const auto left = static_cast<std::int32_t>(from - blocks.begin()) * BLOCK;
        const auto right = static_cast<std::int32_t>(to - blocks.begin()) * BLOCK;
        rects.push_back({left, band.top, std::min(right, band.right), band.bottom});
        from = to;
    }
}

}  // namespace

void ExpandFrame(const FrameBuffer& frame, const PixelRect& area, const FramePalette& palette,
                 std::uint32_t* picture, std::ptrdiff_t stride) {
    const Expander expander(palette);
    for (std::int32_t y = area.top; y < area.bottom && area.left < area.right; ++y) {
        expander.Run(frame.Row(y) + area.left, area.right - area.left, picture + y * stride + area.left);
    }
}

void RecolourFrame(const FrameBuffer& frame, std::uint8_t entry, const FramePalette& palette,
                   std::uint32_t* picture, std::ptrdiff_t stride, std::vector<PixelRect>& changed) {
    const Expander expander(palette);
    changed.clear();
    std::vector<bool> blocks;
    for (std::int32_t top = 0; top < frame.height; top += BAND) {
        const std::int32_t bottom = std::min(top + BAND, frame.height);
        blocks.assign(static_cast<std::size_t>(frame.width / BLOCK) + 1, false);
        for (std::int32_t y = top; y < bottom; ++y) {
            const std::uint8_t* const row = frame.Row(y);
            std::int32_t x = 0;
            while (const void* found =
                       std::memchr(row + x, entry, static_cast<std::size_t>(frame.width - x))) {
                x = static_cast<std::int32_t>(static_cast<const std::uint8_t*>(found) - row);
                const std::int32_t block = x / BLOCK, end = std::min((block + 1) * BLOCK, frame.width);
                expander.Run(row + x, end - x, picture + y * stride + x);
                blocks[static_cast<std::size_t>(block)] = true;
                x = end;
            }
        }
        AddRuns(blocks, {0, top, frame.width, bottom}, changed);
    }
}

}  // namespace quelmark
