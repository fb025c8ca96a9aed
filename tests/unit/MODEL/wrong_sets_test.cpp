// What a wrong call of the matrix, selection, vertex set and edge families reports, call by call.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

struct WrongCall {
    const char* source;
    const char* message;
};

class WrongCalls : public ModelTest {
  protected:
    void Report(std::span<const WrongCall> calls) {
        for (const WrongCall& call : calls) {
            EXPECT_EQ(Failure(call.source), call.message) << call.source;
        }
    }
};

constexpr WrongCall MATRIX_CALLS[] = {
    {"var v; v = vector(1, 2, 3); print(Matrix(v, v, v, v, v));", "Matrix: 引数の型が不正です。"},
    {"print(Matrix(1, 2));", "Matrix: 引数の型が不正です。"},
    {"print(Matrix(1, 2, 3, \"a\"));", "Matrix: 引数の型が不正です。"},
    {"print(Matrix(UNIT_MATRIX));", "Matrix: 引数の型が不正です。"},
    {"print(Matrix(TRUE, 1, 2));", "Matrix: 引数の型が不正です。"},
    {"var a[3] = {1, 2, \"c\"}; print(Matrix(a));", "Matrix: 引数の型が不正です。"},
    {"print(axis(UNIT_MATRIX, 0, 1.0));", "3 番目の引数の型が不正です。( axis )"},
    {"print(axis(UNIT_MATRIX, 0));", "引数の数が不正です。( axis )"},
    {"print(rot(UNIT_MATRIX, 1.0, 45));", "2 番目の引数の型が不正です。( rot )"},
    {"print(rot(UNIT_MATRIX, 1, \"45\"));", "3 番目の引数の型が不正です。( rot )"},
    {"print(rot(UNIT_MATRIX, 1));", "引数の数が不正です。( rot )"},
    {"print(move(UNIT_MATRIX));", "move: 引数の型が不正です。"},
    {"print(move(UNIT_MATRIX, 1, 2));", "move: 引数の型が不正です。"},
    {"print(move(UNIT_MATRIX, UNIT_MATRIX));", "move: 引数の型が不正です。"},
    {"print(scale(UNIT_MATRIX, 1, 2));", "move: 引数の型が不正です。"},
    {"print(scale(UNIT_MATRIX, 2));", "move: 引数の型が不正です。"},
    {"print(vec(UNIT_MATRIX, 1, 2, 3));", "vec: 引数の型が不正です。"},
    {"print(vec(UNIT_MATRIX));", "vec: 引数の型が不正です。"},
    {"print(vec(UNIT_MATRIX, vector(1, 0, 0), \"x\"));", "vec: 引数の型が不正です。"},
    {"var a[4]; print(getvector(UNIT_MATRIX, a));", "代入されていない変数を参照しました。"},
    {"var a[3]; getvector(UNIT_MATRIX, a);", "引数の配列の要素数が足りません。(getvector)"},
    {"getvector(UNIT_MATRIX, \"a\");", "2 番目の引数の型が不正です。( getvector )"},
    {"getvector(UNIT_MATRIX);", "引数の数が不正です。( getvector )"},
    {"print(UNIT_MATRIX * \"a\");", "型が不正です。（演算子*）"},
    {"print(UNIT_MATRIX * vector(1, 2, 3));", "型が不正です。（演算子*）"},
    {"print(UNIT_MATRIX / 2);", "型が不正です。（演算子/）"},
    {"print(UNIT_MATRIX / vector(1, 2, 3));", "型が不正です。（演算子/）"},
    {"var a; a = UNIT_MATRIX == 1;", "代入されていない変数を参照しました。"},
    {"var a; a = UNIT_MATRIX != \"m\";", "代入されていない変数を参照しました。"},
    {"if (UNIT_MATRIX == 1) { print(\"y\"); }", "代入されていない変数を参照しました。"},
    {"print(-UNIT_MATRIX);", "演算子が定義されていません。"},
    {"print(!UNIT_MATRIX);", "演算子が定義されていません。"},
    {"print(UNIT_MATRIX % 2);", "演算子が定義されていません。"},
    {"print(UNIT_MATRIX < UNIT_MATRIX);", "演算子が定義されていません。"},
    {"var m; m = UNIT_MATRIX; m++;", "演算子が定義されていません。"},
    {"print(move(1, 2, 3));", "関数 move が定義されていません。"},
    {"print(vector(1, 2, 3).rot(0, 1));", "関数 rot が定義されていません。"},
    {"print(vector());", "引数の型が不正です。(Vector:vector)"},
    {"print(vector(1, 2));", "引数の型が不正です。(Vector:vector)"},
    {"print(vector(\"1\", 2, 3));", "引数の型が不正です。(Vector:vector)"},
    {"print(vector(TRUE, 2, 3));", "引数の型が不正です。(Vector:vector)"},
    {"print(vector(UNIT_MATRIX));", "引数の型が不正です。(Vector:vector)"},
    {"var a[2] = {1, 2}; print(vector(a));", "引数の型が不正です。(Vector:vector)"},
    {"var a[3]; print(vector(1, 2, 3).element(a));", "代入されていない変数を参照しました。"},
    {"var a[4]; vector(1, 2, 3).element(a);", "引数配列のサイズが不正です。(Vector:element)"},
    {"var a[2]; vector(1, 2, 3).element(a);", "引数配列のサイズが不正です。(Vector:element)"},
    {"vector(1, 2, 3).element(3);", "2 番目の引数の型が不正です。( element )"},
    {"vector(1, 2, 3).element();", "引数の数が不正です。( element )"},
    {"print(vector(1, 2, 3) + 1);", "型が不正です。（演算子+）"},
    {"print(vector(1, 2, 3) - \"s\");", "型が不正です。（演算子-）"},
    {"print(vector(1, 2, 3) * \"s\");", "型が不正です。（演算子*）"},
    {"print(vector(1, 2, 3) . 2);", "型が不正です。（演算子.）"},
    {"print(vector(1, 2, 3) . UNIT_MATRIX);", "型が不正です。（演算子.）"},
    {"print(vector(1, 2, 3) / 2);", "演算子が定義されていません。"},
    {"print(!vector(1, 2, 3));", "演算子が定義されていません。"},
    {"var a[3]; print(vector(a));", "引数の型が不正です。(Vector:vector)"},
    {"print(UNIT_MATRIX & UNIT_MATRIX);", "演算子が定義されていません。"},
    {"print(UNIT_MATRIX * TRUE);", "型が不正です。（演算子*）"},
    {"print(vector(1, 2, 3) * TRUE);", "型が不正です。（演算子*）"},
    {"print(vector(1, 2, 3) < vector(1, 2, 3));", "演算子が定義されていません。"},
    {"print(getvector(UNIT_MATRIX, TRUE));", "2 番目の引数の型が不正です。( getvector )"},
    {"print(getvector(UNIT_MATRIX, 1.0));", "2 番目の引数の型が不正です。( getvector )"},
    {"var a[3] = {1, 2, 3}; print(Matrix(a, 4));", "Matrix: 引数の型が不正です。"},
    {"axis(UNIT_MATRIX, 0, 1, 2);", "4 番目の引数の型が不正です。( axis )"},
    {"vx(vector(1, 2, 3), 1);", "2 番目の引数の型が不正です。( vx )"},
    {"2 * UNIT_MATRIX;", "整数演算の型が不正です。"},
    {"2 * vector(1, 2, 3);", "整数演算の型が不正です。"},
};
TEST_F(WrongCalls, MatricesAndVectorsReportTheirArguments) {
    Report(MATRIX_CALLS);
}

