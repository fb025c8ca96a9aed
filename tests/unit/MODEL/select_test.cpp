// Selection and the class Select.
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Selection : public ModelTest {
  protected:
    // Triangles at x = 0, 10, 20, 30 of width 5; attribute and object are their number, the last one is
    // invisible.
    std::string OnFour(const std::string& source) {
        NewModel();
        return Script(
            "var i; for (i = 0; i < 4; i++) { PolyAttr(i); PolyObj(i);"
            "tri(i * 10, 0, 0, i * 10 + 5, 0, 0, i * 10, 5, 0); }"
            "SelectAll(1); SelectAttr(3, 0); PolyInvisible(1); SelectAll(0);" +
            source);
    }
    // The selection that a source leaves.
    std::string After(const std::string& source) {
        OnFour(source);
        EXPECT_EQ(message, "") << source;
        EXPECT_EQ(SelectCount, std::ranges::count(Selected(), '1')) << source;
        return Selected();
    }
};

// What is kept of a walk is that of the model as it is now.
TEST_F(Selection, CountsAndNumbersFollowEveryChange) {
    const auto check = [](const char* when) {
        std::int32_t count = 0;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            EXPECT_EQ(PolygonNumber(polygon), count) << when;
            ++count;
        }
        EXPECT_EQ(PolygonCount(), count) << when;
        EXPECT_EQ(PolygonNumber(PolygonTop()), count == 0 ? -1 : 0) << when;
        EXPECT_EQ(PolygonNumber(nullptr), -1) << when;
        return count;
    };
    NewModel();
    EXPECT_EQ(check("empty"), 0);
    OnFour("");
    EXPECT_EQ(check("four"), 4);
    Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0);");
    EXPECT_EQ(check("one more"), 5);
    Script(
        "UndoMark(\"\"); PolyLoadInit(); PolyLoad();"
        "PolyInsVertex(Vertex(9, 9, 9), 0); PolyInsVertex(Vertex(8, 9, 9), 0); PolySave();");
    EXPECT_EQ(check("a larger one"), 5);
    Script("UndoMark(\"\"); PolyDelete(); PolyVertexs(9); PolyAppend(0);");
    EXPECT_EQ(check("deleted"), 5);
    Script("Undo();");
    EXPECT_EQ(check("undone"), 5);
    Script("SelectAll(1); PolyDelete();");
    EXPECT_EQ(check("visible ones deleted"), 1);
    Script("Undo();");
    EXPECT_EQ(check("undone again"), 5);
    NewModel();
    EXPECT_EQ(check("a new model"), 0);
}

