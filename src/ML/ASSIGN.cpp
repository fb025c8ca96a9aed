#include "ML/ASSIGN.h"

#include <algorithm>
#include <vector>

#include "ML/CODE.h"
#include "ML/EMIT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::size_t DIMENSIONS_MOST = 250;

void EmitSetGlobal(std::int32_t global, std::uint16_t slot) {
    CodeEmit({Opcode::SET_GLOBAL, 0, slot, 0, 0, global});
}

// A constant into an element with one subscript needs no temporary.
bool EmitConstantElement(const ElementPlace& place, NodeId value) {
    const Node& node = NodeOf(value);
    if (node.kind != NodeKind::Constant || node.cell.type == TYPE_OBJECT || place.subscripts.size() != 1 ||
        place.subscripts[0].form != Form::Slot) {
        return false;
    }
    const DataCell constant = node.cell;
    CodeEmit({Opcode::SET_ELEMENT_CONSTANT, constant.type, EmitValue(place.array), place.subscripts[0].slot,
              0, constant.integer});
    return true;
}

// into = from op value.
void EmitOperation(std::uint16_t into, std::uint16_t from, std::int32_t code, NodeId value) {
    if (value != NO_NODE) {
        EmitArithmetic(into, code, from, EmitOperand(value));
    } else {
        CodeEmit({code == OP_INCREMENT ? Opcode::INCREMENT : Opcode::DECREMENT, into});
    }
}

// Sizes are given, or counted from an initialiser.
void EmitArrayOfSizes(std::uint16_t slot, const std::vector<NodeId>& sizes,
                      const std::vector<std::int32_t>& counts) {
    const TemporaryScope scope;
    const std::size_t dimensions = std::max(sizes.size(), counts.size());
    if (dimensions > DIMENSIONS_MOST) {
        CompileError("%s", "スタックオーバーフロー！！"_sjis);
    }
    std::uint16_t first = 0;
    for (std::size_t i = 0; i < dimensions; ++i) {
        const std::uint16_t size = EmitTemporary();
        first = i == 0 ? size : first;
        if (i < sizes.size()) {
            EmitInto(sizes[i], size);
        } else {
            EmitConstant(size, IntCell(counts[i]));
        }
    }
    CodeEmit({Opcode::ARRAY, slot, first, static_cast<std::uint16_t>(dimensions)});
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

void EmitAssign(NodeId target, NodeId value) {
    const Node node = NodeOf(target);
    if (node.kind == NodeKind::Slot) {
        EmitInto(value, static_cast<std::uint16_t>(node.index));
        return;
    }
    if (node.kind == NodeKind::Global) {
        EmitSetGlobal(node.index, EmitValue(value));
        return;
    }
    const ElementPlace place = EmitPlace(target, node.calls || NodeOf(value).calls);
    if (NodeOf(value).calls) {
        EmitElementCheck(place);
    }
    if (!EmitConstantElement(place, value)) {
        EmitElementWrite(place, EmitValue(value));
    }
}

void EmitUpdate(NodeId target, std::int32_t code, NodeId value) {
    const Node node = NodeOf(target);
    const bool valueCalls = value != NO_NODE && NodeOf(value).calls;
    if (node.kind == NodeKind::Slot && !valueCalls) {
        const auto slot = static_cast<std::uint16_t>(node.index);
        EmitOperation(slot, slot, code, value);
        return;
    }
    // The value before is read first, whatever evaluating the right side does.
    ElementPlace place;
    if (node.kind == NodeKind::Element) {
        place = EmitPlace(target, node.calls || valueCalls);
    }
    const std::uint16_t before = EmitTemporary();
    if (node.kind == NodeKind::Element) {
        EmitElementRead(place, before);
    } else {
        EmitInto(target, before);
    }
    if (node.kind == NodeKind::Slot) {
        EmitOperation(static_cast<std::uint16_t>(node.index), before, code, value);
        return;
    }
    EmitOperation(before, before, code, value);
    if (node.kind == NodeKind::Element) {
        EmitElementWrite(place, before);
    } else {
        EmitSetGlobal(node.index, before);
    }
}

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
    CodeEmit({Opcode::FIT, array, 0, 0, 0, NodeOf(list).children});
    std::int32_t index = 0;
    for (NodeId child = NodeOf(list).firstChild; child != NO_NODE;
         child = NodeOf(child).nextSibling, ++index) {
        const TemporaryScope scope;
        if (NodeOf(child).kind == NodeKind::List) {
            const std::uint16_t position = EmitTemporary();
            EmitConstant(position, IntCell(index));
            const std::uint16_t inner = EmitTemporary();
            CodeEmit({Opcode::GET_ROW, inner, array, position});
            EmitInitialise(inner, child);
        } else {
            CodeEmit({Opcode::SET_ELEMENT_K, EmitValue(child), array, 0, 0, index});
        }
    }
}

}  // namespace quelmark
