#include "MODEL/VIEWLIB.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/OPERATE.h"
#include "ML/STRING.h"
#include "MODEL/SELECT.h"
#include "MODEL/VERTEX.h"
#include "host/HOST.h"
#include "host/IMAGE.h"
#include "host/INPUT.h"
#include "host/PANES.h"
#include "text/savefile.h"
#include "text/sjis.h"
#include "view/OVERLAY.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t PICK_REACH = 12;  // pixels

ModelPoint PointOf(const VertexRecord& v) {
    return {v.x, v.y, v.z};
}

VertexRecord ToVertexRecord(const ModelPoint& point) {
    return {ToCoordinate(point.x), ToCoordinate(point.y), ToCoordinate(point.z), 0, 0, 0, 0, 0};
}

ModelPoint PointOfVector(const DataCell& cell) {
    const Vector& vector = ObjectData<Vector>(cell);
    return {RealToInt(static_cast<double>(vector.x)), RealToInt(static_cast<double>(vector.y)),
            RealToInt(static_cast<double>(vector.z))};
}

// ---- pointer and cursor ----

std::int32_t MouseWindow(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(ViewAt(Input.x, Input.y));
    return RESULT;
}

// In the view under the pointer, or in a given one, wherever the pointer is.
std::int32_t MousePoint(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t view = argc > 0 ? argv[0].integer : ViewAt(Input.x, Input.y);
    const ModelPoint cursor = CursorPosition();
    StackPushVertex(
        ToVertexRecord(ViewIndex(view) < 0 ? cursor : ViewPointIn(view, Input.x, Input.y, cursor)), 0);
    return RESULT;
}

std::int32_t CursorGet(std::int32_t, std::int32_t, DataCell*) {
    StackPushVertex(ToVertexRecord(CursorPosition()), 0);
    return RESULT;
}

std::int32_t CursorToVertex(std::int32_t, std::int32_t, DataCell* argv) {
    CursorMove(PointOf(VertexOf(argv[0]).vertex));
    PanesCursorMoved();
    StackPush(argv[0]);
    return RESULT;
}

std::int32_t CursorToVector(std::int32_t, std::int32_t, DataCell* argv) {
    const VertexRecord vertex = ToPosition(ObjectData<Vector>(argv[0]));
    CursorMove(PointOf(vertex));
    PanesCursorMoved();
    StackPushVertex(vertex, 0);
    return RESULT;
}

// Stores a pane point's place in the perspective view, from its middle, as 16.16 fractions of its width;
// those that 32 bits do not hold are the largest numbers.
void StorePers2D(const DataCell& array, PanePoint p) {
    if (ArrayCount(array) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。( Get2DCursor )"_sjis);
    }
    const ViewRecord& view = Views[ViewIndex(WIN_PERS)];
    const std::int64_t width = view.width > 0 ? view.width : 1;
    const auto fraction = [width](std::int64_t pixels) {
        constexpr std::int64_t FRACTION_MOST = 2147483647, PIXELS_MOST = FRACTION_MOST << 16;
        const std::int64_t near = std::clamp(pixels, -PIXELS_MOST, PIXELS_MOST);
        return static_cast<std::int32_t>(std::clamp(near * 65536 / width, -FRACTION_MOST, FRACTION_MOST));
    };
    DataCell* elements = ArrayElements(array);
    CellAssign(elements[0], IntCell(fraction(p.x - view.left - view.width / 2)));
    CellAssign(elements[1], IntCell(fraction(-(p.y - view.top - view.height / 2))));
}

std::int32_t Cursor2D(std::int32_t, std::int32_t, DataCell* argv) {
    const ViewRecord& view = Views[ViewIndex(WIN_PERS)];
    const EyePoint eye = ViewToEye(ViewConverted(CursorPosition()));
    StorePers2D(argv[0], eye.x >= 1 ? ViewProjectEye(eye) : PanePoint{view.centreX, view.centreY});
    return NO_RESULT;
}

// The pointer's place, as SelectPers wants it.
std::int32_t Mouse2D(std::int32_t, std::int32_t, DataCell* argv) {
    StorePers2D(argv[0], PanePoint{Input.x, Input.y});
    return NO_RESULT;
}

