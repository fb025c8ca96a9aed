// A matrix in the 16.16 fixed-point form that moves stored vertices.
#pragma once

#include <cstdint>

#include "MATLIB/SETMAT.h"
#include "MODEL/POLY.h"

namespace quelmark {

class ModelTransform {
  public:
    explicit ModelTransform(const Matrix& matrix);

    // x' = ((x·A11 + y·A21 + z·A31 + Fx) >> 16) + Tx and so on, in 32 bits, cut to 16.
    void MovePoint(VertexRecord& vertex) const;
    // A normal (three words) by the inverse transpose; its length is not restored.
    void TurnNormal(std::int16_t* normal) const;

  private:
    FixedMatrix point_;
    FixedMatrix normal_;
};

// Scales three words to length 256, truncating; (0, 0, 0) stays.
void NormaliseTo256(std::int16_t* normal);

}  // namespace quelmark
