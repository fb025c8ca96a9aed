#include "ML/OPERATE.h"

#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/STRING.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t ARRAY_LIMIT = 65536;

bool IsUnary(std::int32_t code) {
    return code < OP_ADD;
}

DataCell OperateBoolean(std::int32_t code, const DataCell& left, const DataCell& right) {
    if (!IsUnary(code) && (right.type & TYPE_FLAG) == 0) {
        RuntimeError("%s", "論理演算の型が不正です。"_sjis);
    }
    const std::int32_t a = left.integer;
    const std::int32_t b = right.integer;
    switch (code) {
        case OP_NOT:
            return BoolCell(a == 0);
        case OP_AND:
            return BoolCell(a != 0 && b != 0);
        case OP_OR:
            return BoolCell(a != 0 || b != 0);
        case OP_XOR:
            return BoolCell(a ^ b);
        case OP_EQUAL:
            return BoolCell(a == b);
        case OP_NOT_EQUAL:
            return BoolCell(a != b);
        default:
            RuntimeError("%s", "論理演算の演算子が不正です。"_sjis);
    }
}

DataCell OperateInt(std::int32_t code, const DataCell& left, const DataCell& right) {
    if (!IsUnary(code) && (right.type & (TYPE_FLAG | TYPE_REAL)) == 0) {
        RuntimeError("%s", "整数演算の型が不正です。"_sjis);
    }
    const std::int32_t a = left.integer;
    const std::int32_t b = IsUnary(code) ? 0 : CellInteger(right);
    switch (code) {
        case OP_NOT:
            return IntCell(a == 0);
        case OP_NEGATE:
            return IntCell(WrapSubtract(0, a));
        case OP_INCREMENT:
            return IntCell(WrapAdd(a, 1));
        case OP_DECREMENT:
            return IntCell(WrapSubtract(a, 1));
        case OP_ADD:
            return IntCell(WrapAdd(a, b));
        case OP_SUBTRACT:
            return IntCell(WrapSubtract(a, b));
        case OP_MULTIPLY:
            return IntCell(WrapMultiply(a, b));
        case OP_DIVIDE:
            return IntCell(WrapDivide(a, b));
        case OP_REMAINDER:
            return IntCell(Remainder(a, b));
        case OP_AND:
            return IntCell(a & b);
        case OP_OR:
            return IntCell(a | b);
        case OP_XOR:
            return IntCell(a ^ b);
        case OP_SHIFT_LEFT:
            return IntCell(ShiftLeft(a, b));
        case OP_SHIFT_RIGHT:
            return IntCell(ShiftRight(a, b));
        default:
            if (const auto truth = Compared(code, a, b)) {
                return BoolCell(*truth);
            }
            RuntimeError("%s", "整数演算の演算子が不正です。"_sjis);
    }
}

DataCell FloatCell(float value) {
    DataCell cell{TYPE_REAL, 0, {0}};
    cell.real = value;
    return cell;
}

DataCell OperateReal(std::int32_t code, const DataCell& left, const DataCell& right) {
    if (!IsUnary(code) && (right.type & (TYPE_FLAG | TYPE_REAL)) == 0) {
        RuntimeError("%s", "実数演算の型が不正です。"_sjis);
    }
    const float a = left.real;
    const float b = IsUnary(code)             ? 0.0F
                    : right.type == TYPE_REAL ? right.real
                                              : static_cast<float>(right.integer);
    switch (code) {
        case OP_NEGATE:
            return FloatCell(-a);
        case OP_INCREMENT:
            return FloatCell(a + 1.0F);
        case OP_DECREMENT:
            return FloatCell(a - 1.0F);
        case OP_ADD:
            return FloatCell(a + b);
        case OP_SUBTRACT:
            return FloatCell(a - b);
        case OP_MULTIPLY:
            return FloatCell(a * b);
        case OP_DIVIDE:
            return FloatCell(a / b);
        default:
            if (const auto truth = Compared(code, a, b)) {
                return BoolCell(*truth);
            }
            RuntimeError("%s", "実数演算の演算子が不正です。"_sjis);
    }
}

