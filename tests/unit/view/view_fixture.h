// The views at 801 × 600 pixels with one attribute and an empty model, drawing on.
#pragma once

#include <algorithm>
#include <cstdint>

#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace quelmark::test {

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

}  // namespace quelmark::test
