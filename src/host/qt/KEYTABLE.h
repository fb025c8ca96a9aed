// This window library's keys and the system's key codes.
#pragma once

#include <QKeyEvent>
#include <cstdint>

namespace quelmark {

// The code of a key press: letters by Shift and Ctrl, function keys, keypad and the special keys; 0 for a key
// that only its text (a digit, punctuation, an input method's) gives a code.
std::int32_t KeyCodeOf(const QKeyEvent& event);

}  // namespace quelmark
