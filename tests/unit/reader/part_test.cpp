// Part references: where their files are looked for, how their polygons are placed, and where nesting ends.

#include "reader_fixture.h"

namespace quelmark::test {
namespace {

class Parts : public ReaderTest {
  protected:
    static const std::string TRIANGLE_PART;

    // Whether a part of this name, lying at this place alone, is found by a model in the folder "model".
    bool Found(const std::string& place, const std::string& name = "abcd.suf") {
        Put(place, TRIANGLE_PART);
        Put("model/m.suf", Block("parts " + name + "\n"));
        const std::size_t there = Polygons().size();
        ReadShapeFile("model\\m.suf", 1);
        std::filesystem::remove(place);
        return Polygons().size() == there + 1;
    }
};
const std::string Parts::TRIANGLE_PART = Block("atr p " + TRIANGLE, "part");

TEST_F(Parts, AreLookedForInTheSettledPlaces) {
    std::filesystem::create_directories("a/b/c");
    ReaderInit("a/b/");
    for (const char* place :
         {"abcd.suf", "a/b/abcd.suf", "ab/abcd.suf", "a/b/ab/abcd.suf", "parts/ab/abcd.suf",
          "a/b/parts/ab/abcd.suf", "model/abcd.suf", "model/ab/abcd.suf", "model/parts/ab/abcd.suf"}) {
        EXPECT_TRUE(Found(place)) << place;
    }
    for (const char* place : {"parts/abcd.suf", "a/b/parts/abcd.suf", "model/parts/abcd.suf", "a/abcd.suf"}) {
        EXPECT_FALSE(Found(place)) << place;
    }
}

TEST_F(Parts, ThreeFoldersUpwardsAreLookedInForParts) {
    for (const std::string inner : {"x", "x/y", "x/y/z"}) {
        std::filesystem::create_directories(folder / inner);
        std::filesystem::current_path(folder);
        Put("parts/ab/abcd.suf", TRIANGLE_PART);
        std::filesystem::current_path(folder / inner);
        const std::size_t there = Polygons().size();
        Put("m.suf", Block("parts abcd.suf\n"));
        EXPECT_TRUE(ReadShapeFile("m.suf", 1)) << inner;
        EXPECT_EQ(Polygons().size(), there + 1);
    }
}

TEST_F(Parts, TheFirstPlaceWins) {
    Put("abcd.suf", Block("atr near " + TRIANGLE));
    Put("ab/abcd.suf", Block("atr far " + TRIANGLE));
    EXPECT_TRUE(Read(Block("parts abcd.suf\n")));
    EXPECT_EQ(AttributeOf(Polygons()[0]), "near");
}

TEST_F(Parts, NamesOfTwoCharactersHaveNoFolderOfTheirOwn) {
    EXPECT_TRUE(Found("model/ab", "ab"));
    EXPECT_FALSE(Found("model/ab/ab", "ab"));
}

TEST_F(Parts, ANameWithoutExtensionIsLookedForAsItIsAndThenWithSuf) {
    EXPECT_TRUE(Found("parts/ab/abcd", "abcd"));
    std::filesystem::remove_all("parts");
    EXPECT_TRUE(Found("parts/ab/abcd.suf", "abcd"));
}

TEST_F(Parts, AFolderOfThatNameIsNoPart) {
    std::filesystem::create_directories("abcd.suf");
    EXPECT_TRUE(Found("model/abcd.suf"));
}

TEST_F(Parts, AMissingPartIsReportedAndTheRestRead) {
    EXPECT_FALSE(Read(Block("parts none\natr a " + TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  3 : 形状参照指定   next token=atr",
                               "t.suf  3 : ファイル none がオープンできません。   next token=atr"}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Parts, BelongToTheObjectThatRefersToThemAndKeepItsAttribute) {
    Put("part.suf", Block("atr inner " + TRIANGLE, "one") + Block("atr inner2 " + TRIANGLE, "two"));
    EXPECT_TRUE(Read(Block("atr outer parts part " + TRIANGLE)));
    ASSERT_EQ(Polygons().size(), 3U);
    EXPECT_EQ(AttributeOf(Polygons()[0]), "inner");
    EXPECT_EQ(AttributeOf(Polygons()[1]), "inner2");
    EXPECT_EQ(AttributeOf(Polygons()[2]), "outer");
    EXPECT_EQ(ObjFind("one"), -1);
    EXPECT_EQ(ObjectOf(Polygons()[1]), "o");
}

TEST_F(Parts, AttributeBlocksOfAPartAreRead) {
    Put("part.suf", "atr p { col ( rgb ( 0 1 0 ) ) }\n" + TRIANGLE_PART);
    EXPECT_TRUE(Read(Block("parts part\n")));
    EXPECT_EQ(AttrTable[AttrFind("p")].code, 4);
}

TEST_F(Parts, TransformationsApplyInTheOrderWritten) {
    Put("part.suf", Block("atr p prim shade ( 100 0 0 256 0 0  0 100 0 256 0 0  0 0 0 256 0 0 )"));
    EXPECT_TRUE(
        Read(Block("parts part mov ( 10 0 0 ) rotz ( 90 )\nparts part rotz ( 90 ) mov ( 10 0 0 )\n"
                   "parts part scal ( 2 1 1 )\nparts part rotx ( 90 ) roty ( 0 )\n"
                   "parts part mat ( 0 1 0 0  -1 0 0 0  0 0 1 0  7 8 9 1 )\n")));
    ASSERT_EQ(Polygons().size(), 5U);
    const auto first = [](int i) { return Polygons()[static_cast<std::size_t>(i)]->vertex[0]; };
    EXPECT_EQ(first(0).x, 0);
    EXPECT_EQ(first(0).y, 110);
    EXPECT_EQ(first(0).ny, 256);
    EXPECT_EQ(first(1).x, 10);
    EXPECT_EQ(first(1).y, 100);
    EXPECT_EQ(first(2).x, 200);
    EXPECT_EQ(first(2).nx, 256);
    EXPECT_EQ(Polygons()[3]->vertex[1].z, 100);
    EXPECT_EQ(Polygons()[3]->normal[1], -256);
    EXPECT_EQ(first(4).x, 7);
    EXPECT_EQ(first(4).y, 108);
    EXPECT_EQ(first(4).z, 9);
}

TEST_F(Parts, LevelsCombineTheirTransformations) {
    Put("inner.suf", Block("atr p prim poly ( 100 0 0 0 100 0 0 0 0 )"));
    Put("outer.suf", Block("parts inner mov ( 10 0 0 )\n"));
    EXPECT_TRUE(Read(Block("parts outer rotz ( 90 ) mov ( 0 0 5 )\n")));
    EXPECT_EQ(Polygons()[0]->vertex[0].x, 0);
    EXPECT_EQ(Polygons()[0]->vertex[0].y, 110);
    EXPECT_EQ(Polygons()[0]->vertex[0].z, 5);
}

TEST_F(Parts, MovedBeyondTheRangeStayAtIt) {
    Put("part.suf", TRIANGLE_PART);
    EXPECT_TRUE(Read(Block("parts part mov ( 1e9 -1e9 32760 ) scal ( 1e20 1 1 )\n")));
    EXPECT_EQ(Polygons()[0]->vertex[0].x, 32767);
    EXPECT_EQ(Polygons()[0]->vertex[0].y, -32767);
    EXPECT_EQ(Polygons()[0]->vertex[0].z, 32760);
}

TEST_F(Parts, FaultyTransformationsDropTheReference) {
    Put("part.suf", TRIANGLE_PART);
    EXPECT_FALSE(
        Read(Block("parts part mov ( 1 2 )\nparts part rotx 90\nparts part scal ( 1 2 3 4 )\n"
                   "parts part ( 1 )\nparts ( part )\natr a " +
                   TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 : 数字が必要です。   next token=)",
                               "t.suf  2 : 座標変換指定がおかしい。   next token=)",
                               "t.suf  3 :  ( がありません。   next token=90",
                               "t.suf  3 : 座標変換指定がおかしい。   next token=90",
                               "t.suf  4 :  4 が存在します。   next token=4",
                               "t.suf  4 : 座標変換指定がおかしい。   next token=4",
                               "t.suf  5 : 引数の処理はできません。   next token=(",
                               "t.suf  6 : 名前（(）がおかしい   next token=("}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Parts, AFaultyReferenceIsDroppedWithTheTransformationsBehindTheFault) {
    Put("part.suf", TRIANGLE_PART);
    EXPECT_FALSE(Read(Block("parts part mov ( 1 2 ) scal ( 1 2 3 ) rotx ( 9 )\natr a " + TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 : 数字が必要です。   next token=)",
                               "t.suf  2 : 座標変換指定がおかしい。   next token=)"}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Parts, TenLevelsAreReadAndTheEleventhIsTooComplex) {
    for (int i = 1; i <= 11; ++i) {
        Put("level" + std::to_string(i) + ".suf",
            Block("atr p " + TRIANGLE + (i < 11 ? "parts level" + std::to_string(i + 1) + "\n" : "")));
    }
    EXPECT_FALSE(Read(Block("parts level1\n")));
    EXPECT_EQ(Polygons().size(), 10U);
    EXPECT_EQ(messages, Lines{"level10.suf  4 : 構造定義が複雑すぎます。   next token=}"});
}

TEST_F(Parts, AFileThatRefersToItselfEndsAtTheTenthLevel) {
    EXPECT_FALSE(Read(Block("atr p " + TRIANGLE + "parts t\n")));
    EXPECT_EQ(Polygons().size(), 11U);
}

TEST_F(Parts, ReferencesThatMultiplyComeToAnEnd) {
    std::string many;
    for (int i = 0; i < 50; ++i) {
        many += "parts t\n";
    }
    EXPECT_FALSE(Read(Block(many)));
    EXPECT_NE(messages[0].find("構造定義が複雑すぎます。"), std::string::npos);
    EXPECT_LE(messages.size(), 201U);
}

TEST_F(Parts, AFaultThatEndsTheReadInAPartEndsTheWholeRead) {
    Put("part.suf", "obj suf p { atr a " + TRIANGLE);
    EXPECT_FALSE(Read(Block("parts part\natr a " + TRIANGLE)));
    EXPECT_EQ(messages, Lines{"part.suf  2 : エンドオブファイルになりました   next token="});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Parts, AnswerTheSearchOfScripts) {
    std::string path;
    EXPECT_FALSE(FindPartFile("abcd.suf", "", path));
    EXPECT_EQ(path, "abcd.suf");
    Put("parts/ab/abcd.suf", "");
    EXPECT_TRUE(FindPartFile("abcd.suf", "", path));
    EXPECT_EQ(path, "parts\\ab\\abcd.suf");
    EXPECT_FALSE(FindPartFile("", "", path));
}

using Frames = ReaderTest;

TEST_F(Frames, PlaceTheirObjectByTheirMatrix) {
    Put("box.suf", Block("atr a " + TRIANGLE, "box"));
    Put("f.frm",
        "env { back ( rgb ( 0.000000 0.000000 0.500000 ) ) }fram {\n\tlight pal ( rgb ( 1 1 1 ) 4 2 -1 )\n"
        "\teye deg ( 45 )\n\tmat(\n\t\t1.0 0 0 0.0\n\t\t0 1 0 0.0\n\t\t0 0 1 0.0\n\t\t10 20 30 1.0\n\t)\n"
        "\tobj box\n}\n");
    EXPECT_TRUE(ReadFrameFile("f.frm", 1));
    EXPECT_EQ(messages, Lines{});
    ASSERT_EQ(Polygons().size(), 1U);
    EXPECT_EQ(Polygons()[0]->vertex[1].x, 110);
    EXPECT_EQ(Polygons()[0]->vertex[1].y, 20);
    EXPECT_EQ(Polygons()[0]->vertex[1].z, 30);
    EXPECT_EQ(ObjectOf(Polygons()[0]), "box");
}

TEST_F(Frames, FindTheirObjectByThePartSearch) {
    Put("parts/bo/box.suf", Block("atr a " + TRIANGLE, "box"));
    Put("f.frm", "fram { obj box }");
    EXPECT_TRUE(ReadFrameFile("f.frm", 1));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Frames, OfAShapeFileItIsTheShape) {
    Put("box.suf", Block("atr a " + TRIANGLE, "box"));
    EXPECT_TRUE(ReadFrameFile("box", 1));
    EXPECT_TRUE(ReadFrameFile("box.suf", 0));
    EXPECT_EQ(Polygons()[1]->obj, 1);
}

TEST_F(Frames, FaultsAreReported) {
    for (const char* text :
         {"fram { obj none }", "fram ( )", "fram { obj", "fram { mat ( 1 ) }", "env { ", "stop"}) {
        messages.clear();
        Put("f.frm", text);
        ReadFrameFile("f.frm", 1);
        EXPECT_NE(messages.size() + (std::string(text) == "env { " ? 1 : 0), 0U) << text;
    }
    EXPECT_FALSE(ReadFrameFile("nothing", 1));
}

TEST_F(Frames, AFrameMayNameItself) {
    Put("f.frm", "fram { obj f.frm }");
    EXPECT_FALSE(ReadFrameFile("f.frm", 1));
    EXPECT_EQ(messages, Lines{"f.frm  1 : 形状ファイルではありません。   next token=fram"});
}

}  // namespace
}  // namespace quelmark::test
