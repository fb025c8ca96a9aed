#include "ML/BRANCH.h"

#include <limits>

#include "ML/EMIT.h"
#include "ML/FUNC.h"

namespace quelmark {
namespace {

std::int32_t EmitConditional(NodeId condition, bool loop) {
    const TemporaryScope scope;
    const Node node = NodeOf(condition);
    const CompareRow* row = node.kind == NodeKind::Binary ? CompareRowOf(node.index) : nullptr;
    if (row == nullptr) {
        return CodeEmit({loop ? Opcode::JT : Opcode::JF, 0, EmitValue(condition)});
    }
    const auto first = static_cast<Opcode>(static_cast<std::uint16_t>(row->jumpUnless) + (loop ? 3 : 0));
    const std::uint16_t left = EmitLeft(node.left, node.right);
    const Operand right = EmitOperand(node.right);
    return CodeEmit({FormOf(first, right.form), 0, left, right.slot, 0, right.value});
}

// The step of a counted loop: counter += step, by which operator.
struct Step {
    std::int32_t code = 0;  // 0: no such step
    std::uint16_t counter = 0;
    std::uint16_t amount = 0;  // the slot that holds it, or the constant
    bool inSlot = false;
};

Step StepOf(const std::vector<Instruction>& code) {
    if (code.size() != 1 || IsTemporary(code[0].a)) {
        return {};
    }
    const Instruction& i = code[0];
    const auto constant = [&i](std::int32_t operation, std::int32_t amount) -> Step {
        const bool fits = amount >= std::numeric_limits<std::int16_t>::min() &&
                          amount <= std::numeric_limits<std::int16_t>::max();
        return fits ? Step{operation, i.a, static_cast<std::uint16_t>(amount), false} : Step{};
    };
    switch (i.op) {
        case Opcode::INCREMENT:
            return constant(OP_INCREMENT, 1);
        case Opcode::DECREMENT:
            return constant(OP_DECREMENT, -1);
        case Opcode::ADD_SI:
            return i.a == i.b && i.c == 0 ? constant(OP_ADD, i.value) : Step{};
        case Opcode::SUBTRACT_SI:
            return i.a == i.b && i.value > 0 ? constant(OP_SUBTRACT, -i.value) : Step{};
        case Opcode::ADD_SS:
            return i.a == i.b && i.c != i.a && !IsTemporary(i.c) ? Step{OP_ADD, i.a, i.c, true} : Step{};
        default:
            return {};
    }
}

struct LoopRow {
    std::int32_t code;
    Opcode first;  // its forms in a row: step constant or in a slot, limit in a slot or INT
};
constexpr LoopRow LOOPS[] = {
    {OP_LESS, Opcode::FOR_LESS_SS},
    {OP_GREATER, Opcode::FOR_GREATER_SS},
    {OP_LESS_EQUAL, Opcode::FOR_LESS_EQUAL_SS},
    {OP_GREATER_EQUAL, Opcode::FOR_GREATER_EQUAL_SS},
};

}  // namespace

std::int32_t EmitJumpUnless(NodeId condition) {
    return EmitConditional(condition, false);
}

void EmitLoopIf(NodeId condition, std::int32_t target) {
    const Node& node = NodeOf(condition);
    const bool always =
        node.kind == NodeKind::Constant && (node.cell.type & TYPE_FLAG) != 0 && node.cell.integer != 0;
    CodePatch(always ? CodeEmit({Opcode::LOOP}) : EmitConditional(condition, true), target);
}

bool EmitCountedLoop(const std::vector<Instruction>& code, NodeId condition, std::int32_t target) {
    const Step step = StepOf(code);
    const Node node = NodeOf(condition);
    if (step.code == 0 || node.kind != NodeKind::Binary || NodeOf(node.left).kind != NodeKind::Slot ||
        NodeOf(node.left).index != step.counter) {
        return false;
    }
    const Node& limit = NodeOf(node.right);
    const bool inSlot = limit.kind == NodeKind::Slot && limit.index != step.counter;
    if (!inSlot && (limit.kind != NodeKind::Constant || limit.cell.type != TYPE_INT)) {
        return false;
    }
    for (const LoopRow& row : LOOPS) {
        if (row.code == node.index) {
            const auto op = static_cast<Opcode>(static_cast<std::uint16_t>(row.first) +
                                                (step.inSlot ? 2 : 0) + (inSlot ? 0 : 1));
            const auto operation = static_cast<std::uint16_t>(step.code);
            CodePatch(inSlot ? CodeEmit({op, step.amount, step.counter,
                                         static_cast<std::uint16_t>(limit.index), 0, operation})
                             : CodeEmit({op, step.amount, step.counter, operation, 0, limit.cell.integer}),
                      target);
            return true;
        }
    }
    return false;
}

}  // namespace quelmark
