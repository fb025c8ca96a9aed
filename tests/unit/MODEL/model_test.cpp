#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Model : public ScriptTest {
  protected:
    std::int32_t bytes = 4096;
    Model() {
        registerMore = [this] {
            MatrixLibraryRegister();
            PolygonRegister();
            ModelInit(bytes, 3, 4, 8);
        };
    }
    void TearDown() override {
        ModelExit();
        ScriptTest::TearDown();
    }
    // A function that appends a triangle at x, selected.
    static constexpr const char* TRIANGLE =
        "function tri(x, sel) { PolyVertexs(3); PolySetVertex(Vertex(x, 0, 0), 0); PolySetVertex(Vertex(x + "
        "10, 0, 0), 1);"
        "PolySetVertex(Vertex(x, 10, 0), 2); PolyAppend(sel); }\n";
    std::string RunModel(const std::string& source) { return Run(TRIANGLE + source); }
    std::string FailModel(const std::string& source) {
        const std::string all = RunModel(source);
        return message.empty() ? "no error: " + all : message.substr(message.find("Error"));
    }
};

TEST_F(Model, BufferIsNeverFilledToItsLastByte) {
    BufferInit(16);
    EXPECT_NE(BufferAppend(8), nullptr);
    EXPECT_EQ(BufferAppend(8), nullptr);
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferAppend)\n");
    BufferExit();
}
TEST_F(Model, BufferChecksSizes) {
    BufferInit(64);
    EXPECT_THROW(BufferAppend(4), ScriptAbort);
    EXPECT_NE(message.find("size > sizeof( DataBuffer )"), std::string::npos);
    EXPECT_NE(message.find("MODEL\\BUFFER"), std::string::npos);
    EXPECT_THROW(BufferAppend(10), ScriptAbort);
    EXPECT_NE(message.find("( size & 3 ) == 0"), std::string::npos);
    BufferExit();
}
TEST_F(Model, EmptyBufferHasNoFirstBlock) {
    BufferInit(64);
    EXPECT_EQ(BufferTop(), nullptr);
    BufferExit();
}
TEST_F(Model, BufferNeverShrinksABlock) {
    BufferInit(64);
    DataBuffer* block = BufferAppend(16);
    EXPECT_EQ(BufferResize(block, 8), block);
    EXPECT_EQ(block->size, 16);
    BufferExit();
}
TEST_F(Model, GrowingWithoutRoomReportsAsInsertion) {
    BufferInit(32);
    DataBuffer* block = BufferAppend(16);
    EXPECT_EQ(BufferResize(block, 40), nullptr);
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferInsert)\n");
    BufferExit();
}
TEST_F(Model, CompactionKeepsTheOrder) {
    BufferInit(256);
    DataBuffer* blocks[5];
    for (int i = 0; i < 5; ++i) {
        blocks[i] = BufferAppend(8 + 4 * i);
    }
    BufferDelete(blocks[0]);
    BufferDelete(blocks[2]);
    BufferDelete(blocks[4]);
    BufferCompact();
    EXPECT_EQ(BufferTop()->size, 12);
    EXPECT_EQ(BufferNext(BufferTop())->size, 20);
    EXPECT_EQ(BufferNext(BufferNext(BufferTop())), nullptr);
    BufferExit();
}
TEST_F(Model, FreeingMemoryTwiceIsReported) {
    char raw[32] = {};
    EXPECT_THROW(MemoryFree(raw + 16), ScriptAbort);
    EXPECT_EQ(message.substr(0, 24), "Error Memory Block Error");
}

