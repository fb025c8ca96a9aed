#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Language : public ScriptTest {};

TEST_F(Language, IntegerDivisionByZeroKeepsTheLeftOperand) {
    EXPECT_EQ(Run("print(7 / 0);"), "7");
}
TEST_F(Language, RemainderAndShifts) {
    EXPECT_EQ(Run("print(7 % 2, -7 >> 1, 1 << 33);"), "1 -4 2");
}
TEST_F(Language, LeftOperandDecidesTheType) {
    EXPECT_EQ(Run("print(1 + 2.5, 2.5 + 1, 2 < 2.5);"), "3 3.500000 FALSE");
}
TEST_F(Language, RemainderByZeroIsAnError) {
    EXPECT_EQ(Fail("var a = 0;\nprint(1 % a);"), "test.qms:2:  Error ０で割りました。");
}
TEST_F(Language, ArithmeticOnABooleanIsAnError) {
    EXPECT_EQ(Fail("print(TRUE + 1);"), "test.qms:1:  Error 論理演算の演算子が不正です。");
}
TEST_F(Language, UnassignedVariableIsAnError) {
    EXPECT_EQ(Fail("var a;\n\nprint(a);"), "test.qms:3:  Error 代入されていない変数を参照しました。");
}
TEST_F(Language, SubscriptAtTheCountIsAnError) {
    EXPECT_EQ(Fail("var a[3]; print(a[3]);"), "test.qms:1:  Error 配列の添え字が不正です");
}
TEST_F(Language, NegativeSubscriptIsAnError) {
    EXPECT_EQ(Fail("var a[3]; print(a[-1]);"), "test.qms:1:  Error 配列の添え字が不正です");
}
TEST_F(Language, ArraysOfDifferentSizesAreNotAssigned) {
    EXPECT_EQ(Fail("var a[3], b[4]; b = a;"), "test.qms:1:  Error 大きさの異なる配列は代入できません。");
}
TEST_F(Language, ContinueInForRunsTheStep) {
    EXPECT_EQ(Run("var i; for (i = 0; i < 5; i++) { if (i == 2) continue; print(i); }"), "0134");
}
TEST_F(Language, RecursionReturnsValues) {
    EXPECT_EQ(Run("function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); } print(fib(20));"),
              "6765");
}
TEST_F(Language, EndlessRecursionWithoutArgumentsOverflows) {
    EXPECT_EQ(Fail("function f() { f(); } f();"), "test.qms:1:  Error スタックオーバーフロー！！");
}
TEST_F(Language, StringsJoinAndCompare) {
    EXPECT_EQ(Run("var s = \"abc\"; s = s + 5; print(s, !s, s < \"abd\", \"x\" + 2.5);"),
              "abc5 4 TRUE x2.500000");
}
TEST_F(Language, ObjectCountComesBackAfterAnError) {
    Run("var s = \"a\"; function f(x) { var t = x + \"b\"; return t + 1 + undefined(t); }");
    EXPECT_EQ(message, "test.qms:1:  Error 識別子 undefined は定義されていません");
}
TEST_F(Language, LocalArraysLiveAboveTheFrameAndCallsStillWork) {
    EXPECT_EQ(Run("function sum(a, n) { var s = 0, i; for (i = 0; i < n; i++) s += a[i]; return s; }"
                  "function f(n) { var a[n], i; for (i = 0; i < n; i++) a[i] = i * i; return sum(a, n); }"
                  "print(f(10), f(3));"),
              "285 5");
}
TEST_F(Language, InitialisersMakeArrays) {
    EXPECT_EQ(Run("var a = { 1, 2, 3 }, b = { { 1, 2 }, { 3, 4 } }; print(a[2], b[1][0], sizeof(b), "
                  "sizeof(b[0]));"),
              "3 3 2 2");
}
TEST_F(Language, MethodsAndFunctionsAreTheSameCall) {
    EXPECT_EQ(Run("print(\"abcdef\".substr(2), substr(\"abcdef\", -2), \"abcabc\".search(\"ca\"));"),
              "ab ef 2");
}
TEST_F(Language, ReadingAGlobalBeforeACallThatChangesIt) {
    EXPECT_EQ(Run("var g = 1; function f() { g = 10; return 1; } print(g + f(), g);"), "2 10");
}
TEST_F(Language, WhileDoBreak) {
    EXPECT_EQ(Run("var i = 0; while (TRUE) { i++; if (i > 5) break; } do i--; while (i > 2); print(i);"),
              "2");
}

}  // namespace
}  // namespace quelmark::test
