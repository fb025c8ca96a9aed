// A window that exists only in memory, fed from an input file: one event a line.
#pragma once

#include <chrono>
#include <ctime>
#include <string>

#include "host/WINDOW.h"
#include "host/console/SESSION.h"

namespace quelmark {

class ConsoleWindow final : public Window {
  public:
    // Reads the session that QUELMARKINPUT names, if any.
    ConsoleWindow();

    // Without time to wait nothing comes: the next event belongs to the next wait step.
    void Deliver(std::int32_t milliseconds) override;
    InputState TakeInput() override;
    bool TakeBreakKey() override;
    bool TakeCloseRequest() override { return false; }  // it waits for the wait step
    bool TakeEscapeKey() override { return false; }     // the keys of a session are for its wait steps
    void KeepLastKey() override {}
    std::uint32_t Milliseconds() override { return clock_; }
    std::int32_t ClientWidth() const override { return width_; }
    std::int32_t ClientHeight() const override { return height_; }
    std::int32_t CharacterWidth() const override { return 8; }
    std::int32_t LineHeight() const override { return 16; }
    void Invalidate(Pane) override {}
    void InvalidateFrame(const PixelRect&) override {}
    void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) override;
    void SetTitle(std::string_view) override {}
    void SetMenu(const MenuTree&) override {}
    std::int32_t RunDialog(Dialog& dialog) override;
    std::string RunFileDialog(const FileDialog& dialog) override;
    void OpenDocument(const std::string&) override {}
    void Beep() override {}
    std::uint64_t Handle() override { return 0; }
    PixelRect NativeRect(const PixelRect& rect) const override { return rect; }

  private:
    void Perform(const SessionEvent& event);
    void Menu(const SessionEvent& event);
    // Moves the answers that follow now to those already read.
    void CollectAnswers();
    // A script has been running for more than a moment since the last event.
    bool RunsOn();
    void Shot(const SessionEvent& event) const;

    Session events_;
    Session answers_;  // answer, button and file lines that no dialog has taken yet
    InputState state_;
    std::uint32_t clock_ = 0;
    std::uint32_t waiting_ = 0;  // milliseconds of a wait line that have not passed yet
    std::int32_t width_ = 1024, height_ = 768;
    std::uint8_t palette_[16][3] = {};
    bool running_ = false;  // a script has asked for the break key since the last event
    std::clock_t processorBefore_ = 0;
    std::chrono::steady_clock::time_point timeBefore_;
};

}  // namespace quelmark
