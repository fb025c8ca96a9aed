// Which views the view functions draw anew, which from the background, and which they leave alone.
#include <algorithm>

#include "ML/FUNC.h"
#include "MODEL/MDLINIT.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

// Of XY, YZ, ZX and the perspective view: '-' left alone, 'o' drawn over what is there, 'c' drawn from the
// background.
struct Row {
    const char* source;
    const char* views;
};

constexpr Row ROWS[] = {
    {"Update(CLEAR);", "cccc"},
    {"Update(1);", "cccc"},
    {"Update(-5);", "cccc"},
    {"Update(OVERWRITE);", "oooo"},
    {"Update(0);", "oooo"},
    {"Update(CLEAR, WIN_XY);", "c---"},
    {"Update(CLEAR, WIN_YZ);", "-c--"},
    {"Update(CLEAR, WIN_ZX);", "--c-"},
    {"Update(CLEAR, WIN_PERS);", "---c"},
    {"Update(OVERWRITE, WIN_YZ | WIN_PERS);", "-o-o"},
    {"Update(CLEAR, 0);", "----"},
    {"Update(CLEAR, 16);", "----"},
    {"Update(CLEAR, -1);", "cccc"},
    {"Update(CLEAR, 17);", "c---"},
    {"UpdatePers(CLEAR);", "---c"},
    {"UpdatePers(TRUE);", "---c"},
    {"UpdatePers(OVERWRITE);", "---o"},
    {"UNIT_MATRIX.move(150, 0, 0).SetPers();", "---c"},
    {"UNIT_MATRIX.SetConv();", "----"},
    {"SetCenter(Vertex(5, 5, 5));", "----"},
    {"Center(vector(5, 5, 5));", "----"},
    {"SetZoom(2);", "----"},
    {"SetZoom(-2, 5);", "----"},
    {"PersAngle(70);", "----"},
    {"SetGrid(10, 10);", "----"},
    {"Window();", "----"},
    {"SetWindow();", "----"},
    {"PersAngle();", "----"},
    {"VisibleVector(1);", "----"},
    {"VisiblePolyVector(1);", "----"},
    {"VisibleVertex(1);", "----"},
    {"DrawInvisible(1);", "----"},
    {"DrawFrontOnly(1);", "----"},
    {"ViewWidth(1); ViewHeight(2); MouseWindow(); Cursor();", "----"},
    {"ViewCursor(0);", "----"},
    {"ViewCursor(1);", "oooo"},
    {"ViewCursor(1); ViewCursor(0);", "----"},
    {"DrawCurrent();", "oooo"},
    {"DrawCurrent(1);", "oooo"},
    {"DrawCurrent(1); DrawCurrent(1);", "----"},
    {"DrawLine(Vertex(5, 5, 5), Vertex(9, -20, 30));", "oooo"},
    {"Clear();", "cccc"},
    {"Clear(CLEAR);", "cccc"},
    {"Clear(OVERWRITE);", "----"},
    {"Window(WIN_ALL);", "cccc"},
    {"SetWindow(WIN_ALL);", "cccc"},
    // A view that is not shown is not drawn, whatever the mask of the redraw.
    {"Window(WIN_XY | WIN_PERS); Fill(); Update(CLEAR);", "c--c"},
    {"Window(WIN_XY | WIN_PERS); Fill(); Update(OVERWRITE, WIN_XY | WIN_YZ);", "o---"},
    {"Window(WIN_YZ | WIN_ZX); Fill(); UpdatePers(CLEAR);", "----"},
    {"Window(WIN_YZ | WIN_ZX); Fill(); UNIT_MATRIX.move(150, 0, 0).SetPers();", "----"},
    {"Window(WIN_YZ | WIN_ZX); Fill(); DrawLine(Vertex(5, 5, 5), Vertex(9, -20, 30), LINE_OR);", "-oo-"},
    {"Window(WIN_YZ | WIN_ZX); Fill(); DrawCurrent();", "-oo-"},
};

constexpr std::uint8_t NOTHING_DRAWS_THIS = 8;

std::int32_t Fill(std::int32_t, std::int32_t, DataCell*) {
    FillRect(ViewFrame, ViewFrame.Bounds(), NOTHING_DRAWS_THIS);
    return NO_RESULT;
}

char WhatHappened(const PixelRect& view) {
    std::int64_t left = 0;
    for (std::int32_t y = view.top; y < view.bottom; ++y) {
        left += std::count(ViewFrame.Row(y) + view.left, ViewFrame.Row(y) + view.right, NOTHING_DRAWS_THIS);
    }
    const std::int64_t all = std::int64_t{view.right - view.left} * (view.bottom - view.top);
    return left == all ? '-' : left == 0 ? 'c' : 'o';
}

class ViewRedraws : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        registerMore = [] {
            ModelLibrariesRegister();
            FunctionRegister(0, "Fill", Fill);
        };
    }
};

TEST_F(ViewRedraws, EachFunctionDrawsItsOwnViewsAnewAndNoOther) {
    for (const Row& row : ROWS) {
        ModelInit(1 << 16, 8, 8, 20);
        ViewInit();
        ViewLayout(402, 282, 16);
        ViewEnableDrawing(true);
        const std::string model =
            "UNIT_MATRIX.move(100, 0, 0).SetPers(); PolyVertexs(3); PolySetVertex(Vertex(-50, -40, -30), 0);"
            "PolySetVertex(Vertex(60, -40, -20), 1); PolySetVertex(Vertex(10, 70, 35), 2); PolyAppend(1); "
            "Fill();";
        EXPECT_EQ(Run(model + row.source), "");
        InterpreterExit();
        std::string happened;
        for (const ViewRecord& view : Views) {
            happened += WhatHappened(view.Rect());
        }
        EXPECT_EQ(happened, row.views) << row.source;
        ViewExit();
        ModelExit();
    }
}

}  // namespace
}  // namespace quelmark::test