constexpr WrongCall SELECTION_CALLS[] = {
    {"SelectAll();", "引数の数が不正です。( SelectAll )"},
    {"SelectAll(\"a\");", "1 番目の引数の型が不正です。( SelectAll )"},
    {"SelectAll(1, 1.0);", "2 番目の引数の型が不正です。( SelectAll )"},
    {"SelectAll(1, 1, 1);", "3 番目の引数の型が不正です。( SelectAll )"},
    {"print(SelectAll(1));", "代入されていない変数を参照しました。"},
    {"SelectArea(1, 0, vector(1, 2, 3), Vertex(0, 0, 0));", "引数の型が不正です。(SelectArea)"},
    {"SelectArea(1, 0, Vertex(0, 0, 0), \"x\");", "引数の型が不正です。(SelectArea)"},
    {"SelectArea(1, 0, Vertex(0, 0, 0), 5);", "4 番目の引数の型が不正です。( SelectArea )"},
    {"SelectArea(1, 0, Vertex(0, 0, 0));", "引数の数が不正です。( SelectArea )"},
    {"SelectAttr(1);", "引数の数が不正です。( SelectAttr )"},
    {"SelectObj(\"a\", 1);", "1 番目の引数の型が不正です。( SelectObj )"},
    {"SelectPolyType(1, 1, \"x\");", "3 番目の引数の型が不正です。( SelectPolyType )"},
    {"var b[1]; SelectBox(b);", "引数配列のサイズが不正です。(SelectBox)"},
    {"SelectBox(3);", "1 番目の引数の型が不正です。( SelectBox )"},
    {"SelectBox();", "引数の数が不正です。( SelectBox )"},
    {"SelectPolygons(\"x\");", "1 番目の引数の型が不正です。( SelectPolygons )"},
    {"SelectPolygons(1);", "1 番目の引数の型が不正です。( SelectPolygons )"},
    {"SelectPolygons(UNIT_MATRIX);", "1 番目の引数の型が不正です。( SelectPolygons )"},
    {"Select(1);", "1 番目の引数の型が不正です。( Select )"},
    {"Select(\"a\");", "1 番目の引数の型が不正です。( Select )"},
    {"Select(Select(), 1);", "2 番目の引数の型が不正です。( SelectLoad )"},
    {"SelectCurrent(1);", "1 番目の引数の型が不正です。( SelectCurrent )"},
    {"SelectNumber(Select(), 1.0);", "2 番目の引数の型が不正です。( SelectNumber )"},
    {"SelectNumber(Select());", "引数の数が不正です。( SelectNumber )"},
    {"SelectNumber(1, 1);", "関数 SelectNumber が定義されていません。"},
    {"PolyLoad(Select());", "引数の数が不正です。( PolyLoad )"},
    {"PolyDelete(Select(), 1);", "2 番目の引数の型が不正です。( PolyDelete )"},
    {"SelectAdjoint(Select(), 1);", "2 番目の引数の型が不正です。( SelectAdjoint )"},
    {"Select() & 1;", "論理演算の型が不正です(Select)"},
    {"Select() | \"a\";", "論理演算の型が不正です(Select)"},
    {"Select() ^ UNIT_MATRIX;", "論理演算の型が不正です(Select)"},
    {"print(Select() == 1);", "論理演算の型が不正です(Select)"},
    {"print(Select() != \"x\");", "論理演算の型が不正です(Select)"},
    {"print(Select() + Select());", "演算子が不正です。(SelectClass)"},
    {"print(-Select());", "演算子が不正です。(SelectClass)"},
    {"print(Select() < Select());", "演算子が不正です。(SelectClass)"},
    {"print(Select() * 2);", "演算子が不正です。(SelectClass)"},
    {"var s; s = Select(); s++;", "演算子が不正です。(SelectClass)"},
    {"print(Select() . 1);", "演算子が不正です。(SelectClass)"},
    {"print(Select() << 1);", "演算子が不正です。(SelectClass)"},
};
TEST_F(WrongCalls, SelectionsReportTheirArguments) {
    Report(SELECTION_CALLS);
}

