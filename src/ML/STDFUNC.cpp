#include "ML/STDFUNC.h"

#include <cmath>
#include <string>

#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/FUNC.h"
#include "ML/OPERATE.h"
#include "ML/STRING.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t WIDTH_LIMIT = 4096;

std::int32_t Print(std::int32_t, std::int32_t argc, DataCell* argv) {
    WriteTexts(argc, argv, OutputLog);
    return NO_RESULT;
}

// The text of any value; an object's own "tostring" makes its.
std::string TextOf(const DataCell& value) {
    if (value.type == TYPE_OBJECT) {
        PushText(value);
        std::string text(StringText(*StackTop()));
        StackPop();
        return text;
    }
    char buffer[CELL_TEXT_BYTES];
    const int length = CellToText(buffer, value);
    return {buffer, static_cast<std::size_t>(length)};
}

std::int32_t ToString(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1) {
        RuntimeError("引数の数が不正です。( %s )"_sjis, "tostring");
    }
    if (argc == 1) {
        char buffer[CELL_TEXT_BYTES];
        const int length = CellToText(buffer, argv[0]);
        StackPushString({buffer, static_cast<std::size_t>(length)});
        return RESULT;
    }
    const std::int32_t width = argv[1].integer;
    if (argv[1].type != TYPE_INT || width <= -WIDTH_LIMIT || width >= WIDTH_LIMIT) {
        RuntimeError("2 番目の引数が不正です( %s )"_sjis, "tostring");
    }
    std::string text = TextOf(argv[0]);
    const auto wanted = static_cast<std::size_t>(std::abs(width));
    if (text.size() < wanted) {
        text.insert(width > 0 ? 0 : text.size(), wanted - text.size(), ' ');
    }
    StackPushString(text);
    return RESULT;
}

std::int32_t TypeOf(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPush(TypeCell(argc > 0 ? argv[0].type : 0));
    return RESULT;
}

std::int32_t SizeOf(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(static_cast<std::int32_t>(ArrayCount(argv[0])));
    return RESULT;
}

template <double (*function)(double)>
std::int32_t OfOneReal(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushReal(function(CellNumber(argv[0])));
    return RESULT;
}

std::int32_t ArcTangent2(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushReal(std::atan2(CellNumber(argv[0]), CellNumber(argv[1])));
    return RESULT;
}

std::int32_t Absolute(std::int32_t, std::int32_t, DataCell* argv) {
    if (argv[0].type == TYPE_INT) {
        const std::int32_t value = argv[0].integer;
        StackPushInt(value < 0 ? WrapSubtract(0, value) : value);
    } else {
        StackPushReal(std::fabs(CellNumber(argv[0])));
    }
    return RESULT;
}

std::int32_t ObjectCountOf(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(ObjectCount);
    return RESULT;
}

std::int32_t StackPtrOf(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(ExecVisibleTop(argv, argc));
    return RESULT;
}

// The inverse functions and atan2 report their arguments under the name of the sine: scripts know them so.
constexpr BuiltIn FUNCTIONS[] = {
    {"", "print", Print},
    {"", "tostring", ToString},
    {"", "typeof", TypeOf},
    {"", "sizeof", SizeOf, Takes("sizeof", {TYPE_ARRAY})},
    {"", "call", CallValue},
    {"", "sqrt", OfOneReal<std::sqrt>, Takes("sqrt", {TYPE_NUMBER})},
    {"", "sin", OfOneReal<std::sin>, Takes("sin", {TYPE_REAL})},
    {"", "cos", OfOneReal<std::cos>, Takes("cos", {TYPE_REAL})},
    {"", "tan", OfOneReal<std::tan>, Takes("tan", {TYPE_REAL})},
    {"", "asin", OfOneReal<std::asin>, Takes("sin", {TYPE_REAL})},
    {"", "acos", OfOneReal<std::acos>, Takes("sin", {TYPE_REAL})},
    {"", "atan", OfOneReal<std::atan>, Takes("sin", {TYPE_REAL})},
    {"", "atan2", ArcTangent2, Takes("sin", {TYPE_NUMBER, TYPE_NUMBER})},
    {"", "log", OfOneReal<std::log>, Takes("log", {TYPE_REAL})},
    {"", "exp", OfOneReal<std::exp>, Takes("exp", {TYPE_REAL})},
    {"", "abs", Absolute, Takes("abs", {TYPE_NUMBER})},
    {"", "ObjectCount", ObjectCountOf},
    {"", "StackPtr", StackPtrOf},
};

}  // namespace

std::int32_t CallValue(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1 || argv[0].type != TYPE_FUNC) {
        RuntimeError("1 番目の引数の型が不正です( %s )"_sjis, "callfunction");
    }
    return CallFunction(argv[0].integer, argc - 1, argv + 1);
}

void StandardRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
