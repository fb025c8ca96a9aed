// Selection: the `select` word of each polygon, set by regions and properties in four modes, and saved
// selections of the script class Select.
#pragma once

#include <cstdint>

#include "MODEL/POLY.h"

namespace quelmark {

inline constexpr std::int32_t SELECT_MODE_MASK = 3;
inline constexpr std::int32_t SELECT_SUB = 16;

void SelectRegister();

// Every selection begins so: the load walk starts again, SelectCount is 0.
void SelectBegin();
// Gives a polygon the flag for a hit and its negation for a miss, combined by the mode; invisible ones are
// left alone.
void SelectPolygon(PolygonRecord* polygon, bool hit, bool flag, std::int32_t mode);

}  // namespace quelmark
