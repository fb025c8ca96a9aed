// Lines of eye space on the screen.
#pragma once

#include "view/VIEW.h"

namespace quelmark {

// The screen line of an eye-space segment, clipped at the near plane; false when it lies behind it.
bool ProjectEyeLine(EyePoint from, EyePoint to, PanePoint& a, PanePoint& b);

}  // namespace quelmark