std::int32_t ViewCursor(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0) {
        CursorShow(argv[0].integer != 0);
    }
    StackPushInt(CursorShown() ? 1 : 0);
    return RESULT;
}

// ---- redraw ----

std::int32_t Update(std::int32_t, std::int32_t argc, DataCell* argv) {
    ViewRedrawMask(argc > 1 ? argv[1].integer : WIN_ALL, argv[0].integer != 0);
    return NO_RESULT;
}

std::int32_t UpdatePers(std::int32_t, std::int32_t, DataCell* argv) {
    ViewRedrawMask(WIN_PERS, argv[0].integer != 0);
    return NO_RESULT;
}

std::int32_t ClearViews(std::int32_t, std::int32_t argc, DataCell* argv) {
    ViewClear(argc == 0 || argv[0].integer != 0);
    return NO_RESULT;
}

std::int32_t SetWindow(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        StackPushInt(VisibleViews);
        return RESULT;
    }
    const OverlayPause pause;
    ViewSetMask(argv[0].integer);
    return NO_RESULT;
}

// ---- direct drawing ----

std::int32_t DrawCurrent(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(ViewDrawCurrent(argc > 0 && argv[0].integer != 0) ? 1 : 0);
    return RESULT;
}

ModelPoint DisplayPoint(const DataCell& cell) {
    return ViewConverted(VertexOf(cell).vertex);
}

std::int32_t DrawModelLine(std::int32_t, std::int32_t argc, DataCell* argv) {
    const bool both = argc > 2 && argv[2].integer == LINE_OR;
    OverlayModelLines({{DisplayPoint(argv[0]), DisplayPoint(argv[1])}}, both ? LINE_OR : LINE_XOR);
    return NO_RESULT;
}

std::int32_t DrawLine2D(std::int32_t, std::int32_t, DataCell* argv) {
    OverlayPaneLines({{{argv[0].integer, argv[1].integer, 0}, {argv[2].integer, argv[3].integer, 0}}});
    return NO_RESULT;
}

std::int32_t DrawBox2D(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t x1 = argv[0].integer, y1 = argv[1].integer, x2 = argv[2].integer, y2 = argv[3].integer;
    OverlayPaneLines({{{x1, y1, 0}, {x2, y1, 0}},
                      {{x2, y1, 0}, {x2, y2, 0}},
                      {{x2, y2, 0}, {x1, y2, 0}},
                      {{x1, y2, 0}, {x1, y1, 0}}});
    return NO_RESULT;
}

// The corner of a box: bits 0 to 2 choose between the two vertices on each axis.
ModelPoint Corner(const VertexRecord& a, const VertexRecord& b, int bits, const Matrix* matrix) {
    VertexRecord v{
        (bits & 1) != 0 ? b.x : a.x, (bits & 2) != 0 ? b.y : a.y, (bits & 4) != 0 ? b.z : a.z, 0, 0, 0, 0, 0};
    if (matrix != nullptr) {
        v = ToPosition(MatrixApply(
            {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)}, *matrix));
    }
    return ViewConverted(v);
}

std::int32_t DrawBox(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 2 || argc > 3) {
        RuntimeError("%s", "引数の数が不正です。( Vertex:DrawBox )"_sjis);
    }
    if (!IsVertex(argv[0]) || !IsVertex(argv[1]) || (argc > 2 && !IsMatrix(argv[2]))) {
        RuntimeError("%s", "引数の型が不正です。( Vertex:DrawBox )"_sjis);
    }
    const VertexRecord a = VertexOf(argv[0]).vertex;
    const VertexRecord b = VertexOf(argv[1]).vertex;
    const Matrix* matrix = argc > 2 ? &ObjectData<Matrix>(argv[2]) : nullptr;
    std::vector<ModelLine> lines;
    for (int corner = 0; corner < 8; ++corner) {
        for (int axis = 1; axis < 8; axis <<= 1) {
            if ((corner & axis) == 0) {
                lines.push_back({Corner(a, b, corner, matrix), Corner(a, b, corner | axis, matrix)});
            }
        }
    }
    OverlayModelLines(lines, LINE_XOR);
    return NO_RESULT;
}

