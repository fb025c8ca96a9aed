// Classes, member tables and the one calling convention. Everything a script can call is an entry of a
// class's member table, indexed by function id; class 0 holds the global functions, ids below 32 are the
// operator slots. Built-ins are registered from tables of BuiltIn rows.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "ML/STACK.h"

namespace quelmark {

inline constexpr std::int32_t MAX_CLASS = 256;
inline constexpr std::int32_t OPERATOR_SLOTS = 32;

// Operator codes: member ids of the operator slots.
enum Operator : std::int32_t {
    OP_NOT = 1,
    OP_NEGATE = 2,
    OP_INCREMENT = 3,
    OP_DECREMENT = 4,
    OP_ADD = 5,
    OP_SUBTRACT = 6,
    OP_MULTIPLY = 7,
    OP_DIVIDE = 8,
    OP_DOT = 9,
    OP_ARROW = 10,
    OP_REMAINDER = 11,
    OP_LESS = 12,
    OP_GREATER = 13,
    OP_LESS_EQUAL = 14,
    OP_GREATER_EQUAL = 15,
    OP_AND = 16,
    OP_OR = 17,
    OP_XOR = 18,
    OP_EQUAL = 19,
    OP_NOT_EQUAL = 20,
    OP_SHIFT_LEFT = 21,
    OP_SHIFT_RIGHT = 22,
};

// A built-in: the id by which it was called, the number of arguments (the object counted first), the first
// argument cell; argv[argc - 1] is the top of the stack. Returns RESULT after pushing exactly one cell,
// NO_RESULT when it returns nothing. It may change its argument cells, and never pops them.
using SysFunc = std::int32_t (*)(std::int32_t ident, std::int32_t argc, DataCell* argv);
inline constexpr std::int32_t RESULT = 3;
inline constexpr std::int32_t NO_RESULT = 0;

// What ArgCheck holds a built-in's arguments against before it is called: the name in its messages, the
// type set of each argument, and how many of them must be there. Without a name nothing is checked.
struct Signature {
    const char* name = nullptr;
    std::array<std::uint16_t, 8> types{};
    std::int8_t required = 0;
    std::int8_t allowed = 0;
};
// `required` < 0: all of them.
constexpr Signature Takes(const char* name, std::initializer_list<std::uint16_t> types, int required = -1) {
    Signature signature;
    signature.name = name;
    for (const std::uint16_t type : types) {
        signature.types[static_cast<std::uint8_t>(signature.allowed++)] = type;
    }
    signature.required = required < 0 ? signature.allowed : static_cast<std::int8_t>(required);
    return signature;
}

// One row of a registration table. `className` "" registers a global function.
struct BuiltIn {
    const char* className;
    const char* name;
    SysFunc function;
    Signature signature = {};
};
struct BuiltInOperator {
    const char* className;
    std::int32_t code;
    SysFunc function;
};
struct ConstantRow {
    const char* name;
    DataCell cell;
};

// Registers every row in order; the classes must be registered already.
void RegisterBuiltIns(std::span<const BuiltIn> rows);
void RegisterOperators(std::span<const BuiltInOperator> rows);
void RegisterConstants(std::span<const ConstantRow> rows);

// The id of the new class. Fatal: "新しいクラスが登録できません。", "関数管理バッファが確保できません".
std::int32_t ClassRegister(const char* name, std::int32_t parent);
// The first class of that name, or -1.
std::int32_t ClassFind(std::string_view name);
const char* ClassName(std::int32_t classId);
// The function's id. Fatal: "新しいメンバー関数が登録できません。".
std::int32_t FunctionRegister(std::int32_t classId, const char* name, SysFunc function,
                              const Signature& signature = {});
void OperatorRegister(std::int32_t classId, std::int32_t code, SysFunc function);
// The id in the function-name table, or -1.
std::int32_t FunctionFind(std::string_view name);
const char* FunctionName(std::int32_t ident);
// True when the function has a script body in class 0 (`main`, an event handler).
bool IsScriptFunction(std::int32_t ident);

// True when the cell is an object of the class or of one derived from it; class 0 is never matched.
bool IsInstance(const DataCell& cell, std::int32_t classId);

// The one entry for every call. The arguments are the top `argc` cells of the stack. Afterwards the stack
// holds, where the arguments were, the one result (RESULT) or nothing (NO_RESULT).
std::int32_t CallFunction(std::int32_t ident, std::int32_t argc, DataCell* argv);
// The implementation found from the parent of `classId` (> 0) upward, class 0 included.
std::int32_t CallInherited(std::int32_t classId, std::int32_t ident, std::int32_t argc, DataCell* argv);
// Calls "tostring" on a pushed copy of the value; the String is then the top of the stack.
void PushText(const DataCell& value);

// The shared check of a built-in's arguments. A NOASSIGN argument, or one too few, is
// "引数の数が不正です。( %s )"; one of a wrong type, or one too many, "%d 番目の引数の型が不正です。( %s )".
void ArgCheck(const char* name, std::int32_t argc, const DataCell* argv,
              std::initializer_list<std::uint16_t> types);
void ArgCheck(const Signature& signature, std::int32_t argc, const DataCell* argv);

// Enters a system constant (at most 256). A cell that is an OBJECT keeps the caller's reference.
// "システム定数用バッファが確保できません。", "システム定数名が重複しています。".
void ConstRegister(const char* name, const DataCell& cell);
// The constant's cell, or null.
const DataCell* ConstFind(std::string_view name);

}  // namespace quelmark
