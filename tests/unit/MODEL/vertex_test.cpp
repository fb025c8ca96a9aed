// The script class Vertex.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Vertices : public ModelTest {};

TEST_F(Vertices, ConstructorTruncatesTowardZero) {
    EXPECT_EQ(Script("print(Vertex(1.9, -1.9, 0));"), "( 1   , -1  , 0    )");
}
TEST_F(Vertices, ConstructorTakesNumbersVectorsAndArrays) {
    EXPECT_EQ(Script("var a = { 1, 2.5, 3, 9 }; print(Vertex(vector(4, 5, 6)), Vertex(a), Vertex(a, "
                     "vector(7, 8, 9)));"),
              "( 4   , 5   , 6    ) ( 1   , 2   , 3    ) "
              "( 1   , 2   , 3    ) ( 7       , 8       , 9        )");
}
TEST_F(Vertices, ConstructorTakesAMappingBehindANormal) {
    const std::string expected = "( 1   , 2   , 3    ) ( 4       , 5       , 6        ) ( 7   , 8    )";
    EXPECT_EQ(Script("print(Vertex(1, 2, 3, 4, 5, 6, 7.5, 8));"), expected);
    EXPECT_EQ(Script("print(Vertex(1, 2, 3, 4, 5, 6, vector(7, 8, 9)));"), expected);
    EXPECT_EQ(Script("var a = { 7, 8 }; print(Vertex(vector(1, 2, 3), vector(4, 5, 6), a));"), expected);
}
TEST_F(Vertices, ConstructorCutsTo16Bits) {
    EXPECT_EQ(Script("print(Vertex(65537, 32768, -32769));"), "( 1   , -32768, 32767 )");
}
TEST_F(Vertices, ConstructorSurvivesNumbersOutsideEveryRange) {
    EXPECT_EQ(Script("var a = 1e30; print(Vertex(a, 0.0 - a, a - a));"), "( 0   , 0   , 0    )");
}
TEST_F(Vertices, ConstructorWithoutArgumentsIsACountError) {
    EXPECT_EQ(Failure("Vertex();"), "引数の数が違います。(Vertex)");
}
TEST_F(Vertices, ConstructorWithoutAPositionIsATypeError) {
    const std::string expected = "引数の型が不正です。（Vertex）";
    for (const char* call :
         {"Vertex(1, 2);", "Vertex(\"a\");", "Vertex(1, 2, \"a\");", "Vertex(TRUE, 1, 2);",
          "var a[2]; Vertex(a);", "var b[3]; Vertex(b);", "Vertex(1, 2, 3, 4, 5);",
          "Vertex(1, 2, 3, 4, 5, 6, 7);", "Vertex(1, 2, 3, 4, 5, 6, \"a\");",
          "Vertex(1, 2, 3, 4, 5, 6, Vertex(1, 2, 3));", "var c[1]; Vertex(1, 2, 3, 4, 5, 6, c);",
          "Vertex(1, 2, 3, 4, 5, 6, 7, \"a\");"}) {
        EXPECT_EQ(Failure(call), expected) << call;
    }
}
TEST_F(Vertices, VectorMakesAVertexAsAMethod) {
    EXPECT_EQ(Script("print(vector(1, 2, 3).Vertex(4, 5, 6));"),
              "( 1   , 2   , 3    ) ( 4       , 5       , 6        )");
}
TEST_F(Vertices, TextOfAUnitNormalIs256) {
    EXPECT_EQ(Script("print(Vertex(0, 0, 0, 0, 0, 256));"),
              "( 0   , 0   , 0    ) ( 0       , 0       , 256      )");
}
TEST_F(Vertices, TextIsPaddedToAWidth) {
    EXPECT_EQ(Script("print(tostring(Vertex(1, 2, 3), 24));"), "    ( 1   , 2   , 3    )");
}
TEST_F(Vertices, ComponentsComeAsVectors) {
    EXPECT_EQ(Script("var v = Vertex(1, 2, 3, 4, 5, 6); print(v.Position(), v.Vector());"),
              "(   1.0000,   2.0000,   3.0000 ) (   4.0000,   5.0000,   6.0000 )");
}
TEST_F(Vertices, ComponentsComeAsIntegersIntoArrays) {
    EXPECT_EQ(Script("var v = Vertex(1, 2, 3, 4, 5, 6, 7, 8), a[4], b[3], c[2];"
                     "Position(v, a); Vector(v, b); Mapping(v, c); a[3] = 0;"
                     "print(a[0], a[1], a[2], a[3], b[0], b[2], c[0], c[1], typeof(a[0]));"),
              "1 2 3 0 4 6 7 8 INT");
}
TEST_F(Vertices, StoringIntoAnArrayReleasesWhatItHeld) {
    EXPECT_EQ(Script("var a[3], n; a[0] = \"x\" + 1; n = ObjectCount(); Vertex(1, 2, 3).Position(a); print(n "
                     "- ObjectCount());"),
              "1");
}
TEST_F(Vertices, ShortArraysAreErrors) {
    EXPECT_EQ(Failure("var a[2]; Vertex(1, 2, 3).Position(a);"),
              "引数配列のサイズが不正です。( Vertex:Position )");
    EXPECT_EQ(Failure("var a[2]; Vertex(1, 2, 3).Vector(a);"),
              "引数配列のサイズが不正です。( Vertex:Vector )");
    EXPECT_EQ(Failure("var a[1]; Vertex(1, 2, 3).Mapping(a);"),
              "引数配列のサイズが不正です。( Vertex:Mapping )");
    EXPECT_EQ(Failure("Vertex(1, 2, 3).Mapping();"), "引数の数が不正です。( Mapping )");
}
TEST_F(Vertices, LengthIsTruncatedAndItsSquareWraps) {
    EXPECT_EQ(Script("print(Vertex(0, 0, 0).VertexLength(Vertex(1, 1, 1)), Vertex(0, 0, "
                     "0).VertexLength2(Vertex(1, 2, 3)));"),
              "1 14");
    EXPECT_EQ(Script("var a = Vertex(-32767, -32767, -32767), b = Vertex(32767, 32767, 32767);"
                     "print(VertexLength(a, b), VertexLength2(a, b));"),
              "113508 -786420");
}
TEST_F(Vertices, LengthToAnythingElseIsAnError) {
    EXPECT_EQ(Failure("VertexLength(Vertex(1, 2, 3), \"a\");"), "2番目の引数の型が不正です。(VertexLength)");
    EXPECT_EQ(Failure("VertexLength2(Vertex(1, 2, 3), vector(1, 2, 3));"),
              "2番目の引数の型が不正です。(VertexLength2)");
    EXPECT_EQ(Failure("VertexLength(Vertex(1, 2, 3));"), "引数の数が不正です。( PolyVertexLength )");
    EXPECT_EQ(Failure("VertexLength2(Vertex(1, 2, 3), 5);"),
              "2 番目の引数の型が不正です。( PolyVertex2Length )");
}
TEST_F(Vertices, SumWrapsAt16BitsAndTakesOnlyWhatIsValid) {
    EXPECT_EQ(Script("print(Vertex(32767, 1, 1, 10, 10, 10, 5, 5) + Vertex(1, 1, 1, 1, 2, 3));"),
              "( -32768, 2   , 2    ) ( 11      , 12      , 13       ) ( 5   , 5    )");
    EXPECT_EQ(Script("print(Vertex(1, 1, 1) - Vertex(-32768, 2, 3));"), "( -32767, -1  , -2   )");
}
TEST_F(Vertices, SumWithAVectorMovesThePosition) {
    EXPECT_EQ(Script("print(Vertex(1, 2, 3) + vector(1.9, 2, -1.9), Vertex(1, 2, 3) - vector(1, 1, 1));"),
              "( 2   , 4   , 2    ) ( 0   , 1   , 2    )");
}
TEST_F(Vertices, SumWithAnythingElseIsATypeError) {
    EXPECT_EQ(Failure("Vertex(1, 2, 3) + \"a\";"), "型が不正です。（演算子+）");
    EXPECT_EQ(Failure("Vertex(1, 2, 3) - 1;"), "型が不正です。（演算子-）");
}
TEST_F(Vertices, MatrixMovesPositionAndTurnsTheNormal) {
    EXPECT_EQ(Script("print(Vertex(10, 0, 0, 256, 0, 0, 7, 8) * UNIT_MATRIX.move(1, 2, 3).rot(AXISZ, 90));"),
              "( 1   , 12  , 3    ) ( 0       , 256     , 0        ) ( 7   , 8    )");
}
TEST_F(Vertices, MatrixDoesNotRescaleTheNormal) {
    EXPECT_EQ(Script("print(Vertex(1, 1, 1, 256, 0, 0) * UNIT_MATRIX.scale(2, 2, 2));"),
              "( 2   , 2   , 2    ) ( 128     , 0       , 0        )");
}
TEST_F(Vertices, MatrixFloorsFractions) {
    EXPECT_EQ(Script("print(Vertex(3, -3, 0) * UNIT_MATRIX.scale(0.5, 0.5, 0.5), Vertex(0, 0, 0) * "
                     "UNIT_MATRIX.move(0.5, -0.5, 1.5));"),
              "( 1   , -2  , 0    ) ( 0   , -1  , 1    )");
}
TEST_F(Vertices, ProductWithAnythingElseIsATypeError) {
    EXPECT_EQ(Failure("Vertex(1, 2, 3) * 2;"), "型が不正です。（演算子*）");
    EXPECT_EQ(Failure("Vertex(1, 2, 3) * vector(1, 2, 3);"), "型が不正です。（演算子*）");
}
TEST_F(Vertices, EqualityComparesPositionsOnly) {
    EXPECT_EQ(Script("var a = Vertex(1, 2, 3), b = Vertex(1, 2, 3, 4, 5, 6), c = Vertex(1, 2, 4);"
                     "print(a == b, a != b, a == c, a != c);"),
              "TRUE FALSE FALSE TRUE");
}
TEST_F(Vertices, EqualityWithAnythingElseIsAnError) {
    EXPECT_EQ(Failure("Vertex(1, 2, 3) == 1;"), "演算の型が不正です");
    EXPECT_EQ(Failure("Vertex(1, 2, 3) != vector(1, 2, 3);"), "演算の型が不正です");
}
TEST_F(Vertices, OtherOperatorsAreUndefined) {
    EXPECT_EQ(Failure("Vertex(1, 2, 3) / 2;"), "演算子が定義されていません。");
}
TEST_F(Vertices, NoOperationLeaksAReference) {
    EXPECT_EQ(Script("var a = Vertex(1, 2, 3), n = ObjectCount(), b; b = (a + a - a) * UNIT_MATRIX; b = 0;"
                     "Position(a); tostring(a); print(ObjectCount() - n);"),
              "0");
}

}  // namespace
}  // namespace quelmark::test
