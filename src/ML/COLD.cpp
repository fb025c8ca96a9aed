#include "ML/COLD.h"

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

OperandCell OperandOf(const Frame& frame, std::uint16_t slot) {
    return {frame.base + slot, slot >= frame.function->locals};
}

DataCell Immediate(const Instruction& i, std::uint16_t type) {
    DataCell cell{type, 0, {0}};
    cell.integer = i.value;
    return cell;
}

// A variable gets the value by the rules of assignment; a temporary is overwritten.
void Deliver(const Frame& frame, std::uint16_t slot, OperandCell source) {
    if (slot >= frame.function->locals) {
        frame.base[slot] = NoCell();
    }
    Assign(frame.base + slot, source);
}

// The element that a further subscript applies to; an unassigned one holds no array.
DataCell* RowAt(const Instruction& i, const Frame& frame) {
    DataCell* const row = ElementAt(frame.base[i.b], frame.base[i.c]);
    if (row->type != TYPE_ARRAY) {
        ReportNoElement();
    }
    return row;
}

}  // namespace

void OperateSlots(std::int32_t code, const Instruction& i, const Frame& frame) {
    Operate(code, frame.base + i.a, OperandOf(frame, i.b), OperandOf(frame, i.c));
}

void OperateImmediate(std::int32_t code, const Instruction& i, const Frame& frame, std::uint16_t type) {
    DataCell constant = Immediate(i, type);
    if (i.c == 0) {
        Operate(code, frame.base + i.a, OperandOf(frame, i.b), {&constant, false});
    } else {
        Operate(code, frame.base + i.a, {&constant, false}, OperandOf(frame, i.b));
    }
}

void OperateUnary(std::int32_t code, const Instruction& i, const Frame& frame) {
    Operate(code, frame.base + i.a, OperandOf(frame, i.b), {nullptr, false});
}

void OperateStep(std::int32_t code, const Instruction& i, const Frame& frame) {
    Operate(code, frame.base + i.a, {frame.base + i.a, false}, {nullptr, false});
}

void Join(const Instruction& i, const Frame& frame) {
    DataCell* destination = frame.base + i.a;
    DataCell* parts = frame.base + i.c;
    OperandCell left = OperandOf(frame, i.b);
    // Only values whose text cannot fail may go into the variable one by one.
    bool inPlace = i.a == i.b && IsString(*left.cell);
    for (std::int32_t part = 0; part < i.value; ++part) {
        inPlace = inPlace && (parts[part].type != TYPE_OBJECT || IsString(parts[part]));
    }
    if (!inPlace && !left.owned) {
        // Between the steps the value rests in the temporary before the parts.
        Operate(OP_ADD, parts - 1, left, {parts, true});
        left = {parts - 1, true};
        for (std::int32_t part = 1; part + 1 < i.value; ++part) {
            Operate(OP_ADD, left.cell, left, {parts + part, true});
        }
        Operate(OP_ADD, destination, left, {parts + i.value - 1, true});
        return;
    }
    for (std::int32_t part = 0; part < i.value; ++part) {
        const bool last = part + 1 == i.value;
        Operate(OP_ADD, last ? destination : left.cell, left, {parts + part, true});
    }
}

bool TruthOfSlots(std::int32_t code, const Instruction& i, const Frame& frame) {
    return OperateCondition(code, OperandOf(frame, i.b), OperandOf(frame, i.c));
}

bool TruthOfImmediate(std::int32_t code, const Instruction& i, const Frame& frame, std::uint16_t type) {
    DataCell constant = Immediate(i, type);
    return OperateCondition(code, OperandOf(frame, i.b), {&constant, false});
}

bool TruthOfSlot(const Instruction& i, const Frame& frame) {
    return Condition(frame.base[i.b]);
}

