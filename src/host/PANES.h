// The panes around the views as plain data: the list panel at the right, the status bar, the message pane.
// The window paints them; presses on them are handled here before scripts see them. Texts are cp932.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "view/RASTER.h"

namespace quelmark {

// Palette entries of the panes.
inline constexpr std::uint8_t PANE_TEXT = 7;
inline constexpr std::uint8_t PANE_HIGHLIGHT = 10;

struct PaneRow {
    std::int32_t row;  // text row, at row × line height
    std::string text;
    bool current;  // in the highlight colour, on a bar
    bool heading;
};

struct StatusField {
    std::string text;
    std::int32_t width = 0;  // in characters; field 0 takes what the others leave
};
inline constexpr std::int32_t STATUS_FIELDS = 8;

// Where the panes lie in the client area.
PixelRect ViewsRect();
PixelRect ListRect();
// The button panel left of it; empty when it has no width.
PixelRect ButtonsRect();
PixelRect StatusRect();
// The band above the status bar; empty when no message is shown.
PixelRect MessageRect();
std::int32_t ListTextLeft();
// Place of a status field's frame; empty for one without width.
PixelRect StatusFieldRect(std::int32_t field);

std::vector<PaneRow> ListRows();
const std::array<StatusField, STATUS_FIELDS>& StatusFields();
const std::vector<std::string>& MessageLines();

void PanesReset();
void StatusSet(std::int32_t field, std::string_view text);
void StatusSetWidth(std::int32_t field, std::int32_t width);
// The message stays until the next key or button press, and goes to the output log.
void MessageShow(std::string_view text);
// The same below what is shown already; only the last ten lines stay.
void MessageAdd(std::string_view text);
void MessageHide();
// Asks the window to show what has changed in the model's tables since the last time.
void PanesRefresh();
void PanesCursorMoved();

// Handlers of presses, function ids or -1.
struct PaneHandlers {
    std::int32_t control = -1, attribute = -1, object = -1, canClose = -1;
};
extern PaneHandlers PaneEvents;

// What the thing at a client point is called, in full: a name of the lists, a button's tip. "" where nothing
// is.
std::string PaneTip(std::int32_t x, std::int32_t y);

// A button is down at this point: true when it lies on a pane, which has then dealt with it.
bool PanePress(std::int32_t x, std::int32_t y);

// The wheel turns at this point, away from the user positive: true when it lies on the list panel, whose
// lists scroll.
bool PaneWheel(std::int32_t x, std::int32_t y, std::int32_t turns);

}  // namespace quelmark
