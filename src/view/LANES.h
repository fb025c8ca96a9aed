// Four numbers side by side, one of each corner of a triangle or a quad: most polygons have no more corners,
// and are projected and drawn together.
#pragma once

#include <cstdint>
#include <cstring>

#include "MODEL/POLY.h"

namespace quelmark {

using Lanes = std::int32_t __attribute__((vector_size(16)));
using Floats = float __attribute__((vector_size(16)));
using Words = std::int16_t __attribute__((vector_size(16)));    // one vertex record
using Position = std::int16_t __attribute__((vector_size(8)));  // its x, y, z, and a word of no meaning here
using LongLanes = std::int64_t __attribute__((vector_size(16)));

inline constexpr std::int32_t LANES = 4;

inline Lanes Every(std::int32_t value) {
    return Lanes{value, value, value, value};
}
inline Words WordsOf(const VertexRecord& vertex) {
    Words words;
    static_assert(sizeof words == sizeof vertex);
    std::memcpy(&words, &vertex, sizeof words);
    return words;
}
inline Position PositionOf(const VertexRecord& vertex) {
    Position position;
    std::memcpy(&position, &vertex, sizeof position);
    return position;
}
inline Position Least(Position a, Position b) {
    return a < b ? a : b;
}
inline Position Most(Position a, Position b) {
    return a > b ? a : b;
}

// Whether any bit is set.
inline bool Any(Position vector) {
    return reinterpret_cast<std::int64_t>(vector) != 0;
}
template <typename Vector>
bool Any(Vector vector) {
    const auto halves = reinterpret_cast<LongLanes>(vector);
    return (halves[0] | halves[1]) != 0;
}

// Four of at least one vertex; where there are fewer, the first again, which closes the outline.
struct Corners {
    Words corner[LANES];

    Corners(const VertexRecord* v, std::int32_t count) {
        corner[0] = WordsOf(v[0]);
        corner[1] = WordsOf(v[count > 1 ? 1 : 0]);
        corner[2] = WordsOf(v[count > 2 ? 2 : 0]);
        corner[3] = WordsOf(v[count > 3 ? 3 : 0]);
    }
};

// The corners' coordinates, an axis at a time.
struct AxisLanes {
    Lanes axis[3];

    explicit AxisLanes(const Corners& corners) {
        const Words* const c = corners.corner;
        const auto ab =
            reinterpret_cast<Lanes>(__builtin_shufflevector(c[0], c[1], 0, 8, 1, 9, 2, 10, 3, 11));
        const auto cd =
            reinterpret_cast<Lanes>(__builtin_shufflevector(c[2], c[3], 0, 8, 1, 9, 2, 10, 3, 11));
        const auto xy = reinterpret_cast<Words>(__builtin_shufflevector(ab, cd, 0, 4, 1, 5));
        const auto z = reinterpret_cast<Words>(__builtin_shufflevector(ab, cd, 2, 6, 3, 7));
        // Each word in the upper half of its lane, shifted down with its sign.
        axis[0] = reinterpret_cast<Lanes>(__builtin_shufflevector(xy, xy, 0, 0, 1, 1, 2, 2, 3, 3)) >> 16;
        axis[1] = reinterpret_cast<Lanes>(__builtin_shufflevector(xy, xy, 4, 4, 5, 5, 6, 6, 7, 7)) >> 16;
        axis[2] = reinterpret_cast<Lanes>(__builtin_shufflevector(z, z, 0, 0, 1, 1, 2, 2, 3, 3)) >> 16;
    }
};

}  // namespace quelmark
