// What is done to every selected polygon at once.
#pragma once

#include <cstdint>

#include "MATLIB/SETMAT.h"
#include "MODEL/POLY.h"

namespace quelmark {

// Moves the vertices, vertex normals and plane normals; normals keep length 256, mapping coordinates stay.
void PolygonMove(const Matrix& matrix);
// False: every polygon becomes visible. True: the unselected ones become invisible.
void PolygonHide(bool hide);
// Negates the vertex normals of those that carry normals.
void PolygonReverseNormals();

struct MapLimits {
    std::int32_t uMin = VERTEX_MIN, vMin = VERTEX_MIN, uMax = VERTEX_MAX, vMax = VERTEX_MAX;
};
// Gives mapping coordinates: the first two columns of the matrix applied to the position, rounded, kept
// within the limits.
void PolygonMap(const Matrix& matrix, const MapLimits& limits);
// Takes the mapping away; the stored coordinates stay until a polygon is saved.
void PolygonUnmap();

}  // namespace quelmark
