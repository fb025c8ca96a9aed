// The script class Vector: three single-precision reals.
#pragma once

#include "ML/STACK.h"

namespace quelmark {

struct Vector {
    float x, y, z;
};

extern std::int32_t VectorClass;

// Registers the classes Vector and Matrix, their constants, members and operators.
void MatrixLibraryRegister();

bool IsVector(const DataCell& cell);
// Pushes a new Vector.
void StackPushVector(const Vector& vector);
// Reads a three-component argument at argv[0]: three numbers, a Vector, or an array of at least three
// numbers. The number of arguments it took (3 or 1), or 0 when there is none; `result` is then untouched.
int ReadThreeComponents(std::int32_t argc, const DataCell* argv, Vector& result);

}  // namespace quelmark
