// The executor: runs intermediate code on the value stack. Script functions that call each other stay inside
// one loop (Execute); a built-in that calls back into scripts, and the host, enter another one through
// ExecCall. A frame's cells are [base, base + function->cells), within its caller's temporaries; arrays that
// it declares lie above every frame. Invariant: a temporary that no instruction is about to consume holds no
// object.
#pragma once

#include <cstdint>

#include "ML/CODE.h"
#include "ML/ML.h"
#include "ML/STACK.h"

namespace quelmark {

struct Frame {
    const Instruction* at;  // the instruction behind the one that runs or called
    DataCell* base;
    const ScriptFunction* function;
    DataCell* result;        // where the caller wants the result; null when it wants none
    std::int32_t top;        // StackPtr when the frame began: above it lie the frame's arrays
    std::int32_t callerTop;  // StackPtr of the caller
};
// Calls of script functions nested deeper than this are an overflow.
inline constexpr std::int32_t FRAMES_MOST = 100000;
// Executors nested through built-ins ("call", "tostring", operators).
inline constexpr std::int32_t NESTING_MOST = 180;

extern Frame Frames[FRAMES_MOST + 1];  // Frames[0] stands for the host
extern Frame* CurrentFrame;            // up to date whenever something outside the loop runs

// Loop turns and calls left until the clock is looked at; a built-in, which may be slow, counts as many.
extern std::int32_t Ticks;
inline constexpr std::int32_t BUILT_IN_TICKS = 64;

// Runs the frame CurrentFrame until it has returned. RESULT when it left a result.
std::int32_t Execute();
// Calls a script function with the arguments on top of the stack; as CallFunction.
std::int32_t ExecCall(const ScriptFunction& function, std::int32_t argc, DataCell* argv);
// The index of the top cell as a script knows it: cells held ready for temporaries do not count. For a
// built-in with these arguments.
std::int32_t ExecVisibleTop(const DataCell* argv, std::int32_t argc);
[[noreturn]] void ReportOverflow();

bool TraceIsOn();
void WriteTrace(const Instruction& trace);
// Allocates the value stack and the global area.
void ExecInit(std::int32_t stackCells);
// Everything of the last run is forgotten.
void ExecExit();

extern std::int32_t Nesting;
// Counts a step into built-in code that may call back; "スタックオーバーフロー！！" when too deep.
class ExecNesting {
  public:
    ExecNesting() {
        if (Nesting >= NESTING_MOST) [[unlikely]] {
            ReportOverflow();
        }
        ++Nesting;
    }
    ~ExecNesting() { --Nesting; }
    ExecNesting(const ExecNesting&) = delete;
    ExecNesting& operator=(const ExecNesting&) = delete;
};

}  // namespace quelmark
