// The perspective view's lines.
#pragma once

#include <cstdint>

#include "view/VIEW.h"

namespace quelmark {

// Whether a polygon is drawn with the vertex marks and vectors that are on: what is invisible goes without.
enum class Marks : bool { None, AsSet };

// The screen line of an eye-space segment, clipped at the near plane; false when it lies behind it. The same
// in both directions.
bool ProjectEyeLine(const EyePoint& from, const EyePoint& to, PanePoint& a, PanePoint& b);

// A redraw of the perspective view: made ready by its mask, which may leave the view out.
void PersPrepare(std::int32_t mask);
void PersGround();
// A closed outline; what faces away is left out when that is wanted.
void PersPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks);

// Shared with the orthographic views.
// A square of 3 × 3 pixels.
void DrawMark(const PixelRect& clip, const PanePoint& at, std::uint8_t colour, Ink ink = Ink::Set);
// A normal of length 256 at a pane point, 20 pixels long: its components to the right and up.
void DrawVector(const PixelRect& clip, const PanePoint& at, double right, double up);
// The middle of the polygon's vertices in display coordinates.
ModelPoint MiddleOf(const PolygonRecord& polygon);

}  // namespace quelmark
