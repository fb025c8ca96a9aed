// The redraw: one walk over the data buffer draws every visible view.
#include "view/DRAW.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "MODEL/ATR.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t GRID_MARGIN = 12;
constexpr std::int64_t GRID_LEAST_PIXELS = 2;
constexpr double NEAR = 1.0;
constexpr int VECTOR_PIXELS = 20;
constexpr int VECTOR_LENGTH = 256;

bool drawing = false;

// One orthographic view during a walk: the axes it shows and where they land.
struct FlatView {
    PixelRect clip;
    std::int32_t centreX, centreY;
    int right, up;  // axes
};

// The projected vertices of one polygon: pixels from the views' centre on each axis, and their bounds.
struct Projected {
    std::int32_t axis[3][VERTEX_LIMIT];
    std::int32_t low[3], high[3];
};

// Everything a walk needs at hand.
struct Pass {
    std::vector<FlatView> flat;
    bool perspective = false;
    PixelRect perspectiveClip{};
    Projected projected;
    EyePoint eye[VERTEX_LIMIT];
};
Pass pass;

constexpr std::int32_t FAR_AWAY = 1 << 28;  // beyond every frame, and safe to add a centre to

// The exact scale of a redraw: numerator and denominator as doubles, whose quotient of two 32-bit integers
// truncates as the integers' own would.
struct Scale {
    double numerator, denominator;
    bool plain;  // enlarging, and nothing can leave 32 bits
};

Scale CurrentScale() {
    const bool near = std::abs(static_cast<double>(ViewState.centre.x)) < 1e6 &&
                      std::abs(static_cast<double>(ViewState.centre.y)) < 1e6 &&
                      std::abs(static_cast<double>(ViewState.centre.z)) < 1e6;
    return {static_cast<double>(ViewState.numerator), static_cast<double>(ViewState.denominator),
            ViewState.denominator == 1 && ViewState.numerator <= 64 && near && !ViewState.converting};
}

std::int32_t ScaledFar(std::int32_t coordinate, int axis) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(ViewScaled(coordinate, axis), -FAR_AWAY, FAR_AWAY));
}

// True when some coordinate lies so far away that only the careful path keeps its lines exact.
bool ProjectFlat(const PolygonRecord& polygon, const Scale& scale) {
    Projected& out = pass.projected;
    const ModelPoint c = ViewState.centre;
    const auto vertices = polygon.Vertices();
    const std::size_t count = vertices.size();
    if (scale.plain) {
        const std::int32_t n = ViewState.numerator;
        for (std::size_t i = 0; i < count; ++i) {
            out.axis[0][i] = (vertices[i].x - c.x) * n;
            out.axis[1][i] = (vertices[i].y - c.y) * n;
            out.axis[2][i] = (vertices[i].z - c.z) * n;
        }
    } else if (!ViewState.converting && ViewState.numerator == 1) {
        const double d = scale.denominator;
        for (std::size_t i = 0; i < count; ++i) {
            out.axis[0][i] = static_cast<std::int32_t>((static_cast<double>(vertices[i].x) - c.x) / d);
            out.axis[1][i] = static_cast<std::int32_t>((static_cast<double>(vertices[i].y) - c.y) / d);
            out.axis[2][i] = static_cast<std::int32_t>((static_cast<double>(vertices[i].z) - c.z) / d);
        }
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            const ModelPoint p = ViewConverted(vertices[i]);
            out.axis[0][i] = ScaledFar(p.x, 0);
            out.axis[1][i] = ScaledFar(p.y, 1);
            out.axis[2][i] = ScaledFar(p.z, 2);
        }
    }
    bool far = false;
    for (int axis = 0; axis < 3; ++axis) {
        const auto [low, high] = std::minmax_element(out.axis[axis], out.axis[axis] + count);
        out.low[axis] = *low;
        out.high[axis] = *high;
        far = far || *low <= -FAR_AWAY || *high >= FAR_AWAY;
    }
    return far;
}

// Lines whose ends lie beyond what the fast projection holds.
void DrawFarOutline(const PolygonRecord& polygon, const FlatView& view, std::uint8_t colour) {
    const auto vertices = polygon.Vertices();
    const auto project = [&](const VertexRecord& v) {
        const ModelPoint p = ViewConverted(v);
        const std::int32_t axes[3] = {p.x, p.y, p.z};
        return PanePoint{view.centreX + ViewScaled(axes[view.right], view.right),
                         view.centreY - ViewScaled(axes[view.up], view.up)};
    };
    PanePoint previous = project(vertices.back());
    for (const VertexRecord& vertex : vertices) {
        const PanePoint next = project(vertex);
        DrawLine(ViewFrame, view.clip, previous, next, colour);
        previous = next;
    }
}