bool StepAndTest(std::int32_t code, const Instruction& i, const Frame& frame, bool stepInSlot,
                 bool limitInSlot) {
    const std::int32_t operation = limitInSlot ? i.value : i.c;
    DataCell* counter = frame.base + i.b;
    if (stepInSlot) {
        Operate(operation, counter, {counter, false}, {frame.base + i.a, false});
    } else {
        const std::int32_t step = static_cast<std::int16_t>(i.a);
        DataCell constant = IntCell(operation == OP_SUBTRACT ? -step : step);
        const bool unary = operation == OP_INCREMENT || operation == OP_DECREMENT;
        Operate(operation, counter, {counter, false}, {unary ? nullptr : &constant, false});
    }
    DataCell limit = Immediate(i, TYPE_INT);
    return OperateCondition(code, {counter, false}, {limitInSlot ? frame.base + i.c : &limit, false});
}

void AssignSlot(const Instruction& i, const Frame& frame) {
    Assign(frame.base + i.a, OperandOf(frame, i.b));
}

void CopySlot(const Instruction& i, const Frame& frame) {
    Deliver(frame, i.a, OperandOf(frame, i.b));
}

void LoadConstant(const Instruction& i, const Frame& frame) {
    DataCell constant = Immediate(i, i.c);
    Deliver(frame, i.a, {&constant, false});
}

void GetGlobal(const Instruction& i, const Frame& frame) {
    Deliver(frame, i.a, {StackBuf + i.value, false});
}

void SetGlobal(const Instruction& i, const Frame& frame) {
    Assign(StackBuf + i.value, OperandOf(frame, i.b));
}

void GetElement(const Instruction& i, const Frame& frame, const DataCell& array, const DataCell& subscript) {
    Deliver(frame, i.a, {ElementAt(array, subscript), false});
}

void SetElement(const Instruction& i, const Frame& frame, const DataCell& array, const DataCell& subscript) {
    Assign(ElementAt(array, subscript), OperandOf(frame, i.a));
}

void GetRow(const Instruction& i, const Frame& frame) {
    Deliver(frame, i.a, {RowAt(i, frame), false});
}

void GetElement2(const Instruction& i, const Frame& frame) {
    GetElement(i, frame, *RowAt(i, frame), frame.base[i.jump]);
}

void SetElement2(const Instruction& i, const Frame& frame) {
    SetElement(i, frame, *RowAt(i, frame), frame.base[i.jump]);
}

void SetElementConstant(const Instruction& i, const Frame& frame) {
    DataCell constant = Immediate(i, i.a);
    Assign(ElementAt(frame.base[i.b], frame.base[i.c]), {&constant, false});
}

void CheckPlace(const Instruction& i, const Frame& frame) {
    ElementAt(frame.base[i.b], frame.base[i.c]);
}

void DeclareArrayInSlot(const Instruction& i, const Frame& frame) {
    DeclareArray(frame.base + i.a, frame.base + i.b, i.c);
}

void CheckFit(const Instruction& i, const Frame& frame) {
    const DataCell& array = frame.base[i.a];
    if (array.type != TYPE_ARRAY) {
        ReportNoElement();
    }
    if (static_cast<std::uint32_t>(i.value) > ArrayCount(array)) {
        RuntimeError("%s", "大きさの異なる配列は代入できません。"_sjis);
    }
}

void DropSlot(const Instruction& i, const Frame& frame) {
    if (frame.base[i.b].type == TYPE_NOASSIGN) {
        ReportUnassigned();
    }
    ReleaseOwned(OperandOf(frame, i.b));
}

DataCell* MoveArgumentsUp(DataCell* argv, std::int32_t argc) {
    const std::int32_t first = StackPtr + 1;
    if (StackPtr + argc > StackHighWater) {
        StackRaiseHighWater(StackPtr + argc);
    }
    for (std::int32_t i = 0; i < argc; ++i) {
        StackBuf[first + i] = ReadCell(argv[i]);
        if (argv[i].type == TYPE_OBJECT) {
            argv[i].type = TYPE_NOASSIGN;
        }
    }
    StackPtr += argc;
    return StackBuf + first;
}

void ReleaseSurplus(DataCell* first, DataCell* behind) {
    for (DataCell* cell = first; cell < behind; ++cell) {
        ReleaseOwned({cell, true});
    }
}

void ReleaseCell(DataCell* cell) {
    cell->type = TYPE_NOASSIGN;
    ObjectRelease(ObjectOf(*cell));
}

}  // namespace quelmark
