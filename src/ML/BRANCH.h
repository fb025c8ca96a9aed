// Instructions for conditions and loops.
#pragma once

#include <cstdint>
#include <vector>

#include "ML/CODE.h"
#include "ML/EXPR.h"

namespace quelmark {

// A jump on the truth of a condition. Returns the index to patch.
std::int32_t EmitJumpUnless(NodeId condition);
// The same, backwards, closing a loop whose body starts at `target`.
void EmitLoopIf(NodeId condition, std::int32_t target);
// When the step (the code of a statement) and then the condition are one instruction: emits it and answers
// true.
bool EmitCountedLoop(const std::vector<Instruction>& step, NodeId condition, std::int32_t target);

}  // namespace quelmark
