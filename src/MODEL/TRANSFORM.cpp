#include "MODEL/TRANSFORM.h"

#include <cmath>

namespace quelmark {
namespace {

Matrix InverseTranspose(const Matrix& matrix) {
    const Matrix inverse = MatrixInverse(matrix);
    Matrix transposed = UNIT_MATRIX;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            transposed.row[i][j] = inverse.row[j][i];
        }
    }
    return transposed;
}

}  // namespace

ModelTransform::ModelTransform(const Matrix& matrix)
    : point_(MatrixToFixed(matrix)), normal_(MatrixToFixed(InverseTranspose(matrix))) {}

void ModelTransform::MovePoint(VertexRecord& vertex) const {
    const std::int32_t x = vertex.x, y = vertex.y, z = vertex.z;
    vertex.x = CutTo16(FixedFloored(point_, 0, x, y, z));
    vertex.y = CutTo16(FixedFloored(point_, 1, x, y, z));
    vertex.z = CutTo16(FixedFloored(point_, 2, x, y, z));
}

void ModelTransform::TurnNormal(std::int16_t* normal) const {
    const std::int32_t x = normal[0], y = normal[1], z = normal[2];
    for (int column = 0; column < 3; ++column) {
        normal[column] = CutTo16(FixedColumn(normal_, column, x, y, z) >> 16);
    }
}

void ModelTransform::MoveVertex(VertexRecord& vertex) const {
    MovePoint(vertex);
    if ((vertex.nx | vertex.ny | vertex.nz) != 0) {
        TurnNormal(&vertex.nx);
        NormaliseTo256(&vertex.nx);
    }
}

void NormaliseTo256(std::int16_t* normal) {
    const double x = normal[0], y = normal[1], z = normal[2];
    const double length = std::sqrt(x * x + y * y + z * z);
    const double scale = length > 0 ? 256 / length : 0;
    normal[0] = static_cast<std::int16_t>(x * scale);
    normal[1] = static_cast<std::int16_t>(y * scale);
    normal[2] = static_cast<std::int16_t>(z * scale);
}

}  // namespace quelmark
