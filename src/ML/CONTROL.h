// Statements that decide what runs next. Each begins at its keyword, on `line`.
#pragma once

#include <cstdint>

#include "ML/STATEMENT.h"

namespace quelmark {

void ParseIf(std::int32_t line);
void ParseWhile(std::int32_t line);
void ParseDo(std::int32_t line);
void ParseFor(std::int32_t line);
// `break` and `continue`.
void ParseJump(std::int32_t line, StatementKind kind);
void ParseReturn(std::int32_t line);

// The outermost statement ends here: what leaves it goes on from here.
void ControlLeaveHere();
// No loop is being compiled.
void ControlReset();

}  // namespace quelmark
