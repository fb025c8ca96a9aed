#include "MODEL/POLY.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "ML/ERROR.h"
#include "ML/OPERATE.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/UNDO.h"
#include "text/sjis.h"

namespace quelmark {

PolygonRecord* CurrentPolygon = nullptr;
PolygonRecord* LoadedPolygon = nullptr;
std::int32_t MaxVertex = 0;
std::int32_t SelectCount = 0;

namespace {

constexpr std::uint32_t ID_LAST = 0x7FFFFFFF;
std::uint32_t lastId = 0;        // of the records given so far
std::uint32_t loadedLayout = 0;  // BufLayout when LoadedPolygon was last known to be a record

constexpr std::int32_t INDEX_LIMIT = 32767;  // table indices and vertex numbers are 16-bit words of a record

DataBuffer* BlockOf(PolygonRecord* polygon) {
    return &polygon->header;
}

// Bytes of CurrentPolygon's record. More vertices than the edit buffer has fail like more than a record may
// have.
std::int32_t CurrentSize() {
    const std::int32_t vers = CurrentPolygon->vers;
    Check(0 < vers && vers < VERTEX_LIMIT && vers <= MaxVertex, "0 < vers && vers < 1024");
    return PolygonSize(vers);
}

// The handles of all records, in order, as far as they were asked for: makes loading by handle a binary
// search.
struct HandleIndex {
    std::vector<std::int32_t> handles;
    PolygonRecord* last = nullptr;  // the record of the last entry
    std::uint32_t layout = 0;       // BufLayout that the index is of
};
HandleIndex handleIndex;

// True when a record begins at this address.
bool IsLive(const PolygonRecord* wanted) {
    if (handleIndex.layout != BufLayout) {
        handleIndex = {{}, nullptr, BufLayout};
    }
    const std::int32_t handle = PolygonHandle(wanted);
    while (handleIndex.handles.empty() || handleIndex.handles.back() < handle) {
        PolygonRecord* next = handleIndex.last == nullptr ? PolygonTop() : PolygonNext(handleIndex.last);
        if (next == nullptr) {
            return false;
        }
        handleIndex.last = next;
        handleIndex.handles.push_back(PolygonHandle(next));
    }
    return std::ranges::binary_search(handleIndex.handles, handle);
}

// Blocks have moved since the record was loaded: is it still one?
void VerifyLoaded() {
    if (LoadedPolygon != nullptr && loadedLayout != BufLayout) {
        const bool inside = reinterpret_cast<const char*>(LoadedPolygon) < BufNext;
        LoadedPolygon = inside && IsLive(LoadedPolygon) ? LoadedPolygon : nullptr;
        loadedLayout = BufLayout;
    }
}

}  // namespace

bool ModelInit(std::int32_t bufferBytes, std::int32_t objectCount, std::int32_t attributeCount,
               std::int32_t maxVertex) {
    ModelExit();
    BufferInit(static_cast<std::size_t>(std::max(bufferBytes, 0)));
    AttrInit(std::clamp(attributeCount, 0, INDEX_LIMIT));
    ObjInit(std::clamp(objectCount, 0, INDEX_LIMIT));
    MaxVertex = std::clamp(maxVertex, 0, INDEX_LIMIT);
    const auto vertexBytes = static_cast<std::uint32_t>(MaxVertex) * std::uint32_t{sizeof(VertexRecord)};
    CurrentPolygon = static_cast<PolygonRecord*>(MemoryAlloc(sizeof(PolygonRecord) + vertexBytes));
    LoadedPolygon = nullptr;
    SelectCount = 0;
    return BufTop != nullptr && AttrTable != nullptr && ObjTable != nullptr && CurrentPolygon != nullptr;
}

void ModelExit() {
    UndoExit();
    BufferExit();
    AttrExit();
    ObjExit();
    if (CurrentPolygon != nullptr) {
        MemoryFree(CurrentPolygon);
    }
    CurrentPolygon = nullptr;
    LoadedPolygon = nullptr;
    handleIndex = {};
}

std::int32_t PolygonSize(std::int32_t vers) {
    Check(0 < vers && vers < VERTEX_LIMIT, "0 < vers && vers < 1024");
    return POLYGON_HEADER_BYTES + std::int32_t{sizeof(VertexRecord)} * vers;
}

void PlaneNormal(std::span<const VertexRecord> vertices, std::int16_t normal[3]) {
    float nx = 0, ny = 0, nz = 0;
    const auto product = [](std::int32_t difference, std::int32_t sum) {
        return static_cast<float>(WrapMultiply(difference, sum));
    };
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const VertexRecord& a = vertices[i];
        const VertexRecord& b = vertices[i + 1 == vertices.size() ? 0 : i + 1];
        nx += product(a.y - b.y, a.z + b.z);
        ny += product(a.z - b.z, a.x + b.x);
        nz += product(a.x - b.x, a.y + b.y);
    }
    const float length = std::sqrt(nx * nx + ny * ny + nz * nz);
    const float scale = length > 0 ? 256 / length : 0;
    normal[0] = static_cast<std::int16_t>(nx * scale);
    normal[1] = static_cast<std::int16_t>(ny * scale);
    normal[2] = static_cast<std::int16_t>(nz * scale);
}

