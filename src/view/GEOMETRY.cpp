// Layout, settings and projection.
#include <algorithm>
#include <cmath>

#include "ML/OPERATE.h"
#include "view/OVERLAY.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark {

FrameBuffer ViewFrame;
ViewRecord Views[VIEW_COUNT];
std::int32_t VisibleViews = WIN_ALL;
ViewSettings ViewState;

namespace {

constexpr std::int32_t SIZE_MOST = 16384;
constexpr std::int32_t STATUS_MARGIN = 6;
constexpr double DEGREE = 0.017453292519943278;
constexpr std::int32_t STEP_PIXELS = 10;  // of the move step when none is given

std::int32_t paneWidth = 1, paneHeight = 1, statusHeight = 0;
DamageHook damageHook = nullptr;

void PlaceViews() {
    const std::int32_t w = paneWidth;
    const std::int32_t h = std::max(paneHeight - statusHeight, 0);
    const std::int32_t single = ViewIndex(VisibleViews);
    if (single >= 0) {
        Views[single] = {0, 0, w, h, 0, 0};
    } else if (VisibleViews == WIN_ALL) {
        const std::int32_t w1 = w / 2, h1 = h / 2, w2 = (w + 1) / 2, h2 = (h + 1) / 2;
        Views[0] = {0, 0, w1, h1, 0, 0};
        Views[1] = {w1, h1, w2, h2, 0, 0};
        Views[2] = {0, h1, w1, h1, 0, 0};
        Views[3] = {w1, 0, w2, h2, 0, 0};
    }
    for (ViewRecord& view : Views) {
        view.centreX = view.left + view.width / 2;
        view.centreY = view.top + view.height / 2;
    }
    ViewSetAngle(0);
}

// Everything on an empty pane.
void ShowAfresh() {
    FillRect(ViewFrame, ViewFrame.Bounds(), COLOUR_BACKGROUND);
    ViewTextsDrop(WIN_ALL);
    ViewDamage(ViewFrame.Bounds());
    ViewRedraw(ViewFrame.Bounds(), true);
}

std::int32_t ConvertedAxis(const FixedMatrix& m, const ModelPoint& v, int axis) {
    const std::int32_t sum =
        WrapAdd(WrapAdd(WrapMultiply(v.x, m.element[0][axis]), WrapMultiply(v.y, m.element[1][axis])),
                WrapMultiply(v.z, m.element[2][axis]));
    return WrapAdd(sum >> 16, m.translation[axis]);
}

std::int32_t Limit(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, -2147483647.0, 2147483647.0));
}

std::int64_t LimitPixels(double value) {
    constexpr auto MOST = static_cast<double>(PANE_MOST);
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -MOST, MOST));
}

std::int32_t InRange(double coordinate) {
    return std::clamp(Limit(coordinate), VERTEX_MIN, VERTEX_MAX);
}

// A point of three doubles through a matrix, one component.
double Applied(const double (&p)[3], const Matrix& matrix, int column) {
    const auto& m = matrix.row;
    return p[0] * static_cast<double>(m[0][column]) + p[1] * static_cast<double>(m[1][column]) +
           p[2] * static_cast<double>(m[2][column]) + static_cast<double>(m[3][column]);
}

// Where the eye is, seen from the model: what both matrices carry to the origin of eye space.
void PlaceEye() {
    const auto& shown = ViewState.perspectiveInverse.row[3];
    const double eye[3] = {shown[0], shown[1], shown[2]};
    for (int axis = 0; axis < 3; ++axis) {
        ViewState.eye[axis] =
            ViewState.converting ? Applied(eye, ViewState.conversionInverse, axis) : eye[axis];
    }
}

// The nearest multiple of the snap, halves away from zero; no multiple beyond the coordinate range.
std::int32_t Snapped(std::int32_t value, std::int32_t snap) {
    if (snap < 2) {
        return value;
    }
    const std::int64_t shifted = std::int64_t{value} + (value < 0 ? -(snap / 2) : snap / 2);
    const std::int64_t multiple = shifted / snap * snap;
    return static_cast<std::int32_t>(multiple > VERTEX_MAX   ? multiple - snap
                                     : multiple < VERTEX_MIN ? multiple + snap
                                                             : multiple);
}