DataCell OperateReference(std::int32_t code, const DataCell& left, const DataCell& right) {
    if (code != OP_EQUAL && code != OP_NOT_EQUAL) {
        RuntimeError("%s", "演算の型が不正です。"_sjis);
    }
    return BoolCell((left.integer == right.integer) == (code == OP_EQUAL));
}

DataCell OperateValue(std::int32_t code, const DataCell& left, const DataCell& right) {
    switch (left.type) {
        case TYPE_BOOLEAN:
            return OperateBoolean(code, left, right);
        case TYPE_INT:
            return OperateInt(code, left, right);
        case TYPE_REAL:
            return OperateReal(code, left, right);
        default:
            return OperateReference(code, left, right);
    }
}

// Calls the class's operator; the cell returned carries a reference of its own when it is an object.
DataCell OperateObject(std::int32_t code, const DataCell& left, const DataCell& right) {
    DataCell known = NoCell();
    if (StringOperate(code, left, right, known)) {
        return known;
    }
    const std::int32_t argc = IsUnary(code) ? 1 : 2;
    StackPush(left);
    DataCell* argv = StackTop();
    if (argc == 2) {
        StackPush(right);
    }
    if (CallFunction(code, argc, argv) != RESULT) {
        ReportUnassigned();
    }
    const DataCell result = ReadCell(*argv);
    argv->type = TYPE_NOASSIGN;  // its reference goes to the caller
    --StackPtr;
    return result;
}

// Puts a result where it belongs; the cell's own reference moves with it.
void Store(DataCell* destination, const DataCell& result) {
    const DataCell old = ReadCell(*destination);
    *destination = result;
    if (old.type == TYPE_OBJECT) {
        ObjectRelease(ObjectOf(old));
    }
}

DataCell Compute(std::int32_t code, OperandCell left, OperandCell right) {
    if (left.cell->type == TYPE_NOASSIGN || (right.cell != nullptr && right.cell->type == TYPE_NOASSIGN)) {
        ReportUnassigned();
    }
    const DataCell leftValue = ReadCell(*left.cell);
    const DataCell rightValue = right.cell != nullptr ? ReadCell(*right.cell) : NoCell();
    const DataCell result = leftValue.type == TYPE_OBJECT ? OperateObject(code, leftValue, rightValue)
                                                          : OperateValue(code, leftValue, rightValue);
    ReleaseOwned(left);
    ReleaseOwned(right);
    return result;
}

void CopyArray(const DataCell& destination, const DataCell& source) {
    if (ArrayCount(destination) != ArrayCount(source)) {
        RuntimeError("%s", "大きさの異なる配列は代入できません。"_sjis);
    }
    const ExecNesting nesting;  // an array may be made to hold itself
    const std::uint32_t count = ArrayCount(source);
    DataCell* to = ArrayElements(destination);
    DataCell* from = ArrayElements(source);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (from[i].type == TYPE_NOASSIGN) {
            if (to[i].type == TYPE_OBJECT) {
                to[i].type = TYPE_NOASSIGN;
                ObjectRelease(ObjectOf(to[i]));
            }
            to[i] = NoCell();
        } else {
            Assign(&to[i], {&from[i], false});
        }
    }
}

void AllocateDimension(DataCell* variable, const DataCell* sizes, std::int32_t dimensions) {
    const std::int32_t count = sizes->integer;
    const std::int32_t first = StackPtr + 1;
    StackAlloc(count);
    if (dimensions > 1) {
        for (std::int32_t i = 0; i < count; ++i) {
            AllocateDimension(StackBuf + first + i, sizes + 1, dimensions - 1);
        }
    }
    DataCell array{TYPE_ARRAY, static_cast<std::int16_t>(static_cast<std::uint16_t>(count)), {0}};
    array.element = static_cast<std::uint32_t>(first);
    Store(variable, array);
}

}  // namespace

std::int32_t Remainder(std::int32_t a, std::int32_t b) {
    if (b == 0) {
        RuntimeError("%s", "０で割りました。"_sjis);
    }
    return b == -1 ? 0 : a % b;
}

void ReportUnassigned() {
    RuntimeError("%s", "代入されていない変数を参照しました。"_sjis);
}

void ReportNoElement() {
    RuntimeError("%s", "配列の添え字が不正です"_sjis);
}