// Behind the text a Vertex or a pane point, then perhaps a colour.
void CheckTextArguments(std::int32_t argc, const DataCell* argv) {
    constexpr Signature AT_VERTEX = Takes("DrawText", {TYPE_OBJECT, TYPE_OBJECT, TYPE_INT}, 2);
    constexpr Signature AT_POINT = Takes("DrawText", {TYPE_OBJECT, TYPE_INT, TYPE_INT, TYPE_INT}, 3);
    ArgCheck(argc > 1 && argv[1].type == TYPE_OBJECT ? AT_VERTEX : AT_POINT, argc, argv);
}

// What a line of text takes on the screen, with room for the last letter's overhang.
std::int32_t TextWidth(std::string_view text) {
    const auto columns = static_cast<std::int32_t>(std::min<std::size_t>(text.size(), 4096)) + 1;
    return columns * HostWindow().CharacterWidth();
}

// The lines of a text from a pane point on, downwards.
void ShowText(std::string_view text, const PanePoint& at, std::int32_t view, const PixelRect& clip,
              std::int32_t colour) {
    constexpr std::int64_t FAR = 1 << 28;
    if (at.x < -FAR || at.x > FAR || at.y < -FAR || at.y > FAR) {
        return;
    }
    const auto left = static_cast<std::int32_t>(at.x);
    auto top = static_cast<std::int32_t>(at.y);
    for (std::size_t start = 0; start <= text.size() && top < clip.bottom;) {
        const std::string line(text.substr(start, text.find('\n', start) - start));
        const PixelRect place{left, top, left + TextWidth(line), top + HostWindow().LineHeight()};
        ViewTextAdd({view, clip, place, line, static_cast<std::uint8_t>(colour & 15)});
        top = place.bottom;
        start += line.size() + 1;
    }
}

std::int32_t DrawText(std::int32_t, std::int32_t argc, DataCell* argv) {
    CheckTextArguments(argc, argv);
    const std::string_view text = StringText(argv[0]);
    if (argv[1].type != TYPE_OBJECT) {
        const std::int32_t x = argv[1].integer, y = argv[2].integer;
        ShowText(text, {x, y}, ViewAt(x, y), ViewFrame.Bounds(), argc > 3 ? argv[3].integer : COLOUR_LINE);
        return NO_RESULT;
    }
    const ModelPoint point = DisplayPoint(argv[1]);
    const EyePoint eye = ViewToEye(point);
    for (std::int32_t view = WIN_XY; view <= WIN_PERS; view <<= 1) {
        if ((VisibleViews & view) != 0 && (view != WIN_PERS || eye.x >= 1)) {
            ShowText(text, view == WIN_PERS ? ViewProjectEye(eye) : ViewProject(point, view), view,
                     Views[ViewIndex(view)].Rect(), argc > 2 ? argv[2].integer : COLOUR_LINE);
        }
    }
    return NO_RESULT;
}

std::int32_t ViewTitle(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string text(StringText(argv[0]));
    const std::int32_t colour = argc > 2 ? argv[2].integer & 15 : COLOUR_LINE;
    ViewTitleSet(argv[1].integer, text, TextWidth(text), HostWindow().LineHeight(),
                 static_cast<std::uint8_t>(colour));
    return NO_RESULT;
}

// ---- settings ----

// A display flag: set when given, and returned.
template <std::int32_t ViewSettings::*field>
std::int32_t Number(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0) {
        ViewState.*field = argv[0].integer;
    }
    StackPushInt(ViewState.*field);
    return RESULT;
}

template <bool ViewSettings::*field>
std::int32_t Flag(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0) {
        ViewState.*field = argv[0].integer != 0;
    }
    StackPushInt(ViewState.*field ? 1 : 0);
    return RESULT;
}

std::int32_t SetCenter(std::int32_t, std::int32_t, DataCell* argv) {
    ModelPoint centre;
    if (IsVertex(argv[0])) {
        centre = PointOf(VertexOf(argv[0]).vertex);
    } else if (IsVector(argv[0])) {
        centre = PointOfVector(argv[0]);
    } else {
        RuntimeError("%s", "型が不正です。（SetCenter）"_sjis);
    }
    const OverlayPause pause;
    ViewState.centre = centre;
    return NO_RESULT;
}

