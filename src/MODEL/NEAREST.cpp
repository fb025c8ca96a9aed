#include "MODEL/NEAREST.h"

#include <algorithm>
#include <cmath>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

// The windows, as scripts name them.
constexpr std::int32_t WINDOW_XY = 1;
constexpr std::int32_t WINDOW_YZ = 2;
constexpr std::int32_t WINDOW_ZX = 4;
constexpr std::int32_t WINDOW_PERSPECTIVE = 8;

// A vertex counts only when it is nearer than this: squared distances of the extent of the model and more do
// not.
constexpr std::int64_t FARTHEST = 0x3FFF0001;

std::int64_t Square(std::int64_t value) {
    return value * value;
}

std::int64_t SpaceDistance(const VertexRecord& a, const VertexRecord& b) {
    return Square(a.x - b.x) + Square(a.y - b.y) + Square(a.z - b.z);
}

// The nearest so far. Among equal distances the smaller tie value wins, then the first found.
struct Search {
    const VertexRecord& from;
    std::int64_t distance = FARTHEST;
    std::int64_t tie = 0;
    const VertexRecord* found = nullptr;

    void Take(const VertexRecord& candidate, std::int64_t itsDistance, std::int64_t itsTie) {
        distance = itsDistance;
        tie = itsTie;
        found = &candidate;
    }
    void Offer(const VertexRecord& candidate, std::int64_t itsDistance, std::int64_t itsTie) {
        if (itsDistance < distance || (found != nullptr && itsDistance == distance && itsTie < tie)) {
            Take(candidate, itsDistance, itsTie);
        }
    }
};

// Distances in a plane whose two axes are `first` and `second`, ties by the third.
template <auto first, auto second, auto depth>
void SearchPlane(Search& search, const PolygonRecord& polygon) {
    const VertexRecord& from = search.from;
    for (const VertexRecord& v : polygon.Vertices()) {
        search.Offer(v, Square(v.*first - from.*first) + Square(v.*second - from.*second),
                     std::abs(v.*depth - from.*depth));
    }
}

void SearchSpace(Search& search, const PolygonRecord& polygon) {
    for (const VertexRecord& v : polygon.Vertices()) {
        const std::int64_t distance = SpaceDistance(v, search.from);
        if (distance < search.distance) {
            search.Take(v, distance, distance);
        }
    }
}

// Screen distances of a polygon that faces the viewer; its distances in space then compete with the same best
// value.
void SearchPerspective(Search& search, const PolygonRecord& polygon, const PerspectiveSight& sight) {
    std::int32_t fromX = 0, fromY = 0;
    if (sight.isFacing(polygon) && sight.project(search.from, fromX, fromY)) {
        for (const VertexRecord& v : polygon.Vertices()) {
            std::int32_t x = 0, y = 0;
            if (sight.project(v, x, y)) {
                const std::int64_t dx = static_cast<std::int64_t>(x) - fromX,
                                   dy = static_cast<std::int64_t>(y) - fromY;
                // Offsets beyond 31 bits are farther than anything that counts.
                if (std::abs(dx) < FARTHEST && std::abs(dy) < FARTHEST) {
                    search.Offer(v, Square(dx) + Square(dy), SpaceDistance(v, search.from));
                }
            }
        }
    }
    SearchSpace(search, polygon);
}

void SearchPolygon(Search& search, const PolygonRecord& polygon, std::int32_t window,
                   const PerspectiveSight& sight) {
    using V = VertexRecord;
    switch (window) {
        case WINDOW_XY:
            return SearchPlane<&V::x, &V::y, &V::z>(search, polygon);
        case WINDOW_YZ:
            return SearchPlane<&V::y, &V::z, &V::x>(search, polygon);
        case WINDOW_ZX:
            return SearchPlane<&V::x, &V::z, &V::y>(search, polygon);
        case WINDOW_PERSPECTIVE:
            return SearchPerspective(search, polygon, sight);
        default:
            return SearchSpace(search, polygon);
    }
}

// ---- PolyPlane ----

struct Plane {
    double normal[3];
    double point[3];
};