void ReleaseOwned(OperandCell operand) {
    if (operand.owned && operand.cell != nullptr && operand.cell->type == TYPE_OBJECT) {
        operand.cell->type = TYPE_NOASSIGN;
        ObjectRelease(ObjectOf(*operand.cell));
    }
}

std::optional<DataCell> OperateConstants(std::int32_t code, const DataCell& left, const DataCell& right) {
    if ((left.type & TYPE_NUMBER) == 0 || (right.type & TYPE_NUMBER) == 0) {
        return std::nullopt;
    }
    switch (code) {
        case OP_REMAINDER:
            if (CellInteger(right) == 0) {
                return std::nullopt;
            }
            [[fallthrough]];
        case OP_AND:
        case OP_OR:
        case OP_XOR:
        case OP_SHIFT_LEFT:
        case OP_SHIFT_RIGHT:
            if (left.type != TYPE_INT) {
                return std::nullopt;
            }
            break;
        case OP_DOT:
        case OP_ARROW:
            return std::nullopt;
        default:
            break;
    }
    return OperateValue(code, left, right);
}

void Operate(std::int32_t code, DataCell* destination, OperandCell left, OperandCell right) {
    if (code == OP_ADD && left.cell == destination && left.cell->type == TYPE_OBJECT &&
        right.cell->type != TYPE_NOASSIGN && StringAppend(*destination, *right.cell)) {
        ReleaseOwned(right);
        return;
    }
    if (left.cell == destination && left.owned) {
        left.owned = false;  // Store releases it
    }
    Store(destination, Compute(code, left, right));
}

bool OperateCondition(std::int32_t code, OperandCell left, OperandCell right) {
    DataCell known = NoCell();
    if (left.cell->type == TYPE_OBJECT && StringOperate(code, *left.cell, *right.cell, known)) {
        ReleaseOwned(left);
        ReleaseOwned(right);
        return known.integer != 0;
    }
    const DataCell result = Compute(code, left, right);
    if (result.type == TYPE_OBJECT) {
        ObjectRelease(ObjectOf(result));
    }
    return Condition(result);
}

bool Condition(const DataCell& cell) {
    if ((cell.type & TYPE_FLAG) == 0) {
        if (cell.type == TYPE_NOASSIGN) {
            ReportUnassigned();
        }
        RuntimeError("%s", "条件式が不正です"_sjis);
    }
    return cell.integer != 0;
}

void Assign(DataCell* destination, OperandCell source) {
    const DataCell value = ReadCell(*source.cell);
    if (destination == source.cell && value.type != TYPE_NOASSIGN) {
        return;
    }
    switch (value.type) {
        case TYPE_NOASSIGN:
            ReportUnassigned();
        case TYPE_OBJECT:
            if (source.owned) {
                source.cell->type = TYPE_NOASSIGN;
            } else {
                ObjectAddRef(ObjectOf(value));
            }
            break;
        case TYPE_ARRAY:
            if (destination->type == TYPE_ARRAY) {
                CopyArray(*destination, value);
                return;
            }
            break;
        default:
            break;
    }
    Store(destination, value);
}

DataCell* ElementAt(const DataCell& array, const DataCell& subscript) {
    if (array.type == TYPE_NOASSIGN || subscript.type == TYPE_NOASSIGN) {
        ReportUnassigned();
    }
    if ((subscript.type & TYPE_FLAG) == 0) {
        RuntimeError("%s", "配列の添え字の型が不正です"_sjis);
    }
    if (array.type != TYPE_ARRAY || static_cast<std::uint32_t>(subscript.integer) >= ArrayCount(array)) {
        ReportNoElement();
    }
    return ArrayElements(array) + subscript.integer;
}

void DeclareArray(DataCell* variable, const DataCell* sizes, std::int32_t dimensions) {
    if (variable->type == TYPE_ARRAY) {
        RuntimeError("%s", "配列を２度宣言しようとしました。"_sjis);
    }
    for (std::int32_t i = 0; i < dimensions; ++i) {
        if (sizes[i].type != TYPE_INT || sizes[i].integer < 0 || sizes[i].integer >= ARRAY_LIMIT) {
            RuntimeError("%s", "配列のサイズが不正です"_sjis);
        }
    }
    AllocateDimension(variable, sizes, dimensions);
}

}  // namespace quelmark
