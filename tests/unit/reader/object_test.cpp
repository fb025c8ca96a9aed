// Object blocks: what a well-formed file puts into the model.
#include "reader_fixture.h"

namespace quelmark::test {
namespace {

using ObjectBlocks = ReaderTest;

TEST_F(ObjectBlocks, APolygonArrivesSelectedWithItsAttributeObjectAndPlaneNormal) {
    EXPECT_TRUE(
        Read("obj suf box {\natr red\nprim\tpoly\t(\t0\t0\t0\n\t\t \t100\t0\t0\n\t\t \t0\t100\t0 )\n\n}\n"));
    EXPECT_EQ(messages, Lines{});
    ASSERT_EQ(Polygons().size(), 1U);
    const PolygonRecord& p = *Polygons()[0];
    EXPECT_EQ(p.select, 1);
    EXPECT_EQ(SelectCount, 1);
    EXPECT_EQ(p.type, POLY_SIMPLE);
    EXPECT_EQ(p.vers, 3);
    EXPECT_EQ(p.flags & POLYGON_INVISIBLE, 0);
    EXPECT_EQ(AttributeOf(&p), "red");
    EXPECT_EQ(ObjectOf(&p), "box");
    EXPECT_EQ(p.normal[0], 0);
    EXPECT_EQ(p.normal[1], 0);
    EXPECT_EQ(p.normal[2], 256);
    EXPECT_EQ(p.vertex[1].x, 100);
    EXPECT_EQ(p.vertex[2].y, 100);
    EXPECT_EQ(std::string(ObjTable[p.obj].file), "t.suf");
}

TEST_F(ObjectBlocks, EachTypeTakesItsWordsAndLeavesTheOthersZero) {
    EXPECT_TRUE(
        Read(Block("atr a prim shade ( 1 2 3 4 5 6  7 8 9 10 11 12  13 14 15 16 17 18 )"
                   "prim uvpoly ( 1 2 3 4 5  6 7 8 9 10  11 12 13 14 15 )"
                   "prim uvshade ( 1 2 3 4 5 6 7 8  1 2 3 4 5 6 7 8  9 2 3 4 5 6 7 8 )")));
    ASSERT_EQ(Polygons().size(), 3U);
    const VertexRecord& shade = Polygons()[0]->vertex[1];
    EXPECT_EQ(Polygons()[0]->type, POLY_SHADE);
    EXPECT_EQ(shade.x, 7);
    EXPECT_EQ(shade.nz, 12);
    EXPECT_EQ(shade.u, 0);
    const VertexRecord& uv = Polygons()[1]->vertex[2];
    EXPECT_EQ(Polygons()[1]->type, POLY_UV);
    EXPECT_EQ(uv.z, 13);
    EXPECT_EQ(uv.nx, 0);
    EXPECT_EQ(uv.v, 15);
    const VertexRecord& both = Polygons()[2]->vertex[2];
    EXPECT_EQ(Polygons()[2]->type, POLY_UVSHADE);
    EXPECT_EQ(both.x, 9);
    EXPECT_EQ(both.nx, 4);
    EXPECT_EQ(both.v, 8);
}

TEST_F(ObjectBlocks, AnAttributeLineHoldsUntilTheNext) {
    EXPECT_TRUE(Read(Block("atr a " + TRIANGLE + TRIANGLE + "atr b " + TRIANGLE)));
    EXPECT_EQ(AttributeOf(Polygons()[1]), "a");
    EXPECT_EQ(AttributeOf(Polygons()[2]), "b");
}

TEST_F(ObjectBlocks, PolygonsBeforeAnyAttributeLineGetNoWithOneWarningABlock) {
    EXPECT_TRUE(Read(Block(TRIANGLE + TRIANGLE) + Block(TRIANGLE, "p")));
    EXPECT_EQ(messages, (Lines{"t.suf  2 : atr no があります。   next token=)",
                               "t.suf  6 : atr no があります。   next token=)"}));
    EXPECT_EQ(AttributeOf(Polygons()[0]), "no");
    EXPECT_EQ(Polygons()[2]->attr, Polygons()[0]->attr);
}

TEST_F(ObjectBlocks, ModeOneMergesObjectsByNameAndModeZeroAlwaysCreates) {
    const std::string text = Block("atr a " + TRIANGLE);
    EXPECT_TRUE(Read(text));
    EXPECT_EQ(ObjTable[0].edit, 0);
    EXPECT_TRUE(Read(text));
    EXPECT_EQ(Polygons()[1]->obj, 0);
    EXPECT_EQ(ObjTable[0].edit, 1);
    EXPECT_TRUE(Read(text, 0));
    EXPECT_EQ(Polygons()[2]->obj, 1);
    EXPECT_EQ(Polygons()[2]->attr, 0);
}

TEST_F(ObjectBlocks, WhatWasThereKeepsItsSelection) {
    EXPECT_TRUE(Read(Block("atr a " + TRIANGLE)));
    Polygons()[0]->select = 0;
    SelectCount = 0;
    EXPECT_TRUE(Read(Block("atr a " + TRIANGLE)));
    EXPECT_EQ(Polygons()[0]->select, 0);
    EXPECT_EQ(Polygons()[1]->select, 1);
    EXPECT_EQ(SelectCount, 1);
}

TEST_F(ObjectBlocks, ANameWithoutExtensionGetsSuf) {
    Put("model.suf", Block("atr a " + TRIANGLE));
    EXPECT_TRUE(ReadShapeFile("model", 1));
    EXPECT_EQ(std::string(ObjTable[0].file), "model.suf");
    EXPECT_TRUE(ReadShapeFile("C:" + folder.string() + "/MODEL", 1));
}

TEST_F(ObjectBlocks, CommentsAreBlanks) {
    EXPECT_TRUE(Read(
        "/* a \n model */ obj suf o { /**/atr a/* x */prim poly(/*1*/0 0 0/*2*/ 1 0 0 0/* */1 0/* ) */)}"));
    EXPECT_EQ(messages, Lines{});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(ObjectBlocks, FractionsAreTruncatedAndSignsTaken) {
    EXPECT_TRUE(Read(Block("atr a prim poly ( 1.9 -1.9 +7  1e2 .9 -.9  0 100 0 )")));
    const VertexRecord* v = Polygons()[0]->vertex;
    EXPECT_EQ(v[0].x, 1);
    EXPECT_EQ(v[0].y, -1);
    EXPECT_EQ(v[0].z, 7);
    EXPECT_EQ(v[1].x, 100);
    EXPECT_EQ(v[1].y, 0);
}

TEST_F(ObjectBlocks, CoordinatesBeyondTheRangeAreLimitedWithOneWarningAFile) {
    EXPECT_TRUE(
        Read(Block("atr a prim poly ( 32768 -32768 -32767  99999999999999999999 -1e300 32767  0 0 0 )\n"
                   "prim poly ( 40000 0 0  0 1 0  0 0 1 )\n")));
    const VertexRecord* v = Polygons()[0]->vertex;
    EXPECT_EQ(v[0].x, 32767);
    EXPECT_EQ(v[0].y, -32767);
    EXPECT_EQ(v[0].z, -32767);
    EXPECT_EQ(v[1].x, 32767);
    EXPECT_EQ(v[1].y, -32767);
    EXPECT_EQ(v[1].z, 32767);
    EXPECT_EQ(messages, Lines{"t.suf  2 : 警告：座標が範囲を越えたので制限しました。   next token=)"});
}

TEST_F(ObjectBlocks, NormalsAndMappingTakeEverySixteenBitNumber) {
    EXPECT_TRUE(
        Read(Block("atr a prim uvshade ( 0 0 0 -32768 32767 -32768 -32768 32767  1 0 0 0 0 256 0 0\n"
                   "0 1 0 0 0 256 0 -32768.9 )\n")));
    EXPECT_EQ(messages, Lines{});
    const VertexRecord* v = Polygons()[0]->vertex;
    EXPECT_EQ(v[0].nx, -32768);
    EXPECT_EQ(v[0].ny, 32767);
    EXPECT_EQ(v[0].nz, -32768);
    EXPECT_EQ(v[0].u, -32768);
    EXPECT_EQ(v[0].v, 32767);
    EXPECT_EQ(v[2].v, -32768);
    EXPECT_TRUE(Read(Block("atr a prim shade ( 0 0 0 -32769 32768 0  1 0 0 0 0 0  0 1 0 0 0 0 )\n")));
    EXPECT_EQ(messages, Lines{"t.suf  2 : 警告：座標が範囲を越えたので制限しました。   next token=)"});
    EXPECT_EQ(Polygons()[1]->vertex[0].nx, -32768);
    EXPECT_EQ(Polygons()[1]->vertex[0].ny, 32767);
}

TEST_F(ObjectBlocks, AFileWithAByteOrderMarkIsUtf8) {
    Put("u.suf", "\xEF\xBB\xBFobj suf 家 { atr 壁 " + TRIANGLE + "}");
    EXPECT_TRUE(ReadShapeFile("u.suf", 1));
    EXPECT_EQ(Cp932ToUtf8(ObjTable[0].name), "家");
    EXPECT_EQ(Cp932ToUtf8(AttrTable[0].name), "壁");
}

TEST_F(ObjectBlocks, SecondBytesThatLookLikePunctuationBelongToTheirCharacter) {
    // The second byte of 表 is a backslash, of ボ '{', of マ '}'.
    EXPECT_TRUE(Read(Block("atr 表 " + TRIANGLE, "ボマ")));
    EXPECT_EQ(messages, Lines{});
    EXPECT_EQ(Cp932ToUtf8(ObjTable[0].name), "ボマ");
}

TEST_F(ObjectBlocks, AHalfDoubleByteCharacterDoesNotSwallowTheBlankBehindIt) {
    Put("t.suf", "obj suf ab\x83 { atr a " + TRIANGLE + "}");
    EXPECT_TRUE(ReadShapeFile("t.suf", 1));
    EXPECT_EQ(std::string(ObjTable[0].name), "ab\x83");
}

TEST_F(ObjectBlocks, ReservedWordsMayBeNames) {
    EXPECT_TRUE(
        Read("atr red { col ( 0.50 ) }" + Block("atr red " + TRIANGLE + "atr 1a " + TRIANGLE, "light")));
    EXPECT_EQ(messages, Lines{});
    EXPECT_EQ(AttributeOf(Polygons()[0]), "red");
    EXPECT_EQ(AttributeOf(Polygons()[1]), "1a");
}

TEST_F(ObjectBlocks, APolygonOfTheLargestNumberOfVerticesIsRead) {
    std::string text = "atr a prim poly (";
    for (int i = 0; i < 1023; ++i) {
        text += " " + std::to_string(i) + " " + std::to_string(i % 7) + " 0";
    }
    EXPECT_TRUE(Read(Block(text + " )")));
    ASSERT_EQ(Polygons().size(), 1U);
    EXPECT_EQ(Polygons()[0]->vers, 1023);
    EXPECT_EQ(Polygons()[0]->vertex[1022].x, 1022);
}

TEST_F(ObjectBlocks, PolygonsFillTheBufferToItsEndAndThenOneMessageIsShown) {
    std::string text = "atr a ";
    for (int i = 0; i < 100; ++i) {
        text += TRIANGLE;
    }
    Model(10 * 72 + 4);
    EXPECT_FALSE(Read(Block(text) + Block(text, "p")));
    EXPECT_EQ(Polygons().size(), 10U);
    EXPECT_EQ(messages, Lines{"データバッファがオーバフローしました(BufferAppend)"});
    EXPECT_EQ(ObjLast, 0);
}

TEST_F(ObjectBlocks, AFullAttributeTableEndsTheReadWithOneMessage) {
    Model(1 << 20, 16, 1);
    EXPECT_FALSE(Read(Block("atr a " + TRIANGLE + "atr b " + TRIANGLE + "atr c " + TRIANGLE)));
    EXPECT_EQ(Polygons().size(), 1U);
    EXPECT_EQ(messages, Lines{"アトリビュートバッファがオーバーフローしました"});
}

TEST_F(ObjectBlocks, AFullObjectTableEndsTheReadWithOneMessage) {
    Model(1 << 20, 1, 16);
    EXPECT_FALSE(Read(Block("atr a " + TRIANGLE) + Block("atr a " + TRIANGLE, "p") + Block("", "q")));
    EXPECT_EQ(Polygons().size(), 1U);
    EXPECT_EQ(messages, Lines{"オブジェクトバッファがオーバーフローしました"});
}

TEST_F(ObjectBlocks, EverySampleReadsWithoutAMessage) {
    std::filesystem::current_path(QUELMARK_SOURCE_DIR "/samples");
    Model(1 << 24, 64, 64);
    for (const auto& [name, count] :
         std::vector<std::pair<std::string, std::size_t>>{{"cube.suf", 6},
                                                          {"house.suf", 374},
                                                          {"teapot.suf", 1640},
                                                          {"plane.suf", 1397},
                                                          {"knot.suf", 2880},
                                                          {"sphere.suf", 5120},
                                                          {"chess.suf", 6918},
                                                          {"terrain.suf", 30000}}) {
        const std::size_t there = Polygons().size();
        EXPECT_TRUE(ReadShapeFile(name, 0)) << name;
        EXPECT_EQ(Polygons().size() - there, count) << name;
    }
    EXPECT_EQ(messages, Lines{});
}

}  // namespace
}  // namespace quelmark::test
