#include "ML/EMIT.h"

#include <algorithm>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t TEMPORARIES_MOST = 0x7000;
constexpr std::size_t JOINED_MOST = 256;  // parts of a text that wait on the stack

std::int32_t temporaries = 0;      // in use
std::int32_t temporariesMost = 0;  // ever in use

std::int32_t Emit(Opcode op, std::uint16_t a, std::uint16_t b, std::uint16_t c, std::int32_t value = 0) {
    return CodeEmit({op, a, b, c, 0, value});
}

bool IsLastTemporary(std::uint16_t slot) {
    return IsTemporary(slot) && (slot & ~TEMPORARY) + 1 == temporaries;
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
    const Row* row =
        std::find_if(rows, rows + N, [code](const Row& candidate) { return candidate.code == code; });
    return row == rows + N ? nullptr : row;
}

Operand ConstantOperand(const DataCell& cell) {
    return {cell.type == TYPE_INT ? Form::Int : Form::Real, 0, cell.integer};
}

bool IsNumber(NodeId node) {
    return NodeOf(node).kind == NodeKind::Constant && (NodeOf(node).cell.type & TYPE_NUMBER) != 0;
}

// The nodes of a chain of left-associative operators, the last operator first; answers the leftmost operand.
NodeId ChainOf(NodeId node, std::vector<NodeId>& chain) {
    for (; NodeOf(node).kind == NodeKind::Binary; node = NodeOf(node).left) {
        chain.push_back(node);
    }
    return node;
}

// Two or more values added behind a text constant somewhere: the parts of a text.
bool BuildsText(const std::vector<NodeId>& chain) {
    bool text = false;
    if (chain.size() < 2 || chain.size() > JOINED_MOST) {
        return false;
    }
    for (const NodeId step : chain) {
        const Node& right = NodeOf(NodeOf(step).right);
        text = text || (right.kind == NodeKind::Constant && right.cell.type == TYPE_OBJECT);
    }
    return text &&
           std::all_of(chain.begin(), chain.end(), [](NodeId step) { return NodeOf(step).index == OP_ADD; });
}

// Texts grow in place when all parts are at hand before the first is added. The temporary before the parts is
// the instruction's own.
void EmitJoin(NodeId leftmost, const std::vector<NodeId>& chain, std::uint16_t slot) {
    const bool calls = NodeOf(chain.front()).calls;
    std::uint16_t left = 0;
    if (calls && NodeOf(leftmost).kind == NodeKind::Slot) {
        left = EmitTemporary();
        EmitInto(leftmost, left);
    } else {
        left = EmitValue(leftmost);
    }
    EmitTemporary();
    std::uint16_t first = 0;
    for (std::size_t step = chain.size(); step-- > 0;) {
        const std::uint16_t part = EmitTemporary();
        first = step + 1 == chain.size() ? part : first;
        EmitInto(NodeOf(chain[step]).right, part);
    }
    Emit(Opcode::JOIN, slot, left, first, static_cast<std::int32_t>(chain.size()));
}

// left op right into `slot`, for a chain of left-associative operators without recursion along the chain.
void EmitBinary(NodeId node, std::uint16_t slot) {
    std::vector<NodeId> chain;
    const NodeId leftmost = ChainOf(node, chain);
    const TemporaryScope scope;
    if (BuildsText(chain)) {
        EmitJoin(leftmost, chain, slot);
        return;
    }
    const Node innermost = NodeOf(chain.back());
    std::size_t step = chain.size();
    std::uint16_t left = 0;
    // A REAL before `+` and `*` may as well stand in the instruction; an INT only decides the type on the
    // left.
    const bool swapped = (innermost.index == OP_ADD || innermost.index == OP_MULTIPLY) &&
                         IsNumber(leftmost) && !IsNumber(innermost.right);
    const auto target = [&](std::size_t at, std::uint16_t operand) {
        // Between the steps the value rests in one temporary, the result's own when that is one.
        return at == 0 || IsTemporary(slot) ? slot : IsTemporary(operand) ? operand : EmitTemporary();
    };
    if (swapped) {
        const std::uint16_t right = EmitValue(innermost.right);
        const Operand constant = ConstantOperand(NodeOf(leftmost).cell);
        left = target(--step, right);
        Emit(FormOf(RowOf(ARITHMETIC, innermost.index)->slotSlot, constant.form), left, right, 1,
             constant.value);
    } else {
        left = EmitLeft(leftmost, innermost.right, slot);
    }
    while (step-- > 0) {
        const Node binary = NodeOf(chain[step]);
        const std::uint16_t into = target(step, left);
        const TemporaryScope stepScope;
        EmitArithmetic(into, binary.index, left, EmitOperand(binary.right));
        left = into;
    }
}

