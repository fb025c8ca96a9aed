// The four views: layout, settings and redraw into one 8-bit frame buffer of palette indices. Three
// orthographic views share a centre and an integer zoom; the perspective view has a matrix and an angle.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "MATLIB/SETMAT.h"
#include "MODEL/POLY.h"
#include "view/RASTER.h"

namespace quelmark {

enum View : std::int32_t { WIN_XY = 1, WIN_YZ = 2, WIN_ZX = 4, WIN_PERS = 8, WIN_ALL = 15 };
inline constexpr std::int32_t WIN_ORTHOGRAPHIC = 7;

// Palette indices of the drawing.
enum Colour : std::uint8_t {
    COLOUR_GRID = 9,
    COLOUR_INVISIBLE = 11,
    COLOUR_VECTOR = 12,
    COLOUR_BACKGROUND = 13,
    COLOUR_SELECTED = 14,
    COLOUR_LINE = 15,
};

extern FrameBuffer ViewFrame;

struct ViewRecord {
    std::int32_t left, top, width, height, centreX, centreY;

    PixelRect Rect() const { return {left, top, left + width, top + height}; }
};
inline constexpr std::int32_t VIEW_COUNT = 4;
extern ViewRecord Views[VIEW_COUNT];  // XY, YZ, ZX, PERS
extern std::int32_t VisibleViews;     // mask of View bits

struct ModelPoint {
    std::int32_t x, y, z;

    friend auto operator<=>(const ModelPoint&, const ModelPoint&) = default;
};

// What the script functions set. The two zoom numbers are at least 1 and one of them is 1.
struct ViewSettings {
    ModelPoint centre{0, 0, 0};
    std::int32_t numerator = 1, denominator = 1;
    std::int32_t moveStep = 10;
    std::int32_t gridSpacing = 0, gridSnap = 0;
    bool converting = false;
    FixedMatrix conversion{};
    Matrix conversionInverse = UNIT_MATRIX;
    Matrix perspective = UNIT_MATRIX;
    Matrix perspectiveInverse = UNIT_MATRIX;
    double eye[3] = {0, 0, 0};  // where the perspective view is seen from, before the conversion
    std::int32_t angle = 45;
    std::int32_t focalDistance = 1;
    std::int32_t visibleVector = 0, visiblePolyVector = 0, visibleVertex = 0;
    bool drawInvisible = false, frontOnly = false;
};
extern ViewSettings ViewState;

// Called when pixels of a rectangle of the pane have changed; the host installs it.
using DamageHook = void (*)(const PixelRect& rect);
void ViewSetDamageHook(DamageHook hook);
void ViewDamage(const PixelRect& rect);

// Start values, an empty frame, drawing off.
void ViewInit();
void ViewExit();
// The drawing pane's client size and the window's text line height: lays the views out with the mask
// unchanged and gives the frame that size. Sizes are limited to 1 … 16384.
void ViewLayout(std::int32_t width, std::int32_t height, std::int32_t lineHeight);
// Stores the mask, lays out again and redraws everything.
void ViewSetMask(std::int32_t mask);
// The bit of the visible view under a point of the pane, or 0.
std::int32_t ViewAt(std::int32_t x, std::int32_t y);
// The index in Views of one view bit, or -1.
std::int32_t ViewIndex(std::int32_t bit);

void ViewSetZoom(std::int32_t zoom, std::int32_t step);
// Accepts 0 < angle < 180; the angle before the call.
std::int32_t ViewSetAngle(std::int32_t angle);
void ViewSetPerspective(const Matrix& matrix);
void ViewSetConversion(const Matrix& matrix);

// The point in display coordinates: after the conversion, if one is set.
ModelPoint ViewConverted(const VertexRecord& vertex);
ModelPoint ViewConverted(const ModelPoint& point);
// The polygon's plane normal points to the eye's side of its plane. A polygon without a normal never faces.
bool ViewFacesViewer(const PolygonRecord& polygon);
// A display coordinate on axis 0 to 2, as pixels from a view's centre, within PANE_MOST.
std::int64_t ViewScaled(std::int32_t coordinate, int axis);
// Pane position of a point in an orthographic view.
PanePoint ViewProject(const ModelPoint& point, std::int32_t view);
// Eye space: x away from the eye, y to the left, z up.
struct EyePoint {
    double x, y, z;
};
EyePoint ViewToEye(const ModelPoint& point);
// Pane position of an eye-space point with x >= 1, within PANE_MOST.
PanePoint ViewProjectEye(const EyePoint& point);
// The model point under a pane point in its view, within the coordinate range: in an orthographic view the
// third coordinate is `depth`'s, in the perspective view it lies parallel to the screen at the depth of
// `depth`, or stays at `depth` when that is behind the eye. Coordinates that the view moves become multiples
// of `snap` when that is 2 or more. Nothing outside the visible views.
std::optional<ModelPoint> ViewPointAt(std::int32_t x, std::int32_t y, const ModelPoint& depth,
                                      std::int32_t snap = 0);
// The same in one view, which goes on beyond its rectangle: what a drag that leaves its view means.
ModelPoint ViewPointIn(std::int32_t view, std::int32_t x, std::int32_t y, const ModelPoint& depth,
                       std::int32_t snap = 0);

// Off at start and at shut-down: then redraws do nothing.
void ViewEnableDrawing(bool on);
bool ViewDrawingEnabled();
// Redraws the visible views that meet the rectangle; `clear` fills background and grid first.
void ViewRedraw(const PixelRect& area, bool clear);
inline constexpr PixelRect WHOLE_AREA{0, 0, 4096, 4096};
// Only the views of the mask that are visible.
void ViewRedrawMask(std::int32_t mask, bool clear);
// Fills the views with the background (true), or erases the overlay only (false); the overlay is dropped in
// both cases.
void ViewClear(bool fill);
// The outline of CurrentPolygon, by exclusive-or when asked. False when there is nothing to draw.
bool ViewDrawCurrent(bool exclusiveOr);

// A pick: the visible polygon whose outline passes nearest to a pane point, at most `reach` pixels away; null
// when none does.
PolygonRecord* ViewPick(std::int32_t x, std::int32_t y, std::int32_t reach);
// The vertex, and the two ends of the edge, that pass nearest to a pane point on the screen, however far; of
// equals the one nearer to the viewer. Of the selected polygons, or of all visible ones when none is
// selected. False when there is none.
bool ViewPickVertex(std::int32_t x, std::int32_t y, VertexRecord& vertex);
bool ViewPickEdge(std::int32_t x, std::int32_t y, VertexRecord& from, VertexRecord& to);

}  // namespace quelmark