void DrawFlatOutline(std::size_t count, const FlatView& view, std::uint8_t colour) {
    const Projected& p = pass.projected;
    const std::int32_t left = view.centreX + p.low[view.right], right = view.centreX + p.high[view.right];
    const std::int32_t top = view.centreY - p.high[view.up], bottom = view.centreY - p.low[view.up];
    if (right < view.clip.left || left >= view.clip.right || bottom < view.clip.top ||
        top >= view.clip.bottom) {
        return;
    }
    const bool inside = left >= view.clip.left && right < view.clip.right && top >= view.clip.top &&
                        bottom < view.clip.bottom;
    const std::int32_t* across = p.axis[view.right];
    const std::int32_t* upward = p.axis[view.up];
    std::int32_t x0 = view.centreX + across[count - 1];
    std::int32_t y0 = view.centreY - upward[count - 1];
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t x1 = view.centreX + across[i];
        const std::int32_t y1 = view.centreY - upward[i];
        if (inside) {
            DrawLineInside(ViewFrame, x0, y0, x1, y1, colour);
        } else {
            DrawLine(ViewFrame, view.clip, {x0, y0}, {x1, y1}, colour);
        }
        x0 = x1;
        y0 = y1;
    }
}

void DrawMark(const PixelRect& clip, const PanePoint& at, std::uint8_t colour) {
    if (at.x < clip.left - 1 || at.x > clip.right || at.y < clip.top - 1 || at.y > clip.bottom) {
        return;
    }
    const auto x = static_cast<std::int32_t>(at.x), y = static_cast<std::int32_t>(at.y);
    FillRect(ViewFrame, Intersection({x - 1, y - 1, x + 2, y + 2}, clip), colour);
}

// A normal of length 256 at a pane point, 20 pixels long: its components to the right and up.
void DrawVector(const PixelRect& clip, const PanePoint& at, double right, double up) {
    const auto dx = static_cast<std::int64_t>(right * VECTOR_PIXELS / VECTOR_LENGTH);
    const auto dy = static_cast<std::int64_t>(up * VECTOR_PIXELS / VECTOR_LENGTH);
    DrawLine(ViewFrame, clip, at, {at.x + dx, at.y - dy}, COLOUR_VECTOR);
}

ModelPoint MiddleOf(const PolygonRecord& polygon) {
    std::int64_t x = 0, y = 0, z = 0;
    for (const VertexRecord& v : polygon.Vertices()) {
        const ModelPoint p = ViewConverted(v);
        x += p.x;
        y += p.y;
        z += p.z;
    }
    const auto count = static_cast<std::int64_t>(polygon.vers);
    return {static_cast<std::int32_t>(x / count), static_cast<std::int32_t>(y / count),
            static_cast<std::int32_t>(z / count)};
}

// Vertex marks and vectors of one polygon in one orthographic view.
void DrawFlatMarks(const PolygonRecord& polygon, const FlatView& view, std::uint8_t colour) {
    const auto project = [&view](const ModelPoint& p) {
        const std::int32_t axes[3] = {p.x, p.y, p.z};
        return PanePoint{view.centreX + ViewScaled(axes[view.right], view.right),
                         view.centreY - ViewScaled(axes[view.up], view.up)};
    };
    for (const VertexRecord& v : polygon.Vertices()) {
        const PanePoint at = project(ViewConverted(v));
        if (ViewState.visibleVertex > 0) {
            DrawMark(view.clip, at, colour);
        }
        if (ViewState.visibleVector != 0 && (polygon.type & POLY_SHADE) != 0) {
            const std::int16_t n[3] = {v.nx, v.ny, v.nz};
            DrawVector(view.clip, at, n[view.right], n[view.up]);
        }
    }
    if (ViewState.visiblePolyVector != 0) {
        DrawVector(view.clip, project(MiddleOf(polygon)), polygon.normal[view.right],
                   polygon.normal[view.up]);
    }
}

// ---- the perspective view ----

