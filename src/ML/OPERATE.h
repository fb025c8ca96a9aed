// Operator rules by the type of the left operand, assignment and arrays: what the executor's fast paths leave
// over.
#pragma once

#include <cstdint>
#include <optional>

#include "ML/FUNC.h"

namespace quelmark {

// An operand: its cell, and whether the operation consumes what a temporary holds.
struct OperandCell {
    DataCell* cell;
    bool owned;
};

// destination = left op right (right null: unary). Any of them may be the same cell.
void Operate(std::int32_t code, DataCell* destination, OperandCell left, OperandCell right);
// left op right of two numbers known when compiling; nothing when running it would report an error.
std::optional<DataCell> OperateConstants(std::int32_t code, const DataCell& left, const DataCell& right);
// The truth of left op right, of a cell: BOOLEAN or INT, else "条件式が不正です".
bool OperateCondition(std::int32_t code, OperandCell left, OperandCell right);
bool Condition(const DataCell& cell);

// The assignment rules: objects are shared, an array into an array is copied element by element.
void Assign(DataCell* destination, OperandCell source);
void ReleaseOwned(OperandCell operand);
// "代入されていない変数を参照しました。"
[[noreturn]] void ReportUnassigned();
[[noreturn]] void ReportNoElement();

// The element of an array cell; reports a bad array, subscript type or subscript.
DataCell* ElementAt(const DataCell& array, const DataCell& subscript);
// Makes the variable an array of `dimensions` sizes.
void DeclareArray(DataCell* variable, const DataCell* sizes, std::int32_t dimensions);

// What a comparison says of two values; nothing when the operator is none.
template <class Value>
constexpr std::optional<bool> Compared(std::int32_t code, Value left, Value right) {
    switch (code) {
        case OP_LESS:
            return left < right;
        case OP_GREATER:
            return left > right;
        case OP_LESS_EQUAL:
            return left <= right;
        case OP_GREATER_EQUAL:
            return left >= right;
        case OP_EQUAL:
            return left == right;
        case OP_NOT_EQUAL:
            return left != right;
        default:
            return std::nullopt;
    }
}

// Wrapping 32-bit arithmetic.
constexpr std::int32_t WrapAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t WrapSubtract(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
constexpr std::int32_t WrapMultiply(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}
// Division by zero leaves the left operand.
constexpr std::int32_t WrapDivide(std::int32_t a, std::int32_t b) {
    return b == 0 ? a : b == -1 ? WrapSubtract(0, a) : a / b;
}
constexpr std::int32_t ShiftLeft(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) << (static_cast<std::uint32_t>(b) & 31));
}
constexpr std::int32_t ShiftRight(std::int32_t a, std::int32_t b) {
    return a >> (static_cast<std::uint32_t>(b) & 31);
}
// "０で割りました。" for a zero divisor.
std::int32_t Remainder(std::int32_t a, std::int32_t b);

}  // namespace quelmark
