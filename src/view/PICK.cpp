// Which polygon, vertex or edge a pointer means.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "view/PERS.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

double SegmentDistance(const PanePoint& p, const PanePoint& a, const PanePoint& b) {
    const auto dx = static_cast<double>(b.x - a.x), dy = static_cast<double>(b.y - a.y);
    const auto px = static_cast<double>(p.x - a.x), py = static_cast<double>(p.y - a.y);
    const double squared = dx * dx + dy * dy;
    const double part = squared > 0 ? std::clamp((px * dx + py * dy) / squared, 0.0, 1.0) : 0.0;
    return std::hypot(px - part * dx, py - part * dy);
}

// ---- vertices and edges: exact places on the screen, seen from the pointer ----

struct ScreenPoint {
    double right, up;  // pixels
    double depth;      // towards the viewer, in model units
};

// Where the pointer is, and how a view shows what is around it.
class Screen {
  public:
    Screen(std::int32_t x, std::int32_t y) : view(ViewAt(x, y)), isPers(view == WIN_PERS) {
        if (view == 0) {
            return;
        }
        const ViewRecord& record = Views[ViewIndex(view)];
        right = x - record.centreX;
        up = record.centreY - y;
        for (int axis = 0; axis < 4; ++axis) {
            Column(axis);
        }
    }

    // False for what is not in front of the eye.
    bool Shows(const VertexRecord& vertex, ScreenPoint& at) const {
        const double r = Row(0, vertex), u = Row(1, vertex), d = Row(2, vertex);
        if (!isPers) {
            at = {r - right, u - up, d};
            return true;
        }
        const double size = ViewState.focalDistance / -d;
        at = {r * size - right, u * size - up, d};
        return d <= -1;
    }
    bool Shows(const PolygonRecord& polygon) const {
        return view != 0 && (polygon.flags & POLYGON_INVISIBLE) == 0 &&
               (SelectCount == 0 || polygon.select != 0) &&
               !(isPers && ViewState.frontOnly && !ViewFacesViewer(polygon));
    }

  private:
    // What a unit of a model axis, or for 3 the model's origin, adds to the right, upward and to the viewer.
    void Column(int axis) {
        std::array<double, 3> p{};
        if (ViewState.converting) {
            const FixedMatrix& m = ViewState.conversion;
            for (int i = 0; i < 3; ++i) {
                p[static_cast<std::size_t>(i)] = axis == 3 ? m.translation[i] : m.element[axis][i] / 65536.0;
            }
        } else if (axis < 3) {
            p[static_cast<std::size_t>(axis)] = 1;
        }
        if (isPers) {
            Set(axis, -ToEye(p, axis, 1), ToEye(p, axis, 2), -ToEye(p, axis, 0));
            return;
        }
        const double scale = static_cast<double>(ViewState.numerator) / ViewState.denominator;
        const ModelPoint c = axis == 3 ? ViewState.centre : ModelPoint{0, 0, 0};
        const double x = (p[0] - c.x) * scale, y = (p[1] - c.y) * scale, z = (p[2] - c.z) * scale;
        if (view == WIN_XY) {
            Set(axis, x, y, p[2]);
        } else if (view == WIN_YZ) {
            Set(axis, y, z, p[0]);
        } else {
            Set(axis, x, z, -p[1]);
        }
    }
    // What a unit of an axis, or the origin, at p adds to a coordinate of eye space.
    static double ToEye(const std::array<double, 3>& p, int axis, int coordinate) {
        const auto& m = ViewState.perspective.row;
        double sum = axis == 3 ? static_cast<double>(m[3][coordinate]) : 0;
        for (std::size_t i = 0; i < p.size(); ++i) {
            sum += p[i] * static_cast<double>(m[i][coordinate]);
        }
        return sum;
    }
    void Set(int axis, double toRight, double upward, double toViewer) {
        row[0][axis] = toRight;
        row[1][axis] = upward;
        row[2][axis] = toViewer;
    }
    double Row(int i, const VertexRecord& v) const {
        return row[i][0] * v.x + row[i][1] * v.y + row[i][2] * v.z + row[i][3];
    }

