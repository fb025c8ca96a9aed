// Transformations behind a part reference.
#pragma once

#include "MATLIB/SETMAT.h"

namespace quelmark {

// Reads `mov ( x y z )`, `scal`, `rotx`, `roty`, `rotz`, `mat ( sixteen numbers, rows )` as long as there are
// any; they apply to a point in the order written. False after a fault.
bool ReadTransforms(Matrix& matrix);

}  // namespace quelmark
