// Error reporting: three formatting routines that prefix a message with a source position and hand
// the finished text to one replaceable hook. The hook never returns to the reporter: by default it
// ends the program; the host's hook shows the message and throws ScriptAbort, which only the
// recovery point of the event loop catches. Code may therefore assume that a report does not return,
// and must hold nothing that only its own normal exit would free.
#pragma once

#include <string_view>

namespace quelmark {

// Thrown by the host's error hook, and by nothing else; caught by the recovery point, and at the edge
// to the window system, which hands it on.
struct ScriptAbort {};

// An error hook takes the finished message (cp932) and does not return.
using ErrorHook = void (*)(std::string_view message);
// A warning hook shows the message; its result is handed back to the reporter.
using WarningHook = int (*)(std::string_view message);

// Faults in the source text: "%s:%d:  Error %s" with the scanner's file and line.
[[noreturn]] void CompileError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Resource exhaustion and broken limits: "%s:%d:  Fatal %s" while a file is compiled, else "Fatal %s".
[[noreturn]] void FatalError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Faults while executing and argument errors of built-ins: "%s:%d:  Error %s" with the file and line
// of the statement being run, else "Error %s".
[[noreturn]] void RuntimeError(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Internal consistency: when `holds` is false, a RuntimeError that names the condition, the module
// ("ML\STACK", from the source file's path) and the line.
[[noreturn]] void CheckFailed(const char* condition, const char* file, int line);
// The compiler's own functions name the caller's place: not every standard library has std::source_location.
inline void Check(bool holds, const char* condition, const char* file = __builtin_FILE(),
                  int line = __builtin_LINE()) {
    if (!holds) [[unlikely]] {
        CheckFailed(condition, file, line);
    }
}

// Shows a recoverable problem through the warning hook; without one the text and a line feed go to the
// output log and the result is 0.
int Warning(std::string_view message);
// A full table of the model store: with a warning hook installed the message is shown and the caller
// goes on with its failure result; before that the text is printed and the process exits with status 1.
void ReportTableFull(std::string_view message);

// Installs the host's hooks; a null one leaves (restores) the default.
void SetErrorHandlers(ErrorHook onError, WarningHook onWarning);

// The program's output log: what `print` writes. The default sink is standard output; the host adds the
// log file. Text is cp932.
using OutputSink = void (*)(std::string_view text);
void SetOutputSink(OutputSink sink);
void OutputLog(std::string_view text);
// Lines that belong to the log file alone (trace, usage). Dropped until the host sets a sink.
void SetTraceSink(OutputSink sink);
void TraceLog(std::string_view text);

}  // namespace quelmark
