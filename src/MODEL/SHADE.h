// Vertex normals of the selected polygons. Smooth shading averages plane normals over a hash table keyed on
// the positions, built for one call.
#pragma once

#include <cstdint>

#include "MODEL/POLY.h"

namespace quelmark {

enum ShadeMode : std::int32_t { NORMAL_OFF = 0, NORMAL_ON = 1, NORMAL_CREATE = 2 };

// NORMAL_CREATE: each vertex gets its polygon's plane normal. NORMAL_OFF: the polygons carry no normals any
// more. Any other value: each vertex gets the average of the plane normals of the selected polygons at its
// position.
void ShadeSelected(std::int32_t mode);
// After the selected polygons have changed their shape: new normals for those that carry them. A polygon
// whose corners all have one normal gets its plane's; elsewhere the corners at one position that had one
// normal, those of unselected polygons counted in, have one again.
void ShadeAgain();

// ---- the table ----

struct HashEntry {
    std::int16_t flag;  // 0: empty, 1: used
    std::int16_t skip;  // slots of the probe from here on that are known to be used; 0: this one
    std::int16_t x, y, z;
    std::int16_t nx, ny, nz;  // sum of plane normals; wraps at 16 bits
};
static_assert(sizeof(HashEntry) == 16);
extern HashEntry* HashTable;
extern std::int32_t HashSize;  // a power of two above the number of vertices, at most twice it
extern std::int32_t HashMask;

void HashInit(std::int32_t vertices);
void HashExit();
// Adds a plane normal to the sum at a position, or its opposite when it points away from the sum. The entry
// of the position.
HashEntry& HashAdd(const VertexRecord& position, const std::int16_t normal[3]);
// The entry of a position, or the empty entry where it would stand.
HashEntry& HashFind(const VertexRecord& position);

}  // namespace quelmark
