#include "MODEL/EVENT.h"

#include <utility>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "host/INPUT.h"
#include "host/LOOPEVENT.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t SPECIAL_LAST = 0x802D;

std::int32_t MouseMove(std::int32_t, std::int32_t, DataCell*) {
    StackPushBool(Input.moved);
    return RESULT;
}

template <std::int32_t CurrentInput::*field>
std::int32_t Give(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(Input.*field);
    return RESULT;
}

std::int32_t MouseButton(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt((Input.left ? MOUSE_LEFT : 0) | (Input.right ? MOUSE_RIGHT : 0));
    return RESULT;
}

std::int32_t FlushKey(std::int32_t, std::int32_t, DataCell*) {
    return NO_RESULT;
}

[[noreturn]] void ReportKeyEvent() {
    RuntimeError("%s", "型が不正です。(KeyEvent)"_sjis);
}

// Each character binds its code; "F" and digits bind a special key.
void BindText(std::string_view text, std::int32_t handler) {
    for (std::size_t at = 0; at < text.size();) {
        const char character = text[at++];
        if (character != 'F') {
            Handlers.character[character & 127] = handler;
            continue;
        }
        std::int32_t number = 0;
        for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
            number = number > 1000 ? number : number * 10 + (text[at] - '0');
        }
        BindSpecialKey(number, handler);
    }
}

void BindCode(std::int32_t code, std::int32_t handler) {
    if (0 <= code && code <= 127) {
        Handlers.character[code] = handler;
    } else if (KEY_SPECIAL <= code && code <= SPECIAL_LAST) {
        BindSpecialKey(code - KEY_SPECIAL, handler);
    }
}

std::int32_t KeyEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1 || argv[0].type != TYPE_FUNC) {
        ReportKeyEvent();
    }
    const std::int32_t handler = argv[0].integer;
    if (argc == 2 && IsString(argv[1])) {
        BindText(StringText(argv[1]), handler);
        return NO_RESULT;
    }
    for (std::int32_t i = 1; i < argc; ++i) {
        if (argv[i].type != TYPE_INT) {
            ReportKeyEvent();
        }
    }
    for (std::int32_t i = 1; i < argc; ++i) {
        BindCode(argv[i].integer, handler);
    }
    return NO_RESULT;
}

template <std::int32_t InputHandlers::*slot>
std::int32_t SetHandler(std::int32_t, std::int32_t, DataCell* argv) {
    Handlers.*slot = argv[0].integer;
    return NO_RESULT;
}

// Without a function, or with 0 milliseconds, nothing is called any more.
std::int32_t TimedEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        SetTimedHandler(-1, 0);
        return NO_RESULT;
    }
    ArgCheck("TimedEvent", argc, argv, {TYPE_FUNC, TYPE_INT});
    SetTimedHandler(argv[1].integer > 0 ? argv[0].integer : -1, argv[1].integer);
    return NO_RESULT;
}

std::int32_t DropEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    SetDropHandler(argc > 0 ? argv[0].integer : -1);
    return NO_RESULT;
}

std::int32_t ErrorEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    SetAfterErrorHandler(argc > 0 ? argv[0].integer : -1);
    return NO_RESULT;
}

std::int32_t FirstCharacter(const DataCell& cell) {
    if (!IsString(cell)) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 1, "CallKeyEvent");
    }
    const std::string_view text = StringText(cell);
    return text.empty() ? 0 : static_cast<unsigned char>(text[0]);
}

std::int32_t CallKeyEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0) {
        Input.keyCode = argv[0].type == TYPE_OBJECT ? FirstCharacter(argv[0]) : argv[0].integer;
    }
    StackPushBool(DispatchKey());
    return RESULT;
}

// What the wheel has turned in a wait of a script's own.
std::int32_t CallWheelEvent(std::int32_t, std::int32_t, DataCell*) {
    const std::int32_t turns = std::exchange(Input.wheel, 0);
    if (turns != 0) {
        CallHandler(Handlers.wheel, {turns, Input.shift});
    }
    StackPushBool(turns != 0);
    return RESULT;
}

// MouseX, MouseY, MouseButton, PressEvent, WheelEvent and CallWheelEvent let scripts drag and zoom at the
// pointer.
constexpr BuiltIn FUNCTIONS[] = {
    {"", "MouseMove", MouseMove, Takes("MouseMove", {})},
    {"", "KeyCode", Give<&CurrentInput::keyCode>, Takes("KeyCode", {})},
    {"", "ShiftStat", Give<&CurrentInput::shift>, Takes("ShiftStat", {})},
    {"", "FlushKey", FlushKey, Takes("FlushKey", {})},
    {"", "KeyEvent", KeyEvent},
    {"", "InputEvent", SetHandler<&InputHandlers::input>, Takes("InputEvent", {TYPE_FUNC})},
    {"", "CallKeyEvent", CallKeyEvent, Takes("CallKeyEvent", {TYPE_INT | TYPE_OBJECT}, 0)},
    {"", "MouseX", Give<&CurrentInput::x>, Takes("MouseX", {})},
    {"", "MouseY", Give<&CurrentInput::y>, Takes("MouseY", {})},
    {"", "MouseButton", MouseButton, Takes("MouseButton", {})},
    {"", "PressEvent", SetHandler<&InputHandlers::press>, Takes("PressEvent", {TYPE_FUNC})},
    {"", "WheelEvent", SetHandler<&InputHandlers::wheel>, Takes("WheelEvent", {TYPE_FUNC})},
    {"", "CallWheelEvent", CallWheelEvent, Takes("CallWheelEvent", {})},
    {"", "TimedEvent", TimedEvent},
    {"", "DropEvent", DropEvent, Takes("DropEvent", {TYPE_FUNC}, 0)},
    {"", "ErrorEvent", ErrorEvent, Takes("ErrorEvent", {TYPE_FUNC}, 0)},
};

}  // namespace

void EventRegister() {
    for (const KeyName& key : KeyNames()) {
        ConstRegister(key.name, IntCell(key.code));
    }
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
