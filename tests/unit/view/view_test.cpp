#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <set>

#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/POLY.h"
#include "MODEL/SELECT.h"
#include "script_fixture.h"
#include "view/OVERLAY.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

// ---- lines ----

std::set<std::pair<int, int>> Pixels(const FrameBuffer& frame) {
    std::set<std::pair<int, int>> found;
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            if (frame.Row(y)[x] != 0) {
                found.insert({x, y});
            }
        }
    }
    return found;
}

TEST(Lines, AClippedLineHasThePixelsOfTheWholeLine) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> anywhere(0, 299);
    FrameBuffer whole, cut;
    for (int round = 0; round < 2000; ++round) {
        whole.Resize(300, 300);
        cut.Resize(300, 300);
        const PanePoint a{anywhere(random), anywhere(random)}, b{anywhere(random), anywhere(random)};
        int l = anywhere(random), r = anywhere(random), t = anywhere(random), u = anywhere(random);
        const PixelRect clip{std::min(l, r), std::min(t, u), std::max(l, r) + 1, std::max(t, u) + 1};
        DrawLine(whole, whole.Bounds(), a, b, 1);
        DrawLine(cut, clip, a, b, 1);
        auto wanted = Pixels(whole);
        std::erase_if(wanted, [&](const auto& p) {
            return p.first < clip.left || p.first >= clip.right || p.second < clip.top ||
                   p.second >= clip.bottom;
        });
        ASSERT_EQ(Pixels(cut), wanted);
    }
}
TEST(Lines, BothDirectionsGiveTheSamePixels) {
    std::mt19937 random(8);
    std::uniform_int_distribution<int> anywhere(-100, 200);
    FrameBuffer one, other;
    for (int round = 0; round < 2000; ++round) {
        one.Resize(100, 100);
        other.Resize(100, 100);
        const PanePoint a{anywhere(random), anywhere(random)}, b{anywhere(random), anywhere(random)};
        DrawLine(one, one.Bounds(), a, b, 1);
        DrawLine(other, other.Bounds(), b, a, 1, Ink::Xor);
        ASSERT_EQ(one.pixels, other.pixels);
    }
}
TEST(Lines, FarEndsStayInsideAndOnTheTrueLine) {
    FrameBuffer frame;
    frame.Resize(101, 101);
    const std::int64_t far = std::int64_t{1} << 47;
    DrawLine(frame, frame.Bounds(), {-far, -far}, {far, far}, 1);
    EXPECT_EQ(Pixels(frame).size(), 101U);
    EXPECT_EQ(frame.Row(50)[50], 1);
    EXPECT_EQ(frame.Row(100)[100], 1);
}

TEST(Lines, AQuadHasThePixelsOfItsFourLines) {
    std::mt19937 random(9);
    FrameBuffer quad, lines;
    quad.Resize(300, 300);
    lines.Resize(300, 300);
    for (int round = 0; round < 20000; ++round) {
        // From single pixels to corners far outside.
        const int size = 1 << round % 11;
        const int left = static_cast<int>(random() % 280), top = static_cast<int>(random() % 280);
        const auto near = [&](int from) {
            return from + static_cast<int>(random() % static_cast<unsigned>(size));
        };
        const Lanes x{near(left), near(left), near(left), near(left)};
        const Lanes y{near(top), near(top), near(top), near(top)};
        const PixelRect clip{round % 7 * 10, round % 5 * 10, 300 - round % 3 * 10, 300 - round % 11 * 5};
        const auto colour = static_cast<std::uint8_t>(1 + round % 15);
        DrawQuad(quad, clip, x, y, colour);
        for (int i = 0; i < 4; ++i) {
            const int next = (i + 1) % 4;
            DrawLine(lines, clip, {x[i], y[i]}, {x[next], y[next]}, colour);
        }
        ASSERT_EQ(quad.pixels, lines.pixels) << round;
    }
}
TEST(Lines, AQuadAcrossAWideFrameHasThePixelsOfItsFourLines) {
    FrameBuffer quad, lines;
    quad.Resize(16000, 20);
    lines.Resize(16000, 20);
    const Lanes x{3, 15990, 12000, 7}, y{1, 3, 19, 2};
    DrawQuad(quad, quad.Bounds(), x, y, 5);
    for (int i = 0; i < 4; ++i) {
        const int next = (i + 1) % 4;
        DrawLine(lines, lines.Bounds(), {x[i], y[i]}, {x[next], y[next]}, 5);
    }
    EXPECT_EQ(quad.pixels, lines.pixels);
}
// A frame of random pixels, a picture with room beside it, and the picture as it should become.
struct ExpandedFrame {
    FrameBuffer frame;
    FramePalette palette{};
    std::int32_t stride = 0;
    std::vector<std::uint32_t> picture, wanted;

