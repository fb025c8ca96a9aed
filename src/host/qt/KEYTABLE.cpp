#include "host/qt/KEYTABLE.h"

#include <algorithm>
#include <iterator>

namespace quelmark {
namespace {

struct Row {
    int key;
    std::int32_t code;
};

// Page Up rolls down and Page Down rolls up, End undoes and Num Lock clears: chosen on purpose.
constexpr Row SPECIAL[] = {
    {Qt::Key_PageUp, 0x8011}, {Qt::Key_PageDown, 0x8010}, {Qt::Key_End, 0x801B},   {Qt::Key_Home, 0x801A},
    {Qt::Key_Left, 0x8015},   {Qt::Key_Up, 0x8014},       {Qt::Key_Right, 0x8016}, {Qt::Key_Down, 0x8017},
    {Qt::Key_Insert, 0x8012}, {Qt::Key_Delete, 0x8013},   {Qt::Key_Help, 0x8019},  {Qt::Key_NumLock, 0x8018},
    {Qt::Key_Escape, 27},     {Qt::Key_Backspace, 8},     {Qt::Key_Return, 13},    {Qt::Key_Enter, 13},
    {Qt::Key_Tab, 9},         {Qt::Key_Backtab, 9},       {Qt::Key_Space, 32},
};
// Enter, the comma and the equals sign are there what they are elsewhere.
constexpr Row KEYPAD[] = {
    {Qt::Key_Asterisk, 0x8027}, {Qt::Key_Plus, 0x8029},  {Qt::Key_Minus, 0x8028},
    {Qt::Key_Period, 0x802D},   {Qt::Key_Slash, 0x8026},
};

constexpr quint32 BESIDE_RIGHT_SHIFT = 97;  // the key of a Japanese keyboard, as X numbers it

template <std::size_t N>
std::int32_t Find(const Row (&rows)[N], int key) {
    const auto* row = std::ranges::find(rows, key, &Row::key);
    return row == std::end(rows) ? 0 : row->code;
}

}  // namespace

std::int32_t KeyCodeOf(const QKeyEvent& event) {
    const int key = event.key();
    const bool shift = (event.modifiers() & Qt::ShiftModifier) != 0;
    const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
    if ((event.modifiers() & Qt::KeypadModifier) != 0) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9) {
            return 0x801C + (key - Qt::Key_0);
        }
        if (const std::int32_t code = Find(KEYPAD, key)) {
            return code;
        }
    }
    if (key >= Qt::Key_A && key <= Qt::Key_Z) {
        return control ? key - 64 : shift ? key : key + 32;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F15) {
        return 0x8001 + (key - Qt::Key_F1);
    }
    const bool isBesideRightShift = event.nativeScanCode() == BESIDE_RIGHT_SHIFT;
    if (control && (key == Qt::Key_Underscore || (isBesideRightShift && !shift))) {
        return 0x1F;
    }
    return Find(SPECIAL, key);
}

}  // namespace quelmark
