#include "MATLIB/SETMAT.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class MatrixScript : public ScriptTest {
  protected:
    MatrixScript() { registerMore = MatrixLibraryRegister; }
};

TEST_F(MatrixScript, AQuarterTurnAboutZCarriesXToY) {
    EXPECT_EQ(Run("print(vector(1, 0, 0) * rot(UNIT_MATRIX, AXISZ, 90));"),
              "(   0.0000,   1.0000,   0.0000 )");
}
TEST_F(MatrixScript, TheUnitMatrixNeverChanges) {
    EXPECT_EQ(
        Run("var m = move(UNIT_MATRIX, 1, 2, 3); m = scale(m, 2, 2, 2); print(UNIT_MATRIX == Matrix());"),
        "TRUE");
}
TEST_F(MatrixScript, GetvectorOfRowFourIsFalse) {
    EXPECT_EQ(Run("print(getvector(UNIT_MATRIX, 4));"), "FALSE");
}
TEST_F(MatrixScript, GetvectorWantsFourElements) {
    EXPECT_EQ(Fail("var a[3]; getvector(UNIT_MATRIX, a);"),
              "test.qms:1:  Error 引数の配列の要素数が足りません。(getvector)");
}
TEST_F(MatrixScript, AChainReadsFromTheLastCallToTheFirst) {
    EXPECT_EQ(Run("print(vector(1, 0, 0) * scale(move(UNIT_MATRIX, 10, 0, 0), 2, 2, 2));"),
              "(  12.0000,   0.0000,   0.0000 )");
}
TEST_F(MatrixScript, ScaleReportsUnderTheNameOfMove) {
    EXPECT_EQ(Fail("scale(UNIT_MATRIX, 1);"), "test.qms:1:  Error move: 引数の型が不正です。");
}
TEST_F(MatrixScript, PlusSomethingElseIsThatSomething) {
    EXPECT_EQ(Run("print(UNIT_MATRIX + 7);"), "7");
}
TEST_F(MatrixScript, DividingByItselfGivesTheUnitMatrix) {
    EXPECT_EQ(Run("var m = move(scale(UNIT_MATRIX, 2, 4, 8), 1, 2, 3); print(m / m == UNIT_MATRIX);"),
              "TRUE");
}
TEST_F(MatrixScript, DividingByASingularMatrixMultiplies) {
    EXPECT_EQ(Run("var s = scale(UNIT_MATRIX, 0, 1, 1); print(UNIT_MATRIX / s == s);"), "TRUE");
}
TEST_F(MatrixScript, TextHasALineForEachRow) {
    EXPECT_EQ(Run("print(UNIT_MATRIX);"),
              "     1.0000     0.0000     0.0000\n     0.0000     1.0000     0.0000\n"
              "     0.0000     0.0000     1.0000\n     0.0000     0.0000     0.0000\n");
}
TEST_F(MatrixScript, VectorProducts) {
    EXPECT_EQ(Run("var a = vector(1, 2, 3), b = vector(4, 5, 6); print(a . b, a * b, a * 2, abs(vector(3, 4, "
                  "0)));"),
              "32.000000 (  -3.0000,   6.0000,  -3.0000 ) (   2.0000,   4.0000,   6.0000 ) 5.000000");
}
TEST_F(MatrixScript, VectorOperatorsNameTheirSign) {
    EXPECT_EQ(Fail("vector(1, 2, 3) + 1;"), "test.qms:1:  Error 型が不正です。（演算子+）");
    EXPECT_EQ(Fail("vector(1, 2, 3) . 1;"), "test.qms:1:  Error 型が不正です。（演算子.）");
    EXPECT_EQ(Fail("UNIT_MATRIX * \"a\";"), "test.qms:1:  Error 型が不正です。（演算子*）");
    EXPECT_EQ(Fail("UNIT_MATRIX / 2;"), "test.qms:1:  Error 型が不正です。（演算子/）");
}
TEST_F(MatrixScript, VecCarriesOneDirectionToAnother) {
    EXPECT_EQ(Run("print(vector(1, 0, 0) * vec(UNIT_MATRIX, 1, 0, 0, 0, 0, 2));"),
              "(   0.0000,   0.0000,   1.0000 )");
}
TEST_F(MatrixScript, ElementFillsAnArrayOfThree) {
    EXPECT_EQ(Run("var a[3]; element(vector(1, 2, 3), a); print(a[0], a[1], a[2]);"),
              "1.000000 2.000000 3.000000");
    EXPECT_EQ(Fail("var a[4]; element(vector(1, 2, 3), a);"),
              "test.qms:1:  Error 引数配列のサイズが不正です。(Vector:element)");
}
TEST_F(MatrixScript, UnitOfAZeroVectorIsZero) {
    EXPECT_EQ(Run("print(unit(vector(0, 0, 0)), unit(vector(0, 5, 0)));"),
              "(   0.0000,   0.0000,   0.0000 ) (   0.0000,   1.0000,   0.0000 )");
}

}  // namespace
}  // namespace quelmark::test
