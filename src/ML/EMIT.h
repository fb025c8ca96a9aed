// Instructions for expressions: chooses the forms with immediates, keeps variables where they are and builds
// arguments in consecutive temporaries, where they become the called function's first locals.
#pragma once

#include <cstdint>

#include "ML/EXPR.h"

namespace quelmark {

// Temporaries: handed out like a stack within a statement. The most ever used since EmitReset is what the frame needs.
void EmitReset();
std::uint16_t EmitTemporary();
std::int32_t EmitTemporariesUsed();
// A statement's temporaries are free again.
void EmitFreeTemporaries();

// Code that leaves the value in some slot: the variable's own, or a temporary. Returns the slot.
std::uint16_t EmitValue(NodeId node);
// Code that leaves the value in `slot`, a variable or a temporary.
void EmitInto(NodeId node, std::uint16_t slot);
// Code that evaluates and drops the value.
void EmitDropped(NodeId node);

// A jump on the truth of a condition. Returns the index to patch.
std::int32_t EmitJumpUnless(NodeId condition);
// The same, backwards, closing a loop whose body starts at `target`.
void EmitLoopIf(NodeId condition, std::int32_t target);
// When `++slot` and then the condition is one instruction: emits it and answers true.
bool EmitCountedLoop(std::uint16_t slot, NodeId condition, std::int32_t target);

// Assignment to a variable or element node (Slot, Global, Element).
void EmitAssign(NodeId target, NodeId value);
// target = target op value; `value` NO_NODE for ++ and --.
void EmitUpdate(NodeId target, std::int32_t code, NodeId value);
// The variable in `slot` becomes an array with these sizes (element node's subscripts).
void EmitArray(std::uint16_t slot, NodeId sizes);
// The same with the shape of an initialiser.
void EmitArrayLike(std::uint16_t slot, NodeId list);
void EmitInitialise(std::uint16_t array, NodeId list);

}  // namespace quelmark
