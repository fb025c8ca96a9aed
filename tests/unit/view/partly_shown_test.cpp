// Views that a mask of two or three keeps where they were, on a pane that has become smaller.
#include "view_fixture.h"

namespace quelmark::test {
namespace {

class PartlyShown : public View3D {
  protected:
    void SetUp() override {
        View3D::SetUp();
        ViewSetMask(WIN_XY | WIN_YZ | WIN_ZX);
    }
};

TEST_F(PartlyShown, TheGridHasTheLinesThatItHasInTheWholeView) {
    ViewState.gridSpacing = 20;
    ViewRedraw(WHOLE_AREA, true);
    const FrameBuffer whole = ViewFrame;
    for (const PixelRect& pane :
         {PixelRect{0, 0, 450, 622}, PixelRect{0, 0, 801, 350}, PixelRect{0, 0, 90, 40}}) {
        ViewLayout(pane.right, pane.bottom, 16);
        for (std::int32_t y = 0; y < pane.bottom; ++y) {
            for (std::int32_t x = 0; x < pane.right; ++x) {
                ASSERT_EQ(ViewFrame.Row(y)[x], whole.Row(y)[x]) << x << " " << y << " of " << pane.right;
            }
        }
    }
}

}  // namespace
}  // namespace quelmark::test
