// Instructions for expressions: chooses the forms with immediates, keeps variables where they are and builds
// arguments in consecutive temporaries, where they become the called function's first locals.
#pragma once

#include <cstdint>
#include <vector>

#include "ML/CODE.h"
#include "ML/EXPR.h"

namespace quelmark {

// Temporaries: handed out like a stack within a statement. The most ever used since EmitReset is what the
// frame needs.
void EmitReset();
std::uint16_t EmitTemporary();
std::int32_t EmitTemporariesUsed();
// A statement's temporaries are free again.
void EmitFreeTemporaries();
// The temporaries taken while this lives are free again afterwards.
class TemporaryScope {
  public:
    TemporaryScope();
    ~TemporaryScope();
    TemporaryScope(const TemporaryScope&) = delete;
    TemporaryScope& operator=(const TemporaryScope&) = delete;

  private:
    std::int32_t before_;
};
inline bool IsTemporary(std::uint16_t slot) {
    return (slot & TEMPORARY) != 0;
}

// Code that leaves the value in some slot: the variable's own, or a temporary. Returns the slot.
std::uint16_t EmitValue(NodeId node);
// Code that leaves the value in `slot`, a variable or a temporary.
void EmitInto(NodeId node, std::uint16_t slot);
// Code that evaluates and drops the value.
void EmitDropped(NodeId node);
// slot = constant.
void EmitConstant(std::uint16_t slot, const DataCell& cell);

// ---- operands, for the other files that emit ----

// A slot, or an INT or REAL that stands in the instruction.
enum class Form : std::uint8_t { Slot, Int, Real };
struct Operand {
    Form form = Form::Slot;
    std::uint16_t slot = 0;
    std::int32_t value = 0;
};
Operand EmitOperand(NodeId node);
// No slot: an operand takes a temporary of its own.
inline constexpr std::uint16_t NO_ROOM = 0;
// A left operand. When the right one may run script code, a variable is read before it does. It rests in the
// temporary `room` when that is the last one taken.
std::uint16_t EmitLeft(NodeId left, NodeId right, std::uint16_t room = NO_ROOM);
// slot = left op right.
void EmitArithmetic(std::uint16_t slot, std::int32_t code, std::uint16_t left, const Operand& right);

// The place of an array element: its array and subscripts.
struct ElementPlace {
    NodeId array = NO_NODE;
    std::vector<Operand> subscripts;
};
// `callsLater`: script code may run before the place is used, so variables among the subscripts are read now.
ElementPlace EmitPlace(NodeId element, bool callsLater);
void EmitElementRead(const ElementPlace& place, std::uint16_t slot);
// Reports a place that is not there before its value is computed.
void EmitElementCheck(const ElementPlace& place);
void EmitElementWrite(const ElementPlace& place, std::uint16_t slot);

// A comparison that a jump instruction can make itself.
struct CompareRow {
    std::int32_t code;
    Opcode value;       // a = b op c, in its three forms
    Opcode jumpUnless;  // its three forms in a row, then the three loop-closing ones
};
const CompareRow* CompareRowOf(std::int32_t code);
// The form of an instruction that follows its _SS form in the list.
Opcode FormOf(Opcode first, Form form);

}  // namespace quelmark
