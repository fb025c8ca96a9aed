// The geometry questions of "PolyVertex" (the stored vertex nearest to a point, as a view shows it) and
// "PolyPlane" (a point moved onto a plane along a view's depth). The perspective view stands in a higher
// layer, which registers the two functions and says here how it sees.
#pragma once

#include <cstdint>

#include "ML/STACK.h"
#include "MODEL/POLY.h"

namespace quelmark {

// A line of sight in model space: the eye's ray through a point.
struct SightLine {
    double origin[3];
    double direction[3];
};

struct PerspectiveSight {
    // True when the polygon faces the viewer, or all are shown whatever side they turn.
    bool (*isFacing)(const PolygonRecord& polygon);
    // The point on the perspective screen; false for one that is not in front of the eye.
    bool (*project)(const VertexRecord& position, std::int32_t& x, std::int32_t& y);
    SightLine (*lineThrough)(const VertexRecord& position);
};

// "PolyVertex"(vertex [, window]): pushes the nearest vertex of a visible polygon, all zeros when there is
// none. Window 1, 2, 4: distance in the XY, YZ, ZX plane; 8: on the perspective screen, then in space; else
// in space.
std::int32_t CallPolyVertex(std::int32_t argc, DataCell* argv, const PerspectiveSight& sight);

// "PolyPlane"(vertex, window, p1, p2, p3 or an array of three): pushes a copy of the vertex moved onto the
// plane along the window's depth axis. Errors: "引数の型が不正です。(Vertex:PolyPlane)"; a plane seen edge-on
// is the warning "平面投射できません", and the vertex stays.
std::int32_t CallPolyPlane(std::int32_t argc, DataCell* argv, const PerspectiveSight& sight);

}  // namespace quelmark
