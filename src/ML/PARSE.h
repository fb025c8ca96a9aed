// The parser: statements and declarations, appended to the code buffer as they are read.
#pragma once

#include <cstdint>

#include "ML/IDENT.h"

namespace quelmark {

// Makes the table of global identifiers, with room for `globals` names (at most 32767: a global is a slot of
// the top-level frame).
void ParserInit(std::int32_t globals);
void ParserExit();
// Compiles the file that the scanner has opened, and drops its private names.
void ParseFile();

IdentTable* GlobalNames();
IdentTable* LocalNames();  // null at the top level

// The top level as a function: its code runs on from where it stopped last time.
struct TopLevelCode {
    std::int32_t start = 0;  // first instruction not yet run
    std::int32_t temporaries = 0;
};
extern TopLevelCode TopLevel;

}  // namespace quelmark
