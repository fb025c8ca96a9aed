#include "ML/EMIT.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "ML/CODE.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t TEMPORARIES_MOST = 0x7000;

std::int32_t temporaries = 0;      // in use
std::int32_t temporariesMost = 0;  // ever in use

bool IsTemporary(std::uint16_t slot) { return (slot & TEMPORARY) != 0; }

// The temporaries taken while this lives are free again afterwards.
class TemporaryScope {
  public:
    TemporaryScope() : before_(temporaries) {}
    ~TemporaryScope() { temporaries = before_; }
    TemporaryScope(const TemporaryScope&) = delete;
    TemporaryScope& operator=(const TemporaryScope&) = delete;

  private:
    std::int32_t before_;
};

std::int32_t Emit(Opcode op, std::uint16_t a, std::uint16_t b, std::uint16_t c, std::int32_t value = 0) {
    return CodeEmit({op, a, b, c, 0, value});
}

bool IsConstant(NodeId node, std::uint16_t type) {
    return NodeOf(node).kind == NodeKind::Constant && NodeOf(node).cell.type == type;
}

// A right operand: a slot, or an INT or REAL that fits the instruction.
enum class Form : std::uint8_t { Slot, Int, Real };
struct Operand {
    Form form = Form::Slot;
    std::uint16_t slot = 0;
    std::int32_t value = 0;
};

Operand EmitOperand(NodeId node) {
    if (IsConstant(node, TYPE_INT)) {
        return {Form::Int, 0, NodeOf(node).cell.integer};
    }
    if (IsConstant(node, TYPE_REAL)) {
        return {Form::Real, 0, NodeOf(node).cell.integer};
    }
    return {Form::Slot, EmitValue(node), 0};
}

// A left operand. When the right one may run script code, a variable is read before it does.
std::uint16_t EmitLeft(NodeId left, NodeId right) {
    if (NodeOf(left).kind == NodeKind::Slot && NodeOf(right).calls) {
        const std::uint16_t copy = EmitTemporary();
        EmitInto(left, copy);
        return copy;
    }
    return EmitValue(left);
}

struct ArithmeticRow {
    std::int32_t code;
    Opcode slotSlot;  // the INT and REAL forms follow
};
constexpr ArithmeticRow ARITHMETIC[] = {
    {OP_ADD, Opcode::ADD_SS},
    {OP_SUBTRACT, Opcode::SUBTRACT_SS},
    {OP_MULTIPLY, Opcode::MULTIPLY_SS},
    {OP_DIVIDE, Opcode::DIVIDE_SS},
    {OP_REMAINDER, Opcode::REMAINDER_SS},
    {OP_AND, Opcode::AND_SS},
    {OP_OR, Opcode::OR_SS},
    {OP_XOR, Opcode::XOR_SS},
    {OP_SHIFT_LEFT, Opcode::SHIFT_LEFT_SS},
    {OP_SHIFT_RIGHT, Opcode::SHIFT_RIGHT_SS},
};

struct CompareRow {
    std::int32_t code;
    Opcode value;      // a = b op c
    Opcode jumpUnless;  // its three forms in a row, then the three loop-closing ones
};
constexpr CompareRow COMPARES[] = {
    {OP_LESS, Opcode::LESS_SS, Opcode::JF_LESS_SS},
    {OP_GREATER, Opcode::GREATER_SS, Opcode::JF_GREATER_SS},
    {OP_LESS_EQUAL, Opcode::LESS_EQUAL_SS, Opcode::JF_LESS_EQUAL_SS},
    {OP_GREATER_EQUAL, Opcode::GREATER_EQUAL_SS, Opcode::JF_GREATER_EQUAL_SS},
    {OP_EQUAL, Opcode::EQUAL_SS, Opcode::JF_EQUAL_SS},
    {OP_NOT_EQUAL, Opcode::NOT_EQUAL_SS, Opcode::JF_NOT_EQUAL_SS},
};

