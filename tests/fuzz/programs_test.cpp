// Random programs, most of them wrong: whatever happens, nothing crashes or hangs, and no object is left
// over.
#include <random>
#include <string>

#include "ML/FUNC.h"
#include "ML/STACK.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

constexpr const char* TOKENS[] = {
    "a",        "b",      "c",        "s",      "t",       "f",        "g",       "(",     ")",      "{",
    "}",        "[",      "]",        "+",      "-",       "*",        "/",       "%",     ".",      "->",
    "&",        "|",      "^",        "!",      "==",      "!=",       "<",       ">",     "<=",     ">=",
    "<<",       ">>",     "=",        "+=",     "-=",      "&=",       "++",      "--",    ",",      ";",
    ";",        ";",      "var",      "const",  "private", "if",       "else",    "while", "do",     "for",
    "function", "return", "break",    "0",      "1",       "2",        "3",       "-1",    "2.5",    "TRUE",
    "\"x\"",    "'q'",    "INT",      "print(", "substr(", "call(",    "f(",      "g(",    "sizeof", "a[0]",
    "a[1] = 2", "a[b]",   "tostring", "()",     "( 1 )",   "continue", "typeof(",
};
constexpr const char* STATEMENTS[] = {
    "a = a + 1;",
    "b = \"t\" + a;",
    "s = s + b + \"-\";",
    "s += \"q\";",
    "c[1] = s;",
    "c[2] = c[1] + b;",
    "c[a] = c;",
    "t = c;",
    "if (a < 3) a++; else b = a;",
    "for (a = 0; a < 4; a++) s = s + a;",
    "while (a < 5) { a += 2; if (a == 4) break; }",
    "g = f(a, s);",
    "f(s);",
    "b = call(f, c, s);",
    "return s;",
    "t = f(f(1, s), b);",
    "{ var k[2]; k[0] = s; t = k; }",
    "c[0] = t[1];",
    "do a--; while (a > 0);",
    "s = tostring(a, 5).substr(2);",
    "f(1, 2, 3, \"x\", \"y\", s, t, c);",
    "b = -a; b = !a; b = a . s;",
    "t = {s, {a, b}};",
    "b = s == \"x\" | TRUE;",
};

class RandomProgram : public ScriptTest {
  protected:
    std::mt19937 random{7};

    void TearDown() override {
        SetBreakCheck(nullptr);
        ScriptTest::TearDown();
    }

    void Survive(const std::string& source) {
        sizes = {.codeBytes = 65536, .globals = 64, .functions = 64, .stackCells = 2000};
        SetBreakCheck([] { return true; });
        Run(source);
        if (MaxStack > 0) {
            const std::int32_t handler = FunctionFind("f");
            const ExecMark mark = ExecTakeMark();
            try {
                StackPushInt(1);
                CallFunction(handler < 0 ? FunctionFind("print") : handler, 1, StackTop());
            } catch (const ScriptAbort&) {
            }
            ExecRecover(mark);
            EXPECT_EQ(StackTop(), mark.top);
        }
        InterpreterExit();
        ASSERT_EQ(ObjectCount, 0) << source;
    }
};

TEST_F(RandomProgram, OfTokensSurvives) {
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        std::string source =
            round % 2 == 0 ? "var a = 1, b = 2, c[3], s = \"s\"; function f(x) { return x; } " : "";
        for (auto count = random() % 40; count > 0; --count) {
            source += TOKENS[random() % std::size(TOKENS)];
            source += ' ';
        }
        Survive(source);
    }
}

TEST_F(RandomProgram, OfStatementsSurvives) {
    for (int round = 0; round < 4000 && !HasFatalFailure(); ++round) {
        std::string body;
        for (auto count = random() % 12; count > 0; --count) {
            body += STATEMENTS[random() % std::size(STATEMENTS)];
        }
        const std::string variables = "var a = 1, b = 2, c[3], s = \"s\", t, g;";
        Survive(round % 2 == 0
                    ? "function f(x, y) { return x; }" + variables + body + body
                    : "var t, g; function f(x, s) { var a = 1, b = 2, c[3]; if (typeof(x) == INT) return s;" +
                          body + "} f(\"go\", \"s\"); f(call(f, 1, \"y\"), \"z\");");
    }
}

}  // namespace
}  // namespace quelmark::test
