#include "view/FLAT.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace quelmark {
namespace {

constexpr std::int32_t GRID_MARGIN = 12;
constexpr std::int64_t GRID_LEAST_PIXELS = 2;

// One point a lane vector: x, y, z, and a fourth that means nothing.
using Lanes = std::int32_t __attribute__((vector_size(16)));
using Floats = float __attribute__((vector_size(16)));
using Words = std::int16_t __attribute__((vector_size(8)));

// One view: the axes it shows and where they land.
struct FlatView {
    PixelRect clip;
    std::int32_t centreX, centreY;
    int right, up;  // axes
};

enum class Path {
    Enlarge,  // 32-bit products
    Reduce,   // single-precision quotients, exact for these ranges
    Careful,  // 64 bits, with conversion, any setting
};

constexpr std::int32_t FAR_AWAY = 1 << 28;  // beyond every frame, and safe to add a centre to
constexpr std::int32_t CENTRE_NEAR = 1 << 20;
constexpr std::int32_t ENLARGE_MOST = 100;     // (2^20 + 2^15) · 100 < FAR_AWAY
constexpr std::int32_t REDUCE_MOST = 1 << 21;  // beyond it every near coordinate becomes 0

FlatView views[3];
int viewCount = 0;
bool marking = false;
Path path = Path::Careful;
Lanes centre{};
Lanes factor{};
Floats inverse{};
// Coordinates that can show in some view; a polygon that lies beyond them on an axis shows in no view with
// that axis.
Lanes showLow{}, showHigh{};

Lanes points[VERTEX_LIMIT];  // pixels from the views' centres on each axis
Lanes low, high;

Lanes LanesOf(std::int32_t x, std::int32_t y, std::int32_t z) {
    return Lanes{x, y, z, 0};
}
Lanes Load(const VertexRecord& vertex) {
    Words words;
    std::memcpy(&words, &vertex, sizeof words);
    return __builtin_convertvector(words, Lanes);
}
Lanes Least(Lanes a, Lanes b) {
    const Lanes less = a < b;
    return (a & less) | (b & ~less);
}
Lanes Most(Lanes a, Lanes b) {
    const Lanes less = a < b;
    return (b & less) | (a & ~less);
}

bool IsNear(const ModelPoint& point) {
    const auto near = [](std::int32_t value) { return -CENTRE_NEAR < value && value < CENTRE_NEAR; };
    return near(point.x) && near(point.y) && near(point.z);
}

// A quotient truncates like the integers' own when the inverse is rounded up: the product is then at least
// the exact quotient and, with dividends below 2^22, less than 1 / divisor above it.
Floats RoundedUpInverse(std::int32_t divisor) {
    const float up = std::nextafter(1.0F / static_cast<float>(divisor), 2.0F);
    return Floats{up, up, up, up};
}

// The range of coordinates on each axis that can lie within the views.
void PrepareRange() {
    std::int64_t reach = 0;
    for (int i = 0; i < viewCount; ++i) {
        const PixelRect& clip = views[i].clip;
        reach = std::max<std::int64_t>({reach, clip.right - clip.left, clip.bottom - clip.top});
    }
    // A view's centre is its middle: half would do, and one pixel for the rounding.
    const std::int64_t units = (reach + 2) * ViewState.denominator / ViewState.numerator + 1;
    const auto limit = [](std::int64_t value) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, -VERTEX_MAX - 2, VERTEX_MAX + 2));
    };
    const ModelPoint& c = ViewState.centre;
    showLow = LanesOf(limit(c.x - units), limit(c.y - units), limit(c.z - units));
    showHigh = LanesOf(limit(c.x + units), limit(c.y + units), limit(c.z + units));
}

// True when the polygon lies outside every view.
bool IsOutside(const PolygonRecord& polygon) {
    const auto vertices = polygon.Vertices();
    Lanes least = Load(vertices[0]), most = least;
    for (const VertexRecord& vertex : vertices.subspan(1)) {
        const Lanes v = Load(vertex);
        least = Least(least, v);
        most = Most(most, v);
    }
    const Lanes beyond = (most < showLow) | (least > showHigh);
    for (int i = 0; i < viewCount; ++i) {
        if ((beyond[views[i].right] | beyond[views[i].up]) == 0) {
            return false;
        }
    }
    return true;
}