template <class Row, std::size_t N>
const Row* RowOf(const Row (&rows)[N], std::int32_t code) {
    const Row* row = std::find_if(rows, rows + N, [code](const Row& candidate) { return candidate.code == code; });
    return row == rows + N ? nullptr : row;
}

Opcode FormOf(Opcode first, Form form) {
    return static_cast<Opcode>(static_cast<std::uint16_t>(first) + static_cast<std::uint16_t>(form));
}

void EmitArithmetic(std::uint16_t slot, std::int32_t code, std::uint16_t left, const Operand& right) {
    if (const ArithmeticRow* row = RowOf(ARITHMETIC, code)) {
        Emit(FormOf(row->slotSlot, right.form), slot, left, right.slot, right.value);
        return;
    }
    std::uint16_t rightSlot = right.slot;
    if (right.form != Form::Slot) {
        rightSlot = EmitTemporary();
        Emit(Opcode::LOAD, rightSlot, 0, right.form == Form::Int ? TYPE_INT : TYPE_REAL, right.value);
    }
    const CompareRow* row = RowOf(COMPARES, code);
    Emit(row != nullptr ? row->value : Opcode::BINARY, slot, left, rightSlot, code);
}

// left op right into `slot`, for a chain of left-associative operators without recursion along the chain.
void EmitBinary(NodeId node, std::uint16_t slot) {
    std::vector<NodeId> chain;
    NodeId leftmost = node;
    for (; NodeOf(leftmost).kind == NodeKind::Binary; leftmost = NodeOf(leftmost).left) {
        chain.push_back(leftmost);
    }
    const TemporaryScope scope;
    std::uint16_t left = EmitLeft(leftmost, NodeOf(chain.back()).right);
    // Between the steps the value rests in one temporary, the result's own when that is one.
    const std::uint16_t resting = IsTemporary(slot) ? slot : IsTemporary(left) ? left : EmitTemporary();
    for (std::size_t step = chain.size(); step-- > 0;) {
        const TemporaryScope stepScope;
        const Node binary = NodeOf(chain[step]);
        const Operand right = EmitOperand(binary.right);
        EmitArithmetic(step == 0 ? slot : resting, binary.index, left, right);
        left = resting;
    }
}

// The call's arguments in consecutive temporaries; the first of them gets the result.
std::uint16_t EmitCall(NodeId node, Opcode op) {
    const Node call = NodeOf(node);
    const std::uint16_t first = EmitTemporary();
    {
        const TemporaryScope scope;
        std::uint16_t slot = first;
        for (NodeId argument = call.firstChild; argument != NO_NODE; argument = NodeOf(argument).nextSibling) {
            EmitInto(argument, slot);
            if (NodeOf(argument).nextSibling != NO_NODE) {
                slot = EmitTemporary();
            }
        }
    }
    CodeEmit({op, first, static_cast<std::uint16_t>(call.children), 0, 0, call.index});
    return first;
}

// The slot of an element's array, its subscripts already in `slots`; leaves the last `keep` subscripts to the caller.
std::uint16_t EmitDescend(std::uint16_t array, const std::vector<Operand>& subscripts, std::size_t keep) {
    for (std::size_t i = 0; i + keep < subscripts.size(); ++i) {
        const std::uint16_t inner = EmitTemporary();
        if (subscripts[i].form == Form::Int) {
            Emit(Opcode::GET_ELEMENT_K, inner, array, 0, subscripts[i].value);
        } else {
            Emit(Opcode::GET_ELEMENT, inner, array, subscripts[i].slot);
        }
        array = inner;
    }
    return array;
}