TEST_F(Model, VertexTruncatesTowardZero) {
    EXPECT_EQ(RunModel("print(Vertex(1.9, -1.9, 0));"), "( 1   , -1  , 0    )");
}
TEST_F(Model, VertexWithNormalAndMappingShowsBoth) {
    EXPECT_EQ(RunModel("print(Vertex(1, 2, 3, 0, 0, 256, 5, 6));"),
              "( 1   , 2   , 3    ) ( 0       , 0       , 256      ) ( 5   , 6    )");
}
TEST_F(Model, VertexWithoutArgumentsIsAnError) {
    EXPECT_EQ(FailModel("Vertex();"), "Error 引数の数が違います。(Vertex)");
    EXPECT_EQ(FailModel("Vertex(1, 2);"), "Error 引数の型が不正です。（Vertex）");
}
TEST_F(Model, VerticesAddAndCompareByPosition) {
    EXPECT_EQ(
        RunModel(
            "var a = Vertex(1, 2, 3), b = a + vector(1, 1, 1); print(b, b - a == Vertex(1, 1, 1), a != b);"),
        "( 2   , 3   , 4    ) TRUE TRUE");
    EXPECT_EQ(FailModel("Vertex(1, 2, 3) + 1;"), "Error 型が不正です。（演算子+）");
    EXPECT_EQ(FailModel("Vertex(1, 2, 3) * 1;"), "Error 型が不正です。（演算子*）");
    EXPECT_EQ(FailModel("Vertex(1, 2, 3) == 1;"), "Error 演算の型が不正です");
}
TEST_F(Model, VertexLengths) {
    EXPECT_EQ(RunModel("print(VertexLength(Vertex(0, 0, 0), Vertex(3, 4, 1)), VertexLength2(Vertex(0, 0, 0), "
                       "Vertex(3, 4, 1)));"),
              "5 26");
    EXPECT_EQ(FailModel("VertexLength(Vertex(0, 0, 0), \"a\");"),
              "Error 2番目の引数の型が不正です。(VertexLength)");
}
TEST_F(Model, PositionFillsAnArrayOfThree) {
    EXPECT_EQ(
        RunModel("var a[3]; Position(Vertex(1, 2, 3), a); print(a[0], a[2], Position(Vertex(1, 2, 3)));"),
        "1 3 (   1.0000,   2.0000,   3.0000 )");
    EXPECT_EQ(FailModel("var a[2]; Position(Vertex(1, 2, 3), a);"),
              "Error 引数配列のサイズが不正です。( Vertex:Position )");
    EXPECT_EQ(FailModel("var a[1]; Mapping(Vertex(1, 2, 3), a);"),
              "Error 引数配列のサイズが不正です。( Vertex:Mapping )");
}
TEST_F(Model, InsertingAtTheEndAppendsAndAtTheLimitIsRefused) {
    EXPECT_EQ(RunModel("PolyInsVertex(Vertex(1, 0, 0), 0); PolyInsVertex(Vertex(2, 0, 0), 1); "
                       "print(PolyVertexs(), PolyGetVertex(1));"),
              "2 ( 2   , 0   , 0    )");
    EXPECT_EQ(FailModel("PolyInsVertex(Vertex(1, 0, 0), 7);"),
              "Error 2番目の引数の値が不正です。(InsVertex)");
}
TEST_F(Model, DeletingAtTheCountReportsUnderTheGettersName) {
    EXPECT_EQ(FailModel("PolyVertexs(3); PolyDelVertex(3);"),
              "Error 1番目の引数の値が不正です。(PolyGetVertex)");
    EXPECT_EQ(FailModel("PolyGetVertex(8);"), "Error 1番目の引数の値が不正です。(PolyGetVertex)");
    EXPECT_EQ(FailModel("PolySetVertex(Vertex(0, 0, 0), -1);"),
              "Error 2番目の引数の値が不正です。(SetVertex)");
}
TEST_F(Model, ShiftingByTheCountDoesNothing) {
    EXPECT_EQ(RunModel("tri(0, 0); PolyShiftVertex(3); print(PolyGetVertex(0)); PolyShiftVertex(1); "
                       "print(PolyGetVertex(0));"
                       "PolyInvVertex(); print(PolyGetVertex(0));"),
              "( 0   , 0   , 0    )( 10  , 0   , 0    )( 0   , 0   , 0    )");
}
TEST_F(Model, PlaneNormalHasLength256AndIsZeroForALine) {
    EXPECT_EQ(
        RunModel("tri(0, 0); print(PolyVector()); PolySetVertex(Vertex(20, 0, 0), 2); print(PolyVector(1));"),
        "(   0.0000,   0.0000, 256.0000 )(   0.0000,   0.0000,   0.0000 )");
}
TEST_F(Model, SavingASimplePolygonClearsNormalsAndMapping) {
    EXPECT_EQ(RunModel("tri(0, 1); PolyLoad(); PolyType(POLY_SIMPLE); PolySetVertex(Vertex(0, 0, 0, 1, 2, 3, "
                       "4, 5), 0); PolySave();"
                       "PolyLoadInit(); PolyLoad(); PolyType(POLY_UVSHADE); print(PolyGetVertex(0));"),
              "( 0   , 0   , 0    ) ( 0       , 0       , 0        ) ( 0   , 0    )");
}
TEST_F(Model, TheLoadWalkStartsAgainAfterItsEnd) {
    EXPECT_EQ(RunModel("tri(0, 1); tri(50, 0); tri(99, 1); var n = 0; while (PolyLoad()) n++; print(n, "
                       "PolyLoad() != 0);"),
              "2 TRUE");
}
TEST_F(Model, SavingWithoutLoadingIsAnError) {
    EXPECT_EQ(FailModel("PolySave();"), "Error PolyLoadされていません。(Vertex:PolySave)");
}
TEST_F(Model, AStaleHandleIsRefused) {
    EXPECT_EQ(FailModel("tri(0, 1); tri(1, 1); PolyLoad(); var h = PolyLoad(); PolyDelete(); PolyLoad(h);"),
              "Error ポリゴンのハンドルが不正です。(PolyLoad)");
    EXPECT_EQ(FailModel("tri(0, 1); PolyLoad(2);"), "Error ポリゴンのハンドルが不正です。(PolyLoad)");
    EXPECT_EQ(RunModel("print(PolyLoad(0));"), "0");
}
TEST_F(Model, AFullBufferStoresNothingAndSaysSo) {
    bytes = 100;
    EXPECT_EQ(RunModel("tri(0, 1); tri(1, 1); print(ObjPolygons());"), "1");
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferAppend)\n");
}
TEST_F(Model, ACountBeyondTheLimitsIsCheckedOnAppend) {
    EXPECT_NE(FailModel("PolyVertexs(1024); PolyAppend();").find("0 < vers && vers < 1024"),
              std::string::npos);
    EXPECT_NE(FailModel("PolyVertexs(9); PolyAppend();").find("0 < vers && vers < 1024"), std::string::npos);
}
TEST_F(Model, DeletingRemovesTheSelectedAndMarksTheirObjects) {
    EXPECT_EQ(RunModel("ObjAppend(\"o\", \"\"); tri(0, 1); tri(1, 0); ObjEdit(0, 0); PolyDelete(); "
                       "print(ObjPolygons(), ObjEdit(0), SelectPolygons());"),
              "1 1 0");
}