TEST_F(Selection, AllSelectsAndDeselectsWhatIsVisible) {
    EXPECT_EQ(After("SelectAll(1);"), "1110");
    EXPECT_EQ(After("SelectAll(TRUE); SelectAll(0);"), "0000");
}
TEST_F(Selection, AllWithXorInvertsWhatIsVisible) {
    EXPECT_EQ(After("SelectAttr(1, 1); SelectAll(1, SELECT_XOR);"), "1010");
}
TEST_F(Selection, AnInvisiblePolygonThatIsSelectedStaysSoAndIsNotCounted) {
    OnFour("");
    Polygon(3).select = 1;
    RunMore("SelectAll(0);");
    EXPECT_EQ(Selected(), "0001");
    EXPECT_EQ(SelectCount, 0);
}
TEST_F(Selection, ModesCombineWithTheSelection) {
    EXPECT_EQ(After("SelectAttr(0, 1); SelectAttr(1, 1, SELECT_OR);"), "1100");
    EXPECT_EQ(After("SelectAttr(0, 1); SelectAttr(1, 1, SELECT_AND);"), "0000");
    EXPECT_EQ(After("SelectAll(1); SelectAttr(1, 1, SELECT_AND);"), "0100");
    EXPECT_EQ(After("SelectAll(1); SelectAttr(1, 1, SELECT_XOR);"), "1010");
    EXPECT_EQ(After("SelectAttr(0, 1); SelectAttr(1, 1);"), "0100");
}
TEST_F(Selection, OnlyTheLowTwoBitsOfAModeCombine) {
    EXPECT_EQ(After("SelectAttr(0, 1); SelectAttr(1, 1, 34);"), "1100");
}
TEST_F(Selection, FlagZeroDeselectsTheHitsAndSelectsTheMisses) {
    EXPECT_EQ(After("SelectAttr(1, 0);"), "1010");
}
TEST_F(Selection, ByObjectAndByType) {
    EXPECT_EQ(After("SelectObj(2, 1, SELECT_UPDATE);"), "0010");
    EXPECT_EQ(After("SelectPolyType(POLY_SIMPLE, 1, SELECT_UPDATE);"), "1110");
    EXPECT_EQ(After("SelectPolyType(POLY_SHADE, 1);"), "0000");
}
TEST_F(Selection, AreaTakesPolygonsThatLieWhollyInside) {
    EXPECT_EQ(After("SelectArea(1, SELECT_UPDATE, Vertex(0, 0, 0), Vertex(12, 5, 0));"), "1000");
    EXPECT_EQ(After("SelectArea(1, SELECT_UPDATE, Vertex(15, 5, 0), Vertex(0, 0, 0));"), "1100");
}
TEST_F(Selection, AreaWithSubTakesPolygonsThatLiePartlyInside) {
    EXPECT_EQ(After("SelectArea(1, SELECT_SUB, Vertex(0, 0, 0), Vertex(12, 5, 0));"), "1100");
    EXPECT_EQ(
        After("SelectAttr(2, 1); SelectArea(1, SELECT_OR + SELECT_SUB, Vertex(0, 0, 0), Vertex(4, 4, 0));"),
        "1010");
}
TEST_F(Selection, AreaNeedsTwoVertices) {
    EXPECT_EQ(Failure("SelectArea(1, 0, Vertex(0, 0, 0), vector(1, 1, 1));"),
              "引数の型が不正です。(SelectArea)");
    EXPECT_EQ(Failure("SelectArea(1, 0, \"a\", Vertex(0, 0, 0));"), "引数の型が不正です。(SelectArea)");
}
TEST_F(Selection, EverySelectionRestartsTheLoadWalk) {
    EXPECT_EQ(OnFour("SelectAll(1); PolyLoad(); SelectAll(1); PolyLoad(); print(PolyGetVertex(0));"),
              "( 0   , 0   , 0    )");
}
TEST_F(Selection, BoxGivesTheCornersOfTheSelected) {
    EXPECT_EQ(OnFour("var b[2], n; b[0] = \"x\" + 1; SelectAttr(1, 1); SelectAttr(2, 1, SELECT_OR);"
                     "print(SelectBox(b), b[0], b[1]);"),
              "TRUE ( 10  , 0   , 0    ) ( 25  , 5   , 0    )");
}
TEST_F(Selection, BoxOfNothingLeavesTheElements) {
    EXPECT_EQ(OnFour("var b = { 7, 8 }; print(SelectBox(b), b[0], b[1]);"), "FALSE 7 8");
}
TEST_F(Selection, BoxNeedsTwoElements) {
    EXPECT_EQ(Failure("var b[1]; SelectBox(b);"), "引数配列のサイズが不正です。(SelectBox)");
}
TEST_F(Selection, PolygonsCountsTheModelOrASelect) {
    EXPECT_EQ(OnFour("var s; SelectAll(1); s = Select(); SelectAttr(0, 1); print(SelectPolygons(), "
                     "SelectPolygons(s));"),
              "1 3");
    EXPECT_EQ(Failure("SelectPolygons(Vertex(1, 2, 3));"), "1 番目の引数の型が不正です。( SelectPolygons )");
}
TEST_F(Selection, ASnapshotRestoresTheSelection) {
    EXPECT_EQ(After("var s; SelectAttr(1, 1); s = Select(); SelectAll(1); Select(s);"), "0100");
    EXPECT_EQ(After("var s; SelectAttr(1, 1); s = Select(); SelectAll(0); s = Select(s); print(s);"), "0100");
}
TEST_F(Selection, RestoringDeselectsPolygonsBehindTheSnapshot) {
    EXPECT_EQ(After("var s; SelectAll(1); s = Select(); PolyAppend(1); Select(s);"), "11100");
}
TEST_F(Selection, CurrentIsTheLoadedPolygon) {
    EXPECT_EQ(OnFour("SelectAll(1); PolyLoad(); PolyLoad(); print(SelectPolygons(SelectCurrent())); "
                     "Select(SelectCurrent());"),
              "1");
    EXPECT_EQ(Selected(), "0100");
    EXPECT_EQ(OnFour("print(SelectPolygons(SelectCurrent()));"), "0");
}
TEST_F(Selection, NumberSelectsOneMember) {
    EXPECT_EQ(After("var s; SelectAll(1); SelectAttr(0, 0, SELECT_AND); s = Select(); SelectNumber(s, 1);"),
              "0010");
}
TEST_F(Selection, NumberBeyondTheMembersDeselectsAll) {
    EXPECT_EQ(OnFour("var s; s = Select(); SelectAll(1); print(SelectNumber(s, 0));"), "FALSE");
    EXPECT_EQ(Selected(), "0000");
}
TEST_F(Selection, ANegativeNumberChangesNothing) {
    EXPECT_EQ(OnFour("var s; SelectAll(1); s = Select(); print(SelectNumber(s, -1));"), "FALSE");
    EXPECT_EQ(Selected(), "1110");
}
TEST_F(Selection, LoadByMemberNumber) {
    EXPECT_EQ(OnFour("var s; SelectAll(1); s = Select(); print(PolyLoad(s, 2) != 0, PolyGetVertex(0), "
                     "PolyLoad(s, 3), PolyLoad(s, -1));"),
              "TRUE ( 20  , 0   , 0    ) 0 0");
}
TEST_F(Selection, DeleteOfMembersCountsTheOthersThatAreSelected) {
    EXPECT_EQ(After("var s; SelectAttr(0, 1); s = Select(); SelectAll(1); PolyDelete(s);"), "110");
    EXPECT_EQ(PolygonTop()->vertex[0].x, 10);
}
TEST_F(Selection, DeleteOfMembersStopsAtTheCountOfTheSnapshot) {
    EXPECT_EQ(After("var s; SelectAll(1); s = Select(); PolyAppend(1); PolyDelete(s);"), "01");
}
TEST_F(Selection, TextHasOneCharacterForEveryBit) {
    const std::string text = Script(
        "var i; for (i = 0; i < 40; i++) tri(i, 0, 0, 1, 0, 0, 0, 1, 0);"
        "SelectArea(1, 0, Vertex(0, 0, 0), Vertex(1, 1, 0)); print(Select());");
    EXPECT_EQ(text.size(), 64U);
    EXPECT_EQ(text.substr(0, 4), "1100");
}
TEST_F(Selection, SnapshotOf32PolygonsHasTwoWordsAndAnOperatorsResultOne) {
    EXPECT_EQ(
        Script(
            "var i; for (i = 0; i < 32; i++) tri(i, 0, 0, 1, 0, 0, 0, 1, 0); SelectAll(0);"
            "var s; s = Select(); print(!tostring(s), !tostring(!s), !tostring(s | s), SelectPolygons(!s));"),
        "64 32 32 32");
}
TEST_F(Selection, NotSetsTheUnusedHighBitsToo) {
    EXPECT_EQ(Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); print(!Select());"),
              "01111111111111111111111111111111");
}
TEST_F(Selection, OperatorsCombineWordByWord) {
    EXPECT_EQ(
        OnFour("var a, b; SelectAttr(0, 1); SelectAttr(1, 1, SELECT_OR); a = Select(); SelectAttr(1, 1);"
               "SelectAttr(2, 1, SELECT_OR); b = Select();"
               "print(tostring(a & b).substr(4), tostring(a | b).substr(4), tostring(a ^ b).substr(4));"),
        "0100 1110 1010");
}
TEST_F(Selection, EqualityIgnoresWordsThatAreZero) {
    EXPECT_EQ(Script("var i, s, t; for (i = 0; i < 32; i++) tri(i, 0, 0, 1, 0, 0, 0, 1, 0); SelectAll(1); s "
                     "= Select();"
                     "t = s | s; print(s == t, s != t, s == !t, t == s);"),
              "TRUE FALSE FALSE TRUE");
}
TEST_F(Selection, OperandsOfOtherClassesAreErrors) {
    for (const char* code : {"&", "|", "^", "==", "!="}) {
        EXPECT_EQ(Failure(std::string("Select() ") + code + " Vertex(1, 2, 3);"),
                  "論理演算の型が不正です(Select)")
            << code;
        EXPECT_EQ(Failure(std::string("Select() ") + code + " 1;"), "論理演算の型が不正です(Select)") << code;
    }
}
TEST_F(Selection, OtherOperatorsAreUnknownToTheClass) {
    EXPECT_EQ(Failure("Select() + Select();"), "演算子が不正です。(SelectClass)");
    EXPECT_EQ(Failure("print(-Select());"), "演算子が不正です。(SelectClass)");
}
TEST_F(Selection, AdjointTakesPolygonsThatShareAPosition) {
    EXPECT_EQ(Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); tri(0, 10, 0, 5, 20, 0, 0, 20, 0); tri(5, 20, 0, 50, "
                     "60, 70, 1, 1, 1);"
                     "tri(90, 0, 0, 91, 0, 0, 92, 0, 0); SelectNumber(Select(), 0); "
                     "print(tostring(SelectAdjoint(Select())).substr(4));"
                     "print(\"\", tostring(SelectAdjoint(SelectAdjoint(Select()))).substr(4));"),
              "1100 1110");
}
TEST_F(Selection, AdjointLeavesInvisiblePolygonsOut) {
    Add({At(0, 0, 0), At(1, 0, 0), At(0, 1, 0)});
    Add({At(0, 0, 0), At(2, 0, 0), At(0, 2, 0)});
    Add({At(1, 0, 0), At(3, 0, 0), At(0, 3, 0)});
    Polygon(0).flags = POLYGON_INVISIBLE;
    EXPECT_EQ(Script("print(tostring(SelectAdjoint(Select())).substr(3));"), "011");
    Polygon(1).select = 0;
    Polygon(2).select = 0;
    EXPECT_EQ(Script("print(tostring(SelectAdjoint(Select())).substr(3));"), "000");
}
TEST_F(Selection, AdjointGivesWhatComparingEveryPairGives) {
    std::uint32_t random = 12345;
    const auto next = [&random] {
        return static_cast<int>((random = random * 1664525 + 1013904223) >> 16 & 7) - 4;
    };
    for (int i = 0; i < 200; ++i) {
        Add({At(next() * 3, next(), next()), At(next(), next() * 3, next()), At(next(), next(), next() * 3)},
            i % 16 == 0);
        Polygon(i).flags = i % 5 == 0 ? POLYGON_INVISIBLE : 0;
    }
    std::string expected;
    const auto position = [](const VertexRecord& v) { return std::array{v.x, v.y, v.z}; };
    for (int p = 0; p < 200; ++p) {
        bool member = false;
        for (int q = 0; q < 200 && ((Polygon(p).flags & POLYGON_INVISIBLE) == 0); ++q) {
            for (const VertexRecord& a : Polygon(p).Vertices()) {
                for (const VertexRecord& b : Polygon(q).Vertices()) {
                    member = member || ((Polygon(q).flags & POLYGON_INVISIBLE) == 0 &&
                                        Polygon(q).select != 0 && position(a) == position(b));
                }
            }
        }
        expected += member ? '1' : '0';
    }
    EXPECT_EQ(Script("print(tostring(SelectAdjoint(Select())).substr(200));"), expected);
}
TEST_F(Selection, AMissingModeIsUpdateAndTwoArgumentsAreNeeded) {
    EXPECT_EQ(Failure("SelectAttr(0);"), "引数の数が不正です。( SelectAttr )");
    EXPECT_EQ(Failure("SelectObj(0, 1.0);"), "2 番目の引数の型が不正です。( SelectObj )");
    EXPECT_EQ(Failure("SelectPolyType(0, 1, 2, 3);"), "4 番目の引数の型が不正です。( SelectPolyType )");
    EXPECT_EQ(Failure("SelectAll();"), "引数の数が不正です。( SelectAll )");
    EXPECT_EQ(Failure("Select(Select(), 1);"), "2 番目の引数の型が不正です。( SelectLoad )");
}
TEST_F(Selection, AnEmptyModelHasEmptySelections) {
    EXPECT_EQ(Script("var s; s = Select(); print(SelectPolygons(s), s == s, !tostring(s), !tostring(!s), "
                     "SelectPolygons(SelectAdjoint(s)));"
                     "SelectAll(1); SelectAttr(0, 0); PolyDelete(s); Select(s);"),
              "0 TRUE 32 0 0");
}
TEST_F(Selection, ASelectOfALargerModelIsSafeAfterDeletion) {
    EXPECT_EQ(OnFour("var s; SelectAll(1); s = Select(); PolyDelete(); print(SelectPolygons(s), PolyLoad(s, "
                     "1), SelectNumber(s, 2));"
                     "PolyDelete(s); print(\"\", AttrPolygons());"),
              "3 0 FALSE 0");
}

}  // namespace
}  // namespace quelmark::test
