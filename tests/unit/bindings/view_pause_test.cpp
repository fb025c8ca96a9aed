// What the view functions do to the picture beneath the cursor and the rubber bands, and where these stand
// afterwards.
#include <vector>

#include "MODEL/MDLINIT.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

// Every function that changes a setting or draws, under each name.
constexpr const char* CHANGES[] = {
    "SetCenter(Vertex(15, -20, 30));",
    "Center(vector(-15.5, 20, 1000000));",
    "SetZoom(3);",
    "SetZoom(-2, 5);",
    "UNIT_MATRIX.move(20, 10, 15).rot(AXISZ, 30).SetConv();",
    "UNIT_MATRIX.scale(0, 0, 0).SetConv();",
    "UNIT_MATRIX.move(200, 10, -5).rot(AXISY, 20).SetPers();",
    "UNIT_MATRIX.scale(0, 1, 1).SetPers();",
    "PersAngle(70);",
    "PersAngle(1);",
    "Window(WIN_PERS);",
    "SetWindow(WIN_XY | WIN_ZX);",
    "Window(0);",
    "Window(-1);",
    "SetWindow(WIN_ZX); Window(7);",
    "SetGrid(25, 10);",
    "SetGrid(7, 7); Update(CLEAR);",
    "Update(OVERWRITE);",
    "Update(CLEAR, WIN_YZ);",
    "Update(OVERWRITE, WIN_XY | WIN_PERS);",
    "UpdatePers(CLEAR);",
    "UpdatePers(OVERWRITE);",
    "DrawCurrent();",
    "DrawLine(Vertex(-30, -30, 5), Vertex(60, 40, 9), LINE_OR);",
    "VertexSelect().DrawVertex(LINE_OR);",
    "EdgeSelect().DrawEdge(LINE_OR);",
    "VisibleVertex(1); VisibleVector(1); VisiblePolyVector(1); Update(CLEAR);",
    "DrawFrontOnly(1); DrawInvisible(1); Update(CLEAR);",
};

constexpr const char* BANDS =
    "DrawLine(Vertex(-80, -30, -30), Vertex(70, 30, 20)); DrawBox(Vertex(-75, -55, -45), Vertex(150, 25, "
    "15));"
    "DrawLine2D(0, 3, 400, 260); DrawBox2D(30, 30, 370, 230); VertexSelect().DrawVertex(); "
    "EdgeSelect().DrawEdge();"
    "DrawCurrent(1);";

constexpr const char* MODEL =
    "SetGrid(40, 0); UNIT_MATRIX.move(100, 0, 0).SetPers(); PolyVertexs(3);"
    "PolySetVertex(Vertex(-50, -40, -30), 0); PolySetVertex(Vertex(60, -40, -20), 1);"
    "PolySetVertex(Vertex(10, 70, 35), 2); PolyAppend(1);"
    "PolySetVertex(Vertex(20, -30, 40), 1); PolyAppend(0); Update(CLEAR);";

class ViewPause : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        registerMore = ModelLibrariesRegister;
    }
    // The picture after all of them, from the start.
    std::vector<std::uint8_t> After(const std::vector<const char*>& statements) {
        ModelInit(1 << 16, 8, 8, 20);
        ViewInit();
        ViewLayout(401, 283, 16);
        ViewEnableDrawing(true);
        CursorMove({25, -35, 15});
        std::string source = MODEL;
        for (const char* statement : statements) {
            source += statement;
        }
        EXPECT_EQ(Run(source), "");
        InterpreterExit();
        auto picture = ViewFrame.pixels;
        ViewExit();
        ModelExit();
        return picture;
    }
};

TEST_F(ViewPause, TheHiddenCursorLeavesNoTraceOfAnyChange) {
    for (const char* change : CHANGES) {
        EXPECT_EQ(After({"ViewCursor(1);", change, "ViewCursor(0);"}), After({change})) << change;
    }
}

TEST_F(ViewPause, TheCursorStandsAfterAnyChangeWhereItIsShownAnew) {
    for (const char* change : CHANGES) {
        EXPECT_EQ(After({"ViewCursor(1);", change}), After({change, "ViewCursor(1);"})) << change;
    }
}

TEST_F(ViewPause, BandsStandOverAnyChangeAsIfDrawnBehindIt) {
    for (const char* change : CHANGES) {
        if (std::string_view(change).find("SetConv") == std::string_view::npos) {
            EXPECT_EQ(After({BANDS, "ViewCursor(1);", change}), After({change, BANDS, "ViewCursor(1);"}))
                << change;
        }
    }
}

TEST_F(ViewPause, BandsDrawnTwiceLeaveNoTraceOfAnyChange) {
    for (const char* change : CHANGES) {
        if (std::string_view(change).find("SetConv") == std::string_view::npos) {
            EXPECT_EQ(After({BANDS, change, BANDS}), After({change})) << change;
        }
        EXPECT_EQ(After({BANDS, BANDS, change}), After({change})) << change;
    }
}

// The same lines and boxes from their other ends and corners, by modes that mean the same.
constexpr const char* REVERSED =
    "DrawLine(Vertex(70, 30, 20), Vertex(-80, -30, -30), 0); DrawBox(Vertex(150, -55, 15), Vertex(-75, 25, "
    "-45));"
    "DrawLine2D(400, 260, 0, 3); DrawBox2D(370, 30, 30, 230); DrawCurrent(TRUE);"
    "VertexSelect().DrawVertex(LINE_XOR); EdgeSelect().DrawEdge(0);";

TEST_F(ViewPause, BandsAreTakenAwayFromTheirOtherEnds) {
    for (const char* change :
         {"Update(CLEAR);", "Update(OVERWRITE, WIN_ZX);", "SetZoom(3);", "PersAngle(100);"}) {
        EXPECT_EQ(After({BANDS, change, REVERSED}), After({change})) << change;
        EXPECT_EQ(After({REVERSED, change}), After({change, BANDS})) << change;
    }
}

TEST_F(ViewPause, ClearTakesEveryBandAwayInBothModes) {
    for (const char* change : CHANGES) {
        EXPECT_EQ(After({BANDS, change, "Clear(OVERWRITE); Update(OVERWRITE);"}),
                  After({change, "Update(OVERWRITE);"}))
            << change;
        EXPECT_EQ(After({BANDS, change, "Clear(CLEAR);"}), After({change, "Clear();"})) << change;
        // Cleared ones are drawn by the next call, not taken away.
        EXPECT_EQ(After({BANDS, "Clear(OVERWRITE);", BANDS, change}), After({BANDS, change})) << change;
    }
}

TEST_F(ViewPause, ClearKeepsTheCursor) {
    for (const char* clear : {"Clear(OVERWRITE);", "Clear(CLEAR);"}) {
        EXPECT_EQ(After({"ViewCursor(1);", clear}), After({clear, "ViewCursor(1);"}));
    }
}

}  // namespace
}  // namespace quelmark::test
