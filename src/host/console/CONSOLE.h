// A window that exists only in memory, fed from an input file: one event a line.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "host/WINDOW.h"

namespace quelmark {

class ConsoleWindow final : public Window {
  public:
    // Reads the file that QUELMARKINPUT names, if any; exit status 2 when it cannot be read.
    ConsoleWindow();

    void Deliver(std::int32_t milliseconds) override;
    InputState TakeInput() override;
    bool TakeBreakKey() override;
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
    std::uint64_t Handle() const override { return 0; }

  private:
    struct Line {
        int number;
        std::vector<std::string> words;
        std::string text;
    };

    void ReadInput(const char* path);
    void Perform(const Line& line);
    void Key(const Line& line);
    void Mouse(const Line& line);
    void Menu(const Line& line);
    // Moves the answers that follow now to those already read.
    void CollectAnswers();
    void Shot(const std::string& path) const;

    std::deque<Line> lines_;
    std::deque<Line> answers_;  // answer, button and file lines that no dialog has taken yet
    InputState state_;
    std::uint32_t clock_ = 0;
    std::int32_t width_ = 1024, height_ = 768;
    std::uint8_t palette_[16][3] = {};
};

}  // namespace quelmark
