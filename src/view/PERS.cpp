#include "view/PERS.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quelmark {
namespace {

constexpr double NEAR = 1.0;
constexpr int VECTOR_PIXELS = 20;
constexpr int VECTOR_LENGTH = 256;

bool shown = false, marking = false;
PixelRect clip{};
EyePoint eye[VERTEX_LIMIT];
PanePoint screen[VERTEX_LIMIT];

// Four doubles, as two pairs.
using Pair = double __attribute__((vector_size(16)));
using IntPair = std::int32_t __attribute__((vector_size(8)));
struct Four {
    Pair low, high;
};

constexpr double FRAME_FAR = 1 << 28;  // beyond every frame, and safe to add a centre to

Pair matrix[4][3];  // of the view, each element twice
Pair focal{};

bool IsFinite(const EyePoint& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

// A normal turned into eye space, one component.
double Turned(const std::int16_t* normal, int column) {
    const auto& m = ViewState.perspective.row;
    return normal[0] * static_cast<double>(m[0][column]) + normal[1] * static_cast<double>(m[1][column]) +
           normal[2] * static_cast<double>(m[2][column]);
}

void DrawMarks(const PolygonRecord& polygon, std::uint8_t colour) {
    const auto vertices = polygon.Vertices();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (!(eye[i].x >= NEAR)) {
            continue;
        }
        const PanePoint at = ViewProjectEye(eye[i]);
        if (ViewState.visibleVertex > 0) {
            DrawMark(clip, at, colour);
        }
        if (ViewState.visibleVector != 0 && (polygon.type & POLY_SHADE) != 0) {
            DrawVector(clip, at, -Turned(&vertices[i].nx, 1), Turned(&vertices[i].nx, 2));
        }
    }
    const EyePoint middle = ViewToEye(MiddleOf(polygon));
    if (ViewState.visiblePolyVector != 0 && middle.x >= NEAR) {
        DrawVector(clip, ViewProjectEye(middle), -Turned(polygon.normal, 1), Turned(polygon.normal, 2));
    }
}

// ---- up to four vertices at once, with the same operations in the same order as ViewToEye and
// ViewProjectEye ----

Four ToDoubles(Lanes v) {
    return {__builtin_convertvector(__builtin_shufflevector(v, v, 0, 1), Pair),
            __builtin_convertvector(__builtin_shufflevector(v, v, 2, 3), Pair)};
}

Four Turned(const Four (&p)[3], int column) {
    const Pair a = matrix[0][column], b = matrix[1][column], c = matrix[2][column], d = matrix[3][column];
    return {p[0].low * a + p[1].low * b + p[2].low * c + d,
            p[0].high * a + p[1].high * b + p[2].high * c + d};
}

// Pixels from the view's centre, and whether they lie within FRAME_FAR.
Lanes ToPixels(const Four& across, const Four& depth, LongLanes& within) {
    const Pair low = across.low * focal / depth.low, high = across.high * focal / depth.high;
    within &= (low < FRAME_FAR) & (low > -FRAME_FAR) & (high < FRAME_FAR) & (high > -FRAME_FAR);
    return __builtin_shufflevector(__builtin_convertvector(low, IntPair),
                                   __builtin_convertvector(high, IntPair), 0, 1, 2, 3);
}

// False, with nothing drawn, for what does not lie wholly in front of the eye or leads far away.
bool DrawQuadOf(const PolygonRecord& polygon, std::uint8_t colour) {
    constexpr double MOST = std::numeric_limits<double>::max();
    const AxisLanes lanes(Corners(polygon.vertex, polygon.vers));
    const Four p[3] = {ToDoubles(lanes.axis[0]), ToDoubles(lanes.axis[1]), ToDoubles(lanes.axis[2])};
    const Four depth = Turned(p, 0);
    LongLanes within =
        (depth.low >= NEAR) & (depth.high >= NEAR) & (depth.low <= MOST) & (depth.high <= MOST);
    if (Any(~within)) {
        return false;
    }
    const Lanes left = ToPixels(Turned(p, 1), depth, within);
    const Lanes up = ToPixels(Turned(p, 2), depth, within);
    if (Any(~within)) {
        return false;
    }
    DrawQuad(ViewFrame, clip, Views[3].centreX - left, Views[3].centreY - up, colour);
    return true;
}

// The outline of a polygon that is not wholly in front of the eye.
void DrawCutOutline(std::size_t count, std::uint8_t colour) {
    EyePoint previous = eye[count - 1];
    for (std::size_t i = 0; i < count; ++i) {
        PanePoint a{}, b{};
        if (ProjectEyeLine(previous, eye[i], a, b)) {
            DrawLine(ViewFrame, clip, a, b, colour);
        }
        previous = eye[i];
    }
}

// Any number of vertices and any setting; leaves the vertices in eye space.
void DrawOutline(const PolygonRecord& polygon, std::uint8_t colour) {
    const auto vertices = polygon.Vertices();
    bool whole = true;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        eye[i] = ViewToEye(ViewConverted(vertices[i]));
        whole = whole && eye[i].x >= NEAR && IsFinite(eye[i]);
    }
    if (!whole) {
        DrawCutOutline(vertices.size(), colour);
        return;
    }
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        screen[i] = ViewProjectEye(eye[i]);
    }
    PanePoint previous = screen[vertices.size() - 1];
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        DrawLine(ViewFrame, clip, previous, screen[i], colour);
        previous = screen[i];
    }
}

}  // namespace