// `callsLater`: script code may run before the subscripts are used, so variables are read now.
std::vector<Operand> EmitSubscripts(NodeId element, bool callsLater) {
    std::vector<Operand> subscripts;
    for (NodeId child = NodeOf(element).firstChild; child != NO_NODE; child = NodeOf(child).nextSibling) {
        Operand operand = EmitOperand(child);
        if (operand.form == Form::Real) {
            operand = {Form::Slot, EmitTemporary(), 0};
            Emit(Opcode::LOAD, operand.slot, 0, TYPE_REAL, NodeOf(child).cell.integer);
        } else if (NodeOf(child).kind == NodeKind::Slot && callsLater) {
            const std::uint16_t copy = EmitTemporary();
            EmitInto(child, copy);
            operand.slot = copy;
        }
        subscripts.push_back(operand);
    }
    return subscripts;
}

// Reads (into `slot`) or writes (from `slot`) array[subscripts].
void EmitElement(bool write, std::uint16_t array, const std::vector<Operand>& subscripts, std::uint16_t slot) {
    const std::size_t count = subscripts.size();
    if (count >= 2 && subscripts[count - 1].form == Form::Slot && subscripts[count - 2].form == Form::Slot) {
        array = EmitDescend(array, subscripts, 2);
        CodeEmit({write ? Opcode::SET_ELEMENT_2 : Opcode::GET_ELEMENT_2, slot, array, subscripts[count - 2].slot,
                  subscripts[count - 1].slot, 0});
        return;
    }
    array = EmitDescend(array, subscripts, 1);
    if (subscripts.back().form == Form::Int) {
        Emit(write ? Opcode::SET_ELEMENT_K : Opcode::GET_ELEMENT_K, slot, array, 0, subscripts.back().value);
    } else {
        Emit(write ? Opcode::SET_ELEMENT : Opcode::GET_ELEMENT, slot, array, subscripts.back().slot);
    }
}

// A comparison as operands of a jump instruction.
struct Comparison {
    const CompareRow* row = nullptr;
    std::uint16_t left = 0;
    Operand right;
};

Comparison EmitComparison(NodeId condition) {
    Comparison comparison;
    const Node node = NodeOf(condition);
    comparison.row = node.kind == NodeKind::Binary ? RowOf(COMPARES, node.index) : nullptr;
    if (comparison.row != nullptr) {
        comparison.left = EmitLeft(node.left, node.right);
        comparison.right = EmitOperand(node.right);
    }
    return comparison;
}

std::int32_t EmitConditional(NodeId condition, bool loop) {
    const TemporaryScope scope;
    const Comparison comparison = EmitComparison(condition);
    if (comparison.row != nullptr) {
        const auto first = static_cast<Opcode>(static_cast<std::uint16_t>(comparison.row->jumpUnless) + (loop ? 3 : 0));
        return Emit(FormOf(first, comparison.right.form), 0, comparison.left, comparison.right.slot,
                    comparison.right.value);
    }
    return Emit(loop ? Opcode::JT : Opcode::JF, 0, EmitValue(condition), 0);
}

}  // namespace

void EmitReset() {
    temporaries = 0;
    temporariesMost = 0;
}

std::uint16_t EmitTemporary() {
    if (temporaries >= TEMPORARIES_MOST) {
        CompileError("%s", "スタックオーバーフロー！！"_sjis);
    }
    temporariesMost = std::max(temporariesMost, temporaries + 1);
    return static_cast<std::uint16_t>(TEMPORARY | temporaries++);
}

std::int32_t EmitTemporariesUsed() { return temporariesMost; }

void EmitFreeTemporaries() { temporaries = 0; }

std::uint16_t EmitValue(NodeId node) {
    if (NodeOf(node).kind == NodeKind::Slot) {
        return static_cast<std::uint16_t>(NodeOf(node).index);
    }
    if (NodeOf(node).kind == NodeKind::Call) {
        return EmitCall(node, Opcode::CALL);
    }
    const std::uint16_t slot = EmitTemporary();
    EmitInto(node, slot);
    return slot;
}

