// Random models under random settings, extremes among them, against a picture drawn plainly: every polygon in
// every view by itself, every pixel of a line by its definition.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include "MATLIB/SETMAT.h"
#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

__extension__ using Wide = __int128;

using Pixel = std::pair<std::int32_t, std::int32_t>;
using Pixels = std::vector<Pixel>;
using Triple = std::array<std::int64_t, 3>;

// Column by column along the longer axis, from its smaller end: the other goes the nearest whole number of
// pixels, halves away from the start.
Pixels PixelsOf(PanePoint a, PanePoint b, const PixelRect& clip) {
    for (std::int64_t* value : {&a.x, &a.y, &b.x, &b.y}) {
        *value = std::clamp(*value, -PANE_MOST, PANE_MOST);
    }
    const bool steep = std::abs(b.y - a.y) > std::abs(b.x - a.x);
    if (steep) {
        std::swap(a.x, a.y);
        std::swap(b.x, b.y);
    }
    if (a.x > b.x) {
        std::swap(a, b);
    }
    const Wide length = Wide{b.x} - a.x, rise = b.y > a.y ? Wide{b.y} - a.y : Wide{a.y} - b.y;
    const std::int64_t low = steep ? clip.top : clip.left, high = steep ? clip.bottom : clip.right;
    Pixels pixels;
    for (std::int64_t u = std::max(low, a.x); u <= std::min(high - 1, b.x); ++u) {
        const Wide across = length == 0 ? 0 : (2 * rise * (u - a.x) + length) / (2 * length);
        const Wide v = b.y < a.y ? a.y - across : a.y + across;
        if (v >= (steep ? clip.left : clip.top) && v < (steep ? clip.right : clip.bottom)) {
            const auto major = static_cast<std::int32_t>(u), minor = static_cast<std::int32_t>(v);
            pixels.push_back(steep ? Pixel{minor, major} : Pixel{major, minor});
        }
    }
    return pixels;
}

// What a random session has put over the model.
struct Band {
    bool onPane;
    std::vector<ModelLine> lines;
};

struct PlainPicture {
    std::vector<std::uint8_t> pixels = std::vector<std::uint8_t>(
        static_cast<std::size_t>(ViewFrame.width) * static_cast<std::size_t>(ViewFrame.height),
        COLOUR_BACKGROUND);

    std::uint8_t& At(const Pixel& p) {
        return pixels[static_cast<std::size_t>(p.second) * static_cast<std::size_t>(ViewFrame.width) +
                      static_cast<std::size_t>(p.first)];
    }
    void Set(const Pixels& all, std::uint8_t colour) {
        for (const Pixel& p : all) {
            At(p) = colour;
        }
    }
    static PixelRect Clip(int view) { return Intersection(Views[view].Rect(), ViewFrame.Bounds()); }
    static bool IsShown(int view) { return (VisibleViews >> view & 1) != 0; }

    // ---- projection ----

