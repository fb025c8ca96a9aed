// The script class Vertex: a position, and where valid a normal and mapping coordinates.
#pragma once

#include <cstdint>

#include "MATLIB/SETVEC.h"
#include "ML/STACK.h"
#include "MODEL/POLY.h"

namespace quelmark {

extern std::int32_t VertexClass;

inline constexpr std::uint32_t VALID_NORMAL = 1;
inline constexpr std::uint32_t VALID_MAPPING = 2;

struct VertexObject {
    std::uint32_t valid;  // what counts beside the position
    VertexRecord vertex;
};

void VertexRegister();
bool IsVertex(const DataCell& cell);
void StackPushVertex(const VertexRecord& vertex, std::uint32_t valid);
VertexObject& VertexOf(const DataCell& cell);
// Makes an array's element a new Vertex that has a position alone.
void StoreVertex(const DataCell& array, std::int32_t index, const VertexRecord& position);
// A number as a 16-bit coordinate: truncated, then cut to 16 bits.
std::int16_t ToCoordinate(double value);
// A Vector as a position, its components so.
VertexRecord ToPosition(const Vector& vector);

}  // namespace quelmark
