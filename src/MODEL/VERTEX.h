// The script class Vertex: a position, and where valid a normal and mapping coordinates.
#pragma once

#include <cstdint>

#include "ML/STACK.h"
#include "MODEL/POLY.h"

namespace quelmark {

extern std::int32_t VertexClass;

struct VertexObject {
    std::uint32_t valid;  // bit 0: the normal counts, bit 1: the mapping
    VertexRecord vertex;
};

void VertexRegister();
bool IsVertex(const DataCell& cell);
void StackPushVertex(const VertexRecord& vertex, std::uint32_t valid);
VertexObject& VertexOf(const DataCell& cell);
// A number as a 16-bit coordinate: truncated, then cut to 16 bits.
std::int16_t ToCoordinate(double value);

}  // namespace quelmark
