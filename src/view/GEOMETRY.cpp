// Layout, settings and projection.
#include <algorithm>
#include <cmath>

#include "ML/OPERATE.h"
#include "view/OVERLAY.h"
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

std::int32_t ConvertedAxis(const FixedMatrix& m, const VertexRecord& v, int axis) {
    const std::int32_t sum =
        WrapAdd(WrapAdd(WrapMultiply(v.x, m.element[0][axis]), WrapMultiply(v.y, m.element[1][axis])),
                WrapMultiply(v.z, m.element[2][axis]));
    return WrapAdd(sum >> 16, m.translation[axis]);
}

std::int32_t Limit(double value) {
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, -2147483647.0, 2147483647.0));
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
    OverlayReset();
    ViewEnableDrawing(false);
    ViewLayout(1, 1, 0);
}

void ViewExit() {
    ViewEnableDrawing(false);
    OverlayReset();
    ViewFrame = FrameBuffer{};
}

void ViewLayout(std::int32_t width, std::int32_t height, std::int32_t lineHeight) {
    paneWidth = std::clamp(width, 1, SIZE_MOST);
    paneHeight = std::clamp(height, 1, SIZE_MOST);
    statusHeight = lineHeight + STATUS_MARGIN;
    ViewFrame.Resize(paneWidth, paneHeight);
    PlaceViews();
    FillRect(ViewFrame, ViewFrame.Bounds(), COLOUR_BACKGROUND);
    ViewDamage(ViewFrame.Bounds());
    ViewRedraw(ViewFrame.Bounds(), true);
}

void ViewSetMask(std::int32_t mask) {
    VisibleViews = mask & WIN_ALL;
    PlaceViews();
    FillRect(ViewFrame, ViewFrame.Bounds(), COLOUR_BACKGROUND);
    ViewDamage(ViewFrame.Bounds());
    ViewRedraw(ViewFrame.Bounds(), true);
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
    const double half = std::tan((ViewState.angle / 2) * DEGREE);
    const double distance =
        half > 0 ? (Views[3].width / 2) / half : Views[3].width / 2 / std::tan(0.5 * DEGREE);
    ViewState.focalDistance = Limit(distance);
    return before;
}

void ViewSetPerspective(const Matrix& matrix) {
    ViewState.perspective = matrix;
    ViewState.perspectiveInverse = MatrixInverse(matrix);
}

void ViewSetConversion(const Matrix& matrix) {
    ViewState.conversion = MatrixToFixed(matrix);
    ViewState.converting = true;
}

ModelPoint ViewConverted(const VertexRecord& vertex) {
    if (!ViewState.converting) {
        return {vertex.x, vertex.y, vertex.z};
    }
    const FixedMatrix& m = ViewState.conversion;
    return {ConvertedAxis(m, vertex, 0), ConvertedAxis(m, vertex, 1), ConvertedAxis(m, vertex, 2)};
}

std::int64_t ViewScaled(std::int32_t coordinate, int axis) {
    const ModelPoint& c = ViewState.centre;
    const std::int64_t difference = std::int64_t{coordinate} - (axis == 0 ? c.x : axis == 1 ? c.y : c.z);
    return difference * ViewState.numerator / ViewState.denominator;
}

PanePoint ViewProject(const ModelPoint& point, std::int32_t view) {
    const ViewRecord& record = Views[ViewIndex(view)];
    const std::int64_t right = view == WIN_YZ ? ViewScaled(point.y, 1) : ViewScaled(point.x, 0);
    const std::int64_t up = view == WIN_XY ? ViewScaled(point.y, 1) : ViewScaled(point.z, 2);
    return {record.centreX + right, record.centreY - up};
}

EyePoint ViewToEye(const ModelPoint& p) {
    const auto& m = ViewState.perspective.row;
    const auto axis = [&](int i) {
        return p.x * static_cast<double>(m[0][i]) + p.y * static_cast<double>(m[1][i]) +
               p.z * static_cast<double>(m[2][i]) + static_cast<double>(m[3][i]);
    };
    return {axis(0), axis(1), axis(2)};
}

PanePoint ViewProjectEye(const EyePoint& point) {
    const double f = ViewState.focalDistance;
    return {std::int64_t{Views[3].centreX} - Limit(point.y * f / point.x),
            std::int64_t{Views[3].centreY} - Limit(point.z * f / point.x)};
}

bool ViewFacesViewer(const PolygonRecord& polygon) {
    const Matrix& inverse = ViewState.perspectiveInverse;
    const ModelPoint p = ViewConverted(polygon.vertex[0]);
    const double towards[3] = {static_cast<double>(inverse.row[3][0]) - p.x,
                               static_cast<double>(inverse.row[3][1]) - p.y,
                               static_cast<double>(inverse.row[3][2]) - p.z};
    return towards[0] * polygon.normal[0] + towards[1] * polygon.normal[1] + towards[2] * polygon.normal[2] >
           0;
}

std::optional<ModelPoint> ViewPointAt(std::int32_t x, std::int32_t y, const ModelPoint& depth) {
    const std::int32_t view = ViewAt(x, y);
    if (view == 0) {
        return std::nullopt;
    }
    const ViewRecord& record = Views[ViewIndex(view)];
    ModelPoint point = depth;
    if (view != WIN_PERS) {
        const auto unscaled = [](std::int32_t pixels, std::int32_t centre) {
            return Limit(
                static_cast<double>(centre) +
                std::trunc(static_cast<double>(pixels) * ViewState.denominator / ViewState.numerator));
        };
        const std::int32_t right = x - record.centreX;
        const std::int32_t up = record.centreY - y;
        const ModelPoint& c = ViewState.centre;
        (view == WIN_YZ ? point.y : point.x) = unscaled(right, view == WIN_YZ ? c.y : c.x);
        (view == WIN_XY ? point.y : point.z) = unscaled(up, view == WIN_XY ? c.y : c.z);
        return point;
    }
    const double eyeX = ViewToEye(depth).x;
    if (!(eyeX >= 1) || ViewState.focalDistance == 0) {
        return depth;
    }
    const double scale = eyeX / ViewState.focalDistance;
    const double eye[3] = {eyeX, (record.centreX - x) * scale, (record.centreY - y) * scale};
    const auto& m = ViewState.perspectiveInverse.row;
    const auto axis = [&](int i) {
        return Limit(std::nearbyint(eye[0] * static_cast<double>(m[0][i]) +
                                    eye[1] * static_cast<double>(m[1][i]) +
                                    eye[2] * static_cast<double>(m[2][i]) + static_cast<double>(m[3][i])));
    };
    return ModelPoint{axis(0), axis(1), axis(2)};
}

}  // namespace quelmark