std::int32_t SetZoom(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t step = argc > 1 ? argv[1].integer : 0;
    const OverlayPause pause;
    ViewSetZoom(argv[0].integer, step);
    if (step != 0) {
        char line[48];
        const int length = std::snprintf(line, sizeof line, "move : %d\n", step);
        TraceLog({line, static_cast<std::size_t>(length)});
    }
    return NO_RESULT;
}

void CheckMatrix(const DataCell& cell, const char* name) {
    if (!IsMatrix(cell)) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 1, name);
    }
}

std::int32_t SetPers(std::int32_t, std::int32_t, DataCell* argv) {
    CheckMatrix(argv[0], "SetPers");
    const OverlayPause pause;
    ViewSetPerspective(ObjectData<Matrix>(argv[0]));
    ViewRedrawMask(WIN_PERS, true);
    return NO_RESULT;
}

std::int32_t SetConv(std::int32_t, std::int32_t, DataCell* argv) {
    CheckMatrix(argv[0], "SetConv");
    const OverlayPause pause;
    ViewSetConversion(ObjectData<Matrix>(argv[0]));
    return NO_RESULT;
}

std::int32_t SetGrid(std::int32_t, std::int32_t, DataCell* argv) {
    ViewState.gridSpacing = argv[0].integer;
    ViewState.gridSnap = argv[1].integer;
    return NO_RESULT;
}

std::int32_t PersAngle(std::int32_t, std::int32_t argc, DataCell* argv) {
    const OverlayPause pause;
    StackPushInt(ViewSetAngle(argc > 0 ? argv[0].integer : 0));
    return RESULT;
}

template <std::int32_t ViewRecord::*size>
std::int32_t ViewSize(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t view = ViewIndex(argv[0].integer);
    if (view < 0) {
        return NO_RESULT;
    }
    const std::int64_t units = std::int64_t{Views[view].*size} * ViewState.denominator / ViewState.numerator;
    StackPushInt(RealToInt(static_cast<double>(units)));
    return RESULT;
}

// ---- picking ----

// Selects by a click: the polygon whose outline passes nearest to a pane point is the hit.
std::int32_t SelectPoint(std::int32_t, std::int32_t, DataCell* argv) {
    const PolygonRecord* nearest = ViewPick(argv[2].integer, argv[3].integer, PICK_REACH);
    SelectBegin();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        SelectPolygon(polygon, polygon == nearest, argv[0].integer != 0, argv[1].integer & SELECT_MODE_MASK);
    }
    StackPushBool(nearest != nullptr);
    return RESULT;
}

// The views of the mask that are shown, in one picture with what lies between them.
PixelRect ViewsArea(std::int32_t mask) {
    PixelRect area{ViewFrame.width, ViewFrame.height, 0, 0};
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        if ((mask & VisibleViews & 1 << i) != 0) {
            const PixelRect view = Views[i].Rect();
            area = {std::min(area.left, view.left), std::min(area.top, view.top),
                    std::max(area.right, view.right), std::max(area.bottom, view.bottom)};
        }
    }
    return area;
}

std::int32_t ViewImage(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string png = PngOf(ViewsArea(argc > 1 ? argv[1].integer : WIN_ALL));
    const bool isSaved =
        !png.empty() && IsString(argv[0]) && SaveReplacing(StringText(argv[0]), png) == SaveResult::saved;
    if (!png.empty() && !isSaved) {
        Warning("ファイルがオープンできません"_sjis);
    }
    StackPushBool(isSaved);
    return RESULT;
}

constexpr ConstantRow CONSTANTS[] = {
    {"WIN_XY", IntCell(WIN_XY)},     {"WIN_YZ", IntCell(WIN_YZ)},   {"WIN_ZX", IntCell(WIN_ZX)},
    {"WIN_PERS", IntCell(WIN_PERS)}, {"WIN_ALL", IntCell(WIN_ALL)}, {"LINE_OR", IntCell(LINE_OR)},
    {"LINE_XOR", IntCell(LINE_XOR)}, {"OVERWRITE", BoolCell(0)},    {"CLEAR", BoolCell(1)},
};