TEST_F(Model, AttrsAndObjectsAreOneOnAnEmptyModel) {
    EXPECT_EQ(RunModel("print(Attrs(), Objects());"), "1 1");
}
TEST_F(Model, AppendingAnAttributeTakesItsColourFromTheCode) {
    EXPECT_EQ(RunModel("var n = AttrAppend(\"red\", 2); print(n, AttrCol(n), AttrCode(n));"),
              "0 (   1.0000,   0.0000,   0.0000 ) 2");
}
TEST_F(Model, LongNamesAreKeptAndFoundByTheirFirst16Bytes) {
    EXPECT_EQ(RunModel("AttrAppend(\"abcdefghijklmnopqrst\", 7); print(AttrName(0), "
                       "AttrSearch(\"abcdefghijklmnopXX\"));"),
              "abcdefghijklmnop 0");
}
TEST_F(Model, AnAttributeInUseIsNotDeletedAndNumbersFall) {
    EXPECT_EQ(
        RunModel(
            "AttrAppend(\"a\", 1); AttrAppend(\"b\", 1); AttrAppend(\"c\", 1); PolyAttr(1); tri(0, 1); "
            "PolyAttr(2); tri(0, 1);"
            "print(AttrDelete(1), AttrDelete(0), Attrs(), AttrName(0), AttrPolygons(0), AttrPolygons(1));"),
        "FALSE TRUE 2 b 1 1");
}
TEST_F(Model, CurrentOutOfRangeIsRefused) {
    EXPECT_EQ(RunModel("print(AttrCurrent(1), AttrCurrent(), ObjCurrent(-1), ObjCurrent(0));"), "-1 0 -1 0");
}
TEST_F(Model, FullTablesSaySoAndGiveMinusOne) {
    EXPECT_EQ(RunModel("var i, r; for (i = 0; i < 5; i++) r = AttrAppend(\"x\", 1); print(r); for (i = 0; i "
                       "< 4; i++) r = ObjAppend(\"o\", \"\"); print(r);"),
              "-1-1");
    EXPECT_EQ(
        warnings,
        "アトリビュートバッファがオーバーフローしました\nオブジェクトバッファがオーバーフローしました\n");
}
TEST_F(Model, AttributeMessages) {
    EXPECT_EQ(FailModel("AttrName();"), "Error 引数の数が不正です(AttrName)");
    EXPECT_EQ(FailModel("AttrName(\"a\");"), "Error 1番目の引数の型不正です(AttrName)");
    EXPECT_EQ(FailModel("AttrName(0, 1);"), "Error 2番目の引数の型不正です(AttrName)");
    EXPECT_EQ(FailModel("AttrCode();"), "Error 引数の数が不正です(AttrCode)");
    EXPECT_EQ(FailModel("AttrCode(0, \"a\");"), "Error 2番目の引数の型不正です(AttrCode)");
    EXPECT_EQ(FailModel("AttrCol(0, \"a\");"), "Error 1番目の引数の型が不正です(AttrParameter)");
    EXPECT_EQ(FailModel("var a[1], b[2]; GetAttrMapSize(0, a, b);"),
              "Error 引数配列のサイズが不正です。(AttrMapView)");
    EXPECT_EQ(FailModel("var a[2], b[2]; SetAttrMapView(0, a, b);"),
              "Error 引数配列の型が不正です。( GetMapView )");
}
TEST_F(Model, AttributeNumbersOutOfRangeChangeNothing) {
    EXPECT_EQ(RunModel("print(AttrName(99, \"x\") == \"\", AttrFile(99), AttrCode(-5, 3)); AttrChange(-1); "
                       "ObjChange(-1);"),
              "TRUE 0 0");
}
TEST_F(Model, MapRectanglesGoInAndOut) {
    EXPECT_EQ(RunModel("AttrAppend(\"a\", 7); var a = { 320, 200 }, b = { 0.5, -1 }, c[2], d[2]; "
                       "SetAttrMapSize(0, a, b);"
                       "GetAttrMapSize(0, c, d); print(c[0], c[1], d[0], d[1]);"),
              "320.000000 200.000000 0.500000 -1.000000");
}
TEST_F(Model, AnEmptyObjectNameFreesTheSlot) {
    EXPECT_EQ(RunModel("ObjAppend(\"a\", \"\"); ObjAppend(\"b\", \"\"); ObjName(0, \"\"); "
                       "print(ObjAppend(\"c\", \"f\"), ObjName(0), ObjFile(0));"),
              "0 c f");
}
TEST_F(Model, AnObjectWithPolygonsIsNotDeleted) {
    EXPECT_EQ(RunModel("ObjAppend(\"a\", \"\"); tri(0, 1); print(ObjDelete(0), ObjDelete(1));"),
              "FALSE FALSE");
}
TEST_F(Model, ObjectMessages) {
    EXPECT_EQ(FailModel("ObjName(0, 1);"), "Error 2 番目の引数の型が不正です。( ObjFile )");
    EXPECT_EQ(FailModel("ObjName(0, UNIT_MATRIX);"), "Error 2番目の引数の型不正です(ObjName)");
    EXPECT_EQ(FailModel("ObjFile(0, UNIT_MATRIX);"), "Error 2番目の引数の型不正です(ObjFile)");
}

