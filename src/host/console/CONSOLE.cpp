#include "host/console/CONSOLE.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ML/ERROR.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "text/cp932.h"
#include "text/path.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t SIZE_MOST = 16384;

// A whole decimal or 0x number; false when the word is none.
bool ToNumber(const std::string& word, std::int32_t& number) {
    char* end = nullptr;
    const long value = std::strtol(word.c_str(), &end, 0);
    number = static_cast<std::int32_t>(std::clamp(value, -2147483647L, 2147483647L));
    return !word.empty() && *end == '\0';
}

// A bad line ends the program: a recording that is not what it was meant to be proves nothing.
[[noreturn]] void Refuse(int number, const std::string& text, const char* why) {
    std::fflush(stdout);
    std::fprintf(stderr, "quelmarkc: input line %d: %s: %s\n", number, why, text.c_str());
    std::_Exit(2);
}

// A line for a dialog: `answer ROW VALUE`, `button N`, `file PATH`.
bool IsAnswer(const std::vector<std::string>& words) {
    std::int32_t number = 0;
    return (words[0] == "answer" && words.size() >= 2 && ToNumber(words[1], number)) ||
           (words[0] == "button" && words.size() == 2 && ToNumber(words[1], number)) || words[0] == "file";
}

// What stands behind the first `skipped` words of a line.
std::string RestOf(const std::string& text, std::size_t skipped) {
    constexpr const char* BLANKS = " \t";
    std::size_t at = text.find_first_not_of(BLANKS);
    for (std::size_t word = 0; word < skipped && at != std::string::npos; ++word) {
        at = text.find_first_of(BLANKS, at);
        // One blank parts the words; further ones before the rest belong to it only behind the last word.
        at = at == std::string::npos ? at
             : word + 1 < skipped    ? text.find_first_not_of(BLANKS, at)
             : at + 1 < text.size()  ? at + 1
                                     : std::string::npos;
    }
    return at == std::string::npos ? "" : text.substr(at);
}

// The answer as the control of that row would give it.
void GiveAnswer(DialogRow& row, const std::string& text, std::int32_t number) {
    switch (row.kind) {
        case RowKind::Text:
            row.text = Utf8ToCp932Lossy(text);
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
    if (const char* path = std::getenv("QUELMARKINPUT")) {
        ReadInput(path);
    }
}

void ConsoleWindow::ReadInput(const char* path) {
    std::ifstream file(path);
    if (!file) {
        std::fprintf(stderr, "quelmarkc: cannot read the input file %s\n", path);
        std::exit(2);
    }
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        if (!text.empty() && text.back() == '\r') {
            text.pop_back();
        }
        Line line{number, {}, text};
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            line.words.push_back(word);
        }
        // A blank as a key stands in quotes, which the words above take apart.
        if (line.words.size() > 2 && line.words[0] == "key" && line.words[1] == "'" && line.words[2] == "'") {
            line.words.erase(line.words.begin() + 2);
            line.words[1] = "' '";
        }
        if (!line.words.empty() && !line.words[0].starts_with('#')) {
            lines_.push_back(std::move(line));
        }
    }
}

void ConsoleWindow::Deliver(std::int32_t milliseconds) {
    // Only a wait step takes an event; who merely lets the window work must not lose the next key.
    if (milliseconds == 0) {
        return;
    }
    if (lines_.empty()) {
        state_.finished = true;
        return;
    }
    const Line line = std::move(lines_.front());
    lines_.pop_front();
    Perform(line);
}

void ConsoleWindow::Perform(const Line& line) {
    const std::string& command = line.words[0];
    const std::size_t count = line.words.size();
    std::int32_t a = 0, b = 0, c = 0;
    if (command == "key" && (count == 2 || count == 3)) {
        Key(line);
    } else if (command == "mouse" && count == 4) {
        Mouse(line);
    } else if (command == "wheel" && count == 4 && ToNumber(line.words[1], a) && ToNumber(line.words[2], b) &&
               ToNumber(line.words[3], c)) {
        state_.x = a;
        state_.y = b;
        state_.wheel = c;
    } else if (command == "size" && count == 3 && ToNumber(line.words[1], a) && ToNumber(line.words[2], b)) {
        width_ = std::clamp(a, 1, SIZE_MOST);
        height_ = std::clamp(b, 1, SIZE_MOST);
        HostResized();
    } else if (command == "close" && count == 1) {
        state_.closeRequested = true;
    } else if (command == "wait" && count == 2 && ToNumber(line.words[1], a) && a >= 0) {
        clock_ += static_cast<std::uint32_t>(a);
    } else if (command == "shot" && count >= 2) {
        Shot(line.text.substr(line.text.find("shot") + 5));
    } else if ((command == "menu" && count == 3) || (command == "open" && count == 2)) {
        Menu(line);
    } else if (IsAnswer(line.words)) {
        answers_.push_back(line);
    } else {
        Refuse(line.number, line.text, "not an event");
    }
}