void EmitInto(NodeId id, std::uint16_t slot) {
    const Node node = NodeOf(id);
    const TemporaryScope scope;
    switch (node.kind) {
        case NodeKind::Constant:
            Emit(Opcode::LOAD, slot, 0, node.cell.type, node.cell.integer);
            break;
        case NodeKind::Slot:
            Emit(Opcode::ASSIGN, slot, static_cast<std::uint16_t>(node.index), 0);
            break;
        case NodeKind::Global:
            Emit(Opcode::GET_GLOBAL, slot, 0, 0, node.index);
            break;
        case NodeKind::Element: {
            const std::vector<Operand> subscripts = EmitSubscripts(id, node.calls);
            EmitElement(false, EmitValue(node.left), subscripts, slot);
            break;
        }
        case NodeKind::Call: {
            const std::uint16_t result = EmitCall(id, Opcode::CALL);
            Emit(Opcode::ASSIGN, slot, result, 0);
            break;
        }
        case NodeKind::Unary: {
            const std::uint16_t operand = EmitValue(node.left);
            Emit(Opcode::UNARY, slot, operand, 0, node.index);
            break;
        }
        case NodeKind::Binary:
            EmitBinary(id, slot);
            break;
        case NodeKind::List:
            Check(false, "an initialiser is no operand");
    }
}

void EmitDropped(NodeId node) {
    if (NodeOf(node).kind == NodeKind::Call) {
        EmitCall(node, Opcode::CALL_DROP);
    } else {
        Emit(Opcode::DROP, 0, EmitValue(node), 0);
    }
}

std::int32_t EmitJumpUnless(NodeId condition) { return EmitConditional(condition, false); }

void EmitLoopIf(NodeId condition, std::int32_t target) {
    const bool always = NodeOf(condition).kind == NodeKind::Constant &&
                        (NodeOf(condition).cell.type & TYPE_FLAG) != 0 && NodeOf(condition).cell.integer != 0;
    CodePatch(always ? Emit(Opcode::LOOP, 0, 0, 0) : EmitConditional(condition, true), target);
}

bool EmitCountedLoop(std::uint16_t slot, NodeId condition, std::int32_t target) {
    const Node node = NodeOf(condition);
    if (node.kind != NodeKind::Binary || (node.index != OP_LESS && node.index != OP_LESS_EQUAL) ||
        NodeOf(node.left).kind != NodeKind::Slot || NodeOf(node.left).index != slot) {
        return false;
    }
    const Opcode first = node.index == OP_LESS ? Opcode::FOR_LESS_SS : Opcode::FOR_LESS_EQUAL_SS;
    if (IsConstant(node.right, TYPE_INT)) {
        CodePatch(Emit(FormOf(first, Form::Int), 0, slot, 0, NodeOf(node.right).cell.integer), target);
        return true;
    }
    if (NodeOf(node.right).kind == NodeKind::Slot && NodeOf(node.right).index != slot) {
        CodePatch(Emit(first, 0, slot, static_cast<std::uint16_t>(NodeOf(node.right).index)), target);
        return true;
    }
    return false;
}

void EmitAssign(NodeId target, NodeId value) {
    const Node node = NodeOf(target);
    if (node.kind == NodeKind::Slot) {
        EmitInto(value, static_cast<std::uint16_t>(node.index));
        return;
    }
    if (node.kind == NodeKind::Global) {
        Emit(Opcode::SET_GLOBAL, 0, EmitValue(value), 0, node.index);
        return;
    }
    const std::vector<Operand> subscripts = EmitSubscripts(target, node.calls || NodeOf(value).calls);
    const std::uint16_t slot = EmitValue(value);
    EmitElement(true, EmitValue(node.left), subscripts, slot);
}