// Newell's sums over a triangle.
Plane PlaneOf(const VertexRecord (&p)[3]) {
    Plane plane{{0, 0, 0},
                {static_cast<double>(p[0].x), static_cast<double>(p[0].y), static_cast<double>(p[0].z)}};
    for (int i = 0; i < 3; ++i) {
        const VertexRecord& a = p[i];
        const VertexRecord& b = p[(i + 1) % 3];
        plane.normal[0] += static_cast<double>(a.y - b.y) * (a.z + b.z);
        plane.normal[1] += static_cast<double>(a.z - b.z) * (a.x + b.x);
        plane.normal[2] += static_cast<double>(a.x - b.x) * (a.y + b.y);
    }
    return plane;
}

// Where the line meets the plane; false when they are parallel.
bool Meet(const Plane& plane, const SightLine& line, VertexRecord& vertex) {
    double along = 0, distance = 0;
    for (int i = 0; i < 3; ++i) {
        along += plane.normal[i] * line.direction[i];
        distance += plane.normal[i] * (plane.point[i] - line.origin[i]);
    }
    if (along == 0) {
        return false;
    }
    const double t = distance / along;
    std::int16_t* const words[3] = {&vertex.x, &vertex.y, &vertex.z};
    for (int i = 0; i < 3; ++i) {
        if (line.direction[i] != 0) {
            *words[i] = ToCoordinate(line.origin[i] + t * line.direction[i]);
        }
    }
    return true;
}

// The plane's three vertices from three arguments or one array.
void ReadPlane(std::int32_t argc, const DataCell* argv, VertexRecord (&points)[3]) {
    const bool array = argc == 3 && argv[2].type == TYPE_ARRAY && ArrayCount(argv[2]) == 3;
    const bool isRight = argc >= 3 && argv[1].type == TYPE_INT && (array || argc == 5);
    const DataCell* cells = array ? ArrayElements(argv[2]) : argv + 2;
    if (!isRight || !std::all_of(cells, cells + 3, IsVertex)) {
        RuntimeError("%s", "引数の型が不正です。(Vertex:PolyPlane)"_sjis);
    }
    for (int i = 0; i < 3; ++i) {
        points[i] = VertexOf(cells[i]).vertex;
    }
}

// A number that is no window has no depth to move along.
bool IsOneWindow(std::int32_t window) {
    return window == WINDOW_XY || window == WINDOW_YZ || window == WINDOW_ZX || window == WINDOW_PERSPECTIVE;
}

SightLine DepthLine(const VertexRecord& v, std::int32_t window, const PerspectiveSight& sight) {
    SightLine line{{static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)}, {0, 0, 0}};
    switch (window) {
        case WINDOW_XY:
            line.direction[2] = 1;
            return line;
        case WINDOW_YZ:
            line.direction[0] = 1;
            return line;
        case WINDOW_ZX:
            line.direction[1] = 1;
            return line;
        case WINDOW_PERSPECTIVE:
            return sight.lineThrough(v);
        default:
            return line;
    }
}

}  // namespace

std::int32_t CallPolyVertex(std::int32_t argc, DataCell* argv, const PerspectiveSight& sight) {
    ArgCheck(Takes("PolyVertex", {TYPE_OBJECT, TYPE_INT}, 1), argc, argv);
    const VertexRecord from = VertexOf(argv[0]).vertex;
    const std::int32_t window = argc > 1 ? argv[1].integer : 0;
    Search search{from};
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if ((polygon->flags & POLYGON_INVISIBLE) == 0) {
            SearchPolygon(search, *polygon, window, sight);
        }
    }
    StackPushVertex(search.found != nullptr ? *search.found : VertexRecord{}, 0);
    return RESULT;
}

std::int32_t CallPolyPlane(std::int32_t argc, DataCell* argv, const PerspectiveSight& sight) {
    VertexRecord points[3];
    ReadPlane(argc, argv, points);
    VertexRecord vertex = VertexOf(argv[0]).vertex;
    const std::int32_t window = argv[1].integer;
    if (IsOneWindow(window) && !Meet(PlaneOf(points), DepthLine(vertex, window, sight), vertex)) {
        Warning("平面投射できません"_sjis);
    }
    StackPushVertex(vertex, 0);
    return RESULT;
}

}  // namespace quelmark
