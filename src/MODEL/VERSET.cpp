#include "MODEL/VERSET.h"

#include <algorithm>

#include "MODEL/OPENTABLE.h"
#include "MODEL/SELECT.h"

namespace quelmark {
namespace {

struct VertexEntry {
    VertexRecord vertex;
    std::uint16_t used;

    bool IsUsed() const { return used != 0; }
    bool IsSame(const VertexEntry& other) const { return VertexSame(vertex, other.vertex); }
    std::uint64_t Key() const {
        const VertexOrder order(vertex);
        return order.high ^ std::rotl(order.low * 0xD6E8FEB86659FD93U, 32);
    }
};

}  // namespace

void VertexSort(std::vector<VertexRecord>& elements) {
    std::ranges::sort(elements, VertexLess);
    elements.erase(std::unique(elements.begin(), elements.end(), VertexSame), elements.end());
}

std::vector<VertexRecord> VerticesOfSelected() {
    OpenTable<VertexEntry>
        distinct;  // most vertices of a mesh stand in several polygons: fewer are left to sort
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        const bool shaded = (polygon->type & POLY_SHADE) != 0;
        const bool mapped = (polygon->type & POLY_UV) != 0;
        for (VertexRecord v : polygon->Vertices()) {
            if (!shaded) {
                v.nx = v.ny = v.nz = 0;
            }
            if (!mapped) {
                v.u = v.v = 0;
            }
            distinct.Insert({v, 1});
        }
    }
    std::vector<VertexRecord> elements;
    elements.reserve(distinct.Count());
    distinct.ForEach([&elements](const VertexEntry& entry) { elements.push_back(entry.vertex); });
    std::ranges::sort(elements, VertexLess);
    return elements;
}

std::int32_t VertexFind(std::span<const VertexRecord> set, const VertexRecord& vertex) {
    const auto place = std::ranges::lower_bound(set, vertex, VertexLess);
    return place != set.end() && VertexSame(*place, vertex) ? static_cast<std::int32_t>(place - set.begin())
                                                            : -1;
}

void SelectByVertices(std::span<const VertexRecord> set, bool flag, std::int32_t mode) {
    OpenTable<VertexEntry> members(set.size());
    for (const VertexRecord& v : set) {
        members.Insert({v, 1});
    }
    const auto isMember = [&members](const VertexRecord& v) { return members.Find({v, 1}) != nullptr; };
    SelectWhere(flag, mode, [&](const PolygonRecord& polygon) {
        return std::ranges::any_of(polygon.Vertices(), isMember);
    });
}

}  // namespace quelmark
