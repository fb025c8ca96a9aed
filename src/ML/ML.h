// The interpreter as its host sees it: create with sizes, compile files, run the top level, call handlers,
// cut the stack back after each event.
#pragma once

#include <cstdint>
#include <string_view>

#include "ML/STACK.h"

namespace quelmark {

struct InterpreterSizes {
    std::int32_t codeBytes = 65536;
    std::int32_t globals = 256;
    std::int32_t functions = 256;
    std::int32_t stackCells = 1024;
};

// Makes function tables, constants, code buffer and global identifiers, and registers the standard functions
// and the classes String and File. The value stack is allocated by ExecInit.
void InterpreterInit(const InterpreterSizes& sizes);
// Frees everything; Init may follow again (tests).
void InterpreterExit();

// Compiles one script file (script path) and drops its private names; messages name the part of the path
// after the last separator. Returns the bytes of intermediate code added.
std::int32_t CompileFile(std::string_view path);
// The same from memory (cp932, or UTF-8 with a byte order mark); `name` stands in messages.
std::int32_t CompileText(std::string_view name, std::string_view source);

// Allocates the value stack and the global area.
void ExecInit();
// Runs the top-level code that has been compiled and not yet run, to its end.
void ExecTopLevel();

// Tells whether to stop the running script; polled at most every few milliseconds. Null: never.
using BreakCheck = bool (*)();
void SetBreakCheck(BreakCheck check);
// Looks at the clock, and every few milliseconds asks the break check; "強制終了しました". For built-ins that
// wait, too.
void ExecPoll();
// Must be on before compiling to have an effect: each statement run writes a trace line to the trace log.
void SetTrace(bool on);

// The file (part after the last separator) and line of the statement being run, and of the scanner. An empty
// file: none.
struct SourcePosition {
    const char* file;
    std::int32_t line;
};
SourcePosition ExecPosition();
SourcePosition ScanPosition();
// Where to go back to after an error: taken at a recovery point, before the handler is called.
struct ExecMark {
    DataCell* top;
    std::int32_t depth;    // script frames
    std::int32_t nesting;  // executors running inside each other
};
ExecMark ExecTakeMark();
// Forgets the abandoned frames and cuts the stack back, which releases what they held.
void ExecRecover(const ExecMark& mark);

// For the usage report.
std::int32_t CodeUsed();
std::int32_t GlobalsUsed();
std::int32_t FunctionsUsed();

}  // namespace quelmark
