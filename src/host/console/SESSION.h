// The input of a session: a text file with one event a line, read and checked as a whole before anything
// runs.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace quelmark {

enum class EventKind : std::uint8_t {
    Key,
    Mouse,
    Wheel,
    Menu,
    Open,
    Size,
    Close,
    Wait,
    Shot,
    Answer,
    Button,
    File,
    Drop,
};

// The numbers of a line stand in its order: the key code and shift state, the pointer and buttons (or wheel
// turns), menu position and item, size, milliseconds, a dialog's row or result.
struct SessionEvent {
    EventKind kind = EventKind::Key;
    std::int32_t first = 0, second = 0, third = 0;
    std::string text;   // UTF-8: the answer, the path, the picture's name
    int line = 0;       // in the file
    std::string whole;  // the line itself, for messages
};
using Session = std::deque<SessionEvent>;

// The events of a file. A file that cannot be read and a line that is no event end the program with status 2
// and a message on standard error: a session that is not what it was meant to be proves nothing.
Session ReadSession(const char* path);
[[noreturn]] void RefuseEvent(const SessionEvent& event, const char* why);
// A whole decimal or 0x number of 32 bits; false when the text is none.
bool ReadNumber(std::string_view text, std::int32_t& number);

}  // namespace quelmark
