#include "ML/EXEC.h"

#include <bit>
#include <cstring>

#include "ML/COLD.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/STDFUNC.h"

namespace quelmark {
namespace {

static_assert(std::endian::native == std::endian::little, "the type is the low half of a cell");

// Cells are read and written as two 32-bit halves, type with count and payload: a wider read of a cell whose
// halves have just been written would wait until both have left the processor's store buffer.
inline std::uint32_t TagOf(const DataCell& cell) {
    std::uint32_t tag;
    std::memcpy(&tag, &cell, sizeof tag);
    return tag;
}
inline void SetTag(DataCell& cell, std::uint32_t tag) {
    std::memcpy(&cell, &tag, sizeof tag);
}
inline void PutInt(DataCell& cell, std::int32_t value) {
    SetTag(cell, TYPE_INT);
    cell.integer = value;
}
inline void PutReal(DataCell& cell, float value) {
    SetTag(cell, TYPE_REAL);
    cell.real = value;
}
inline void PutBool(DataCell& cell, bool value) {
    SetTag(cell, TYPE_BOOLEAN);
    cell.integer = value ? 1 : 0;
}
inline void Put(DataCell& cell, std::uint32_t tag, std::int32_t payload) {
    SetTag(cell, tag);
    cell.integer = payload;
}

// A value that can be copied as it is; into a temporary an array can be, too.
inline bool IsPlain(std::uint32_t tag) {
    return tag - 1 < TYPE_ARRAY - 1;
}
inline bool IsPlainOrArray(std::uint32_t tag) {
    return static_cast<std::uint16_t>(tag - 1) < TYPE_ARRAY;
}
inline bool IsFlag(std::uint32_t tag) {
    return tag - 1 < TYPE_INT;
}
// A place from which something must be released.
inline bool HoldsObject(const DataCell& cell) {
    return cell.type == TYPE_OBJECT;
}

// Puts a value that owns its reference into a place that may hold an object.
inline void Replace(DataCell& cell, std::uint32_t tag, std::int32_t payload) {
    ObjectBlock* const before = HoldsObject(cell) ? ObjectOf(cell) : nullptr;
    Put(cell, tag, payload);
    if (before != nullptr) {
        ObjectRelease(before);
    }
}

// The element when everything is in order, else null: the slow path tells what is wrong.
inline DataCell* ElementOf(const DataCell& array, std::uint32_t subscript) {
    const std::uint32_t tag = TagOf(array);
    if (static_cast<std::uint16_t>(tag) == TYPE_ARRAY && subscript < tag >> 16) [[likely]] {
        const std::uint32_t index = array.element + subscript;
        if (index <= static_cast<std::uint32_t>(StackPtr)) [[likely]] {
            return StackBuf + index;
        }
    }
    return nullptr;
}
inline DataCell* ElementOf(const DataCell& array, const DataCell& subscript) {
    return TagOf(subscript) == TYPE_INT ? ElementOf(array, static_cast<std::uint32_t>(subscript.integer))
                                        : nullptr;
}

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

// a = b op c. INTEGER and REAL say what becomes of l and r; HAS_REAL 0 leaves reals to the rules.
#define ARITHMETIC(NAME, CODE, INTEGER, REAL, HAS_REAL)                                        \
    CASE(NAME##_SS) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell& left = base[i->b];                                                     \
        const DataCell& right = base[i->c];                                                    \
        const std::uint32_t tag = TagOf(left);                                                 \
        if (tag == TagOf(right) && !HoldsObject(d)) [[likely]] {                               \
            if (tag == TYPE_INT) [[likely]] {                                                  \
                const std::int32_t l = left.integer, r = right.integer;                        \
                PutInt(d, INTEGER);                                                            \
                NEXT;                                                                          \
            }                                                                                  \
            if (HAS_REAL && tag == TYPE_REAL) [[likely]] {                                     \
                [[maybe_unused]] const float l = left.real, r = right.real;                    \
                PutReal(d, REAL);                                                              \
                NEXT;                                                                          \
            }                                                                                  \
        }                                                                                      \
        if (HAS_REAL && tag == TYPE_REAL && TagOf(right) == TYPE_INT && !HoldsObject(d)) {     \
            [[maybe_unused]] const float l = left.real, r = static_cast<float>(right.integer); \
            PutReal(d, REAL);                                                                  \
            NEXT;                                                                              \
        }                                                                                      \
        SLOW(OperateSlots(CODE, *i, *frame));                                                  \
    }                                                                                          \
    CASE(NAME##_SI) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell& left = base[i->b];                                                     \
        const std::uint32_t tag = TagOf(left);                                                 \
        if (!HoldsObject(d)) [[likely]] {                                                      \
            if (tag == TYPE_INT) [[likely]] {                                                  \
                const std::int32_t l = left.integer, r = i->value;                             \
                PutInt(d, INTEGER);                                                            \
                NEXT;                                                                          \
            }                                                                                  \
            if (HAS_REAL && tag == TYPE_REAL && i->c == 0) [[likely]] {                        \
                [[maybe_unused]] const float l = left.real, r = static_cast<float>(i->value);  \
                PutReal(d, REAL);                                                              \
                NEXT;                                                                          \
            }                                                                                  \
        }                                                                                      \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_INT));                                    \
    }                                                                                          \
    CASE(NAME##_SR) {                                                                          \
        DataCell& d = base[i->a];                                                              \
        const DataCell& left = base[i->b];                                                     \
        if (HAS_REAL && TagOf(left) == TYPE_REAL && !HoldsObject(d)) [[likely]] {              \
            [[maybe_unused]] const float l = left.real, r = std::bit_cast<float>(i->value);    \
            PutReal(d, REAL);                                                                  \
            NEXT;                                                                              \
        }                                                                                      \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_REAL));                                   \
    }

