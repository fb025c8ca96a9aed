// Text inside the program is cp932 (Shift-JIS) bytes; source files are UTF-8. One table serves the
// compile-time literal "…"_sjis (text/sjis.h) and these conversions at the edge to the window and file
// systems.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quelmark {

// The first byte of a double-byte character (0x81-0x9F, 0xE0-0xFC).
constexpr bool IsLeadByte(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

// A byte that may be the second of a double-byte character.
constexpr bool IsTrailByte(unsigned char byte) {
    return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}

// Bytes that are no cp932 character become U+FFFD.
std::string Cp932ToUtf8(std::string_view cp932);
// Nothing when a character has no cp932 form, or the text is not UTF-8.
std::optional<std::string> Utf8ToCp932(std::string_view utf8);
// The same, with '?' in place of what cp932 cannot carry.
std::string Utf8ToCp932Lossy(std::string_view utf8);
// A UTF-8 byte order mark, with which a file says what it is.
inline constexpr std::string_view UTF8_MARK = "\xEF\xBB\xBF";
// A file's bytes as cp932: text that begins with a UTF-8 byte order mark is converted, other bytes stay as
// they are.
std::string FileTextToCp932(std::string bytes);

// Position of the last (first) occurrence of one of the ASCII characters `anyOf`, the second bytes of
// double-byte characters passed over; npos when there is none.
std::size_t FindLastOf(std::string_view cp932, std::string_view anyOf);
std::size_t FindFirstOf(std::string_view cp932, std::string_view anyOf, std::size_t from = 0);
// Puts one ASCII character in the place of another wherever that is no second byte.
void ReplaceCharacter(std::string& cp932, char from, char to);

}  // namespace quelmark