// A display point as a model point: through the inverse of the conversion, to the nearest.
ModelPoint Unconverted(const double (&p)[3]) {
    if (!ViewState.converting) {
        return {InRange(p[0]), InRange(p[1]), InRange(p[2])};
    }
    const auto axis = [&p](int i) {
        return InRange(std::nearbyint(Applied(p, ViewState.conversionInverse, i)));
    };
    return {axis(0), axis(1), axis(2)};
}

// The display point under a pane point of the perspective view at the depth of another; nothing when that one
// is behind the eye.
bool EyePointAt(std::int32_t x, std::int32_t y, const ModelPoint& depth, double (&point)[3]) {
    const double eyeX = ViewToEye(depth).x;
    if (!(eyeX >= 1) || ViewState.focalDistance == 0) {
        return false;
    }
    const double scale = eyeX / ViewState.focalDistance;
    const double left = static_cast<double>(Views[3].centreX) - x,
                 up = static_cast<double>(Views[3].centreY) - y;
    const double eye[3] = {eyeX, left * scale, up * scale};
    for (int axis = 0; axis < 3; ++axis) {
        point[axis] = Applied(eye, ViewState.perspectiveInverse, axis);
        if (!ViewState.converting) {
            point[axis] = std::nearbyint(point[axis]);
        }
    }
    return true;
}

}  // namespace

void ViewSetDamageHook(DamageHook hook) {
    damageHook = hook;
}

void ViewDamage(const PixelRect& rect) {
    const PixelRect inside = Intersection(rect, ViewFrame.Bounds());
    if (damageHook != nullptr && !IsEmpty(inside)) {
        damageHook(inside);
    }
}

void ViewInit() {
    ViewState = ViewSettings{};
    VisibleViews = WIN_ALL;
    for (ViewRecord& view : Views) {
        view = ViewRecord{};
    }
    OverlayInit();
    ViewEnableDrawing(false);
    ViewLayout(1, 1, 0);
}

void ViewExit() {
    ViewEnableDrawing(false);
    OverlayInit();
    ViewTextsDrop(WIN_ALL);
    ViewTitleSet(WIN_ALL, "", 0, 0, 0);
    ViewFrame = FrameBuffer{};
}

void ViewLayout(std::int32_t width, std::int32_t height, std::int32_t lineHeight) {
    paneWidth = std::clamp(width, 1, SIZE_MOST);
    paneHeight = std::clamp(height, 1, SIZE_MOST);
    statusHeight = lineHeight + STATUS_MARGIN;
    const OverlayPause pause;
    ViewFrame.Resize(paneWidth, paneHeight);
    PlaceViews();
    ShowAfresh();
}

void ViewSetMask(std::int32_t mask) {
    const OverlayPause pause;
    VisibleViews = mask;
    PlaceViews();
    ShowAfresh();
}

std::int32_t ViewIndex(std::int32_t bit) {
    switch (bit) {
        case WIN_XY:
            return 0;
        case WIN_YZ:
            return 1;
        case WIN_ZX:
            return 2;
        case WIN_PERS:
            return 3;
        default:
            return -1;
    }
}

std::int32_t ViewAt(std::int32_t x, std::int32_t y) {
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        const PixelRect rect = Views[i].Rect();
        if ((VisibleViews & 1 << i) != 0 && rect.left <= x && x < rect.right && rect.top <= y &&
            y < rect.bottom) {
            return 1 << i;
        }
    }
    return 0;
}

void ViewSetZoom(std::int32_t zoom, std::int32_t step) {
    ViewState.numerator = std::max(zoom, 1);
    ViewState.denominator = zoom <= -1 ? WrapSubtract(0, std::max(zoom, -2147483647)) : 1;
    const std::int64_t pixels = std::int64_t{STEP_PIXELS} * ViewState.denominator / ViewState.numerator;
    ViewState.moveStep =
        step != 0 ? step : static_cast<std::int32_t>(std::min<std::int64_t>(pixels, 2147483647));
}

std::int32_t ViewSetAngle(std::int32_t angle) {
    const std::int32_t before = ViewState.angle;
    if (0 < angle && angle < 180) {
        ViewState.angle = angle;
    }
    // Whole halves of the width and the angle; an angle of one degree has half a degree instead of none.
    const std::int32_t halfWidth = Views[3].width / 2;
    const std::int32_t halfAngle = ViewState.angle / 2;
    const double distance = halfWidth / std::tan((halfAngle > 0 ? halfAngle : 0.5) * DEGREE);
    ViewState.focalDistance = Limit(distance);
    return before;
}