constexpr BuiltIn FUNCTIONS[] = {
    {"", "MouseWindow", MouseWindow, Takes("MouseWindow", {})},
    {"", "Cursor", CursorGet, Takes("Cursor", {})},
    {"Vertex", "Cursor", CursorToVertex, Takes("Cursor", {TYPE_OBJECT})},
    {"Vector", "Cursor", CursorToVector, Takes("Cursor", {TYPE_OBJECT})},
    {"", "Cursor2D", Cursor2D, Takes("Cursor2D", {TYPE_ARRAY})},
    {"", "Mouse2D", Mouse2D, Takes("Mouse2D", {TYPE_ARRAY})},
    {"", "Update", Update, Takes("Update", {TYPE_FLAG, TYPE_INT}, 1)},
    {"", "UpdatePers", UpdatePers, Takes("UpdatePers", {TYPE_FLAG})},
    {"", "DrawCurrent", DrawCurrent, Takes("DrawCurrent", {TYPE_FLAG}, 0)},
    {"Vertex", "DrawLine", DrawModelLine, Takes("DrawLine", {TYPE_OBJECT, TYPE_OBJECT, TYPE_INT}, 2)},
    {"", "DrawLine2D", DrawLine2D, Takes("DrawLine2D", {TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT})},
    {"Vertex", "DrawBox", DrawBox},
    {"", "DrawBox2D", DrawBox2D, Takes("DrawBox2D", {TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT})},
    {"", "Clear", ClearViews, Takes("Clear", {TYPE_FLAG}, 0)},
    {"", "SetWindow", SetWindow, Takes("SetWindow", {TYPE_INT}, 0)},
    {"", "Window", SetWindow, Takes("SetWindow", {TYPE_INT}, 0)},
    {"", "VisibleVector", Number<&ViewSettings::visibleVector>, Takes("SetVisibleVector", {TYPE_FLAG}, 0)},
    {"", "VisiblePolyVector", Number<&ViewSettings::visiblePolyVector>,
     Takes("SetVisiblePolyVector", {TYPE_FLAG}, 0)},
    {"", "VisibleVertex", Number<&ViewSettings::visibleVertex>, Takes("SetVisibleVertex", {TYPE_FLAG}, 0)},
    {"", "SetCenter", SetCenter, Takes("SetCenter", {TYPE_OBJECT})},
    {"", "Center", SetCenter, Takes("SetCenter", {TYPE_OBJECT})},
    {"", "SetZoom", SetZoom, Takes("SetZoom", {TYPE_INT, TYPE_INT}, 1)},
    {"Matrix", "SetPers", SetPers, Takes("SetPers", {TYPE_OBJECT})},
    {"", "SetGrid", SetGrid, Takes("SetGrid", {TYPE_INT, TYPE_INT})},
    {"Matrix", "SetConv", SetConv, Takes("SetConv", {TYPE_OBJECT})},
    {"String", "DrawText", DrawText},
    {"String", "ViewTitle", ViewTitle, Takes("ViewTitle", {TYPE_OBJECT, TYPE_INT, TYPE_INT}, 2)},
    {"", "PersAngle", PersAngle, Takes("PersAngle", {TYPE_INT}, 0)},
    {"", "ViewWidth", ViewSize<&ViewRecord::width>, Takes("ViewWidth", {TYPE_INT})},
    {"", "ViewHeight", ViewSize<&ViewRecord::height>, Takes("ViewHeight", {TYPE_INT})},
    {"", "DrawInvisible", Flag<&ViewSettings::drawInvisible>, Takes("DrawInvisible", {TYPE_FLAG}, 0)},
    {"", "DrawFrontOnly", Flag<&ViewSettings::frontOnly>, Takes("DrawFrontOnly", {TYPE_FLAG}, 0)},
    {"", "ViewCursor", ViewCursor, Takes("ViewCursor", {TYPE_FLAG}, 0)},
    {"String", "ViewImage", ViewImage, Takes("ViewImage", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"", "MousePoint", MousePoint, Takes("MousePoint", {TYPE_INT}, 0)},
    {"", "SelectPoint", SelectPoint, Takes("SelectPoint", {TYPE_FLAG, TYPE_INT, TYPE_INT, TYPE_INT})},
};

}  // namespace

void ViewLibraryRegister() {
    RegisterConstants(CONSTANTS);
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
