// The parser's messages, and what the grammar accepts.
#include <string>

#include "script_fixture.h"

namespace quelmark::test {
namespace {

using Parser = ScriptTest;

TEST_F(Parser, AStatementThatBeginsWithAVariableMustAssign) {
    EXPECT_EQ(Error("var a; a;"), "代入演算子が必要です");
    EXPECT_EQ(Error("var a; a + 1;"), "代入演算子が必要です");
    EXPECT_EQ(Error("var a; a.print();"), "代入演算子が必要です");
    EXPECT_EQ(Error("var a; a ^= 1;"), "代入演算子が必要です");
    EXPECT_EQ(Error("var a; a %= 1;"), "代入演算子が必要です");
}
TEST_F(Parser, AStatementThatBeginsWithAFunctionIsAnExpression) {
    EXPECT_EQ(Prints("print(1); 5; print(2);"), "12");
}
TEST_F(Parser, ANameWithParenthesesIsACallEvenWhenAVariableHasIt) {
    EXPECT_EQ(Prints("function f(x) { return x; } var f = 3; print(f, f(4)); f(5);"), "3 4");
}
TEST_F(Parser, AFunctionMayNotBeDeclaredInAFunction) {
    EXPECT_EQ(Error("function f() { function g() { } }"), "関数宣言の位置が不正です");
    EXPECT_EQ(Error("function f() { private function g() { } }"), "関数宣言の位置が不正です");
}
TEST_F(Parser, AFunctionMayNotBeDeclaredInsideAStatement) {
    EXPECT_EQ(Error("{ function g() { } }"), "関数宣言の位置が不正です");
    EXPECT_EQ(Error("if (TRUE) function g() { }"), "関数宣言の位置が不正です");
    EXPECT_EQ(Error("while (TRUE) { private function g() { } }"), "関数宣言の位置が不正です");
}
TEST_F(Parser, PrivateWithoutAFunctionIsMisplaced) {
    EXPECT_EQ(Error("private var a;"), "関数宣言の位置が不正です");
}
TEST_F(Parser, ConstantsAreNotAssigned) {
    EXPECT_EQ(Error("var const c = 1; c = 2;"), "大域定数 c に代入しようとしました。");
    EXPECT_EQ(Error("var const c = 1; c++;"), "大域定数 c に代入しようとしました。");
    EXPECT_EQ(Error("var const c[2]; c[0] = 2;"), "大域定数 c に代入しようとしました。");
    EXPECT_EQ(Error("function f() { var const c = 1; c += 2; }"), "局所定数 c に代入しようとしました。");
    EXPECT_EQ(Error("var const c = 1; function f() { c = 2; }"), "大域定数 c に代入しようとしました。");
}
TEST_F(Parser, ModifiersCarryOverToTheDeclaratorsBehind) {
    EXPECT_EQ(Error("var a = 1, const b = 2, c = 3; a = 4; c = 5;"), "大域定数 c に代入しようとしました。");
    Start();
    EXPECT_EQ(RunMore("var private a = 1, b = 2;"), "");
    EXPECT_EQ(RunMore("print(b);"), "! test.qms:1:  Error 識別子 b は定義されていません");
}
TEST_F(Parser, UnknownNamesAreReported) {
    EXPECT_EQ(Error("print(nothing);"), "識別子 nothing は定義されていません");
    EXPECT_EQ(Error("nothing(1);"), "識別子 nothing は定義されていません");
    EXPECT_EQ(Error("print(1.nothing());"), "識別子 nothing は定義されていません");
    EXPECT_EQ(Error("nothing = 1;"), "識別子 nothing は定義されていません");
    EXPECT_EQ(Error("var a; print(a + );"), "識別子 ) は定義されていません");
}
TEST_F(Parser, TheEndOfTheFileInAnExpressionIsReported) {
    EXPECT_EQ(Error("print(1 +"), "式の途中でファイルエンドになりました");
    EXPECT_EQ(Error("if ("), "式の途中でファイルエンドになりました");
}
TEST_F(Parser, TheEndOfTheFileInABlockIsReported) {
    EXPECT_EQ(Error("{ print(1);"), "複文中でファイルエンドになりました");
    EXPECT_EQ(Error("function f() { "), "複文中でファイルエンドになりました");
}
TEST_F(Parser, AVariableDefinedTwiceIsReported) {
    EXPECT_EQ(Error("var a; var a;"), "識別子 a が２重定義されています");
    EXPECT_EQ(Error("function f(a, a) { }"), "識別子 a が２重定義されています");
    EXPECT_EQ(Error("function f(a) { var a; }"), "識別子 a が２重定義されています");
}
TEST_F(Parser, ALocalMayHideAGlobal) {
    EXPECT_EQ(Prints("var a = 1; function f() { var a = 2; return a; } print(f(), a);"), "2 1");
}
TEST_F(Parser, AFunctionDefinedTwiceIsReported) {
    EXPECT_EQ(Error("function f() { } function f() { }"), "関数 f が二重定義されています。");
    EXPECT_EQ(Error("function print() { }"), "関数 print が二重定義されています。");
}
TEST_F(Parser, AFunctionMayHaveTheNameOfAMethod) {
    EXPECT_EQ(Prints("function substr(n) { return n + 1; } print(substr(5), substr(\"abc\", 1));"), "6 a");
}
TEST_F(Parser, AFunctionMayBeDeclaredAhead) {
    EXPECT_EQ(
        Prints("function odd(n); function even(n) { if (n == 0) return TRUE; return odd(n - 1); }"
               "function odd(n) { if (n == 0) return FALSE; return even(n - 1); } print(even(10), odd(10));"),
        "TRUE FALSE");
}
TEST_F(Parser, AFunctionDeclaredButNeverDefinedFailsWhenCalled) {
    EXPECT_EQ(Error("function f(a); f(1);"), "関数 f が定義されていません。");
}
TEST_F(Parser, BothPlacesOfPrivateMeanTheSame) {
    Start();
    EXPECT_EQ(
        RunMore("private function f() { return 1; } function private g() { return 2; } print(f() + g());"),
        "3");
    EXPECT_EQ(RunMore("function f() { return 3; } print(f());"), "3");
    EXPECT_EQ(RunMore("print(g());"), "! test.qms:1:  Error 識別子 g は定義されていません");
}
TEST_F(Parser, PrivateAtTheBodyReachesADeclarationAhead) {
    Start();
    EXPECT_EQ(RunMore("function f(); print(1); private function f() { return 1; } print(f());"), "11");
    EXPECT_EQ(RunMore("print(f());"), "! test.qms:1:  Error 識別子 f は定義されていません");
}
TEST_F(Parser, PrivateAtADeclarationAheadReachesTheBody) {
    Start();
    EXPECT_EQ(RunMore("private function f(); function f() { return 1; } print(f());"), "1");
    EXPECT_EQ(RunMore("function f() { return 2; } print(f());"), "2");
}
TEST_F(Parser, APrivateFunctionLeavesTheMethodOfItsNameKnown) {
    Start();
    EXPECT_EQ(RunMore("private function substr(n) { return n; } print(substr(5));"), "5");
    EXPECT_EQ(RunMore("print(\"abc\".substr(2));"), "ab");
}
TEST_F(Parser, APrivateFunctionWithTheNameOfAMethodIsKnownInItsFileOnly) {
    Start();
    EXPECT_EQ(
        RunMore(
            "function early() { return substr(4); }"
            "private function substr(n) { return n + 1; }"
            "var f = substr, a[1]; a[0] = substr;"
            "print(early(), substr(5), \"abc\".substr(2), call(f, 6), call(a[0], \"abc\", 1), f == substr);"),
        "5 6 ab 7 a TRUE");
    EXPECT_EQ(RunMore("print(early(), \"abc\".substr(1)); substr(5);"),
              "5 a! test.qms:1:  Error 関数 substr が定義されていません。");
    EXPECT_EQ(RunMore("private function substr(n) { return n + 2; } print(substr(5), early());"), "7 5");
    EXPECT_EQ(RunMore("function substr(n) { return n + 3; } print(substr(5), early(), call(f, 1));"),
              "8 5 2");
}
TEST_F(Parser, PrivateFunctionsStayCallableByTheirOwnFile) {
    Start();
    EXPECT_EQ(RunMore("private function hidden() { return 1; } function open() { return hidden(); }"), "");
    EXPECT_EQ(RunMore("function hidden() { return 2; } print(open(), hidden());"), "1 2");
}
TEST_F(Parser, ALiteralBehindADotOrABinaryNameIsOneObject) {
    Start();
    EXPECT_EQ(RunMore("function f(x, y) { return x . \"b\"; }"), "");
    EXPECT_EQ(ObjectCount, 1);
    EXPECT_EQ(RunMore("function g(x, y) { return x -> \"b\" \"c\"; }"), "");
    EXPECT_EQ(ObjectCount, 2);
}
TEST_F(Parser, MissingNamesAreReported) {
    EXPECT_EQ(Error("var 1;"), "識別子が必要です");
    EXPECT_EQ(Error("var ;"), "識別子が必要です");
    EXPECT_EQ(Error("function (a) { }"), "識別子が必要です");
    EXPECT_EQ(Error("function f(1) { }"), "識別子が必要です");
}
TEST_F(Parser, MissingSignsAreReported) {
    EXPECT_EQ(Error("var a[3; "), " ] が必要です");
    EXPECT_EQ(Error("var a[3]; a[1 = 2;"), " ] が必要です");
    EXPECT_EQ(Error("var a b;"), ";が必要です");
    EXPECT_EQ(Error("function f(a b) { }"), " , または ) が必要です。");
    EXPECT_EQ(Error("function f { }"), " ( が必要です。");
    EXPECT_EQ(Error("print(1"), " ) が必要です");
    EXPECT_EQ(Error("print((1;"), " ) が必要です");
    EXPECT_EQ(Error("var a = {1, 2;"), ",または}が必要です");
    EXPECT_EQ(Error("if 1) ;"), " ( が必要です。");
    EXPECT_EQ(Error("if (1 ;"), " ) が必要です。");
    EXPECT_EQ(Error("while 1) ;"), " ( が必要です。");
    EXPECT_EQ(Error("while (1 ;"), " ) が必要です。");
    EXPECT_EQ(Error("do ; until"), "while が必要です。");
    EXPECT_EQ(Error("do ; while 1);"), " ( が必要です。");
    EXPECT_EQ(Error("do ; while (1;"), " ) が必要です。");
    EXPECT_EQ(Error("do ; while (0) print(1);"), " ; が必要です。");
    EXPECT_EQ(Error("for ;;"), " ( が必要です。");
    EXPECT_EQ(Error("var i; for (i = 0; i < 3) ;"), " ; が必要です。");
    EXPECT_EQ(Error("var i; for (i = 0; i < 3; i++ ;"), " ) が必要です。");
    EXPECT_EQ(Error("print(1)"), " ; が必要です。");
    EXPECT_EQ(Error("break"), " ; が必要です。");
    EXPECT_EQ(Error("continue"), " ; が必要です。");
    EXPECT_EQ(Error("return 1"), " ; が必要です。");
    EXPECT_EQ(Error("var a; a = 1"), " ; が必要です。");
}
TEST_F(Parser, PrecedenceOfTheLevels) {
    EXPECT_EQ(Prints("print(4 | 2 == 2, TRUE | 2 == 2, 4 | 6 & 3);"), "5 TRUE 6");
    EXPECT_EQ(
        Prints("print(1 + 2 << 1, 2 + 3 * 4, (2 + 3) * 4, 10 - 4 - 3, 100 / 5 / 2, 1 ^ 3 & 2, 7 & 3 == 3);"),
        "6 14 20 3 10 3 1");
    EXPECT_EQ(Prints("print(-2 * 3, !0 + 1, - -3, +4, -(1 + 2), 2 - -3);"), "-6 2 3 4 -3 5");
    EXPECT_EQ(Prints("print(1 < 2 == TRUE, 8 >> 1 + 1);"), "TRUE 2");
}
TEST_F(Parser, MethodsBindTighterThanUnaryOperators) {
    EXPECT_EQ(Prints("print(!\"abcd\".substr(3), -5.abs(), \"a\".substr(1).substr(1) + 1);"), "3 -5 a1");
    EXPECT_EQ(Prints("print(\"abc\"->substr(2));"), "ab");
}
TEST_F(Parser, ADotWithoutACallIsTheOperator) {
    EXPECT_EQ(Error("print(1 . 2);"), "整数演算の演算子が不正です。");
    EXPECT_EQ(Error("print(\"a\" -> 2);"), "演算子が定義されていません。");
    EXPECT_EQ(Error("var substr = 1; print(\"a\".substr);"), "演算子が定義されていません。");
}
TEST_F(Parser, AFunctionNameWithoutParenthesesIsAValue) {
    EXPECT_EQ(
        Prints(
            "function f(x) { return x * 2; } var g = f; print(typeof(g), call(g, 4), g == f, f != print);"),
        "FUNC 8 TRUE TRUE");
}
TEST_F(Parser, StepOfAForMayEndInASemicolonOrBeEmpty) {
    EXPECT_EQ(Prints("var i; for (i = 0; i < 3; i++;) print(i); for (i = 0; i < 2;) { i += 1; print(i); }"),
              "01212");
    EXPECT_EQ(Prints("var i = 0; for (; i < 2; { i++; print(\"s\"); }) print(i); for (i = 0; i < 1; ;) i++;"),
              "0s1s");
    EXPECT_EQ(Prints("for (var k = 0; k < 2; k++) print(k);"), "01");
}
TEST_F(Parser, BreakAndContinueInAStepLeaveTheLoopOrTheStep) {
    EXPECT_EQ(Prints("var i; for (i = 0; i < 9; { i++; if (i == 3) break; }) print(i); print(\"end\");"),
              "012end");
    EXPECT_EQ(Prints("var i; for (i = 0; i < 3; { i++; if (i == 1) continue; print(\"x\"); }) print(i);"),
              "01x2x");
    EXPECT_EQ(Prints("var i, k; for (i = 0; i < 2; i++) { for (k = 0; k < 9; { k++; break; }) print(k); }"),
              "00");
}
TEST_F(Parser, ElseBelongsToTheNearestIf) {
    EXPECT_EQ(Prints("if (TRUE) if (FALSE) print(1); else print(2);"), "2");
}
TEST_F(Parser, ALongElseIfChainIsNoNesting) {
    std::string source = "var a = 4999; if (a == 0) print(0);";
    for (int i = 1; i < 5000; ++i) {
        source += " else if (a == " + std::to_string(i) + ") print(" + std::to_string(i) + ");";
    }
    EXPECT_EQ(Prints(source), "4999");
}
TEST_F(Parser, InitialisersShapeAndFillArrays) {
    EXPECT_EQ(Prints("var a[5] = {1, 2}; print(sizeof(a), a[0], a[1]); a[4] = 9; print(\"\", a[4]);"),
              "5 1 2 9");
    EXPECT_EQ(Prints("var a = {}; print(sizeof(a));"), "0");
    EXPECT_EQ(Prints("var a = {{1, 2}, {3}}; print(sizeof(a), sizeof(a[1]), a[1][0]);"), "2 2 3");
    EXPECT_EQ(Prints("function f(n) { var a = {n, n + 1, {n}}; return a[1]; } print(f(4), f(5));"), "5 6");
    EXPECT_EQ(Prints("var a[2][2] = {{1, 2}, {3, 4}}; print(a[1][1]);"), "4");
}
TEST_F(Parser, AnInitialiserMayNotBeLongerThanItsArray) {
    EXPECT_EQ(Error("var a[2] = {1, 2, 3};"), "大きさの異なる配列は代入できません。");
    EXPECT_EQ(Error("var a[2][1] = {{1}, {2, 3}};"), "大きさの異なる配列は代入できません。");
}
TEST_F(Parser, TooManyGlobalsAreFatal) {
    sizes.globals = 2;
    EXPECT_EQ(Fail("var a, b;\nvar c;"), "test.qms:2:  Fatal 識別子管理バッファがオーバーフローしました");
}
TEST_F(Parser, TooManyFunctionsAreFatal) {
    sizes.functions = 2;
    EXPECT_EQ(Fail("function a() { }\nfunction b() { }\nfunction c() { }"),
              "test.qms:3:  Fatal 識別子管理バッファがオーバーフローしました");
}
TEST_F(Parser, TooManyLocalsAreFatal) {
    std::string source = "function f() { var a0";
    for (int i = 1; i < 257; ++i) {
        source += ", a" + std::to_string(i);
    }
    EXPECT_EQ(Fail(source + "; }"), "test.qms:1:  Fatal 識別子管理バッファがオーバーフローしました");
}
TEST_F(Parser, AFunctionMayUse256Locals) {
    std::string source = "function f() { var a0";
    for (int i = 1; i < 256; ++i) {
        source += ", a" + std::to_string(i);
    }
    EXPECT_EQ(Prints(source + "; a255 = 7; a0 = 1; return a255 + a0; } print(f());"), "8");
}
TEST_F(Parser, DeepNestingIsAnErrorNotACrash) {
    const auto times = [](const std::string& text) {
        std::string all;
        for (int i = 0; i < 50000; ++i) {
            all += text;
        }
        return all;
    };
    for (const char* unit : {"(", "!", "- ", "+ ", "print(", "1+(", "typeof(1,"}) {
        EXPECT_EQ(Error("print(" + times(unit)), "スタックオーバーフロー！！") << unit;
    }
    for (const char* unit : {"{", "if (1) ", "while (0) ", "do ", "for (;0;) ", "if (1) ; else {"}) {
        EXPECT_EQ(Error(times(unit)), "スタックオーバーフロー！！") << unit;
    }
    EXPECT_EQ(Error("var a; a = " + times("a[")), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("var a = " + times("{")), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("print(\"a\"" + times(".tostring()") + ");"), "スタックオーバーフロー！！");
    EXPECT_EQ(Error("var a" + times("[1]") + ";"), "スタックオーバーフロー！！");
}
TEST_F(Parser, TooManyArgumentsAreAnError) {
    std::string source = "print(1";
    for (int i = 0; i < 40000; ++i) {
        source += ",1";
    }
    EXPECT_EQ(Error(source + ");"), "スタックオーバーフロー！！");
}
TEST_F(Parser, ReasonableNestingIsAccepted) {
    std::string source = "print(", ends;
    for (int i = 0; i < 200; ++i) {
        source += "(";
        ends += ")";
    }
    EXPECT_EQ(Prints(source + "7" + ends + ");"), "7");
    source.clear();
    ends.clear();
    for (int i = 0; i < 200; ++i) {
        source += "if (TRUE) {";
        ends += "}";
    }
    EXPECT_EQ(Prints(source + "print(8);" + ends), "8");
}
TEST_F(Parser, AnErrorStandsWhereTheScannerIs) {
    EXPECT_EQ(Fail("var a;\n\na\n= 1\n;\nvar b b;"), "test.qms:6:  Error ;が必要です");
}
TEST_F(Parser, AnEmptyFileIsAccepted) {
    EXPECT_EQ(Prints(""), "");
}
TEST_F(Parser, BinaryInputEndsInAMessage) {
    std::uint32_t state = 99;
    for (int round = 0; round < 200; ++round) {
        std::string bytes;
        for (int i = 0; i < 500; ++i) {
            state = state * 1664525U + 1013904223U;
            bytes += static_cast<char>(state >> 24);
        }
        InterpreterExit();
        Start();
        try {
            CompileText("binary", bytes);
        } catch (const ScriptAbort&) {
            EXPECT_NE(message, "");
        }
    }
}

}  // namespace
}  // namespace quelmark::test
