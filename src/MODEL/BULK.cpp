#include "MODEL/BULK.h"

#include "MODEL/OBJ.h"
#include "MODEL/TRANSFORM.h"

namespace quelmark {
namespace {

std::int16_t Limited(std::int32_t value, std::int32_t least, std::int32_t most) {
    if (value < least) {
        value = least;
    }
    return CutTo16(value > most ? most : value);
}

}  // namespace

void PolygonMove(const Matrix& matrix) {
    const ModelTransform transform(matrix);
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        for (VertexRecord& vertex : polygon->Vertices()) {
            transform.MoveVertex(vertex);
        }
        transform.TurnNormal(polygon->normal);
        NormaliseTo256(polygon->normal);
        ObjMarkEdited(polygon->obj);
    }
}

void PolygonHide(bool hide) {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (!hide) {
            polygon->flags = static_cast<std::uint16_t>(polygon->flags & ~POLYGON_INVISIBLE);
        } else if (polygon->select == 0) {
            polygon->flags |= POLYGON_INVISIBLE;
        }
    }
}

void PolygonReverseNormals() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 0 || (polygon->type & POLY_SHADE) == 0) {
            continue;
        }
        for (VertexRecord& vertex : polygon->Vertices()) {
            vertex.nx = CutTo16(-vertex.nx);
            vertex.ny = CutTo16(-vertex.ny);
            vertex.nz = CutTo16(-vertex.nz);
        }
        ObjMarkEdited(polygon->obj);
    }
}

void PolygonMap(const Matrix& matrix, const MapLimits& limits) {
    if (SelectCount == 0) {
        return;
    }
    const FixedMatrix fixed = MatrixToFixed(matrix);
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        polygon->type |= POLY_UV;
        for (VertexRecord& v : polygon->Vertices()) {
            v.u = Limited(FixedRounded(fixed, 0, v.x, v.y, v.z), limits.uMin, limits.uMax);
            v.v = Limited(FixedRounded(fixed, 1, v.x, v.y, v.z), limits.vMin, limits.vMax);
        }
        ObjMarkEdited(polygon->obj);
    }
}

void PolygonUnmap() {
    if (SelectCount == 0) {
        return;
    }
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select == 1) {
            polygon->type = static_cast<std::uint16_t>(polygon->type & ~POLY_UV);
            ObjMarkEdited(polygon->obj);
        }
    }
}

}  // namespace quelmark
