// The window system as the host sees it: one abstract window with two implementations, Qt and a console one
// that exists only in memory. The host core decides everything that is shown and hands over finished pictures
// and plain data (PANES.h, MENUBAR.h, DIALOG.h); an implementation shows them and reports input. Texts here
// are cp932. What a window calls back is in HOST.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/DIALOG.h"
#include "host/MENUBAR.h"
#include "view/VIEW.h"

namespace quelmark {

// What the window knows of the hand's input at this moment.
struct InputState {
    std::int32_t x = 0, y = 0;         // pointer, client coordinates
    bool left = false, right = false;  // buttons held
    std::int32_t keyCode = 0;          // pending key code or menu command, 0 for none
    std::int32_t shift = 0;            // 1 Shift, 2 Ctrl
    std::int32_t wheel = 0;            // pending wheel turns, away from the user positive
    bool closeRequested = false;       // pending: the window system asks to close the window
    bool ended = false;                // no input will ever come again: the program is to quit
};

// A part of the client area whose contents PANES.h describes.
enum class Pane { List, Buttons, Status, Message, All };

class Window {
  public:
    virtual ~Window() = default;

    // Lets the window system deliver waiting messages; with none waiting, waits up to `milliseconds` for one.
    // Repaints happen in here; a new client size is reported with HostResized. Returns after the messages
    // that were waiting, so that a pending key is not overtaken by the next one.
    virtual void Deliver(std::int32_t milliseconds) = 0;
    // The input state; what is pending in it is then cleared.
    virtual InputState TakeInput() = 0;
    // The input state as the break check looks at it: nothing is cleared.
    virtual InputState PeekInput() = 0;
    // A clock that only grows (modulo 2^32), in milliseconds.
    virtual std::uint32_t Milliseconds() = 0;

    virtual std::int32_t ClientWidth() = 0;
    virtual std::int32_t ClientHeight() = 0;
    virtual std::int32_t CharacterWidth() = 0;  // of a half-width character
    virtual std::int32_t LineHeight() = 0;

    // A pane's contents have changed: shown again at the next delivery.
    virtual void Invalidate(Pane pane) = 0;
    // Pixels of ViewFrame have changed.
    virtual void InvalidateFrame(const PixelRect& rect) = 0;
    // One of the 16 palette entries; everything drawn in it changes, nothing is drawn again.
    virtual void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) = 0;
    virtual void SetTitle(std::string_view title) = 0;
    // The whole menu bar, from the left.
    virtual void SetMenu(const MenuTree& menus) = 0;
    // Runs the dialog modally: fills in the answers of its rows, whatever ends it, and gives the result of
    // the button pressed (0 when cancelled).
    virtual std::int32_t RunDialog(Dialog& dialog) = 0;
    // Runs the file-selection dialog modally: a host path (UTF-8), "" when cancelled.
    virtual std::string RunFileDialog(const FileDialog& dialog) = 0;
    // Opens a document (a script path) with the system's viewer.
    virtual void OpenDocument(std::string_view path) = 0;
    virtual void Beep() = 0;
    // The native window's handle, 0 when there is none.
    virtual std::uint64_t Handle() = 0;
};

}  // namespace quelmark
