// The panes of the main window as plain data: where each lies and what it shows, down to the position and
// palette index of every text. The window only paints this. Coordinates are client pixels, texts cp932 in the
// window's fixed-pitch font, colours palette indices.
//
// The views take the client area left of the list panel and the button panel, at full height; the status bar
// and the message pane lie over them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "view/RASTER.h"

namespace quelmark {

struct PaneLayout {
    PixelRect views, buttons, list, status;
    PixelRect message;  // empty without a message
};
PaneLayout LayOutPanes();

// A text with its top left corner. `background` fills the cells of `columns` half-width columns.
struct PaneText {
    std::int32_t x = 0, y = 0;
    std::string text;
    std::uint8_t colour = 0, background = 0;
    std::int32_t columns = 0;
};

// A triangle that scrolls a list: inert when there is nothing to scroll to.
struct ScrollMark {
    PixelRect rect{0, 0, 0, 0};
    bool up = false;
    bool active = false;
};

inline constexpr std::uint8_t PANE_TEXT = 0;        // black
inline constexpr std::uint8_t PANE_BACKGROUND = 7;  // white
inline constexpr std::uint8_t PANE_HIGHLIGHT = 10;  // light grey
inline constexpr std::uint8_t PANE_SHADOW = 13;     // dark grey: the dark sides of frames
inline constexpr std::uint8_t PANE_LIGHT = 15;      // white: the light sides

// The list panel: attribute list, object list, coordinates. Filled with PANE_BACKGROUND; a line of
// PANE_SHADOW along its left edge.
struct ListPanel {
    PixelRect rect{0, 0, 0, 0};
    std::vector<PaneText> texts;
    std::array<ScrollMark, 4> marks;  // attributes up, down, objects up, down
};
ListPanel ListPanelContents();

// The status bar: filled with PANE_HIGHLIGHT, a line of PANE_TEXT along its top. A field with a frame is
// sunken (PANE_SHADOW left and top, PANE_LIGHT right and bottom).
struct StatusField {
    std::int32_t number = 0;
    PixelRect rect{0, 0, 0, 0};
    bool framed = false;
    PaneText text;
};
struct StatusBar {
    PixelRect rect{0, 0, 0, 0};
    std::vector<StatusField> fields;
};
StatusBar StatusBarContents();

// The message pane: filled with PANE_BACKGROUND, a frame of PANE_TEXT around it.
struct MessagePane {
    PixelRect rect{0, 0, 0, 0};  // empty without a message
    std::vector<PaneText> lines;
};
MessagePane MessagePaneContents();

// The button panel: filled with PANE_HIGHLIGHT. A face is 20 × 20, raised (PANE_LIGHT left and top,
// PANE_SHADOW right and bottom) or pressed (the other way round, the face moved by one pixel); a label is
// centred, and cut at the face's edge; a picture's set bits are PANE_TEXT, its corner 2 pixels inside.
struct ButtonFace {
    PixelRect rect{0, 0, 0, 0};
    bool enabled = false;  // a label or picture that is not enabled is PANE_SHADOW
    bool pressed = false;
    bool picture = false;
    std::string label;
    std::array<std::uint16_t, 16> rows{};  // bit 15 leftmost
};
struct ButtonPanel {
    PixelRect rect{0, 0, 0, 0};  // empty: no panel
    std::vector<ButtonFace> faces;
};
ButtonPanel ButtonPanelContents();

}  // namespace quelmark
