// The window system as the host sees it: one abstract window with two implementations, Qt and a console one
// that exists only in memory. The host core decides everything that is shown and hands over finished pictures
// and texts; an implementation shows them and reports input. Texts here are cp932.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "view/VIEW.h"

namespace quelmark {

// What the window knows of the hand's input at this moment; the wait step copies it into the current state.
struct InputState {
    std::int32_t x = 0, y = 0;          // pointer, client coordinates
    bool left = false, right = false;   // buttons held
    std::int32_t keyCode = 0;           // pending key code, 0 for none
    std::int32_t shift = 0;             // 1 Shift, 2 Ctrl
    bool closeRequested = false;        // the window system asks to close
    std::int32_t wheel = 0;             // pending wheel turns, away from the user positive
};

enum class Pane { Views, List, Buttons, Status, Message, Menu };

class Window {
  public:
    virtual ~Window() = default;

    // Lets the window system deliver waiting messages; waits up to `milliseconds` for the first. The window is
    // laid out, repainted and resized inside.
    virtual void Deliver(std::int32_t milliseconds) = 0;
    // Takes the input state; the pending key code and wheel are cleared.
    virtual InputState TakeInput() = 0;
    // A clock that only grows, in milliseconds.
    virtual std::uint32_t Milliseconds() = 0;

    virtual std::int32_t ClientWidth() = 0;
    virtual std::int32_t ClientHeight() = 0;
    virtual std::int32_t CharacterWidth() = 0;
    virtual std::int32_t LineHeight() = 0;

    // A pane's content has changed and is to be shown again (the host offers it through PANES.h).
    virtual void Invalidate(Pane pane) = 0;
    // Pixels of the views' frame have changed.
    virtual void InvalidateFrame(const PixelRect& rect) = 0;
    // One of the 16 palette entries.
    virtual void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) = 0;
    virtual void SetTitle(std::string_view title) = 0;
    virtual void Beep() = 0;
    // The native window's handle, 0 when there is none.
    virtual std::uint64_t Handle() = 0;
    virtual void Close() = 0;
};

// The one window; set by the program before HostMain.
extern Window* MainWindow;

}  // namespace quelmark
