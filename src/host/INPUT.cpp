#include "host/INPUT.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "host/HOST.h"
#include "host/LOOPEVENT.h"
#include "host/PALETTE.h"
#include "host/PANES.h"
#include "view/OVERLAY.h"

namespace quelmark {

CurrentInput Input;
InputHandlers Handlers;
WaitMode Mode;
bool QuitFlag = false;

namespace {

constexpr std::uint32_t PULSE_STEP = 5;  // milliseconds of one pulse index
// Milliseconds between two looks at the pulse: eight for each time it swells and fades, which is smooth, and
// little work.
constexpr std::uint32_t PULSE_INTERVAL = 80;
constexpr std::int32_t PULSE_COLOURS = 128;

constexpr KeyName KEYS[] = {
    {"ESC", 27},
    {"BS", 8},
    {"RET", 13},
    {"LEFT_SWITCH", MOUSE_LEFT},
    {"RIGHT_SWITCH", MOUSE_RIGHT},
    {"HELP", 0x8019},
    {"MOUSE_LEFT", MOUSE_LEFT},
    {"MOUSE_RIGHT", MOUSE_RIGHT},
    {"KEY_TAB", 9},
    {"KEY_ESC", 27},
    {"KEY_BS", 8},
    {"KEY_RET", 13},
    {"KEY_F1", 0x8001},
    {"KEY_F2", 0x8002},
    {"KEY_F3", 0x8003},
    {"KEY_F4", 0x8004},
    {"KEY_F5", 0x8005},
    {"KEY_F6", 0x8006},
    {"KEY_F7", 0x8007},
    {"KEY_F8", 0x8008},
    {"KEY_F9", 0x8009},
    {"KEY_F10", 0x800A},
    {"KEY_F11", 0x800B},
    {"KEY_F12", 0x800C},
    {"KEY_F13", 0x800D},
    {"KEY_F14", 0x800E},
    {"KEY_F15", 0x800F},
    {"KEY_ROLLUP", 0x8010},
    {"KEY_ROLLDOWN", 0x8011},
    {"KEY_INS", 0x8012},
    {"KEY_DEL", 0x8013},
    {"KEY_UP", 0x8014},
    {"KEY_LEFT", 0x8015},
    {"KEY_RIGHT", 0x8016},
    {"KEY_DOWN", 0x8017},
    {"KEY_CLR", 0x8018},
    {"KEY_HELP", 0x8019},
    {"KEY_HOME", 0x801A},
    {"KEY_UNDO", 0x801B},
    {"KEY_NUMPAD_0", 0x801C},
    {"KEY_NUMPAD_1", 0x801D},
    {"KEY_NUMPAD_2", 0x801E},
    {"KEY_NUMPAD_3", 0x801F},
    {"KEY_NUMPAD_4", 0x8020},
    {"KEY_NUMPAD_5", 0x8021},
    {"KEY_NUMPAD_6", 0x8022},
    {"KEY_NUMPAD_7", 0x8023},
    {"KEY_NUMPAD_8", 0x8024},
    {"KEY_NUMPAD_9", 0x8025},
    {"KEY_NUMPAD_SLASH", 0x8026},
    {"KEY_NUMPAD_ASTERISK", 0x8027},
    {"KEY_NUMPAD_MINUS", 0x8028},
    {"KEY_NUMPAD_PLUS", 0x8029},
    {"KEY_NUMPAD_EQUAL", 0x802A},
    {"KEY_NUMPAD_ENTER", 0x802B},
    {"KEY_NUMPAD_COMMA", 0x802C},
    {"KEY_NUMPAD_PERIOD", 0x802D},
};
static_assert(std::size(KEYS) == 57);

struct KeptKey {
    std::int32_t code = 0;
    std::int32_t shift = 0;
};
KeptKey keptKey;
bool pressSpent = false;
bool pressOfViews = false;  // the one that is held, which the press handler was told

std::uint32_t pulseTime = 0;
std::int32_t pulseIndex = 0;
bool pulseRests = false;

// A magenta that swells and fades, from 212 up to 254 and back.
void Pulse() {
    const std::uint32_t now = HostWindow().Milliseconds();
    if (pulseRests || now - pulseTime <= PULSE_STEP) {
        return;
    }
    const std::uint32_t steps = (now - pulseTime) / PULSE_STEP;
    pulseTime = now;
    pulseIndex = static_cast<std::int32_t>((static_cast<std::uint32_t>(pulseIndex) + steps) % PULSE_COLOURS);
    constexpr double TURN = 6.283185307179586;
    const auto p =
        static_cast<std::uint8_t>((127 - 127 * std::cos(TURN * pulseIndex / PULSE_COLOURS)) / 6 + 212.5);
    PaletteSet(PULSE_ENTRY, {p, 0, p});
}

std::int32_t WaitOf(Waiting who, std::int32_t most) {
    if (who == Waiting::EventLoop) {
        return LoopEventWait(most);
    }
    return who == Waiting::Script && TimedHandlerAllowed() ? TimedEventWait(most) : most;
}

// A button is held that the 3-D cursor follows.
bool IsTracking() {
    return ((Mode.tracking & TRACK_LEFT) != 0 && Input.left) ||
           ((Mode.tracking & TRACK_RIGHT) != 0 && Input.right);
}

// The window's state, with the key that has been put back; dropped files are put aside for the event loop.
InputState TakeWindowInput() {
    InputState taken = HostWindow().TakeInput();
    QuitFlag = QuitFlag || taken.finished;
    for (std::string& path : taken.dropped) {
        DropPut(std::move(path));
    }
    taken.dropped.clear();
    const KeptKey kept = std::exchange(keptKey, KeptKey{});
    if (taken.keyCode == 0 && kept.code != 0) {
        taken.keyCode = kept.code;
        taken.shift = kept.shift;
    }
    return taken;
}

// Calls what deals with input. It may wait itself or set the key code: for the event loop only what came with
// this step is left, and not the key that has been used up.
template <class Deal>
bool UsesStepUp(Deal deal) {
    const std::int32_t key = Input.keyCode;
    const std::int32_t wheel = Input.wheel;
    const bool used = deal();
    Input.keyCode = used ? 0 : key;
    Input.wheel = wheel;
    return used;
}

// A pick in the menu bar comes as a key.
bool TakeMenuPick() {
    const std::int32_t command = Input.keyCode - MENU_CODE_FIRST;
    if (command < 0 || Input.keyCode >= MENU_CODE_END) {
        return false;
    }
    MenuPick(command / 256, command % 256);
    return true;
}

// A button is down: panes, then the script's press handler. True when the press has been used up. What the
// press handler was told is a drag of the views until the release, wherever the pointer goes.
bool TakePress(bool fresh) {
    pressOfViews = pressOfViews && !fresh;
    if (!pressOfViews && PanePress(Input.x, Input.y)) {
        return true;
    }
    if (!fresh || Handlers.press < 0) {
        return false;
    }
    pressOfViews = true;
    const std::int32_t button = Input.left ? MOUSE_LEFT : MOUSE_RIGHT;
    return CallHandler(Handlers.press, {button, Input.shift});
}

bool SpaceHasCome() {
    return Mode.wait == WAIT_SPACE && Input.keyCode == ' ';
}

// A button that is waited for has come; it is then waited for until it is up.
bool ButtonHasCome(bool leftBefore, bool rightBefore) {
    const bool come = (Mode.wait == WAIT_LEFT && (Input.left || leftBefore)) ||
                      (Mode.wait == WAIT_RIGHT && (Input.right || rightBefore));
    if (come) {
        WaitRelease();
    }
    return come;
}

}  // namespace

std::span<const KeyName> KeyNames() {
    return KEYS;
}

void HandlersReset() {
    std::ranges::fill(Handlers.character, -1);
    std::ranges::fill(Handlers.special, -1);
    Handlers.input = Handlers.press = Handlers.wheel = -1;
    Input = CurrentInput{};
    Mode = WaitMode{};
    keptKey = KeptKey{};
    pressSpent = pressOfViews = false;
    pulseRests = false;
    pulseIndex = 0;
    pulseTime = HostWindow().Milliseconds();
}

void BindSpecialKey(std::int32_t number, std::int32_t handler) {
    const auto count = static_cast<std::int32_t>(std::size(Handlers.special));
    if (number == count) {
        Handlers.input = handler;
    } else if (0 <= number && number < count) {
        Handlers.special[number] = handler;
    }
}

InputState TakeInput() {
    InputState taken = TakeWindowInput();
    if (taken.closeRequested && !QuitFlag) {
        // The can-close handler may wait for input itself: what holds is the state that it leaves.
        if (taken.keyCode != 0) {
            KeyPutBack(taken.keyCode, taken.shift);
        }
        HostCloseRequested();
        taken = TakeWindowInput();
    }
    return taken;
}

bool ButtonHeld() {
    return Input.left || Input.right;
}

bool TimedHandlerAllowed() {
    return (Mode.tracking & TRACK_TIMED) != 0;
}

void PressSpend() {
    pressSpent = ButtonHeld();
}

void KeyPutBack(std::int32_t code, std::int32_t shift) {
    keptKey = {code, shift};
}

void WaitStep(Waiting who) {
    InputState now;
    for (bool pending = true; pending;) {
        std::fflush(stdout);  // what has been printed is to be seen while the scripts wait
        const auto interval = keptKey.code != 0 ? 0 : static_cast<std::int32_t>(PULSE_INTERVAL);
        HostWindow().Deliver(WaitOf(who, interval));
        HostRaiseKept();
        now = TakeInput();
        if (QuitFlag) {
            return;
        }
        Pulse();
        PanesRefresh();
        Input.moved = now.x != Input.x || now.y != Input.y;
        const bool pressed = (now.left && !Input.left) || (now.right && !Input.right);
        if (pressed || now.keyCode != 0) {
            MessageHide();
        }
        pending = now.left == Input.left && now.right == Input.right && now.keyCode == 0 && now.wheel == 0 &&
                  !((now.left || now.right || (Mode.tracking & TRACK_MOVES) != 0) && Input.moved) &&
                  WaitOf(who, 1) != 0 && !(who == Waiting::Release && !ButtonHeld());
    }
    Input.x = now.x;
    Input.y = now.y;
    Input.left = now.left;
    Input.right = now.right;
    Input.keyCode = now.keyCode;
    Input.shift = now.shift;
    Input.wheel = now.wheel;
}

void PulseOn() {
    if (HostWindow().Milliseconds() - pulseTime >= PULSE_INTERVAL) {
        Pulse();
    }
}

void PulseRest() {
    pulseRests = true;
}

void PulseGoOn() {
    pulseRests = false;
}

void WaitRelease() {
    while (ButtonHeld() && !QuitFlag) {
        WaitStep(Waiting::Release);
    }
}

bool InputStep(Waiting who) {
    const bool leftBefore = Input.left;
    const bool rightBefore = Input.right;
    if (!QuitFlag) {
        WaitStep(who);
    }
    if (QuitFlag) {
        HostUnwind();
    }
    if (Input.wheel != 0 && PaneWheel(Input.x, Input.y, Input.wheel)) {
        Input.wheel = 0;
    }
    if (UsesStepUp(TakeMenuPick)) {
        return false;
    }
    if (pressSpent) {
        PressSpend();
        return SpaceHasCome();
    }
    const bool fresh = !leftBefore && !rightBefore;
    if (ButtonHeld() && UsesStepUp([fresh] { return TakePress(fresh); })) {
        return false;
    }
    if (IsTracking() && CursorTrack(Input.x, Input.y)) {
        PanesCursorMoved();
    }
    return SpaceHasCome() || ButtonHasCome(leftBefore, rightBefore);
}

bool CallHandler(std::int32_t handler, std::initializer_list<std::int32_t> arguments) {
    return AskHandler(handler, arguments) != 0;
}

std::int32_t AskHandler(std::int32_t handler, std::initializer_list<std::int32_t> arguments) {
    if (handler < 0) {
        return 0;
    }
    DataCell* mark = StackTop();
    for (const std::int32_t argument : arguments) {
        StackPushInt(argument);
    }
    const bool answered =
        CallFunction(handler, static_cast<std::int32_t>(arguments.size()), mark + 1) == RESULT &&
        (mark[1].type & TYPE_FLAG) != 0;
    const std::int32_t result = answered ? mark[1].integer : 0;
    StackRelease(mark);
    return result;
}

bool DispatchKey() {
    std::int32_t code = Input.keyCode;
    std::int32_t handler = -1;
    if ((code & KEY_SPECIAL) != 0) {
        Check((code & 0xFF) < static_cast<std::int32_t>(std::size(Handlers.special)),
              "( KeyCode & 0xff ) < (KEY_FUNC_END - KEY_FUNC_START)");
        handler = Handlers.special[code & 0xFF];
    } else {
        code &= 127;
        handler = Handlers.character[code];
    }
    if (handler < 0) {
        return false;
    }
    CallHandler(handler, {code, Input.shift});
    return true;
}

}  // namespace quelmark
