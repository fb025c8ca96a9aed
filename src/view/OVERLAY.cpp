#include "view/OVERLAY.h"

#include <algorithm>
#include <cstdlib>

#include "view/DRAW.h"

namespace quelmark {
namespace {

struct Item {
    std::vector<ModelLine> lines;
    bool pane;  // pane points instead of model points

    friend bool operator==(const Item&, const Item&) = default;
};

constexpr std::int32_t CROSS_PIXELS = 8;  // half the perspective cross

std::vector<Item> items;
ModelPoint cursor{0, 0, 0};
bool cursorShown = false;
int pauses = 0;

struct ScreenLine {
    PanePoint a, b;
};
bool SameScreenLine(const ScreenLine& l, const ScreenLine& r) {
    const auto same = [](const PanePoint& p, const PanePoint& q) { return p.x == q.x && p.y == q.y; };
    return (same(l.a, r.a) && same(l.b, r.b)) || (same(l.a, r.b) && same(l.b, r.a));
}

void DrawScreenLines(std::vector<ScreenLine>& lines, const PixelRect& clip, Ink ink) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto earlier = lines.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::none_of(lines.begin(), earlier,
                         [&](const ScreenLine& l) { return SameScreenLine(l, lines[i]); })) {
            DrawLine(ViewFrame, clip, lines[i].a, lines[i].b, COLOUR_LINE, ink);
        }
    }
}

void DrawItem(const Item& item, Ink ink) {
    for (std::int32_t view = WIN_XY; view <= WIN_PERS; view <<= 1) {
        if ((VisibleViews & view) == 0) {
            continue;
        }
        std::vector<ScreenLine> lines;
        for (const ModelLine& line : item.lines) {
            ScreenLine screen{};
            if (item.pane) {
                screen = {{line.from.x, line.from.y}, {line.to.x, line.to.y}};
            } else if (view == WIN_PERS) {
                if (!ProjectEyeLine(ViewToEye(line.from), ViewToEye(line.to), screen.a, screen.b)) {
                    continue;
                }
            } else {
                screen = {ViewProject(line.from, view), ViewProject(line.to, view)};
            }
            lines.push_back(screen);
        }
        DrawScreenLines(lines, Intersection(Views[ViewIndex(view)].Rect(), ViewFrame.Bounds()), ink);
    }
}

void DrawCursor() {
    for (std::int32_t view = WIN_XY; view <= WIN_ZX; view <<= 1) {
        if ((VisibleViews & view) == 0) {
            continue;
        }
        const PixelRect rect = Intersection(Views[ViewIndex(view)].Rect(), ViewFrame.Bounds());
        const PanePoint p = ViewProject(cursor, view);
        DrawLine(ViewFrame, rect, {rect.left, p.y}, {rect.right - 1, p.y}, COLOUR_LINE, Ink::Xor);
        DrawLine(ViewFrame, rect, {p.x, rect.top}, {p.x, rect.bottom - 1}, COLOUR_LINE, Ink::Xor);
    }
    if ((VisibleViews & WIN_PERS) == 0) {
        return;
    }
    const EyePoint eye = ViewToEye(cursor);
    if (!(eye.x >= 1)) {
        return;
    }
    const PixelRect rect = Intersection(Views[3].Rect(), ViewFrame.Bounds());
    const PanePoint p = ViewProjectEye(eye);
    const auto& m = ViewState.perspective.row;
    for (int axis = 0; axis < 3; ++axis) {
        const auto dx = static_cast<std::int64_t>(-std::clamp(m[axis][1], -1.0F, 1.0F) * CROSS_PIXELS);
        const auto dy = static_cast<std::int64_t>(-std::clamp(m[axis][2], -1.0F, 1.0F) * CROSS_PIXELS);
        DrawLine(ViewFrame, rect, {p.x - dx, p.y - dy}, {p.x + dx, p.y + dy}, COLOUR_LINE, Ink::Xor);
    }
}

void DamageViews() {
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        if ((VisibleViews & 1 << i) != 0) {
            ViewDamage(Views[i].Rect());
        }
    }
}

std::int32_t Snapped(std::int32_t value, std::int32_t snap) {
    if (snap < 2) {
        return value;
    }
    const std::int64_t shifted = std::int64_t{value} + (value < 0 ? -snap / 2 : snap / 2);
    return static_cast<std::int32_t>(shifted / snap * snap);
}

}  // namespace

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

void OverlayModelLines(const std::vector<ModelLine>& lines, LineMode mode) {
    const Item item{lines, false};
    if (mode == LINE_OR) {
        const OverlayPause pause;
        DrawItem(item, Ink::Or);
    } else {
        DrawItem(item, Ink::Xor);
        const auto found = std::ranges::find(items, item);
        if (found != items.end()) {
            items.erase(found);
        } else {
            items.push_back(item);
        }
    }
    DamageViews();
}

void OverlayPaneLines(const std::vector<ModelLine>& lines) {
    const Item item{lines, true};
    DrawItem(item, Ink::Xor);
    const auto found = std::ranges::find(items, item);
    if (found != items.end()) {
        items.erase(found);
    } else {
        items.push_back(item);
    }
    DamageViews();
}

ModelPoint CursorPosition() {
    return cursor;
}

void CursorMove(const ModelPoint& position) {
    if (cursorShown && pauses == 0) {
        DrawCursor();
        cursor = position;
        DrawCursor();
        DamageViews();
    } else {
        cursor = position;
    }
}

bool CursorShow(bool shown) {
    const bool before = cursorShown;
    if (before != shown) {
        if (pauses == 0) {
            DrawCursor();
            DamageViews();
        }
        cursorShown = shown;
    }
    return before;
}

bool CursorShown() {
    return cursorShown;
}

bool CursorTrack(std::int32_t x, std::int32_t y) {
    const auto point = ViewPointAt(x, y, cursor);
    if (!point) {
        return false;
    }
    const std::int32_t snap = ViewState.gridSnap;
    CursorMove({Snapped(point->x, snap), Snapped(point->y, snap), Snapped(point->z, snap)});
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
