// The families of instructions that the executor's loop writes out form by form: operands in slots, an INT or
// a REAL in the instruction, comparisons with their jumps, counted loops, elements of arrays. Each form does
// the common case inline and leaves the rest to its cold half. They stand inside Execute: `i` is the
// instruction, `base` its frame's first cell, and CASE, NEXT, SAVE, SLOW and TICK are what EXEC.cpp makes of
// them.
#pragma once

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