    ExpandedFrame(std::mt19937& random, int width, int height) : stride(width + 3) {
        frame.Resize(width, height);
        for (std::uint8_t& pixel : frame.pixels) {
            pixel = static_cast<std::uint8_t>(random() % 16);
        }
        for (std::uint32_t& entry : palette) {
            entry = static_cast<std::uint32_t>(random()) | 1;
        }
        picture.assign(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height) + 1, 0);
        wanted = picture;
    }
    void ExpandPlainly(const PixelRect& area) {
        for (int y = area.top; y < area.bottom; ++y) {
            for (int x = area.left; x < area.right; ++x) {
                wanted[static_cast<std::size_t>(y * stride + x)] = palette[frame.Row(y)[x] & 15];
            }
        }
    }
};

int AnyWidth(std::mt19937& random) {
    constexpr int WIDTHS[] = {0, 1, 2, 15, 16, 17, 127, 128, 129, 255, 257};
    return random() % 2 == 0 ? WIDTHS[random() % std::size(WIDTHS)] : static_cast<int>(random() % 700);
}

TEST(Frame, ExpandsEveryPixelOfAnAreaAndNoOther) {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        const int width = AnyWidth(random), height = static_cast<int>(random() % 9);
        ExpandedFrame f(random, width, height);
        for (std::uint8_t& pixel : f.frame.pixels) {
            pixel |= static_cast<std::uint8_t>(random() % 16 << 4);  // only the lower four bits count
        }
        const auto within = [&random](int most) {
            return static_cast<int>(random() % (static_cast<unsigned>(most) + 1));
        };
        // Areas without width or height, and swapped ones, among them.
        const PixelRect area{within(width), within(height), within(width), within(height)};
        ExpandFrame(f.frame, area, f.palette, f.picture.data(), f.stride);
        f.ExpandPlainly(area);
        ASSERT_EQ(f.picture, f.wanted) << round;
    }
}
TEST(Frame, AChangedEntryIsSeenEverywhereAndPixelsOutsideItsRectangleStay) {
    std::mt19937 random(6);
    for (int round = 0; round < 2000; ++round) {
        ExpandedFrame f(random, AnyWidth(random), static_cast<int>(random() % 9));
        const auto entry = static_cast<std::uint8_t>(random() % 16);
        // From frames that are full of it to such that hold none.
        const unsigned rarity = 1U << random() % 12;
        std::int32_t count = 0;
        for (std::uint8_t& pixel : f.frame.pixels) {
            pixel = random() % rarity == 0 ? entry : static_cast<std::uint8_t>(entry ^ 1);
        }
        for (std::int32_t y = 0; y < f.frame.height; ++y) {
            count +=
                static_cast<std::int32_t>(std::count(f.frame.Row(y), f.frame.Row(y) + f.frame.width, entry));
        }
        f.ExpandPlainly(f.frame.Bounds());
        f.picture = f.wanted;
        f.palette[entry] ^= 0x00FF00FF;
        f.ExpandPlainly(f.frame.Bounds());
        const auto before = f.picture;
        const PixelRect changed = RecolourFrame(f.frame, entry, f.palette, f.picture.data(), f.stride);
        ASSERT_EQ(f.picture, f.wanted) << round;
        ASSERT_EQ(IsEmpty(changed), count == 0);
        for (std::size_t i = 0; i < before.size(); ++i) {
            const auto x = static_cast<std::int32_t>(i) % f.stride,
                       y = static_cast<std::int32_t>(i) / f.stride;
            const bool inside =
                x >= changed.left && x < changed.right && y >= changed.top && y < changed.bottom;
            ASSERT_TRUE(inside || f.picture[i] == before[i]) << round;
        }
    }
}
TEST(Frame, AChangedEntryLeavesAloneWhatLiesFarFromItsPixels) {
    FrameBuffer frame;
    frame.Resize(1000, 10);
    FramePalette palette{};
    palette[3] = 7;
    std::vector<std::uint32_t> picture(1000 * 10, 5);
    EXPECT_TRUE(IsEmpty(RecolourFrame(frame, 3, palette, picture.data(), 1000)));
    frame.Row(0)[999] = frame.Row(7)[5] = 3;
    const PixelRect changed = RecolourFrame(frame, 3, palette, picture.data(), 1000);
    EXPECT_EQ(changed.left, 5);
    EXPECT_EQ(changed.top, 0);
    EXPECT_EQ(changed.right, 1000);
    EXPECT_EQ(changed.bottom, 8);
    EXPECT_EQ(picture[999], 7U);
    EXPECT_EQ(picture[7005], 7U);
    EXPECT_EQ(picture[998], 5U);
    EXPECT_EQ(picture[7004], 5U);
    EXPECT_EQ(picture[7500], 5U);
}

