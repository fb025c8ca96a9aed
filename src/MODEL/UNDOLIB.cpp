// The script functions of undoing and redoing.
#include <algorithm>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/UNDO.h"

namespace quelmark {
namespace {

constexpr std::size_t MEGABYTE = std::size_t{1} << 20;

std::int32_t Mark(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(IsString(argv[0]) && UndoMark(StringText(argv[0])));
    return RESULT;
}

template <bool (*step)()>
std::int32_t Take(std::int32_t, std::int32_t, DataCell*) {
    StackPushBool(step());
    return RESULT;
}

template <std::string_view (*text)()>
std::int32_t Text(std::int32_t, std::int32_t, DataCell*) {
    StackPushString(text());
    return RESULT;
}

template <void (*act)()>
std::int32_t Act(std::int32_t, std::int32_t, DataCell*) {
    act();
    return NO_RESULT;
}

std::int32_t Memory(std::int32_t, std::int32_t argc, DataCell* argv) {
    const auto before = static_cast<std::int32_t>(UndoLimit() / MEGABYTE);
    if (argc > 0) {
        UndoLimit(static_cast<std::size_t>(std::max(argv[0].integer, 0)) * MEGABYTE);
    }
    StackPushInt(before);
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "UndoMark", Mark, Takes("UndoMark", {TYPE_OBJECT})},
    {"", "Undo", Take<Undo>, Takes("Undo", {})},
    {"", "Redo", Take<Redo>, Takes("Redo", {})},
    {"", "UndoRestore", Take<UndoRestore>, Takes("UndoRestore", {})},
    {"", "UndoCancel", Take<UndoCancel>, Takes("UndoCancel", {})},
    {"", "UndoEnd", Take<UndoEnd>, Takes("UndoEnd", {})},
    {"", "UndoText", Text<UndoText>, Takes("UndoText", {})},
    {"", "RedoText", Text<RedoText>, Takes("RedoText", {})},
    {"", "UndoClear", Act<UndoClear>, Takes("UndoClear", {})},
    {"", "UndoSaved", Act<UndoSaved>, Takes("UndoSaved", {})},
    {"", "UndoMemory", Memory, Takes("UndoMemory", {TYPE_INT}, 0)},
};

}  // namespace

void UndoRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
