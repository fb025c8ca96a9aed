// Sets of distinct vertices: the elements of the script class VertexSet, sorted, so that membership is a
// binary search and set operations are merges.
#pragma once

#include <bit>
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
// The elements of a VertexSet object, valid while it lives; and the slots that its block has, a multiple of
// 256.
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