void PolygonGiveId(PolygonRecord& polygon) {
    lastId = lastId == ID_LAST ? 1 : lastId + 1;
    polygon.idLow = static_cast<std::int16_t>(lastId & 0xFFFF);
    polygon.flags = static_cast<std::uint16_t>((lastId >> 16 << 1) | (polygon.flags & POLYGON_INVISIBLE));
}

bool PolygonAppend(std::int32_t select) {
    const std::int32_t size = CurrentSize();
    CurrentPolygon->select = select != 0 ? 1 : 0;
    auto* polygon = reinterpret_cast<PolygonRecord*>(BufferAppend(size));
    if (polygon == nullptr) {
        return false;
    }
    PlaneNormal(CurrentPolygon->Vertices(), CurrentPolygon->normal);
    BufferCopy(BlockOf(polygon), BlockOf(CurrentPolygon), size);
    PolygonGiveId(*polygon);
    SelectCount += polygon->select;
    ObjMarkEdited(polygon->obj);
    return true;
}

std::int32_t PolygonHandle(const PolygonRecord* polygon) {
    return static_cast<std::int32_t>((reinterpret_cast<const char*>(polygon) - BufTop) / 4 + 1);
}

void PolygonLoadRecord(PolygonRecord* polygon) {
    Check(polygon->vers <= MaxVertex, "polygon->vers <= MaxVertex");
    LoadedPolygon = polygon;
    loadedLayout = BufLayout;
    BufferCopy(BlockOf(CurrentPolygon), BlockOf(polygon), PolygonSize(polygon->vers));
}

std::int32_t PolygonLoadNext() {
    VerifyLoaded();
    PolygonRecord* polygon = LoadedPolygon == nullptr ? PolygonTop() : PolygonNext(LoadedPolygon);
    while (polygon != nullptr && polygon->select == 0) {
        polygon = PolygonNext(polygon);
    }
    if (polygon == nullptr) {
        LoadedPolygon = nullptr;
        return 0;
    }
    PolygonLoadRecord(polygon);
    return PolygonHandle(polygon);
}

void PolygonLoad(std::int32_t handle) {
    const std::int64_t offset = (static_cast<std::int64_t>(handle) - 1) * 4;
    const bool inside = 0 <= offset && offset < BufNext - BufTop;
    auto* polygon = inside ? reinterpret_cast<PolygonRecord*>(BufTop + offset) : nullptr;
    if (polygon == nullptr || !IsLive(polygon)) {
        RuntimeError("%s", "ポリゴンのハンドルが不正です。(PolyLoad)"_sjis);
    }
    PolygonLoadRecord(polygon);
}

void PolygonLoadInit() {
    LoadedPolygon = nullptr;
}

void PolygonSave() {
    VerifyLoaded();
    if (LoadedPolygon == nullptr) {
        RuntimeError("%s", "PolyLoadされていません。(Vertex:PolySave)"_sjis);
    }
    const std::int32_t size = CurrentSize();
    const bool wasSelected = LoadedPolygon->select != 0;
    if (BufferResize(BlockOf(LoadedPolygon), size) == nullptr) {
        return;
    }
    loadedLayout = BufLayout;  // growing leaves the record where it is
    SelectCount += (CurrentPolygon->select != 0 ? 1 : 0) - (wasSelected ? 1 : 0);
    BufferCopy(BlockOf(LoadedPolygon), BlockOf(CurrentPolygon), size);
    for (VertexRecord& vertex : LoadedPolygon->Vertices()) {
        if ((LoadedPolygon->type & POLY_SHADE) == 0) {
            vertex.nx = vertex.ny = vertex.nz = 0;
        }
        if ((LoadedPolygon->type & POLY_UV) == 0) {
            vertex.u = vertex.v = 0;
        }
    }
    PlaneNormal(LoadedPolygon->Vertices(), LoadedPolygon->normal);
    std::memcpy(CurrentPolygon->normal, LoadedPolygon->normal, sizeof CurrentPolygon->normal);
    ObjMarkEdited(LoadedPolygon->obj);
}

void PolygonDelete() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr;) {
        PolygonRecord* next = PolygonNext(polygon);
        if (polygon->select == 1) {
            ObjMarkEdited(polygon->obj);
            BufferDelete(BlockOf(polygon));
        }
        polygon = next;
    }
    BufferCompact();
    SelectCount = 0;
}

}  // namespace quelmark
