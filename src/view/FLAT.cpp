#include "view/FLAT.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace quelmark {
namespace {

constexpr std::int32_t GRID_MARGIN = 12;
constexpr std::int64_t GRID_LEAST_PIXELS = 2;

// One view: the axes it shows and where they land, and the coordinates on these axes that lie within it; on
// the others, and for the other words of a vertex, everything does.
struct FlatView {
    PixelRect rect, clip;  // the view, and what of it lies on the pane
    std::int32_t centreX, centreY;
    int right, up;  // axes
    Words low{}, high{};
};

enum class Path {
    Enlarge,  // 32-bit products
    Reduce,   // single-precision quotients, exact for these ranges
    Careful,  // 64 bits, with conversion, any setting
};

constexpr std::int32_t CENTRE_NEAR = 1 << 20;
constexpr std::int32_t ENLARGE_MOST = 100;     // (2^20 + 2^15) · 100 < 2^28
constexpr std::int32_t REDUCE_MOST = 1 << 21;  // beyond it every near coordinate becomes 0

FlatView views[3];
int viewCount = 0;
bool marking = false;
Path path = Path::Careful;
Lanes factor{};
Floats inverse{};

Lanes centre[3];                               // on each axis
std::int64_t pixels[3][VERTEX_LIMIT + LANES];  // of one polygon, on each axis, from the views' centres

Words Least(Words a, Words b) {
    return a < b ? a : b;
}
Words Most(Words a, Words b) {
    return a > b ? a : b;
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

// The first coordinate that lands at a distance in pixels from the centre or beyond; one more than the
// greatest when none does.
std::int32_t FirstAt(std::int64_t distance, int axis) {
    std::int32_t first = INT16_MIN, end = INT16_MAX + 1;
    while (first < end) {
        const std::int32_t middle = first + (end - first) / 2;
        if (ViewScaled(middle, axis) >= distance) {
            end = middle;
        } else {
            first = middle + 1;
        }
    }
    return first;
}

// The coordinates that land on [from, to] pixels from the centre; when there are none, a range that nothing
// lies in.
void PrepareRange(FlatView& view, int axis, std::int64_t from, std::int64_t to) {
    const std::int32_t low = FirstAt(from, axis), high = FirstAt(to + 1, axis) - 1;
    view.low[axis] = static_cast<std::int16_t>(std::min(low, INT16_MAX));
    view.high[axis] = static_cast<std::int16_t>(low > INT16_MAX ? INT16_MIN : std::max(high, INT16_MIN));
}

void PrepareRanges(FlatView& view) {
    view.low = Words{} + INT16_MIN;
    view.high = Words{} + INT16_MAX;
    PrepareRange(view, view.right, view.clip.left - view.centreX, view.clip.right - 1 - view.centreX);
    PrepareRange(view, view.up, view.centreY - view.clip.bottom + 1, view.centreY - view.clip.top);
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

// True when something of a polygon of any number of vertices can lie in a view.
bool CanShow(const PolygonRecord& polygon, const FlatView& view) {
    if (path == Path::Careful) {
        return true;
    }
    Words least = WordsOf(polygon.vertex[0]), most = least;
    for (const VertexRecord& vertex : polygon.Vertices().subspan(1)) {
        least = Least(least, WordsOf(vertex));
        most = Most(most, WordsOf(vertex));
    }
    return !Any((most < view.low) | (least > view.high));
}

// Any number of vertices and any setting.
[[gnu::noinline]] void DrawOutline(const PolygonRecord& polygon, std::uint8_t colour, bool marked) {
    const std::int32_t count = polygon.vers;
    bool ready = false;
    for (int i = 0; i < viewCount; ++i) {
        const FlatView& view = views[i];
        if (CanShow(polygon, view)) {
            if (!ready) {
                ScaleAll(polygon);
                ready = true;
            }
            const std::int64_t* const right = pixels[view.right];
            const std::int64_t* const up = pixels[view.up];
            PanePoint previous{view.centreX + right[count - 1], view.centreY - up[count - 1]};
            for (std::int32_t k = 0; k < count; ++k) {
                const PanePoint next{view.centreX + right[k], view.centreY - up[k]};
                DrawLine(ViewFrame, view.clip, previous, next, colour);
                previous = next;
            }
        }
        if (marked) {
            DrawMarks(polygon, view, colour);
        }
    }
}

// Up to four vertices, between two corners of a box, by a fast path in the views that can show something of
// them, one bit each.
[[gnu::noinline]] void DrawQuads(const PolygonRecord& polygon, Words least, Words most, unsigned showing,
                                 std::uint8_t colour, bool marked) {
    const AxisLanes lanes(Corners(polygon.vertex, polygon.vers));
    const Lanes scaled[3] = {Scaled(lanes.axis[0], centre[0]), Scaled(lanes.axis[1], centre[1]),
                             Scaled(lanes.axis[2], centre[2])};
    for (int i = 0; i < viewCount; ++i) {
        const FlatView& view = views[i];
        if ((showing >> i & 1U) != 0) {
            const Lanes x = view.centreX + scaled[view.right], y = view.centreY - scaled[view.up];
            if (!Any((least < view.low) | (most > view.high))) {
                DrawQuadInside(ViewFrame, x, y, colour);
            } else {
                DrawQuad(ViewFrame, view.clip, x, y, colour);
            }
        }
        if (marked) {
            DrawMarks(polygon, view, colour);
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
    if (path != Path::Careful) {
        std::for_each(views, views + viewCount, PrepareRanges);
    }
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

// Zoomed in, most polygons are seen in no view and end here, which costs little more than to walk over them:
// what draws the others is kept out of the way.
void FlatPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks) {
    const bool marked = marking && marks == Marks::AsSet;
    if (path == Path::Careful || polygon.vers > LANES) {
        DrawOutline(polygon, colour, marked);
        return;
    }
    const Corners corners(polygon.vertex, polygon.vers);
    const Words* const c = corners.corner;
    const Words least = Least(Least(c[0], c[1]), Least(c[2], c[3]));
    const Words most = Most(Most(c[0], c[1]), Most(c[2], c[3]));
    unsigned showing = 0;
    for (int i = 0; i < viewCount; ++i) {
        const bool outside = Any((most < views[i].low) | (least > views[i].high));
        showing |= (outside ? 0U : 1U) << i;
    }
    if (showing != 0 || marked) {
        DrawQuads(polygon, least, most, showing, colour, marked);
    }
}

}  // namespace quelmark
