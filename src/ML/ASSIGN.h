// Instructions for assignments, declarations of arrays and initialisers.
#pragma once

#include <cstdint>

#include "ML/EXPR.h"

namespace quelmark {

// target = value; the target is a variable or element node (Slot, Global, Element).
void EmitAssign(NodeId target, NodeId value);
// target = target op value; `value` NO_NODE for ++ and --.
void EmitUpdate(NodeId target, std::int32_t code, NodeId value);
// The variable in `slot` becomes an array with these sizes (element node's subscripts).
void EmitArray(std::uint16_t slot, NodeId sizes);
// The same with the shape of an initialiser.
void EmitArrayLike(std::uint16_t slot, NodeId list);
void EmitInitialise(std::uint16_t array, NodeId list);

}  // namespace quelmark
