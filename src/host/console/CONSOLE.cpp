#include "host/console/CONSOLE.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "ML/ERROR.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "text/cp932.h"
#include "text/path.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

bool IsAnswer(const SessionEvent& event) {
    return event.kind == EventKind::Answer || event.kind == EventKind::Button ||
           event.kind == EventKind::File;
}

std::string_view Trimmed(std::string_view text) {
    constexpr const char* BLANKS = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

// A chosen file is always told by its whole path; a name that scripts cannot have is left to the host to
// refuse.
std::string WholePath(const std::string& path) {
    const auto name = Utf8ToCp932(path);
    const auto chosen = name ? HostPath(*name) : std::nullopt;
    return std::filesystem::absolute(chosen.value_or(path)).lexically_normal().string();
}

// The answer as the control of that row would give it.
void GiveAnswer(DialogRow& row, const SessionEvent& answer) {
    std::int32_t number = 0;
    if (row.kind != RowKind::Text && !ReadNumber(Trimmed(answer.text), number)) {
        RefuseEvent(answer, "the row takes a number");
    }
    switch (row.kind) {
        case RowKind::Text:
            row.text = Utf8ToCp932(answer.text).value_or("");
            break;
        case RowKind::Toggle:
            row.value = number != 0 ? 1 : 0;
            break;
        case RowKind::Selection:
            row.value = std::clamp(number, 0, std::max(static_cast<std::int32_t>(row.choices.size()) - 1, 0));
            break;
        case RowKind::Slider:
            row.value = std::clamp(number, row.lower, std::max(row.lower, row.upper));
            break;
        case RowKind::Message:
            break;
    }
}

}  // namespace

ConsoleWindow::ConsoleWindow() {
    const char* path = std::getenv("QUELMARKINPUT");
    if (path != nullptr && path[0] != '\0') {
        events_ = ReadSession(path);
    }
}

void ConsoleWindow::Deliver(std::int32_t milliseconds) {
    if (milliseconds <= 0) {
        return;  // only a wait step takes an event
    }
    running_ = false;
    if (waiting_ > 0) {
        // Time passes as it does while a hand rests, only faster when it is long.
        constexpr std::uint32_t STEPS_MOST = 10000;
        const auto once = static_cast<std::uint32_t>(milliseconds);
        const std::uint32_t step = std::min(once * (1 + waiting_ / once / STEPS_MOST), waiting_);
        clock_ += step;
        waiting_ -= step;
        return;
    }
    if (events_.empty()) {
        state_.finished = true;
        return;
    }
    const SessionEvent event = std::move(events_.front());
    events_.pop_front();
    Perform(event);
}

void ConsoleWindow::Perform(const SessionEvent& event) {
    switch (event.kind) {
        case EventKind::Key:
            state_.keyCode = event.first;
            state_.shift = event.second;
            break;
        case EventKind::Mouse:
            state_.x = event.first;
            state_.y = event.second;
            state_.left = (event.third & 1) != 0;
            state_.right = (event.third & 2) != 0;
            break;
        case EventKind::Wheel:
            state_.x = event.first;
            state_.y = event.second;
            state_.wheel = event.third;
            break;
        case EventKind::Menu:
        case EventKind::Open:
            Menu(event);
            break;
        case EventKind::Size:
            width_ = event.first;
            height_ = event.second;
            HostResized();
            break;
        case EventKind::Close:
            state_.closeRequested = true;
            break;
        case EventKind::Wait:
            waiting_ = static_cast<std::uint32_t>(event.first);
            break;
        case EventKind::Shot:
            Shot(event);
            break;
        case EventKind::Drop:
            state_.dropped.push_back(WholePath(event.text));
            break;
        case EventKind::Answer:
        case EventKind::Button:
        case EventKind::File:
            answers_.push_back(event);
            break;
    }
}

void ConsoleWindow::Menu(const SessionEvent& event) {
    if (event.kind == EventKind::Menu) {
        const MenuRecord* menu = MenuAt(event.first);
        MenuHighlight = menu != nullptr && event.second < menu->count
                            ? menu->texts[static_cast<std::size_t>(event.second)].data()
                            : "";
        state_.keyCode = MENU_CODE_FIRST + 256 * event.first + event.second;
        return;
    }
    for (const MenuEntry& entry : MenuOpened(event.first)) {
        OutputLog(entry.text + "\t" + std::to_string(entry.flags) + "\n");
    }
}

void ConsoleWindow::CollectAnswers() {
    while (!events_.empty() && IsAnswer(events_.front())) {
        answers_.push_back(std::move(events_.front()));
        events_.pop_front();
    }
}

std::int32_t ConsoleWindow::RunDialog(Dialog& dialog) {
    CollectAnswers();
    while (!answers_.empty() && answers_.front().kind != EventKind::File) {
        const SessionEvent event = std::move(answers_.front());
        answers_.pop_front();
        if (event.kind == EventKind::Button) {
            return event.first;
        }
        const auto row = std::ranges::find(dialog.rows, event.first, &DialogRow::row);
        if (row == dialog.rows.end() || row->kind == RowKind::Message) {
            RefuseEvent(event, "the dialog has no such row");
        }
        GiveAnswer(*row, event);
        if (!DialogChanged(dialog, row->row)) {
            return 0;
        }
    }
    return 0;
}

std::string ConsoleWindow::RunFileDialog(const FileDialog&) {
    CollectAnswers();
    if (answers_.empty() || answers_.front().kind != EventKind::File) {
        return "";
    }
    const std::string path = answers_.front().text;
    answers_.pop_front();
    return path.empty() ? "" : WholePath(path);
}

InputState ConsoleWindow::TakeInput() {
    InputState taken = state_;
    state_.keyCode = 0;
    state_.wheel = 0;
    state_.closeRequested = false;
    state_.dropped.clear();
    return taken;
}

// Nobody stops a script within its first moment: the keys are for one that goes on, else they wait for the
// wait step.
bool ConsoleWindow::RunsOn() {
    constexpr std::clock_t MOMENT = CLOCKS_PER_SEC / 100;
    constexpr auto LONG_MOMENT = std::chrono::milliseconds(500);  // of a script that mostly sleeps
    if (!running_) {
        running_ = true;
        processorBefore_ = std::clock();
        timeBefore_ = std::chrono::steady_clock::now();
    }
    return std::clock() - processorBefore_ >= MOMENT ||
           std::chrono::steady_clock::now() - timeBefore_ >= LONG_MOMENT;
}

bool ConsoleWindow::TakeBreakKey() {
    const bool wanted = RunsOn() && !events_.empty() && events_.front().kind == EventKind::Key &&
                        events_.front().first == KEY_DELETE &&
                        events_.front().second == (SHIFT_KEY | CTRL_KEY);
    if (wanted) {
        events_.pop_front();
    }
    return wanted;
}

void ConsoleWindow::SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    palette_[index & 15][0] = red;
    palette_[index & 15][1] = green;
    palette_[index & 15][2] = blue;
}

void ConsoleWindow::Shot(const SessionEvent& event) const {
    const FilePtr file(std::fopen(std::string(Trimmed(event.text)).c_str(), "wb"));
    if (!file) {
        RefuseEvent(event, "the file cannot be written");
    }
    std::fprintf(file.get(), "P6\n%d %d\n255\n", ViewFrame.width, ViewFrame.height);
    for (std::int32_t y = 0; y < ViewFrame.height; ++y) {
        for (std::int32_t x = 0; x < ViewFrame.width; ++x) {
            std::fwrite(palette_[ViewFrame.Row(y)[x] & 15], 1, 3, file.get());
        }
    }
}

}  // namespace quelmark
