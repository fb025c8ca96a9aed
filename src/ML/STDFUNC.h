// The standard functions: printing, conversion to text, types, indirect calls, mathematics.
#pragma once

#include <cstdint>

#include "ML/FUNC.h"
#include "ML/STRING.h"

namespace quelmark {

void StandardRegister();

// The function "call": calls the FUNC value that is its first argument with the others. The executor knows
// it, so that it calls script functions without leaving its loop.
std::int32_t CallValue(std::int32_t ident, std::int32_t argc, DataCell* argv);

// Hands the texts of the values, separated by one blank, to `write` one after the other.
template <class Write>
void WriteTexts(std::int32_t argc, const DataCell* argv, Write write) {
    for (std::int32_t i = 0; i < argc; ++i) {
        PushText(argv[i]);
        write(StringText(*StackTop()));
        StackPop();
        if (i + 1 < argc) {
            write(" ");
        }
    }
}

}  // namespace quelmark
