#include "MODEL/SELECT.h"

#include <algorithm>
#include <array>
#include <vector>

#include "MODEL/OBJ.h"
#include "MODEL/OPENTABLE.h"

namespace quelmark {
namespace {

struct Box {
    std::int16_t low[3], high[3];
};

bool Inside(const Box& box, const VertexRecord& v) {
    return box.low[0] <= v.x && v.x <= box.high[0] && box.low[1] <= v.y && v.y <= box.high[1] &&
           box.low[2] <= v.z && v.z <= box.high[2];
}

struct PositionEntry {
    std::int16_t x, y, z;
    std::uint16_t used;

    bool IsUsed() const { return used != 0; }
    bool IsSame(const PositionEntry& other) const { return x == other.x && y == other.y && z == other.z; }
    std::uint64_t Key() const {
        const auto word = [](std::int16_t value) -> std::uint64_t {
            return static_cast<std::uint16_t>(value);
        };
        return word(x) << 32 | word(y) << 16 | word(z);
    }
};

PositionEntry PositionOf(const VertexRecord& v) {
    return {v.x, v.y, v.z, 1};
}

// How far the records have been walked: scripts make a Select of one polygon after the other. As long as no
// record moves, new ones come behind the last.
struct Walk {
    std::uint32_t layout = 0;  // BufLayout that the rest is of
    const char* at = nullptr;  // a record, or the end
    std::int32_t before = 0;   // records before it
};
Walk counted, sought;

// Goes to the first record that does not begin before `to`.
void WalkTo(Walk& walk, const char* to) {
    if (walk.layout != BufLayout || walk.at == nullptr || walk.at > to) {
        walk = {BufLayout, BufTop, 0};
    }
    for (; walk.at < to; ++walk.before) {
        walk.at += reinterpret_cast<const DataBuffer*>(walk.at)->size;
    }
}

// The ids of the held selections, in order.
std::array<std::vector<std::uint32_t>, SELECT_HOLDS> heldIds;

bool IsVisible(const PolygonRecord& polygon) {
    return (polygon.flags & POLYGON_INVISIBLE) == 0;
}

}  // namespace

void SelectBegin() {
    PolygonLoadInit();
    SelectCount = 0;
}

void SelectPolygon(PolygonRecord* polygon, bool hit, bool flag, std::int32_t mode) {
    if (!IsVisible(*polygon)) {
        return;
    }
    const std::int16_t value = hit == flag ? 1 : 0;
    switch (mode & SELECT_MODE_MASK) {
        case SELECT_UPDATE:
            polygon->select = value;
            break;
        case SELECT_AND:
            polygon->select = static_cast<std::int16_t>(polygon->select & value);
            break;
        case SELECT_OR:
            polygon->select = static_cast<std::int16_t>(polygon->select | value);
            break;
        default:
            polygon->select = static_cast<std::int16_t>(polygon->select ^ value);
            break;
    }
    SelectCount += polygon->select != 0 ? 1 : 0;
}

void SelectAll(bool flag, std::int32_t mode) {
    SelectWhere(flag, mode, [](const PolygonRecord&) { return true; });
}

void SelectArea(bool flag, std::int32_t mode, const VertexRecord& a, const VertexRecord& b) {
    const Box box{{std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)},
                  {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)}};
    const bool partly = (mode & SELECT_SUB) != 0;
    const auto inside = [&box](const VertexRecord& v) { return Inside(box, v); };
    SelectWhere(flag, mode, [&](const PolygonRecord& polygon) {
        return partly ? std::ranges::any_of(polygon.Vertices(), inside)
                      : std::ranges::all_of(polygon.Vertices(), inside);
    });
}

bool SelectBounds(VertexRecord& low, VertexRecord& high) {
    low = {VERTEX_MAX, VERTEX_MAX, VERTEX_MAX, 0, 0, 0, 0, 0};
    high = {VERTEX_MIN, VERTEX_MIN, VERTEX_MIN, 0, 0, 0, 0, 0};
    bool any = false;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        any = true;
        for (const VertexRecord& v : polygon->Vertices()) {
            low.x = std::min(low.x, v.x);
            low.y = std::min(low.y, v.y);
            low.z = std::min(low.z, v.z);
            high.x = std::max(high.x, v.x);
            high.y = std::max(high.y, v.y);
            high.z = std::max(high.z, v.z);
        }
    }
    return any;
}

std::int32_t PolygonCount() {
    WalkTo(counted, BufNext);
    return counted.before;
}

std::int32_t PolygonNumber(const PolygonRecord* wanted) {
    const char* address = reinterpret_cast<const char*>(wanted);
    if (wanted == nullptr || address < BufTop || address >= BufNext) {
        return -1;
    }
    WalkTo(sought, address);
    return sought.at == address ? sought.before : -1;
}

void SelectRestore(const SelectBits& members) {
    SelectBegin();
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        polygon->select = members.Has(i) ? 1 : 0;
        SelectCount += polygon->select;
    }
}

// Two passes over a table of positions give what comparing every pair of vertices would.
void SelectAdjoining(const SelectBits& members, SelectBits result) {
    OpenTable<PositionEntry> positions;
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (IsVisible(*polygon) && members.Has(i)) {
            for (const VertexRecord& v : polygon->Vertices()) {
                positions.Insert(PositionOf(v));
            }
        }
    }
    i = 0;
    const auto isShared = [&positions](const VertexRecord& v) {
        return positions.Find(PositionOf(v)) != nullptr;
    };
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (IsVisible(*polygon) && std::ranges::any_of(polygon->Vertices(), isShared)) {
            result.Add(i);
        }
    }
}

PolygonRecord* SelectMember(const SelectBits& members, std::int32_t n) {
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (members.Has(i) && n-- == 0) {
            return polygon;
        }
    }
    return nullptr;
}

void SelectOnly(const PolygonRecord* wanted) {
    SelectBegin();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->select = polygon == wanted ? 1 : 0;
        SelectCount += polygon->select;
    }
}

void SelectDelete(const SelectBits& members) {
    SelectCount = 0;
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; ++i) {
        PolygonRecord* next = PolygonNext(polygon);
        if (members.Has(i)) {
            ObjMarkEdited(polygon->obj);
            BufferDelete(&polygon->header);
        } else {
            SelectCount += polygon->select == 1 ? 1 : 0;
        }
        polygon = next;
    }
    BufferCompact();
}

bool SelectHold(std::int32_t number) {
    if (number < 0 || number >= SELECT_HOLDS) {
        return false;
    }
    std::vector<std::uint32_t>& ids = heldIds[static_cast<std::size_t>(number)];
    ids.clear();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 0) {
            ids.push_back(PolygonId(*polygon));
        }
    }
    std::ranges::sort(ids);
    return true;
}

void SelectHeld(std::int32_t number, SelectBits result) {
    if (number < 0 || number >= SELECT_HOLDS) {
        return;
    }
    const std::vector<std::uint32_t>& ids = heldIds[static_cast<std::size_t>(number)];
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (std::ranges::binary_search(ids, PolygonId(*polygon))) {
            result.Add(i);
        }
    }
}

}  // namespace quelmark