constexpr WrongCall VERTEXSET_CALLS[] = {
    {"VertexSet(1);", "VertexSet:引数の型が異なる"},
    {"VertexSet(1, 2, 3);", "VertexSet:引数の型が異なる"},
    {"VertexSet(Vertex(1, 2, 3), Vertex(1, 2, 3));", "VertexSet:引数の型が異なる"},
    {"VertexSet(VertexSet());", "VertexSet:引数の型が異なる"},
    {"VertexSet(\"a\");", "VertexSet:引数の型が異なる"},
    {"var a[3] = {1, 2, 3}; VertexSet(a);", "VertexSet:引数の型が異なる"},
    {"VertexSelect(1);", "VertexSelect:引数の型が異なる"},
    {"VertexSelect(\"a\");", "VertexSelect:引数の型が異なる"},
    {"print(VertexSet() == 1);", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() != Vertex(1, 2, 3));", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() & Vertex(1, 2, 3));", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() ^ vector(1, 2, 3));", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() * 2);", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() * Vertex(1, 2, 3));", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() + UNIT_MATRIX);", "論理演算の型が不正です(Vertex)"},
    {"print(VertexSet() + Edge());", "論理演算の型が不正です(Vertex)"},
    {"print(!VertexSet());", "演算子が定義されていません。"},
    {"print(-VertexSet());", "演算子が定義されていません。"},
    {"print(VertexSet() / UNIT_MATRIX);", "演算子が定義されていません。"},
    {"print(Vertex(1, 2, 3) + VertexSet());", "型が不正です。（演算子+）"},
    {"var s; s = VertexSet(); print(VertexGetVertex(s, 0));", "代入されていない変数を参照しました。"},
    {"VertexGetVertex(VertexSet(), \"a\");", "2 番目の引数の型が不正です。( VertexGetVertex )"},
    {"VertexGetVertex(VertexSet(), 1.0);", "2 番目の引数の型が不正です。( VertexGetVertex )"},
    {"VertexGetVertex(VertexSet());", "引数の数が不正です。( VertexGetVertex )"},
    {"Vertexs(VertexSet(), 1);", "2 番目の引数の型が不正です。( Vertexs )"},
    {"Vertexs(Edge());", "関数 Vertexs が定義されていません。"},
    {"VertexSelectPosition(VertexSet(), 1);", "VertexSelectPosition: 引数の型が異なる"},
    {"VertexSelectPosition(VertexSet());", "VertexSelectPosition: 引数の型が異なる"},
    {"VertexSelectPosition(VertexSet(), 1, 2, 3);", "VertexSelectPosition: 引数の型が異なる"},
    {"VertexSelectPosition(VertexSet(), VertexSet());", "VertexSelectPosition: 引数の型が異なる"},
    {"VertexSelect(VertexSet(), 1);", "引数の数が不正です。( VertexSelect )"},
    {"VertexSelect(VertexSet());", "引数の数が不正です。( VertexSelect )"},
};
TEST_F(WrongCalls, VertexSetsReportTheirArguments) {
    Report(VERTEXSET_CALLS);
}