    static int Right(int view) { return view == 1 ? 1 : 0; }
    static int Up(int view) { return view == 0 ? 1 : 2; }
    static std::int64_t Scaled(std::int64_t coordinate, int axis) {
        const std::int64_t centre[3] = {ViewState.centre.x, ViewState.centre.y, ViewState.centre.z};
        const Wide pixels = Wide{coordinate - centre[axis]} * ViewState.numerator / ViewState.denominator;
        return static_cast<std::int64_t>(std::clamp<Wide>(pixels, -PANE_MOST, PANE_MOST));
    }
    static PanePoint Flat(const Triple& p, int view) {
        return {Views[view].centreX + Scaled(p[static_cast<std::size_t>(Right(view))], Right(view)),
                Views[view].centreY - Scaled(p[static_cast<std::size_t>(Up(view))], Up(view))};
    }
    static Triple Converted(std::int64_t x, std::int64_t y, std::int64_t z) {
        Triple result{x, y, z};
        const auto wrapped = [](std::int64_t value) { return static_cast<std::int32_t>(value); };
        for (std::size_t i = 0; ViewState.converting && i < 3; ++i) {
            const auto& m = ViewState.conversion;
            const std::int64_t sum = wrapped(x * m.element[0][i] + y * m.element[1][i] + z * m.element[2][i]);
            result[i] = wrapped((sum >> 16) + m.translation[i]);
        }
        return result;
    }
    static EyePoint Eye(const Triple& p) {
        const auto& m = ViewState.perspective.row;
        const auto part = [&](int i) {
            return static_cast<double>(p[0]) * double{m[0][i]} + static_cast<double>(p[1]) * double{m[1][i]} +
                   static_cast<double>(p[2]) * double{m[2][i]} + double{m[3][i]};
        };
        return {part(0), part(1), part(2)};
    }
    static PanePoint OnScreen(const EyePoint& eye) {
        constexpr auto MOST = static_cast<double>(PANE_MOST);
        const auto pixels = [&](double across) {
            const double far = across * ViewState.focalDistance / eye.x;
            return std::isnan(far) ? 0 : static_cast<std::int64_t>(std::clamp(far, -MOST, MOST));
        };
        return {Views[3].centreX - pixels(eye.y), Views[3].centreY - pixels(eye.z)};
    }
    static Pixels Segment(const Triple& from, const Triple& to, int view) {
        if (view < 3) {
            return PixelsOf(Flat(from, view), Flat(to, view), Clip(view));
        }
        EyePoint a = Eye(from), b = Eye(to);
        for (const double part : {a.x, a.y, a.z, b.x, b.y, b.z}) {
            if (!std::isfinite(part)) {
                return {};
            }
        }
        if (b.x < 1) {
            std::swap(a, b);
        }
        if (b.x < 1) {
            return {};
        }
        if (a.x < 1) {
            const double part = (1.0 - a.x) / (b.x - a.x);
            a = {1.0, a.y + (b.y - a.y) * part, a.z + (b.z - a.z) * part};
        }
        return PixelsOf(OnScreen(a), OnScreen(b), Clip(3));
    }

    // ---- the model ----

