// Sets of distinct vertices: the elements of the script class VertexSet, sorted, so that membership is a
// binary search and set operations are merges.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ML/STACK.h"
#include "MODEL/POLY.h"
#include "MODEL/TRANSFORM.h"

namespace quelmark {

// Registers the class VertexSet; after polygons and edges.
void VertexSetRegister();
bool IsVertexSet(const DataCell& cell);
// A set's block has slots for its elements in steps, and scripts see their number: a new one of n elements
// always has a free slot, one that grew out of another has at least its slots.
inline constexpr std::int32_t SLOTS_STEP = 256;
constexpr std::int32_t SlotsOfNewSet(std::size_t n) {
    return (static_cast<std::int32_t>(n) / SLOTS_STEP + 1) * SLOTS_STEP;
}
constexpr std::int32_t SlotsOfGrownSet(std::size_t n, std::int32_t slotsBefore) {
    return std::max(slotsBefore, (static_cast<std::int32_t>(n) + SLOTS_STEP - 1) / SLOTS_STEP * SLOTS_STEP);
}
// The elements of a VertexSet object, valid while it lives; and the slots of its block.
std::span<const VertexRecord> VertexSetElements(const DataCell& cell);
std::int32_t VertexSetCapacity(const DataCell& cell);

// Two 32-bit words of a record in memory order as one number that orders like the signed words, first before
// second.
constexpr std::uint64_t WordPairOrder(std::uint64_t words) {
    return std::rotl(words, 32) ^ 0x8000000080000000U;
}
static_assert(std::endian::native == std::endian::little);

// The order of a set: the 16 bytes as four signed words, so by y, x (unsigned), nx, z, nz, ny, v, u.
struct VertexOrder {
    std::uint64_t high, low;

    explicit VertexOrder(const VertexRecord& vertex) {
        struct Pairs {
            std::uint64_t first, second;
        };
        const auto pairs = std::bit_cast<Pairs>(vertex);
        high = WordPairOrder(pairs.first);
        low = WordPairOrder(pairs.second);
    }
};
inline bool VertexLess(const VertexRecord& left, const VertexRecord& right) {
    const VertexOrder a(left), b(right);
    return a.high != b.high ? a.high < b.high : a.low < b.low;
}
inline bool VertexSame(const VertexRecord& left, const VertexRecord& right) {
    const VertexOrder a(left), b(right);
    return a.high == b.high && a.low == b.low;
}

// Puts elements in order and merges equal ones.
void VertexSort(std::vector<VertexRecord>& elements);
// The vertices of the selected polygons; what a polygon's type says it does not carry counts as 0.
std::vector<VertexRecord> VerticesOfSelected();
// The index of a vertex in a set, or -1.
std::int32_t VertexFind(std::span<const VertexRecord> set, const VertexRecord& vertex);
// Selects by whether a polygon has a vertex, all 16 bytes of it, in the set.
void SelectByVertices(std::span<const VertexRecord> set, bool flag, std::int32_t mode);

}  // namespace quelmark