class View3D : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        InterpreterInit(sizes);
        MatrixLibraryRegister();
        PolygonRegister();
        ModelInit(1 << 20, 8, 8, 100);
        ViewInit();
        ViewLayout(801, 622, 16);  // the status line takes 22
        ViewEnableDrawing(true);
        AttrAlloc("a");
        CursorShow(false);
        CursorMove({0, 0, 0});
    }
    void TearDown() override {
        CursorShow(false);
        ViewExit();
        ModelExit();
        ScriptTest::TearDown();
    }
    static void Triangle(int x0, int y0, int z0, int x1, int y1, int z1, int x2, int y2, int z2,
                         bool select = false) {
        CurrentPolygon->vers = 3;
        auto set = [](int i, int x, int y, int z) {
            CurrentPolygon->vertex[i] = {static_cast<std::int16_t>(x),
                                         static_cast<std::int16_t>(y),
                                         static_cast<std::int16_t>(z),
                                         0,
                                         0,
                                         0,
                                         0,
                                         0};
        };
        set(0, x0, y0, z0);
        set(1, x1, y1, z1);
        set(2, x2, y2, z2);
        PolygonAppend(select);
    }
    static int Count(std::uint8_t colour, std::int32_t view) {
        int count = 0;
        const PixelRect r = Views[ViewIndex(view)].Rect();
        for (int y = r.top; y < r.bottom; ++y) {
            count +=
                static_cast<int>(std::count(ViewFrame.Row(y) + r.left, ViewFrame.Row(y) + r.right, colour));
        }
        return count;
    }
    static std::uint8_t At(PanePoint p) { return ViewFrame.Row(static_cast<int>(p.y))[p.x]; }
};