// a = b op c for INTs and BOOLEANs.
#define LOGIC(NAME, CODE, INTEGER, BOOLEAN)                                \
    CASE(NAME##_SS) {                                                      \
        DataCell& d = base[i->a];                                          \
        const std::uint32_t tag = TagOf(base[i->b]);                       \
        const std::int32_t l = base[i->b].integer, r = base[i->c].integer; \
        if (tag == TagOf(base[i->c]) && !HoldsObject(d)) [[likely]] {      \
            if (tag == TYPE_INT) [[likely]] {                              \
                PutInt(d, INTEGER);                                        \
                NEXT;                                                      \
            }                                                              \
            if (tag == TYPE_BOOLEAN) [[likely]] {                          \
                Put(d, TYPE_BOOLEAN, BOOLEAN);                             \
                NEXT;                                                      \
            }                                                              \
        }                                                                  \
        SLOW(OperateSlots(CODE, *i, *frame));                              \
    }                                                                      \
    CASE(NAME##_SI) {                                                      \
        DataCell& d = base[i->a];                                          \
        const std::int32_t l = base[i->b].integer, r = i->value;           \
        if (TagOf(base[i->b]) == TYPE_INT && !HoldsObject(d)) [[likely]] { \
            PutInt(d, INTEGER);                                            \
            NEXT;                                                          \
        }                                                                  \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_INT));                \
    }                                                                      \
    CASE(NAME##_SR) {                                                      \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_REAL));               \
    }

#define JUMP_UNLESS(CONDITION) \
    if (!(CONDITION)) {        \
        at += i->jump;         \
    }                          \
    NEXT
#define JUMP_BACK_IF(CONDITION) \
    if (CONDITION) {            \
        at += i->jump;          \
        TICK(1);                \
    }                           \
    NEXT
// Jumps on b OP c for a right operand in a slot, an INT or a REAL.
#define TRUTH_SS(CODE, OP, JUMP)                     \
    {                                                \
        const DataCell& left = base[i->b];           \
        const DataCell& right = base[i->c];          \
        const std::uint32_t tag = TagOf(left);       \
        if (tag == TagOf(right)) [[likely]] {        \
            if (tag == TYPE_INT) [[likely]] {        \
                JUMP(left.integer OP right.integer); \
            }                                        \
            if (tag == TYPE_REAL) [[likely]] {       \
                JUMP(left.real OP right.real);       \
            }                                        \
        }                                            \
        SAVE;                                        \
        JUMP(TruthOfSlots(CODE, *i, *frame));        \
    }
#define TRUTH_SI(CODE, OP, JUMP)                            \
    {                                                       \
        const DataCell& left = base[i->b];                  \
        if (TagOf(left) == TYPE_INT) [[likely]] {           \
            JUMP(left.integer OP i->value);                 \
        }                                                   \
        SAVE;                                               \
        JUMP(TruthOfImmediate(CODE, *i, *frame, TYPE_INT)); \
    }
#define TRUTH_SR(CODE, OP, JUMP)                               \
    {                                                          \
        const DataCell& left = base[i->b];                     \
        if (TagOf(left) == TYPE_REAL) [[likely]] {             \
            JUMP(left.real OP std::bit_cast<float>(i->value)); \
        }                                                      \
        SAVE;                                                  \
        JUMP(TruthOfImmediate(CODE, *i, *frame, TYPE_REAL));   \
    }