void ConsoleWindow::Menu(const Line& line) {
    std::int32_t position = 0, item = 0;
    const bool picks = line.words[0] == "menu";
    if (!ToNumber(line.words[1], position) || (picks && !ToNumber(line.words[2], item)) || position < 0 ||
        position >= MAX_MENU || item < 0 || item > 255) {
        Refuse(line.number, line.text, "no such place in the menu bar");
    }
    if (picks) {
        const MenuRecord* menu = MenuAt(position);
        MenuHighlight =
            menu != nullptr && item < menu->count ? menu->texts[static_cast<std::size_t>(item)].data() : "";
        state_.keyCode = MENU_CODE_FIRST + 256 * position + item;
        return;
    }
    for (const MenuEntry& entry : MenuOpened(position)) {
        OutputLog(entry.text + "\t" + std::to_string(entry.flags) + "\n");
    }
}

void ConsoleWindow::CollectAnswers() {
    while (!lines_.empty() && IsAnswer(lines_.front().words)) {
        answers_.push_back(std::move(lines_.front()));
        lines_.pop_front();
    }
}

std::int32_t ConsoleWindow::RunDialog(Dialog& dialog) {
    CollectAnswers();
    while (!answers_.empty() && answers_.front().words[0] != "file") {
        const Line line = std::move(answers_.front());
        answers_.pop_front();
        std::int32_t number = 0;
        ToNumber(line.words[1], number);
        if (line.words[0] == "button") {
            return number;
        }
        const auto row = std::ranges::find(dialog.rows, number, &DialogRow::row);
        if (row == dialog.rows.end() || row->kind == RowKind::Message) {
            Refuse(line.number, line.text, "the dialog has no such row");
        }
        std::int32_t value = 0;
        const std::string text = RestOf(line.text, 2);
        if (!ToNumber(line.words.size() > 2 ? line.words[2] : "", value) && row->kind != RowKind::Text) {
            Refuse(line.number, line.text, "the row takes a number");
        }
        GiveAnswer(*row, text, value);
    }
    return 0;
}

std::string ConsoleWindow::RunFileDialog(const FileDialog&) {
    CollectAnswers();
    if (answers_.empty() || answers_.front().words[0] != "file") {
        return "";
    }
    const std::string path = RestOf(answers_.front().text, 1);
    answers_.pop_front();
    if (path.empty()) {
        return "";
    }
    // A chosen file is always told by its whole path.
    const auto chosen = HostPath(Utf8ToCp932Lossy(path));
    return std::filesystem::absolute(chosen.value_or(path)).lexically_normal().string();
}

void ConsoleWindow::Key(const Line& line) {
    const std::string& word = line.words[1];
    std::int32_t code = 0;
    const auto names = KeyNames();
    const auto named = std::ranges::find_if(names, [&word](const KeyName& key) { return key.name == word; });
    if (named != names.end()) {
        code = named->code;
    } else if (word.size() == 3 && word.front() == '\'' && word.back() == '\'') {
        code = static_cast<unsigned char>(word[1]);
    } else if (!ToNumber(word, code)) {
        const auto character = Utf8ToCp932(word);
        if (!character || character->size() != 1) {
            Refuse(line.number, line.text, "no key of that name");
        }
        code = static_cast<unsigned char>((*character)[0]);
    }
    state_.shift = 0;
    if (line.words.size() == 3 && !ToNumber(line.words[2], state_.shift)) {
        Refuse(line.number, line.text, "the shift state is no number");
    }
    state_.keyCode = code;
}

void ConsoleWindow::Mouse(const Line& line) {
    std::int32_t buttons = 0;
    if (!ToNumber(line.words[1], state_.x) || !ToNumber(line.words[2], state_.y) ||
        !ToNumber(line.words[3], buttons) || buttons < 0 || buttons > 3) {
        Refuse(line.number, line.text, "mouse takes X, Y and buttons 0 to 3");
    }
    state_.left = (buttons & 1) != 0;
    state_.right = (buttons & 2) != 0;
}

InputState ConsoleWindow::TakeInput() {
    const InputState taken = state_;
    state_.keyCode = 0;
    state_.wheel = 0;
    state_.closeRequested = false;
    return taken;
}

bool ConsoleWindow::TakeBreakKey() {
    if (lines_.empty()) {
        return false;
    }
    const auto& words = lines_.front().words;
    if (words.size() == 3 && words[0] == "key" && words[1] == "KEY_DEL" && words[2] == "3") {
        lines_.pop_front();
        return true;
    }
    return false;
}

void ConsoleWindow::SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    palette_[index & 15][0] = red;
    palette_[index & 15][1] = green;
    palette_[index & 15][2] = blue;
}

void ConsoleWindow::Shot(const std::string& path) const {
    const FilePtr file(std::fopen(path.c_str(), "wb"));
    if (!file) {
        std::fprintf(stderr, "quelmarkc: cannot write %s\n", path.c_str());
        return;
    }
    std::fprintf(file.get(), "P6\n%d %d\n255\n", ViewFrame.width, ViewFrame.height);
    for (const std::uint8_t pixel : ViewFrame.pixels) {
        std::fwrite(palette_[pixel & 15], 1, 3, file.get());
    }
}

}  // namespace quelmark