    void Outline(const PolygonRecord& polygon, int views, std::uint8_t colour, bool marked) {
        const auto vertices = polygon.Vertices();
        std::vector<Triple> points;
        points.reserve(vertices.size());
        for (const VertexRecord& v : vertices) {
            points.push_back(Converted(v.x, v.y, v.z));
        }
        for (int view = 0; view < VIEW_COUNT; ++view) {
            const bool shown = IsShown(view) && (views >> view & 1) != 0 &&
                               !(view == 3 && ViewState.frontOnly && !ViewFacesViewer(polygon));
            for (std::size_t i = 0; shown && i < points.size(); ++i) {
                Set(Segment(points[i], points[(i + 1) % points.size()], view), colour);
            }
            for (std::size_t i = 0; shown && marked && i < points.size(); ++i) {
                if (ViewState.visibleVertex > 0) {
                    Mark(points[i], view, colour);
                }
                if (ViewState.visibleVector != 0 && (polygon.type & POLY_SHADE) != 0) {
                    Vector(points[i], &vertices[i].nx, view);
                }
            }
            if (shown && marked && ViewState.visiblePolyVector != 0) {
                Triple middle{0, 0, 0};
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    for (const Triple& point : points) {
                        middle[axis] += point[axis];
                    }
                    middle[axis] /= polygon.vers;
                }
                Vector(middle, polygon.normal, view);
            }
        }
    }
    // A normal of length 256 is 20 pixels long.
    void Vector(const Triple& point, const std::int16_t* normal, int view) {
        const EyePoint eye = Eye(point);
        if (view == 3 && !(eye.x >= 1)) {
            return;
        }
        const auto turned = [&](int column) {
            const auto& m = ViewState.perspective.row;
            return normal[0] * double{m[0][column]} + normal[1] * double{m[1][column]} +
                   normal[2] * double{m[2][column]};
        };
        const auto steps = [](double part) {
            const double length = part * 20 / 256;
            return std::isnan(length)
                       ? 0
                       : static_cast<std::int64_t>(std::clamp(length, -268435456.0, 268435456.0));
        };
        const PanePoint at = view == 3 ? OnScreen(eye) : Flat(point, view);
        const std::int64_t right = steps(view == 3 ? -turned(1) : normal[Right(view)]);
        const std::int64_t up = steps(view == 3 ? turned(2) : normal[Up(view)]);
        Set(PixelsOf(at, {at.x + right, at.y - up}, Clip(view)), COLOUR_VECTOR);
    }
    void Mark(const Triple& point, int view, std::uint8_t colour) {
        const EyePoint eye = Eye(point);
        if (view == 3 && !(eye.x >= 1)) {
            return;
        }
        const PanePoint at = view == 3 ? OnScreen(eye) : Flat(point, view);
        for (std::int64_t row = at.y - 1; row <= at.y + 1; ++row) {
            Set(PixelsOf({at.x - 1, row}, {at.x + 1, row}, Clip(view)), colour);
        }
    }
    void Grid(int view) {
        const PixelRect r = Views[view].Rect();
        const PixelRect inner =
            Intersection({r.left + 12, r.top + 12, r.right - 12, r.bottom - 12}, ViewFrame.Bounds());
        for (int turn = 0; turn < 2 && !IsEmpty(inner); ++turn) {
            const int axis = turn == 0 ? Right(view) : Up(view);
            const std::int64_t middle = turn == 0 ? Views[view].centreX : Views[view].centreY;
            const std::int64_t low = turn == 0 ? inner.left : inner.top;
            const std::int64_t high = turn == 0 ? inner.right : inner.bottom;
            for (std::int64_t at = low; at < high; ++at) {
                if (HasGridLine(turn == 0 ? at - middle : middle - at, axis)) {
                    Set(turn == 0 ? PixelsOf({at, inner.top}, {at, inner.bottom - 1}, inner)
                                  : PixelsOf({inner.left, at}, {inner.right - 1, at}, inner),
                        COLOUR_GRID);
                }
            }
        }
    }
    // A multiple of the spacing lands so many pixels from the middle.
    static bool HasGridLine(std::int64_t pixels, int axis) {
        const std::int64_t centre[3] = {ViewState.centre.x, ViewState.centre.y, ViewState.centre.z};
        const auto floored = [](std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); };
        const std::int64_t far = std::abs(pixels), whole = ViewState.denominator, part = ViewState.numerator;
        std::int64_t least = (far * whole + part - 1) / part, most = ((far + 1) * whole - 1) / part;
        if (pixels == 0) {
            least = -most;
        } else if (pixels < 0) {
            least = -std::exchange(most, -least);
        }
        return floored(centre[axis] + most, ViewState.gridSpacing) >
               floored(centre[axis] + least - 1, ViewState.gridSpacing);
    }
    void Ground(int view) {
        const PixelRect c = Clip(view);
        for (std::int32_t y = c.top; y < c.bottom; ++y) {
            Set(PixelsOf({c.left, y}, {c.right - 1, y}, c), COLOUR_BACKGROUND);
        }
        const std::int64_t spacing = ViewState.gridSpacing;
        if (view < 3 && spacing > 0 &&
            spacing * ViewState.numerator > 2 * std::int64_t{ViewState.denominator}) {
            Grid(view);
        }
    }
    void Polygons(int views) {
        for (int pass = 0; pass < 3; ++pass) {
            for (PolygonRecord* p = PolygonTop(); p != nullptr; p = PolygonNext(p)) {
                const bool hidden = (p->flags & POLYGON_INVISIBLE) != 0;
                if (pass == 0 && hidden && ViewState.drawInvisible) {
                    Outline(*p, views, COLOUR_INVISIBLE, false);
                } else if (pass > 0 && !hidden && (p->select != 0) == (pass == 2)) {
                    Outline(*p, views,
                            pass == 2 ? std::uint8_t{COLOUR_SELECTED}
                                      : static_cast<std::uint8_t>(AttrTable[p->attr].code & 7),
                            true);
                }
            }
        }
    }
    // The perspective view comes last where it lies over others.
    void Model() {
        bool covers = false;
        for (int view = 0; view < 3; ++view) {
            const PixelRect shared = Intersection(Views[view].Rect(), Views[3].Rect());
            covers =
                covers || (IsShown(view) && IsShown(3) && !IsEmpty(shared) && shared.bottom - shared.top > 1);
        }
        for (int view = 0; view < VIEW_COUNT; ++view) {
            if (view == 3 && covers) {
                Polygons(WIN_ORTHOGRAPHIC);
            }
            if (IsShown(view)) {
                Ground(view);
            }
        }
        Polygons(covers ? WIN_PERS : WIN_ALL);
    }

    // ---- what lies over it ----

    void Turn(const std::set<Pixel>& all) {
        for (const Pixel& p : all) {
            At(p) ^= COLOUR_LINE;
        }
    }
    void Over(const Band& band) {
        const auto triple = [](const ModelPoint& p) { return Triple{p.x, p.y, p.z}; };
        for (int view = 0; view < (band.onPane ? 1 : VIEW_COUNT); ++view) {
            std::set<Pixel> all;
            for (const ModelLine& line : band.lines) {
                const Pixels some = band.onPane ? PixelsOf({line.from.x, line.from.y}, {line.to.x, line.to.y},
                                                           ViewFrame.Bounds())
                                    : IsShown(view) ? Segment(triple(line.from), triple(line.to), view)
                                                    : Pixels{};
                all.insert(some.begin(), some.end());
            }
            Turn(all);
        }
    }
    void Cursor() {
        const ModelPoint c = CursorPosition();
        const Triple point = Converted(c.x, c.y, c.z);
        for (int view = 0; view < 3; ++view) {
            const PixelRect clip = Clip(view);
            const PanePoint at = Flat(point, view);
            for (const Pixels& line : {PixelsOf({clip.left, at.y}, {clip.right - 1, at.y}, clip),
                                       PixelsOf({at.x, clip.top}, {at.x, clip.bottom - 1}, clip)}) {
                if (IsShown(view) && !IsEmpty(clip)) {
                    Turn({line.begin(), line.end()});
                }
            }
        }
        const EyePoint eye = Eye(point);
        std::set<Pixel> cross;
        for (int axis = 0; axis < 3; ++axis) {
            const auto arm = [](float part) {
                return std::isnan(part) ? 0 : static_cast<std::int64_t>(std::clamp(part, -1.0F, 1.0F) * -8);
            };
            const std::int64_t dx = arm(ViewState.perspective.row[axis][1]);
            const std::int64_t dy = arm(ViewState.perspective.row[axis][2]);
            const PanePoint at = OnScreen(eye);
            const Pixels line = PixelsOf({at.x - dx, at.y - dy}, {at.x + dx, at.y + dy}, Clip(3));
            cross.insert(line.begin(), line.end());
        }
        if (IsShown(3) && eye.x >= 1) {
            Turn(cross);
        }
    }
};

