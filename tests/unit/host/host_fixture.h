// A window whose hand is the test, and a run of the host inside which a test looks around.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "ML/FUNC.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/PANES.h"

namespace quelmark::test {

class HandWindow final : public Window {
  public:
    std::deque<InputState> hand;  // what comes; the last state stays
    std::uint32_t clock = 0;
    std::uint32_t tick = 0;  // milliseconds that each delivery takes
    std::int32_t width = 1024, height = 768;
    std::vector<Pane> shown;  // panes that were to be shown again
    MenuTree menus;
    std::vector<std::array<int, 4>> palette;  // index, red, green, blue
    int beeps = 0;
    int delivered = 0;
    std::string opened;  // document
    std::function<std::int32_t(Dialog&)> answer;
    std::string chosenFile;
    bool closeWanted = false;  // asked to close while a script runs

    void Deliver(std::int32_t milliseconds) override {
        ++delivered;
        clock += tick;
        if (milliseconds == 0) {
            return;
        }
        if (hand.empty()) {
            state_.finished = true;
        } else {
            state_ = hand.front();
            hand.pop_front();
        }
    }
    InputState TakeInput() override {
        const InputState taken = state_;
        state_.keyCode = 0;
        state_.wheel = 0;
        state_.closeRequested = false;
        state_.dropped.clear();
        return taken;
    }
    bool TakeBreakKey() override { return false; }
    bool TakeCloseRequest() override { return std::exchange(closeWanted, false); }
    bool TakeEscapeKey() override { return false; }
    void KeepLastKey() override {}
    std::uint32_t Milliseconds() override { return clock; }
    std::int32_t ClientWidth() const override { return width; }
    std::int32_t ClientHeight() const override { return height; }
    std::int32_t CharacterWidth() const override { return 8; }
    std::int32_t LineHeight() const override { return 16; }
    void Invalidate(Pane pane) override { shown.push_back(pane); }
    void InvalidateFrame(const PixelRect&) override {}
    void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) override {
        palette.push_back({index, red, green, blue});
    }
    void SetTitle(std::string_view) override {}
    void SetMenu(const MenuTree& tree) override { menus = tree; }
    std::int32_t RunDialog(Dialog& dialog) override { return answer ? answer(dialog) : 0; }
    std::string RunFileDialog(const FileDialog&) override { return chosenFile; }
    void OpenDocument(const std::string& path) override { opened = path; }
    void Beep() override { ++beeps; }
    std::uint64_t Handle() override { return 7; }
    PixelRect NativeRect(const PixelRect& rect) const override { return rect; }

  private:
    InputState state_;
};

inline std::function<void()> look;                     // what the script's Look() does
inline std::vector<std::vector<std::int32_t>> called;  // arguments of each call of the handler Note

inline std::int32_t Look(std::int32_t, std::int32_t, DataCell*) {
    look();
    return NO_RESULT;
}
inline std::int32_t Note(std::int32_t, std::int32_t argc, DataCell* argv) {
    std::vector<std::int32_t> numbers;
    for (std::int32_t i = 0; i < argc; ++i) {
        numbers.push_back(argv[i].integer);
    }
    called.push_back(numbers);
    StackPushInt(1);
    return RESULT;
}
inline void RegisterLook() {
    FunctionRegister(0, "Look", Look);
    FunctionRegister(0, "Note", Note);
}

class HostTest : public testing::Test {
  protected:
    HandWindow window;
    std::filesystem::path folder;

    void SetUp() override {
        called.clear();
        std::string name = std::filesystem::temp_directory_path() / "hostXXXXXX";
        folder = ::mkdtemp(name.data());
        Write("Quelmark.ini", "SourceFile t.qms\n");
        Write("t.qms", "Look();\n");
        ::setenv("MODELPATH", folder.c_str(), 1);
        ::unsetenv("QUELMARKLOG");
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    void Write(const std::string& name, const std::string& text) { std::ofstream(folder / name) << text; }
    // Runs the host; `inside` is called when everything is set up. The exit status.
    int Run(const std::function<void()>& inside) {
        bool looked = false;
        look = [&] {
            looked = true;
            inside();
        };
        const int status = HostMain(window, folder / "program", {}, RegisterLook);
        EXPECT_TRUE(looked);
        return status;
    }
    static std::int32_t NoteHandler() { return FunctionFind("Note"); }
    void Hand(std::initializer_list<InputState> states) { window.hand.assign(states); }
};

inline InputState Key(std::int32_t code, std::int32_t shift = 0) {
    InputState state;
    state.keyCode = code;
    state.shift = shift;
    return state;
}
inline InputState Pointer(std::int32_t x, std::int32_t y, std::int32_t buttons) {
    InputState state;
    state.x = x;
    state.y = y;
    state.left = (buttons & 1) != 0;
    state.right = (buttons & 2) != 0;
    return state;
}

}  // namespace quelmark::test