TEST_F(View3D, AnOddWidthGivesTheRightViewsThePixelMore) {
    EXPECT_EQ(Views[0].width, 400);
    EXPECT_EQ(Views[2].width, 400);
    EXPECT_EQ(Views[3].width, 401);
    EXPECT_EQ(Views[1].width, 401);
    EXPECT_EQ(Views[1].left, 400);
    EXPECT_EQ(Views[0].height, 300);
}
TEST_F(View3D, AMaskOfTwoViewsKeepsTheRectangles) {
    const ViewRecord before = Views[1];
    ViewSetMask(WIN_XY | WIN_YZ);
    EXPECT_EQ(Views[1].left, before.left);
    EXPECT_EQ(Views[1].width, before.width);
    EXPECT_EQ(ViewAt(1, 1), WIN_XY);
    EXPECT_EQ(ViewAt(1, 599), 0);
}
TEST_F(View3D, ASingleViewTakesTheWholeArea) {
    ViewSetMask(WIN_ZX);
    EXPECT_EQ(Views[2].width, 801);
    EXPECT_EQ(Views[2].height, 600);
}
TEST_F(View3D, ReducingMakesTheMoveStepLarger) {
    ViewSetZoom(-4, 0);
    EXPECT_EQ(ViewState.moveStep, 40);
    EXPECT_EQ(ViewScaled(-7, 0), -1);
    ViewSetZoom(2, 0);
    EXPECT_EQ(ViewState.moveStep, 5);
    ViewSetZoom(0, 7);
    EXPECT_EQ(ViewState.moveStep, 7);
}
TEST_F(View3D, AnglesOutsideTheRangeChangeNothing) {
    EXPECT_EQ(ViewSetAngle(180), 45);
    EXPECT_EQ(ViewSetAngle(0), 45);
    EXPECT_EQ(ViewState.angle, 45);
    EXPECT_EQ(ViewSetAngle(60), 45);
    EXPECT_EQ(ViewState.angle, 60);
    EXPECT_EQ(ViewState.focalDistance, static_cast<int>(200 / std::tan(30 * 0.017453292519943278)));
}
TEST_F(View3D, OutlinesAreDrawnInTheAttributesColour) {
    AttrTable[0].code = 4;
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(At({200, 150}), 4);
    EXPECT_EQ(At({250, 150}), 4);
    EXPECT_EQ(At({200, 100}), 4);
    EXPECT_GT(Count(4, WIN_XY), 140);
}
TEST_F(View3D, APolygonWithoutAnAttributeIsWhite) {
    for (const std::int16_t attribute :
         {std::int16_t{-1}, std::int16_t{1}, std::int16_t{7}, std::int16_t{8}}) {
        CurrentPolygon->attr = attribute;
        Triangle(0, 0, 0, 60, 0, 0, 0, 60, 0);
        ViewRedraw(WHOLE_AREA, true);
        EXPECT_GT(Count(7, WIN_XY), 50) << attribute;
        PolygonTop()->select = 1;
        PolygonDelete();
    }
}
TEST_F(View3D, SelectedPolygonsLieOnTop) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0, true);
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0, false);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(Count(7, WIN_XY), 0);
    EXPECT_GT(Count(COLOUR_SELECTED, WIN_XY), 140);
}
TEST_F(View3D, InvisiblePolygonsAreDrawnOnRequest) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    PolygonTop()->flags = POLYGON_INVISIBLE;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(Count(COLOUR_INVISIBLE, WIN_XY), 0);
    ViewState.drawInvisible = true;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_GT(Count(COLOUR_INVISIBLE, WIN_XY), 140);
}
TEST_F(View3D, InvisiblePolygonsHaveNoMarks) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    PolygonTop()->flags = POLYGON_INVISIBLE;
    ViewState.drawInvisible = true;
    ViewRedraw(WHOLE_AREA, true);
    const auto plain = ViewFrame.pixels;
    ViewState.visibleVertex = ViewState.visiblePolyVector = 1;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(ViewFrame.pixels, plain);
    PolygonTop()->flags = 0;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(At({201, 151}), 7);
}
TEST_F(View3D, ARedrawWithoutClearingKeepsWhatIsThere) {
    ViewRedraw(WHOLE_AREA, true);
    ViewFrame.Row(5)[5] = 1;
    ViewRedraw(WHOLE_AREA, false);
    EXPECT_EQ(ViewFrame.Row(5)[5], 1);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(ViewFrame.Row(5)[5], COLOUR_BACKGROUND);
}
TEST_F(View3D, ARedrawOfOneViewsAreaLeavesTheOthers) {
    ViewRedraw(WHOLE_AREA, true);
    ViewFrame.Row(500)[500] = 1;
    ViewRedraw({0, 0, 10, 10}, true);
    EXPECT_EQ(ViewFrame.Row(500)[500], 1);
}
TEST_F(View3D, AGridOfTwoPixelsIsNotDrawn) {
    ViewState.gridSpacing = 16;
    ViewSetZoom(-8, 0);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(Count(COLOUR_GRID, WIN_XY), 0);
    ViewSetZoom(1, 0);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_GT(Count(COLOUR_GRID, WIN_XY), 1000);
    EXPECT_EQ(ViewFrame.Row(150)[11], COLOUR_BACKGROUND);
    EXPECT_EQ(ViewFrame.Row(150)[12], COLOUR_GRID);
}
TEST_F(View3D, DrawingALineTwiceRemovesIt) {
    ViewRedraw(WHOLE_AREA, true);
    const auto before = ViewFrame.pixels;
    const std::vector<ModelLine> line = {{{0, 0, 0}, {40, 30, 20}}};
    OverlayModelLines(line, LINE_XOR);
    EXPECT_NE(ViewFrame.pixels, before);
    ViewRedraw(WHOLE_AREA, true);  // keeps it
    EXPECT_NE(ViewFrame.pixels, before);
    OverlayModelLines(line, LINE_XOR);
    EXPECT_EQ(ViewFrame.pixels, before);
}
TEST_F(View3D, AFigureSeenEdgeOnDoesNotCancelItself) {
    ViewRedraw(WHOLE_AREA, true);
    const auto before = ViewFrame.pixels;
    const std::vector<ModelLine> figure = {
        {{0, 0, 0}, {40, 10, 0}}, {{40, 10, 0}, {10, 30, 0}}, {{10, 30, 0}, {0, 0, 0}}};
    OverlayModelLines(figure, LINE_XOR);
    for (int x = 0; x <= 40; ++x) {
        EXPECT_EQ(At({Views[2].centreX + x, Views[2].centreY}), COLOUR_BACKGROUND ^ COLOUR_LINE);
    }
    EXPECT_EQ(At({Views[0].centreX, Views[0].centreY}), COLOUR_BACKGROUND ^ COLOUR_LINE);  // a closed corner
    OverlayModelLines(figure, LINE_XOR);
    EXPECT_EQ(ViewFrame.pixels, before);
}
TEST_F(View3D, ALineOnThePaneHasNoGapsBetweenTheViews) {
    ViewLayout(801, 623, 16);  // 601 rows: the right views share one, the left ones leave one over
    ViewSetMask(WIN_ALL);
    for (const std::int32_t x : {100, 500}) {
        OverlayPaneLines({{{x, 0, 0}, {x, 622, 0}}});
        for (int y = 0; y <= 622; ++y) {
            EXPECT_EQ(At({x, y}), COLOUR_BACKGROUND ^ COLOUR_LINE) << x << " " << y;
        }
    }
    ViewSetMask(WIN_XY | WIN_PERS);
    EXPECT_EQ(At({100, 450}), COLOUR_BACKGROUND ^ COLOUR_LINE);
    ViewClear(false);
    EXPECT_EQ(std::ranges::count(ViewFrame.pixels, COLOUR_BACKGROUND), 801 * 623);
}
TEST_F(View3D, ATextStaysUntilItsViewIsCleared) {
    const auto add = [](std::int32_t views, std::int32_t left, const char* text) {
        ViewTextAdd({views, {0, 0, 801, 600}, {left, 10, left + 40, 26}, text, COLOUR_LINE});
    };
    add(WIN_XY, 5, "a");
    add(WIN_PERS, 405, "b");
    add(0, 200, "c");
    add(WIN_XY, 801, "outside");
    add(WIN_XY, -40, "outside");
    ASSERT_EQ(ViewTexts().size(), 3U);
    ViewRedraw(WHOLE_AREA, false);
    EXPECT_EQ(ViewTexts().size(), 3U);
    ViewRedrawMask(WIN_XY, true);
    ASSERT_EQ(ViewTexts().size(), 1U);
    EXPECT_EQ(ViewTexts()[0].text, "b");
    ViewClear(false);
    EXPECT_TRUE(ViewTexts().empty());
}
TEST_F(View3D, OnlyTheLastTextsAreKept) {
    for (int i = 0; i < 1100; ++i) {
        ViewTextAdd({0, {0, 0, 801, 600}, {0, 0, 9, 9}, std::to_string(i), COLOUR_LINE});
    }
    EXPECT_EQ(ViewTexts().size(), 1024U);
    EXPECT_EQ(ViewTexts().back().text, "1099");
    ViewSetMask(WIN_XY);
    EXPECT_TRUE(ViewTexts().empty());
}
TEST_F(View3D, ATitleStaysInTheCornerOfItsViewWhateverIsRedrawn) {
    ViewTitleSet(WIN_YZ | WIN_PERS, "right", 40, 16, COLOUR_LINE);
    ViewTitleSet(WIN_XY, "upper", 40, 16, 3);
    const auto corner = [](const ViewText& title, int view) {
        return title.place.left == Views[view].left + 3 && title.place.top == Views[view].top;
    };
    ViewRedraw(WHOLE_AREA, true);
    ViewClear(true);
    auto titles = ViewTitles();
    ASSERT_EQ(titles.size(), 3U);
    EXPECT_TRUE(titles[0].text == "upper" && titles[0].colour == 3 && corner(titles[0], 0));
    EXPECT_TRUE(titles[1].text == "right" && corner(titles[1], 1));
    EXPECT_TRUE(titles[2].text == "right" && corner(titles[2], 3));
    ViewSetMask(WIN_PERS);
    titles = ViewTitles();
    ASSERT_EQ(titles.size(), 1U);
    EXPECT_TRUE(corner(titles[0], 3));
    ViewTitleSet(WIN_PERS, "", 0, 0, COLOUR_LINE);
    EXPECT_TRUE(ViewTitles().empty());
    ViewSetMask(WIN_ALL);
    EXPECT_EQ(ViewTitles().size(), 2U);
}
TEST_F(View3D, TheCursorComesAndGoesWithoutATrace) {
    ViewRedraw(WHOLE_AREA, true);
    const auto before = ViewFrame.pixels;
    CursorShow(true);
    CursorMove({10, 20, 30});
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(At({210, 5}), COLOUR_BACKGROUND ^ COLOUR_LINE);
    CursorShow(false);
    EXPECT_EQ(ViewFrame.pixels, before);
}
// What the host was told to show anew, in pixels.
std::int64_t toldPixels = 0;