constexpr WrongCall EDGE_CALLS[] = {
    {"Edge(Vertex(1, 2, 3));", "Edge:引数の型が異なる"},
    {"Edge(vector(1, 2, 3), vector(1, 2, 3));", "Edge:引数の型が異なる"},
    {"Edge(Vertex(1, 2, 3), Vertex(1, 2, 3), 1);", "Edge:引数の型が異なる"},
    {"Edge(1, 2);", "Edge:引数の型が異なる"},
    {"Edge(Edge());", "Edge:引数の型が異なる"},
    {"EdgeSelect(1);", "EdgeSelect:引数の型が異なる"},
    {"EdgeSelect(Edge(), 1);", "引数の数が不正です。( EdgeSelect )"},
    {"EdgeSelect(Edge());", "引数の数が不正です。( EdgeSelect )"},
    {"var v[1]; EdgeGetVertex(Edge(), 0, v);", "引数配列のサイズが不正です。( Vertex:Position )"},
    {"EdgeGetVertex(Edge(), 0, 1);", "3 番目の引数の型が不正です。( EdgeGetVertex )"},
    {"EdgeGetVertex(Edge(), 0);", "引数の数が不正です。( EdgeGetVertex )"},
    {"EdgeGetCount(Edge(), 1.0);", "EdgeGetCount:引数の型が異なる"},
    {"EdgeGetCount(Edge());", "EdgeGetCount:引数の型が異なる"},
    {"EdgeGetCount(Edge(), vector(1, 2, 3), vector(1, 2, 3));", "EdgeGetCount:引数の型が異なる"},
    {"EdgeGetCount(Edge(), 1, Vertex(1, 2, 3));", "EdgeGetCount:引数の型が異なる"},
    {"EdgeGetCount(Edge(), Vertex(1, 2, 3), Vertex(1, 2, 3), 1);", "EdgeGetCount:引数の型が異なる"},
    {"EdgeVertex(Edge(), vector(1, 2, 3));", "引数の型が不正です(EdgeVertex)"},
    {"EdgeVertex(Edge());", "引数の型が不正です(EdgeVertex)"},
    {"EdgeVertex(Edge(), 1);", "引数の型が不正です(EdgeVertex)"},
    {"EdgeSelectCount(Edge());", "引数の型が不正です(EdgeSelectCount)"},
    {"EdgeSelectCount(Edge(), 1, 2, 3);", "引数の型が不正です(EdgeSelectCount)"},
    {"EdgeSelectCount(Edge(), \"a\");", "2 番目の引数の型が不正です。( EdgeSelectCount )"},
    {"Edges(Edge(), 1);", "2 番目の引数の型が不正です。( Edges )"},
    {"print(Edge() + Vertex(1, 2, 3));", "論理演算の型が不正です(Edge)"},
    {"print(Edge() & VertexSet());", "論理演算の型が不正です(Edge)"},
    {"print(Edge() * 2);", "論理演算の型が不正です(Edge)"},
    {"print(Edge() + UNIT_MATRIX);", "論理演算の型が不正です(Edge)"},
    {"print(Edge() == 1);", "論理演算の型が不正です(Edge)"},
    {"print(Edge() != VertexSet());", "論理演算の型が不正です(Edge)"},
    {"print(!Edge());", "演算子が定義されていません。"},
    {"print(Edge() / Edge());", "演算子が定義されていません。"},
    {"PolyShade(\"a\");", "1 番目の引数の型が不正です。( PolyShade )"},
    {"PolyShade();", "引数の数が不正です。( PolyShade )"},
};
TEST_F(WrongCalls, EdgesReportTheirArguments) {
    Report(EDGE_CALLS);
}

}  // namespace
}  // namespace quelmark::test
