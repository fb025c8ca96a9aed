// Entering and leaving scripts: handlers called by the host, the break check, recovery, trace.
#include <chrono>
#include <limits>
#include <string>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Host : public ScriptTest {
  protected:
    void TearDown() override {
        SetBreakCheck(nullptr);
        SetTrace(false);
        SetTraceSink(nullptr);
        ScriptTest::TearDown();
    }
};

std::int32_t checks = 0;
std::string trace;

TEST_F(Host, CallsAHandlerAndFindsItsResultOnTheStack) {
    Run("function add(a, b) { var c = a + b; return c; } function none() { }");
    const std::int32_t top = StackPtr;
    StackPushInt(2);
    StackPushInt(3);
    EXPECT_EQ(CallFunction(FunctionFind("add"), 2, StackTop() - 1), RESULT);
    EXPECT_EQ(StackPtr, top + 1);
    EXPECT_EQ(StackTop()->integer, 5);
    StackPop();
    EXPECT_EQ(CallFunction(FunctionFind("none"), 0, StackTop() + 1), NO_RESULT);
    EXPECT_EQ(StackPtr, top);
}

TEST_F(Host, TellsScriptFunctionsFromBuiltIns) {
    Run("function main() { } function ahead();");
    EXPECT_TRUE(IsScriptFunction(FunctionFind("main")));
    EXPECT_FALSE(IsScriptFunction(FunctionFind("print")));
    EXPECT_FALSE(IsScriptFunction(FunctionFind("ahead")));
    EXPECT_EQ(FunctionFind("nosuch"), -1);
}

TEST_F(Host, AnErrorInAHandlerLeavesTheStackAsBeforeTheEvent) {
    Run("var g = \"x\"; function deeper(a) { return a[1] % 2; }"
        "function handler(s) { var a[10]; a[1] = s + g; return deeper(a); }");
    ASSERT_EQ(message, "");
    const std::int32_t top = StackPtr;
    const std::int32_t objects = ObjectCount;
    for (int event = 0; event < 3; ++event) {
        const ExecMark mark = ExecTakeMark();
        try {
            StackPushString("argument");
            CallFunction(FunctionFind("handler"), 1, StackTop());
            FAIL();
        } catch (const ScriptAbort&) {
            ExecRecover(mark);
        }
        EXPECT_EQ(message, "test.qms:1:  Error 演算子が定義されていません。");
        EXPECT_EQ(StackPtr, top);
        EXPECT_EQ(ObjectCount, objects);
        EXPECT_EQ(ExecPosition().file, nullptr);
    }
}

TEST_F(Host, ARecoveryInsideABuiltInKeepsTheOuterScriptRunning) {
    registerMore = [] {
        FunctionRegister(0, "guarded", [](std::int32_t, std::int32_t argc, DataCell* argv) -> std::int32_t {
            const ExecMark mark = ExecTakeMark();
            try {
                CallFunction(argv[0].integer, argc - 1, argv + 1);
                StackRelease(mark.top);
                StackPushBool(1);
            } catch (const ScriptAbort&) {
                ExecRecover(mark);
                StackPushBool(0);
            }
            return RESULT;
        });
    };
    EXPECT_EQ(Run("function bad(n) { var a[3]; a[0] = \"x\"; if (n > 0) bad(n - 1); return a[0] * 2; }\n"
                  "function outer() { var s = \"kept\", ok = guarded(bad, 5); return s + ok; }\n"
                  "print(outer());"),
              "keptFALSE");
}

TEST_F(Host, TheBreakCheckStopsEveryKindOfEndlessScript) {
    SetBreakCheck([] { return true; });
    for (const char* source :
         {"while (TRUE) ;", "for (;1;) ;", "do ; while (1);", "var i; for (i = 0; i < 5; i++) i = 0;",
          "var i = 0; while (i < 10) i = i * 1;", "function f() { } while (1 < 2) f();",
          "var i; for (i = 0; i >= 0; i += 0) ;", "var r = 1.0; while (r > 0.5) r = 1.0;",
          "while (print(\"\").size() == 0) ;"}) {
        const std::string text = Run(source);
        InterpreterExit();
        if (std::string(source).find("size") == std::string::npos) {
            EXPECT_EQ(message, "test.qms:1:  Error 強制終了しました") << source;
        }
    }
}

