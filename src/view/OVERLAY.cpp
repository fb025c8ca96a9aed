#include "view/OVERLAY.h"

#include <algorithm>
#include <set>

#include "view/PERS.h"

namespace quelmark {
namespace {

enum class Shape : std::uint8_t { ModelLines, ModelMarks, PaneLines };

// The lines in one order, each from its smaller end, so that the same lines drawn the other way round are the
// same item. A mark is a line without length.
struct Item {
    Shape shape;
    std::vector<ModelLine> lines;

    friend auto operator<=>(const Item&, const Item&) = default;
};

constexpr std::int32_t CROSS_PIXELS = 8;  // half the perspective cross

std::set<Item> items;  // exclusive-or has no order
ModelPoint cursor{0, 0, 0};
bool cursorShown = false;
int pauses = 0;

struct ScreenLine {
    PanePoint a, b;
};

// One order of lines and of each line's ends, every line once.
void Normalise(std::vector<ModelLine>& lines) {
    for (ModelLine& line : lines) {
        if (line.to < line.from) {
            std::swap(line.from, line.to);
        }
    }
    std::ranges::sort(lines);
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
}

Item MakeItem(Shape shape, std::vector<ModelLine> lines) {
    Normalise(lines);
    return {shape, std::move(lines)};
}

PixelRect ViewClip(std::int32_t view) {
    return Intersection(Views[ViewIndex(view)].Rect(), ViewFrame.Bounds());
}

// What of a line, or of the marks at its ends, can have changed the frame.
PixelRect Touched(const ScreenLine& line, const PixelRect& clip) {
    const auto limit = [](std::int64_t value, std::int32_t low, std::int32_t high) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, low, std::max(low, high)));
    };
    return {limit(std::min(line.a.x, line.b.x) - 1, clip.left, clip.right),
            limit(std::min(line.a.y, line.b.y) - 1, clip.top, clip.bottom),
            limit(std::max(line.a.x, line.b.x) + 2, clip.left, clip.right),
            limit(std::max(line.a.y, line.b.y) + 2, clip.top, clip.bottom)};
}

// Several lines that are drawn by exclusive-or are noted first in a bit that no palette index has, then
// turned, so that a pixel of several is turned once: corners are closed, and a box that is seen edge-on does
// not cancel itself. A single line needs no note, which saves a look at every pixel of its rectangle.
constexpr std::uint8_t NOTED = 0x80;

void TurnNoted(const PixelRect& area) {
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        std::uint8_t* const row = ViewFrame.Row(y);
        for (std::int32_t x = area.left; x < area.right; ++x) {
            const int turn = (row[x] & NOTED) != 0 ? NOTED | COLOUR_LINE : 0;
            row[x] = static_cast<std::uint8_t>(row[x] ^ turn);
        }
    }
}

void DrawScreenLines(const std::vector<ScreenLine>& lines, const PixelRect& clip, Ink ink, bool marks) {
    const bool noting = ink == Ink::Xor && lines.size() > 1;
    const std::uint8_t colour = noting ? NOTED : std::uint8_t{COLOUR_LINE};
    const Ink drawn = noting ? Ink::Or : ink;
    PixelRect changed{clip.right, clip.bottom, clip.left, clip.top};
    for (const ScreenLine& line : lines) {
        if (marks) {
            DrawMark(clip, line.a, colour, drawn);
        } else {
            DrawLine(ViewFrame, clip, line.a, line.b, colour, drawn);
        }
        const PixelRect touched = Touched(line, clip);
        changed = {std::min(changed.left, touched.left), std::min(changed.top, touched.top),
                   std::max(changed.right, touched.right), std::max(changed.bottom, touched.bottom)};
    }
    if (noting) {
        TurnNoted(changed);
    }
    ViewDamage(changed);
}

// The screen line of a line in a view; false when it lies behind the eye.
bool ToScreen(Shape shape, const ModelLine& line, std::int32_t view, ScreenLine& screen) {
    if (shape == Shape::PaneLines) {
        screen = {{line.from.x, line.from.y}, {line.to.x, line.to.y}};
        return true;
    }
    if (view == WIN_PERS) {
        return ProjectEyeLine(ViewToEye(line.from), ViewToEye(line.to), screen.a, screen.b);
    }
    screen = {ViewProject(line.from, view), ViewProject(line.to, view)};
    return true;
}

void DrawInView(const Item& item, std::int32_t view, const PixelRect& clip, Ink ink) {
    std::vector<ScreenLine> lines;
    for (const ModelLine& line : item.lines) {
        ScreenLine screen{};
        if (ToScreen(item.shape, line, view, screen)) {
            lines.push_back(screen);
        }
    }
    DrawScreenLines(lines, clip, ink, item.shape == Shape::ModelMarks);
}

