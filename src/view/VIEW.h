// The four views: layout, settings and redraw into one 8-bit frame buffer of palette indices.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quelmark {

enum View : std::int32_t { WIN_XY = 1, WIN_YZ = 2, WIN_ZX = 4, WIN_PERS = 8, WIN_ALL = 15 };
enum LineMode : std::int32_t { LINE_OR = 17, LINE_XOR = 18 };

// Half-open: right and bottom lie outside.
struct PixelRect {
    std::int32_t left, top, right, bottom;
};

// The drawing pane's pixels, row by row, one palette index each; `stride` bytes a row.
struct FrameBuffer {
    std::int32_t width = 0, height = 0, stride = 0;
    std::vector<std::uint8_t> pixels;

    std::uint8_t* Row(std::int32_t y) { return pixels.data() + static_cast<std::ptrdiff_t>(y) * stride; }
    const std::uint8_t* Row(std::int32_t y) const {
        return pixels.data() + static_cast<std::ptrdiff_t>(y) * stride;
    }
};
extern FrameBuffer ViewFrame;

struct ViewRecord {
    std::int32_t left, top, width, height, centreX, centreY;
};
inline constexpr std::int32_t VIEW_COUNT = 4;
extern ViewRecord Views[VIEW_COUNT];  // XY, YZ, ZX, PERS
extern std::int32_t VisibleViews;     // mask of View bits

// Called when pixels of a rectangle of the pane have changed; the host installs it.
using DamageHook = void (*)(const PixelRect& rect);
void ViewSetDamageHook(DamageHook hook);

// Start values, an empty frame. `statusLineHeight` is the height of the window's status line.
void ViewInit();
void ViewExit();
// The client size of the drawing pane and the text line height; lays the views out with the mask unchanged and
// resizes the frame buffer. Sizes below 1 and above 16384 are clamped.
void ViewLayout(std::int32_t width, std::int32_t height, std::int32_t lineHeight);
void ViewSetMask(std::int32_t mask);
// The bit of the view under a point of the pane, or 0.
std::int32_t ViewAt(std::int32_t x, std::int32_t y);
// Off at start and at shut-down: redraws do nothing.
void ViewEnableDrawing(bool on);
// Redraws the views that meet the rectangle; `clear` fills background and grid first.
void ViewRedraw(const PixelRect& area, bool clear);
inline constexpr PixelRect WHOLE_AREA{0, 0, 4096, 4096};
// Fills the views with the background (true), or erases the overlay only (false); the overlay is dropped.
void ViewClear(bool fill);

// The 3-D cursor.
struct ModelPoint {
    std::int32_t x, y, z;
};
ModelPoint ViewCursorPosition();
void ViewSetCursor(const ModelPoint& position);
void ViewShowCursor(bool shown);
bool ViewCursorShown();
// The cursor follows a pointer at a pane point.
void ViewTrackCursor(std::int32_t x, std::int32_t y);

}  // namespace quelmark
