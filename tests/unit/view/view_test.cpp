#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "MODEL/POLY.h"
#include "view/OVERLAY.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"
#include "view_fixture.h"

namespace quelmark::test {
namespace {

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
TEST_F(View3D, AnyNumberIsAZoom) {
    struct Row {
        std::int32_t zoom, step, numerator, denominator, moveStep;
    };
    constexpr std::int32_t MOST = 2147483647, LEAST = -MOST - 1;
    constexpr Row ROWS[] = {
        {0, 0, 1, 1, 10},          {1, 0, 1, 1, 10},
        {-1, 0, 1, 1, 10},         {3, 0, 3, 1, 3},
        {-3, 0, 1, 3, 30},         {10, 0, 10, 1, 1},
        {11, 0, 11, 1, 0},         {MOST, 0, MOST, 1, 0},
        {5, -2, 5, 1, -2},         {5, LEAST, 5, 1, LEAST},
        {-MOST, 0, 1, MOST, MOST}, {LEAST, 0, 1, MOST, MOST},
        {LEAST, 1, 1, MOST, 1},    {MOST, MOST, MOST, 1, MOST},
    };
    for (const Row& row : ROWS) {
        ViewSetZoom(row.zoom, row.step);
        EXPECT_EQ(ViewState.numerator, row.numerator) << row.zoom;
        EXPECT_EQ(ViewState.denominator, row.denominator) << row.zoom;
        EXPECT_EQ(ViewState.moveStep, row.moveStep) << row.zoom << " " << row.step;
    }
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
TEST_F(View3D, EveryWholeQuotientOfAReducingZoomHasItsPixel) {
    constexpr int PIXELS = 199;
    for (int divisor = 2; divisor * PIXELS <= VERTEX_MAX; ++divisor) {
        for (const int sign : {-1, 1}) {
            for (int k = 0; k <= PIXELS; ++k) {
                CurrentPolygon->vers = 1;
                CurrentPolygon->vertex[0] = {
                    static_cast<std::int16_t>(sign * k * divisor), 0, 0, 0, 0, 0, 0, 0};
                PolygonAppend(1);
            }
        }
        ViewSetZoom(-divisor, 0);
        ViewRedrawMask(WIN_XY, true);
        EXPECT_EQ(Count(COLOUR_SELECTED, WIN_XY), 2 * PIXELS + 1) << divisor;
        PolygonDelete();
    }
}
TEST_F(View3D, OnlyAFlagAboveNothingMarksVertices) {
    Triangle(5, 5, 5, 50, 0, 0, 0, 50, 0);
    ViewState.visiblePolyVector = 1;  // takes the path that marks
    ViewRedraw(WHOLE_AREA, true);
    const auto plain = ViewFrame.pixels;
    for (const std::int32_t flag : {-1, -2147483647 - 1}) {
        ViewState.visibleVertex = flag;
        ViewRedraw(WHOLE_AREA, true);
        EXPECT_EQ(ViewFrame.pixels, plain) << flag;
    }
    ViewState.visibleVertex = 2147483647;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_NE(ViewFrame.pixels, plain);
}
TEST_F(View3D, APolygonWithoutExtentIsOnePixel) {
    const auto pixels = [](int vertices) {
        for (int i = 0; i < vertices; ++i) {
            CurrentPolygon->vertex[i] = {100, 20, 30, 0, 0, 0, 0, 0};
        }
        CurrentPolygon->vers = static_cast<std::int16_t>(vertices);
        PolygonAppend(1);
        ViewRedraw(WHOLE_AREA, true);
        EXPECT_EQ(At({Views[0].centreX + 100, Views[0].centreY - 20}), COLOUR_SELECTED);
        EXPECT_EQ(At({Views[1].centreX + 20, Views[1].centreY - 30}), COLOUR_SELECTED);
        EXPECT_EQ(At({Views[2].centreX + 100, Views[2].centreY - 30}), COLOUR_SELECTED);
        // 495 pixels are the focal distance.
        EXPECT_EQ(At({Views[3].centreX - 99, Views[3].centreY - 148}), COLOUR_SELECTED);
        PolygonDelete();
        return std::ranges::count(ViewFrame.pixels, COLOUR_SELECTED);
    };
    for (const int vertices : {1, 2, 3, 4, 5, 100}) {
        EXPECT_EQ(pixels(vertices), 4) << vertices;
    }
}
TEST_F(View3D, WhatLiesAUnitBeforeTheEyeIsDrawnAndNothingNearer) {
    const auto row = [](int x0, int y0, int x1, int y1) {
        CurrentPolygon->vers = 2;
        CurrentPolygon->vertex[0] = {
            static_cast<std::int16_t>(x0), static_cast<std::int16_t>(y0), 0, 0, 0, 0, 0, 0};
        CurrentPolygon->vertex[1] = {
            static_cast<std::int16_t>(x1), static_cast<std::int16_t>(y1), 0, 0, 0, 0, 0, 0};
        PolygonAppend(1);
        ViewRedraw(WHOLE_AREA, true);
        PolygonDelete();
        return Count(COLOUR_SELECTED, WIN_PERS);
    };
    EXPECT_EQ(row(1, 0, 1, 0), 1);
    EXPECT_EQ(row(0, 0, 0, 0), 0);
    EXPECT_EQ(row(-1, 0, 0, 5), 0);
    EXPECT_EQ(row(0, 3, -32767, -5), 0);
    EXPECT_EQ(row(1, 0, 0, 0), 1);
    // From the middle to the left edge, and, from behind on the other side, to the right one.
    EXPECT_EQ(row(100, 0, -100, 50), Views[3].width / 2 + 1);
    EXPECT_EQ(At({Views[3].left, Views[3].centreY}), COLOUR_SELECTED);
    EXPECT_EQ(row(-100, -50, 100, 0), Views[3].left + Views[3].width - Views[3].centreX);
    EXPECT_EQ(At({Views[3].centreX - 1, Views[3].centreY}), COLOUR_BACKGROUND);
    EXPECT_EQ(row(32767, 0, -32767, 0), 1);
}
// Where a turn and a move carry to the origin: the move back, turned back.
std::array<double, 3> CarriedToTheOrigin(const Matrix& matrix, const std::array<double, 3>& origin) {
    std::array<double, 3> point{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            point[i] +=
                (origin[k] - static_cast<double>(matrix.row[3][k])) * static_cast<double>(matrix.row[i][k]);
        }
    }
    return point;
}

TEST_F(View3D, APolygonFacesTheEyeOnTheSideOfItsNormalUnderAnyConversion) {
    std::mt19937 random(12);
    std::uniform_int_distribution<int> place(-300, 300), axis(0, 2), degrees(0, 359);
    const auto any = [&](bool mirrored) {
        Matrix m = MatrixProduct(MatrixRotation(axis(random), degrees(random)),
                                 MatrixRotation(axis(random), degrees(random)));
        for (float& element : m.row[3]) {
            element = static_cast<float>(place(random));
        }
        for (int i = 0; mirrored && i < 3; ++i) {
            m.row[i][0] = -m.row[i][0];
        }
        return m;
    };
    int facing = 0;
    for (int round = 0; round < 2000; ++round) {
        ViewInit();
        const Matrix perspective = any(false), conversion = any(round % 3 == 0);
        std::array<double, 3> eye = CarriedToTheOrigin(perspective, {0, 0, 0});
        ViewSetPerspective(perspective);
        if (round % 2 == 0) {
            ViewSetConversion(conversion);
            eye = CarriedToTheOrigin(conversion, eye);
        }
        Triangle(place(random), place(random), place(random), place(random), place(random), place(random),
                 place(random), place(random), place(random), true);
        const PolygonRecord& polygon = *PolygonTop();
        const VertexRecord& v = polygon.vertex[1];
        const double side = (eye[0] - v.x) * polygon.normal[0] + (eye[1] - v.y) * polygon.normal[1] +
                            (eye[2] - v.z) * polygon.normal[2];
        if (std::abs(side) > 2000) {  // normals are rounded
            ASSERT_EQ(ViewFacesViewer(polygon), side > 0) << round;
            facing += side > 0 ? 1 : 0;
        }
        PolygonDelete();
    }
    EXPECT_GT(facing, 500);
}
TEST_F(View3D, APolygonSeenFromItsEdgeOrWithoutANormalFacesNobody) {
    const auto faces = [](int depth) {
        Triangle(100, 0, depth, 200, 50, depth, 200, -50, depth, true);
        const bool front = ViewFacesViewer(*PolygonTop());
        PolygonDelete();
        return front;
    };
    EXPECT_NE(faces(-1), faces(1));
    EXPECT_FALSE(faces(0));
    Triangle(100, 0, 0, 200, 0, 0, 300, 0, 0);
    EXPECT_FALSE(ViewFacesViewer(*PolygonTop()));
    ViewState.frontOnly = true;
    ViewRedraw(WHOLE_AREA, true);
    EXPECT_EQ(Count(7, WIN_PERS), 0);
    EXPECT_EQ(Count(7, WIN_XY), 100);  // to the edge of the view
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
TEST_F(View3D, PolygonsAreDrawnToTheLastPixelOfTheirViews) {
    std::mt19937 random(6);
    const auto within = [&](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(2 * most + 1)) - most;
    };
    for (int round = 0; round < 600; ++round) {
        ModelExit();
        ModelInit(1 << 20, 8, 8, 100);
        ViewState.centre = {within(300), within(300), within(300)};
        ViewSetZoom(round % 2 == 0 ? 1 + round % 120 : -1 - round % 40, 0);
        ViewRedrawMask(WIN_ORTHOGRAPHIC, true);
        FrameBuffer wanted = ViewFrame;
        for (int polygon = 0; polygon < 40; ++polygon) {
            // About a corner of the views, so that many a polygon has no more than a pixel in one.
            const int right = polygon % 2 == 0 ? 200 : -200, up = polygon % 4 < 2 ? 150 : -150;
            const auto near = [&](int pixels, std::int32_t centre) {
                const int most = std::max(3, 4 * ViewState.denominator / ViewState.numerator);
                return static_cast<std::int16_t>(
                    centre + pixels * ViewState.denominator / ViewState.numerator + within(most));
            };
            CurrentPolygon->vers = static_cast<std::int16_t>(1 + polygon % 6);
            CurrentPolygon->attr = -1;
            for (VertexRecord& v : CurrentPolygon->Vertices()) {
                v = {};
                v.x = near(right, ViewState.centre.x);
                v.y = near(polygon % 3 == 0 ? right : up, ViewState.centre.y);
                v.z = near(up, ViewState.centre.z);
            }
            const auto vertices = CurrentPolygon->Vertices();
            for (std::size_t i = 0; i < vertices.size(); ++i) {
                for (std::int32_t view = WIN_XY; view <= WIN_ZX; view <<= 1) {
                    DrawLine(wanted, Views[ViewIndex(view)].Rect(),
                             ViewProject(ViewConverted(vertices[i]), view),
                             ViewProject(ViewConverted(vertices[(i + 1) % vertices.size()]), view), 7);
                }
            }
            PolygonAppend(0);
        }
        ViewRedrawMask(WIN_ORTHOGRAPHIC, false);
        ASSERT_EQ(ViewFrame.pixels, wanted.pixels) << round;
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
