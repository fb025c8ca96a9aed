#include "host/console/SESSION.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "host/DIALOG.h"
#include "host/INPUT.h"
#include "host/MENUBAR.h"
#include "text/cp932.h"

namespace quelmark {
namespace {

constexpr std::int32_t SIZE_MOST = 16384;
constexpr std::int32_t CODE_MOST = 0xFFFF;
constexpr std::int32_t ANY_LEAST = INT32_MIN, ANY_MOST = INT32_MAX;
constexpr const char* BLANKS = " \t";

struct NumberRange {
    std::int32_t least = ANY_LEAST, most = ANY_MOST;
};

// How a line of a kind looks: its numbers, and whether the rest of the line is text.
struct EventForm {
    const char* name;
    EventKind kind;
    std::vector<NumberRange> numbers;
    bool takesText;
    const char* wrong;  // said of a line that does not look so
};

const std::vector<EventForm>& Forms() {
    static const std::vector<EventForm> forms = {
        {"mouse", EventKind::Mouse, {{}, {}, {0, 3}}, false, "mouse takes X, Y and buttons 0 to 3"},
        {"wheel", EventKind::Wheel, {{}, {}, {}}, false, "wheel takes X, Y and turns"},
        {"menu",
         EventKind::Menu,
         {{0, MAX_MENU - 1}, {0, 255}},
         false,
         "menu takes a position of the bar and an item"},
        {"open", EventKind::Open, {{0, MAX_MENU - 1}}, false, "open takes a position of the bar"},
        {"size", EventKind::Size, {{1, SIZE_MOST}, {1, SIZE_MOST}}, false, "size takes width and height"},
        {"close", EventKind::Close, {}, false, "close takes nothing"},
        {"wait", EventKind::Wait, {{0, ANY_MOST}}, false, "wait takes milliseconds"},
        {"shot", EventKind::Shot, {}, true, "shot takes a file name"},
        {"answer", EventKind::Answer, {{0, DIALOG_ROWS - 1}}, true, "answer takes a row and its value"},
        {"button", EventKind::Button, {{}}, false, "button takes a result"},
        {"file", EventKind::File, {}, true, "file takes a path"},
        {"drop", EventKind::Drop, {}, true, "drop takes a path"},
    };
    return forms;
}

// Takes the next word off the front of `rest`.
std::string_view TakeWord(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(BLANKS), rest.size()));
    const std::size_t end = std::min(rest.find_first_of(BLANKS), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
}

// Nothing is left but blanks and perhaps a comment.
bool IsAtEnd(std::string_view rest) {
    const std::string_view word = TakeWord(rest);
    return word.empty() || word.starts_with('#');
}

// The text behind the one blank that parts it from what stands before.
std::string RestText(std::string_view rest) {
    return std::string(rest.substr(std::min<std::size_t>(rest.size(), 1)));
}

bool ReadForm(const EventForm& form, std::string_view rest, SessionEvent& event) {
    const std::array<std::int32_t*, 3> fields = {&event.first, &event.second, &event.third};
    event.kind = form.kind;
    for (std::size_t i = 0; i < std::min(form.numbers.size(), fields.size()); ++i) {
        if (!ReadNumber(TakeWord(rest), *fields[i]) || *fields[i] < form.numbers[i].least ||
            *fields[i] > form.numbers[i].most) {
            return false;
        }
    }
    if (form.takesText) {
        event.text = RestText(rest);
        const bool mayBeEmpty = form.kind == EventKind::Answer || form.kind == EventKind::File;
        return mayBeEmpty || event.text.find_first_not_of(BLANKS) != std::string::npos;
    }
    return IsAtEnd(rest);
}

// The key codes that a word means; none when it means nothing. A double-byte character is two codes.
std::vector<std::int32_t> KeyCodes(std::string_view word) {
    const auto names = KeyNames();
    const auto named = std::ranges::find_if(names, [word](const KeyName& key) { return word == key.name; });
    if (named != names.end()) {
        return {named->code};
    }
    std::int32_t code = 0;
    if (ReadNumber(word, code)) {
        return 0 <= code && code <= CODE_MOST ? std::vector<std::int32_t>{code} : std::vector<std::int32_t>{};
    }
    if (word.size() > 2 && word.starts_with('\'') && word.ends_with('\'')) {
        word = word.substr(1, word.size() - 2);
    }
    const auto character = Utf8ToCp932(word);
    std::vector<std::int32_t> codes;
    if (character && (character->size() == 1 ||
                      (character->size() == 2 && IsLeadByte(static_cast<unsigned char>((*character)[0]))))) {
        for (const char byte : *character) {
            codes.push_back(static_cast<unsigned char>(byte));
        }
    }
    return codes;
}

void ReadKey(std::string_view rest, SessionEvent event, Session& session) {
    rest.remove_prefix(std::min(rest.find_first_not_of(BLANKS), rest.size()));
    std::string_view word = rest.substr(0, 3);
    if (word == "' '") {
        rest.remove_prefix(3);
    } else {
        word = TakeWord(rest);
    }
    const std::vector<std::int32_t> codes = KeyCodes(word);
    if (codes.empty()) {
        RefuseEvent(event, "no key of that name");
    }
    if (!IsAtEnd(rest) && !(ReadNumber(TakeWord(rest), event.second) && 0 <= event.second &&
                            event.second <= (SHIFT_KEY | CTRL_KEY) && IsAtEnd(rest))) {
        RefuseEvent(event, "the shift state is a number from 0 to 3");
    }
    for (const std::int32_t code : codes) {
        event.first = code;
        session.push_back(event);
    }
}

void ReadLine(SessionEvent event, Session& session) {
    std::string_view rest = event.whole;
    const std::string_view command = TakeWord(rest);
    if (command.empty() || command.starts_with('#')) {
        return;
    }
    if (command == "key") {
        ReadKey(rest, std::move(event), session);
        return;
    }
    const auto form = std::ranges::find_if(Forms(), [&](const EventForm& f) { return command == f.name; });
    if (form == Forms().end()) {
        RefuseEvent(event, "not an event");
    }
    if (!ReadForm(*form, rest, event)) {
        RefuseEvent(event, form->wrong);
    }
    if (event.kind == EventKind::Answer && !Utf8ToCp932(event.text)) {
        RefuseEvent(event, "Shift-JIS cannot carry the answer");
    }
    session.push_back(std::move(event));
}

}  // namespace

