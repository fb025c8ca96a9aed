#include "MODEL/TRANSFORM.h"

#include <cmath>

#include "ML/OPERATE.h"

namespace quelmark {
namespace {

std::int16_t Cut16(std::int32_t value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
}

std::int32_t Column(const FixedMatrix& matrix, int column, std::int32_t x, std::int32_t y, std::int32_t z) {
    return WrapAdd(
        WrapAdd(WrapMultiply(x, matrix.element[0][column]), WrapMultiply(y, matrix.element[1][column])),
        WrapMultiply(z, matrix.element[2][column]));
}

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
    const auto moved = [&](int column) {
        const std::int32_t sum = WrapAdd(Column(point_, column, x, y, z), point_.fraction[column]);
        return Cut16(WrapAdd(sum >> 16, point_.translation[column]));
    };
    vertex.x = moved(0);
    vertex.y = moved(1);
    vertex.z = moved(2);
}

void ModelTransform::TurnNormal(std::int16_t* normal) const {
    const std::int32_t x = normal[0], y = normal[1], z = normal[2];
    for (int column = 0; column < 3; ++column) {
        normal[column] = Cut16(Column(normal_, column, x, y, z) >> 16);
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
