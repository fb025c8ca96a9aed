#include "MODEL/BULK.h"

#include <algorithm>

#include "MODEL/OBJ.h"
#include "MODEL/TRANSFORM.h"

namespace quelmark {
namespace {

// A mapping coordinate: one column of the matrix, rounded to the nearest with halves toward zero, within its
// limits. The sum is not cut to 32 bits, so that what a matrix throws far out ends at the limit on its side.
std::int16_t Mapped(const FixedMatrix& matrix, int column, const VertexRecord& v, std::int32_t least,
                    std::int32_t most) {
    const auto product = [&](int row, std::int16_t word) {
        return std::int64_t{word} * matrix.element[row][column];
    };
    const std::int64_t sum = product(0, v.x) + product(1, v.y) + product(2, v.z) + matrix.fraction[column];
    std::int64_t value = matrix.translation[column];
    value += sum < 1 ? -((0x7FFF - sum) >> 16) : (sum + 0x7FFF) >> 16;
    return CutTo16(
        static_cast<std::int32_t>(std::min<std::int64_t>(std::max<std::int64_t>(value, least), most)));
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
            v.u = Mapped(fixed, 0, v, limits.uMin, limits.uMax);
            v.v = Mapped(fixed, 1, v, limits.vMin, limits.vMax);
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
