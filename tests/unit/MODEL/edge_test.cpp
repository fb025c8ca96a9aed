// The script class Edge.
#include "ML/STACK.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Edges : public ModelTest {
  protected:
    static constexpr const char* PAIR =
        "tri(0, 0, 0, 10, 0, 0, 0, 10, 0); tri(10, 0, 0, 10, 10, 0, 0, 10, 0); var e; e = EdgeSelect();";
    static constexpr const char* POINTS =
        "var a = Vertex(0, 0, 0), b = Vertex(10, 0, 0), c = Vertex(0, 10, 0), d = Vertex(10, 10, 0);";
};

TEST_F(Edges, ConstructorMakesAnEmptySetOrOneEdge) {
    EXPECT_EQ(Script("print(Edges(Edge()), Edge(Vertex(5, 1, 1), Vertex(-5, 2, 2)));"),
              "0 (    -5,     2,     2)-(     5,     1,     1):  1\n");
}
TEST_F(Edges, ConstructorReportsAnythingElse) {
    for (const char* call : {"Edge(1);", "Edge(Vertex(1, 2, 3));", "Edge(Vertex(1, 2, 3), vector(1, 2, 3));",
                             "Edge(Vertex(1, 2, 3), Vertex(1, 2, 3), 1);"}) {
        EXPECT_EQ(Failure(call), "Edge:引数の型が異なる") << call;
    }
}
TEST_F(Edges, TheDirectionOfAnEdgeDoesNotMatter) {
    EXPECT_EQ(Script(std::string(POINTS) + "print(Edge(a, b) == Edge(b, a), Edge(a, b) != Edge(a, c));"),
              "TRUE TRUE");
}
TEST_F(Edges, SelectCountsTheUsesOfEveryEdge) {
    EXPECT_EQ(Script(std::string(PAIR) + "print(e);"),
              "(     0,     0,     0)-(     0,    10,     0):  1\n"
              "(     0,     0,     0)-(    10,     0,     0):  1\n"
              "(    10,     0,     0)-(    10,    10,     0):  1\n"
              "(     0,    10,     0)-(    10,     0,     0):  2\n"
              "(     0,    10,     0)-(    10,    10,     0):  1\n");
}
TEST_F(Edges, SelectCountGivesOutlineAndSeams) {
    EXPECT_EQ(Script(std::string(PAIR) +
                     "print(Edges(e), Edges(EdgeSelectCount(e, 1, 1)), Edges(EdgeSelectCount(e, 2)), "
                     "Edges(EdgeSelectCount(e, 1)), Edges(EdgeSelectCount(e, 3)));"),
              "5 4 1 5 0");
}
TEST_F(Edges, SelectCountReportsBadArguments) {
    EXPECT_EQ(Failure("EdgeSelectCount(Edge());"), "引数の型が不正です(EdgeSelectCount)");
    EXPECT_EQ(Failure("EdgeSelectCount(Edge(), 1, 2, 3);"), "引数の型が不正です(EdgeSelectCount)");
    EXPECT_EQ(Failure("EdgeSelectCount(Edge(), \"a\");"), "2 番目の引数の型が不正です。( EdgeSelectCount )");
}
TEST_F(Edges, SelectOfPolygonsWithOneAndTwoVertices) {
    EXPECT_EQ(Script("PolyVertexs(1); PolySetVertex(Vertex(1, 2, 3), 0); PolyAppend(1); PolyVertexs(2);"
                     "PolySetVertex(Vertex(4, 5, 6), 1); PolyAppend(1); print(EdgeSelect());"),
              "(     1,     2,     3)-(     1,     2,     3):  1\n"
              "(     1,     2,     3)-(     4,     5,     6):  2\n");
}
TEST_F(Edges, SelectTakesOnlySelectedPolygonsAndNoArgument) {
    EXPECT_EQ(Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); SelectAll(0); print(Edges(EdgeSelect()));"), "0");
    EXPECT_EQ(Failure("EdgeSelect(1);"), "EdgeSelect:引数の型が異なる");
}
TEST_F(Edges, GetVertexStoresBothEnds) {
    EXPECT_EQ(Script("var v[2], n; v[0] = \"x\" + 1; EdgeGetVertex(Edge(Vertex(4, 5, 6, 7, 8, 9), Vertex(1, "
                     "2, 3)), 0, v); print(v[0], v[1]);"),
              "( 1   , 2   , 3    ) ( 4   , 5   , 6    )");
}
TEST_F(Edges, GetVertexOutOfRangeLeavesTheElements) {
    EXPECT_EQ(Script("var v = { 1, 2 }; EdgeGetVertex(Edge(), 0, v); EdgeGetVertex(Edge(), -1, v); "
                     "print(v[0], v[1]);"),
              "1 2");
}
TEST_F(Edges, GetVertexIntoAShortArrayReportsThePosition) {
    EXPECT_EQ(Failure("var v[1]; EdgeGetVertex(Edge(), 0, v);"),
              "引数配列のサイズが不正です。( Vertex:Position )");
}
TEST_F(Edges, GetCountByNumberAndByEnds) {
    EXPECT_EQ(Script(std::string(POINTS) + PAIR +
                     "print(EdgeGetCount(e, 3), EdgeGetCount(e, 5), EdgeGetCount(e, -1), EdgeGetCount(e, b, "
                     "c), EdgeGetCount(e, c, b), EdgeGetCount(e, a, d));"),
              "2 0 0 2 2 0");
    for (const char* call :
         {"EdgeGetCount(Edge());", "EdgeGetCount(Edge(), 1.5);", "EdgeGetCount(Edge(), Vertex(1, 2, 3));",
          "EdgeGetCount(Edge(), 1, 2);", "EdgeGetCount(Edge(), Vertex(1, 2, 3), 1);"}) {
        EXPECT_EQ(Failure(call), "EdgeGetCount:引数の型が異なる") << call;
    }
}
TEST_F(Edges, VertexKeepsTheEdgesAtAPosition) {
    EXPECT_EQ(Script(std::string(POINTS) + PAIR +
                     "print(Edges(EdgeVertex(e, a)), Edges(EdgeVertex(e, b)), Edges(EdgeVertex(e, Vertex(5, "
                     "5, 0))), Edges(EdgeVertex(e, Vertex(99, 0, 0))));"),
              "2 3 0 0");
    EXPECT_EQ(Failure("EdgeVertex(Edge(), vector(1, 2, 3));"), "引数の型が不正です(EdgeVertex)");
    EXPECT_EQ(Failure("EdgeVertex(Edge(), 1);"), "引数の型が不正です(EdgeVertex)");
}
TEST_F(Edges, UnionAddsTheUses) {
    EXPECT_EQ(Script(std::string(POINTS) +
                     "var e; e = Edge(a, b) + Edge(a, c) + Edge(b, a); print(Edges(e), EdgeGetCount(e, a, "
                     "b), EdgeGetCount(e | e, a, b), EdgeGetCount(e, a, c));"),
              "2 2 4 1");
}
TEST_F(Edges, SetOperatorsIgnoreTheUses) {
    EXPECT_EQ(Script(std::string(POINTS) +
                     "var s, t; s = Edge(a, b) + Edge(a, c); t = Edge(a, c) + Edge(b, d) + Edge(a, c);"
                     "print(s - t == Edge(a, b), (s & t) == Edge(a, c), s * t == Edge(c, a), (s ^ t) == "
                     "Edge(a, b) + Edge(b, d), s == t, Edges(s - s), Edges(s ^ s));"),
              "TRUE TRUE TRUE TRUE FALSE 0 0");
}
TEST_F(Edges, IntersectionKeepsTheUsesOfTheLargerSetOrTheRightOne) {
    EXPECT_EQ(Script(std::string(POINTS) +
                     "var one, two, big; one = Edge(a, b); two = one + one; big = one + Edge(a, c);"
                     "print(EdgeGetCount(one & two, a, b), EdgeGetCount(two & one, a, b), EdgeGetCount(big & "
                     "two, a, b), EdgeGetCount(two & big, a, b));"),
              "2 1 1 1");
}
TEST_F(Edges, DifferenceKeepsTheUsesOfTheLeftSet) {
    EXPECT_EQ(
        Script(std::string(POINTS) +
               "var s; s = Edge(a, b) + Edge(a, b) + Edge(a, c); print(EdgeGetCount(s - Edge(a, c), a, b));"),
        "2");
}
TEST_F(Edges, OperationsWithTheEmptySetKeepTheBox) {
    EXPECT_EQ(
        Script(std::string(POINTS) +
               "var s, n = Edge(); s = Edge(a, b); print(Edges(EdgeVertex(s + n, a)), Edges(EdgeVertex(n + "
               "s, b)), Edges(EdgeVertex(s ^ n, a)), Edges(n & s), Edges(n - s));"),
        "1 1 1 0 0");
}
TEST_F(Edges, OtherOperandsAreErrors) {
    for (const char* expression :
         {"e + 1", "e - a", "e & a", "e * 2", "e ^ a", "e == 1", "e != a", "e | UNIT_MATRIX"}) {
        EXPECT_EQ(Failure(std::string(POINTS) + "var e; e = Edge(a, b); print(" + expression + ");"),
                  "論理演算の型が不正です(Edge)")
            << expression;
    }
}
TEST_F(Edges, MatrixRoundsAndPutsEveryEdgeBackInOrder) {
    EXPECT_EQ(Script(std::string(POINTS) +
                     "var e; e = (Edge(a, b) + Edge(a, c)) * UNIT_MATRIX.scale(-0.55, 1, 1); print(e, "
                     "EdgeGetCount(e, a, Vertex(-6, 0, 0)), Edges(EdgeVertex(e, Vertex(-6, 0, 0))));"),
              "(     0,     0,     0)-(     0,    10,     0):  1\n"
              "(    -6,     0,     0)-(     0,     0,     0):  1\n"
              " 1 1");
}
TEST_F(Edges, MatrixRoundsToTheNearestAndHalvesTowardZero) {
    EXPECT_EQ(Script("print(Edge(Vertex(3, -3, 1), Vertex(5, 0, 0)) * UNIT_MATRIX.scale(0.75, 0.75, 0.75));"),
              "(     2,    -2,     1)-(     4,     0,     0):  1\n");
    EXPECT_EQ(Script("print(Edge(Vertex(3, -3, 1), Vertex(5, 0, 0)) * UNIT_MATRIX.scale(0.5, 0.5, 0.5));"),
              "(     1,    -1,     0)-(     2,     0,     0):  1\n");
}
TEST_F(Edges, EdgesThatAMatrixMakesEqualAddTheirUses) {
    EXPECT_EQ(Script(std::string(POINTS) +
                     "var e; e = (Edge(a, b) + Edge(c, d)) * UNIT_MATRIX.scale(1, 0, 1); print(e);"),
              "(     0,     0,     0)-(    10,     0,     0):  2\n");
}
TEST_F(Edges, SelectSelectsThePolygonsThatOwnAnEdge) {
    Script(std::string(POINTS) + PAIR +
           "tri(0, 0, 0, 10, 0, 0, 5, -9, 0); EdgeSelect(Edge(b, a), 1, SELECT_UPDATE);");
    EXPECT_EQ(Selected(), "101");
    RunMore("EdgeSelect(Edge(b, d), 1, SELECT_OR);");
    EXPECT_EQ(Selected(), "111");
    RunMore("EdgeSelect(Edge(c, b), 0, SELECT_UPDATE);");
    EXPECT_EQ(Selected(), "001");
    EXPECT_EQ(SelectCount, 1);
    RunMore("EdgeSelect(Edge(a, d), 1, SELECT_UPDATE);");  // a diagonal of the two is an edge of none
    EXPECT_EQ(Selected(), "000");
    EXPECT_EQ(Failure("EdgeSelect(Edge(), 1);"), "引数の数が不正です。( EdgeSelect )");
}
TEST_F(Edges, TheClosingEdgeBelongsToThePolygon) {
    Script(
        "quad(Vertex(0, 0, 0), Vertex(9, 0, 0), Vertex(9, 9, 0), Vertex(0, 9, 0)); SelectAll(0); "
        "EdgeSelect(Edge(Vertex(0, 9, 0), Vertex(0, 0, 0)), 1, 0);");
    EXPECT_EQ(Selected(), "1");
}
TEST_F(Edges, CapacityGrowsBy256WhenTheSetIsFull) {
    Start();
    RunMore(
        "var e = Edge(), i; for (i = 0; i < 256; i++) e = e + Edge(Vertex(i, 0, 0), Vertex(0, i + 1, 0));");
    ASSERT_TRUE(IsEdge(StackBuf[0]));
    EXPECT_EQ(EdgeElements(StackBuf[0]).size(), 256U);
    EXPECT_EQ(EdgeCapacity(StackBuf[0]), 256);
    RunMore("e = e + Edge(Vertex(-1, 0, 0), Vertex(0, 0, 5));");
    EXPECT_EQ(EdgeCapacity(StackBuf[0]), 512);
    EXPECT_TRUE(std::ranges::is_sorted(EdgeElements(StackBuf[0]), EdgeLess));
}
TEST_F(Edges, SelectOfManyGivesWhatInsertingOneByOneGives) {
    EXPECT_EQ(Script("var i, e, a, b, c; e = Edge(); for (i = 0; i < 300; i++) { a = Vertex(i * 37 % 10, i * "
                     "91 % 5, 0);"
                     "b = Vertex(-i % 4, i % 7, 3); c = Vertex(i % 5, -3, i % 3); quad(a, b, c, a); e = e + "
                     "Edge(a, b) + Edge(b, c) + Edge(c, a) + Edge(a, a); }"
                     "print(tostring(e) == tostring(EdgeSelect()), Edges(e) > 100);"),
              "TRUE TRUE");
}

}  // namespace
}  // namespace quelmark::test
