// The script class Matrix: an affine transform. Points are row vectors, p' = p × M: rows 0 to 2 are the
// images of the axes, row 3 is the translation.
#pragma once

#include "MATLIB/SETVEC.h"

namespace quelmark {

struct Matrix {
    float row[4][3];
};
inline constexpr Matrix UNIT_MATRIX{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}};

extern std::int32_t MatrixClass;

// Registers the class Matrix; MatrixLibraryRegister calls it.
void MatrixRegister();

bool IsMatrix(const DataCell& cell);
void StackPushMatrix(const Matrix& matrix);

// First a, then b.
Matrix MatrixProduct(const Matrix& a, const Matrix& b);
// The determinant, in single precision, is within ±1e-64.
bool MatrixIsSingular(const Matrix& matrix);
// A singular matrix is returned as it is.
Matrix MatrixInverse(const Matrix& matrix);
// A rotation about axis 0, 1 or 2; another axis gives the unit matrix.
Matrix MatrixRotation(int axis, double degrees);
Vector MatrixApply(const Vector& point, const Matrix& matrix);

// The 16.16 fixed-point form the model store moves vertices with: elements rounded to the nearest, the
// translation split by floor into an integer part (added after the shift) and a fraction (added before).
struct FixedMatrix {
    std::int32_t element[3][3];
    std::int32_t fraction[3];
    std::int32_t translation[3];
};
FixedMatrix MatrixToFixed(const Matrix& matrix);

}  // namespace quelmark