    std::int32_t view;
    bool isPers;
    double right = 0, up = 0;
    double row[3][4]{};  // of the pane point, without the pointer, and the depth
};

// The nearest so far. What is as far, to a hair, counts as nearer when it is nearer to the viewer.
class Nearest {
  public:
    bool Take(double squared, double depth) {
        const bool nearer = squared < 0.999 * best || (squared <= 1.001 * best + 0.001 && depth > bestDepth);
        if (nearer) {
            best = squared;
            bestDepth = depth;
        }
        return nearer;
    }

  private:
    double best = std::numeric_limits<double>::max(), bestDepth = -best;
};

// The place of the segment's point that is nearest to the pointer; false for one that is seen from its end.
bool NearestOfEdge(const ScreenPoint& a, const ScreenPoint& b, ScreenPoint& at) {
    const double dx = b.right - a.right, dy = b.up - a.up;
    const double squared = dx * dx + dy * dy;
    if (squared < 1e-6) {
        return false;
    }
    const double part = std::clamp(-(a.right * dx + a.up * dy) / squared, 0.0, 1.0);
    at = {a.right + part * dx, a.up + part * dy, a.depth + part * (b.depth - a.depth)};
    return true;
}

// Calls visit(polygon) for those that can be picked from.
template <class Visit>
void ForEachPickable(const Screen& screen, Visit visit) {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (screen.Shows(*polygon)) {
            visit(*polygon);
        }
    }
}

}  // namespace

bool ViewPickVertex(std::int32_t x, std::int32_t y, VertexRecord& vertex) {
    const Screen screen(x, y);
    Nearest nearest;
    bool found = false;
    ForEachPickable(screen, [&](const PolygonRecord& polygon) {
        for (const VertexRecord& v : polygon.Vertices()) {
            ScreenPoint at{};
            if (screen.Shows(v, at) && nearest.Take(at.right * at.right + at.up * at.up, at.depth)) {
                vertex = v;
                found = true;
            }
        }
    });
    return found;
}

bool ViewPickEdge(std::int32_t x, std::int32_t y, VertexRecord& from, VertexRecord& to) {
    const Screen screen(x, y);
    Nearest nearest;
    bool found = false;
    ForEachPickable(screen, [&](const PolygonRecord& polygon) {
        const auto vertices = polygon.Vertices();
        ScreenPoint a{}, b{}, at{};
        bool showsA = screen.Shows(vertices.back(), a);
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const bool showsB = screen.Shows(vertices[i], b);
            if (showsA && showsB && NearestOfEdge(a, b, at) &&
                nearest.Take(at.right * at.right + at.up * at.up, at.depth)) {
                from = vertices[(i + vertices.size() - 1) % vertices.size()];
                to = vertices[i];
                found = true;
            }
            a = b;
            showsA = showsB;
        }
    });
    return found;
}

PolygonRecord* ViewPick(std::int32_t x, std::int32_t y, std::int32_t reach) {
    const std::int32_t view = ViewAt(x, y);
    PolygonRecord* nearest = nullptr;
    double best = reach;
    for (PolygonRecord* polygon = view == 0 ? nullptr : PolygonTop(); polygon != nullptr;
         polygon = PolygonNext(polygon)) {
        if ((polygon->flags & POLYGON_INVISIBLE) != 0 ||
            (view == WIN_PERS && ViewState.frontOnly && !ViewFacesViewer(*polygon))) {
            continue;
        }
        const auto vertices = polygon->Vertices();
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const ModelPoint from = ViewConverted(vertices[i]);
            const ModelPoint to = ViewConverted(vertices[(i + 1) % vertices.size()]);
            PanePoint a{}, b{};
            if (view != WIN_PERS) {
                a = ViewProject(from, view);
                b = ViewProject(to, view);
            } else if (!ProjectEyeLine(ViewToEye(from), ViewToEye(to), a, b)) {
                continue;
            }
            const double distance = SegmentDistance({x, y}, a, b);
            if (distance < best) {
                best = distance;
                nearest = polygon;
            }
        }
    }
    return nearest;
}

}  // namespace quelmark
