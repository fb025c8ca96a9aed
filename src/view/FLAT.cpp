#include "view/FLAT.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quelmark {
namespace {

constexpr std::int32_t GRID_MARGIN = 12;
constexpr std::int64_t GRID_LEAST_PIXELS = 2;

// One view: the axes it shows and where they land.
struct FlatView {
    PixelRect rect, clip;  // the view, and what of it lies on the pane
    std::int32_t centreX, centreY;
    int right, up;  // axes
};

enum class Path {
    Enlarge,  // 32-bit products
    Reduce,   // single-precision quotients, exact for these ranges
    Careful,  // 64 bits, with conversion, any setting
};

constexpr std::int32_t CENTRE_NEAR = 1 << 20;
constexpr std::int32_t ENLARGE_MOST = 100;     // (2^20 + 2^15) · 100 < 2^28
constexpr std::int32_t REDUCE_MOST = 1 << 21;  // beyond it every near coordinate becomes 0

FlatView views[3];  // of which FlatShown tells the number
bool marking = false;
Path path = Path::Careful;
Lanes factor{};
Floats inverse{};

Lanes centre[3];                               // on each axis
std::int64_t pixels[3][VERTEX_LIMIT + LANES];  // of one polygon, on each axis, from the views' centres

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

// a / b toward minus infinity; b above 0.
std::int64_t FloorDivide(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

// The first coordinate that lands at a distance in pixels from the centre or beyond. Quotients are truncated:
// on the near side of the centre all that are more than one pixel less count.
std::int64_t FirstAt(std::int64_t distance, int axis) {
    const std::int64_t numerator = ViewState.numerator, denominator = ViewState.denominator;
    const std::int64_t from = distance > 0 ? -FloorDivide(-distance * denominator, numerator)
                                           : FloorDivide((distance - 1) * denominator, numerator) + 1;
    return centre[axis][0] + from;
}

// The coordinates that land on [from, to] pixels from the centre, as far as a vertex can have them.
void PrepareRange(FlatRange& range, int axis, std::int64_t from, std::int64_t to) {
    const auto limit = [](std::int64_t value) {
        return static_cast<std::int16_t>(std::clamp<std::int64_t>(value, INT16_MIN, INT16_MAX));
    };
    range.low[axis] = limit(FirstAt(from, axis));
    range.high[axis] = limit(FirstAt(to + 1, axis) - 1);
}

// Where everything may be seen, what is not is found when it is drawn.
FlatRange RangeOf(const FlatView& view, bool everything) {
    FlatRange range{Position{} + INT16_MIN, Position{} + INT16_MAX};
    if (!everything) {
        PrepareRange(range, view.right, view.clip.left - view.centreX, view.clip.right - 1 - view.centreX);
        PrepareRange(range, view.up, view.centreY - view.clip.bottom + 1, view.centreY - view.clip.top);
    }
    return range;
}

PanePoint ToPane(const ModelPoint& p, const FlatView& view) {
    const std::int32_t axes[3] = {p.x, p.y, p.z};
    return {view.centreX + ViewScaled(axes[view.right], view.right),
            view.centreY - ViewScaled(axes[view.up], view.up)};
}

Lanes Scaled(Lanes coordinates, Lanes middle) {
    const Lanes difference = coordinates - middle;
    if (path == Path::Enlarge) {
        return difference * factor;
    }
    return __builtin_convertvector(__builtin_convertvector(difference, Floats) * inverse, Lanes);
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

// The pixels from the views' centres of every vertex of a polygon.
void ScaleAll(const PolygonRecord& polygon) {
    const std::int32_t count = polygon.vers;
    for (std::int32_t i = 0; path == Path::Careful && i < count; ++i) {
        const ModelPoint p = ViewConverted(polygon.vertex[i]);
        pixels[0][i] = ViewScaled(p.x, 0);
        pixels[1][i] = ViewScaled(p.y, 1);
        pixels[2][i] = ViewScaled(p.z, 2);
    }
    for (std::int32_t i = 0; path != Path::Careful && i < count; i += LANES) {
        const AxisLanes lanes(Corners(polygon.vertex + i, count - i));
        for (int axis = 0; axis < 3; ++axis) {
            const Lanes scaled = Scaled(lanes.axis[axis], centre[axis]);
            for (int k = 0; k < LANES; ++k) {
                pixels[axis][i + k] = scaled[k];
            }
        }
    }
}

// Any number of vertices and any setting.
void DrawOutline(const PolygonRecord& polygon, unsigned seen, std::uint8_t colour) {
    const std::int32_t count = polygon.vers;
    ScaleAll(polygon);
    for (int i = 0; i < FlatShown.views; ++i) {
        if ((seen >> i & 1U) == 0) {
            continue;
        }
        const FlatView& view = views[i];
        const std::int64_t* const right = pixels[view.right];
        const std::int64_t* const up = pixels[view.up];
        PanePoint previous{view.centreX + right[count - 1], view.centreY - up[count - 1]};
        for (std::int32_t k = 0; k < count; ++k) {
            const PanePoint next{view.centreX + right[k], view.centreY - up[k]};
            DrawLine(ViewFrame, view.clip, previous, next, colour);
            previous = next;
        }
    }
}

// Up to four vertices by a fast path.
void DrawQuads(const PolygonRecord& polygon, unsigned seen, std::uint8_t colour) {
    const AxisLanes lanes(Corners(polygon.vertex, polygon.vers));
    const Lanes scaled[3] = {Scaled(lanes.axis[0], centre[0]), Scaled(lanes.axis[1], centre[1]),
                             Scaled(lanes.axis[2], centre[2])};
    for (int i = 0; i < FlatShown.views; ++i) {
        const FlatView& view = views[i];
        if ((seen >> i & 1U) != 0) {
            DrawQuad(ViewFrame, view.clip, view.centreX + scaled[view.right], view.centreY - scaled[view.up],
                     colour);
        }
    }
}

// Lines at every multiple of the spacing on one axis of a view.
void DrawGridLines(const FlatView& view, int axis, bool vertical) {
    const PixelRect inner{view.rect.left + GRID_MARGIN, view.rect.top + GRID_MARGIN,
                          view.rect.right - GRID_MARGIN, view.rect.bottom - GRID_MARGIN};
    const PixelRect shown = Intersection(inner, view.clip);
    if (IsEmpty(shown)) {
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
        DrawLine(ViewFrame, shown, a, b, COLOUR_GRID);
    }
}

FlatView FlatViewOf(std::int32_t bit) {
    const ViewRecord& record = Views[ViewIndex(bit)];
    const PixelRect rect = record.Rect();
    return {rect,
            Intersection(rect, ViewFrame.Bounds()),
            record.centreX,
            record.centreY,
            bit == WIN_YZ ? 1 : 0,
            bit == WIN_XY ? 1 : 2};
}

}  // namespace

FlatRanges FlatShown;

void FlatPrepare(std::int32_t mask) {
    marking = (ViewState.visibleVertex | ViewState.visibleVector | ViewState.visiblePolyVector) != 0;
    const bool simple = !ViewState.converting && IsNear(ViewState.centre);
    path = Path::Careful;
    if (simple && ViewState.numerator == 1 && ViewState.denominator <= REDUCE_MOST) {
        path = Path::Reduce;
        inverse = RoundedUpInverse(ViewState.denominator);
    } else if (simple && ViewState.denominator == 1 && ViewState.numerator <= ENLARGE_MOST) {
        path = Path::Enlarge;
        factor = Every(ViewState.numerator);
    }
    centre[0] = Every(ViewState.centre.x);
    centre[1] = Every(ViewState.centre.y);
    centre[2] = Every(ViewState.centre.z);
    FlatShown.views = 0;
    for (std::int32_t bit = WIN_XY; bit <= WIN_ZX; bit <<= 1) {
        const FlatView view = FlatViewOf(bit);
        if ((mask & bit) != 0 && !IsEmpty(view.clip)) {
            FlatShown.range[FlatShown.views] = RangeOf(view, path == Path::Careful || marking);
            views[FlatShown.views++] = view;
        }
    }
}

void FlatGround() {
    const std::int64_t spacing = ViewState.gridSpacing;
    const bool grid =
        spacing > 0 && spacing * ViewState.numerator > GRID_LEAST_PIXELS * ViewState.denominator;
    for (int i = 0; i < FlatShown.views; ++i) {
        FillRect(ViewFrame, views[i].clip, COLOUR_BACKGROUND);
        if (grid) {
            DrawGridLines(views[i], views[i].right, true);
            DrawGridLines(views[i], views[i].up, false);
        }
    }
}

unsigned FlatSeesOutline(const PolygonRecord& polygon) {
    Position least = PositionOf(polygon.vertex[0]), most = least;
    for (const VertexRecord& vertex : polygon.Vertices().subspan(1)) {
        least = Least(least, PositionOf(vertex));
        most = Most(most, PositionOf(vertex));
    }
    return FlatSees(least, most);
}

void FlatPolygon(const PolygonRecord& polygon, unsigned seen, std::uint8_t colour, Marks marks) {
    if (path == Path::Careful || polygon.vers > LANES) {
        DrawOutline(polygon, seen, colour);
    } else {
        DrawQuads(polygon, seen, colour);
    }
    for (int i = 0; marking && marks == Marks::AsSet && i < FlatShown.views; ++i) {
        DrawMarks(polygon, views[i], colour);
    }
}

}  // namespace quelmark