TEST_F(View3D, ATrackedCursorShowsAnewItsLinesAloneInEveryView) {
    Triangle(0, 0, 0, 100, 0, 0, 0, 100, 0, true);
    ViewRedraw(WHOLE_AREA, true);
    // A polygon that was taken away since the redraw stays in the picture: nothing but the cursor is drawn.
    PolygonDelete();
    const int outline = Count(COLOUR_SELECTED, WIN_XY);
    ASSERT_GE(outline, 300);
    CursorShow(true);
    ViewSetDamageHook([](const PixelRect& rect) {
        toldPixels += std::int64_t{rect.right - rect.left} * (rect.bottom - rect.top);
    });
    constexpr PanePoint POINTERS[] = {{50, 20}, {700, 400}, {30, 500}, {700, 50}};  // one a view
    for (const PanePoint& at : POINTERS) {
        toldPixels = 0;
        ASSERT_TRUE(CursorTrack(static_cast<std::int32_t>(at.x), static_cast<std::int32_t>(at.y)));
        // Three pixels beside each of two crosses over each orthographic view, and the two small ones.
        EXPECT_LE(toldPixels, 2 * (3 * 3 * (401 + 301) + 19 * 19));
    }
    ViewSetDamageHook(nullptr);
    CursorShow(false);
    EXPECT_EQ(Count(COLOUR_SELECTED, WIN_XY), outline);
}
TEST_F(View3D, ATrackedCursorKeepsTheThirdCoordinateAndSnaps) {
    CursorMove({1, 2, 33});
    ViewState.gridSnap = 10;
    EXPECT_TRUE(CursorTrack(200 + 14, 150 - 26));
    EXPECT_EQ(CursorPosition(), (ModelPoint{10, 30, 33}));
}
TEST_F(View3D, ThePerspectiveViewProjectsAndClipsAtTheEye) {
    Triangle(100, 10, 0, 100, -10, 0, 100, 0, 10);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_GT(Count(7, WIN_PERS), 50);
    Triangle(-100, 0, 0, -50, 10, 0, -70, 0, 10);  // behind the eye
    const int before = Count(7, WIN_PERS);
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(Count(7, WIN_PERS), before);
}
TEST_F(View3D, APickFindsTheNearestOutline) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    Triangle(0, 0, 0, -50, 0, 0, 0, -50, 0);
    EXPECT_EQ(ViewPick(200 + 30, 150 + 2, 12), PolygonTop());
    EXPECT_EQ(ViewPick(200 + 120, 150 - 120, 12), nullptr);
}
// Pixels from a pane point to where a vertex is drawn; nothing for one behind the eye.
std::optional<double> PixelsTo(std::int32_t x, std::int32_t y, const VertexRecord& vertex) {
    const std::int32_t view = ViewAt(x, y);
    const ModelPoint point = ViewConverted(vertex);
    if (view == WIN_PERS && ViewToEye(point).x < 1) {
        return std::nullopt;
    }
    const PanePoint at = view == WIN_PERS ? ViewProjectEye(ViewToEye(point)) : ViewProject(point, view);
    return std::hypot(static_cast<double>(at.x - x), static_cast<double>(at.y - y));
}

