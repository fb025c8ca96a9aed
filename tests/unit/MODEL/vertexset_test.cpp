// The script class VertexSet.
#include "ML/STACK.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class VertexSets : public ModelTest {};

TEST_F(VertexSets, ConstructorMakesAnEmptySetOrOneOfOneElement) {
    EXPECT_EQ(Script("print(Vertexs(VertexSet()), VertexSet(Vertex(1, -2, 3, 4, 5, 6, 7, 8)), "
                     "VertexSet(vector(1.9, 2, 3)));"),
              "0 (     1,    -2,     3) (   4    5    6) (   7    8)\n "
              "(     1,     2,     3) (   0    0    0) (   0    0)\n");
}
TEST_F(VertexSets, ConstructorReportsAnythingElse) {
    EXPECT_EQ(Failure("VertexSet(1);"), "VertexSet:引数の型が異なる");
    EXPECT_EQ(Failure("VertexSet(\"a\");"), "VertexSet:引数の型が異なる");
    EXPECT_EQ(Failure("VertexSet(Vertex(1, 2, 3), Vertex(1, 2, 3));"), "VertexSet:引数の型が異なる");
}
TEST_F(VertexSets, InsertingTheSameVertexTwiceKeepsOne) {
    EXPECT_EQ(Script("var s; s = VertexSet() + Vertex(1, 2, 3) + Vertex(1, 2, 3) | Vertex(1, 2, 3); "
                     "print(Vertexs(s));"),
              "1");
}
TEST_F(VertexSets, TheOperandsOfAnOperatorStayAsTheyAre) {
    EXPECT_EQ(
        Script("var s, t; s = VertexSet(Vertex(1, 2, 3)); t = s + Vertex(4, 5, 6); t = t - Vertex(1, 2, 3);"
               "print(Vertexs(s), Vertexs(t), VertexGetVertex(t, 0));"),
        "1 1 ( 4   , 5   , 6    ) ( 0       , 0       , 0        ) ( 0   , 0    )");
}
TEST_F(VertexSets, ElementsStandInTheOrderOfTheirWords) {
    // By y, then x as an unsigned word, then nx, z, nz, ny, v, u.
    EXPECT_EQ(Script("var s; s = VertexSet() + Vertex(-1, 0, 0) + Vertex(5, 0, 0) + Vertex(0, -7, 0) + "
                     "Vertex(5, 0, -9)"
                     " + Vertex(5, 0, 0, -1, 0, 0) + Vertex(5, 0, 0, 0, 2, 1) + Vertex(5, 0, 0, 0, 1, 2)"
                     " + Vertex(5, 0, 0, 0, 0, 0, 2, 1) + Vertex(5, 0, 0, 0, 0, 0, 1, 2); print(s);"),
              "(     0,    -7,     0) (   0    0    0) (   0    0)\n"
              "(     5,     0,     0) (  -1    0    0) (   0    0)\n"
              "(     5,     0,     0) (   0    0    0) (   0    0)\n"
              "(     5,     0,     0) (   0    0    0) (   2    1)\n"
              "(     5,     0,     0) (   0    0    0) (   1    2)\n"
              "(     5,     0,     0) (   0    2    1) (   0    0)\n"
              "(     5,     0,     0) (   0    1    2) (   0    0)\n"
              "(     5,     0,    -9) (   0    0    0) (   0    0)\n"
              "(    -1,     0,     0) (   0    0    0) (   0    0)\n");
}
TEST_F(VertexSets, CapacityGrowsBy256WhenTheSetIsFull) {
    Start();
    RunMore("var s = VertexSet(), i; for (i = 0; i < 256; i++) s = s + Vertex(i, 0, 0);");
    EXPECT_EQ(RunMore("print(s == s, Vertexs(s));"), "TRUE 256");
    RunMore("s + Vertex(1, 0, 0);");
    // The set lies in the first global variable.
    ASSERT_TRUE(IsVertexSet(StackBuf[0]));
    EXPECT_EQ(VertexSetCapacity(StackBuf[0]), 256);
    RunMore("s = s + Vertex(-1, -1, -1);");
    EXPECT_EQ(VertexSetCapacity(StackBuf[0]), 512);
    EXPECT_EQ(VertexSetElements(StackBuf[0]).size(), 257U);
    EXPECT_TRUE(std::ranges::is_sorted(VertexSetElements(StackBuf[0]), VertexLess));
    RunMore("s = VertexSelect();");
    EXPECT_EQ(VertexSetCapacity(StackBuf[0]), 256);
}
TEST_F(VertexSets, SelectTakesTheVerticesOfTheSelected) {
    EXPECT_EQ(Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); tri(10, 0, 0, 0, 10, 0, 10, 10, 0); PolyAppend(0); "
                     "print(Vertexs(VertexSelect()));"),
              "4");
}
TEST_F(VertexSets, SelectKeepsShadedVerticesWithDifferentNormalsApart) {
    const std::string pair =
        "PolyType(1); PolyVertexs(3); PolySetVertex(Vertex(0, 0, 0, 0, 0, n), 0);"
        "PolySetVertex(Vertex(10, 0, 0, 0, 0, n), 1); PolySetVertex(Vertex(0, n, 0, 0, 0, n), 2); "
        "PolyAppend(1);";
    EXPECT_EQ(Script("var n = 256; " + pair + "n = -256; " + pair +
                     "print(Vertexs(VertexSelect()), Vertexs(VertexPositionVertex(VertexSelect())));"),
              "6 4");
}
TEST_F(VertexSets, SelectIgnoresWordsThatTheTypeDoesNotCarry) {
    EXPECT_EQ(Script("PolyVertexs(1); PolySetVertex(Vertex(1, 2, 3, 4, 5, 6, 7, 8), 0); PolyAppend(1); "
                     "PolyType(POLY_UV); PolyAppend(1);"
                     "print(VertexSelect());"),
              "(     1,     2,     3) (   0    0    0) (   0    0)\n"
              "(     1,     2,     3) (   0    0    0) (   7    8)\n");
}
TEST_F(VertexSets, SelectOfNothingIsEmptyAndTakesNoArgument) {
    EXPECT_EQ(Script("print(Vertexs(VertexSelect()));"), "0");
    EXPECT_EQ(Failure("VertexSelect(1);"), "VertexSelect:引数の型が異なる");
}
TEST_F(VertexSets, GetVertexByNumber) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 2, 3)); print(VertexGetVertex(s, 0));"),
              "( 1   , 2   , 3    ) ( 0       , 0       , 0        ) ( 0   , 0    )");
}
TEST_F(VertexSets, GetVertexOutOfRangeGivesNothing) {
    for (const char* n : {"1", "-1", "2147483647"}) {
        EXPECT_EQ(Failure(std::string("print(VertexGetVertex(VertexSet(Vertex(1, 2, 3)), ") + n + "));"),
                  "代入されていない変数を参照しました。");
    }
}
TEST_F(VertexSets, GetVertexFindsOnlyTheExactVertex) {
    EXPECT_EQ(
        Script(
            "var s; s = VertexSet(Vertex(1, 2, 3)) + Vertex(1, 2, 3, 4, 5, 6) + Vertex(0, 0, 0);"
            "print(VertexGetVertex(s, Vertex(1, 2, 3)), VertexGetVertex(s, vector(0, 0, 0)),"
            "VertexGetVertex(s, Vertex(1, 2, 3, 4, 5, 6)), VertexGetVertex(s, Vertex(1, 2, 3, 4, 5, 7)));"),
        "1 0 2 -1");
    EXPECT_EQ(Failure("VertexGetVertex(VertexSet(), \"a\");"),
              "2 番目の引数の型が不正です。( VertexGetVertex )");
}
TEST_F(VertexSets, SelectPositionTakesEveryVertexThere) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 2, 3)) + Vertex(1, 2, 3, 4, 5, 6) + Vertex(1, 2, 4);"
                     "print(Vertexs(VertexSelectPosition(s, Vertex(1, 2, 3, 9, 9, 9))), "
                     "Vertexs(VertexSelectPosition(s, vector(1, 2, 4))),"
                     "Vertexs(VertexSelectPosition(s, vector(0, 0, 0))));"),
              "2 1 0");
    EXPECT_EQ(Failure("VertexSelectPosition(VertexSet(), 1);"), "VertexSelectPosition: 引数の型が異なる");
    EXPECT_EQ(Failure("VertexSelectPosition(VertexSet());"), "VertexSelectPosition: 引数の型が異なる");
}
TEST_F(VertexSets, SetOperators) {
    EXPECT_EQ(Script("var a = Vertex(1, 0, 0), b = Vertex(2, 0, 0), c = Vertex(3, 0, 0), s, t; s = "
                     "VertexSet(a) + b; t = VertexSet(b) + c;"
                     "print(s + t == VertexSet(a) + b + c, (s | t) == s + t, s - t == VertexSet(a), (s & t) "
                     "== VertexSet(b),"
                     "s * t == VertexSet(b), (s ^ t) == VertexSet(a) + c, s == t, s != t);"),
              "TRUE TRUE TRUE TRUE TRUE TRUE FALSE TRUE");
}
TEST_F(VertexSets, DifferenceWithItselfIsEmpty) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 0, 0)) + Vertex(2, 0, 0); print(Vertexs(s - s), "
                     "Vertexs(s ^ s), Vertexs(s & VertexSet()),"
                     "Vertexs(s & VertexSet(Vertex(3, 0, 0))), Vertexs(VertexSet() - s));"),
              "0 0 0 0 0");
}
TEST_F(VertexSets, RemovingAnAbsentVertexChangesNothing) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 0, 0)); print(s - Vertex(2, 0, 0) == s, s - vector(1, "
                     "0, 0) == VertexSet());"),
              "TRUE TRUE");
}
TEST_F(VertexSets, OtherOperandsAreErrors) {
    const std::string expected = "論理演算の型が不正です(Vertex)";
    for (const char* expression : {"s + 1", "s - \"a\"", "s & v", "s * v", "s ^ v", "s * 2", "s == v",
                                   "s != 1", "s | UNIT_MATRIX", "s & UNIT_MATRIX"}) {
        EXPECT_EQ(
            Failure(std::string("var s, v = Vertex(1, 2, 3); s = VertexSet(v); print(") + expression + ");"),
            expected)
            << expression;
    }
}
TEST_F(VertexSets, MatrixMovesEveryElementAndSortsAgain) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 2, 3, 0, 181, 181)) + Vertex(5, 0, 0); print(s * "
                     "UNIT_MATRIX.scale(1, -1, 1));"),
              "(     1,    -2,     3) (   0 -181  181) (   0    0)\n"
              "(     5,     0,     0) (   0    0    0) (   0    0)\n");
}
TEST_F(VertexSets, ElementsThatAMatrixMakesEqualMerge) {
    EXPECT_EQ(Script("var s; s = VertexSet(Vertex(1, 2, 3)) + Vertex(1, 2, 4); print(Vertexs(s * "
                     "UNIT_MATRIX.scale(1, 1, 0)));"),
              "1");
}
TEST_F(VertexSets, SelectSelectsPolygonsThatTouchTheSet) {
    Script(
        "tri(0, 0, 0, 10, 0, 0, 0, 10, 0); tri(10, 0, 0, 20, 0, 0, 20, 10, 0); tri(90, 0, 0, 91, 0, 0, 92, "
        "0, 0);"
        "VertexSelect(VertexSet(Vertex(10, 0, 0)), 1, SELECT_UPDATE);");
    EXPECT_EQ(Selected(), "110");
    EXPECT_EQ(SelectCount, 2);
    RunMore("VertexSelect(VertexSet(Vertex(0, 10, 0)), 0, SELECT_UPDATE);");
    EXPECT_EQ(Selected(), "011");
    RunMore("VertexSelect(VertexSet(Vertex(0, 10, 0)), 1, SELECT_OR);");
    EXPECT_EQ(Selected(), "111");
    Polygon(2).flags = POLYGON_INVISIBLE;
    RunMore("VertexSelect(VertexSet(), TRUE, SELECT_UPDATE);");
    EXPECT_EQ(Selected(), "001");
}
TEST_F(VertexSets, SelectComparesAllWordsAsStored) {
    Script(
        "PolyVertexs(1); PolySetVertex(Vertex(1, 2, 3, 4, 5, 6), 0); PolyAppend(0); "
        "VertexSelect(VertexSet(Vertex(1, 2, 3)), 1, 0);");
    EXPECT_EQ(Selected(), "0");
    RunMore("VertexSelect(VertexSet(Vertex(1, 2, 3, 4, 5, 6)), 1, 0);");
    EXPECT_EQ(Selected(), "1");
    EXPECT_EQ(Failure("VertexSelect(VertexSet(), 1);"), "引数の数が不正です。( VertexSelect )");
}
TEST_F(VertexSets, SelectOfManyGivesWhatInsertingOneByOneGives) {
    EXPECT_EQ(Script("var i, s; s = VertexSet(); for (i = 0; i < 400; i++) { tri(i * 37 % 100, i * 91 % 50, "
                     "0, -i, i % 7, 3, i % 5, -3, i % 3);"
                     "s = s + Vertex(i * 37 % 100, i * 91 % 50, 0) + Vertex(-i, i % 7, 3) + Vertex(i % 5, "
                     "-3, i % 3); }"
                     "print(s == VertexSelect(), Vertexs(s) > 400);"),
              "TRUE TRUE");
}

}  // namespace
}  // namespace quelmark::test