TEST_F(Model, SelectionModes) {
    EXPECT_EQ(
        RunModel(
            "tri(0, 0); tri(50, 0); SelectAll(1); print(SelectPolygons()); SelectAll(0); "
            "print(SelectPolygons());"
            "SelectArea(1, SELECT_UPDATE, Vertex(-1, -1, -1), Vertex(20, 20, 1)); print(SelectPolygons());"
            "SelectAll(1, SELECT_XOR); print(tostring(Select()).substr(2));"),
        "20101");
}
TEST_F(Model, APartlyContainedPolygonIsHitOnlyWithSelectSub) {
    EXPECT_EQ(
        RunModel("tri(0, 0); SelectArea(1, 0, Vertex(-1, -1, -1), Vertex(5, 5, 1)); print(SelectPolygons());"
                 "SelectArea(1, SELECT_SUB, Vertex(-1, -1, -1), Vertex(5, 5, 1)); print(SelectPolygons());"),
        "01");
}
TEST_F(Model, AMissGetsTheNegatedFlag) {
    EXPECT_EQ(RunModel("PolyAttr(1); tri(0, 0); PolyAttr(2); tri(0, 0); SelectAttr(1, 0); "
                       "print(tostring(Select()).substr(2));"),
              "01");
}
TEST_F(Model, ASavedSelectionOf40PolygonsHas64Characters) {
    EXPECT_EQ(RunModel("var i; for (i = 0; i < 40; i++) tri(i, 0); print(!tostring(Select()));"), "64");
}
TEST_F(Model, SelectNumberOfAnEmptySetDeselectsAll) {
    EXPECT_EQ(
        RunModel("tri(0, 0); var s = Select(); SelectAll(1); print(SelectNumber(s, 0), SelectPolygons());"),
        "FALSE 0");
}

}  // namespace
}  // namespace quelmark::test
