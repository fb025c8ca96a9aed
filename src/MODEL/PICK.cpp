#include "MODEL/PICK.h"

#include <algorithm>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "MODEL/NEAREST.h"
#include "MODEL/SELECT.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr double NEAR = 1;           // nearer points of eye space are not in front of the eye
constexpr double FIXED_ONE = 65536;  // of a 16.16 number

// ---- how the perspective view sees ----

bool ProjectPosition(const VertexRecord& position, PanePoint& at) {
    const EyePoint eye = ViewToEye(ViewConverted(position));
    if (!(eye.x >= NEAR)) {
        return false;
    }
    at = ViewProjectEye(eye);
    return true;
}

std::int32_t LimitPixel(std::int64_t pixel) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(pixel, -2147483647, 2147483647));
}

bool ProjectToScreen(const VertexRecord& position, std::int32_t& x, std::int32_t& y) {
    PanePoint at{};
    if (!ProjectPosition(position, at)) {
        return false;
    }
    x = LimitPixel(at.x);
    y = LimitPixel(at.y);
    return true;
}

bool IsShownFacing(const PolygonRecord& polygon) {
    return !ViewState.frontOnly || ViewFacesViewer(polygon);
}

// The step from model space to display space, which the conversion makes.
Matrix ConversionMatrix() {
    if (!ViewState.converting) {
        return UNIT_MATRIX;
    }
    const FixedMatrix& fixed = ViewState.conversion;
    Matrix matrix;
    for (int axis = 0; axis < 3; ++axis) {
        for (int row = 0; row < 3; ++row) {
            matrix.row[row][axis] = static_cast<float>(fixed.element[row][axis] / FIXED_ONE);
        }
        matrix.row[3][axis] = static_cast<float>(fixed.translation[axis]);
    }
    return matrix;
}

// From the eye, where it stands in model space, through the vertex. The direction is zero, which meets no
// plane, when the vertex is the eye's place or a flat view leaves the eye without one.
SightLine LineThrough(const VertexRecord& v) {
    const Matrix toEye = MatrixProduct(ConversionMatrix(), ViewState.perspective);
    const Matrix fromEye = MatrixInverse(toEye);
    SightLine line{{0, 0, 0}, {0, 0, 0}};
    const std::int16_t position[3] = {v.x, v.y, v.z};
    for (int axis = 0; axis < 3 && !MatrixIsSingular(toEye); ++axis) {
        line.origin[axis] = static_cast<double>(fromEye.row[3][axis]);
        line.direction[axis] = position[axis] - line.origin[axis];
    }
    return line;
}

constexpr PerspectiveSight SIGHT{IsShownFacing, ProjectToScreen, LineThrough};

// ---- script functions ----

std::int32_t PolyVertex(std::int32_t, std::int32_t argc, DataCell* argv) {
    return CallPolyVertex(argc, argv, SIGHT);
}

std::int32_t PolyPlane(std::int32_t, std::int32_t argc, DataCell* argv) {
    return CallPolyPlane(argc, argv, SIGHT);
}

// A corner in 16.16 fractions of the view's width, from its middle, the second upward.
PanePoint CornerPixel(std::int32_t x, std::int32_t y, const ViewRecord& view) {
    return {((std::int64_t{x} * view.width) >> 16) + view.left + view.width / 2,
            std::int64_t{view.top} - ((std::int64_t{y} * view.width) >> 16) + view.height / 2};
}

// flag, mode, x1, y1, x2, y2: a polygon with a vertex in the rectangle is a hit.
std::int32_t SelectPers(std::int32_t, std::int32_t, DataCell* argv) {
    const ViewRecord& view = Views[ViewIndex(WIN_PERS)];
    const PanePoint a = CornerPixel(argv[2].integer, argv[3].integer, view);
    const PanePoint b = CornerPixel(argv[4].integer, argv[5].integer, view);
    // One pixel wider on every side, so that what lies on the drawn frame is inside.
    const std::int64_t left = std::min(a.x, b.x) - 1, right = std::max(a.x, b.x) + 1;
    const std::int64_t top = std::min(a.y, b.y) - 1, bottom = std::max(a.y, b.y) + 1;
    SelectWhere(argv[0].integer != 0, argv[1].integer & SELECT_MODE_MASK, [&](const PolygonRecord& polygon) {
        return std::ranges::any_of(polygon.Vertices(), [&](const VertexRecord& vertex) {
            PanePoint at{};
            return ProjectPosition(vertex, at) && left <= at.x && at.x <= right && top <= at.y &&
                   at.y <= bottom;
        });
    });
    return NO_RESULT;
}

// x, y: a point of the pane.
std::int32_t PickVertex(std::int32_t, std::int32_t, DataCell* argv) {
    VertexRecord vertex{};
    if (ViewPickVertex(argv[0].integer, argv[1].integer, vertex)) {
        StackPushVertex(vertex, 0);
    } else {
        StackPushBool(false);
    }
    return RESULT;
}

// x, y, array for the two ends.
std::int32_t PickEdge(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[2]) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。(PickEdge)"_sjis);
    }
    VertexRecord ends[2]{};
    const bool found = ViewPickEdge(argv[0].integer, argv[1].integer, ends[0], ends[1]);
    for (int i = 0; found && i < 2; ++i) {
        StoreVertex(argv[2], i, ends[i]);
    }
    StackPushBool(found);
    return RESULT;
}

// The first two check their own arguments.
constexpr BuiltIn FUNCTIONS[] = {
    {"Vertex", "PolyVertex", PolyVertex},
    {"Vertex", "PolyPlane", PolyPlane},
    {"", "PickVertex", PickVertex, Takes("PickVertex", {TYPE_INT, TYPE_INT})},
    {"", "PickEdge", PickEdge, Takes("PickEdge", {TYPE_INT, TYPE_INT, TYPE_ARRAY})},
    {"", "SelectPers", SelectPers,
     Takes("SelectPers", {TYPE_FLAG, TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT})},
};

}  // namespace

void PickLibraryRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
