// Intermediate code: one buffer of 16-byte register instructions shared by all files, the script functions,
// and the side table that tells which file and line an instruction belongs to (read only when an error needs
// it).
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "ML/ML.h"

namespace quelmark {

// What the fields a, b, c and jump of an instruction name: `s` a slot of the frame, `-` something else or
// nothing. Slots are the function's locals (at the top level the globals), then its temporaries. Where an
// instruction reads a temporary, it consumes what that holds; where it writes one, nothing is held there.
//   _SS slot and slot, _SI slot and INT in `value`, _SR slot and REAL in `value`.
// In the _SI and _SR forms c is 1 when the constant is the left operand.
#define QUELMARK_ARITHMETIC(OP, NAME)           \
    OP(NAME##_SS, "sss-", "a = b op c")         \
    OP(NAME##_SI, "ss--", "a = b op INT value") \
    OP(NAME##_SR, "ss--", "a = b op REAL value")
#define QUELMARK_COMPARE(OP, NAME)                                    \
    OP(NAME##_SS, "sss-", "a = b op c")                               \
    OP(NAME##_SI, "ss--", "a = b op INT value")                       \
    OP(NAME##_SR, "ss--", "a = b op REAL value")                      \
    OP(JF_##NAME##_SS, "-ss-", "jump unless b op c")                  \
    OP(JF_##NAME##_SI, "-s--", "jump unless b op INT value")          \
    OP(JF_##NAME##_SR, "-s--", "jump unless b op REAL value")         \
    OP(JT_##NAME##_SS, "-ss-", "close a loop: jump back if b op c")   \
    OP(JT_##NAME##_SI, "-s--", "close a loop: jump back if b op INT") \
    OP(JT_##NAME##_SR, "-s--", "close a loop: jump back if b op REAL")
// FOR steps by the signed constant in a, FOR_BY by the slot a. The step's operator (++, --, +, -) is in
// `value` of the _SS forms and in c of the _SI forms.
#define QUELMARK_COUNT(OP, NAME)                                                        \
    OP(FOR_##NAME##_SS, "-ss-", "b += constant a, close a loop: jump back if b op c")   \
    OP(FOR_##NAME##_SI, "-s--", "b += constant a, close a loop: jump back if b op INT") \
    OP(FOR_BY_##NAME##_SS, "sss-", "b += slot a, close a loop: jump back if b op c")    \
    OP(FOR_BY_##NAME##_SI, "ss--", "b += slot a, close a loop: jump back if b op INT")

#define QUELMARK_OPCODES(OP)                                                                 \
    OP(ASSIGN, "ss--", "variable a = b, with the rules for objects and arrays")              \
    OP(COPY, "ss--", "temporary a = variable b")                                             \
    OP(MOVE, "ss--", "a = temporary b")                                                      \
    OP(LOAD, "s---", "a = constant of type c in value, no object")                           \
    OP(LOAD_OBJECT, "s---", "a = constant object in value")                                  \
    OP(GET_GLOBAL, "s---", "temporary a = global value")                                     \
    OP(SET_GLOBAL, "-s--", "global value = b")                                               \
    OP(GET_ELEMENT, "sss-", "a = b[c]")                                                      \
    OP(GET_ELEMENT_K, "ss--", "a = b[value]")                                                \
    OP(GET_ROW, "sss-", "temporary a = b[c], made for arrays of arrays")                     \
    OP(GET_ELEMENT_2, "ssss", "a = b[c][jump]")                                              \
    OP(GET_GLOBAL_ELEMENT, "ss--", "a = global value [b]")                                   \
    OP(GET_GLOBAL_ELEMENT_K, "s---", "a = global value [constant b]")                        \
    OP(SET_ELEMENT, "sss-", "b[c] = a")                                                      \
    OP(SET_ELEMENT_K, "ss--", "b[value] = a")                                                \
    OP(SET_ELEMENT_2, "ssss", "b[c][jump] = a")                                              \
    OP(SET_ELEMENT_CONSTANT, "-ss-", "b[c] = constant of type a in value, no object")        \
    OP(SET_GLOBAL_ELEMENT, "ss--", "global value [b] = a")                                   \
    OP(SET_GLOBAL_ELEMENT_K, "s---", "global value [constant b] = a")                        \
    OP(PLACE, "-ss-", "there must be an element b[c]")                                       \
    OP(ARRAY, "ss--", "variable a becomes an array; c sizes start at b")                     \
    OP(FIT, "s---", "the array a has room for value elements")                               \
    QUELMARK_ARITHMETIC(OP, ADD)                                                             \
    QUELMARK_ARITHMETIC(OP, SUBTRACT)                                                        \
    QUELMARK_ARITHMETIC(OP, MULTIPLY)                                                        \
    QUELMARK_ARITHMETIC(OP, DIVIDE)                                                          \
    QUELMARK_ARITHMETIC(OP, REMAINDER)                                                       \
    QUELMARK_ARITHMETIC(OP, AND)                                                             \
    QUELMARK_ARITHMETIC(OP, OR)                                                              \
    QUELMARK_ARITHMETIC(OP, XOR)                                                             \
    QUELMARK_ARITHMETIC(OP, SHIFT_LEFT)                                                      \
    QUELMARK_ARITHMETIC(OP, SHIFT_RIGHT)                                                     \
    QUELMARK_COMPARE(OP, LESS)                                                               \
    QUELMARK_COMPARE(OP, GREATER)                                                            \
    QUELMARK_COMPARE(OP, LESS_EQUAL)                                                         \
    QUELMARK_COMPARE(OP, GREATER_EQUAL)                                                      \
    QUELMARK_COMPARE(OP, EQUAL)                                                              \
    QUELMARK_COMPARE(OP, NOT_EQUAL)                                                          \
    QUELMARK_COUNT(OP, LESS)                                                                 \
    QUELMARK_COUNT(OP, GREATER)                                                              \
    QUELMARK_COUNT(OP, LESS_EQUAL)                                                           \
    QUELMARK_COUNT(OP, GREATER_EQUAL)                                                        \
    OP(BINARY, "sss-", "a = b op c, op in value: what no instruction of its own serves")     \
    OP(JOIN, "sss-", "a = b + the value temporaries from c on, made for texts")              \
    OP(NOT, "ss--", "a = !b")                                                                \
    OP(NEGATE, "ss--", "a = -b")                                                             \
    OP(INCREMENT, "s---", "++a")                                                             \
    OP(DECREMENT, "s---", "--a")                                                             \
    OP(JUMP, "----", "jump")                                                                 \
    OP(LOOP, "----", "close a loop: jump back")                                              \
    OP(JF, "-s--", "jump unless b")                                                          \
    OP(JT, "-s--", "close a loop: jump back if b")                                           \
    OP(CALL, "s---", "a = call of value with the b arguments from a on; a result is needed") \
    OP(CALL_DROP, "s---", "the same, a result is dropped")                                   \
    OP(DROP, "-s--", "the value of b is not wanted")                                         \
    OP(RETURN, "-s--", "end the function, which has value locals, with b")                   \
    OP(RETURN_NONE, "----", "end the function, which has value locals, without a result")    \
    OP(TRACE, "----", "write a trace line: statement kind in a")                             \
    OP(END, "----", "end of the top level")

enum class Opcode : std::uint16_t {
#define QUELMARK_ENUM(name, slots, meaning) name,
    QUELMARK_OPCODES(QUELMARK_ENUM)
#undef QUELMARK_ENUM
        COUNT
};

struct Instruction {
    Opcode op;
    std::uint16_t a = 0, b = 0, c = 0;
    std::int32_t jump = 0;   // distance from the next instruction; or a slot
    std::int32_t value = 0;  // immediate, id or index
};
static_assert(sizeof(Instruction) == 16);

struct ScriptFunction {
    const Instruction* code = nullptr;  // first instruction
    std::int32_t parameters = 0;
    std::int32_t locals = 0;  // parameters included; the temporaries start behind them
    std::int32_t cells = 0;   // locals and temporaries
    std::int32_t ident = -1;
};
extern std::deque<ScriptFunction> ScriptFunctions;

// While a function is compiled its number of locals is not known yet, so that temporaries carry this bit
// until CodeSettleSlots.
inline constexpr std::uint16_t TEMPORARY = 0x8000;
// The number of locals in an instruction that returns, until then.
inline constexpr std::int32_t UNSETTLED = -1;

extern std::vector<Instruction> Code;  // never moves between CodeInit and CodeExit

// "内部コード用バッファが確保できません。！！" (fatal).
void CodeInit(std::int32_t bytes);
void CodeExit();
// Appends and returns the index. "内部コード用バッファがオーバフローしました。！！" (fatal).
std::int32_t CodeEmit(const Instruction& instruction);
std::int32_t CodeHere();
// Instructions that the buffer can hold.
std::size_t CodeRoom();
[[noreturn]] void CodeReportFull();
// Makes the instruction at `index` jump to `target`.
void CodePatch(std::int32_t index, std::int32_t target);
// From here on instructions belong to the statement at this line of the file being compiled.
void CodePosition(std::int32_t line);
SourcePosition CodePositionOf(std::int32_t index);
// Cuts the instructions from `start` on out of the buffer, to be pasted behind others.
std::vector<Instruction> CodeCut(std::int32_t start);
void CodePaste(const std::vector<Instruction>& instructions);
// Forgets the instructions from `start` on: what an error has left half compiled.
void CodeDiscard(std::int32_t start);
// Puts the temporaries of the instructions from `start` on behind `locals`, where that has not been done yet.
void CodeSettleSlots(std::int32_t start, std::int32_t locals);
// From `start` on the function `from` is called `to`.
void CodeRenameFunction(std::int32_t start, std::int32_t from, std::int32_t to);
const char* OpcodeName(Opcode op);

}  // namespace quelmark
