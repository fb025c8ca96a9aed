// A matrix in the 16.16 fixed-point form that moves stored vertices.
#pragma once

#include <cstdint>

#include "MATLIB/SETMAT.h"
#include "ML/OPERATE.h"
#include "MODEL/POLY.h"

namespace quelmark {

// The low 16 bits.
constexpr std::int16_t CutTo16(std::int32_t value) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
}

// x·A1 + y·A2 + z·A3 of one column, in wrapping 32 bits.
inline std::int32_t FixedColumn(const FixedMatrix& matrix, int column, std::int32_t x, std::int32_t y,
                                std::int32_t z) {
    return WrapAdd(
        WrapAdd(WrapMultiply(x, matrix.element[0][column]), WrapMultiply(y, matrix.element[1][column])),
        WrapMultiply(z, matrix.element[2][column]));
}
// A transformed coordinate: the sum is shifted, so it is floored.
inline std::int32_t FixedFloored(const FixedMatrix& matrix, int column, std::int32_t x, std::int32_t y,
                                 std::int32_t z) {
    const std::int32_t sum = WrapAdd(FixedColumn(matrix, column, x, y, z), matrix.fraction[column]);
    return WrapAdd(sum >> 16, matrix.translation[column]);
}
// The same rounded to the nearest, halves toward zero.
inline std::int32_t FixedRounded(const FixedMatrix& matrix, int column, std::int32_t x, std::int32_t y,
                                 std::int32_t z) {
    const std::int32_t sum = WrapAdd(FixedColumn(matrix, column, x, y, z), matrix.fraction[column]);
    return sum < 1 ? WrapSubtract(matrix.translation[column], WrapSubtract(0x7FFF, sum) >> 16)
                   : WrapAdd(matrix.translation[column], WrapAdd(sum, 0x7FFF) >> 16);
}

class ModelTransform {
  public:
    explicit ModelTransform(const Matrix& matrix);

    // x' = ((x·A11 + y·A21 + z·A31 + Fx) >> 16) + Tx and so on, in 32 bits, cut to 16.
    void MovePoint(VertexRecord& vertex) const;
    // A normal (three words) by the inverse transpose; its length is not restored.
    void TurnNormal(std::int16_t* normal) const;
    // A point and its normal, which gets length 256 again.
    void MoveVertex(VertexRecord& vertex) const;

  private:
    FixedMatrix point_;
    FixedMatrix normal_;
};

// Scales three words to length 256, truncating; (0, 0, 0) stays.
void NormaliseTo256(std::int16_t* normal);

}  // namespace quelmark
