// What makes a word of a shape file, for its writers and its reader.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/cp932.h"
#include "text/number.h"

namespace quelmark {

inline constexpr std::size_t SUF_NAME_BYTES = 31;  // of the longest name

inline bool IsSufBlank(char character) {
    return static_cast<unsigned char>(character) <= ' ';
}
inline bool IsSufBracket(char character) {
    return character == '{' || character == '}' || character == '(' || character == ')';
}
inline bool BeginsSufComment(const char* at) {
    return at[0] == '/' && at[1] == '*';
}
// The bytes of the character at `at`; a lead byte without its second is a character alone.
inline std::size_t SufCharacterBytes(const char* at) {
    return IsLeadByte(static_cast<unsigned char>(at[0])) && IsTrailByte(static_cast<unsigned char>(at[1]))
               ? 2
               : 1;
}

// True, with its value, when the whole word is a number.
inline bool IsSufNumber(std::string_view word, double& value) {
    const auto isDigit = [word](std::size_t at) {
        return at < word.size() && word[at] >= '0' && word[at] <= '9';
    };
    const std::size_t sign = word[0] == '-' || word[0] == '+' ? 1 : 0;
    if (!isDigit(sign) && !(word.size() > sign && word[sign] == '.' && isDigit(sign + 1))) {
        return false;
    }
    std::size_t used = 0;
    value = ParseReal(word, &used);
    return used == word.size();
}

}  // namespace quelmark