TEST_F(View3D, APickedVertexAndEdgeAreTheNearestOnTheScreen) {
    std::mt19937 random(22);
    std::uniform_int_distribution<int> place(-300, 300), across(0, 800), down(0, 560), coin(0, 1);
    for (int i = 0; i < 300; ++i) {
        Triangle(place(random) + 400, place(random), place(random), place(random), place(random),
                 place(random), place(random), place(random), place(random));
    }
    for (int round = 0; round < 400; ++round) {
        SelectCount = 0;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            polygon->select = static_cast<std::int16_t>(round % 2 == 1 && coin(random) != 0);
            polygon->flags = static_cast<std::uint16_t>(polygon->select == 0 && coin(random) != 0);
            SelectCount += polygon->select;
        }
        ViewState.frontOnly = round % 3 == 0;
        ViewSetZoom(round % 5 - 2, 0);
        if (round == 200) {
            ViewSetConversion(MatrixRotation(2, 30));
        }
        const std::int32_t x = across(random), y = down(random);
        const bool isPers = ViewAt(x, y) == WIN_PERS;
        double nearest = 1e30;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            if ((polygon->flags & POLYGON_INVISIBLE) != 0 || (SelectCount > 0 && polygon->select == 0) ||
                (isPers && ViewState.frontOnly && !ViewFacesViewer(*polygon))) {
                continue;
            }
            for (const VertexRecord& vertex : polygon->Vertices()) {
                nearest = std::min(nearest, PixelsTo(x, y, vertex).value_or(1e30));
            }
        }
        VertexRecord vertex{}, ends[2]{};
        ASSERT_TRUE(ViewPickVertex(x, y, vertex)) << round;
        EXPECT_NEAR(*PixelsTo(x, y, vertex), nearest, 2.5) << round;
        ASSERT_TRUE(ViewPickEdge(x, y, ends[0], ends[1])) << round;
        // No farther than the nearest vertex in front of the eye, unless its edges go behind it.
        if (!isPers) {
            const PanePoint a = ViewProject(ViewConverted(ends[0]), ViewAt(x, y));
            const PanePoint b = ViewProject(ViewConverted(ends[1]), ViewAt(x, y));
            const double ax = static_cast<double>(a.x - x), ay = static_cast<double>(a.y - y);
            const double dx = static_cast<double>(b.x - a.x), dy = static_cast<double>(b.y - a.y);
            const double part = std::clamp(-(ax * dx + ay * dy) / (dx * dx + dy * dy), 0.0, 1.0);
            EXPECT_LT(std::hypot(ax + part * dx, ay + part * dy), nearest + 2.5) << round;
        }
    }
}
TEST_F(View3D, OfVerticesInOnePlaceTheNearestToTheViewerIsPicked) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    Triangle(0, 0, 40, 50, 0, 40, 0, 50, 40);
    Triangle(0, 0, -40, 50, 0, -40, 0, 50, -40);
    SelectAll(false, SELECT_UPDATE);
    VertexRecord vertex{}, ends[2]{};
    ASSERT_TRUE(ViewPickVertex(200 + 48, 150, vertex));
    EXPECT_EQ(vertex.x, 50);
    EXPECT_EQ(vertex.z, 40);
    ASSERT_TRUE(ViewPickEdge(200 + 25, 150 + 3, ends[0], ends[1]));
    EXPECT_EQ(ends[0].z, 40);
    EXPECT_EQ(ends[1].z, 40);
    EXPECT_EQ(ends[0].x + ends[1].x, 50);
    EXPECT_EQ(ends[0].y + ends[1].y, 0);
}
TEST_F(View3D, NothingIsPickedFromAnEmptyModelOrOutsideTheViews) {
    VertexRecord vertex{}, ends[2]{};
    EXPECT_FALSE(ViewPickVertex(200, 150, vertex));
    EXPECT_FALSE(ViewPickEdge(200, 150, ends[0], ends[1]));
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    EXPECT_FALSE(ViewPickVertex(-5, 150, vertex));
    EXPECT_FALSE(ViewPickEdge(200, 5000, ends[0], ends[1]));
}
TEST_F(View3D, ACornerGivenTwiceChangesNoPixel) {
    std::mt19937 random(4);
    const auto within = [&](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(2 * most + 1)) - most;
    };
    for (int round = 0; round < 200; ++round) {
        ViewState.centre = {within(300), within(300), within(300)};
        const int zoom = round % 4 == 0 ? 1 + round % 120 : -1 - round % 40;
        ViewSetZoom(zoom, 0);
        Matrix m = UNIT_MATRIX;
        for (auto& row : m.row) {
            for (float& element : row) {
                element = static_cast<float>(within(1000)) / 1000;
            }
        }
        m.row[3][0] = static_cast<float>(within(9000));
        ViewSetPerspective(m);
        std::vector<std::array<VertexRecord, 4>> quads(30);
        for (auto& quad : quads) {
            const int size = 1 + static_cast<int>(random() % 3000);
            for (VertexRecord& v : quad) {
                v = {};
                v.x = static_cast<std::int16_t>(within(size));
                v.y = static_cast<std::int16_t>(within(size) + 100);
                v.z = static_cast<std::int16_t>(within(size));
            }
        }
        const auto picture = [&](int vertices) {
            ModelExit();
            ModelInit(1 << 20, 8, 8, 100);
            AttrAlloc("a");
            for (const auto& quad : quads) {
                CurrentPolygon->vers = static_cast<std::int16_t>(vertices);
                for (int i = 0; i < vertices; ++i) {
                    CurrentPolygon->vertex[i] = quad[static_cast<std::size_t>(std::min(i, 3))];
                }
                PolygonAppend(0);
            }
            ViewRedraw(WHOLE_AREA, true);
            return ViewFrame.pixels;
        };
        ASSERT_EQ(picture(4), picture(5)) << round;
    }
}
TEST_F(View3D, ExtremesNeverLeaveTheFrame) {
    std::mt19937 random(3);
    const std::int32_t values[] = {0, 1, -1, 5, -7, 300, -300, 2147483647, -2147483647 - 1, 1 << 20};
    const auto pick = [&] { return values[random() % std::size(values)]; };
    Triangle(32767, -32767, 0, -32767, 32767, 32767, 1, 1, 1);
    Triangle(0, 0, 0, 0, 0, 0, 0, 0, 0, true);
    ViewState.visibleVertex = ViewState.visibleVector = ViewState.visiblePolyVector = 1;
    for (int round = 0; round < 300; ++round) {
        ViewLayout(static_cast<int>(random() % 40), static_cast<int>(random() % 60), 16);
        ViewSetZoom(pick(), pick());
        ViewState.centre = {pick(), pick(), pick()};
        Matrix m = UNIT_MATRIX;
        m.row[random() % 4][random() % 3] = round % 3 == 0   ? std::numeric_limits<float>::infinity()
                                            : round % 3 == 1 ? static_cast<float>(pick())
                                                             : 0.0F;
        ViewSetPerspective(m);
        if (round % 5 == 0) {
            ViewSetConversion(m);
        }
        CursorShow(true);
        CursorMove({pick(), pick(), pick()});
        ViewState.gridSnap = pick();
        CursorTrack(5, 5);
        OverlayModelLines({{{pick(), pick(), pick()}, {pick(), pick(), pick()}}}, LINE_XOR);
        ViewRedraw(WHOLE_AREA, true);
        OverlayReset();
    }
    SUCCEED();
}

}  // namespace
}  // namespace quelmark::test
