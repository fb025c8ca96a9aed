// Polygons: records in the data buffer, the edit buffer CurrentPolygon, and the walk over the selected ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "MODEL/BUFFER.h"

namespace quelmark {

inline constexpr std::int32_t VERTEX_MIN = -32767;
inline constexpr std::int32_t VERTEX_MAX = 32767;
inline constexpr std::int32_t VERTEX_LIMIT = 1024;  // a polygon has 1 to 1023 vertices

enum PolygonType : std::uint16_t { POLY_SIMPLE = 0, POLY_SHADE = 1, POLY_UV = 2, POLY_UVSHADE = 3 };
// The bit of PolygonRecord::flags that is a flag; the others are of the record's id.
inline constexpr std::uint16_t POLYGON_INVISIBLE = 1;

struct VertexRecord {
    std::int16_t x, y, z;     // model coordinates
    std::int16_t nx, ny, nz;  // normal of length 256, meaningful when type bit 0 is set
    std::int16_t u, v;        // mapping coordinates, meaningful when type bit 1 is set
};
static_assert(sizeof(VertexRecord) == 16);

struct PolygonRecord {
    DataBuffer header;
    std::int16_t select;
    std::uint16_t type;
    std::int16_t attr;
    std::int16_t obj;
    std::int16_t vers;
    std::uint16_t flags;
    std::int16_t normal[3];
    std::int16_t idLow;      // of the record's id; the high word is in `flags`
    VertexRecord vertex[1];  // `vers` of them

    std::span<VertexRecord> Vertices() { return {vertex, static_cast<std::size_t>(vers)}; }
    std::span<const VertexRecord> Vertices() const { return {vertex, static_cast<std::size_t>(vers)}; }
};
inline constexpr std::int32_t POLYGON_HEADER_BYTES = offsetof(PolygonRecord, vertex);
static_assert(POLYGON_HEADER_BYTES == 24 && sizeof(PolygonRecord) == 40);

// Every new record gets an id of its own, not 0; it goes with the record through changes, moving blocks and
// undoing. A copy is another record. (After 2^31 records the ids begin again.)
inline std::uint32_t PolygonId(const PolygonRecord& polygon) {
    return static_cast<std::uint32_t>(polygon.flags >> 1) << 16 | static_cast<std::uint16_t>(polygon.idLow);
}
void PolygonGiveId(PolygonRecord& polygon);

extern PolygonRecord* CurrentPolygon;
extern PolygonRecord* LoadedPolygon;
extern std::int32_t MaxVertex;    // vertices that CurrentPolygon has room for; no record has more
extern std::int32_t SelectCount;  // records whose `select` is not 0

// Makes an empty model. Counts beyond what a record's 16-bit words can name are cut to 32767. False when the
// heap has no room for its tables.
bool ModelInit(std::int32_t bufferBytes, std::int32_t objectCount, std::int32_t attributeCount,
               std::int32_t maxVertex);
void ModelExit();

// Bytes of a record of `vers` vertices; checks "0 < vers && vers < 1024".
std::int32_t PolygonSize(std::int32_t vers);
// A walk asks for the memory so far ahead of it, which it would otherwise wait for where a model is larger
// than the processor's caches.
inline constexpr std::int32_t WALK_AHEAD = 4096;
// The records, first to last; null at the end. The walk trusts the chain of sizes, which every change keeps.
inline PolygonRecord* PolygonTop() {
    return BufTop != BufNext ? reinterpret_cast<PolygonRecord*>(BufTop) : nullptr;
}
inline PolygonRecord* PolygonNext(PolygonRecord* polygon) {
    char* next = reinterpret_cast<char*>(polygon) + polygon->header.size;
    __builtin_prefetch(next + WALK_AHEAD);
    return next < BufNext ? reinterpret_cast<PolygonRecord*>(next) : nullptr;
}
// Newell's method; (0, 0, 0) for a degenerate polygon, else length 256.
void PlaneNormal(std::span<const VertexRecord> vertices, std::int16_t normal[3]);

// Appends CurrentPolygon; false when the buffer is full.
bool PolygonAppend(std::int32_t select);
// The walk over the selected polygons: copies the next one into CurrentPolygon; its handle, or 0 at the end.
std::int32_t PolygonLoadNext();
// Copies the record a handle names. A handle that names none any more is
// "ポリゴンのハンドルが不正です。(PolyLoad)".
void PolygonLoad(std::int32_t handle);
void PolygonLoadRecord(PolygonRecord* polygon);
void PolygonLoadInit();
// Not 0; names the record until blocks move.
std::int32_t PolygonHandle(const PolygonRecord* polygon);
// Writes CurrentPolygon back over the loaded record; "PolyLoadされていません。(Vertex:PolySave)".
void PolygonSave();
// Deletes every selected polygon.
void PolygonDelete();

// Registers the class Vertex, the model constants and every function of polygons, selection, attributes,
// objects and undoing.
void PolygonRegister();

}  // namespace quelmark
