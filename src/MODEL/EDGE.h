// Sets of polygon edges, each with the number of times it is used: the elements of the script class Edge,
// sorted.
#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <vector>

#include "ML/STACK.h"
#include "MODEL/POLY.h"
#include "MODEL/VERSET.h"

namespace quelmark {

// Registers the class Edge; after polygons.
void EdgeRegister();
bool IsEdge(const DataCell& cell);

struct EdgeEnd {
    std::int16_t x, y, z;

    friend auto operator<=>(const EdgeEnd&, const EdgeEnd&) = default;
};
// Normal form: the smaller end, by x, then y, then z, comes first.
struct EdgeRecord {
    EdgeEnd first, second;
    std::int32_t uses;
};
static_assert(sizeof(EdgeRecord) == 16);

// A box that holds every end point; it may be larger.
struct EdgeBox {
    EdgeEnd low{VERTEX_MAX, VERTEX_MAX, VERTEX_MAX};
    EdgeEnd high{VERTEX_MIN, VERTEX_MIN, VERTEX_MIN};

    void Widen(const EdgeEnd& end);
    bool Holds(const EdgeEnd& end) const;
};

// The edges of an Edge object, valid while it lives; its box; and the slots that its block has, a multiple of
// 256.
std::span<const EdgeRecord> EdgeElements(const DataCell& cell);
const EdgeBox& EdgeBounds(const DataCell& cell);
std::int32_t EdgeCapacity(const DataCell& cell);

inline EdgeEnd EndOf(const VertexRecord& v) {
    return {v.x, v.y, v.z};
}
inline EdgeRecord EdgeBetween(const EdgeEnd& a, const EdgeEnd& b, std::int32_t uses) {
    return a < b ? EdgeRecord{a, b, uses} : EdgeRecord{b, a, uses};
}

// The order of a set: the twelve bytes of the ends as three signed words in memory order.
struct EdgeOrder {
    std::uint64_t high;
    std::int32_t low;

    explicit EdgeOrder(const EdgeRecord& edge) {
        struct Words {
            std::uint64_t pair;
            std::int32_t third, uses;
        };
        const auto words = std::bit_cast<Words>(edge);
        high = WordPairOrder(words.pair);
        low = words.third;
    }
    bool operator==(const EdgeOrder&) const = default;
};
inline bool EdgeLess(const EdgeRecord& left, const EdgeRecord& right) {
    const EdgeOrder a(left), b(right);
    return a.high != b.high ? a.high < b.high : a.low < b.low;
}
inline bool EdgeSame(const EdgeRecord& left, const EdgeRecord& right) {
    return EdgeOrder(left) == EdgeOrder(right);
}

// Puts edges in order; equal ones become one with the sum of their uses.
void EdgeSort(std::vector<EdgeRecord>& edges);
// The edges of the selected polygons, each with the number of polygon sides that are it.
std::vector<EdgeRecord> EdgesOfSelected();
// Selects by whether a polygon has an edge of the set.
void SelectByEdges(std::span<const EdgeRecord> set, const EdgeBox& box, bool flag, std::int32_t mode);
// The union of two sets; equal edges become one with the sum of their uses.
std::vector<EdgeRecord> EdgeUnion(std::span<const EdgeRecord> left, std::span<const EdgeRecord> right);
// The uses of an edge in normal form, 0 when it is not in the set.
std::int32_t EdgeUses(std::span<const EdgeRecord> set, const EdgeRecord& edge);

}  // namespace quelmark
