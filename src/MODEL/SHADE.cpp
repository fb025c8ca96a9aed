#include "MODEL/SHADE.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

#include "ML/ERROR.h"
#include "MODEL/OBJ.h"
#include "MODEL/OPENTABLE.h"
#include "MODEL/TRANSFORM.h"

namespace quelmark {

HashEntry* HashTable = nullptr;
std::int32_t HashSize = 0;
std::int32_t HashMask = 0;

namespace {

constexpr std::int32_t PROBE_STEP = 997;  // odd, so it visits every slot of a table of a power of two

// Where coordinates repeat in a regular way the probe for a position is long. Two things besides the table
// spare most of it: the slots found lately, as neighbouring polygons ask for the same positions, and one bit
// for what is in the table, as a position whose bit is not set need not be compared with any entry.
constexpr int RECENT_BITS = 14;
constexpr int SEEN_BITS_A_SLOT = 4;
constexpr int WORD_BITS = 64;
constexpr std::int32_t SKIP_MOST = INT16_MAX;
std::array<std::int32_t, 1 << RECENT_BITS> recentSlots;
std::vector<std::uint64_t> seenWords;

// Well mixed in the high bits.
std::uint64_t MixedKey(const VertexRecord& v) {
    const auto word = [](std::int16_t value) -> std::uint64_t { return static_cast<std::uint16_t>(value); };
    const std::uint64_t key = word(v.x) << 32 | word(v.y) << 16 | word(v.z);
    return (key ^ key >> 15) * 0x9E3779B97F4A7C15U;
}

// The word and the bit of a position.
struct Seen {
    std::uint64_t& word;
    std::uint64_t bit;
};
Seen SeenAt(std::uint64_t mixed) {
    const std::uint64_t at = (mixed >> 16) & (seenWords.size() * WORD_BITS - 1);
    return {seenWords[at / WORD_BITS], std::uint64_t{1} << (at % WORD_BITS)};
}

std::int32_t SlotAfter(std::int32_t slot, std::int32_t steps) {
    return (slot + steps * PROBE_STEP) & HashMask;
}

// The slots of the probe from a used one on that need no look.
std::int32_t SkipOf(std::int32_t slot) {
    return std::max<std::int32_t>(HashTable[slot].skip, 1);
}

// Where a probe ends that meets no equal entry. Every skip on the way takes in the one behind it.
std::int32_t FirstEmpty(std::int32_t slot) {
    std::int32_t steps = 0;
    while (steps < HashSize && HashTable[slot].flag != 0) {
        HashEntry& entry = HashTable[slot];
        Check(entry.flag == 1, "HashTable[n].flag == TRUE");
        std::int32_t skip = SkipOf(slot);
        const std::int32_t behind = SlotAfter(slot, skip);
        if (HashTable[behind].flag == 1) {
            skip = std::min(skip + SkipOf(behind), SKIP_MOST);
            entry.skip = static_cast<std::int16_t>(skip);
        }
        slot = SlotAfter(slot, skip);
        steps += skip;
    }
    Check(steps < HashSize, "i < HashSize");
    return slot;
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

// ---- normals of polygons that have changed ----

// The corners that had one normal at one position, and the sum of their polygons' plane normals.
struct CornerEntry {
    std::int16_t place[6];
    bool isUsed;
    double sum[3];

    bool IsUsed() const { return isUsed; }
    bool IsSame(const CornerEntry& other) const { return std::ranges::equal(place, other.place); }
    std::uint64_t Key() const {
        std::uint64_t key = 0;
        for (const std::int16_t word : place) {
            key = key * 0x9E3779B97F4A7C15U + static_cast<std::uint16_t>(word);
        }
        return key;
    }
};

CornerEntry CornerOf(const VertexRecord& v) {
    return {{v.x, v.y, v.z, v.nx, v.ny, v.nz}, true, {0, 0, 0}};
}

bool HasOneNormal(const PolygonRecord& polygon) {
    const VertexRecord& first = polygon.vertex[0];
    return std::ranges::all_of(polygon.Vertices(), [&first](const VertexRecord& v) {
        return v.nx == first.nx && v.ny == first.ny && v.nz == first.nz;
    });
}

void SetNormal(VertexRecord& v, const double normal[3]) {
    const double length = std::hypot(normal[0], normal[1], normal[2]);
    if (length > 0) {
        v.nx = static_cast<std::int16_t>(std::lround(normal[0] * 256 / length));
        v.ny = static_cast<std::int16_t>(std::lround(normal[1] * 256 / length));
        v.nz = static_cast<std::int16_t>(std::lround(normal[2] * 256 / length));
    }
}

// Calls visit(polygon, its plane normal) for those that carry normals.
template <class Visit>
void ForEachShaded(Visit visit) {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if ((polygon->type & POLY_SHADE) != 0) {
            std::int16_t plane[3];
            PlaneNormal(polygon->Vertices(), plane);
            const double normal[3] = {static_cast<double>(plane[0]), static_cast<double>(plane[1]),
                                      static_cast<double>(plane[2])};
            visit(*polygon, normal);
        }
    }
}

}  // namespace

void ShadeAgain() {
    OpenTable<CornerEntry> corners;
    ForEachShaded([&corners](const PolygonRecord& polygon, const double normal[3]) {
        for (const VertexRecord& v : polygon.Vertices()) {
            CornerEntry& entry = corners.Insert(CornerOf(v));
            for (int i = 0; i < 3; ++i) {
                entry.sum[i] += normal[i];
            }
        }
    });
    ForEachShaded([&corners](PolygonRecord& polygon, const double normal[3]) {
        if (polygon.select != 1) {
            return;
        }
        const bool isFlat = HasOneNormal(polygon);
        for (VertexRecord& v : polygon.Vertices()) {
            const CornerEntry* entry = isFlat ? nullptr : corners.Find(CornerOf(v));
            SetNormal(v, entry == nullptr ? normal : entry->sum);
        }
        ObjMarkEdited(polygon.obj);
    });
}

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
    seenWords.assign(static_cast<std::size_t>(std::max(HashSize * SEEN_BITS_A_SLOT / WORD_BITS, 1)), 0);
}

void HashExit() {
    if (HashTable != nullptr) {
        MemoryFree(HashTable);
    }
    HashTable = nullptr;
    seenWords = {};
}

HashEntry& HashFind(const VertexRecord& position) {
    const std::uint64_t mixed = MixedKey(position);
    std::int32_t& recent = recentSlots[mixed >> (64 - RECENT_BITS)];
    if (IsAt(HashTable[recent], position)) {
        return HashTable[recent];
    }
    std::int32_t n = HashKey(position);
    const Seen seen = SeenAt(mixed);
    if ((seen.word & seen.bit) == 0) {
        recent = FirstEmpty(n);
        return HashTable[recent];
    }
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
        const Seen seen = SeenAt(MixedKey(position));
        seen.word |= seen.bit;
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