void DrawPerspectiveMarks(const PolygonRecord& polygon, std::uint8_t colour) {
    const auto vertices = polygon.Vertices();
    const auto turned = [](const std::int16_t* n, int column) {
        const auto& m = ViewState.perspective.row;
        return n[0] * static_cast<double>(m[0][column]) + n[1] * static_cast<double>(m[1][column]) +
               n[2] * static_cast<double>(m[2][column]);
    };
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (!(pass.eye[i].x >= NEAR)) {
            continue;
        }
        const PanePoint at = ViewProjectEye(pass.eye[i]);
        if (ViewState.visibleVertex > 0) {
            DrawMark(pass.perspectiveClip, at, colour);
        }
        if (ViewState.visibleVector != 0 && (polygon.type & POLY_SHADE) != 0) {
            DrawVector(pass.perspectiveClip, at, -turned(&vertices[i].nx, 1), turned(&vertices[i].nx, 2));
        }
    }
    const EyePoint middle = ViewToEye(MiddleOf(polygon));
    if (ViewState.visiblePolyVector != 0 && middle.x >= NEAR) {
        DrawVector(pass.perspectiveClip, ViewProjectEye(middle), -turned(polygon.normal, 1),
                   turned(polygon.normal, 2));
    }
}

void DrawPerspectiveOutline(const PolygonRecord& polygon, std::uint8_t colour) {
    if (ViewState.frontOnly && !ViewFacesViewer(polygon)) {
        return;
    }
    const auto vertices = polygon.Vertices();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        pass.eye[i] = ViewToEye(ViewConverted(vertices[i]));
    }
    EyePoint previous = pass.eye[vertices.size() - 1];
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        PanePoint a{}, b{};
        if (ProjectEyeLine(previous, pass.eye[i], a, b)) {
            DrawLine(ViewFrame, pass.perspectiveClip, a, b, colour);
        }
        previous = pass.eye[i];
    }
    if ((ViewState.visibleVertex | ViewState.visibleVector | ViewState.visiblePolyVector) != 0) {
        DrawPerspectiveMarks(polygon, colour);
    }
}

void DrawPolygon(const PolygonRecord& polygon, std::uint8_t colour, const Scale& scale) {
    if (!pass.flat.empty()) {
        const bool far = ProjectFlat(polygon, scale);
        const bool marks =
            (ViewState.visibleVertex | ViewState.visibleVector | ViewState.visiblePolyVector) != 0;
        for (const FlatView& view : pass.flat) {
            if (far) {
                DrawFarOutline(polygon, view, colour);
            } else {
                DrawFlatOutline(static_cast<std::size_t>(polygon.vers), view, colour);
            }
            if (marks) {
                DrawFlatMarks(polygon, view, colour);
            }
        }
    }
    if (pass.perspective) {
        DrawPerspectiveOutline(polygon, colour);
    }
}

std::uint8_t AttributeColour(std::int16_t attribute) {
    return attribute >= 0 && attribute < AttributeCount
               ? static_cast<std::uint8_t>(AttrTable[attribute].code & 15)
               : 7;
}

void DrawModel() {
    const Scale scale = CurrentScale();
    if (ViewState.drawInvisible) {
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            if ((polygon->flags & POLYGON_INVISIBLE) != 0) {
                DrawPolygon(*polygon, COLOUR_INVISIBLE, scale);
            }
        }
    }
    bool selected = false;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if ((polygon->flags & POLYGON_INVISIBLE) != 0) {
            continue;
        }
        if (polygon->select != 0) {
            selected = true;
        } else {
            DrawPolygon(*polygon, AttributeColour(polygon->attr), scale);
        }
    }
    for (PolygonRecord* polygon = selected ? PolygonTop() : nullptr; polygon != nullptr;
         polygon = PolygonNext(polygon)) {
        if (polygon->select != 0 && (polygon->flags & POLYGON_INVISIBLE) == 0) {
            DrawPolygon(*polygon, COLOUR_SELECTED, scale);
        }
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
                               ViewState.denominator / ViewState.numerator;
    for (std::int64_t k = (c - reach) / spacing - 1; k <= (c + reach) / spacing + 1; ++k) {
        const std::int64_t offset = (k * spacing - c) * ViewState.numerator / ViewState.denominator;
        const std::int64_t at = vertical ? view.centreX + offset : view.centreY - offset;
        const PanePoint a = vertical ? PanePoint{at, inner.top} : PanePoint{inner.left, at};
        const PanePoint b = vertical ? PanePoint{at, inner.bottom - 1} : PanePoint{inner.right - 1, at};
        DrawLine(ViewFrame, inner, a, b, COLOUR_GRID);
    }
}

