#include "ML/EXEC.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdio>
#include <utility>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/OPERATE.h"
#include "ML/PARSE.h"
#include "text/sjis.h"

namespace quelmark {

Frame Frames[FRAMES_MOST];
std::int32_t FrameDepth = -1;

namespace {

// Loop turns and calls between two looks at the clock.
constexpr std::int32_t TICKS = 4096;
constexpr std::chrono::milliseconds POLL_INTERVAL{4};

using Clock = std::chrono::steady_clock;

std::int32_t nesting = 0;
BreakCheck breakCheck = nullptr;
bool traceOn = false;
std::int32_t ticks = TICKS;
Clock::time_point lastPoll;
ScriptFunction topLevelFunction;

// Asks the host, at most every few milliseconds, whether to stop.
[[gnu::noinline]] void Poll() {
    ticks = TICKS;
    const Clock::time_point now = Clock::now();
    if (breakCheck == nullptr || now - lastPoll < POLL_INTERVAL) {
        return;
    }
    const bool stop = breakCheck();
    lastPoll = Clock::now();
    if (stop) {
        RuntimeError("%s", "強制終了しました"_sjis);
    }
}

[[noreturn, gnu::noinline]] void ReportOverflow() { RuntimeError("%s", "スタックオーバーフロー！！"_sjis); }

void WriteTrace(std::int32_t index, std::int32_t kind) {
    const SourcePosition position = CodePositionOf(index);
    char text[512];
    std::snprintf(text, sizeof text, "EXEC[%06X][%s:%4d] : %d : %d\n",
                  static_cast<unsigned>(static_cast<std::size_t>(index) * sizeof(Instruction)),
                  position.file == nullptr ? "" : position.file, position.line, 3, kind);
    TraceLog(text);
}

// Prepares a frame for a script function whose arguments start at `base`.
void PushFrame(const ScriptFunction& function, std::int32_t argc, DataCell* base, DataCell* result, bool wantsResult) {
    const std::int32_t first = static_cast<std::int32_t>(base - StackBuf);
    const std::int32_t top = first + function.cells - 1;
    if (top > StackHighWater) {
        StackRaiseHighWater(top);
    }
    if (FrameDepth + 1 >= FRAMES_MOST) {
        ReportOverflow();
    }
    for (std::int32_t i = argc; i < function.locals; ++i) {
        base[i] = NoCell();
    }
    for (std::int32_t i = function.locals; i < argc; ++i) {
        ReleaseOwned({base + i, true});  // more arguments than the function has locals
    }
    Frames[++FrameDepth] = {Code.data() + function.code, base, &function, result, StackPtr, wantsResult};
    StackPtr = top;
}

// Ends the running frame: releases what it holds and cuts the stack back to the caller's.
void PopFrame() {
    const Frame& frame = Frames[FrameDepth];
    DataCell* behindLocals = frame.base + frame.function->cells;
    if (StackBuf + StackPtr >= behindLocals) {
        StackRelease(behindLocals - 1);  // arrays
    }
    for (DataCell* cell = frame.base; cell < frame.base + frame.function->locals; ++cell) {
        ReleaseOwned({cell, true});
    }
    StackPtr = frame.callerTop;
    --FrameDepth;
}

// The arguments of a call, moved above the arrays of the running frame.
[[gnu::noinline]] DataCell* MoveArgumentsUp(DataCell* argv, std::int32_t argc) {
    const std::int32_t first = StackPtr + 1;
    if (argc >= MaxStack - StackPtr) {
        StackRaiseHighWater(MaxStack);
    }
    for (std::int32_t i = 0; i < argc; ++i) {
        StackBuf[first + i] = argv[i];
        if (argv[i].type == TYPE_OBJECT) {
            argv[i].type = TYPE_NOASSIGN;
        }
    }
    return StackBuf + first;
}

// A call of anything but a script function in place. The arguments are in temporaries of the running frame.
[[gnu::noinline]] void CallFromFrame(const Instruction& call, DataCell* argv, bool wantsResult) {
    const Frame& frame = Frames[FrameDepth];
    const std::int32_t top = StackPtr;
    const std::int32_t argc = call.b;
    const Member& member = MemberFor(call.value, argc, argv);
    if (member.kind == MemberKind::Undefined) {
        ReportUndefined(call.value);
    }
    DataCell* place = argv;
    if (StackBuf + top >= frame.base + frame.function->cells) {
        place = MoveArgumentsUp(argv, argc);
    }
    StackPtr = static_cast<std::int32_t>(place - StackBuf) + argc - 1;
    if (StackPtr > StackHighWater) {
        const std::int32_t reached = StackPtr;
        StackPtr = top;
        StackRaiseHighWater(reached);
        StackPtr = reached;
    }
    const ExecNesting guard;
    const std::int32_t status = CallBuiltIn(member, call.value, argc, place);
    const DataCell result = status == RESULT ? *place : NoCell();
    if (status == RESULT && result.type == TYPE_OBJECT) {
        place->type = TYPE_NOASSIGN;
    }
    StackPtr = top;
    if (wantsResult) {
        *argv = result;
        if (result.type == TYPE_NOASSIGN) {
            ReportUnassigned();
        }
    } else if (result.type == TYPE_OBJECT) {
        ObjectRelease(ObjectOf(result));
    }
}

OperandCell OperandOf(DataCell* base, std::uint16_t slot, const ScriptFunction& function) {
    return {base + slot, slot >= function.locals};
}

// a = b op c by the rules, with c a cell that no slot holds for the immediate forms.
[[gnu::noinline]] void OperateSlow(std::int32_t code, const Instruction& i, const Frame& frame) {
    Operate(code, frame.base + i.a, OperandOf(frame.base, i.b, *frame.function),
            OperandOf(frame.base, i.c, *frame.function));
}
[[gnu::noinline]] void OperateSlowImmediate(std::int32_t code, const Instruction& i, const Frame& frame,
                                            DataCell right) {
    Operate(code, frame.base + i.a, OperandOf(frame.base, i.b, *frame.function), {&right, false});
}
[[gnu::noinline]] bool ConditionSlow(std::int32_t code, const Instruction& i, const Frame& frame) {
    return OperateCondition(code, OperandOf(frame.base, i.b, *frame.function),
                            OperandOf(frame.base, i.c, *frame.function));
}
[[gnu::noinline]] bool ConditionSlowImmediate(std::int32_t code, const Instruction& i, const Frame& frame,
                                              DataCell right) {
    return OperateCondition(code, OperandOf(frame.base, i.b, *frame.function), {&right, false});
}
// A variable gets the value by the rules of assignment; a temporary is overwritten, whatever it held before.
void Deliver(const Frame& frame, std::uint16_t slot, OperandCell source) {
    if (slot >= frame.function->locals) {
        frame.base[slot] = NoCell();
    }
    Assign(frame.base + slot, source);
}
[[gnu::noinline]] void AssignSlow(const Frame& frame, std::uint16_t slot, std::uint16_t source) {
    Deliver(frame, slot, OperandOf(frame.base, source, *frame.function));
}
[[gnu::noinline]] void AssignFrom(const Frame& frame, std::uint16_t slot, DataCell* source) {
    Deliver(frame, slot, {source, false});
}
[[gnu::noinline]] void AssignTo(DataCell* variable, const Frame& frame, std::uint16_t source) {
    Assign(variable, OperandOf(frame.base, source, *frame.function));
}

[[gnu::noinline]] void LoadSlow(DataCell* destination, DataCell constant) { Assign(destination, {&constant, false}); }

DataCell ConstantOf(const Instruction& i) {
    DataCell cell{i.c, 0, {0}};
    cell.integer = i.value;
    return cell;
}
DataCell RealImmediate(const Instruction& i) {
    DataCell cell{TYPE_REAL, 0, {0}};
    cell.integer = i.value;
    return cell;
}

[[gnu::noinline]] void CheckFit(const DataCell& array, std::int32_t count) {
    if (array.type != TYPE_ARRAY) {
        RuntimeError("%s", "配列の添え字が不正です"_sjis);
    }
    if (static_cast<std::uint32_t>(count) > ArrayCount(array)) {
        RuntimeError("%s", "大きさの異なる配列は代入できません。"_sjis);
    }
}

// The element when everything is in order, else null: the slow path tells what is wrong.
inline DataCell* ElementFast(const DataCell& array, const DataCell& subscript) {
    if (array.type == TYPE_ARRAY && subscript.type == TYPE_INT &&
        static_cast<std::uint32_t>(subscript.integer) < ArrayCount(array)) {
        const std::uint32_t index = array.element + static_cast<std::uint32_t>(subscript.integer);
        if (index <= static_cast<std::uint32_t>(StackPtr)) {
            return StackBuf + index;
        }
    }
    return nullptr;
}
inline DataCell* Element(const DataCell& array, const DataCell& subscript) {
    DataCell* element = ElementFast(array, subscript);
    return element != nullptr ? element : ElementAt(array, subscript);
}

// A value that can be copied as it is, and a place that nothing must be released from.
inline bool IsPlain(const DataCell& cell) { return static_cast<std::uint16_t>(cell.type - 1) < TYPE_ARRAY - 1; }
inline bool HoldsObject(const DataCell& cell) { return cell.type == TYPE_OBJECT; }

inline DataCell RealResult(float value) {
    DataCell cell{TYPE_REAL, 0, {0}};
    cell.real = value;
    return cell;
}

// Runs until the frame at `bottom` has returned. RESULT when it left a result.
std::int32_t Execute(std::int32_t bottom) {
    const Instruction* at = Frames[FrameDepth].at;
    DataCell* base = Frames[FrameDepth].base;

// Computed goto where the compiler has it, a switch elsewhere, from the same list and bodies.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#if defined(__clang__)
#pragma GCC diagnostic ignored "-Wgnu-label-as-value"
#endif
    static const void* const LABELS[] = {
#define QUELMARK_LABEL(name, slots, meaning) &&L_##name,
        QUELMARK_OPCODES(QUELMARK_LABEL)
#undef QUELMARK_LABEL
    };
#define NEXT                                              \
    do {                                                  \
        i = at++;                                         \
        goto* LABELS[static_cast<std::size_t>(i->op)];    \
    } while (false)
#define CASE(name) L_##name:
#define DISPATCH NEXT;
#define DISPATCH_END
#else
#define NEXT goto dispatch
#define CASE(name) case Opcode::name:
#define DISPATCH          \
    dispatch: i = at++; \
    switch (i->op) {
#define DISPATCH_END \
    case Opcode::COUNT: break; }
#endif
#define SAVE (Frames[FrameDepth].at = at)
#define TICK                      \
    do {                          \
        if (--ticks <= 0) {       \
            SAVE;                 \
            Poll();               \
        }                         \
    } while (false)

// a = b op c. `INTEGER` and `REAL` are expressions over l and r; a null REAL leaves reals to the rules.
#define ARITHMETIC(NAME, CODE, INTEGER, REAL, HAS_REAL)                                        \
    CASE(NAME##_SS) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell left = base[i->b];                                                      \
        const DataCell right = base[i->c];                                                     \
        if (left.type == right.type && !HoldsObject(d)) [[likely]] {                           \
            if (left.type == TYPE_INT) [[likely]] {                                            \
                const std::int32_t l = left.integer, r = right.integer;                        \
                d = IntCell(INTEGER);                                                          \
                NEXT;                                                                          \
            }                                                                                  \
            if (HAS_REAL && left.type == TYPE_REAL) {                                          \
                [[maybe_unused]] const float l = left.real, r = right.real;                                     \
                d = RealResult(REAL);                                                          \
                NEXT;                                                                          \
            }                                                                                  \
        }                                                                                      \
        SAVE;                                                                                  \
        OperateSlow(CODE, *i, Frames[FrameDepth]);                                             \
        NEXT;                                                                                  \
    }                                                                                          \
    CASE(NAME##_SI) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell left = base[i->b];                                                      \
        if (!HoldsObject(d)) [[likely]] {                                                      \
            if (left.type == TYPE_INT) [[likely]] {                                            \
                const std::int32_t l = left.integer, r = i->value;                             \
                d = IntCell(INTEGER);                                                          \
                NEXT;                                                                          \
            }                                                                                  \
            if (HAS_REAL && left.type == TYPE_REAL) {                                          \
                [[maybe_unused]] const float l = left.real, r = static_cast<float>(i->value);                   \
                d = RealResult(REAL);                                                          \
                NEXT;                                                                          \
            }                                                                                  \
        }                                                                                      \
        SAVE;                                                                                  \
        OperateSlowImmediate(CODE, *i, Frames[FrameDepth], IntCell(i->value));                 \
        NEXT;                                                                                  \
    }                                                                                          \
    CASE(NAME##_SR) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell left = base[i->b];                                                      \
        if (HAS_REAL && left.type == TYPE_REAL && !HoldsObject(d)) [[likely]] {                \
            [[maybe_unused]] const float l = left.real, r = std::bit_cast<float>(i->value);                     \
            d = RealResult(REAL);                                                              \
            NEXT;                                                                              \
        }                                                                                      \
        SAVE;                                                                                  \
        OperateSlowImmediate(CODE, *i, Frames[FrameDepth], RealImmediate(*i));                 \
        NEXT;                                                                                  \
    }

// Truth of b OP c for a right operand in a slot, an INT or a REAL; `THEN` sees it as `truth`.
#define TRUTH_SS(CODE, OP, THEN)                                                               \
    {                                                                                          \
        const DataCell left = base[i->b];                                                      \
        const DataCell right = base[i->c];                                                     \
        bool truth;                                                                            \
        if (left.type == TYPE_INT && right.type == TYPE_INT) [[likely]] {                      \
            truth = left.integer OP right.integer;                                             \
        } else if (left.type == TYPE_REAL && right.type == TYPE_REAL) {                        \
            truth = left.real OP right.real;                                                   \
        } else {                                                                               \
            SAVE;                                                                              \
            truth = ConditionSlow(CODE, *i, Frames[FrameDepth]);                               \
        }                                                                                      \
        THEN;                                                                                  \
    }
#define TRUTH_SI(CODE, OP, THEN)                                                               \
    {                                                                                          \
        const DataCell left = base[i->b];                                                      \
        bool truth;                                                                            \
        if (left.type == TYPE_INT) [[likely]] {                                                \
            truth = left.integer OP i->value;                                                  \
        } else {                                                                               \
            SAVE;                                                                              \
            truth = ConditionSlowImmediate(CODE, *i, Frames[FrameDepth], IntCell(i->value));   \
        }                                                                                      \
        THEN;                                                                                  \
    }
#define TRUTH_SR(CODE, OP, THEN)                                                               \
    {                                                                                          \
        const DataCell left = base[i->b];                                                      \
        bool truth;                                                                            \
        if (left.type == TYPE_REAL) [[likely]] {                                               \
            truth = left.real OP std::bit_cast<float>(i->value);                               \
        } else {                                                                               \
            SAVE;                                                                              \
            truth = ConditionSlowImmediate(CODE, *i, Frames[FrameDepth], RealImmediate(*i));   \
        }                                                                                      \
        THEN;                                                                                  \
    }
#define JUMP_UNLESS          \
    if (!truth) {            \
        at += i->jump;       \
    }                        \
    NEXT
#define JUMP_BACK_IF         \
    if (truth) {             \
        at += i->jump;       \
        TICK;                \
    }                        \
    NEXT
#define COMPARE(NAME, CODE, OP)                                                                \
    CASE(NAME##_SS) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell left = base[i->b];                                                      \
        const DataCell right = base[i->c];                                                     \
        if (left.type == right.type && !HoldsObject(d)) [[likely]] {                           \
            if (left.type == TYPE_INT) {                                                       \
                d = BoolCell(left.integer OP right.integer);                                   \
                NEXT;                                                                          \
            }                                                                                  \
            if (left.type == TYPE_REAL) {                                                      \
                d = BoolCell(left.real OP right.real);                                         \
                NEXT;                                                                          \
            }                                                                                  \
        }                                                                                      \
        SAVE;                                                                                  \
        OperateSlow(CODE, *i, Frames[FrameDepth]);                                             \
        NEXT;                                                                                  \
    }                                                                                          \
    CASE(JF_##NAME##_SS) TRUTH_SS(CODE, OP, JUMP_UNLESS)                                       \
    CASE(JF_##NAME##_SI) TRUTH_SI(CODE, OP, JUMP_UNLESS)                                       \
    CASE(JF_##NAME##_SR) TRUTH_SR(CODE, OP, JUMP_UNLESS)                                       \
    CASE(JT_##NAME##_SS) TRUTH_SS(CODE, OP, JUMP_BACK_IF)                                      \
    CASE(JT_##NAME##_SI) TRUTH_SI(CODE, OP, JUMP_BACK_IF)                                      \
    CASE(JT_##NAME##_SR) TRUTH_SR(CODE, OP, JUMP_BACK_IF)

// ++b, then the truth as above.
#define COUNT_UP                                                                               \
    if (base[i->b].type == TYPE_INT) [[likely]] {                                              \
        base[i->b].integer = WrapAdd(base[i->b].integer, 1);                                   \
    } else {                                                                                   \
        SAVE;                                                                                  \
        Operate(OP_INCREMENT, base + i->b, {base + i->b, false}, {nullptr, false});            \
    }
#define COUNT_LOOP(NAME, CODE, OP)                                                             \
    CASE(FOR_##NAME##_SS) {                                                                    \
        COUNT_UP                                                                               \
        TRUTH_SS(CODE, OP, JUMP_BACK_IF)                                                       \
    }                                                                                          \
    CASE(FOR_##NAME##_SI) {                                                                    \
        COUNT_UP                                                                               \
        TRUTH_SI(CODE, OP, JUMP_BACK_IF)                                                       \
    }

    const Instruction* i = nullptr;
    DISPATCH

    CASE(ASSIGN) {
        DataCell& d = base[i->a];
        const DataCell source = base[i->b];
        if (IsPlain(source) && !HoldsObject(d)) [[likely]] {
            d = source;
            NEXT;
        }
        SAVE;
        AssignSlow(Frames[FrameDepth], i->a, i->b);
        NEXT;
    }
    CASE(LOAD) {
        DataCell& d = base[i->a];
        if (i->c < TYPE_ARRAY && !HoldsObject(d)) [[likely]] {
            d = ConstantOf(*i);
            NEXT;
        }
        SAVE;
        LoadSlow(&d, ConstantOf(*i));
        NEXT;
    }
    CASE(GET_GLOBAL) {
        DataCell& d = base[i->a];
        const DataCell source = StackBuf[i->value];
        if (IsPlain(source) && !HoldsObject(d)) [[likely]] {
            d = source;
            NEXT;
        }
        SAVE;
        AssignFrom(Frames[FrameDepth], i->a, StackBuf + i->value);
        NEXT;
    }
    CASE(SET_GLOBAL) {
        DataCell& d = StackBuf[i->value];
        const DataCell source = base[i->b];
        if (IsPlain(source) && !HoldsObject(d)) [[likely]] {
            d = source;
            NEXT;
        }
        SAVE;
        AssignTo(&d, Frames[FrameDepth], i->b);
        NEXT;
    }
    CASE(GET_ELEMENT) {
        SAVE;
        DataCell* element = Element(base[i->b], base[i->c]);
        DataCell& d = base[i->a];
        if (IsPlain(*element) && !HoldsObject(d)) [[likely]] {
            d = *element;
            NEXT;
        }
        AssignFrom(Frames[FrameDepth], i->a, element);
        NEXT;
    }
    CASE(GET_ELEMENT_K) {
        SAVE;
        DataCell* element = Element(base[i->b], IntCell(i->value));
        DataCell& d = base[i->a];
        if (IsPlain(*element) && !HoldsObject(d)) [[likely]] {
            d = *element;
            NEXT;
        }
        AssignFrom(Frames[FrameDepth], i->a, element);
        NEXT;
    }
    CASE(GET_ELEMENT_2) {
        SAVE;
        DataCell* element = Element(*Element(base[i->b], base[i->c]), base[i->jump]);
        DataCell& d = base[i->a];
        if (IsPlain(*element) && !HoldsObject(d)) [[likely]] {
            d = *element;
            NEXT;
        }
        AssignFrom(Frames[FrameDepth], i->a, element);
        NEXT;
    }
    CASE(SET_ELEMENT) {
        SAVE;
        DataCell* element = Element(base[i->b], base[i->c]);
        const DataCell source = base[i->a];
        if (IsPlain(source) && !HoldsObject(*element)) [[likely]] {
            *element = source;
            NEXT;
        }
        AssignTo(element, Frames[FrameDepth], i->a);
        NEXT;
    }
    CASE(SET_ELEMENT_K) {
        SAVE;
        DataCell* element = Element(base[i->b], IntCell(i->value));
        const DataCell source = base[i->a];
        if (IsPlain(source) && !HoldsObject(*element)) [[likely]] {
            *element = source;
            NEXT;
        }
        AssignTo(element, Frames[FrameDepth], i->a);
        NEXT;
    }
    CASE(SET_ELEMENT_2) {
        SAVE;
        DataCell* element = Element(*Element(base[i->b], base[i->c]), base[i->jump]);
        const DataCell source = base[i->a];
        if (IsPlain(source) && !HoldsObject(*element)) [[likely]] {
            *element = source;
            NEXT;
        }
        AssignTo(element, Frames[FrameDepth], i->a);
        NEXT;
    }
    CASE(ARRAY) {
        SAVE;
        DeclareArray(base + i->a, base + i->b, i->c);
        NEXT;
    }
    CASE(FIT) {
        SAVE;
        CheckFit(base[i->a], i->value);
        NEXT;
    }
    ARITHMETIC(ADD, OP_ADD, WrapAdd(l, r), l + r, true)
    ARITHMETIC(SUBTRACT, OP_SUBTRACT, WrapSubtract(l, r), l - r, true)
    ARITHMETIC(MULTIPLY, OP_MULTIPLY, WrapMultiply(l, r), l * r, true)
    ARITHMETIC(DIVIDE, OP_DIVIDE, WrapDivide(l, r), l / r, true)
    ARITHMETIC(REMAINDER, OP_REMAINDER, (SAVE, Remainder(l, r)), l, false)
    ARITHMETIC(AND, OP_AND, l & r, l, false)
    ARITHMETIC(OR, OP_OR, l | r, l, false)
    ARITHMETIC(XOR, OP_XOR, l ^ r, l, false)
    ARITHMETIC(SHIFT_LEFT, OP_SHIFT_LEFT, ShiftLeft(l, r), l, false)
    ARITHMETIC(SHIFT_RIGHT, OP_SHIFT_RIGHT, ShiftRight(l, r), l, false)
    COMPARE(LESS, OP_LESS, <)
    COMPARE(GREATER, OP_GREATER, >)
    COMPARE(LESS_EQUAL, OP_LESS_EQUAL, <=)
    COMPARE(GREATER_EQUAL, OP_GREATER_EQUAL, >=)
    COMPARE(EQUAL, OP_EQUAL, ==)
    COMPARE(NOT_EQUAL, OP_NOT_EQUAL, !=)
    COUNT_LOOP(LESS, OP_LESS, <)
    COUNT_LOOP(LESS_EQUAL, OP_LESS_EQUAL, <=)
    CASE(BINARY) {
        SAVE;
        OperateSlow(i->value, *i, Frames[FrameDepth]);
        NEXT;
    }
    CASE(UNARY) {
        SAVE;
        Operate(i->value, base + i->a, OperandOf(base, i->b, *Frames[FrameDepth].function), {nullptr, false});
        NEXT;
    }
    CASE(INCREMENT) {
        if (base[i->a].type == TYPE_INT) [[likely]] {
            base[i->a].integer = WrapAdd(base[i->a].integer, 1);
            NEXT;
        }
        SAVE;
        Operate(OP_INCREMENT, base + i->a, {base + i->a, false}, {nullptr, false});
        NEXT;
    }
    CASE(DECREMENT) {
        if (base[i->a].type == TYPE_INT) [[likely]] {
            base[i->a].integer = WrapSubtract(base[i->a].integer, 1);
            NEXT;
        }
        SAVE;
        Operate(OP_DECREMENT, base + i->a, {base + i->a, false}, {nullptr, false});
        NEXT;
    }
    CASE(JUMP) {
        at += i->jump;
        NEXT;
    }
    CASE(LOOP) {
        at += i->jump;
        TICK;
        NEXT;
    }
    CASE(JF) {
        SAVE;
        if (!Condition(base[i->b])) {
            at += i->jump;
        }
        NEXT;
    }
    CASE(JT) {
        SAVE;
        if (Condition(base[i->b])) {
            at += i->jump;
            TICK;
        }
        NEXT;
    }
    CASE(CALL)
    CASE(CALL_DROP) {
        DataCell* argv = base + i->a;
        SAVE;
        const Member& member = MemberFor(i->value, i->b, argv);
        if (member.kind == MemberKind::Script) [[likely]] {
            const Frame& frame = Frames[FrameDepth];
            DataCell* place = argv;
            if (StackBuf + StackPtr >= frame.base + frame.function->cells) {
                place = MoveArgumentsUp(argv, i->b);
            }
            PushFrame(ScriptFunctions[static_cast<std::size_t>(member.body)], i->b, place, argv,
                      i->op == Opcode::CALL);
            at = Frames[FrameDepth].at;
            base = place;
            TICK;
            NEXT;
        }
        CallFromFrame(*i, argv, i->op == Opcode::CALL);
        NEXT;
    }
    CASE(DROP) {
        SAVE;
        if (base[i->b].type == TYPE_NOASSIGN) {
            ReportUnassigned();
        }
        ReleaseOwned(OperandOf(base, i->b, *Frames[FrameDepth].function));
        NEXT;
    }
    CASE(RETURN) {
        DataCell value = base[i->b];
        if (value.type == TYPE_NOASSIGN) [[unlikely]] {
            SAVE;
            ReportUnassigned();
        }
        if (value.type == TYPE_OBJECT) {
            base[i->b].type = TYPE_NOASSIGN;  // its reference leaves with the value
        }
        const Frame frame = Frames[FrameDepth];
        PopFrame();
        if (frame.wantsResult) [[likely]] {
            *frame.result = value;
        } else if (value.type == TYPE_OBJECT) {
            ObjectRelease(ObjectOf(value));
        }
        if (FrameDepth == bottom) {
            return RESULT;
        }
        at = Frames[FrameDepth].at;
        base = Frames[FrameDepth].base;
        NEXT;
    }
    CASE(RETURN_NONE) {
        const bool wanted = Frames[FrameDepth].wantsResult;
        PopFrame();
        if (FrameDepth == bottom) {
            return NO_RESULT;
        }
        if (wanted) {
            ReportUnassigned();
        }
        at = Frames[FrameDepth].at;
        base = Frames[FrameDepth].base;
        NEXT;
    }
    CASE(TRACE) {
        WriteTrace(static_cast<std::int32_t>(i - Code.data()), i->a);
        NEXT;
    }
    CASE(END) { return NO_RESULT; }
    DISPATCH_END
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    return NO_RESULT;
}

}  // namespace

ExecNesting::ExecNesting() {
    if (nesting >= NESTING_LIMIT) {
        ReportOverflow();
    }
    ++nesting;
}

ExecNesting::~ExecNesting() { --nesting; }

void SetBreakCheck(BreakCheck check) { breakCheck = check; }
void SetTrace(bool on) { traceOn = on; }
bool TraceIsOn() { return traceOn; }

SourcePosition ExecPosition() {
    if (FrameDepth < 0) {
        return {nullptr, 0};
    }
    return CodePositionOf(static_cast<std::int32_t>(Frames[FrameDepth].at - Code.data()) - 1);
}

ExecMark ExecTakeMark() { return {StackTop(), FrameDepth, nesting}; }

void ExecRecover(const ExecMark& mark) {
    FrameDepth = mark.depth;
    nesting = mark.nesting;
    StackRelease(std::min(mark.top, StackTop()));
}

std::int32_t ExecCall(std::int32_t body, std::int32_t argc, DataCell* argv) {
    const ExecNesting guard;
    const std::int32_t bottom = FrameDepth;
    StackPtr = static_cast<std::int32_t>(argv - StackBuf) + argc - 1;
    PushFrame(ScriptFunctions[static_cast<std::size_t>(body)], argc, argv, argv, true);
    const std::int32_t status = Execute(bottom);
    StackPtr = static_cast<std::int32_t>(argv - StackBuf) - (status == RESULT ? 0 : 1);
    return status;
}

void ExecInit(std::int32_t stackCells) {
    StackInit(stackCells);
    FrameDepth = -1;
    nesting = 0;
    StackAlloc(GlobalRoom());
}

void ExecTopLevel() {
    CodeEmit({Opcode::END});
    const std::int32_t start = TopLevel.start;
    TopLevel.start = CodeHere();
    topLevelFunction.code = start;
    topLevelFunction.locals = GlobalRoom();
    topLevelFunction.cells = GlobalRoom() + TopLevel.temporaries;
    // Global arrays lie above the temporaries and stay, so the frame does too.
    if (StackPtr < topLevelFunction.cells - 1) {
        StackAlloc(topLevelFunction.cells - 1 - StackPtr);
    }
    const ExecNesting guard;
    Frames[++FrameDepth] = {Code.data() + start, StackBuf, &topLevelFunction, nullptr, StackPtr, false};
    Execute(-1);
    --FrameDepth;
}

}  // namespace quelmark