void DrawItem(const Item& item, Ink ink) {
    if (item.shape == Shape::PaneLines) {
        // Once over the pane: two views share a row or a column when its size is odd.
        return DrawInView(item, 0, ViewFrame.Bounds(), ink);
    }
    for (std::int32_t view = WIN_XY; view <= WIN_PERS; view <<= 1) {
        if ((VisibleViews & view) != 0) {
            DrawInView(item, view, ViewClip(view), ink);
        }
    }
}

// Draws an item of the overlay, and remembers it, or forgets it when it was there.
void ToggleItem(Item item) {
    DrawItem(item, Ink::Xor);
    const auto [found, isNew] = items.insert(std::move(item));
    if (!isNew) {
        items.erase(found);
    }
}

void DrawCursorLine(const ScreenLine& line, const PixelRect& clip) {
    DrawLine(ViewFrame, clip, line.a, line.b, COLOUR_LINE, Ink::Xor);
    ViewDamage(Touched(line, clip));
}

// The three axes at the cursor, turned as the view turns them.
void DrawPerspectiveCross(const EyePoint& eye) {
    const PanePoint p = ViewProjectEye(eye);
    const auto& m = ViewState.perspective.row;
    const auto pixels = [](float part) {
        return part == part ? static_cast<std::int64_t>(-std::clamp(part, -1.0F, 1.0F) * CROSS_PIXELS) : 0;
    };
    std::vector<ScreenLine> lines;
    for (int axis = 0; axis < 3; ++axis) {
        const std::int64_t dx = pixels(m[axis][1]);
        const std::int64_t dy = pixels(m[axis][2]);
        lines.push_back({{p.x - dx, p.y - dy}, {p.x + dx, p.y + dy}});
    }
    DrawScreenLines(lines, ViewClip(WIN_PERS), Ink::Xor, false);
}

void DrawCursor() {
    const ModelPoint shown = ViewConverted(cursor);
    for (std::int32_t view = WIN_XY; view <= WIN_ZX; view <<= 1) {
        if ((VisibleViews & view) != 0) {
            const PixelRect clip = ViewClip(view);
            const PanePoint p = ViewProject(shown, view);
            DrawCursorLine({{clip.left, p.y}, {clip.right - 1, p.y}}, clip);
            DrawCursorLine({{p.x, clip.top}, {p.x, clip.bottom - 1}}, clip);
        }
    }
    const EyePoint eye = ViewToEye(shown);
    if ((VisibleViews & WIN_PERS) != 0 && eye.x >= 1) {
        DrawPerspectiveCross(eye);
    }
}

}  // namespace

void OverlayInit() {
    items.clear();
    cursor = {0, 0, 0};
    cursorShown = false;
}

void OverlayReset() {
    items.clear();
}

void OverlayToggle() {
    for (const Item& item : items) {
        DrawItem(item, Ink::Xor);
    }
    if (cursorShown) {
        DrawCursor();
    }
}

void OverlayModelLines(std::vector<ModelLine> lines, LineMode mode) {
    Item item = MakeItem(Shape::ModelLines, std::move(lines));
    if (mode == LINE_OR) {
        const OverlayPause pause;
        DrawItem(item, Ink::Or);
    } else {
        ToggleItem(std::move(item));
    }
}

void OverlayModelMarks(const std::vector<ModelPoint>& points, LineMode mode) {
    std::vector<ModelLine> lines;
    lines.reserve(points.size());
    for (const ModelPoint& point : points) {
        lines.push_back({point, point});
    }
    Item item = MakeItem(Shape::ModelMarks, std::move(lines));
    if (mode == LINE_OR) {
        const OverlayPause pause;
        DrawItem(item, Ink::Or);
    } else {
        ToggleItem(std::move(item));
    }
}

void OverlayPaneLines(std::vector<ModelLine> lines) {
    ToggleItem(MakeItem(Shape::PaneLines, std::move(lines)));
}

ModelPoint CursorPosition() {
    return cursor;
}

void CursorMove(const ModelPoint& position) {
    const bool drawn = cursorShown && pauses == 0;
    if (drawn) {
        DrawCursor();
    }
    cursor = {std::clamp(position.x, VERTEX_MIN, VERTEX_MAX), std::clamp(position.y, VERTEX_MIN, VERTEX_MAX),
              std::clamp(position.z, VERTEX_MIN, VERTEX_MAX)};
    if (drawn) {
        DrawCursor();
    }
}

bool CursorShow(bool shown) {
    const bool before = cursorShown;
    if (before != shown) {
        if (pauses == 0) {
            DrawCursor();
        }
        cursorShown = shown;
    }
    return before;
}

bool CursorShown() {
    return cursorShown;
}

bool CursorTrack(std::int32_t x, std::int32_t y) {
    const auto point = ViewPointAt(x, y, cursor, ViewState.gridSnap);
    if (!point) {
        return false;
    }
    CursorMove(*point);
    return true;
}

OverlayPause::OverlayPause() {
    if (pauses++ == 0) {
        OverlayToggle();
    }
}

OverlayPause::~OverlayPause() {
    if (--pauses == 0) {
        OverlayToggle();
    }
}

}  // namespace quelmark