std::int32_t ScaledFar(std::int32_t coordinate, int axis) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(ViewScaled(coordinate, axis), -FAR_AWAY, FAR_AWAY));
}

template <typename Project>
void ProjectEach(const PolygonRecord& polygon, Project project) {
    const auto vertices = polygon.Vertices();
    low = high = points[0] = project(vertices[0]);
    for (std::size_t i = 1; i < vertices.size(); ++i) {
        const Lanes p = project(vertices[i]);
        points[i] = p;
        low = Least(low, p);
        high = Most(high, p);
    }
}

// True when some coordinate lies so far away that only the careful path keeps its lines exact.
bool Project(const PolygonRecord& polygon) {
    switch (path) {
        case Path::Enlarge:
            ProjectEach(polygon, [](const VertexRecord& v) { return (Load(v) - centre) * factor; });
            return false;
        case Path::Reduce:
            ProjectEach(polygon, [](const VertexRecord& v) {
                const Lanes difference = Load(v) - centre;
                return __builtin_convertvector(__builtin_convertvector(difference, Floats) * inverse, Lanes);
            });
            return false;
        case Path::Careful:
            break;
    }
    ProjectEach(polygon, [](const VertexRecord& v) {
        const ModelPoint p = ViewConverted(v);
        return LanesOf(ScaledFar(p.x, 0), ScaledFar(p.y, 1), ScaledFar(p.z, 2));
    });
    bool far = false;
    for (int axis = 0; axis < 3; ++axis) {
        far = far || low[axis] <= -FAR_AWAY || high[axis] >= FAR_AWAY;
    }
    return far;
}

PanePoint ToPane(const ModelPoint& p, const FlatView& view) {
    const std::int32_t axes[3] = {p.x, p.y, p.z};
    return {view.centreX + ViewScaled(axes[view.right], view.right),
            view.centreY - ViewScaled(axes[view.up], view.up)};
}

// Lines whose ends lie beyond what the fast projection holds.
void DrawFarOutline(const PolygonRecord& polygon, const FlatView& view, std::uint8_t colour) {
    const auto vertices = polygon.Vertices();
    PanePoint previous = ToPane(ViewConverted(vertices.back()), view);
    for (const VertexRecord& vertex : vertices) {
        const PanePoint next = ToPane(ViewConverted(vertex), view);
        DrawLine(ViewFrame, view.clip, previous, next, colour);
        previous = next;
    }
}

void DrawOutline(std::size_t count, const FlatView& view, std::uint8_t colour) {
    const std::int32_t left = view.centreX + low[view.right], right = view.centreX + high[view.right];
    const std::int32_t top = view.centreY - high[view.up], bottom = view.centreY - low[view.up];
    if (right < view.clip.left || left >= view.clip.right || bottom < view.clip.top ||
        top >= view.clip.bottom) {
        return;
    }
    const bool inside = left >= view.clip.left && right < view.clip.right && top >= view.clip.top &&
                        bottom < view.clip.bottom;
    std::int32_t x0 = view.centreX + points[count - 1][view.right];
    std::int32_t y0 = view.centreY - points[count - 1][view.up];
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t x1 = view.centreX + points[i][view.right];
        const std::int32_t y1 = view.centreY - points[i][view.up];
        if (inside) {
            DrawLineInside(ViewFrame, x0, y0, x1, y1, colour);
        } else {
            DrawLine(ViewFrame, view.clip, {x0, y0}, {x1, y1}, colour);
        }
        x0 = x1;
        y0 = y1;
    }
}

// Vertex marks and vectors of one polygon in one view.
void DrawMarks(const PolygonRecord& polygon, const FlatView& view, std::uint8_t colour) {
    for (const VertexRecord& v : polygon.Vertices()) {
        const PanePoint at = ToPane(ViewConverted(v), view);
        if (ViewState.visibleVertex > 0) {
            DrawMark(view.clip, at, colour);
        }
        if (ViewState.visibleVector != 0 && (polygon.type & POLY_SHADE) != 0) {
            const std::int16_t n[3] = {v.nx, v.ny, v.nz};
            DrawVector(view.clip, at, n[view.right], n[view.up]);
        }
    }
    if (ViewState.visiblePolyVector != 0) {
        DrawVector(view.clip, ToPane(MiddleOf(polygon), view), polygon.normal[view.right],
                   polygon.normal[view.up]);
    }
}

