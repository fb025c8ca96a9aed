#include "ML/EXEC.h"

#include "ML/CELL.h"
#include "ML/COLD.h"
#include "ML/ERROR.h"
#include "ML/FORMS.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/ML.h"
#include "ML/STDFUNC.h"

namespace quelmark {
namespace {

// Calls a built-in, or reports what is undefined, for arguments in temporaries of the running frame.
void CallFromFrame(const Instruction& call, const Frame& frame, DataCell* argv, bool wantsResult) {
    const std::int32_t argc = call.b;
    const std::int32_t top = StackPtr;
    const Member& member = MemberFor(call.value, argc, argv);
    if (member.kind != MemberKind::BuiltIn) {
        ReportUndefined(call.value);
    }
    DataCell* place = argv;
    if (top != frame.top) {
        place = MoveArgumentsUp(argv, argc);
    }
    StackPtr = static_cast<std::int32_t>(place - StackBuf) + argc - 1;
    const bool result = CallBuiltIn(member, call.value, argc, place) == RESULT;
    StackPtr = top;
    if (!result) {
        if (wantsResult) {
            ReportUnassigned();
        }
    } else if (wantsResult) {
        if (place != argv) {
            const DataCell value = *place;
            place->type = TYPE_NOASSIGN;
            *argv = value;
        }
    } else if (HoldsObject(*place)) {
        ReleaseCell(place);
    }
}

}  // namespace

std::int32_t Execute() {
    Frame* frame = CurrentFrame;
    const Frame* const bottom = frame;
    const Instruction* at = frame->at;
    DataCell* base = frame->base;
    const Instruction* i = nullptr;

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
#define NEXT                                           \
    do {                                               \
        i = at++;                                      \
        goto* LABELS[static_cast<std::size_t>(i->op)]; \
    } while (false)
#define CASE(name) L_##name:
#define DISPATCH NEXT;
#define DISPATCH_END
#else
#define NEXT goto dispatch
#define CASE(name) case Opcode::name:
#define DISPATCH \
    dispatch:    \
    i = at++;    \
    switch (i->op) {
#define DISPATCH_END    \
    case Opcode::COUNT: \
        break;          \
        }
#endif

// Before anything that may report an error or run something else: the position and the frame are written
// back.
#define SAVE (frame->at = at, CurrentFrame = frame)
#define SLOW(call) \
    do {           \
        SAVE;      \
        call;      \
        NEXT;      \
    } while (false)
// Counts a loop turn or call; `i` still is the instruction that made it.
#define TICK(COUNT)                                 \
    do {                                            \
        if ((Ticks -= (COUNT)) <= 0) [[unlikely]] { \
            frame->at = i + 1;                      \
            CurrentFrame = frame;                   \
            ExecPoll();                             \
        }                                           \
    } while (false)
    DISPATCH

    CASE(ASSIGN) {
        DataCell& d = base[i->a];
        const DataCell& source = base[i->b];
        const std::uint32_t tag = TagOf(source);
        if (IsPlain(tag) && !HoldsObject(d)) [[likely]] {
            Put(d, tag, source.integer);
            NEXT;
        }
        if (tag == TYPE_OBJECT) {
            ObjectAddRef(ObjectOf(source));
            Replace(d, tag, source.integer);
            NEXT;
        }
        SLOW(AssignSlot(*i, *frame));
    }
    CASE(COPY) {
        const DataCell& source = base[i->b];
        const std::uint32_t tag = TagOf(source);
        if (IsPlainOrArray(tag)) [[likely]] {
            Put(base[i->a], tag, source.integer);
            NEXT;
        }
        if (tag == TYPE_OBJECT) [[likely]] {
            ObjectAddRef(ObjectOf(source));
            Put(base[i->a], tag, source.integer);
            NEXT;
        }
        SLOW(CopySlot(*i, *frame));
    }
    CASE(MOVE) {
        DataCell& d = base[i->a];
        DataCell& source = base[i->b];
        const std::uint32_t tag = TagOf(source);
        if (IsPlain(tag) && !HoldsObject(d)) [[likely]] {
            Put(d, tag, source.integer);
            NEXT;
        }
        if (tag == TYPE_OBJECT) [[likely]] {
            SetTag(source, TYPE_NOASSIGN);
            Replace(d, tag, source.integer);
            NEXT;
        }
        SLOW(CopySlot(*i, *frame));
    }
    CASE(LOAD) {
        DataCell& d = base[i->a];
        if (!HoldsObject(d)) [[likely]] {
            Put(d, i->c, i->value);
            NEXT;
        }
        SLOW(LoadConstant(*i, *frame));
    }
    CASE(LOAD_OBJECT) {
        ObjectAddRef(ObjectTable[i->value]);
        Replace(base[i->a], TYPE_OBJECT, i->value);
        NEXT;
    }
    CASE(GET_GLOBAL) {
        const DataCell& source = StackBuf[i->value];
        const std::uint32_t tag = TagOf(source);
        if (IsPlainOrArray(tag)) [[likely]] {
            Put(base[i->a], tag, source.integer);
            NEXT;
        }
        SLOW(GetGlobal(*i, *frame));
    }
    CASE(SET_GLOBAL) {
        DataCell& d = StackBuf[i->value];
        const DataCell& source = base[i->b];
        const std::uint32_t tag = TagOf(source);
        if (IsPlain(tag) && !HoldsObject(d)) [[likely]] {
            Put(d, tag, source.integer);
            NEXT;
        }
        SLOW(SetGlobal(*i, *frame));
    }
    CASE(GET_ELEMENT)
    READ_ELEMENT(ElementOf(base[i->b], base[i->c]), GetElement(*i, *frame, base[i->b], base[i->c]))
    CASE(GET_ELEMENT_K)
    READ_ELEMENT(ElementOf(base[i->b], static_cast<std::uint32_t>(i->value)),
                 GetElement(*i, *frame, base[i->b], IntCell(i->value)))
    CASE(GET_GLOBAL_ELEMENT)
    READ_ELEMENT(ElementOf(StackBuf[i->value], base[i->b]),
                 GetElement(*i, *frame, StackBuf[i->value], base[i->b]))
    CASE(GET_GLOBAL_ELEMENT_K)
    READ_ELEMENT(ElementOf(StackBuf[i->value], i->b),
                 GetElement(*i, *frame, StackBuf[i->value], IntCell(i->b)))
    CASE(GET_ROW) {
        const DataCell* const row = ElementOf(base[i->b], base[i->c]);
        if (row != nullptr && IsPlainOrArray(TagOf(*row))) [[likely]] {
            Put(base[i->a], TagOf(*row), row->integer);
            NEXT;
        }
        SLOW(GetRow(*i, *frame));
    }
    CASE(GET_ELEMENT_2) {
        const DataCell* const row = ElementOf(base[i->b], base[i->c]);
        if (row != nullptr) [[likely]] {
            READ_ELEMENT(ElementOf(*row, base[i->jump]), GetElement2(*i, *frame))
        }
        SLOW(GetElement2(*i, *frame));
    }
    CASE(SET_ELEMENT)
    WRITE_ELEMENT(ElementOf(base[i->b], base[i->c]), SetElement(*i, *frame, base[i->b], base[i->c]))
    CASE(SET_ELEMENT_K)
    WRITE_ELEMENT(ElementOf(base[i->b], static_cast<std::uint32_t>(i->value)),
                  SetElement(*i, *frame, base[i->b], IntCell(i->value)))
    CASE(SET_GLOBAL_ELEMENT)
    WRITE_ELEMENT(ElementOf(StackBuf[i->value], base[i->b]),
                  SetElement(*i, *frame, StackBuf[i->value], base[i->b]))
    CASE(SET_GLOBAL_ELEMENT_K)
    WRITE_ELEMENT(ElementOf(StackBuf[i->value], i->b),
                  SetElement(*i, *frame, StackBuf[i->value], IntCell(i->b)))
    CASE(SET_ELEMENT_2) {
        const DataCell* const row = ElementOf(base[i->b], base[i->c]);
        if (row != nullptr) [[likely]] {
            WRITE_ELEMENT(ElementOf(*row, base[i->jump]), SetElement2(*i, *frame))
        }
        SLOW(SetElement2(*i, *frame));
    }
    CASE(SET_ELEMENT_CONSTANT) {
        DataCell* const element = ElementOf(base[i->b], base[i->c]);
        if (element != nullptr && !HoldsObject(*element)) [[likely]] {
            Put(*element, i->a, i->value);
            NEXT;
        }
        SLOW(SetElementConstant(*i, *frame));
    }
    CASE(PLACE) {
        if (ElementOf(base[i->b], base[i->c]) != nullptr) [[likely]] {
            NEXT;
        }
        SLOW(CheckPlace(*i, *frame));
    }
    CASE(ARRAY) {
        SLOW(DeclareArrayInSlot(*i, *frame));
    }
    CASE(FIT) {
        SLOW(CheckFit(*i, *frame));
    }
    ARITHMETIC(ADD, OP_ADD, WrapAdd(l, r), l + r, true)
    ARITHMETIC(SUBTRACT, OP_SUBTRACT, WrapSubtract(l, r), l - r, true)
    ARITHMETIC(MULTIPLY, OP_MULTIPLY, WrapMultiply(l, r), l * r, true)
    ARITHMETIC(DIVIDE, OP_DIVIDE, WrapDivide(l, r), l / r, true)
    CASE(REMAINDER_SS) {
        DataCell& d = base[i->a];
        const std::int32_t divisor = base[i->c].integer;
        if (TagOf(base[i->b]) == TYPE_INT && TagOf(base[i->c]) == TYPE_INT && divisor > 0 && !HoldsObject(d))
            [[likely]] {
            PutInt(d, base[i->b].integer % divisor);
            NEXT;
        }
        SLOW(OperateSlots(OP_REMAINDER, *i, *frame));
    }
    CASE(REMAINDER_SI) {
        DataCell& d = base[i->a];
        if (TagOf(base[i->b]) == TYPE_INT && i->value > 0 && !HoldsObject(d)) [[likely]] {
            PutInt(d, base[i->b].integer % i->value);
            NEXT;
        }
        SLOW(OperateImmediate(OP_REMAINDER, *i, *frame, TYPE_INT));
    }
    CASE(REMAINDER_SR) {
        SLOW(OperateImmediate(OP_REMAINDER, *i, *frame, TYPE_REAL));
    }
    LOGIC(AND, OP_AND, l & r, l != 0 && r != 0)
    LOGIC(OR, OP_OR, l | r, l != 0 || r != 0)
    LOGIC(XOR, OP_XOR, l ^ r, l ^ r)
    ARITHMETIC(SHIFT_LEFT, OP_SHIFT_LEFT, ShiftLeft(l, r), l, false)
    ARITHMETIC(SHIFT_RIGHT, OP_SHIFT_RIGHT, ShiftRight(l, r), l, false)
    COMPARE(LESS, OP_LESS, <)
    COMPARE(GREATER, OP_GREATER, >)
    COMPARE(LESS_EQUAL, OP_LESS_EQUAL, <=)
    COMPARE(GREATER_EQUAL, OP_GREATER_EQUAL, >=)
    COMPARE(EQUAL, OP_EQUAL, ==)
    COMPARE(NOT_EQUAL, OP_NOT_EQUAL, !=)
    COUNT_LOOP(LESS, OP_LESS, <)
    COUNT_LOOP(GREATER, OP_GREATER, >)
    COUNT_LOOP(LESS_EQUAL, OP_LESS_EQUAL, <=)
    COUNT_LOOP(GREATER_EQUAL, OP_GREATER_EQUAL, >=)
    CASE(BINARY) {
        SLOW(OperateSlots(i->value, *i, *frame));
    }
    CASE(JOIN) {
        SLOW(Join(*i, *frame));
    }
    CASE(NOT) {
        DataCell& d = base[i->a];
        const DataCell& operand = base[i->b];
        const std::uint32_t tag = TagOf(operand);
        if (IsFlag(tag) && !HoldsObject(d)) [[likely]] {
            Put(d, tag, operand.integer == 0 ? 1 : 0);
            NEXT;
        }
        SLOW(OperateUnary(OP_NOT, *i, *frame));
    }
    CASE(NEGATE) {
        DataCell& d = base[i->a];
        const DataCell& operand = base[i->b];
        if (!HoldsObject(d)) [[likely]] {
            if (TagOf(operand) == TYPE_INT) {
                PutInt(d, WrapSubtract(0, operand.integer));
                NEXT;
            }
            if (TagOf(operand) == TYPE_REAL) {
                PutReal(d, -operand.real);
                NEXT;
            }
        }
        SLOW(OperateUnary(OP_NEGATE, *i, *frame));
    }
    CASE(INCREMENT) {
        DataCell& d = base[i->a];
        if (TagOf(d) == TYPE_INT) [[likely]] {
            d.integer = WrapAdd(d.integer, 1);
            NEXT;
        }
        SLOW(OperateStep(OP_INCREMENT, *i, *frame));
    }
    CASE(DECREMENT) {
        DataCell& d = base[i->a];
        if (TagOf(d) == TYPE_INT) [[likely]] {
            d.integer = WrapSubtract(d.integer, 1);
            NEXT;
        }
        SLOW(OperateStep(OP_DECREMENT, *i, *frame));
    }
    CASE(JUMP) {
        at += i->jump;
        NEXT;
    }
    CASE(LOOP) {
        at += i->jump;
        TICK(1);
        NEXT;
    }
    CASE(JF) {
        const DataCell& condition = base[i->b];
        if (IsFlag(TagOf(condition))) [[likely]] {
            JUMP_UNLESS(condition.integer != 0);
        }
        SAVE;
        JUMP_UNLESS(TruthOfSlot(*i, *frame));
    }
    CASE(JT) {
        const DataCell& condition = base[i->b];
        if (IsFlag(TagOf(condition))) [[likely]] {
            JUMP_BACK_IF(condition.integer != 0);
        }
        SAVE;
        JUMP_BACK_IF(TruthOfSlot(*i, *frame));
    }
    CASE(CALL)
    CASE(CALL_DROP) {
        DataCell* const argv = base + i->a;
        DataCell* place = argv;
        std::int32_t argc = i->b;
        const bool wantsResult = i->op == Opcode::CALL;
        const Member* member = ClassList[0].members + i->value;
        if (argc > 0 && HoldsObject(*argv)) [[unlikely]] {
            member = &MemberFor(i->value, argc, argv);
        }
        frame->at = at;
        const ScriptFunction* function = member->script;
        if (function == nullptr) {
            if (member->function == CallValue && argc > 0 && argv->type == TYPE_FUNC) {
                // call(f, ...): the arguments of f stand behind it.
                function = MemberFor(argv->integer, argc - 1, argv + 1).script;
            }
            if (function == nullptr) {
                CurrentFrame = frame;
                CallFromFrame(*i, *frame, argv, wantsResult);
                TICK(BUILT_IN_TICKS);
                NEXT;
            }
            ++place;
            --argc;
        }
        TICK(1);
        const std::int32_t callerTop = StackPtr;
        if (callerTop != frame->top) [[unlikely]] {
            CurrentFrame = frame;
            place = MoveArgumentsUp(place, argc);
        }
        std::int32_t top = static_cast<std::int32_t>(place - StackBuf) + function->cells - 1;
        top = top > StackPtr ? top : StackPtr;
        if (top > StackHighWater) [[unlikely]] {
            CurrentFrame = frame;
            StackRaiseHighWater(top);
        }
        if (frame == Frames + FRAMES_MOST) [[unlikely]] {
            CurrentFrame = frame;
            ReportOverflow();
        }
        for (std::int32_t local = argc; local < function->locals; ++local) {
            Put(place[local], TYPE_NOASSIGN, 0);
        }
        if (argc > function->locals) [[unlikely]] {
            ReleaseSurplus(place + function->locals, place + argc);
        }
        ++frame;
        frame->base = base = place;
        frame->function = function;
        frame->result = wantsResult ? argv : nullptr;
        frame->callerTop = callerTop;
        frame->top = top;
        StackPtr = top;
        at = function->code;
        NEXT;
    }
    CASE(DROP) {
        SLOW(DropSlot(*i, *frame));
    }
    CASE(RETURN) {
        DataCell& value = base[i->b];
        const std::uint32_t tag = TagOf(value);
        const std::int32_t payload = value.integer;
        if (tag == TYPE_NOASSIGN) [[unlikely]] {
            SAVE;
            ReportUnassigned();
        }
        if (tag == TYPE_OBJECT) {
            SetTag(value, TYPE_NOASSIGN);  // its reference leaves with the value
        }
        ReleaseCells(base, base + i->value);
        if (StackPtr != frame->top) [[unlikely]] {
            StackRelease(StackBuf + frame->top);  // arrays
        }
        StackPtr = frame->callerTop;
        DataCell* const result = frame->result;
        const bool last = frame == bottom;
        --frame;
        if (result != nullptr) [[likely]] {
            Put(*result, tag, payload);
        } else if (tag == TYPE_OBJECT) {
            DataCell dropped = NoCell();
            Put(dropped, tag, payload);
            ReleaseCell(&dropped);
        }
        if (last) [[unlikely]] {
            CurrentFrame = frame;
            return RESULT;
        }
        at = frame->at;
        base = frame->base;
        NEXT;
    }
    CASE(RETURN_NONE) {
        ReleaseCells(base, base + i->value);
        if (StackPtr != frame->top) [[unlikely]] {
            StackRelease(StackBuf + frame->top);
        }
        StackPtr = frame->callerTop;
        const bool wanted = frame->result != nullptr;
        const bool last = frame == bottom;
        --frame;
        if (last) [[unlikely]] {
            CurrentFrame = frame;
            return NO_RESULT;
        }
        at = frame->at;
        base = frame->base;
        if (wanted) [[unlikely]] {
            SAVE;
            ReportUnassigned();
        }
        NEXT;
    }
    CASE(TRACE) {
        WriteTrace(*i);
        NEXT;
    }
    CASE(END) {
        CurrentFrame = frame - 1;
        return NO_RESULT;
    }
    DISPATCH_END
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    return NO_RESULT;
}

}  // namespace quelmark
