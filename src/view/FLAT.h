// The three orthographic views during a redraw.
#pragma once

#include <cstdint>

#include "view/PERS.h"

namespace quelmark {

// Made ready by the mask of views to draw, with the settings of that moment.
void FlatPrepare(std::int32_t mask);
// Background and grid.
void FlatGround();
// A closed outline in every view of the mask.
void FlatPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks);

}  // namespace quelmark
