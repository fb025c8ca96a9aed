// Polygon records, CurrentPolygon and the functions on them.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Polygons : public ModelTest {};

// ---- vertices of CurrentPolygon ----

TEST_F(Polygons, SetAndGetVertexKeepAllWordsAndTakeTheValidBitsFromTheType) {
    EXPECT_EQ(Script("PolySetVertex(Vertex(1, 2, 3, 4, 5, 6, 7, 8), 5); PolyType(POLY_UVSHADE);"
                     "print(PolyGetVertex(5));"),
              "( 1   , 2   , 3    ) ( 4       , 5       , 6        ) ( 7   , 8    )");
}
TEST_F(Polygons, SetVertexIsBoundedByTheEditBufferNotByTheCount) {
    EXPECT_EQ(Script("PolySetVertex(Vertex(1, 1, 1), 31); print(PolyVertexs());"), "0");
    EXPECT_EQ(Failure("PolySetVertex(Vertex(1, 1, 1), 32);"), "2番目の引数の値が不正です。(SetVertex)");
    EXPECT_EQ(Failure("PolySetVertex(Vertex(1, 1, 1), -1);"), "2番目の引数の値が不正です。(SetVertex)");
}
TEST_F(Polygons, GetVertexOutsideTheEditBufferIsAnError) {
    EXPECT_EQ(Failure("PolyGetVertex(32);"), "1番目の引数の値が不正です。(PolyGetVertex)");
    EXPECT_EQ(Failure("PolyGetVertex(-1);"), "1番目の引数の値が不正です。(PolyGetVertex)");
}
TEST_F(Polygons, InsertingAtTheCountAppends) {
    EXPECT_EQ(Script("PolyInsVertex(Vertex(1, 0, 0), 0); PolyInsVertex(Vertex(3, 0, 0), 1);"
                     "PolyInsVertex(Vertex(2, 0, 0), 1);"
                     "print(PolyVertexs(), PolyGetVertex(0), PolyGetVertex(1), PolyGetVertex(2));"),
              "3 ( 1   , 0   , 0    ) ( 2   , 0   , 0    ) ( 3   , 0   , 0    )");
}
TEST_F(Polygons, InsertingBehindTheCountIsAnError) {
    EXPECT_EQ(Failure("PolyInsVertex(Vertex(1, 0, 0), 1);"), "2番目の引数の値が不正です。(InsVertex)");
}
TEST_F(Polygons, InsertingAtTheLastPlaceOfTheEditBufferIsAnError) {
    EXPECT_EQ(Failure("PolyVertexs(31); PolyInsVertex(Vertex(1, 0, 0), 31);"),
              "2番目の引数の値が不正です。(InsVertex)");
}
TEST_F(Polygons, InsertingIntoAFullEditBufferIsAnError) {
    EXPECT_EQ(Failure("PolyVertexs(32); PolyInsVertex(Vertex(1, 0, 0), 0);"),
              "2番目の引数の値が不正です。(InsVertex)");
    EXPECT_EQ(Failure("PolyVertexs(30000); PolyInsVertex(Vertex(1, 0, 0), 0);"),
              "2番目の引数の値が不正です。(InsVertex)");
}
TEST_F(Polygons, DeletingAVertexMovesTheFollowingDown) {
    EXPECT_EQ(
        Script("tri(1, 0, 0, 2, 0, 0, 3, 0, 0); PolyDelVertex(0); print(PolyVertexs(), PolyGetVertex(1));"),
        "2 ( 3   , 0   , 0    )");
}
TEST_F(Polygons, DeletingAtTheCountReportsTheGetter) {
    EXPECT_EQ(Failure("tri(1, 0, 0, 2, 0, 0, 3, 0, 0); PolyDelVertex(3);"),
              "1番目の引数の値が不正です。(PolyGetVertex)");
}
TEST_F(Polygons, DeletingAVertexWithACountBeyondTheBufferStaysInside) {
    EXPECT_EQ(Script("PolyVertexs(30000); PolyDelVertex(31); print(PolyVertexs());"), "29999");
}
TEST_F(Polygons, HeaderWordsAreSetAndReturned) {
    EXPECT_EQ(
        Script("print(PolyVertexs(7), PolyType(2), PolyAttr(3), PolyObj(4), PolyVertexs(), PolyAttr(-1));"),
        "7 2 3 4 7 -1");
}
TEST_F(Polygons, ShiftMakesAVertexTheFirst) {
    EXPECT_EQ(Script("tri(1, 0, 0, 2, 0, 0, 3, 0, 0); PolyShiftVertex(2);"
                     "print(PolyGetVertex(0), PolyGetVertex(1), PolyGetVertex(2));"),
              "( 3   , 0   , 0    ) ( 1   , 0   , 0    ) ( 2   , 0   , 0    )");
}
TEST_F(Polygons, ShiftOutsideTheCountDoesNothing) {
    EXPECT_EQ(Script("tri(1, 0, 0, 2, 0, 0, 3, 0, 0); PolyShiftVertex(3); PolyShiftVertex(-1); "
                     "print(PolyGetVertex(0));"),
              "( 1   , 0   , 0    )");
}
TEST_F(Polygons, InverseReversesTheOrder) {
    EXPECT_EQ(
        Script("tri(1, 0, 0, 2, 0, 0, 3, 0, 0); PolyInvVertex(); print(PolyGetVertex(0), PolyGetVertex(1));"),
        "( 3   , 0   , 0    ) ( 2   , 0   , 0    )");
}
TEST_F(Polygons, VertexFunctionsWithAWildCountStayInsideTheEditBuffer) {
    EXPECT_EQ(
        Script("PolyVertexs(5000); PolyShiftVertex(31); PolyInvVertex(); PolyVector(1); PolyVertexs(-5);"
               "PolyShiftVertex(0); PolyInvVertex(); PolyVector(1); print(PolyVertexs());"),
        "-5");
}

