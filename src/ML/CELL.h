// Cells as the executor's loop handles them: two 32-bit halves, tests that cost one comparison, no checks.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "ML/STACK.h"

namespace quelmark {

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

// Releases what cells hold that end here: a frame's locals.
inline void ReleaseCells(DataCell* first, const DataCell* behind) {
    for (DataCell* cell = first; cell < behind; ++cell) {
        if (HoldsObject(*cell)) {
            SetTag(*cell, TYPE_NOASSIGN);
            ObjectRelease(ObjectOf(*cell));
        }
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

}  // namespace quelmark
