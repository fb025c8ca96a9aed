#include "ML/SPRINTF.h"

#include <algorithm>
#include <cstdio>

#include "ML/ERROR.h"
#include "ML/STRING.h"
#include "text/number.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t FIELD_MOST = 4095;

[[noreturn]] void ReportArgument(std::int32_t number) {
    RuntimeError("%d番目の引数の型が不正です(String:sprintf)"_sjis, number);
}

// A conversion directive: the flags as written, width and precision cut to FIELD_MOST.
struct Conversion {
    std::string flags;
    std::int32_t width = 0;
    std::int32_t precision = -1;
    std::string size;  // "h" or "hh": an integer is cut to 16 or 8 bits
    char letter = '\0';
};

std::int32_t ReadNumber(std::string_view format, std::size_t& at) {
    std::int32_t number = 0;
    for (; at < format.size() && format[at] >= '0' && format[at] <= '9'; ++at) {
        number = std::min(number * 10 + (format[at] - '0'), FIELD_MOST);
    }
    return number;
}

Conversion ReadConversion(std::string_view format, std::size_t& at) {
    Conversion conversion;
    while (at < format.size() && std::string_view("-+ #0").find(format[at]) != std::string_view::npos) {
        conversion.flags += format[at++];
    }
    conversion.width = ReadNumber(format, at);
    if (at < format.size() && format[at] == '.') {
        ++at;
        conversion.precision = ReadNumber(format, at);
    }
    for (; at < format.size() && (format[at] == 'l' || format[at] == 'h'); ++at) {
        if (format[at] == 'h' && conversion.size.size() < 2) {
            conversion.size += 'h';
        }
    }
    if (at < format.size()) {
        conversion.letter = format[at++];
    }
    return conversion;
}

std::string Directive(const Conversion& conversion) {
    std::string text = "%";
    text += conversion.flags;
    if (conversion.width > 0) {
        text += std::to_string(conversion.width);
    }
    if (conversion.precision >= 0) {
        text += '.';
        text += std::to_string(conversion.precision);
    }
    if (std::string_view("diuoxX").find(conversion.letter) != std::string_view::npos) {
        text += conversion.size;
    }
    text += conversion.letter;
    return text;
}

void AppendString(std::string& out, const Conversion& conversion, std::string_view text) {
    if (conversion.precision >= 0) {
        text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    }
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::string padding(width > text.size() ? width - text.size() : 0, ' ');
    const bool left = conversion.flags.find('-') != std::string::npos;
    out += left ? std::string(text) + padding : padding + std::string(text);
}

template <class Print>
void AppendPrinted(std::string& out, Print print) {
    char buffer[FIELD_MOST * 2 + 512] = "";
    print(buffer, sizeof buffer);
    out += buffer;  // a text ends at its NUL, which "%c" can print
}

void AppendConverted(std::string& out, const Conversion& conversion, std::int32_t number,
                     const DataCell* argument) {
    const std::string_view integers = "diuoxXc";
    const std::string_view reals = "eEfFgG";
    const std::string directive = Directive(conversion);
    if (conversion.letter == 's') {
        if (argument == nullptr || !IsString(*argument)) {
            ReportArgument(number);
        }
        AppendString(out, conversion, StringText(*argument));
    } else if (conversion.letter != '\0' && integers.find(conversion.letter) != std::string_view::npos) {
        if (argument == nullptr || (argument->type & (TYPE_FLAG | TYPE_REAL)) == 0) {
            ReportArgument(number);
        }
        const std::int32_t value = CellInteger(*argument);
        AppendPrinted(out, [&](char* buffer, std::size_t room) {
            return std::snprintf(buffer, room, directive.c_str(), value);
        });
    } else if (conversion.letter != '\0' && reals.find(conversion.letter) != std::string_view::npos) {
        if (argument == nullptr || (argument->type & TYPE_NUMBER) == 0) {
            ReportArgument(number);
        }
        AppendPrinted(out, [&](char* buffer, std::size_t room) {
            return FormatReal(buffer, room, directive.c_str(), CellNumber(*argument));
        });
    } else {
        ReportArgument(number);
    }
}

}  // namespace

std::string FormatText(std::string_view format, std::int32_t argc, const DataCell* argv) {
    std::string out;
    std::int32_t next = 0;
    for (std::size_t at = 0; at < format.size();) {
        if (format[at] != '%') {  // never the second byte of a double-byte character
            out += format[at++];
        } else {
            const Conversion conversion = ReadConversion(format, ++at);
            if (conversion.letter == '%') {
                out += '%';
                continue;
            }
            AppendConverted(out, conversion, next + 2, next < argc ? argv + next : nullptr);
            ++next;
        }
    }
    return out;
}

}  // namespace quelmark
