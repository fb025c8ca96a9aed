// Running scripts: operators, assignment, arrays, control flow, calls, messages and positions.
#include <string>

#include "ML/FUNC.h"
#include "ML/STACK.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Executor : public ScriptTest {
  protected:
    void TearDown() override {
        // Whatever a test ran, no object may be left over but the compiled literals.
        ScriptTest::TearDown();
        EXPECT_EQ(ObjectCount, 0);
    }
};

// ---- operators ----

TEST_F(Executor, IntegerArithmeticWraps) {
    EXPECT_EQ(Prints("var m = 2147483647, n = -2147483648; print(m + 1, n - 1, m * 2, -n, n / -1, n % -1);"),
              "-2147483648 2147483647 -2 -2147483648 -2147483648 0");
    EXPECT_EQ(Prints("var m = 2147483647; m++; print(m); m--; print(\"\", m);"), "-2147483648 2147483647");
}
TEST_F(Executor, IntegerDivisionByZeroKeepsTheLeftOperand) {
    EXPECT_EQ(Prints("var z = 0, a = 7; print(7 / 0, a / z); a /= z; print(\"\", a);"), "7 7 7");
}
TEST_F(Executor, RemainderByZeroIsAnError) {
    EXPECT_EQ(Error("print(1 % 0);"), "０で割りました。");
    EXPECT_EQ(Error("var z = 0, a = 3; a = a % z;"), "０で割りました。");
    EXPECT_EQ(Error("print(7 % 0.5);"), "０で割りました。");
}
TEST_F(Executor, ShiftsCountModulo32) {
    EXPECT_EQ(Prints("var a = 1, n = 33; print(1 << 33, a << n, -7 >> 1, a << -1, -8 >> 35);"),
              "2 2 -4 -2147483648 -1");
}
TEST_F(Executor, BitOperatorsOfIntegers) {
    EXPECT_EQ(Prints("var a = 12, b = 10; print(a & b, a | b, a ^ b, !a, !0, -a);"), "8 14 6 0 1 -12");
}
TEST_F(Executor, TheLeftOperandDecidesTheTypeOfNumbers) {
    EXPECT_EQ(
        Prints("var i = 1, r = 2.5; print(i + r, r + i, i < r, 2 < r, r > 2, 7 / 2.9, 2.0 * i, 2 * r);"),
        "3 3.500000 TRUE FALSE TRUE 3 2.000000 4");
}
TEST_F(Executor, ARealToTheRightOfAnIntIsTruncated) {
    EXPECT_EQ(Prints("print(10 - 2.9, 1 + 1e30, 5 & 3.7, 1 << 4.9);"), "8 -2147483647 1 16");
}
TEST_F(Executor, ABooleanToTheRightOfANumberIsANumber) {
    EXPECT_EQ(Prints("var t = TRUE; print(1 + t, 2.5 + t, 1 == t, 0.5 < t);"), "2 3.500000 TRUE TRUE");
}
TEST_F(Executor, RealsFollowTheFloatingPointRules) {
    EXPECT_EQ(
        Prints("var z = 0.0, n; print(1.0 / z, -1.0 / z); n = z / z; print(\"\", n == n, n != n, n < 1.0);"),
        "inf -inf FALSE TRUE FALSE");
}
TEST_F(Executor, ConditionsOnNanAreNotInverted) {
    EXPECT_EQ(
        Prints(
            "var n = 0.0 / 0.0; if (n < 1.0) print(1); else print(2); while (n >= 1.0) print(3); print(4);"),
        "24");
}
TEST_F(Executor, BooleanOperators) {
    EXPECT_EQ(
        Prints("var t = TRUE, f = FALSE; print(t & 5, t & f, f | 2, f | f, t ^ 3, !t, t == 1, t != f);"),
        "TRUE FALSE TRUE FALSE TRUE FALSE TRUE TRUE");
}
TEST_F(Executor, OperatorErrorsOfEachType) {
    EXPECT_EQ(Error("print(TRUE + 1);"), "論理演算の演算子が不正です。");
    EXPECT_EQ(Error("print(TRUE < 1);"), "論理演算の演算子が不正です。");
    EXPECT_EQ(Error("print(-TRUE);"), "論理演算の演算子が不正です。");
    EXPECT_EQ(Error("print(TRUE & 1.5);"), "論理演算の型が不正です。");
    EXPECT_EQ(Error("print(TRUE & \"a\");"), "論理演算の型が不正です。");
    EXPECT_EQ(Error("print(5 + \"a\");"), "整数演算の型が不正です。");
    EXPECT_EQ(Error("print(5 == INT);"), "整数演算の型が不正です。");
    EXPECT_EQ(Error("print(5 . 1);"), "整数演算の演算子が不正です。");
    EXPECT_EQ(Error("print(2.5 + \"a\");"), "実数演算の型が不正です。");
    EXPECT_EQ(Error("print(2.5 % 2);"), "実数演算の演算子が不正です。");
    EXPECT_EQ(Error("print(!2.5);"), "実数演算の演算子が不正です。");
    EXPECT_EQ(Error("print(2.5 & 1);"), "実数演算の演算子が不正です。");
    EXPECT_EQ(Error("var r = 2.5; r = r << 1;"), "実数演算の演算子が不正です。");
    EXPECT_EQ(Error("print(INT + INT);"), "演算の型が不正です。");
    EXPECT_EQ(Error("print(print < print);"), "演算の型が不正です。");
    EXPECT_EQ(Error("var a[2]; print(a + 1);"), "演算の型が不正です。");
    EXPECT_EQ(Error("var a[2]; a++;"), "演算の型が不正です。");
    EXPECT_EQ(Error("print(\"a\" * 2);"), "演算子が定義されていません。");
    EXPECT_EQ(Error("var s = \"a\"; s++;"), "演算子が定義されていません。");
    EXPECT_EQ(Error("var s = \"a\"; s -= 1;"), "演算子が定義されていません。");
    EXPECT_EQ(Error("print(\"a\" < 5);"), "比較演算の型が違います。(String)");
}
TEST_F(Executor, TypesFunctionsAndArraysCompareByPayload) {
    EXPECT_EQ(Prints("var a[2], b; b = a; print(INT == INT, INT != REAL, print == print, a == b, typeof(a) "
                     "== ARRAY);"),
              "TRUE TRUE TRUE TRUE TRUE");
}
TEST_F(Executor, IncrementOfARealAddsOne) {
    EXPECT_EQ(Prints("var r = 1.5; r++; r++; r--; print(r);"), "2.500000");
}
TEST_F(Executor, CompoundAssignments) {
    EXPECT_EQ(Prints("var a = 7; a += 3; a -= 2; a *= 4; a /= 3; print(a); a &= 6; print(\"\", a); a |= 9; "
                     "print(\"\", a);"),
              "10 2 11");
    EXPECT_EQ(Prints("var a = 1; a += 2.9; print(a); var r = 1.0; r += 2; print(\"\", r);"), "3 3.000000");
}
TEST_F(Executor, StringsBuiltFromPartsAreTheSameAsStepByStep) {
    EXPECT_EQ(Prints("var s = \"a\", t; t = s; s = s + \"b\" + 1 + \"c\" + 2.5 + s; print(s, t);"),
              "ab1c2.500000a a");
    EXPECT_EQ(Prints("var s = \"a\"; s = s + s + \"-\" + s; print(s); s += s; print(\"\", s);"),
              "aa-a aa-aaa-a");
    EXPECT_EQ(Prints("function f(s) { return s + \"x\" + s + TRUE; } print(f(\"q\"), f(\"\"));"),
              "qxqTRUE xTRUE");
}
TEST_F(Executor, AFailingPartLeavesTheTextUnchanged) {
    Start();
    EXPECT_EQ(RunMore("var s = \"a\", u; s = s + \"b\" + u + \"c\";"),
              "! test.qms:1:  Error 代入されていない変数を参照しました。");
    EXPECT_EQ(RunMore("print(s);"), "a");
}
TEST_F(Executor, AppendingDoesNotChangeOtherReferences) {
    EXPECT_EQ(Prints("var s = \"a\", t[1]; t[0] = s; s += \"b\"; s += \"c\"; print(s, t[0]);"), "abc a");
    EXPECT_EQ(Prints("function f() { var s = \"lit\"; s += \"x\"; return s; } print(f(), f());"),
              "litx litx");
}

