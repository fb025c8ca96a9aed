// The attribute table and its functions.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Attributes : public ModelTest {};

constexpr const char* THREE = R"(AttrAppend("a", 7); AttrAppend("b", 7); AttrAppend("c", 7);)";

TEST_F(Attributes, AnEmptyTableCountsOne) {
    EXPECT_EQ(Script("print(Attrs(), AttrCurrent());"), "1 0");
}
TEST_F(Attributes, AppendGivesTheColourOfTheCode) {
    EXPECT_EQ(Script("var n = AttrAppend(\"red\", 2); print(n, AttrCol(n), AttrCode(n));"),
              "0 (   1.0000,   0.0000,   0.0000 ) 2");
    EXPECT_EQ(Script("AttrAppend(\"g\", 4); AttrAppend(\"b\", 1); print(AttrCol(1), AttrCol(2));"),
              "(   0.0000,   1.0000,   0.0000 ) (   0.0000,   0.0000,   1.0000 )");
}
TEST_F(Attributes, AppendGivesTheDefaults) {
    EXPECT_EQ(Script("AttrAppend(\"w\", 7); print(AttrAmb(0), AttrDif(0), AttrSpc(0), AttrMap(0)); "
                     "print(AttrMapFile(0) + AttrFile(0));"),
              "(   0.5000,   0.5000,   0.5000 ) (   0.5000,   0.5000,   0.5000 ) (   0.0000,   0.0000,   "
              "0.0000 ) FALSE");
}
TEST_F(Attributes, AppendTakesAFileName) {
    EXPECT_EQ(Script("AttrAppend(\"w\", 7, \"x.suf\"); print(AttrFile(0));"), "x.suf");
    EXPECT_EQ(Failure("AttrAppend(\"w\", 7, Vertex(1, 2, 3));"), "3番目の引数の型不正です(AttrAppend)");
    EXPECT_EQ(Failure("AttrAppend(\"w\", 7, 5);"), "3 番目の引数の型が不正です。( AttrAppend )");
}
TEST_F(Attributes, NamesAreCutTo16BytesAndFoundByThem) {
    EXPECT_EQ(
        Script("AttrAppend(\"12345678901234567890\", 7);"
               "print(AttrName(0), AttrSearch(\"12345678901234567890\"), AttrSearch(\"1234567890123456\"),"
               "AttrSearch(\"123456789012345\"));"),
        "1234567890123456 0 0 -1");
}
TEST_F(Attributes, AFullTableIsReportedAndGivesMinusOne) {
    EXPECT_EQ(
        Script("var i; for (i = 0; i < 4; i++) AttrAppend(\"a\", 7); print(AttrAppend(\"e\", 2), Attrs());"),
        "-1 4");
    EXPECT_EQ(warnings, "アトリビュートバッファがオーバーフローしました\n");
}
TEST_F(Attributes, CurrentChangesWithinTheTableAndGivesThePrevious) {
    EXPECT_EQ(Script(std::string(THREE) + "print(AttrCurrent(2), AttrCurrent(1), AttrCurrent());"), "0 2 1");
}
TEST_F(Attributes, CurrentOutsideTheTableIsMinusOneAndChangesNothing) {
    EXPECT_EQ(
        Script(std::string(THREE) + "AttrCurrent(2); print(AttrCurrent(3), AttrCurrent(-1), AttrCurrent());"),
        "-1 -1 2");
}
TEST_F(Attributes, RevisionGrowsWhenTheListOfNamesChanges) {
    Script(THREE);
    for (const char* change : {"AttrAppend(\"d\", 1);", "AttrName(0, \"z\");", "AttrCurrent(1);",
                               "AttrCode(0, 3);", "AttrDelete(3);"}) {
        const std::uint32_t before = AttrRevision;
        RunMore(change);
        EXPECT_NE(AttrRevision, before) << change;
    }
    const std::uint32_t before = AttrRevision;
    RunMore("AttrCurrent(1); AttrName(0); AttrDelete(99);");
    EXPECT_EQ(AttrRevision, before);
}
TEST_F(Attributes, ChangeGivesTheSelectedPolygonsTheAttribute) {
    Script(std::string(THREE) + "tri(0, 0, 0, 1, 0, 0, 0, 1, 0); PolyAppend(0); AttrChange(2);");
    EXPECT_EQ(Polygon(0).attr, 2);
    EXPECT_EQ(Polygon(1).attr, 0);
}
TEST_F(Attributes, ChangeToAnAttributeBeyondTheLastIsRefused) {
    EXPECT_NE(Failure("AttrChange(1);").find("atrno <= AttrLast"), std::string::npos);
}
TEST_F(Attributes, ChangeToANegativeNumberDoesNothing) {
    EXPECT_EQ(Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); AttrChange(-1); print(AttrPolygons(0));"), "1");
}
TEST_F(Attributes, NameIsSetCutAndReturned) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); print(AttrName(0, \"12345678901234567890\"), AttrName(0));"),
              "1234567890123456 1234567890123456");
}
TEST_F(Attributes, NameReportsItsOwnMessages) {
    EXPECT_EQ(Failure("AttrName();"), "引数の数が不正です(AttrName)");
    EXPECT_EQ(Failure("AttrName(1, \"a\", 2);"), "引数の数が不正です(AttrName)");
    EXPECT_EQ(Failure("AttrName(\"a\");"), "1番目の引数の型不正です(AttrName)");
    EXPECT_EQ(Failure("AttrName(0, 1);"), "2番目の引数の型不正です(AttrName)");
}
TEST_F(Attributes, CodeIsSetAndReportsItsOwnMessages) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); print(AttrCode(0, 3), AttrCode(0));"), "3 3");
    EXPECT_EQ(Failure("AttrCode();"), "引数の数が不正です(AttrCode)");
    EXPECT_EQ(Failure("AttrCode(1, 2, 3);"), "引数の数が不正です(AttrCode)");
    EXPECT_EQ(Failure("AttrCode(\"a\");"), "1番目の引数の型不正です(AttrCode)");
    EXPECT_EQ(Failure("AttrCode(0, 1.5);"), "2番目の引数の型不正です(AttrCode)");
}
TEST_F(Attributes, CodeIsKeptAsGivenAndItsLowBitsAreTheColour) {
    EXPECT_EQ(
        Script("AttrAppend(\"a\", 10); print(AttrCode(0), AttrCol(0), AttrCode(0, 9), AttrCode(0, -1));"),
        "10 (   1.0000,   0.0000,   0.0000 ) 9 65535");
}
TEST_F(Attributes, FileIsSetAndReportsWithTheNameOfTheObjectFunction) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); print(AttrFile(0, \"f.suf\"), AttrFile(0), AttrFile(1), "
                     "AttrFile(-1, \"g\"));"),
              "f.suf f.suf 0 0");
    EXPECT_EQ(Failure("AttrFile(0, Vertex(1, 2, 3));"), "2番目の引数の型不正です(ObjFile)");
}
TEST_F(Attributes, NumbersOutOfRangeGiveNothingAndChangeNothing) {
    EXPECT_EQ(
        Script("AttrAppend(\"a\", 7); print(AttrName(-1) + AttrName(4, \"x\") + AttrName(2147483647),"
               "AttrCode(-1), AttrCode(99, 3), AttrDelete(-1), AttrDelete(1), AttrDelete(-2147483648));"),
        " 0 0 FALSE FALSE FALSE");
    for (const char* call : {"print(AttrCol(1));", "print(AttrMap(-1));", "print(AttrMapFile(7));"}) {
        EXPECT_EQ(Failure(call), "代入されていない変数を参照しました。") << call;
    }
    EXPECT_EQ(
        Script("var a = { 5, 5 }, b[2]; AttrCol(9, vector(1, 1, 1)); AttrMap(9, 1); AttrMapFile(9, \"x\");"
               "GetAttrMapSize(9, a, b); print(a[0]);"),
        "5");
}
TEST_F(Attributes, ParametersHoldTriplesOf12FractionBits) {
    for (const char* name : {"AttrCol", "AttrAmb", "AttrDif", "AttrSpc", "AttrSize", "AttrRef", "AttrTra",
                             "AttrRfr", "AttrAtt"}) {
        EXPECT_EQ(Script(std::string("AttrAppend(\"a\", 7); ") + name + "(0, vector(0.25, 0.1, -1)); print(" +
                         name + "(0));"),
                  "(   0.2500,   0.0999,  -1.0000 )")
            << name;
    }
}
TEST_F(Attributes, EachParameterHasItsOwnField) {
    EXPECT_EQ(
        Script("AttrAppend(\"a\", 7); AttrCol(0, vector(1, 1, 1)); AttrAmb(0, vector(2, 2, 2));"
               "AttrDif(0, vector(3, 3, 3)); AttrSpc(0, vector(4, 4, 4)); AttrSize(0, vector(5, 5, 5));"
               "AttrRef(0, vector(6, 6, 6)); AttrTra(0, vector(7, 7, 7)); AttrRfr(0, vector(0.5, 0, 0));"
               "AttrAtt(0, vector(0.25, 0, 0));"
               "print(AttrCol(0).vx(), AttrAmb(0).vx(), AttrDif(0).vx(), AttrSpc(0).vx(), AttrSize(0).vx(),"
               "AttrRef(0).vx(), AttrTra(0).vx(), AttrRfr(0).vx(), AttrAtt(0).vx());"),
        "1.000000 2.000000 3.000000 4.000000 5.000000 6.000000 7.000000 0.500000 0.250000");
}
TEST_F(Attributes, ParameterThatIsNoVectorIsAnError) {
    EXPECT_EQ(Failure("AttrCol(0, \"a\");"), "1番目の引数の型が不正です(AttrParameter)");
    EXPECT_EQ(Failure("AttrAtt(0, Vertex(1, 2, 3));"), "1番目の引数の型が不正です(AttrParameter)");
}
TEST_F(Attributes, MapFlagAndFile) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); AttrMap(0, 5); print(AttrMap(0)); AttrMap(0, FALSE);"
                     "print(AttrMap(0), AttrMapFile(0, \"t.bmp\"), AttrMapFile(0));"),
              "TRUEFALSE t.bmp t.bmp");
    EXPECT_EQ(Failure("AttrMapFile(0, Vertex(1, 2, 3));"), "2番目の引数の型不正です(AttrName)");
}
TEST_F(Attributes, LongFileNamesAreCut) {
    Script(
        "AttrAppend(\"a\", 7); var s = \"x\", i; for (i = 0; i < 10; i++) s = s + s; AttrMapFile(0, s); "
        "AttrFile(0, s);");
    EXPECT_EQ(std::string(AttrTable[0].mapfile).size(), 511U);
    EXPECT_EQ(std::string(AttrTable[0].file).size(), 512U);
}
TEST_F(Attributes, MapRectanglesHold16FractionBits) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); var a = { 1, 2.5 }, b = { -3, 0.25 }, c[2], d[3];"
                     "SetAttrMapSize(0, a, b); SetAttrMapView(0, b, a); SetAttrMapWind(0, a, a);"
                     "GetAttrMapSize(0, c, d); print(c[0], c[1], d[0], d[1]); GetAttrMapView(0, c, d); "
                     "print(\"\", c[0]);"
                     "GetAttrMapWind(0, c, d); print(\"\", d[1]);"),
              "1.000000 2.500000 -3.000000 0.250000 -3.000000 2.500000");
    EXPECT_EQ(AttrTable[0].mapsize[1][1], 0x4000);
}
TEST_F(Attributes, MapRectanglesReleaseObjectsInTheArrays) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); var a[2], b[2], n; a[0] = vector(1, 2, 3); n = ObjectCount();"
                     "GetAttrMapSize(0, a, b); print(n - ObjectCount());"),
              "1");
}
TEST_F(Attributes, MapRectanglesReportBadArrays) {
    EXPECT_EQ(Failure("var a[1], b[2]; GetAttrMapSize(0, a, b);"),
              "引数配列のサイズが不正です。(AttrMapView)");
    EXPECT_EQ(Failure("var a[2], b[1]; SetAttrMapWind(0, a, b);"),
              "引数配列のサイズが不正です。(AttrMapView)");
    EXPECT_EQ(Failure("var a[2], b = { 1, \"x\" }; a[0] = 1; a[1] = 2; SetAttrMapSize(0, a, b);"),
              "引数配列の型が不正です。( GetMapView )");
    EXPECT_EQ(Failure("var a[2]; GetAttrMapSize(0, a);"), "引数の数が不正です。( AttrMapView )");
    EXPECT_EQ(Failure("SetAttrMapView(0, 1, 2);"), "2 番目の引数の型が不正です。( AttrMapView )");
}
TEST_F(Attributes, DeleteOfOneInUseIsRefused) {
    EXPECT_EQ(Script(std::string(THREE) +
                     "PolyAttr(1); tri(0, 0, 0, 1, 0, 0, 0, 1, 0); print(AttrDelete(1), Attrs());"),
              "FALSE 3");
}
TEST_F(Attributes, DeleteRenumbersThePolygonsAndClosesTheGap) {
    EXPECT_EQ(Script(std::string(THREE) +
                     "PolyAttr(1); tri(0, 0, 0, 1, 0, 0, 0, 1, 0); PolyAttr(2); PolyAppend(1);"
                     "AttrCurrent(2); print(AttrDelete(0), Attrs(), AttrName(0), AttrName(1), AttrCurrent());"
                     "print(AttrPolygons(), AttrPolygons(0), AttrPolygons(1), AttrPolygons(2));"),
              "TRUE 2 b c 12 1 1 0");
    EXPECT_EQ(AttrTable[2].used, 0);
}
TEST_F(Attributes, DeletingTheLastOneLeavesNoneAndTheNextStartsAgain) {
    EXPECT_EQ(Script("AttrAppend(\"a\", 7); print(AttrDelete(0), Attrs(), AttrCurrent(), AttrAppend(\"b\", "
                     "7), Attrs());"),
              "TRUE 0 0 0 1");
}
TEST_F(Attributes, PolygonsReportsUnderItsShortName) {
    EXPECT_EQ(Failure("AttrPolygons(\"a\");"), "1 番目の引数の型が不正です。( Polygons )");
}
TEST_F(Attributes, SearchOrAllocFindsBeforeItMakes) {
    Script(THREE);
    EXPECT_EQ(AttrSearchOrAlloc("b"), 1);
    EXPECT_EQ(AttrSearchOrAlloc("d"), 3);
    EXPECT_EQ(AttrSearchOrAlloc("e"), -1);
}
TEST_F(Attributes, CodeOfAColourNeedsMoreThanSixTenths) {
    EXPECT_EQ(AttrCodeOfColour({2457, 2457, 2457, 0}), 0);
    EXPECT_EQ(AttrCodeOfColour({2458, 0, 0, 0}), 2);
    EXPECT_EQ(AttrCodeOfColour({0, 4096, 2458, 0}), 5);
}

}  // namespace
}  // namespace quelmark::test