void EmitUpdate(NodeId target, std::int32_t code, NodeId value) {
    const Node node = NodeOf(target);
    const auto apply = [code, value](std::uint16_t into, std::uint16_t from) {
        if (value != NO_NODE) {
            const Operand right = EmitOperand(value);
            EmitArithmetic(into, code, from, right);
        } else {
            if (into != from) {
                Emit(Opcode::ASSIGN, into, from, 0);
            }
            Emit(code == OP_INCREMENT ? Opcode::INCREMENT : Opcode::DECREMENT, into, 0, 0);
        }
    };
    if (node.kind == NodeKind::Slot) {
        const auto slot = static_cast<std::uint16_t>(node.index);
        if (value != NO_NODE && NodeOf(value).calls) {
            const std::uint16_t copy = EmitTemporary();
            EmitInto(target, copy);
            apply(slot, copy);
        } else {
            apply(slot, slot);
        }
        return;
    }
    if (node.kind == NodeKind::Global) {
        const std::uint16_t copy = EmitTemporary();
        EmitInto(target, copy);
        apply(copy, copy);
        Emit(Opcode::SET_GLOBAL, 0, copy, 0, node.index);
        return;
    }
    const bool calls = node.calls || (value != NO_NODE && NodeOf(value).calls);
    const std::vector<Operand> subscripts = EmitSubscripts(target, calls);
    const std::uint16_t array = EmitValue(node.left);
    const std::uint16_t copy = EmitTemporary();
    EmitElement(false, array, subscripts, copy);
    apply(copy, copy);
    EmitElement(true, array, subscripts, copy);
}

namespace {

void EmitArrayOfSizes(std::uint16_t slot, const std::vector<NodeId>& sizes, const std::vector<std::int32_t>& counts) {
    const TemporaryScope scope;
    const std::size_t dimensions = std::max(sizes.size(), counts.size());
    std::uint16_t first = 0;
    for (std::size_t i = 0; i < dimensions; ++i) {
        const std::uint16_t size = EmitTemporary();
        first = i == 0 ? size : first;
        if (i < sizes.size()) {
            EmitInto(sizes[i], size);
        } else {
            Emit(Opcode::LOAD, size, 0, TYPE_INT, counts[i]);
        }
    }
    Emit(Opcode::ARRAY, slot, first, static_cast<std::uint16_t>(dimensions));
}

// The count of each dimension that an initialiser's shape asks for.
void ListShape(NodeId list, std::size_t depth, std::vector<std::int32_t>& counts) {
    if (counts.size() <= depth) {
        counts.push_back(0);
    }
    counts[depth] = std::max(counts[depth], NodeOf(list).children);
    for (NodeId child = NodeOf(list).firstChild; child != NO_NODE; child = NodeOf(child).nextSibling) {
        if (NodeOf(child).kind == NodeKind::List) {
            ListShape(child, depth + 1, counts);
        }
    }
}

}  // namespace

void EmitArray(std::uint16_t slot, NodeId sizes) {
    std::vector<NodeId> dimensions;
    for (NodeId child = NodeOf(sizes).firstChild; child != NO_NODE; child = NodeOf(child).nextSibling) {
        dimensions.push_back(child);
    }
    EmitArrayOfSizes(slot, dimensions, {});
}

void EmitArrayLike(std::uint16_t slot, NodeId list) {
    std::vector<std::int32_t> counts;
    ListShape(list, 0, counts);
    EmitArrayOfSizes(slot, {}, counts);
}

void EmitInitialise(std::uint16_t array, NodeId list) {
    Emit(Opcode::FIT, array, 0, 0, NodeOf(list).children);
    std::int32_t index = 0;
    for (NodeId child = NodeOf(list).firstChild; child != NO_NODE; child = NodeOf(child).nextSibling, ++index) {
        const TemporaryScope scope;
        if (NodeOf(child).kind == NodeKind::List) {
            const std::uint16_t inner = EmitTemporary();
            Emit(Opcode::GET_ELEMENT_K, inner, array, 0, index);
            EmitInitialise(inner, child);
        } else {
            const std::uint16_t slot = EmitValue(child);
            Emit(Opcode::SET_ELEMENT_K, slot, array, 0, index);
        }
    }
}

}  // namespace quelmark