// ---- variables, assignment, arrays ----

TEST_F(Executor, ReadingAnUnassignedVariableIsAnError) {
    const char* const sources[] = {
        "var a; print(a);",
        "var a, b; b = a;",
        "var a; if (a) ;",
        "var a; a++;",
        "var a; a += 1;",
        "var a; print(a + 1);",
        "var a; print(1 + a);",
        "var a; print(-a);",
        "var a[2]; print(a[0]);",
        "var a; a[0] = 1;",
        "var a; while (a) ;",
        "var a, b[3]; b[a] = 1;",
        "function f(x) { print(x); } f();",
        "function f(x) { return x; } f();",
        "var a; print(a.tostring());",
        "var a; print(1 < a);",
        "var a; if (a < 1) ;",
        "var a; for (a++; 0;) ;",
        "var g; function f() { return g; } f();",
    };
    for (const char* source : sources) {
        EXPECT_EQ(Error(source), "代入されていない変数を参照しました。") << source;
    }
}
TEST_F(Executor, SubscriptErrors) {
    EXPECT_EQ(Error("var a[3]; print(a[3]);"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a[3], i = -1; a[i] = 1;"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a[3]; a[-1] = 1;"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a[0]; a[0] = 1;"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a[3]; a[0] = 1; print(a[0][0]);"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a = 5; print(a[0]);"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a = \"text\"; print(a[0]);"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var a[3]; a[1.0] = 1;"), "配列の添え字の型が不正です");
    EXPECT_EQ(Error("var a[3]; a[\"1\"] = 1;"), "配列の添え字の型が不正です");
    EXPECT_EQ(Error("var a[3]; print(a[INT]);"), "配列の添え字の型が不正です");
    EXPECT_EQ(Error("var a[70000 - 5000]; a[70000] = 1;"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var g[3]; function f() { return g[3]; } f();"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var g[3]; function f(i) { g[i] = 1; } f(-1);"), "配列の添え字が不正です");
    EXPECT_EQ(Error("var g[3][2]; function f(i) { g[1][i] = 1; } f(2);"), "配列の添え字が不正です");
}
TEST_F(Executor, ABooleanIsASubscript) {
    EXPECT_EQ(Prints("var a[2]; a[FALSE] = 5; a[TRUE] = 6; print(a[0], a[1]);"), "5 6");
}
TEST_F(Executor, ArraySizeErrors) {
    EXPECT_EQ(Error("var a[-1];"), "配列のサイズが不正です");
    EXPECT_EQ(Error("var a[65536];"), "配列のサイズが不正です");
    EXPECT_EQ(Error("var a[2.5];"), "配列のサイズが不正です");
    EXPECT_EQ(Error("var a[TRUE];"), "配列のサイズが不正です");
    EXPECT_EQ(Error("var a[2][-1];"), "配列のサイズが不正です");
}
TEST_F(Executor, TheLargestArrayHas65535Elements) {
    EXPECT_EQ(Prints("var a[65535]; a[65534] = 7; a[40000] = 8; print(sizeof(a), a[65534], a[40000]);"),
              "65535 7 8");
}
TEST_F(Executor, AnArrayLargerThanTheStackOverflows) {
    sizes.stackCells = 1000;
    EXPECT_EQ(Error("var a[900], b[900];"), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("var a[30][30][30];"), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("function f() { var a[100]; a[0] = \"x\"; f(); } f();"), "スタックオーバーフロー！！");
}
TEST_F(Executor, AnArrayDeclaredTwiceIsAnError) {
    EXPECT_EQ(Error("var i = 0; while (i < 2) { var a[3]; i++; }"), "配列を２度宣言しようとしました。");
    EXPECT_EQ(Error("function f() { var i; for (i = 0; i < 2; i++) var a[3]; } f();"),
              "配列を２度宣言しようとしました。");
}
TEST_F(Executor, AnArrayOfAFunctionIsNewInEveryCall) {
    EXPECT_EQ(
        Prints("function f(x) { var a[2]; a[0] = x; if (x > 0) f(x - 1); return a[0]; } print(f(5), f(3));"),
        "5 3");
}
TEST_F(Executor, ArraysAssignElementByElement) {
    EXPECT_EQ(Prints("var a[2], b[2]; a[0] = 1; a[1] = \"s\"; b = a; a[0] = 9; print(b[0], b[1], a[0]);"),
              "1 s 9");
    EXPECT_EQ(Prints("var a[2][2], b[2][2]; a[1][0] = 5; b = a; a[1][0] = 6; print(b[1][0]);"), "5");
}
TEST_F(Executor, AnArrayIntoAPlainVariableIsAReference) {
    EXPECT_EQ(Prints("var a[2], b; b = a; b[1] = 4; print(a[1]); b = 3; print(\"\", b);"), "4 3");
}
TEST_F(Executor, ArraysOfDifferentSizesAreNotAssigned) {
    EXPECT_EQ(Error("var a[3], b[4]; b = a;"), "大きさの異なる配列は代入できません。");
    EXPECT_EQ(Error("var a[2][3], b[2][4]; b = a;"), "大きさの異なる配列は代入できません。");
}
TEST_F(Executor, AnArrayPassedToAFunctionIsItsCallersArray) {
    EXPECT_EQ(
        Prints("function set(x, i, v) { x[i] = v; } var a[2]; set(a, 0, \"q\"); print(a[0], sizeof(a));"),
        "q 2");
}
TEST_F(Executor, AnArrayThatHoldsItselfCanNotBeCopiedForEver) {
    EXPECT_EQ(Error("var a[1], b[1]; a[0] = a; b[0] = b; b = a;"), "スタックオーバーフロー！！");
}
TEST_F(Executor, AnArrayThatOutlivedItsFunctionCannotBeUsed) {
    EXPECT_EQ(Error("var g; function f() { var a[3]; a[0] = 1; g = a; } f(); print(g[0]);"),
              "配列の添え字が不正です");
    EXPECT_EQ(Error("function f() { var a[3]; a[0] = 1; return a; } var g = f(); g[2] = 1;"),
              "配列の添え字が不正です");
    EXPECT_EQ(Error("function f() { var a[3]; return a; } var g = f(), h[3]; h = g;"),
              "配列の添え字が不正です");
    EXPECT_EQ(Error("function m(a, b, c, d, e) { } var g; function f() { var a[2]; a[0] = 1; g = a; }"
                    "f(); m(1, 2, 3, 4, g[0]);"),
              "配列の添え字が不正です");
}
TEST_F(Executor, LocalArraysAreReleasedWithTheirFrame) {
    EXPECT_EQ(Prints("function f() { var a[3]; a[1] = \"kept\" + 1; return 0; } var n = ObjectCount(); f(); "
                     "print(ObjectCount() - n);"),
              "0");
}
TEST_F(Executor, CallsAfterLocalArraysLeaveThemAlone) {
    EXPECT_EQ(Prints("function id(x) { var t = x; return t; }"
                     "function f(n) { var a[n], i; for (i = 0; i < n; i++) a[i] = \"\" + id(i); "
                     "var b[2]; b[0] = id(a[1]); b[1] = id(\"z\") + id(a[2]).substr(1); return a[0] + a[n - "
                     "1] + b[0] + b[1]; }"
                     "print(f(3), f(5));"),
              "021z2 041z2");
}
TEST_F(Executor, GlobalArraysDeclaredAtTheTopLevelStay) {
    Start();
    EXPECT_EQ(RunMore("var a[3]; a[1] = \"one\"; function get(i) { return a[i]; } print(get(1), a[1]);"),
              "one one");
    EXPECT_EQ(RunMore("var more = 5, b[2], c; b[0] = a; c = a; print(get(1), b[0][1], c[1], more);"),
              "one one one 5");
    EXPECT_EQ(
        RunMore(
            "var d = 1, e = 2, f = 3, k[2][2]; k[1][1] = 4; print(a[1], b[0][1], more, d, e, f, k[1][1]);"),
        "one one 5 1 2 3 4");
}

// ---- control ----

TEST_F(Executor, ConditionsAreBooleanOrInt) {
    EXPECT_EQ(Prints("if (2) print(1); if (0) print(2); if (TRUE) print(3);"), "13");
    EXPECT_EQ(Error("if (1.0) ;"), "条件式が不正です");
    EXPECT_EQ(Error("if (\"a\") ;"), "条件式が不正です");
    EXPECT_EQ(Error("while (INT) ;"), "条件式が不正です");
    EXPECT_EQ(Error("var a[2]; do ; while (a);"), "条件式が不正です");
}
TEST_F(Executor, LoopsOfAllKinds) {
    EXPECT_EQ(Prints("var i, s = \"\"; for (i = 0; i < 3; i++) s += i; while (i > 0) { i--; s += i; } do "
                     "i++; while (i < 5); print(s, i);"),
              "012210 5");
    EXPECT_EQ(Prints("var i; for (i = 10; i > 0; i -= 3) print(i); for (i = 0; i <= 4; i += 2) print(i);"),
              "10741024");
    EXPECT_EQ(
        Prints(
            "var i, k = 4, n = 9; for (i = 1; i <= n; i += k) print(i); for (i = 5; i >= 3; i--) print(i);"),
        "159543");
    EXPECT_EQ(Prints("var r; for (r = 0.0; r < 1.0; r += 0.25) print(r < 0.5);"), "TRUETRUEFALSEFALSE");
    EXPECT_EQ(Prints("var r; for (r = 0.0; r < 3; r++) print(r);"), "0.0000001.0000002.000000");
    EXPECT_EQ(Prints("var r = 2.5, i; for (i = 0; i < r; i++) print(i);"), "01");
}
TEST_F(Executor, ALoopAtTheEndOfTheIntegersWraps) {
    EXPECT_EQ(Prints("var i, n = 0; for (i = 2147483645; i > 0; i++) n++; print(n, i);"), "3 -2147483648");
}
TEST_F(Executor, ACountedLoopSeesChangesOfItsVariableAndLimit) {
    EXPECT_EQ(Prints("var i, n = 5; for (i = 0; i < n; i++) { if (i == 1) { n = 3; } print(i); }"), "012");
    EXPECT_EQ(Prints("var i; for (i = 0; i < 9; i++) { i += 3; print(i); }"), "3711");
}
TEST_F(Executor, BreakAndContinueBelongToTheInnermostLoop) {
    EXPECT_EQ(Prints("var i, k; for (i = 0; i < 3; i++) { for (k = 0; k < 9; k++) { if (k == i) break; if (k "
                     "== 0) continue; print(k); } print(\":\"); }"),
              "::1:");
    EXPECT_EQ(Prints("var i = 0; do { i++; if (i < 3) continue; break; } while (TRUE); print(i);"), "3");
}
TEST_F(Executor, BreakAndContinueOutsideALoopEndTheFunctionWithoutAResult) {
    EXPECT_EQ(
        Prints("function f() { print(1); break; print(2); } function g() { continue; } f(); g(); print(3);"),
        "13");
    EXPECT_EQ(Error("function f() { break; } var a = f();"), "代入されていない変数を参照しました。");
}
TEST_F(Executor, BreakContinueAndReturnHaveNoEffectAtTheTopLevel) {
    EXPECT_EQ(Prints("break; print(1); continue; print(2); return; print(3); return 5; print(4);"), "1234");
}
TEST_F(Executor, BreakContinueAndReturnEndTheOutermostStatementOfTheTopLevel) {
    EXPECT_EQ(Prints("{ { return 5; } print(1); } print(2);"), "2");
    EXPECT_EQ(Prints("while (TRUE) { return; } print(3);"), "3");
    EXPECT_EQ(Prints("if (TRUE) { break; print(1); } else print(4); print(2);"), "2");
    EXPECT_EQ(Prints("{ continue; print(1); } print(2);"), "2");
    EXPECT_EQ(Prints("var i, j; for (i = 0; i < 3; i++) for (j = 0; TRUE; { j++; if (j > 1) return i; }) "
                     "print(j); print(i);"),
              "010");
}
TEST_F(Executor, EmptyFunctionsAndBodiesRun) {
    EXPECT_EQ(Prints("function f() { } function g() ; f(); while (0) ; print(1);"), "1");
}

// ---- calls ----

TEST_F(Executor, SurplusArgumentsBecomeTheFirstValuesOfFurtherLocals) {
    EXPECT_EQ(Prints("function f(a) { var b, c; return b + c; } print(f(1, 2, 3));"), "5");
    EXPECT_EQ(Prints("var n = ObjectCount(); function f(a) { return a; } print(f(1, \"x\", \"y\" + 1, 3)); "
                     "print(\"\", ObjectCount() - n);"),
              "1 1");  // the empty text being printed
}
TEST_F(Executor, MissingArgumentsAreUnassigned) {
    EXPECT_EQ(Prints("function f(a, b) { if (a) return 1; return b; } print(f(1));"), "1");
    EXPECT_EQ(Error("function f(a, b) { return b; } print(f(1));"), "代入されていない変数を参照しました。");
}
TEST_F(Executor, ACallWithoutAResultIsNoOperand) {
    for (const char* use : {"print(f());", "var a = f();", "if (f()) ;", "print(1 + f());", "print(-f());",
                            "function g() { return f(); } g();", "var a[2]; a[f()] = 1;",
                            "var a[2]; a[0] = f();", "while (f()) ;", "call(f).tostring();"}) {
        EXPECT_EQ(Error(std::string("function f() { return; } ") + use),
                  "代入されていない変数を参照しました。")
            << use;
    }
    EXPECT_EQ(Error("var a = print(1);"), "代入されていない変数を参照しました。");
    EXPECT_EQ(Prints("function f() { return; } f(); print(2);"), "2");
}
TEST_F(Executor, AVariableIsReadBeforeACallToItsRightChangesIt) {
    EXPECT_EQ(Prints("var g = 1; function f() { g = 10; return 1; } print(g + f(), g);"), "2 10");
    EXPECT_EQ(Prints("var g = 1; function f() { g = 10; return 1; } g += f(); print(g);"), "2");
    EXPECT_EQ(
        Prints("var g = 1; function f() { g = 10; return 1; } function h() { return g + f(); } print(h());"),
        "2");
    EXPECT_EQ(Prints("var g = 0, a[3]; function f() { g = 2; return 7; } a[g] = f(); print(a[0]);"), "7");
    EXPECT_EQ(Prints("var g = \"a\"; function f() { g = \"b\"; return 1; } print(g + \"-\" + f() + g);"),
              "a-1b");
    EXPECT_EQ(Prints("var g = 1; function f() { g = 5; return 2; } if (g < f()) print(g); "), "5");
}
TEST_F(Executor, MethodsAndFunctionsAreTheSameCall) {
    EXPECT_EQ(Prints("function twice(x) { return x * 2; } print(4.twice(), twice(4), \"ab\".substr(1), "
                     "substr(\"ab\", 1));"),
              "8 8 a a");
}
TEST_F(Executor, RecursionIsLimitedByAMessageNotByACrash) {
    sizes.stackCells = 10000000;
    for (const char* source : {
             "function f() { f(); } f();",
             "function f(a) { return f(a + 1) + 1; } f(1);",
             "function f() { call(f); } f();",
             "function f() { return \"a\" + call(f); } f();",
             "function f(a, b) { call(a, b, a); } call(f, f, f);",
         }) {
        EXPECT_EQ(Error(source), "スタックオーバーフロー！！") << source;
    }
    std::string source = "print(call(call";
    for (int i = 0; i < 20000; ++i) {
        source += ", call";
    }
    EXPECT_EQ(Error(source + "));"), "スタックオーバーフロー！！");
}
TEST_F(Executor, FiftyThousandCallsDeepIsNoProblem) {
    sizes.stackCells = 1000000;
    EXPECT_EQ(Prints("function f(n) { if (n == 0) return 0; return f(n - 1) + 1; } print(f(50000));"),
              "50000");
}
TEST_F(Executor, ASmallStackOverflowsWithAMessage) {
    sizes.stackCells = 50;
    EXPECT_EQ(Error("function f(n) { var a, b, c; return f(n + 1); } f(0);"), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("function f(n) { var a[5]; abs(n); sizeof(a); return f(n + 1); } f(0);"),
              "スタックオーバーフロー！！");
}

// ---- references and positions ----

TEST_F(Executor, ObjectsAreReleasedWhateverHappensToThem) {
    EXPECT_EQ(Prints("function noise(s) { var t = s + \"x\", a[3], u; a[0] = t; a[1] = a[0] + t; u = a; t = "
                     "5; substr(u[1], 1);"
                     " if (u[1] == \"\") return 1; print(\"\"); \"text\" + 5; return u[1]; }"
                     "var n = ObjectCount(), i; for (i = 0; i < 50; i++) noise(\"q\"); "
                     "noise(\"r\").substr(1); print(ObjectCount() - n);"),
              "0");
}
TEST_F(Executor, ObjectCountComesBackAfterEveryKindOfError) {
    const char* const sources[] = {
        "var s = \"a\" + 1; print(s * 2);",
        "function f(x) { var y = x + \"b\", a[3]; a[1] = y; return y + (5 + y); } f(\"q\" + 1);",
        "function f(x) { return substr(x + \"b\", x + \"c\"); } f(\"q\");",
        "function no(x) { } function f(x) { x = x + \"y\" + no(x); } f(\"q\");",
        "function f(x) { var a[2]; a[0] = x + 1; f(a[0]); } f(\"q\");",
        "var a[2]; a[0] = \"x\" + 1; a[\"y\" + 2] = a[0] + 3;",
        "print(\"a\" + 1, \"b\" + 2, 5 + \"c\");",
        "var s = \"q\"; while (s + \"x\") ;",
        "function f(a) { return a . 1; } call(f, \"t\" + 1);",
    };
    for (const char* source : sources) {
        Start();
        ExecInit();
        const std::int32_t before = ObjectCount;
        RunMore(source);
        EXPECT_NE(message, "") << source;
        InterpreterExit();
        EXPECT_EQ(ObjectCount, before) << source;
    }
}
TEST_F(Executor, GlobalsSurviveAnError) {
    Start();
    RunMore("var s = \"kept\", n = 1; function f() { n = 2; print(5 + s); } f();");
    EXPECT_NE(message, "");
    EXPECT_EQ(RunMore("print(s, n);"), "kept 2");
}
TEST_F(Executor, ErrorsNameTheStatementBeingRun) {
    EXPECT_EQ(Fail("var a;\n\nif (TRUE)\n  print(\n a);"),
              "test.qms:4:  Error 代入されていない変数を参照しました。");
    EXPECT_EQ(Fail("var a,\n b =\n 5 + \"x\";"), "test.qms:1:  Error 整数演算の型が不正です。");
    EXPECT_EQ(Fail("function f()\n{\n  var x = 1;\n  return x % 0;\n}\n\nf();"),
              "test.qms:4:  Error ０で割りました。");
}
TEST_F(Executor, ABuiltInsErrorNamesTheStatementThatCalls) {
    EXPECT_EQ(Fail("print(1);\n\nsin(\n1);"), "test.qms:3:  Error 1 番目の引数の型が不正です。( sin )");
}
TEST_F(Executor, AfterACallReturnsThePositionIsTheCallersAgain) {
    EXPECT_EQ(Fail("function f() {\n return 1;\n}\nprint(f(), f() + \"x\",\n f());"),
              "test.qms:4:  Error 整数演算の型が不正です。");
    EXPECT_EQ(Fail("function f() {\n print(\"\");\n}\n\nvar a = f();"),
              "test.qms:5:  Error 代入されていない変数を参照しました。");
}
TEST_F(Executor, ALoopsConditionAndStepFailAtTheLoopsLine) {
    EXPECT_EQ(Fail("var s = 0;\nwhile (s != \"x\")\n{\n  s++;\n}"),
              "test.qms:2:  Error 整数演算の型が不正です。");
    EXPECT_EQ(Fail("var i;\nfor (i = 0; i < 3;\n i += \"x\")\n{\n\n  ;\n}"),
              "test.qms:2:  Error 整数演算の型が不正です。");
    EXPECT_EQ(Fail("var i = 0;\ndo\n i++;\nwhile (i % 0);"), "test.qms:2:  Error ０で割りました。");
}
TEST_F(Executor, EveryFileHasItsOwnPositions) {
    Start();
    CompileText("first.qms", "function f(a)\n{\n return a % 0; }");
    CompileText("second.qms", "\n\nf(1);");
    ExecInit();
    const ExecMark mark = ExecTakeMark();
    EXPECT_THROW(ExecTopLevel(), ScriptAbort);
    EXPECT_EQ(message, "first.qms:3:  Error ０で割りました。");
    ExecRecover(mark);
}

}  // namespace
}  // namespace quelmark::test
