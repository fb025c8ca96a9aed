// Which polygon a pointer means.
#include <algorithm>
#include <cmath>

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

}  // namespace

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