void ViewSetPerspective(const Matrix& matrix) {
    ViewState.perspective = matrix;
    ViewState.perspectiveInverse = MatrixInverse(matrix);
    PlaceEye();
}

void ViewSetConversion(const Matrix& matrix) {
    ViewState.conversion = MatrixToFixed(matrix);
    ViewState.conversionInverse = MatrixInverse(matrix);
    ViewState.converting = true;
    PlaceEye();
}

ModelPoint ViewConverted(const ModelPoint& point) {
    if (!ViewState.converting) {
        return point;
    }
    const FixedMatrix& m = ViewState.conversion;
    return {ConvertedAxis(m, point, 0), ConvertedAxis(m, point, 1), ConvertedAxis(m, point, 2)};
}

ModelPoint ViewConverted(const VertexRecord& vertex) {
    return ViewConverted(ModelPoint{vertex.x, vertex.y, vertex.z});
}

bool ViewFacesViewer(const PolygonRecord& polygon) {
    const VertexRecord& p = polygon.vertex[0];
    const double* eye = ViewState.eye;
    return (eye[0] - p.x) * polygon.normal[0] + (eye[1] - p.y) * polygon.normal[1] +
               (eye[2] - p.z) * polygon.normal[2] >
           0;
}

std::int64_t ViewScaled(std::int32_t coordinate, int axis) {
    const ModelPoint& c = ViewState.centre;
    const std::int64_t difference = std::int64_t{coordinate} - (axis == 0 ? c.x : axis == 1 ? c.y : c.z);
    return std::clamp(difference * ViewState.numerator / ViewState.denominator, -PANE_MOST, PANE_MOST);
}

PanePoint ViewProject(const ModelPoint& point, std::int32_t view) {
    const ViewRecord& record = Views[ViewIndex(view)];
    const std::int64_t right = view == WIN_YZ ? ViewScaled(point.y, 1) : ViewScaled(point.x, 0);
    const std::int64_t up = view == WIN_XY ? ViewScaled(point.y, 1) : ViewScaled(point.z, 2);
    return {record.centreX + right, record.centreY - up};
}

EyePoint ViewToEye(const ModelPoint& p) {
    const double point[3] = {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)};
    return {Applied(point, ViewState.perspective, 0), Applied(point, ViewState.perspective, 1),
            Applied(point, ViewState.perspective, 2)};
}

PanePoint ViewProjectEye(const EyePoint& point) {
    const double f = ViewState.focalDistance;
    return {Views[3].centreX - LimitPixels(point.y * f / point.x),
            Views[3].centreY - LimitPixels(point.z * f / point.x)};
}

std::optional<ModelPoint> ViewPointAt(std::int32_t x, std::int32_t y, const ModelPoint& depth,
                                      std::int32_t snap) {
    const std::int32_t view = ViewAt(x, y);
    return view == 0 ? std::nullopt : std::optional(ViewPointIn(view, x, y, depth, snap));
}

ModelPoint ViewPointIn(std::int32_t view, std::int32_t x, std::int32_t y, const ModelPoint& depth,
                       std::int32_t snap) {
    const ViewRecord& record = Views[ViewIndex(view)];
    const ModelPoint shown = ViewConverted(depth);
    double point[3] = {static_cast<double>(shown.x), static_cast<double>(shown.y),
                       static_cast<double>(shown.z)};
    if (view == WIN_PERS) {
        if (!EyePointAt(x, y, shown, point)) {
            return depth;
        }
        const ModelPoint p = Unconverted(point);
        return {Snapped(p.x, snap), Snapped(p.y, snap), Snapped(p.z, snap)};
    }
    const auto place = [snap](double pixels, std::int32_t centre) {
        const double units = std::trunc(pixels * ViewState.denominator / ViewState.numerator);
        const double value = centre + units;
        return static_cast<double>(Snapped(ViewState.converting ? Limit(value) : InRange(value), snap));
    };
    const double right = static_cast<double>(x) - record.centreX;
    const double up = static_cast<double>(record.centreY) - y;
    const ModelPoint& c = ViewState.centre;
    point[view == WIN_YZ ? 1 : 0] = place(right, view == WIN_YZ ? c.y : c.x);
    point[view == WIN_XY ? 1 : 2] = place(up, view == WIN_XY ? c.y : c.z);
    return Unconverted(point);
}

}  // namespace quelmark