// Lines at every multiple of the spacing on one axis of a view.
void DrawGridLines(const FlatView& view, int axis, bool vertical) {
    const PixelRect inner{view.clip.left + GRID_MARGIN, view.clip.top + GRID_MARGIN,
                          view.clip.right - GRID_MARGIN, view.clip.bottom - GRID_MARGIN};
    if (IsEmpty(inner)) {
        return;
    }
    const std::int64_t spacing = ViewState.gridSpacing;
    const std::int64_t c = axis == 0   ? ViewState.centre.x
                           : axis == 1 ? ViewState.centre.y
                                       : ViewState.centre.z;
    const std::int64_t reach = std::int64_t{vertical ? inner.right - inner.left : inner.bottom - inner.top} *
                                   ViewState.denominator / ViewState.numerator +
                               1;
    for (std::int64_t k = (c - reach) / spacing - 1; k <= (c + reach) / spacing + 1; ++k) {
        const std::int64_t distance = k * spacing - c;
        if (distance < -reach || distance > reach) {
            continue;
        }
        const std::int64_t offset = distance * ViewState.numerator / ViewState.denominator;
        const std::int64_t at = vertical ? view.centreX + offset : view.centreY - offset;
        const PanePoint a = vertical ? PanePoint{at, inner.top} : PanePoint{inner.left, at};
        const PanePoint b = vertical ? PanePoint{at, inner.bottom - 1} : PanePoint{inner.right - 1, at};
        DrawLine(ViewFrame, inner, a, b, COLOUR_GRID);
    }
}

FlatView FlatViewOf(std::int32_t bit) {
    const ViewRecord& record = Views[ViewIndex(bit)];
    return {Intersection(record.Rect(), ViewFrame.Bounds()), record.centreX, record.centreY,
            bit == WIN_YZ ? 1 : 0, bit == WIN_XY ? 1 : 2};
}

}  // namespace

void FlatPrepare(std::int32_t mask) {
    viewCount = 0;
    for (std::int32_t bit = WIN_XY; bit <= WIN_ZX; bit <<= 1) {
        if ((mask & bit) != 0 && !IsEmpty(FlatViewOf(bit).clip)) {
            views[viewCount++] = FlatViewOf(bit);
        }
    }
    marking = (ViewState.visibleVertex | ViewState.visibleVector | ViewState.visiblePolyVector) != 0;
    const bool simple = !ViewState.converting && IsNear(ViewState.centre);
    path = Path::Careful;
    if (simple && ViewState.denominator == 1 && ViewState.numerator <= ENLARGE_MOST) {
        path = Path::Enlarge;
        factor = LanesOf(ViewState.numerator, ViewState.numerator, ViewState.numerator);
    } else if (simple && ViewState.numerator == 1 && ViewState.denominator <= REDUCE_MOST) {
        path = Path::Reduce;
        inverse = RoundedUpInverse(ViewState.denominator);
    }
    centre = LanesOf(ViewState.centre.x, ViewState.centre.y, ViewState.centre.z);
    PrepareRange();
}

void FlatGround() {
    const std::int64_t spacing = ViewState.gridSpacing;
    const bool grid =
        spacing > 0 && spacing * ViewState.numerator > GRID_LEAST_PIXELS * ViewState.denominator;
    for (int i = 0; i < viewCount; ++i) {
        FillRect(ViewFrame, views[i].clip, COLOUR_BACKGROUND);
        if (grid) {
            DrawGridLines(views[i], views[i].right, true);
            DrawGridLines(views[i], views[i].up, false);
        }
    }
}

void FlatPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks) {
    const bool marked = marking && marks == Marks::AsSet;
    // A conversion moves polygons anywhere, and a vector reaches 20 pixels out of its polygon.
    if (viewCount == 0 || (!ViewState.converting && !marked && IsOutside(polygon))) {
        return;
    }
    const bool far = Project(polygon);
    for (int i = 0; i < viewCount; ++i) {
        if (far) {
            DrawFarOutline(polygon, views[i], colour);
        } else {
            DrawOutline(static_cast<std::size_t>(polygon.vers), views[i], colour);
        }
        if (marked) {
            DrawMarks(polygon, views[i], colour);
        }
    }
}

}  // namespace quelmark