bool ReadNumber(std::string_view text, std::int32_t& number) {
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    std::uint32_t value = 0;
    const auto [end, failed] =
        std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal ? 16 : 10);
    if (failed != std::errc{} || end != text.data() + text.size() || value > INT32_MAX) {
        return false;
    }
    number = negative ? -static_cast<std::int32_t>(value) : static_cast<std::int32_t>(value);
    return true;
}

void RefuseEvent(const SessionEvent& event, const char* why) {
    std::fflush(stdout);
    std::fprintf(stderr, "quelmarkc: input line %d: %s: %s\n", event.line, why, event.whole.c_str());
    std::_Exit(2);
}

Session ReadSession(const char* path) {
    std::ifstream file(path, std::ios::binary);
    Session session;
    SessionEvent event;
    for (event.line = 1; std::getline(file, event.whole); ++event.line) {
        if (event.line == 1 && event.whole.starts_with(UTF8_MARK)) {
            event.whole.erase(0, UTF8_MARK.size());
        }
        if (event.whole.ends_with('\r')) {
            event.whole.pop_back();
        }
        ReadLine(event, session);
    }
    if (!file.eof()) {  // no such file, or a directory
        std::fprintf(stderr, "quelmarkc: cannot read the input file %s\n", path);
        std::exit(2);
    }
    return session;
}

}  // namespace quelmark
