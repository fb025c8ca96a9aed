// The object table and its functions.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Objects : public ModelTest {};

constexpr const char* THREE = R"(ObjAppend("a", "a.suf"); ObjAppend("b", ""); ObjAppend("c", "");)";

TEST_F(Objects, AnEmptyTableCountsOne) {
    EXPECT_EQ(Script("print(Objects(), ObjCurrent());"), "1 0");
}
TEST_F(Objects, AppendTakesNameAndFile) {
    EXPECT_EQ(Script(std::string(THREE) + "print(Objects(), ObjName(0), ObjFile(0), ObjEdit(0));"),
              "3 a a.suf 0");
    EXPECT_EQ(Failure("ObjAppend(\"a\");"), "引数の数が不正です。( ObjAppend )");
    EXPECT_EQ(Failure("ObjAppend(\"a\", Vertex(1, 2, 3));"), "2 番目の引数の型が不正です。( ObjAppend )");
}
TEST_F(Objects, AFullTableIsReportedAndGivesMinusOne) {
    EXPECT_EQ(
        Script(std::string(THREE) + "ObjAppend(\"d\", \"\"); print(ObjAppend(\"e\", \"\"), Objects());"),
        "-1 4");
    EXPECT_EQ(warnings, "オブジェクトバッファがオーバーフローしました\n");
}
TEST_F(Objects, NamesAreCutTo16BytesAndFoundByThem) {
    EXPECT_EQ(Script("ObjAppend(\"12345678901234567890\", \"f\"); print(ObjName(0), ObjFile(0),"
                     "ObjSearch(\"1234567890123456xyz\"), ObjSearch(\"1\"));"),
              "1234567890123456 f 0 -1");
    EXPECT_EQ(Script("ObjName(0, \"abcdefghijklmnopqrstuvwxyz\"); print(ObjName(0), ObjFile(0));"),
              "abcdefghijklmnop f");
}
TEST_F(Objects, CurrentChangesWithinTheTable) {
    EXPECT_EQ(
        Script(std::string(THREE) + "print(ObjCurrent(2), ObjCurrent(3), ObjCurrent(-1), ObjCurrent());"),
        "0 -1 -1 2");
}
TEST_F(Objects, AnEmptyNameFreesTheSlotForTheNextObject) {
    EXPECT_EQ(Script(std::string(THREE) + "print(ObjName(1, \"\") + \"|\", Objects(), ObjSearch(\"b\"), "
                                          "ObjAppend(\"d\", \"\"), ObjName(1));"),
              "| 3 -1 1 d");
}
TEST_F(Objects, TheNameOfAFreeSlotIsEmpty) {
    EXPECT_EQ(Script("print(ObjName(0) + \"|\", ObjName(3) + \"|\", ObjName(0, \"x\") + \"|\");"), "| | |");
}
TEST_F(Objects, NameAndFileReportTheirOwnTypes) {
    EXPECT_EQ(Failure("ObjName(0, Vertex(1, 2, 3));"), "2番目の引数の型不正です(ObjName)");
    EXPECT_EQ(Failure("ObjFile(0, Vertex(1, 2, 3));"), "2番目の引数の型不正です(ObjFile)");
    EXPECT_EQ(Failure("ObjName(\"a\");"), "1 番目の引数の型が不正です。( ObjFile )");
}
TEST_F(Objects, NumbersOutOfRangeGiveNothingAndChangeNothing) {
    EXPECT_EQ(Script("print(ObjName(-1) + ObjName(4, \"x\") + ObjFile(99) + ObjFile(-1, \"x\"), ObjEdit(-1), "
                     "ObjEdit(99, 1),"
                     "ObjDelete(-1), ObjDelete(1), ObjPolygons(-5));"),
              " 0 0 FALSE FALSE 0");
}
TEST_F(Objects, EditIsSetAndReturned) {
    EXPECT_EQ(Script(std::string(THREE) + "print(ObjEdit(1, 1), ObjEdit(1), ObjEdit(1, 0), ObjEdit(0));"),
              "1 1 0 0");
}
TEST_F(Objects, ChangeMovesTheSelectedPolygonsAndMarksBothObjects) {
    Script(std::string(THREE) +
           "PolyObj(1); tri(0, 0, 0, 1, 0, 0, 0, 1, 0); PolyAppend(0); ObjEdit(1, 0); ObjChange(2);");
    EXPECT_EQ(Polygon(0).obj, 2);
    EXPECT_EQ(Polygon(1).obj, 1);
    EXPECT_EQ(ObjTable[0].edit, 0);
    EXPECT_EQ(ObjTable[1].edit, 1);
    EXPECT_EQ(ObjTable[2].edit, 1);
}
TEST_F(Objects, ChangeWithNothingSelectedOnlyMarksTheTarget) {
    EXPECT_EQ(Script(std::string(THREE) + "ObjChange(2); print(ObjEdit(0), ObjEdit(1), ObjEdit(2));"),
              "0 0 1");
}
TEST_F(Objects, ChangeBeyondTheLastIsRefusedAndBelowZeroDoesNothing) {
    EXPECT_NE(Failure("ObjChange(1);").find("objno <= ObjLast"), std::string::npos);
    EXPECT_EQ(Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); ObjChange(-1); print(ObjPolygons(0));"), "1");
}
TEST_F(Objects, DeleteOfOneWithPolygonsIsRefused) {
    EXPECT_EQ(
        Script(std::string(THREE) +
               "PolyObj(1); tri(0, 0, 0, 1, 0, 0, 0, 1, 0); print(ObjDelete(1), ObjDelete(3), Objects());"),
        "FALSE FALSE 3");
}
TEST_F(Objects, DeleteRenumbersThePolygonsAndClampsTheCurrent) {
    EXPECT_EQ(Script(std::string(THREE) +
                     "PolyObj(1); tri(0, 0, 0, 1, 0, 0, 0, 1, 0); PolyObj(2); PolyAppend(1); ObjCurrent(2);"
                     "print(ObjDelete(0), Objects(), ObjName(0), ObjName(1), ObjCurrent(), ObjPolygons(0), "
                     "ObjPolygons(1), ObjPolygons());"),
              "TRUE 2 b c 1 1 1 2");
}
TEST_F(Objects, RevisionGrowsWhenTheListOfNamesChanges) {
    Script(THREE);
    for (const char* change :
         {"ObjAppend(\"d\", \"\");", "ObjName(0, \"z\");", "ObjCurrent(1);", "ObjDelete(3);"}) {
        const std::uint32_t before = ObjRevision;
        RunMore(change);
        EXPECT_NE(ObjRevision, before) << change;
    }
}
TEST_F(Objects, SearchOrAllocFindsBeforeItMakes) {
    Script(THREE);
    EXPECT_EQ(ObjSearchOrAlloc("b"), 1);
    EXPECT_EQ(ObjSearchOrAlloc("d"), 3);
    EXPECT_EQ(ObjSearchOrAlloc("e"), -1);
}

}  // namespace
}  // namespace quelmark::test