// The call's arguments in consecutive temporaries; the first of them gets the result.
std::uint16_t EmitCall(NodeId node, Opcode op) {
    const NestingGuard guard;  // a chain of methods nests its calls
    const Node call = NodeOf(node);
    const std::uint16_t first = EmitTemporary();
    {
        const TemporaryScope scope;
        std::uint16_t slot = first;
        for (NodeId argument = call.firstChild; argument != NO_NODE;
             argument = NodeOf(argument).nextSibling) {
            EmitInto(argument, slot);
            if (NodeOf(argument).nextSibling != NO_NODE) {
                slot = EmitTemporary();
            }
        }
    }
    CodeEmit({op, first, static_cast<std::uint16_t>(call.children), 0, 0, call.index});
    return first;
}

// A subscript as a slot.
std::uint16_t SubscriptSlot(const Operand& subscript) {
    if (subscript.form == Form::Slot) {
        return subscript.slot;
    }
    const std::uint16_t slot = EmitTemporary();
    EmitConstant(slot, IntCell(subscript.value));
    return slot;
}

// The slot of the array that the last `keep` subscripts apply to.
std::uint16_t EmitDescend(const ElementPlace& place, std::size_t keep) {
    std::uint16_t array = EmitValue(place.array);
    for (std::size_t i = 0; i + keep < place.subscripts.size(); ++i) {
        const std::uint16_t row = EmitTemporary();
        Emit(Opcode::GET_ROW, row, array, SubscriptSlot(place.subscripts[i]));
        array = row;
    }
    return array;
}

// The instructions for one way, reading or writing.
struct ElementOpcodes {
    Opcode slot, constant, two, global, globalConstant;
};
constexpr ElementOpcodes READ = {Opcode::GET_ELEMENT, Opcode::GET_ELEMENT_K, Opcode::GET_ELEMENT_2,
                                 Opcode::GET_GLOBAL_ELEMENT, Opcode::GET_GLOBAL_ELEMENT_K};
constexpr ElementOpcodes WRITE = {Opcode::SET_ELEMENT, Opcode::SET_ELEMENT_K, Opcode::SET_ELEMENT_2,
                                  Opcode::SET_GLOBAL_ELEMENT, Opcode::SET_GLOBAL_ELEMENT_K};

void EmitElement(const ElementOpcodes& opcodes, const ElementPlace& place, std::uint16_t slot) {
    const std::vector<Operand>& subscripts = place.subscripts;
    const Operand& last = subscripts.back();
    const std::size_t count = subscripts.size();
    const bool isConstant = last.form == Form::Int;
    if (count == 1 && NodeOf(place.array).kind == NodeKind::Global &&
        (!isConstant || (last.value >> 16) == 0)) {
        const std::int32_t global = NodeOf(place.array).index;
        if (isConstant) {
            Emit(opcodes.globalConstant, slot, static_cast<std::uint16_t>(last.value), 0, global);
        } else {
            Emit(opcodes.global, slot, last.slot, 0, global);
        }
    } else if (count >= 2) {
        const std::uint16_t array = EmitDescend(place, 2);
        const std::uint16_t row = SubscriptSlot(subscripts[count - 2]);
        CodeEmit({opcodes.two, slot, array, row, SubscriptSlot(last), 0});
    } else if (isConstant) {
        Emit(opcodes.constant, slot, EmitDescend(place, 1), 0, last.value);
    } else {
        Emit(opcodes.slot, slot, EmitDescend(place, 1), last.slot);
    }
}

}  // namespace

TemporaryScope::TemporaryScope() : before_(temporaries) {}
TemporaryScope::~TemporaryScope() {
    temporaries = before_;
}

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

std::int32_t EmitTemporariesUsed() {
    return temporariesMost;
}

void EmitFreeTemporaries() {
    temporaries = 0;
}

