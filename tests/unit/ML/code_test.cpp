// Generated code: which instructions the compiler chooses.
#include "ML/CODE.h"

#include <string>

#include "script_fixture.h"

namespace quelmark::test {
namespace {

class GeneratedCode : public ScriptTest {
  protected:
    // The names of the instructions of the function f, without its last RETURN_NONE.
    std::string CodeOf(const std::string& function, const std::string& before = "") {
        InterpreterExit();
        Start();
        CompileText("code.qms", before + function);
        const ScriptFunction& last = ScriptFunctions.back();
        std::string names;
        const Instruction* end = last.code - 1 + 1 + (last.code - 1)->jump;  // the jump over the body
        for (const Instruction* i = last.code; i < end - 1; ++i) {
            names += names.empty() ? "" : " ";
            names += OpcodeName(i->op);
        }
        EXPECT_EQ((end - 1)->op, Opcode::RETURN_NONE);
        return names;
    }
};

TEST_F(GeneratedCode, AVariablePlusAConstantIsTheImmediateForm) {
    EXPECT_EQ(CodeOf("function f(i, x) { x = i + 1; }"), "ADD_SI");
    EXPECT_EQ(CodeOf("function f(i, x) { x = i * 2.5; }"), "MULTIPLY_SR");
    EXPECT_EQ(CodeOf("function f(i, x) { x = 2.5 * i; }"), "MULTIPLY_SR");
}
TEST_F(GeneratedCode, ConstantsAreFolded) {
    EXPECT_EQ(CodeOf("function f(x) { x = 2 * 3 + 1; }"), "LOAD");
    EXPECT_EQ(CodeOf("function f(x) { x = -5; }"), "LOAD");
    EXPECT_EQ(CodeOf("function f(x) { x = 1 % 0; }"), "LOAD REMAINDER_SI");
}
TEST_F(GeneratedCode, AnExpressionGoesStraightIntoItsVariable) {
    EXPECT_EQ(CodeOf("function f(a, b, c) { c = a * b + c; }"), "MULTIPLY_SS ADD_SS");
}
TEST_F(GeneratedCode, AComparisonInAConditionIsOneJump) {
    EXPECT_EQ(CodeOf("function f(n) { if (n < 2) return n; }"), "JF_LESS_SI RETURN");
}
TEST_F(GeneratedCode, ACountedLoopIsOneInstructionATurn) {
    EXPECT_EQ(CodeOf("function f(i, n) { for (i = 0; i < n; i++) ; }"),
              "LOAD JUMP FOR_LESS_SS JUMP JT_LESS_SS");
    EXPECT_EQ(CodeOf("function f(i) { for (i = 9; i >= 0; i--) ; }"),
              "LOAD JUMP FOR_GREATER_EQUAL_SI JUMP JT_GREATER_EQUAL_SI");
    EXPECT_EQ(CodeOf("function f(i) { for (i = 0; i < 9; i += 2) ; }"),
              "LOAD JUMP FOR_LESS_SI JUMP JT_LESS_SI");
    EXPECT_EQ(CodeOf("function f(i, k, n) { for (i = 0; i < n; i += k) ; }"),
              "LOAD JUMP FOR_BY_LESS_SS JUMP JT_LESS_SS");
}
TEST_F(GeneratedCode, AnyOtherLoopTestsAtItsEnd) {
    EXPECT_EQ(CodeOf("function f(a, n) { while (a < n) a += 2; }"), "JUMP ADD_SI JT_LESS_SS");
    EXPECT_EQ(CodeOf("function f(a) { while (TRUE) a++; }"), "JUMP INCREMENT LOOP");
}
TEST_F(GeneratedCode, ElementsAreOneInstruction) {
    EXPECT_EQ(CodeOf("function f(a, i, x) { x = a[i]; a[i] = x; a[3] = x; x = a[3]; }"),
              "GET_ELEMENT SET_ELEMENT SET_ELEMENT_K GET_ELEMENT_K");
    EXPECT_EQ(CodeOf("function f(a, i, k, x) { x = a[i][k]; a[i][k] = x; }"), "GET_ELEMENT_2 SET_ELEMENT_2");
    EXPECT_EQ(CodeOf("function f(a, i) { a[i] = 0; }"), "SET_ELEMENT_CONSTANT");
    EXPECT_EQ(CodeOf("function f(i, x) { x = g[i]; g[2] = x; }", "var g[5];"),
              "GET_GLOBAL_ELEMENT SET_GLOBAL_ELEMENT_K");
}
TEST_F(GeneratedCode, ArgumentsAreBuiltWhereTheyArePassed) {
    EXPECT_EQ(CodeOf("function f(n) { return f(n - 1) + f(f(n)); }"),
              "SUBTRACT_SI CALL COPY CALL CALL ADD_SS RETURN");
}
TEST_F(GeneratedCode, ACallAsAStatementDropsItsResult) {
    EXPECT_EQ(CodeOf("function f(n) { f(n); }"), "COPY CALL_DROP");
}
TEST_F(GeneratedCode, TextIsBuiltFromItsPartsAtOnce) {
    EXPECT_EQ(CodeOf("function f(s, i) { s = s + \"a\" + i; }"), "LOAD_OBJECT COPY JOIN");
}
TEST_F(GeneratedCode, AVariableIsReadBeforeACallToItsRight) {
    EXPECT_EQ(CodeOf("function f(n) { return n * f(n - 1); }"), "COPY SUBTRACT_SI CALL MULTIPLY_SS RETURN");
}
TEST_F(GeneratedCode, EmptyStatementsAndPlainDeclarationsCostNothing) {
    EXPECT_EQ(CodeOf("function f() { ;;; var a, b; { } }"), "");
}
TEST_F(GeneratedCode, TraceAddsOneInstructionAStatement) {
    SetTrace(true);
    EXPECT_EQ(CodeOf("function f(a) { a = 1; a++; }"), "TRACE TRACE LOAD TRACE INCREMENT");
    SetTrace(false);
}
TEST_F(GeneratedCode, UsedSizeCountsBytesOfInstructions) {
    Start();
    const std::int32_t added = CompileText("code.qms", "function f(a) { a = 1; }");
    EXPECT_EQ(added, CodeUsed());
    EXPECT_EQ(added,
              3 * static_cast<std::int32_t>(sizeof(Instruction)));  // jump over the body, LOAD, RETURN_NONE
}
TEST_F(GeneratedCode, AFullCodeBufferIsFatal) {
    sizes.codeBytes = 160;
    EXPECT_EQ(Fail("var a;\na = 1; a = 2; a = 3; a = 4; a = 5; a = 6;\na = 7; a = 8; a = 9; a = 10; a = 11;"),
              "test.qms:3:  Fatal 内部コード用バッファがオーバフローしました。！！");
}
TEST_F(GeneratedCode, ACodeBufferOfNoBytesHoldsNothing) {
    sizes.codeBytes = -1;
    EXPECT_EQ(Fail("var a = 1;"), "test.qms:1:  Fatal 内部コード用バッファがオーバフローしました。！！");
}
TEST_F(GeneratedCode, AHugeExpressionIsRefusedBeforeItFillsTheMemory) {
    std::string source = "var a = 1; a = a";
    for (int i = 0; i < 300000; ++i) {
        source += "+a";
    }
    EXPECT_EQ(Fail(source + ";"), "test.qms:1:  Fatal 内部コード用バッファがオーバフローしました。！！");
}
TEST_F(GeneratedCode, NothingOfAFileThatFailsToCompileStaysBehind) {
    Start();
    const std::int32_t before = CodeUsed();
    RunMore("var a = 5; print(a); function broken() { a = 1; } function other( {");
    EXPECT_NE(message, "");
    EXPECT_EQ(CodeUsed(), before);
    EXPECT_EQ(RunMore("function broken() { return 7; } print(broken());"), "7");
}

}  // namespace
}  // namespace quelmark::test
