#include "MODEL/EDGE.h"

#include <algorithm>

#include "ML/OPERATE.h"
#include "MODEL/OPENTABLE.h"
#include "MODEL/SELECT.h"

namespace quelmark {
namespace {

struct EdgeEntry {
    EdgeRecord edge;
    std::int32_t used;

    bool IsUsed() const { return used != 0; }
    bool IsSame(const EdgeEntry& other) const { return EdgeSame(edge, other.edge); }
    std::uint64_t Key() const {
        const EdgeOrder order(edge);
        return order.high ^ std::rotl(static_cast<std::uint64_t>(order.low) * 0xD6E8FEB86659FD93U, 32);
    }
};

// Calls `visit` with every side of a polygon: p0-p1, p1-p2 … and the closing p0-p(n-1).
template <class Visit>
bool AnySide(const PolygonRecord& polygon, Visit visit) {
    const std::span<const VertexRecord> vertices = polygon.Vertices();
    for (std::size_t i = 1; i < vertices.size(); ++i) {
        if (visit(EndOf(vertices[i - 1]), EndOf(vertices[i]))) {
            return true;
        }
    }
    return visit(EndOf(vertices.front()), EndOf(vertices.back()));
}

}  // namespace

void EdgeBox::Widen(const EdgeEnd& end) {
    low = {std::min(low.x, end.x), std::min(low.y, end.y), std::min(low.z, end.z)};
    high = {std::max(high.x, end.x), std::max(high.y, end.y), std::max(high.z, end.z)};
}

bool EdgeBox::Holds(const EdgeEnd& end) const {
    return low.x <= end.x && end.x <= high.x && low.y <= end.y && end.y <= high.y && low.z <= end.z &&
           end.z <= high.z;
}

void EdgeSort(std::vector<EdgeRecord>& edges) {
    std::ranges::sort(edges, EdgeLess);
    std::size_t kept = 0;
    for (const EdgeRecord& edge : edges) {
        if (kept > 0 && EdgeSame(edges[kept - 1], edge)) {
            edges[kept - 1].uses = WrapAdd(edges[kept - 1].uses, edge.uses);
        } else {
            edges[kept++] = edge;
        }
    }
    edges.resize(kept);
}

std::vector<EdgeRecord> EdgesOfSelected() {
    OpenTable<EdgeEntry> distinct;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 1) {
            AnySide(*polygon, [&distinct](const EdgeEnd& a, const EdgeEnd& b) {
                ++distinct.Insert({EdgeBetween(a, b, 0), 1}).edge.uses;
                return false;
            });
        }
    }
    std::vector<EdgeRecord> edges;
    edges.reserve(distinct.Count());
    distinct.ForEach([&edges](const EdgeEntry& entry) { edges.push_back(entry.edge); });
    std::ranges::sort(edges, EdgeLess);
    return edges;
}

void SelectByEdges(std::span<const EdgeRecord> set, const EdgeBox& box, bool flag, std::int32_t mode) {
    OpenTable<EdgeEntry> members(set.size());
    for (const EdgeRecord& edge : set) {
        members.Insert({edge, 1});
    }
    const auto isMember = [&](const EdgeEnd& a, const EdgeEnd& b) {
        return box.Holds(a) && members.Find({EdgeBetween(a, b, 0), 1}) != nullptr;
    };
    SelectWhere(flag, mode, [&](const PolygonRecord& polygon) { return AnySide(polygon, isMember); });
}

std::vector<EdgeRecord> EdgeUnion(std::span<const EdgeRecord> left, std::span<const EdgeRecord> right) {
    std::vector<EdgeRecord> result;
    result.reserve(left.size() + right.size());
    auto a = left.begin();
    auto b = right.begin();
    while (a != left.end() && b != right.end()) {
        if (EdgeLess(*a, *b)) {
            result.push_back(*a++);
        } else if (EdgeLess(*b, *a)) {
            result.push_back(*b++);
        } else {
            result.push_back(*a++);
            result.back().uses = WrapAdd(result.back().uses, (b++)->uses);
        }
    }
    result.insert(result.end(), a, left.end());
    result.insert(result.end(), b, right.end());
    return result;
}

std::int32_t EdgeUses(std::span<const EdgeRecord> set, const EdgeRecord& edge) {
    const auto place = std::ranges::lower_bound(set, edge, EdgeLess);
    return place != set.end() && EdgeSame(*place, edge) ? place->uses : 0;
}

}  // namespace quelmark