#define COMPARE(NAME, CODE, OP)                                       \
    CASE(NAME##_SS) {                                                 \
        DataCell& d = base[i->a];                                     \
        const DataCell& left = base[i->b];                            \
        const DataCell& right = base[i->c];                           \
        const std::uint32_t tag = TagOf(left);                        \
        if (tag == TagOf(right) && !HoldsObject(d)) [[likely]] {      \
            if (tag == TYPE_INT) [[likely]] {                         \
                PutBool(d, left.integer OP right.integer);            \
                NEXT;                                                 \
            }                                                         \
            if (tag == TYPE_REAL) [[likely]] {                        \
                PutBool(d, left.real OP right.real);                  \
                NEXT;                                                 \
            }                                                         \
        }                                                             \
        SLOW(OperateSlots(CODE, *i, *frame));                         \
    }                                                                 \
    CASE(NAME##_SI) {                                                 \
        DataCell& d = base[i->a];                                     \
        const DataCell& left = base[i->b];                            \
        if (TagOf(left) == TYPE_INT && !HoldsObject(d)) [[likely]] {  \
            PutBool(d, left.integer OP i->value);                     \
            NEXT;                                                     \
        }                                                             \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_INT));           \
    }                                                                 \
    CASE(NAME##_SR) {                                                 \
        DataCell& d = base[i->a];                                     \
        const DataCell& left = base[i->b];                            \
        if (TagOf(left) == TYPE_REAL && !HoldsObject(d)) [[likely]] { \
            PutBool(d, left.real OP std::bit_cast<float>(i->value));  \
            NEXT;                                                     \
        }                                                             \
        SLOW(OperateImmediate(CODE, *i, *frame, TYPE_REAL));          \
    }                                                                 \
    CASE(JF_##NAME##_SS)                                              \
    TRUTH_SS(CODE, OP, JUMP_UNLESS)                                   \
    CASE(JF_##NAME##_SI)                                              \
    TRUTH_SI(CODE, OP, JUMP_UNLESS)                                   \
    CASE(JF_##NAME##_SR)                                              \
    TRUTH_SR(CODE, OP, JUMP_UNLESS)                                   \
    CASE(JT_##NAME##_SS)                                              \
    TRUTH_SS(CODE, OP, JUMP_BACK_IF)                                  \
    CASE(JT_##NAME##_SI)                                              \
    TRUTH_SI(CODE, OP, JUMP_BACK_IF) CASE(JT_##NAME##_SR) TRUTH_SR(CODE, OP, JUMP_BACK_IF)

// One turn of a counted loop: everything is INT, or the slow path takes the step and the test.
#define TURN(TEST, STEP, LIMIT, CODE, OP, STEP_IN_SLOT, LIMIT_IN_SLOT)            \
    {                                                                             \
        DataCell& counter = base[i->b];                                           \
        if (TagOf(counter) == TYPE_INT && TEST) [[likely]] {                      \
            const std::int32_t next = WrapAdd(counter.integer, STEP);             \
            counter.integer = next;                                               \
            JUMP_BACK_IF(next OP LIMIT);                                          \
        }                                                                         \
        SAVE;                                                                     \
        JUMP_BACK_IF(StepAndTest(CODE, *i, *frame, STEP_IN_SLOT, LIMIT_IN_SLOT)); \
    }
#define COUNT_LOOP(NAME, CODE, OP)                                                                     \
    CASE(FOR_##NAME##_SS)                                                                              \
    TURN(TagOf(base[i->c]) == TYPE_INT, static_cast<std::int16_t>(i->a), base[i->c].integer, CODE, OP, \
         false, true)                                                                                  \
    CASE(FOR_##NAME##_SI)                                                                              \
    TURN(true, static_cast<std::int16_t>(i->a), i->value, CODE, OP, false, false)                      \
    CASE(FOR_BY_##NAME##_SS)                                                                           \
    TURN(TagOf(base[i->a]) == TYPE_INT && TagOf(base[i->c]) == TYPE_INT, base[i->a].integer,           \
         base[i->c].integer, CODE, OP, true, true)                                                     \
    CASE(FOR_BY_##NAME##_SI)                                                                           \
    TURN(TagOf(base[i->a]) == TYPE_INT, base[i->a].integer, i->value, CODE, OP, true, false)

// slot a = the element, the element = slot a.
#define READ_ELEMENT(FOUND, ELSE)                               \
    {                                                           \
        const DataCell* const element = FOUND;                  \
        DataCell& d = base[i->a];                               \
        if (element != nullptr && !HoldsObject(d)) [[likely]] { \
            const std::uint32_t tag = TagOf(*element);          \
            if (IsPlain(tag)) [[likely]] {                      \
                Put(d, tag, element->integer);                  \
                NEXT;                                           \
            }                                                   \
        }                                                       \
        SLOW(ELSE);                                             \
    }
#define WRITE_ELEMENT(FOUND, ELSE)                                                     \
    {                                                                                  \
        DataCell* const element = FOUND;                                               \
        const DataCell& source = base[i->a];                                           \
        const std::uint32_t tag = TagOf(source);                                       \
        if (element != nullptr && IsPlain(tag) && !HoldsObject(*element)) [[likely]] { \
            Put(*element, tag, source.integer);                                        \
            NEXT;                                                                      \
        }                                                                              \
        SLOW(ELSE);                                                                    \
    }

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
        for (DataCell *cell = base, *behind = base + i->value; cell < behind; ++cell) {
            if (HoldsObject(*cell)) {
                SetTag(*cell, TYPE_NOASSIGN);
                ObjectRelease(ObjectOf(*cell));
            }
        }
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
        for (DataCell *cell = base, *behind = base + i->value; cell < behind; ++cell) {
            if (HoldsObject(*cell)) {
                SetTag(*cell, TYPE_NOASSIGN);
                ObjectRelease(ObjectOf(*cell));
            }
        }
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
