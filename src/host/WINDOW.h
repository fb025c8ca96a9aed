// The window system as the host sees it: one abstract window with two implementations, Qt and a console one
// that exists only in memory. The host decides everything that is shown and hands over finished pictures and
// texts (PANES.h); an implementation shows them and reports input. Texts here are cp932.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/DIALOG.h"
#include "host/MENUBAR.h"
#include "view/RASTER.h"

namespace quelmark {

// What the hand does at this moment; the wait step copies it into the current state.
struct InputState {
    std::int32_t x = 0, y = 0;         // pointer, client coordinates
    bool left = false, right = false;  // buttons held
    std::int32_t keyCode = 0;          // key code not yet taken, 0 for none
    std::int32_t shift = 0;            // 1 Shift, 2 Ctrl
    std::int32_t wheel = 0;            // turns not yet taken, away from the user positive
    bool closeRequested = false;       // the window system asks to close
    bool finished = false;             // there will be no more input
    std::vector<std::string> dropped;  // files dropped on the window, not yet taken; host paths
};

enum class Pane { List, Buttons, Status, Message };

class Window {
  public:
    virtual ~Window() = default;

    // Lets the window system deliver waiting messages; waits up to `milliseconds` for the first. The window
    // is repainted and resized inside; a new size is told by HostResized. With 0 the whole window is as it
    // is to be seen afterwards.
    virtual void Deliver(std::int32_t milliseconds) = 0;
    // Takes the input state; the key code, the wheel turns, the request to close and the dropped files are
    // cleared.
    virtual InputState TakeInput() = 0;
    // Delivers messages without waiting; true when Shift+Ctrl+Delete is waiting, which is taken.
    virtual bool TakeBreakKey() = 0;
    // True when the window system asks to close, which is taken. Delivers nothing.
    virtual bool TakeCloseRequest() = 0;
    // Delivers messages without waiting; true when Escape is waiting, which is taken with every other key.
    virtual bool TakeEscapeKey() = 0;
    // Forgets what has come while nothing was taken, but for the last key.
    virtual void KeepLastKey() = 0;
    // A clock that only grows.
    virtual std::uint32_t Milliseconds() = 0;

    virtual std::int32_t ClientWidth() const = 0;
    virtual std::int32_t ClientHeight() const = 0;
    virtual std::int32_t CharacterWidth() const = 0;
    virtual std::int32_t LineHeight() const = 0;

    // A pane's content has changed and is to be shown again.
    virtual void Invalidate(Pane pane) = 0;
    // Pixels of the views' frame have changed.
    virtual void InvalidateFrame(const PixelRect& rect) = 0;
    // One of the 16 palette entries.
    virtual void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) = 0;
    // What stands behind the program's name in the window's title; "" leaves the name alone.
    virtual void SetTitle(std::string_view title) = 0;
    // The whole menu bar, from the left.
    virtual void SetMenu(const MenuTree& menus) = 0;
    // Runs the dialog modally: leaves the answers in its rows, whatever ends it, and gives the result of the
    // button pressed, 0 when cancelled.
    virtual std::int32_t RunDialog(Dialog& dialog) = 0;
    // Runs the file-selection dialog modally: a host path, "" when cancelled.
    virtual std::string RunFileDialog(const FileDialog& dialog) = 0;
    // Opens a document (host path) with the system's viewer.
    virtual void OpenDocument(const std::string& path) = 0;
    virtual void Beep() = 0;
    // The handle of the native window that shows the client area, 0 when there is none.
    virtual std::uint64_t Handle() = 0;
    // A part of the client area in the pixels of the native window, which may be smaller than those here.
    virtual PixelRect NativeRect(const PixelRect& rect) const = 0;
};

}  // namespace quelmark
