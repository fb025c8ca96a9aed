// Real numbers as text, always with a decimal point, whatever locale the window system has set.
#pragma once

#include <cstddef>
#include <string_view>

namespace quelmark {

// snprintf of one real.
int FormatReal(char* buffer, std::size_t room, const char* format, double value)
    __attribute__((format(printf, 3, 0)));
// The leading real number of a text; 0 when there is none. When `used` is not null it gets the number of
// bytes read.
double ParseReal(std::string_view text, std::size_t* used = nullptr);

}  // namespace quelmark
