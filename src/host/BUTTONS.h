// The button panel: a strip left of the list panel with small square buttons that call script functions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "view/RASTER.h"

namespace quelmark {

inline constexpr std::int32_t BUTTON_SLOTS = 40;
inline constexpr std::int32_t BUTTON_SIZE = 20;  // pixels
inline constexpr std::int32_t BUTTON_AREA_MOST = 80;
inline constexpr std::size_t BUTTON_LABEL_BYTES = 6;
inline constexpr std::uint32_t BUTTON_REPEAT_MILLISECONDS = 66;

enum ButtonState : std::int32_t { BUTTON_ENABLE = 1, BUTTON_REPEAT = 2 };

enum class ButtonKind : std::uint8_t { Free, Label, Picture };

// x counts from the panel's left edge, y from the top of the client area.
struct Button {
    ButtonKind kind = ButtonKind::Free;
    std::int16_t x = 0, y = 0;
    std::int32_t handler = -1;
    std::int32_t state = 0;
    std::string label;
    std::array<std::uint16_t, 16> rows{};
    bool pressed = false;
    std::string tip;  // shown while the pointer rests on the button
};

void ButtonsReset();
// Buttons closer than 20 pixels in both directions are removed. The slot, or -1 when all are in use.
std::int32_t ButtonCreate(std::int32_t x, std::int32_t y, std::string_view face, std::int32_t handler,
                          std::int32_t state);
// Every slot free; the panel is not shown again.
void ButtonsClear();
// The button in a slot, or null for a free slot and one outside 0 to 39.
Button* ButtonAt(std::int32_t slot);
std::int32_t ButtonAreaWidth();
// A width outside 0 to 80 is ignored. Views and panes are laid out and shown again in any case.
void ButtonAreaSet(std::int32_t width);
// The panel is shown again.
void ButtonsInvalidate();
// A press on the panel at a client point.
void ButtonPanelPress(std::int32_t x, std::int32_t y);
// The tip of the button at a client point, enabled or not; "" where there is none.
std::string ButtonTipAt(std::int32_t x, std::int32_t y);
// Every button raised (after an error in a handler).
void ButtonsRelease();

// A button as it is painted: raised or pressed, a label or a picture (bit 15 of a row leftmost) on its face.
struct ButtonFace {
    PixelRect rect;  // client pixels
    bool enabled = false;
    bool pressed = false;
    bool picture = false;
    std::string label;
    std::array<std::uint16_t, 16> rows{};
};
std::vector<ButtonFace> ButtonFaces();

// Reads 64 hexadecimal digits, other characters skipped, as 16 rows of 16 bits. False when there are fewer.
// Lower case "b" to "f" count as 0.
bool ReadButtonPicture(std::string_view face, std::array<std::uint16_t, 16>& rows);

}  // namespace quelmark
