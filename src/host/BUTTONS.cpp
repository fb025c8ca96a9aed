#include "host/BUTTONS.h"

#include <algorithm>
#include <cstdlib>

#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/PANES.h"
#include "host/TEXTCUT.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

std::array<Button, BUTTON_SLOTS> buttons;
std::int32_t areaWidth = 0;

PixelRect FaceRect(const Button& button) {
    const std::int32_t left = ButtonsRect().left + button.x;
    return {left, button.y, left + BUTTON_SIZE, button.y + BUTTON_SIZE};
}

// The digit's value, or -1 for a character that is none. The upper half of the lower case letters counts as
// 0.
int DigitOf(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    if (character == 'a') {
        return 10;
    }
    return character >= 'b' && character <= 'f' ? 0 : -1;
}

Button* ButtonUnder(std::int32_t x, std::int32_t y, bool enabledOnly) {
    for (Button& button : buttons) {
        const PixelRect face = FaceRect(button);
        const bool hit = x >= face.left && x < face.right && y >= face.top && y < face.bottom;
        if (button.kind != ButtonKind::Free && (!enabledOnly || (button.state & BUTTON_ENABLE) != 0) && hit) {
            return &button;
        }
    }
    return nullptr;
}

void Show(Button& button, bool pressed) {
    button.pressed = pressed;
    ButtonsInvalidate();
}

// Calls the handler at once, and every 66 milliseconds while a mouse button is held.
void RepeatWhileHeld(std::int32_t handler, std::int32_t slot) {
    std::uint32_t next = HostWindow().Milliseconds();
    while (ButtonHeld() && !QuitFlag) {
        if (static_cast<std::int32_t>(HostWindow().Milliseconds() - next) >= 0) {
            CallHandler(handler, {slot});
            next += BUTTON_REPEAT_MILLISECONDS;
        }
        if (ButtonHeld()) {  // the handler may have waited for the release itself
            HostDeliverHeld();
        }
    }
}

}  // namespace

bool ReadButtonPicture(std::string_view face, std::array<std::uint16_t, 16>& rows) {
    constexpr std::size_t DIGITS = 64;
    std::size_t count = 0;
    rows.fill(0);
    for (const char character : face) {
        const int digit = DigitOf(character);
        if (digit >= 0 && count < DIGITS) {
            std::uint16_t& row = rows[count / 4];
            row = static_cast<std::uint16_t>(row << 4 | digit);
            ++count;
        }
    }
    return count == DIGITS;
}

void ButtonsReset() {
    buttons.fill(Button{});
    areaWidth = 0;
}

std::int32_t ButtonCreate(std::int32_t x, std::int32_t y, std::string_view face, std::int32_t handler,
                          std::int32_t state) {
    Button created;
    created.x = static_cast<std::int16_t>(x);
    created.y = static_cast<std::int16_t>(y);
    created.handler = handler;
    created.state = state;
    created.kind = ReadButtonPicture(face, created.rows) ? ButtonKind::Picture : ButtonKind::Label;
    created.label = CutText(face, BUTTON_LABEL_BYTES);
    for (Button& button : buttons) {
        if (std::abs(button.x - created.x) < BUTTON_SIZE && std::abs(button.y - created.y) < BUTTON_SIZE) {
            button.kind = ButtonKind::Free;
        }
    }
    const auto free = std::ranges::find(buttons, ButtonKind::Free, &Button::kind);
    if (free == buttons.end()) {
        return -1;
    }
    *free = created;
    ButtonsInvalidate();
    return static_cast<std::int32_t>(free - buttons.begin());
}

void ButtonsClear() {
    for (Button& button : buttons) {
        button.kind = ButtonKind::Free;
    }
}

Button* ButtonAt(std::int32_t slot) {
    if (slot < 0 || slot >= BUTTON_SLOTS ||
        buttons[static_cast<std::size_t>(slot)].kind == ButtonKind::Free) {
        return nullptr;
    }
    return &buttons[static_cast<std::size_t>(slot)];
}

std::int32_t ButtonAreaWidth() {
    return areaWidth;
}

void ButtonAreaSet(std::int32_t width) {
    if (width >= 0 && width <= BUTTON_AREA_MOST) {
        areaWidth = width;
    }
    ViewClear(true);
    HostResized();
}

void ButtonsInvalidate() {
    HostWindow().Invalidate(Pane::Buttons);
}

void ButtonPanelPress(std::int32_t x, std::int32_t y) {
    Button* button = ButtonUnder(x, y, true);
    if (button == nullptr) {
        WaitRelease();
        return;
    }
    const std::int32_t handler = button->handler;
    const auto slot = static_cast<std::int32_t>(button - buttons.data());
    Show(*button, true);
    if (handler >= 0 && (button->state & BUTTON_REPEAT) != 0) {
        RepeatWhileHeld(handler, slot);
        Show(*button, false);
    } else {
        WaitRelease();
        Show(*button, false);
        CallHandler(handler, {slot});
    }
}

std::string ButtonTipAt(std::int32_t x, std::int32_t y) {
    const Button* button = ButtonUnder(x, y, false);
    return button != nullptr ? button->tip : "";
}

void ButtonsRelease() {
    for (Button& button : buttons) {
        button.pressed = false;
    }
    ButtonsInvalidate();
}

std::vector<ButtonFace> ButtonFaces() {
    std::vector<ButtonFace> faces;
    for (const Button& button : buttons) {
        if (button.kind == ButtonKind::Free) {
            continue;
        }
        ButtonFace face;
        face.rect = FaceRect(button);
        face.enabled = (button.state & BUTTON_ENABLE) != 0;
        face.pressed = button.pressed;
        face.picture = button.kind == ButtonKind::Picture;
        face.label = OneLineText(button.label);
        face.rows = button.rows;
        faces.push_back(std::move(face));
    }
    return faces;
}

}  // namespace quelmark
