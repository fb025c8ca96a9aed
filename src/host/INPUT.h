// Input as scripts see it: the current state, the wait step through which every script wait passes, key codes
// and the tables of script handlers.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "host/WINDOW.h"

namespace quelmark {

// The state that the last wait step left.
struct CurrentInput {
    std::int32_t x = 0, y = 0;
    bool left = false, right = false;
    bool moved = false;  // the pointer is elsewhere than in the step before
    std::int32_t keyCode = 0;
    std::int32_t shift = 0;
    std::int32_t wheel = 0;
};
extern CurrentInput Input;

inline constexpr std::int32_t KEY_SPECIAL = 0x8000;
inline constexpr std::int32_t KEY_ESCAPE = 27;
inline constexpr std::int32_t KEY_DELETE = 0x8013;
inline constexpr std::int32_t MENU_CODE_FIRST = 0x7000;
inline constexpr std::int32_t MENU_CODE_END = 0x7C00;
inline constexpr std::int32_t MOUSE_LEFT = 1;
inline constexpr std::int32_t MOUSE_RIGHT = 2;
inline constexpr std::int32_t SHIFT_KEY = 1;
inline constexpr std::int32_t CTRL_KEY = 2;

struct KeyName {
    const char* name;
    std::int32_t code;
};
// The constants of scripts for keys and switches, in their order.
std::span<const KeyName> KeyNames();

// Script handlers, function ids or -1. A number of special keys one too large falls on the input handler:
// scripts may rely on it.
struct InputHandlers {
    std::int32_t character[128];
    std::int32_t special[46];
    std::int32_t input;
    std::int32_t press;
    std::int32_t wheel;
};
extern InputHandlers Handlers;
void HandlersReset();
// Binds a special key by number; 46 sets the input handler, other numbers outside 0 to 45 do nothing.
void BindSpecialKey(std::int32_t number, std::int32_t handler);

// What `InputMode` sets.
inline constexpr std::int32_t WAIT_LEFT = 1, WAIT_RIGHT = 2, WAIT_SPACE = 32;
inline constexpr std::int32_t TRACK_LEFT = 1, TRACK_RIGHT = 2, TRACK_MOVES = 4, TRACK_TIMED = 8;
struct WaitMode {
    // What an input step waits for: one of the buttons, or the space key.
    std::int32_t wait = WAIT_LEFT;
    // Bits: the 3-D cursor follows a button; the pointer's moves end a step; the timed handler has its turn
    // in a script's waits, and ends them.
    std::int32_t tracking = TRACK_RIGHT;
};
extern WaitMode Mode;

// Set by Quit, by the window's close and when input ends; the event loop and every wait leave.
extern bool QuitFlag;

// Who waits. The event loop's steps end also when it has something to call beside input (LOOPEVENT.h); a wait
// for the release also when a handler inside it has seen the release.
enum class Waiting : std::uint8_t { Script, EventLoop, Release };
bool ButtonHeld();
// What InputMode has set lets the timed handler be called in a script's waits.
bool TimedHandlerAllowed();
// Lets the window deliver messages until a key, a button change, a drag or a wheel turn comes; takes it as
// the current state.
void WaitStep(Waiting who = Waiting::Script);
// Takes the window's input state. The end of input and a request to close are dealt with; dropped files are
// put aside for the event loop.
InputState TakeInput();
// What is left of a press that is held, its release too, is no input: an error has ended what it began.
void PressSpend();
// A key taken by something that is no wait step: the next wait step has it, unless another one follows.
void KeyPutBack(std::int32_t code, std::int32_t shift);
// Lets the colour that pulses go on while nothing waits for input.
void PulseOn();
// It rests while the picture of another program, which has been given the window's handle, stands in the
// views.
void PulseRest();
// The views have been drawn: the pulse goes on.
void PulseGoOn();
// Waits until both buttons are up.
void WaitRelease();
// One input step: panes first, then the state for the script. True when what `Mode` waits for has come.
bool InputStep(Waiting who = Waiting::Script);
// Calls the handler of the current key; false when it has none.
bool DispatchKey();
// Calls a handler with Int arguments and drops its result; what it returned as a truth, false for none.
bool CallHandler(std::int32_t handler, std::initializer_list<std::int32_t> arguments);
// The same for a handler that answers with an INT or BOOLEAN; 0 for any other.
std::int32_t AskHandler(std::int32_t handler, std::initializer_list<std::int32_t> arguments);

}  // namespace quelmark
