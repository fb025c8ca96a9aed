// The String class: immutable, NUL-terminated cp932 text in an object block.
#pragma once

#include <string_view>

#include "ML/FUNC.h"
#include "ML/STACK.h"

namespace quelmark {

extern std::int32_t StringClass;

// Registers the class, its members and operators.
void StringRegister();

// An empty String with room for `length` bytes and the NUL.
ObjectBlock* StringAlloc(std::size_t length);
// A String holding a copy of the text.
ObjectBlock* StringNew(std::string_view text);
// Pushes a new String.
void StackPushString(std::string_view text);
// text = text + value, in place: when `text` holds the only reference to a String and the value is a String
// or no object. Otherwise false, and nothing has changed.
bool StringAppend(DataCell& text, const DataCell& value);

// The operators of two Strings that need no new one: comparisons, and the length (`!`, right unused). False
// when it is none of these.
bool StringOperate(std::int32_t code, const DataCell& left, const DataCell& right, DataCell& result);

inline bool IsString(const DataCell& cell) {
    return cell.type == TYPE_OBJECT &&
           (ObjectOf(cell)->classId == StringClass || IsInstance(cell, StringClass));
}
// The text of a String cell, without the NUL; valid while the object lives.
inline std::string_view StringText(const DataCell& cell) {
    const ObjectBlock* block = ObjectOf(cell);
    return {reinterpret_cast<const char*>(block->Data()), block->size - 1};
}
// The same as a C string.
const char* StringChars(const DataCell& cell);

}  // namespace quelmark
