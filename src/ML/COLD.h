// The cold halves of the instructions: what the executor's loop leaves over when its inline tests fail. Each
// takes the instruction and the frame that runs it.
#pragma once

#include <cstdint>

#include "ML/EXEC.h"
#include "ML/OPERATE.h"

#if defined(__GNUC__)
#define QUELMARK_COLD [[gnu::cold, gnu::noinline]]
#else
#define QUELMARK_COLD
#endif

namespace quelmark {

// a = b op c, with the constant in `value` in place of c for the immediate forms.
QUELMARK_COLD void OperateSlots(std::int32_t code, const Instruction& i, const Frame& frame);
QUELMARK_COLD void OperateImmediate(std::int32_t code, const Instruction& i, const Frame& frame,
                                    std::uint16_t type);
QUELMARK_COLD void OperateUnary(std::int32_t code, const Instruction& i, const Frame& frame);
// ++a, --a.
QUELMARK_COLD void OperateStep(std::int32_t code, const Instruction& i, const Frame& frame);
QUELMARK_COLD void Join(const Instruction& i, const Frame& frame);

// The truth of b op c, of b.
QUELMARK_COLD bool TruthOfSlots(std::int32_t code, const Instruction& i, const Frame& frame);
QUELMARK_COLD bool TruthOfImmediate(std::int32_t code, const Instruction& i, const Frame& frame,
                                    std::uint16_t type);
QUELMARK_COLD bool TruthOfSlot(const Instruction& i, const Frame& frame);
// The step and then the test of a counted loop.
QUELMARK_COLD bool StepAndTest(std::int32_t code, const Instruction& i, const Frame& frame, bool stepInSlot,
                               bool limitInSlot);

QUELMARK_COLD void AssignSlot(const Instruction& i, const Frame& frame);
// Into a temporary, or from one.
QUELMARK_COLD void CopySlot(const Instruction& i, const Frame& frame);
QUELMARK_COLD void LoadConstant(const Instruction& i, const Frame& frame);
QUELMARK_COLD void GetGlobal(const Instruction& i, const Frame& frame);
QUELMARK_COLD void SetGlobal(const Instruction& i, const Frame& frame);
// array[subscript] into, or from, slot a.
QUELMARK_COLD void GetElement(const Instruction& i, const Frame& frame, const DataCell& array,
                              const DataCell& subscript);
QUELMARK_COLD void SetElement(const Instruction& i, const Frame& frame, const DataCell& array,
                              const DataCell& subscript);
QUELMARK_COLD void GetRow(const Instruction& i, const Frame& frame);
QUELMARK_COLD void GetElement2(const Instruction& i, const Frame& frame);
QUELMARK_COLD void SetElement2(const Instruction& i, const Frame& frame);
QUELMARK_COLD void SetElementConstant(const Instruction& i, const Frame& frame);
QUELMARK_COLD void CheckPlace(const Instruction& i, const Frame& frame);
QUELMARK_COLD void DeclareArrayInSlot(const Instruction& i, const Frame& frame);
QUELMARK_COLD void CheckFit(const Instruction& i, const Frame& frame);
QUELMARK_COLD void DropSlot(const Instruction& i, const Frame& frame);

// The arguments of a call, moved above the arrays of the running frame, onto the top of the stack.
QUELMARK_COLD DataCell* MoveArgumentsUp(DataCell* argv, std::int32_t argc);
// More arguments than the function has locals.
QUELMARK_COLD void ReleaseSurplus(DataCell* first, DataCell* behind);
QUELMARK_COLD void ReleaseCell(DataCell* cell);

}  // namespace quelmark
