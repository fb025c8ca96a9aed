// Formatted printing for "sprintf": the C library's, one conversion at a time, with the arguments' types
// checked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ML/STACK.h"

namespace quelmark {

// d i u o x X c take INT, BOOLEAN or REAL, e E f F g G take INT or REAL, s a String, %% is a percent sign.
// Anything else is "%d番目の引数の型が不正です(String:sprintf)"; the format is argument 1. Surplus arguments
// are ignored.
std::string FormatText(std::string_view format, std::int32_t argc, const DataCell* argv);

}  // namespace quelmark