// ---- plane normal ----

TEST_F(Polygons, PlaneNormalHasLength256) {
    EXPECT_EQ(Script("tri(0, 0, 0, 100, 0, 0, 0, 100, 0); print(PolyVector());"),
              "(   0.0000,   0.0000, 256.0000 )");
}
TEST_F(Polygons, PlaneNormalOfCollinearVerticesIsZero) {
    EXPECT_EQ(Script("tri(0, 0, 0, 10, 10, 10, 20, 20, 20); print(PolyVector());"),
              "(   0.0000,   0.0000,   0.0000 )");
}
TEST_F(Polygons, VectorIsRecomputedOnlyWithAFlag) {
    EXPECT_EQ(
        Script(
            "tri(0, 0, 0, 100, 0, 0, 0, 100, 0); PolyInvVertex(); print(PolyVector(0), PolyVector(TRUE));"),
        "(   0.0000,   0.0000, 256.0000 ) (   0.0000,   0.0000, -256.0000 )");
}

// ---- append, load, save, delete ----

TEST_F(Polygons, AppendStoresTheRecordAndCountsTheSelection) {
    Script("tri(0, 0, 0, 100, 0, 0, 0, 100, 0); PolyAppend(); PolyAppend(FALSE); PolyAppend(5);");
    EXPECT_EQ(Selected(), "1001");
    EXPECT_EQ(SelectCount, 2);
    EXPECT_EQ(Polygon(3).select, 1);
    EXPECT_EQ(Polygon(0).header.size, 24 + 16 * 3);
    EXPECT_EQ(Polygon(0).normal[2], 256);
    EXPECT_EQ(CurrentPolygon->select, 1);
}
TEST_F(Polygons, AppendKeepsNormalsAndMappingOfAPlainPolygonUntilItIsSaved) {
    Script("PolyVertexs(1); PolySetVertex(Vertex(1, 2, 3, 4, 5, 6, 7, 8), 0); PolyAppend(1);");
    EXPECT_EQ(Polygon(0).vertex[0].nx, 4);
    EXPECT_EQ(RunMore("PolyLoadInit(); PolyLoad(); PolySave(); print(PolyGetVertex(0));"),
              "( 1   , 2   , 3    )");
    EXPECT_EQ(Polygon(0).vertex[0].nx, 0);
    EXPECT_EQ(Polygon(0).vertex[0].u, 0);
    EXPECT_EQ(CurrentPolygon->vertex[0].nx, 4);
}
TEST_F(Polygons, AppendOfNoVerticesTripsTheRecordSize) {
    EXPECT_NE(Failure("PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
}
TEST_F(Polygons, AppendOfMoreVerticesThanTheEditBufferTripsTheRecordSize) {
    EXPECT_NE(Failure("PolyVertexs(33); PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
    EXPECT_NE(Failure("PolyVertexs(5000); PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
    EXPECT_NE(Failure("PolyVertexs(-1); PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
    EXPECT_EQ(PolygonTop(), nullptr);
}
TEST_F(Polygons, TheLargestRecordHas1023Vertices) {
    ModelExit();
    ModelInit(1 << 16, 1, 1, 2000);
    Script("PolyVertexs(1023); PolyAppend();");
    EXPECT_EQ(PolygonTop()->header.size, 16392);
    EXPECT_NE(Failure("PolyVertexs(1024); PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
}
TEST_F(Polygons, AppendIntoAFullBufferStoresNothing) {
    ModelExit();
    ModelInit(73, 1, 1, 32);
    EXPECT_EQ(
        Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); tri(5, 5, 5, 6, 6, 6, 7, 7, 7); print(SelectPolygons());"),
        "1");
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferAppend)\n");
    EXPECT_EQ(Selected(), "1");
}
TEST_F(Polygons, LoadWalksTheSelectedOnesAndEndsWithZero) {
    EXPECT_EQ(
        Script("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyAppend(0); tri(3, 0, 0, 0, 0, 0, 0, 1, 0);"
               "PolyLoadInit(); PolyLoad(); print(PolyGetVertex(0)); PolyLoad(); print(PolyGetVertex(0));"
               "print(PolyLoad()); PolyLoad(); print(PolyGetVertex(0));"),
        "( 1   , 0   , 0    )( 3   , 0   , 0    )0( 1   , 0   , 0    )");
}
TEST_F(Polygons, LoadOfAnEmptyModelIsZero) {
    EXPECT_EQ(Script("print(PolyLoad(), PolyLoad());"), "0 0");
}
TEST_F(Polygons, LoadByHandleLoadsThatRecord) {
    EXPECT_EQ(Script("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); tri(2, 0, 0, 0, 0, 0, 0, 1, 0); var a, b;"
                     "PolyLoadInit(); a = PolyLoad(); b = PolyLoad(); print(PolyLoad(a) == a, a != b);"
                     "print(PolyGetVertex(0)); PolyLoad(b); print(PolyGetVertex(0));"),
              "TRUE TRUE( 1   , 0   , 0    )( 2   , 0   , 0    )");
}
TEST_F(Polygons, LoadOfHandleZeroKeepsWhatIsLoaded) {
    EXPECT_EQ(
        Script("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); print(PolyLoad(0)); PolySave();"),
        "0");
}
TEST_F(Polygons, LoadOfAHandleThatNamesNoRecordIsAnError) {
    const std::string expected = "ポリゴンのハンドルが不正です。(PolyLoad)";
    EXPECT_EQ(Failure("PolyLoad(1);"), expected);
    const std::string two = "tri(1, 0, 0, 0, 0, 0, 0, 1, 0); tri(2, 0, 0, 0, 0, 0, 0, 1, 0);";
    for (const char* handle : {"2", "-1", "1000", "2147483647", "-2147483648", "h + 1", "h * 3"}) {
        EXPECT_EQ(
            Failure(two + "var h; PolyLoadInit(); PolyLoad(); h = PolyLoad(); PolyLoad(" + handle + ");"),
            expected)
            << handle;
    }
}
TEST_F(Polygons, AHandleIsStaleAfterItsPolygonWasDeleted) {
    EXPECT_EQ(Failure("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); tri(2, 0, 0, 0, 0, 0, 0, 1, 0); var h;"
                      "PolyLoadInit(); PolyLoad(); h = PolyLoad(); PolyDelete(); PolyLoad(h);"),
              "ポリゴンのハンドルが不正です。(PolyLoad)");
}
TEST_F(Polygons, AHandleBehindAPolygonThatGrewIsStale) {
    EXPECT_EQ(Failure("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); tri(2, 0, 0, 0, 0, 0, 0, 1, 0); var h, first;"
                      "PolyLoadInit(); first = PolyLoad(); h = PolyLoad(); PolyLoad(first);"
                      "PolyInsVertex(Vertex(9, 9, 9), 3); PolySave(); PolyLoad(h);"),
              "ポリゴンのハンドルが不正です。(PolyLoad)");
}
TEST_F(Polygons, SaveWithoutALoadIsAnError) {
    EXPECT_EQ(Failure("PolySave();"), "PolyLoadされていません。(Vertex:PolySave)");
    EXPECT_EQ(
        Failure("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); PolyLoadInit(); PolySave();"),
        "PolyLoadされていません。(Vertex:PolySave)");
}
TEST_F(Polygons, SaveAfterTheLoadedPolygonWasDeletedIsAnError) {
    EXPECT_EQ(
        Failure("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); PolyDelete(); PolySave();"),
        "PolyLoadされていません。(Vertex:PolySave)");
}
TEST_F(Polygons, SaveGrowsTheRecordAndKeepsTheWalk) {
    EXPECT_EQ(
        Script(
            "tri(1, 0, 0, 0, 0, 0, 0, 1, 0); tri(2, 0, 0, 0, 0, 0, 0, 1, 0); tri(3, 0, 0, 0, 0, 0, 0, 1, 0);"
            "PolyLoadInit(); while (PolyLoad() != 0) { PolyInsVertex(Vertex(9, 9, 9), 3); PolySave(); }"
            "PolyLoadInit(); while (PolyLoad() != 0) print(PolyVertexs(), PolyGetVertex(0));"),
        "4 ( 1   , 0   , 0    )4 ( 2   , 0   , 0    )4 ( 3   , 0   , 0    )");
}
TEST_F(Polygons, SaveOfFewerVerticesKeepsTheLargerBlock) {
    Script("tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); PolyDelVertex(0); PolySave();");
    EXPECT_EQ(Polygon(0).vers, 2);
    EXPECT_EQ(Polygon(0).header.size, 72);
}
TEST_F(Polygons, SaveIntoAFullBufferLeavesTheRecordAsItWas) {
    ModelExit();
    ModelInit(73, 1, 1, 32);
    Script(
        "tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); PolyInsVertex(Vertex(9, 9, 9), 0); "
        "PolySave();");
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferInsert)\n");
    EXPECT_EQ(Polygon(0).vers, 3);
    EXPECT_EQ(Polygon(0).vertex[0].x, 1);
}
TEST_F(Polygons, SaveRecomputesThePlaneNormalInBothPlaces) {
    Script("tri(0, 0, 0, 100, 0, 0, 0, 100, 0); PolyLoadInit(); PolyLoad(); PolyInvVertex(); PolySave();");
    EXPECT_EQ(Polygon(0).normal[2], -256);
    EXPECT_EQ(CurrentPolygon->normal[2], -256);
}
TEST_F(Polygons, SaveKeepsTheSelectionCountRight) {
    Script(
        "tri(0, 0, 0, 100, 0, 0, 0, 100, 0); PolyLoadInit(); var h = PolyLoad(); PolyAppend(0); PolySave();");
    EXPECT_EQ(Selected(), "00");
    EXPECT_EQ(SelectCount, 0);
}
TEST_F(Polygons, DeleteRemovesTheSelectedAndMarksTheirObjects) {
    Script(
        "ObjAppend(\"a\", \"\"); ObjAppend(\"b\", \"\"); PolyObj(1); tri(1, 0, 0, 0, 0, 0, 0, 1, 0);"
        "PolyObj(0); PolyAppend(0); PolyAppend(1); ObjEdit(0, 0); ObjEdit(1, 0); PolyLoadInit();"
        "PolyLoad(); SelectAll(0); SelectObj(1, 1, SELECT_OR); PolyDelete();");
    EXPECT_EQ(Selected(), "00");
    EXPECT_EQ(SelectCount, 0);
    EXPECT_EQ(ObjTable[0].edit, 0);
    EXPECT_EQ(ObjTable[1].edit, 1);
}
TEST_F(Polygons, DeleteInAnEmptyModelDoesNothing) {
    EXPECT_EQ(Script("PolyDelete(); print(AttrPolygons());"), "0");
}
TEST_F(Polygons, EveryChangeOfAStoredPolygonMarksItsObject) {
    const std::string make =
        "ObjAppend(\"a\", \"\"); tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyLoadInit(); PolyLoad(); ";
    for (const char* change : {"PolyAppend();", "PolySave();", "PolyDelete();", "PolyMove(UNIT_MATRIX);",
                               "PolyMap(1);", "PolyMap(0);", "PolyShade(0);", "PolyShade(1);",
                               "PolyShade(2);", "PolyShade(2); ObjEdit(0, 0); PolyShadeInv();",
                               "AttrChange(0);", "ObjChange(0);", "PolyDelete(Select());"}) {
        EXPECT_EQ(Script(make + "ObjEdit(0, 0); " + change + " print(ObjEdit(0));"), "1") << change;
        NewModel();
    }
}
TEST_F(Polygons, ObjectNumbersOutsideTheTableAreIgnoredByTheMark) {
    EXPECT_EQ(
        Script("PolyObj(1000); tri(1, 0, 0, 0, 0, 0, 0, 1, 0); PolyObj(-3); PolyAppend(1); PolyDelete();"
               "print(AttrPolygons());"),
        "0");
}
TEST_F(Polygons, SizesBeyondTheRecordWordsAreCut) {
    ModelExit();
    ModelInit(1024, 2000000000, -5, 2000000000);
    EXPECT_EQ(MaxVertex, 32767);
    EXPECT_EQ(ObjectTableSize, 32767);
    EXPECT_EQ(AttributeCount, 0);
    EXPECT_EQ(Script("print(AttrAppend(\"a\", 7), AttrName(0), AttrDelete(0));"), "-1  FALSE");
}
TEST_F(Polygons, ANegativeBufferSizeHoldsNothing) {
    ModelExit();
    ModelInit(-1024, 1, 1, 32);
    Script("tri(1, 0, 0, 0, 0, 0, 0, 1, 0);");
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferAppend)\n");
}

// ---- arguments ----

TEST_F(Polygons, ArgumentsAreCheckedByCountAndType) {
    EXPECT_EQ(Failure("PolySetVertex(Vertex(1, 2, 3));"), "引数の数が不正です。( PolySetVertex )");
    EXPECT_EQ(Failure("PolySetVertex(Vertex(1, 2, 3), 1.5);"),
              "2 番目の引数の型が不正です。( PolySetVertex )");
    EXPECT_EQ(Failure("PolyGetVertex(\"a\");"), "1 番目の引数の型が不正です。( PolyGetVertex )");
    EXPECT_EQ(Failure("PolyAppend(1.0);"), "1 番目の引数の型が不正です。( PolyAppend )");
    EXPECT_EQ(Failure("PolyLoad(TRUE);"), "1 番目の引数の型が不正です。( PolyLoad )");
    EXPECT_EQ(Failure("PolySave(1);"), "1 番目の引数の型が不正です。( PolySave )");
    EXPECT_EQ(Failure("PolyMove();"), "関数 PolyMove が定義されていません。");
    EXPECT_EQ(Failure("PolyMove(Vertex(1, 2, 3));"), "関数 PolyMove が定義されていません。");
}
TEST_F(Polygons, ConstantsHaveTheirValues) {
    EXPECT_EQ(
        Script("print(POLY_SIMPLE, POLY_SHADE, POLY_UV, POLY_UVSHADE, SELECT_UPDATE, SELECT_AND, SELECT_OR,"
               "SELECT_XOR, SELECT_ALL, SELECT_SUB, FILE_OVERWRITE, FILE_APPEND, OBJ_CREATE, OBJ_APPEND,"
               "ATTR_CREATE, ATTR_APPEND, VERTEX_MIN, VERTEX_MAX, NORMAL_OFF, NORMAL_ON, NORMAL_CREATE);"),
        "0 1 2 3 0 1 2 3 0 16 0 1 0 1 0 1 -32767 32767 0 1 2");
}

}  // namespace
}  // namespace quelmark::test
