#include "MODEL/BUTTON.h"

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "host/BUTTONS.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t CreateButton(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (!IsString(argv[2])) {
        RuntimeError("%s", "SetButtonArea:3番目の引数の型が異なる"_sjis);
    }
    const std::int32_t state = argc > 4 ? argv[4].integer : BUTTON_ENABLE;
    StackPushInt(ButtonCreate(argv[0].integer, argv[1].integer, StringText(argv[2]), argv[3].integer, state));
    return RESULT;
}

std::int32_t UpdateButton(std::int32_t, std::int32_t, DataCell*) {
    ButtonsInvalidate();
    return NO_RESULT;
}

std::int32_t ClearButton(std::int32_t, std::int32_t, DataCell*) {
    ButtonsClear();
    return NO_RESULT;
}

std::int32_t ButtonArea(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(ButtonAreaWidth());
    if (argc > 0) {
        ButtonAreaSet(argv[0].integer);
    }
    return RESULT;
}

std::int32_t ButtonEnable(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t wanted = argc > 1 ? argv[1].integer : -1;
    Button* button = ButtonAt(argv[0].integer);
    if (button != nullptr && wanted >= 0) {
        button->state = wanted;
        ButtonsInvalidate();
    }
    StackPushInt(button != nullptr ? button->state : wanted);
    return RESULT;
}

// What is shown while the pointer rests on the button.
std::int32_t ButtonTip(std::int32_t, std::int32_t argc, DataCell* argv) {
    Button* button = ButtonAt(argv[0].integer);
    if (button != nullptr && argc > 1 && IsString(argv[1])) {
        button->tip = StringText(argv[1]);
    }
    StackPushString(button != nullptr ? button->tip : "");
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "CreateButton", CreateButton,
     Takes("CreateButton", {TYPE_INT, TYPE_INT, TYPE_OBJECT, TYPE_FUNC, TYPE_INT}, 4)},
    {"", "UpdateButton", UpdateButton, Takes("UpdateButton", {TYPE_INT}, 0)},
    {"", "ClearButton", ClearButton, Takes("ClearButton", {})},
    {"", "ButtonArea", ButtonArea, Takes("SetButtonArea", {TYPE_INT}, 0)},
    {"", "ButtonEnable", ButtonEnable, Takes("ButtonEnable", {TYPE_INT, TYPE_INT}, 1)},
    {"", "ButtonTip", ButtonTip, Takes("ButtonTip", {TYPE_INT, TYPE_OBJECT}, 1)},
};

}  // namespace

void ButtonLibraryRegister() {
    ConstRegister("BUTTON_ENABLE", IntCell(BUTTON_ENABLE));
    ConstRegister("BUTTON_REPEAT", IntCell(BUTTON_REPEAT));
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