void DrawGround(const FlatView& view) {
    FillRect(ViewFrame, view.clip, COLOUR_BACKGROUND);
    const std::int64_t spacing = ViewState.gridSpacing;
    if (spacing > 0 && spacing * ViewState.numerator > GRID_LEAST_PIXELS * ViewState.denominator) {
        DrawGridLines(view, view.right, true);
        DrawGridLines(view, view.up, false);
    }
}

FlatView FlatViewOf(std::int32_t bit) {
    const ViewRecord& record = Views[ViewIndex(bit)];
    return {Intersection(record.Rect(), ViewFrame.Bounds()), record.centreX, record.centreY,
            bit == WIN_YZ ? 1 : 0, bit == WIN_XY ? 1 : 2};
}

void PreparePass(std::int32_t mask) {
    pass.flat.clear();
    for (std::int32_t bit = WIN_XY; bit <= WIN_ZX; bit <<= 1) {
        if ((mask & bit) != 0 && !IsEmpty(FlatViewOf(bit).clip)) {
            pass.flat.push_back(FlatViewOf(bit));
        }
    }
    pass.perspectiveClip = Intersection(Views[3].Rect(), ViewFrame.Bounds());
    pass.perspective = (mask & WIN_PERS) != 0 && !IsEmpty(pass.perspectiveClip);
}

}  // namespace

bool ProjectEyeLine(EyePoint from, EyePoint to, PanePoint& a, PanePoint& b) {
    const bool fromBehind = !(from.x >= NEAR);
    const bool toBehind = !(to.x >= NEAR);
    if ((fromBehind && toBehind) || !std::isfinite(from.x + from.y + from.z + to.x + to.y + to.z)) {
        return false;
    }
    if (fromBehind || toBehind) {
        const double part = (NEAR - from.x) / (to.x - from.x);
        const EyePoint cut{NEAR, from.y + (to.y - from.y) * part, from.z + (to.z - from.z) * part};
        (fromBehind ? from : to) = cut;
    }
    a = ViewProjectEye(from);
    b = ViewProjectEye(to);
    return true;
}

void ViewEnableDrawing(bool on) {
    drawing = on;
}
bool ViewDrawingEnabled() {
    return drawing;
}

void ViewRedrawMask(std::int32_t mask, bool clear) {
    mask &= VisibleViews;
    if (!drawing || mask == 0) {
        return;
    }
    const OverlayPause pause;
    PreparePass(mask);
    if (clear) {
        for (const FlatView& view : pass.flat) {
            DrawGround(view);
        }
        if (pass.perspective) {
            FillRect(ViewFrame, pass.perspectiveClip, COLOUR_BACKGROUND);
        }
    }
    DrawModel();
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        if ((mask & 1 << i) != 0) {
            ViewDamage(Views[i].Rect());
        }
    }
}

void ViewRedraw(const PixelRect& area, bool clear) {
    std::int32_t mask = 0;
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        mask |= IsEmpty(Intersection(area, Views[i].Rect())) ? 0 : 1 << i;
    }
    ViewRedrawMask(mask, clear);
}

void ViewClear(bool fill) {
    if (!fill) {
        // Cursor included: it is drawn again by the pause's end.
        const bool shown = CursorShow(false);
        OverlayToggle();
        OverlayReset();
        CursorShow(shown);
        ViewDamage(ViewFrame.Bounds());
        return;
    }
    const bool shown = CursorShow(false);
    OverlayReset();
    FillRect(ViewFrame, ViewFrame.Bounds(), COLOUR_BACKGROUND);
    CursorShow(shown);
    ViewDamage(ViewFrame.Bounds());
}

bool ViewDrawCurrent(bool exclusiveOr) {
    if (CurrentPolygon == nullptr || CurrentPolygon->vers < 1 || CurrentPolygon->vers > MaxVertex) {
        return false;
    }
    std::vector<ModelLine> lines;
    const auto vertices = CurrentPolygon->Vertices();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        lines.push_back({ViewConverted(vertices[i]), ViewConverted(vertices[(i + 1) % vertices.size()])});
    }
    if (exclusiveOr) {
        OverlayModelLines(lines, LINE_XOR);
        return true;
    }
    if (!drawing) {
        return true;
    }
    const OverlayPause pause;
    PreparePass(VisibleViews);
    DrawPolygon(*CurrentPolygon, COLOUR_SELECTED, CurrentScale());
    ViewDamage(ViewFrame.Bounds());
    return true;
}

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