bool ProjectEyeLine(const EyePoint& from, const EyePoint& to, PanePoint& a, PanePoint& b) {
    const bool fromBehind = !(from.x >= NEAR);
    const bool toBehind = !(to.x >= NEAR);
    if ((fromBehind && toBehind) || !IsFinite(from) || !IsFinite(to)) {
        return false;
    }
    if (!fromBehind && !toBehind) {
        a = ViewProjectEye(from);
        b = ViewProjectEye(to);
        return true;
    }
    // Always from the near end, so that both directions round alike.
    const EyePoint& behind = fromBehind ? from : to;
    const EyePoint& front = fromBehind ? to : from;
    const double part = (NEAR - behind.x) / (front.x - behind.x);
    const EyePoint cut{NEAR, behind.y + (front.y - behind.y) * part, behind.z + (front.z - behind.z) * part};
    (fromBehind ? a : b) = ViewProjectEye(cut);
    (fromBehind ? b : a) = ViewProjectEye(front);
    return true;
}

void PersPrepare(std::int32_t mask) {
    clip = Intersection(Views[ViewIndex(WIN_PERS)].Rect(), ViewFrame.Bounds());
    shown = (mask & WIN_PERS) != 0 && !IsEmpty(clip);
    marking = (ViewState.visibleVertex | ViewState.visibleVector | ViewState.visiblePolyVector) != 0;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            const double element = ViewState.perspective.row[row][column];
            matrix[row][column] = Pair{element, element};
        }
    }
    const double distance = ViewState.focalDistance;
    focal = Pair{distance, distance};
}

void PersGround() {
    if (shown) {
        FillRect(ViewFrame, clip, COLOUR_BACKGROUND);
    }
}

void PersPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks) {
    if (!shown || (ViewState.frontOnly && !ViewFacesViewer(polygon))) {
        return;
    }
    const bool marked = marking && marks == Marks::AsSet;
    if (polygon.vers <= LANES && !ViewState.converting && !marked && DrawQuadOf(polygon, colour)) {
        return;
    }
    DrawOutline(polygon, colour);
    if (marked) {
        DrawMarks(polygon, colour);
    }
}

void DrawMark(const PixelRect& area, const PanePoint& at, std::uint8_t colour, Ink ink) {
    if (at.x < area.left - 1 || at.x > area.right || at.y < area.top - 1 || at.y > area.bottom) {
        return;
    }
    const auto x = static_cast<std::int32_t>(at.x), y = static_cast<std::int32_t>(at.y);
    FillRect(ViewFrame, Intersection({x - 1, y - 1, x + 2, y + 2}, area), colour, ink);
}

void DrawVector(const PixelRect& area, const PanePoint& at, double right, double up) {
    const auto pixels = [](double part) {
        constexpr double MOST = 1 << 28;
        const double length = part * VECTOR_PIXELS / VECTOR_LENGTH;
        return std::isnan(length) ? 0 : static_cast<std::int64_t>(std::clamp(length, -MOST, MOST));
    };
    DrawLine(ViewFrame, area, at, {at.x + pixels(right), at.y - pixels(up)}, COLOUR_VECTOR);
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

}  // namespace quelmark
