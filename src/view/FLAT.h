// The three orthographic views during a redraw.
#pragma once

#include <cstdint>

#include "view/PERS.h"

namespace quelmark {

// Made ready by the mask of views to draw, with the settings of that moment.
void FlatPrepare(std::int32_t mask);
// Background and grid.
void FlatGround();

// The views of the mask, at most three: what each of them shows of the coordinates.
struct FlatRange {
    Position low, high;
};
struct FlatRanges {
    int views;
    FlatRange range[3];
};
extern FlatRanges FlatShown;

// The views that can show something of a polygon between two corners of a box, one bit each.
inline unsigned FlatSees(Position least, Position most) {
    unsigned seen = 0;
    for (int i = 0; i < FlatShown.views; ++i) {
        const FlatRange& range = FlatShown.range[i];
        const bool outside = Any((most < range.low) | (least > range.high));
        seen |= (outside ? 0U : 1U) << i;
    }
    return seen;
}
unsigned FlatSeesOutline(const PolygonRecord& polygon);  // of any number of vertices
// Zoomed in, most polygons are seen in no view: to find that costs little more than to walk over them.
inline unsigned FlatSees(const PolygonRecord& polygon) {
    if (polygon.vers != 3 && polygon.vers != LANES) {
        return FlatSeesOutline(polygon);
    }
    const VertexRecord* const v = polygon.vertex;
    const Position a = PositionOf(v[0]), b = PositionOf(v[1]), c = PositionOf(v[2]),
                   d = PositionOf(v[polygon.vers - 1]);
    return FlatSees(Least(Least(a, b), Least(c, d)), Most(Most(a, b), Most(c, d)));
}

// A closed outline in the views that FlatSees has found for it.
void FlatPolygon(const PolygonRecord& polygon, unsigned seen, std::uint8_t colour, Marks marks);

}  // namespace quelmark
