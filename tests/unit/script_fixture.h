// Runs script text in a fresh interpreter and gives what it printed, or the message that ended it, as UTF-8.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>

#include "ML/ERROR.h"
#include "ML/ML.h"
#include "text/cp932.h"

namespace quelmark::test {

inline std::string printed;  // what scripts wrote to the output log
inline std::string message;  // the last error
inline std::string warnings;

class ScriptTest : public testing::Test {
  protected:
    InterpreterSizes sizes{.codeBytes = 1 << 20, .globals = 256, .functions = 256, .stackCells = 100000};
    // Registers what lies above the interpreter; called after InterpreterInit.
    std::function<void()> registerMore;

    void SetUp() override {
        printed.clear();
        message.clear();
        warnings.clear();
        SetOutputSink([](std::string_view text) { printed += text; });
        SetErrorHandlers(
            [](std::string_view text) {
                message = Cp932ToUtf8(text);
                throw ScriptAbort{};
            },
            [](std::string_view text) {
                warnings += Cp932ToUtf8(text) + "\n";
                return 0;
            });
    }

    void TearDown() override {
        InterpreterExit();
        SetErrorHandlers(nullptr, nullptr);
        SetOutputSink(nullptr);
    }

    void Start() {
        InterpreterInit(sizes);
        if (registerMore) {
            registerMore();
        }
    }

    // What the source (UTF-8) prints; a message that ends it stands at the end behind "! ".
    std::string Run(std::string_view source) {
        Start();
        return RunMore(source);
    }

    std::string RunMore(std::string_view source) {
        printed.clear();
        message.clear();
        try {
            CompileText("test.qms", "\xEF\xBB\xBF" + std::string(source));
            if (MaxStack == 0) {
                ExecInit();
            }
        } catch (const ScriptAbort&) {
            return "! " + message;
        }
        const ExecMark mark = ExecTakeMark();
        try {
            ExecTopLevel();
        } catch (const ScriptAbort&) {
            ExecRecover(mark);
            return Cp932ToUtf8(printed) + "! " + message;
        }
        return Cp932ToUtf8(printed);
    }

    // The message that ends the source.
    std::string Fail(std::string_view source) {
        const std::string all = Run(source);
        return message.empty() ? "no error: " + all : message;
    }

    // The same behind its position, and what a source prints; each in an interpreter of its own.
    std::string Error(std::string_view source) {
        const std::string text = Fail(source);
        const std::size_t at = text.find("Error ");
        InterpreterExit();
        return at == std::string::npos ? text : text.substr(at + 6);
    }
    std::string Prints(std::string_view source) {
        const std::string text = Run(source);
        InterpreterExit();
        return text;
    }
};

}  // namespace quelmark::test