const CompareRow* CompareRowOf(std::int32_t code) {
    return RowOf(COMPARES, code);
}

Opcode FormOf(Opcode first, Form form) {
    return static_cast<Opcode>(static_cast<std::uint16_t>(first) + static_cast<std::uint16_t>(form));
}

Operand EmitOperand(NodeId node) {
    return IsNumber(node) ? ConstantOperand(NodeOf(node).cell) : Operand{Form::Slot, EmitValue(node), 0};
}

std::uint16_t EmitLeft(NodeId left, NodeId right, std::uint16_t room) {
    if (NodeOf(left).kind == NodeKind::Slot && !NodeOf(right).calls) {
        return EmitValue(left);
    }
    const std::uint16_t slot = IsLastTemporary(room) ? room : EmitTemporary();
    EmitInto(left, slot);
    return slot;
}

void EmitArithmetic(std::uint16_t slot, std::int32_t code, std::uint16_t left, const Operand& right) {
    if (const ArithmeticRow* row = RowOf(ARITHMETIC, code)) {
        Emit(FormOf(row->slotSlot, right.form), slot, left, right.slot, right.value);
        return;
    }
    if (const CompareRow* row = CompareRowOf(code)) {
        Emit(FormOf(row->value, right.form), slot, left, right.slot, right.value);
        return;
    }
    std::uint16_t rightSlot = right.slot;
    if (right.form != Form::Slot) {
        rightSlot = EmitTemporary();
        Emit(Opcode::LOAD, rightSlot, 0, right.form == Form::Int ? TYPE_INT : TYPE_REAL, right.value);
    }
    Emit(Opcode::BINARY, slot, left, rightSlot, code);
}

void EmitConstant(std::uint16_t slot, const DataCell& cell) {
    Emit(cell.type == TYPE_OBJECT ? Opcode::LOAD_OBJECT : Opcode::LOAD, slot, 0, cell.type, cell.integer);
}

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
            EmitConstant(slot, node.cell);
            break;
        case NodeKind::Slot:
            Emit(IsTemporary(slot) ? Opcode::COPY : Opcode::ASSIGN, slot,
                 static_cast<std::uint16_t>(node.index), 0);
            break;
        case NodeKind::Global: {
            const std::uint16_t temporary = IsTemporary(slot) ? slot : EmitTemporary();
            Emit(Opcode::GET_GLOBAL, temporary, 0, 0, node.index);
            if (temporary != slot) {
                Emit(Opcode::MOVE, slot, temporary, 0);
            }
            break;
        }
        case NodeKind::Element:
            EmitElementRead(EmitPlace(id, node.calls), slot);
            break;
        case NodeKind::Call: {
            // The last temporary taken may be where the result lands by itself.
            temporaries -= IsLastTemporary(slot) ? 1 : 0;
            const std::uint16_t result = EmitCall(id, Opcode::CALL);
            if (result != slot) {
                Emit(Opcode::MOVE, slot, result, 0);
            }
            break;
        }
        case NodeKind::Unary:
            Emit(node.index == OP_NOT ? Opcode::NOT : Opcode::NEGATE, slot,
                 EmitLeft(node.left, node.left, slot), 0);
            break;
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

ElementPlace EmitPlace(NodeId element, bool callsLater) {
    ElementPlace place{NodeOf(element).left, {}};
    for (NodeId child = NodeOf(element).firstChild; child != NO_NODE; child = NodeOf(child).nextSibling) {
        Operand operand = EmitOperand(child);
        if (operand.form == Form::Real || (NodeOf(child).kind == NodeKind::Slot && callsLater)) {
            operand = {Form::Slot, EmitTemporary(), 0};
            EmitInto(child, operand.slot);
        }
        place.subscripts.push_back(operand);
    }
    return place;
}

void EmitElementRead(const ElementPlace& place, std::uint16_t slot) {
    EmitElement(READ, place, slot);
}
void EmitElementCheck(const ElementPlace& place) {
    const TemporaryScope scope;
    const std::uint16_t array = EmitDescend(place, 1);
    Emit(Opcode::PLACE, 0, array, SubscriptSlot(place.subscripts.back()));
}
void EmitElementWrite(const ElementPlace& place, std::uint16_t slot) {
    EmitElement(WRITE, place, slot);
}

}  // namespace quelmark
