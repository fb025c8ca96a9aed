// The executor: runs intermediate code on the value stack. Script functions that call each other stay inside one
// loop; a built-in that calls back into scripts (and the host) enters another one through ExecCall.
#pragma once

#include <cstdint>

#include "ML/CODE.h"
#include "ML/ML.h"

namespace quelmark {

// A running script function. Its cells are [base, base + function->cells), its arrays lie above.
struct Frame {
    const Instruction* at;  // the instruction behind the one that runs or called
    DataCell* base;
    const ScriptFunction* function;
    DataCell* result;        // where the caller wants the result
    std::int32_t callerTop;  // StackPtr of the caller
    bool wantsResult;
};
// Calls of script functions nested deeper than this are an overflow.
inline constexpr std::int32_t FRAMES_MOST = 100000;
// Executors nested through built-ins ("call", "tostring", operators).
inline constexpr std::int32_t NESTING_LIMIT = 180;

extern Frame Frames[FRAMES_MOST];
extern std::int32_t FrameDepth;  // index of the running frame, -1 for none

bool TraceIsOn();
// Allocates the value stack and the global area.
void ExecInit(std::int32_t stackCells);
// Calls ScriptFunctions[body] with the arguments on top of the stack; as CallFunction.
std::int32_t ExecCall(std::int32_t body, std::int32_t argc, DataCell* argv);
// Counts a step into built-in code that may call back; "スタックオーバーフロー！！" when too deep.
class ExecNesting {
  public:
    ExecNesting();
    ~ExecNesting();
    ExecNesting(const ExecNesting&) = delete;
    ExecNesting& operator=(const ExecNesting&) = delete;
};

}  // namespace quelmark
