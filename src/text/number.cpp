#include "text/number.h"

#include <locale.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace quelmark {
namespace {

const locale_t pointLocale = newlocale(LC_ALL_MASK, "C", nullptr);

}  // namespace

double ParseReal(std::string_view text, std::size_t* used) {
    const std::size_t sign = text.starts_with('+') ? 1 : 0;  // from_chars takes no plus sign
    double value = 0;
    const char* const first = text.data() + sign;
    const char* const end = text.data() + text.size();
    // A sign behind the sign begins no number, and neither does the name of one ("inf", "nan").
    const char* const digits = sign == 0 && first != end && *first == '-' ? first + 1 : first;
    const bool begins = digits != end && (*digits == '.' || (*digits >= '0' && *digits <= '9'));
    const auto result = std::from_chars(first, begins ? end : first, value);
    if (used != nullptr) {
        *used = result.ptr == first ? 0 : static_cast<std::size_t>(result.ptr - text.data());
    }
    if (result.ec == std::errc::result_out_of_range) {
        // Too large or too small for a double: strtod tells which.
        const locale_t previous = uselocale(pointLocale);
        value = std::strtod(std::string(text).c_str(), nullptr);
        uselocale(previous);
    }
    return value;
}

int FormatReal(char* buffer, std::size_t room, const char* format, double value) {
    const locale_t previous = uselocale(pointLocale);
    const int length = std::snprintf(buffer, room, format, value);
    uselocale(previous);
    return length;
}

}  // namespace quelmark
