#include "MODEL/SHADE.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "ML/ERROR.h"
#include "MODEL/OBJ.h"
#include "MODEL/TRANSFORM.h"

namespace quelmark {

HashEntry* HashTable = nullptr;
std::int32_t HashSize = 0;
std::int32_t HashMask = 0;

namespace {

constexpr std::int32_t PROBE_STEP = 997;  // odd, so it visits every slot of a table of a power of two

// Slots found lately, by a second key: neighbouring polygons ask for the same positions, and where
// coordinates repeat in a regular way the probe for one is long.
constexpr int RECENT_BITS = 14;
std::array<std::int32_t, 1 << RECENT_BITS> recentSlots;

std::size_t RecentKey(const VertexRecord& v) {
    const auto word = [](std::int16_t value) { return static_cast<std::uint32_t>(value); };
    return (word(v.x) * 73856093U ^ word(v.y) * 19349663U ^ word(v.z) * 83492791U) >> (32 - RECENT_BITS);
}

bool IsAt(const HashEntry& entry, const VertexRecord& v) {
    return entry.flag == 1 && entry.x == v.x && entry.y == v.y && entry.z == v.z;
}

struct HashScope {
    explicit HashScope(std::int32_t vertices) { HashInit(vertices); }
    ~HashScope() { HashExit(); }
    HashScope(const HashScope&) = delete;
    HashScope& operator=(const HashScope&) = delete;
};

std::int32_t HashKey(const VertexRecord& v) {
    return ((v.z % 571) * 997 + (v.y % 479) * 97 + (v.x % 181)) & HashMask;
}

void MarkShaded(PolygonRecord& polygon) {
    polygon.type |= POLY_SHADE;
    ObjMarkEdited(polygon.obj);
}

void ShadeFlat() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        MarkShaded(*polygon);
        std::int16_t normal[3];
        PlaneNormal(polygon->Vertices(), normal);
        for (VertexRecord& v : polygon->Vertices()) {
            v.nx = normal[0];
            v.ny = normal[1];
            v.nz = normal[2];
        }
    }
}

void ShadeOff() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 1) {
            polygon->type = static_cast<std::uint16_t>(polygon->type & ~POLY_SHADE);
            ObjMarkEdited(polygon->obj);
        }
    }
}

// Between the two passes a vertex keeps the slot of its position where its normal will be, so that no
// position is looked for twice.
static_assert(offsetof(VertexRecord, ny) == offsetof(VertexRecord, nx) + sizeof(std::int16_t));

void KeepSlot(VertexRecord& v, const HashEntry& entry) {
    const auto slot = static_cast<std::int32_t>(&entry - HashTable);
    std::memcpy(reinterpret_cast<char*>(&v) + offsetof(VertexRecord, nx), &slot, sizeof slot);
}

const HashEntry& KeptEntry(const VertexRecord& v) {
    std::int32_t slot = 0;
    std::memcpy(&slot, reinterpret_cast<const char*>(&v) + offsetof(VertexRecord, nx), sizeof slot);
    return HashTable[slot];
}

// The sum at a vertex, turned to the polygon's side and scaled to length 256.
void SetSmoothNormal(VertexRecord& v, const std::int16_t plane[3]) {
    const HashEntry& sum = KeptEntry(v);
    const double side = static_cast<double>(sum.nx) * plane[0] + static_cast<double>(sum.ny) * plane[1] +
                        static_cast<double>(sum.nz) * plane[2];
    const double x = sum.nx, y = sum.ny, z = sum.nz;
    const double length = std::sqrt(x * x + y * y + z * z);
    const double scale = length > 0 ? (side < 0.0 ? -256 : 256) / length : 0;
    v.nx = static_cast<std::int16_t>(x * scale);
    v.ny = static_cast<std::int16_t>(y * scale);
    v.nz = static_cast<std::int16_t>(z * scale);
}

void ShadeSmooth() {
    std::int32_t vertices = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        vertices += polygon->select == 1 ? polygon->vers : 0;
    }
    const HashScope table(vertices);
    std::int16_t normal[3];
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 1) {
            PlaneNormal(polygon->Vertices(), normal);
            for (VertexRecord& v : polygon->Vertices()) {
                KeepSlot(v, HashAdd(v, normal));
            }
        }
    }
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 1) {
            MarkShaded(*polygon);
            PlaneNormal(polygon->Vertices(), normal);
            for (VertexRecord& v : polygon->Vertices()) {
                SetSmoothNormal(v, normal);
            }
        }
    }
}

}  // namespace

void ShadeSelected(std::int32_t mode) {
    if (SelectCount == 0) {
        return;
    }
    switch (mode) {
        case NORMAL_OFF:
            return ShadeOff();
        case NORMAL_CREATE:
            return ShadeFlat();
        default:
            return ShadeSmooth();
    }
}

void HashInit(std::int32_t vertices) {
    HashExit();
    HashSize = 1 << std::bit_width(static_cast<std::uint32_t>(vertices));
    HashMask = HashSize - 1;
    HashTable = static_cast<HashEntry*>(
        MemoryAlloc(static_cast<std::uint32_t>(static_cast<std::size_t>(HashSize) * sizeof(HashEntry))));
    Check(HashTable != nullptr, "HashTable != NULL");
    recentSlots.fill(0);
}

void HashExit() {
    if (HashTable != nullptr) {
        MemoryFree(HashTable);
    }
    HashTable = nullptr;
}

HashEntry& HashFind(const VertexRecord& position) {
    std::int32_t& recent = recentSlots[RecentKey(position)];
    if (IsAt(HashTable[recent], position)) {
        return HashTable[recent];
    }
    std::int32_t n = HashKey(position);
    for (std::int32_t i = 0; i < HashSize; ++i, n = (n + PROBE_STEP) & HashMask) {
        HashEntry& entry = HashTable[n];
        if (entry.flag == 0 || IsAt(entry, position)) {
            recent = n;
            return entry;
        }
        Check(entry.flag == 1, "HashTable[n].flag == TRUE");
    }
    Check(false, "i < HashSize");
    return HashTable[n];
}

HashEntry& HashAdd(const VertexRecord& position, const std::int16_t normal[3]) {
    HashEntry& entry = HashFind(position);
    if (entry.flag == 0) {
        entry = {1, 0, position.x, position.y, position.z, normal[0], normal[1], normal[2]};
        return entry;
    }
    const std::int32_t side = entry.nx * normal[0] + entry.ny * normal[1] + entry.nz * normal[2];
    const std::int32_t sign = side < 0 ? -1 : 1;
    entry.nx = CutTo16(entry.nx + sign * normal[0]);
    entry.ny = CutTo16(entry.ny + sign * normal[1]);
    entry.nz = CutTo16(entry.nz + sign * normal[2]);
    return entry;
}

}  // namespace quelmark