TEST_F(Host, TheBreakCheckReachesRecursionAndStraightRunsOfCalls) {
    checks = 0;
    SetBreakCheck([] {
        ++checks;
        return false;
    });
    Run("function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); } fib(29);");
    EXPECT_GT(checks, 1);
    std::string source = "function f(n) { var i; for (i = 0; i < n; i++) ; }";
    for (int i = 0; i < 50; ++i) {
        source += "f(200000);";
    }
    InterpreterExit();
    checks = 0;
    Run(source);
    EXPECT_GT(checks, 1);
}

TEST_F(Host, TheBreakCheckIsAskedAtMostEveryFewMilliseconds) {
    checks = 0;
    SetBreakCheck([] {
        ++checks;
        return false;
    });
    const auto start = std::chrono::steady_clock::now();
    Run("var i, n = 0; for (i = 0; i < 3000000; i++) { n = n + 1; n = n - 1; }");
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_GT(checks, 0);
    EXPECT_LE(checks, elapsed.count() / 3 + 2);
}

TEST_F(Host, SlowBuiltInsDoNotDelayTheBreakCheck) {
    checks = 0;
    static int calls;
    calls = 0;
    registerMore = [] {
        FunctionRegister(0, "slow", [](std::int32_t, std::int32_t, DataCell*) -> std::int32_t {
            ++calls;
            const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(5);
            while (std::chrono::steady_clock::now() < until) {
            }
            return NO_RESULT;
        });
    };
    SetBreakCheck([] { return ++checks > 20; });
    Run("var i; for (i = 0; i < 500000; i++) ; while (TRUE) slow();");
    EXPECT_EQ(message, "test.qms:1:  Error 強制終了しました");
    EXPECT_LE(calls, 100);  // a check every few calls
}

TEST_F(Host, TheTraceNamesEachStatement) {
    trace.clear();
    SetTraceSink([](std::string_view text) { trace += text; });
    SetTrace(true);
    Run("var a = 1;\nif (a)\n  a++;");
    SetTrace(false);
    RunMore("a = 5;");
    EXPECT_EQ(trace,
              "EXEC[000000][test.qms:   1] : 3 : 1\n"
              "EXEC[000020][test.qms:   2] : 3 : 11\n"
              "EXEC[000040][test.qms:   3] : 3 : 30\n");
}

TEST_F(Host, TheTraceTellsAnIfWithAnElse) {
    trace.clear();
    SetTraceSink([](std::string_view text) { trace += text; });
    SetTrace(true);
    Run("if (0) ; else if (1) ;");
    SetTrace(false);
    EXPECT_EQ(trace.substr(trace.find(']')),
              "][test.qms:   1] : 3 : 12\nEXEC[000050][test.qms:   1] : 3 : 11\nEXEC[000080][test.qms:   1] "
              ": 3 : 20\n");
}

TEST_F(Host, UsageCountsAreAvailable) {
    Start();
    const std::int32_t functions = FunctionsUsed();
    RunMore("var a, b; function f() { }");
    EXPECT_EQ(GlobalsUsed(), 2);
    EXPECT_EQ(FunctionsUsed(), functions + 1);
    EXPECT_GT(CodeUsed(), 0);
}

TEST_F(Host, AStackTooSmallForTheGlobalsIsReported) {
    sizes.stackCells = 3;
    Start();
    EXPECT_EQ(RunMore("var a, b, c, d;"), "! Error スタックオーバーフロー！！");
}

TEST_F(Host, SizesBeyondReasonAreCutOrRefused) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    sizes = {.codeBytes = 1 << 20, .globals = most, .functions = most, .stackCells = 1 << 20};
    EXPECT_EQ(Run("var a = 1; function f() { return a; } print(f());"), "1");
    InterpreterExit();
    sizes = {.codeBytes = -5, .globals = -5, .functions = -5, .stackCells = -5};
    EXPECT_EQ(Run("var a;"), "! test.qms:1:  Fatal 識別子管理バッファがオーバーフローしました");
    EXPECT_THROW(ExecInit(), ScriptAbort);
    EXPECT_EQ(message, "Error スタック用バッファが確保できません。！！");
}

TEST_F(Host, TheInterpreterCanBeStartedAgain) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Run("var s = \"again\"; function f() { return s; } print(f());"), "again");
        InterpreterExit();
        EXPECT_EQ(ObjectCount, 0);
    }
}

TEST_F(Host, ACompiledFileIsReadFromTheDisk) {
    Start();
    EXPECT_THROW(CompileFile("/no/such.qms"), ScriptAbort);
    EXPECT_EQ(message, "Error ファイル /no/such.qms がオープンできません。");
    EXPECT_EQ(RunMore("print(1);"), "1");
}

}  // namespace
}  // namespace quelmark::test
