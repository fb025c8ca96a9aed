#include "ML/ML.h"

#include <string>

#include "ML/CODE.h"
#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/FILEFUNC.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/PARSE.h"
#include "ML/SCAN.h"
#include "ML/STDFUNC.h"
#include "ML/STRING.h"

namespace quelmark {
namespace {

constexpr ConstantRow CONSTANTS[] = {
    {"TRUE", BoolCell(1)},
    {"ON", BoolCell(1)},
    {"FALSE", BoolCell(0)},
    {"OFF", BoolCell(0)},
    {"NOASSIGN", TypeCell(TYPE_NOASSIGN)},
    {"BOOLEAN", TypeCell(TYPE_BOOLEAN)},
    {"INT", TypeCell(TYPE_INT)},
    {"REAL", TypeCell(TYPE_REAL)},
    {"TYPE", TypeCell(TYPE_TYPE)},
    {"ARRAY", TypeCell(TYPE_ARRAY)},
    {"FUNC", TypeCell(TYPE_FUNC)},
    {"OBJECT", TypeCell(TYPE_OBJECT)},
};

InterpreterSizes sizes;

// The file stays open for the position of its messages until it is compiled, or an error has ended it.
struct ScanCloser {
    ~ScanCloser() { ScanClose(); }
};

std::int32_t CompileOpened() {
    const ScanCloser closer;
    FunctionTablesSeal();
    const std::int32_t before = CodeHere();
    ParseFile();
    return (CodeHere() - before) * static_cast<std::int32_t>(sizeof(Instruction));
}

}  // namespace

void InterpreterInit(const InterpreterSizes& wanted) {
    InterpreterExit();
    sizes = wanted;
    ObjectCount = 0;
    FunctionTablesInit(sizes.functions);
    RegisterConstants(CONSTANTS);
    CodeInit(sizes.codeBytes);
    ParserInit(sizes.globals);
    ClassRegister("", -1);
    StandardRegister();
    StringRegister();
    FileRegister();
}

void InterpreterExit() {
    ExecExit();
    ScanClose();
    ScanFreeLiterals();
    ParserExit();
    CodeExit();
    FunctionTablesExit();
}

std::int32_t CompileFile(std::string_view path) {
    ScanOpen(path);
    return CompileOpened();
}

std::int32_t CompileText(std::string_view name, std::string_view source) {
    ScanText(name, std::string(source));
    return CompileOpened();
}

void ExecInit() {
    ExecInit(sizes.stackCells);
}

std::int32_t CodeUsed() {
    return CodeHere() * static_cast<std::int32_t>(sizeof(Instruction));
}
std::int32_t GlobalsUsed() {
    return IdentCount(GlobalNames());
}
std::int32_t FunctionsUsed() {
    return IdentCount(FunctionNames.get());
}

}  // namespace quelmark
