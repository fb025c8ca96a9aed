#include "ML/ERROR.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "ML/ML.h"

namespace quelmark {
namespace {

constexpr std::size_t MESSAGE_ROOM = 1024;

void WriteToStandardOutput(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

ErrorHook errorHook = nullptr;
WarningHook warningHook = nullptr;
OutputSink outputSink = nullptr;
OutputSink traceSink = nullptr;

[[noreturn]] void EndProgram(std::string_view message) {
    OutputLog(std::string(message) + "\n");
    std::fflush(stdout);
    std::exit(1);
}

// Formats behind the position "file:line:  " (none when the file is empty) and the kind of error.
[[noreturn]] void Report(SourcePosition position, const char* kind, const char* format,
                         std::va_list arguments) {
    char message[MESSAGE_ROOM];
    int length = 0;
    if (position.file != nullptr && position.file[0] != '\0') {
        length =
            std::snprintf(message, sizeof message / 2, "%s:%d:  %s ", position.file, position.line, kind);
    } else {
        length = std::snprintf(message, sizeof message, "%s ", kind);
    }
    length =
        length < static_cast<int>(sizeof message / 2) ? length : static_cast<int>(sizeof message / 2) - 1;
    std::vsnprintf(message + length, sizeof message - static_cast<std::size_t>(length), format, arguments);
    if (errorHook != nullptr) {
        errorHook(message);
    }
    EndProgram(message);
}

// "ML\STACK" from ".../src/ML/STACK.cpp".
std::string ModuleName(const char* path) {
    std::string name = path;
    const std::size_t source = name.rfind("src/");
    name = source == std::string::npos ? name : name.substr(source + 4);
    name = name.substr(0, name.rfind('.'));
    for (char& character : name) {
        character = character == '/' ? '\\' : character;
    }
    return name;
}

}  // namespace

void CompileError(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Report(ScanPosition(), "Error", format, arguments);
}

void FatalError(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Report(ScanPosition(), "Fatal", format, arguments);
}

void RuntimeError(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Report(ExecPosition(), "Error", format, arguments);
}

void CheckFailed(const char* condition, const char* file, int line) {
    RuntimeError("Internal check \"%s\" failed (%s, line %d)", condition, ModuleName(file).c_str(), line);
}

int Warning(std::string_view message) {
    if (warningHook != nullptr) {
        return warningHook(message);
    }
    OutputLog(std::string(message) + "\n");
    return 0;
}

void ReportTableFull(std::string_view message) {
    if (warningHook == nullptr) {
        EndProgram(message);
    }
    warningHook(message);
}

void SetErrorHandlers(ErrorHook onError, WarningHook onWarning) {
    errorHook = onError;
    warningHook = onWarning;
}

void SetOutputSink(OutputSink sink) {
    outputSink = sink;
}

void OutputLog(std::string_view text) {
    if (outputSink != nullptr) {
        outputSink(text);
    } else {
        WriteToStandardOutput(text);
    }
}

void SetTraceSink(OutputSink sink) {
    traceSink = sink;
}

void TraceLog(std::string_view text) {
    if (traceSink != nullptr) {
        traceSink(text);
    }
}

}  // namespace quelmark