class Drawing : public ScriptTest {
  protected:
    std::mt19937 random{11};
    bool wild = false;

    void SetUp() override {
        ScriptTest::SetUp();
        InterpreterInit(sizes);
        MatrixLibraryRegister();
        PolygonRegister();
        ViewInit();
    }
    void TearDown() override {
        ViewExit();
        ModelExit();
        ScriptTest::TearDown();
    }

    int Below(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    int Within(int most) { return Below(2 * most + 1) - most; }
    std::int32_t Number() {
        static constexpr std::int32_t EXTREMES[] = {0,           1,     -1,     2147483647, -2147483647 - 1,
                                                    -2147483647, 32767, -32768, 1 << 20,    65536};
        return wild && Below(3) == 0 ? EXTREMES[Below(static_cast<int>(std::size(EXTREMES)))] : Within(300);
    }
    std::int16_t Coordinate() {
        return static_cast<std::int16_t>(wild && Below(6) == 0 ? (Below(2) == 0 ? VERTEX_MAX : VERTEX_MIN)
                                                               : Within(Below(3) == 0 ? 300 : 60));
    }
    float Element() {
        static constexpr float EXTREMES[] = {std::numeric_limits<float>::infinity(),
                                             -std::numeric_limits<float>::infinity(),
                                             std::numeric_limits<float>::quiet_NaN(),
                                             1e30F,
                                             -1e30F,
                                             1e-30F,
                                             0,
                                             40000};
        return wild && Below(8) == 0 ? EXTREMES[Below(8)] : static_cast<float>(Within(1024)) / 1024;
    }
    Matrix AnyMatrix(float distance) {
        Matrix matrix = UNIT_MATRIX;
        for (auto& row : matrix.row) {
            for (float& element : row) {
                element = Element();
            }
        }
        matrix.row[3][0] += distance;
        return matrix;
    }
    // A model in small views; every other one has extremes.
    void BeginRound(int round) {
        wild = round % 2 == 1;
        MakeModel();
        ViewInit();
        ViewLayout(1 + Below(120), 1 + Below(120), 16);
        ViewEnableDrawing(true);
    }
    void MakeModel() {
        ModelExit();
        ModelInit(1 << 16, 8, 8, 20);
        for (const char* name : {"a", "b", "c"}) {
            AttrTable[AttrAlloc(name)].code = static_cast<std::uint16_t>(Below(8));
        }
        for (int count = Below(8); count > 0; --count) {
            CurrentPolygon->vers = static_cast<std::int16_t>(1 + Below(7));
            CurrentPolygon->attr = static_cast<std::int16_t>(Below(3));
            CurrentPolygon->flags = Below(5) == 0 ? POLYGON_INVISIBLE : 0;
            CurrentPolygon->type = static_cast<std::uint16_t>(Below(2) == 0 ? POLY_SHADE : 0);
            for (VertexRecord& v : CurrentPolygon->Vertices()) {
                v = {
                    Coordinate(), Coordinate(), Coordinate(), Coordinate(), Coordinate(), Coordinate(), 0, 0};
            }
            PolygonAppend(static_cast<std::int16_t>(Below(3) == 0));
        }
    }
    void ChangeSetting() {
        const OverlayPause pause;
        switch (Below(8)) {
            case 0:
                ViewState.centre = {Number(), Number(), Number()};
                break;
            case 1:
                ViewSetZoom(Below(2) == 0 ? Within(9) : Number(), 0);
                break;
            case 2:
                ViewState.gridSpacing = wild ? Number() : Below(40);
                break;
            case 3:
                ViewSetPerspective(AnyMatrix(static_cast<float>(Below(3) * 200 + 1)));
                break;
            case 4:
                ViewSetAngle(1 + Below(179));
                break;
            case 5:
                if (Below(3) == 0) {
                    ViewSetConversion(AnyMatrix(0));
                }
                break;
            case 6:
                ViewState.visibleVertex = Below(2);
                ViewState.drawInvisible = Below(2) == 0;
                ViewState.frontOnly = Below(2) == 0;
                ViewState.visibleVector = Below(2);
                ViewState.visiblePolyVector = Below(2);
                break;
            default:
                ViewSetMask(Below(2) == 0 ? WIN_ALL : wild && Below(3) == 0 ? Number() : Below(16));
                break;
        }
    }
    Band AnyBand() {
        Band band{Below(3) == 0, {}};
        for (int count = 1 + Below(4); count > 0; --count) {
            band.lines.push_back({{Number(), Number(), Number()}, {Number(), Number(), Number()}});
        }
        return band;
    }
    static void Toggle(const Band& band) {
        band.onPane ? OverlayPaneLines(band.lines) : OverlayModelLines(band.lines, LINE_XOR);
    }
    // The frame's own pixels; what lies behind the end of a row is never touched.
    static std::vector<std::uint8_t> Shown() {
        std::vector<std::uint8_t> pixels;
        for (std::int32_t y = 0; y < ViewFrame.height; ++y) {
            const std::uint8_t* row = ViewFrame.Row(y);
            pixels.insert(pixels.end(), row, row + ViewFrame.width);
            EXPECT_TRUE(std::all_of(row + ViewFrame.width, row + ViewFrame.stride,
                                    [](std::uint8_t pixel) { return pixel == 0; }));
        }
        return pixels;
    }
    void Compare(int rounds, int extent);
    void DrawIntoThePicture();
};

void Drawing::Compare(int rounds, int extent) {
    for (int round = 0; round < rounds; ++round) {
        MakeModel();
        ViewInit();
        ViewLayout(1 + Below(extent), 1 + Below(extent), 16);
        ViewEnableDrawing(true);
        std::vector<Band> bands;
        for (int step = Below(10); step > 0; --step) {
            if (Below(6) == 0) {
                ViewLayout(1 + Below(extent), 1 + Below(extent), 16);
            }
            ChangeSetting();
            if (Below(3) == 0) {
                bands.push_back(AnyBand());
                Toggle(bands.back());
            } else if (Below(4) == 0 && !bands.empty()) {
                Toggle(bands.back());
                bands.pop_back();
            }
            CursorShow(Below(2) == 0);
            CursorMove({Number(), Number(), Number()});
            ViewRedraw({Below(extent), Below(extent), Below(extent), Below(extent)}, Below(2) == 0);
        }
        ViewSetMask(VisibleViews);
        PlainPicture plain;
        plain.Model();
        std::ranges::for_each(bands, [&](const Band& band) { plain.Over(band); });
        if (CursorShown()) {
            plain.Cursor();
        }
        const auto shown = Shown();
        for (std::size_t i = 0; i < shown.size(); ++i) {
            ASSERT_EQ(int{shown[i]}, int{plain.pixels[i]})
                << "round " << round << ": " << i % static_cast<std::size_t>(ViewFrame.width) << " "
                << i / static_cast<std::size_t>(ViewFrame.width) << " of " << ViewFrame.width << " x "
                << ViewFrame.height;
        }
    }
}

TEST_F(Drawing, EveryPixelIsThatOfAPlainPicture) {
    Compare(250, 160);
}

TEST_F(Drawing, ExtremesAreDrawnLikeAPlainPicture) {
    wild = true;
    Compare(500, 90);
}

TEST_F(Drawing, BandsDrawnTwiceAndTheHiddenCursorLeaveNoTrace) {
    for (int round = 0; round < 300; ++round) {
        BeginRound(round);
        std::vector<Band> bands;
        CursorShow(true);
        for (int step = 0; step < 8; ++step) {
            bands.push_back(AnyBand());
            Toggle(bands.back());
            ChangeSetting();
            CursorTrack(Below(120), Below(120));
        }
        ViewSetMask(VisibleViews);
        std::ranges::for_each(bands, Toggle);
        CursorShow(false);
        const auto left = Shown();
        ViewClear(false);
        ViewSetMask(VisibleViews);
        ASSERT_EQ(left, Shown()) << "round " << round;
    }
}

// Redraws of every kind, changes between them and what is drawn into the picture, but no overlay.
void Drawing::DrawIntoThePicture() {
    for (int step = 0; step < 12; ++step) {
        switch (Below(8)) {
            case 0:
                ChangeSetting();
                break;
            case 1:
                ViewLayout(1 + Below(120), 1 + Below(120), 16);
                break;
            case 2:
                OverlayModelLines(AnyBand().lines, LINE_OR);
                break;
            case 3:
                OverlayModelMarks({{Number(), Number(), Number()}}, LINE_OR);
                break;
            case 4:
                ViewDrawCurrent(false);
                break;
            case 5:
                ViewRedrawMask(Below(3) == 0 ? Number() : Below(16), Below(2) == 0);
                break;
            default:
                ViewRedraw({Below(120), Below(120), Below(160), Below(160)}, Below(2) == 0);
                break;
        }
    }
}

TEST_F(Drawing, BeneathBandsAndCursorThePictureIsTheSameAsWithoutThem) {
    for (int round = 0; round < 400; ++round) {
        std::vector<std::uint8_t> pictures[2];
        for (const bool covered : {false, true}) {
            random.seed(static_cast<unsigned>(round));
            BeginRound(round);
            const std::mt19937 before = random;
            const Band bands[] = {AnyBand(), AnyBand(), AnyBand()};
            if (covered) {
                CursorMove({Number(), Number(), Number()});
                CursorShow(true);
                std::ranges::for_each(bands, Toggle);
            }
            random = before;
            DrawIntoThePicture();
            if (round % 3 == 0) {
                ViewClear(false);
            } else if (covered) {
                std::ranges::for_each(bands, Toggle);
            }
            CursorShow(false);
            pictures[covered ? 1 : 0] = Shown();
        }
        ASSERT_TRUE(pictures[0] == pictures[1]) << "round " << round;
    }
}

TEST_F(Drawing, ARedrawOfAnAreaOrOfSomeViewsChangesTheViewsThatItMeetsAlone) {
    for (int round = 0; round < 300; ++round) {
        wild = round % 2 == 1;
        MakeModel();
        ViewInit();
        ViewLayout(60 + Below(60), 60 + Below(60), 16);
        ViewEnableDrawing(true);
        ChangeSetting();
        ViewSetMask(WIN_ALL);
        constexpr std::uint8_t NOTHING_DRAWS_THIS = 8;
        FillRect(ViewFrame, ViewFrame.Bounds(), NOTHING_DRAWS_THIS);
        const int left = Below(120), top = Below(120);
        const PixelRect area{left, top, left + 1 + Below(30), top + 1 + Below(30)};
        const bool byMask = round % 3 == 0;
        const std::int32_t mask = Below(4) == 0 ? Number() : Below(16);
        byMask ? ViewRedrawMask(mask, true) : ViewRedraw(area, true);
        const auto isRedrawn = [&](const ViewRecord& view) {
            return byMask ? (mask >> (&view - Views) & 1) != 0 : !IsEmpty(Intersection(area, view.Rect()));
        };
        for (std::int32_t y = 0; y < ViewFrame.height; ++y) {
            for (std::int32_t x = 0; x < ViewFrame.width; ++x) {
                const bool meets = std::ranges::any_of(Views, [&](const ViewRecord& view) {
                    return !IsEmpty(Intersection({x, y, x + 1, y + 1}, view.Rect())) && isRedrawn(view);
                });
                ASSERT_EQ(ViewFrame.Row(y)[x] == NOTHING_DRAWS_THIS, !meets)
                    << round << ": " << x << " " << y;
            }
        }
    }
}

// What the host is told of is all that a window has to show anew.
std::vector<PixelRect> told;
void Tell(const PixelRect& rect) {
    told.push_back(rect);
}

TEST_F(Drawing, NoPixelChangesOutsideTheRectanglesThatTheHostIsToldOf) {
    ViewSetDamageHook(Tell);
    for (int round = 0; round < 300; ++round) {
        BeginRound(round);
        for (int step = 0; step < 30; ++step) {
            auto expected = Shown();
            told.clear();
            const int change = Below(10);
            switch (change) {
                case 0:
                    ChangeSetting();
                    break;
                case 1:
                    Toggle(AnyBand());
                    break;
                case 2:
                    OverlayModelLines(AnyBand().lines, LINE_OR);
                    break;
                case 3:
                    OverlayModelMarks({{Number(), Number(), Number()}}, LINE_XOR);
                    break;
                case 4:
                    CursorShow(Below(2) == 0);
                    break;
                case 5:
                    CursorTrack(Below(120), Below(120));
                    break;
                case 6:
                    ViewClear(Below(2) == 0);
                    break;
                case 7:
                    ViewDrawCurrent(Below(2) == 0);
                    break;
                case 8:
                    ViewRedraw({Below(120), Below(120), Below(120), Below(120)}, Below(2) == 0);
                    break;
                default:
                    ViewRedrawMask(Below(16), Below(2) == 0);
                    break;
            }
            const auto now = Shown();
            for (const PixelRect& rect : told) {
                for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
                    for (std::int32_t x = rect.left; x < rect.right; ++x) {
                        const auto i = static_cast<std::size_t>(y * ViewFrame.width + x);
                        expected[i] = now[i];
                    }
                }
            }
            ASSERT_EQ(now, expected) << "round " << round << ", change " << change;
        }
    }
    ViewSetDamageHook(nullptr);
}

}  // namespace
}  // namespace quelmark::test
