// "引数"_sjis: a cp932 text made from a UTF-8 literal while compiling. A character without a cp932 form does
// not compile.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "text/cp932_table.h"

namespace quelmark {

// The cp932 code of a Unicode character, or 0 when there is none.
constexpr std::uint16_t Cp932Code(std::uint32_t unicode) {
    if (unicode < 0x80) {
        return static_cast<std::uint16_t>(unicode);
    }
    std::size_t low = 0;
    std::size_t high = std::size(CP932_UNICODES) - 1;  // the literal's own NUL is no entry
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (CP932_UNICODES[middle] < unicode) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    const bool found = low < std::size(CP932_UNICODES) - 1 && CP932_UNICODES[low] == unicode;
    return found ? static_cast<std::uint16_t>(CP932_CODES[low]) : std::uint16_t{0};
}

// A UTF-8 literal turned into cp932, never longer than the original.
template <std::size_t N>
struct SjisLiteral {
    std::array<char, N> text{};

    consteval SjisLiteral(const char (&utf8)[N]) {
        std::size_t out = 0;
        for (std::size_t i = 0; i + 1 < N;) {
            const auto lead = static_cast<unsigned char>(utf8[i]);
            const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
            std::uint32_t unicode = length == 1 ? lead : lead & (0x7FU >> length);
            for (std::size_t k = 1; k < length; ++k) {
                unicode = unicode << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3FU);
            }
            const std::uint16_t code = Cp932Code(unicode);
            if (code == 0) {
                throw "a character of this text has no cp932 form";
            }
            if (code > 0xFF) {
                text[out++] = static_cast<char>(code >> 8);
            }
            text[out++] = static_cast<char>(code & 0xFF);
            i += length;
        }
    }
};

template <SjisLiteral literal>
constexpr const char* operator""_sjis() {
    return literal.text.data();
}

}  // namespace quelmark
