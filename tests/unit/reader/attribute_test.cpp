// Attribute blocks, of shape files and of attribute files.
#include "reader_fixture.h"

namespace quelmark::test {
namespace {

using Attributes = ReaderTest;

bool Same(const ColourTriple& c, int red, int green, int blue) {
    return c.red == red && c.green == green && c.blue == blue;
}

TEST_F(Attributes, EveryLineArrivesInItsField) {
    EXPECT_TRUE(ReadAttributes(
        "atr all {\n\tcol ( rgb ( 1.00 0.50 0.00 ) )\n\ttra ( 0.25 )\n\tamb ( 0.10 )\n\tdif ( 0.20 )\n"
        "\tspc ( 0.50 rgb ( 0.25 0.50 0.75 ) 3.00 )\n\tref ( 0.5 )\n\trfr ( rgb ( 0 0 1 ) )\n\tatt ( 1.5 )\n"
        "\tcolormap ( wood.bmp )\n\tmapsize ( 0 0 320 200 )\n\tmapview ( -1   2.5000 3 4 )\n\tmapwind ( 0 0 "
        "1 1 )\n}\n"));
    EXPECT_EQ(messages, Lines{});
    const AttributeRecord& a = AttrTable[0];
    EXPECT_TRUE(Same(a.col, 4096, 2048, 0));
    EXPECT_EQ(a.code, 2);
    EXPECT_TRUE(Same(a.tra, 1024, 1024, 1024));
    EXPECT_TRUE(Same(a.amb, 409, 409, 409));
    EXPECT_TRUE(Same(a.dif, 819, 819, 819));
    EXPECT_TRUE(Same(a.spc, 2048, 2048, 2048));
    EXPECT_TRUE(Same(a.size, 1024, 2048, 3072));
    EXPECT_EQ(a.spcextra, 3 * 4096);
    EXPECT_TRUE(Same(a.ref, 2048, 2048, 2048));
    EXPECT_TRUE(Same(a.rfr, 0, 0, 4096));
    EXPECT_TRUE(Same(a.att, 6144, 6144, 6144));
    EXPECT_EQ(a.map, 1);
    EXPECT_EQ(std::string(a.mapfile), "wood.bmp");
    EXPECT_EQ(a.mapsize[1][0], 320 * 65536);
    EXPECT_EQ(a.mapview[0][0], -65536);
    EXPECT_EQ(a.mapview[0][1], 163840);
    EXPECT_EQ(a.mapwind[1][1], 65536);
    EXPECT_EQ(std::string(a.file), "t.suf");
}

TEST_F(Attributes, MissingLinesTakeTheValuesOfANewAttribute) {
    EXPECT_TRUE(ReadAttributes("atr a { ref ( 1 ) colormap ( x ) }"));
    EXPECT_TRUE(ReadAttributes("atr a { }"));
    const AttributeRecord& a = AttrTable[0];
    EXPECT_TRUE(Same(a.col, 4096, 4096, 4096));
    EXPECT_TRUE(Same(a.amb, 2048, 2048, 2048));
    EXPECT_TRUE(Same(a.ref, 0, 0, 0));
    EXPECT_EQ(a.map, 0);
    EXPECT_EQ(a.code, 7);
    EXPECT_EQ(AttrLast, 0);
}

TEST_F(Attributes, ModeZeroAlwaysMakesANewOne) {
    EXPECT_TRUE(ReadAttributes("atr a { }"));
    EXPECT_TRUE(ReadAttributes("atr a { col ( 0 ) }", 0));
    EXPECT_EQ(AttrLast, 1);
    EXPECT_EQ(AttrTable[1].col.red, 0);
    EXPECT_EQ(AttrTable[0].col.red, 4096);
}

TEST_F(Attributes, OfAShapeFileMergeByNameInBothModes) {
    EXPECT_TRUE(Read("atr a { col ( 0.25 ) }", 0));
    EXPECT_TRUE(Read("atr a { col ( 0.50 ) }", 0));
    EXPECT_EQ(AttrLast, 0);
    EXPECT_EQ(AttrTable[0].col.red, 2048);
}

TEST_F(Attributes, HsvColoursTurnOverTheHexcone) {
    EXPECT_TRUE(
        ReadAttributes("atr a { col ( hsv ( 0 1 1 ) ) amb ( hsv ( 120 1 0.5 ) ) dif ( hsv ( 240 0.5 1 ) )\n"
                       "tra ( hsv ( 60 1 1 ) ) ref ( hsv ( -120 1 1 ) ) rfr ( hsv ( 360 1 1 ) ) att ( hsv ( "
                       "77 0 0.25 ) ) }"));
    const AttributeRecord& a = AttrTable[0];
    EXPECT_TRUE(Same(a.col, 4096, 0, 0));
    EXPECT_TRUE(Same(a.amb, 0, 2048, 0));
    EXPECT_TRUE(Same(a.dif, 2048, 2048, 4096));
    EXPECT_TRUE(Same(a.tra, 4096, 4096, 0));
    EXPECT_TRUE(Same(a.ref, 0, 0, 4096));
    EXPECT_TRUE(Same(a.rfr, 4096, 0, 0));
    EXPECT_TRUE(Same(a.att, 1024, 1024, 1024));
}

TEST_F(Attributes, WildNumbersAreLimited) {
    EXPECT_TRUE(
        ReadAttributes("atr a { col ( 1e300 ) amb ( -1e300 ) dif ( hsv ( 1e300 1e300 1e300 ) )\n"
                       "mapsize ( 1e300 -1e300 0 99999999 ) }"));
    EXPECT_EQ(AttrTable[0].col.red, 32767);
    EXPECT_EQ(AttrTable[0].amb.red, -32768);
}

TEST_F(Attributes, AFaultyLineIsDroppedAndTheRestRead) {
    EXPECT_FALSE(
        ReadAttributes("atr a {\ncol ( bad )\namb ( 0.25 )\ndif ( rgb ( 1 2 ) )\nspc ( 1 1 )\ntra 1\n"
                       "ref ( 1 2 )\nmapsize ( 1 2 3 )\nmapview 4\ncolormap ( )\ncolormap ( " +
                       std::string(32, 'f') + " )\natt ( 1 )\n}"));
    const std::string f(32, 'f');
    EXPECT_EQ(
        messages,
        (Lines{"t.suf  2 : 色情報がおかしい。   next token=bad", "t.suf  4 : 数字が必要です。   next token=)",
               "t.suf  5 : 数字が必要です。   next token=)", "t.suf  6 :  ( がありません。   next token=1",
               "t.suf  7 :  ) がありません。   next token=2",
               "t.suf  8 : マッピングデータがおかしい。   next token=)",
               "t.suf  9 : マッピングデータがおかしい。   next token=4",
               "t.suf 10 : 名前（)）がおかしい   next token=)",
               "t.suf 11 : 名前（" + f + "）が長すぎます。（３１文字まで)   next token=" + f}));
    const AttributeRecord& a = AttrTable[0];
    EXPECT_TRUE(Same(a.col, 4096, 4096, 4096));
    EXPECT_TRUE(Same(a.amb, 1024, 1024, 1024));
    EXPECT_TRUE(Same(a.att, 4096, 4096, 4096));
    EXPECT_EQ(a.map, 0);
}

TEST_F(Attributes, WordsThatAreNoLinesAreUnsupportedOrStray) {
    EXPECT_FALSE(ReadAttributes("atr a { light ( 1 )\ncol ( 0.5 )\nword\namb ( 0.25 ) }"));
    EXPECT_EQ(messages, (Lines{"t.suf  1 :  light はサポートしていません。   next token=light",
                               "t.suf  3 :  word が存在します。   next token=word"}));
    EXPECT_EQ(AttrTable[0].amb.red, 1024);
}

TEST_F(Attributes, BumpMapsGiveAWarningAlone) {
    EXPECT_TRUE(ReadAttributes("atr a { bumpmap ( x ) col ( 0.5 ) }"));
    EXPECT_EQ(messages, Lines{"t.suf  1 : bumpmap 処理はサポートしていません。   next token=bumpmap"});
    EXPECT_EQ(AttrTable[0].col.red, 2048);
}

TEST_F(Attributes, AFileMustBeginWithAnAttributeBlock) {
    EXPECT_FALSE(ReadAttributes("obj suf o { }\natr a { }"));
    EXPECT_FALSE(ReadAttributes("# text"));
    EXPECT_FALSE(ReadAttributes(""));
    EXPECT_EQ(messages, (Lines{"t.suf  1 : アトリビュートファイルではありません。   next token=obj",
                               "t.suf  1 : アトリビュートファイルではありません。   next token=#",
                               "t.suf  1 : アトリビュートファイルではありません。   next token="}));
}

TEST_F(Attributes, ObjectBlocksOfAnAttributeFileAreSkippedSilently) {
    EXPECT_TRUE(ReadAttributes("atr a { }" + Block("atr x " + TRIANGLE) + "atr b { }"));
    EXPECT_EQ(messages, Lines{});
    EXPECT_EQ(AttrFind("x"), -1);
    EXPECT_EQ(AttrFind("b"), 1);
    EXPECT_EQ(Polygons().size(), 0U);
}

TEST_F(Attributes, ABlockWithoutItsBraceEndsWhereTheNextBegins) {
    EXPECT_FALSE(ReadAttributes("atr a { col ( 0.5 )\natr b { col ( 0.25 ) }"));
    EXPECT_EQ(messages, Lines{"t.suf  2 :  } がありません。   next token=atr"});
    EXPECT_EQ(AttrTable[0].col.red, 2048);
    EXPECT_EQ(AttrTable[1].col.red, 1024);
}

TEST_F(Attributes, AFaultyHeaderDropsTheBlock) {
    EXPECT_FALSE(ReadAttributes("atr { }\natr a col ( 1 ) }\natr b { }"));
    EXPECT_EQ(messages, (Lines{"t.suf  1 : 名前（{）がおかしい   next token={",
                               "t.suf  2 :  { がありません。   next token=col"}));
    EXPECT_EQ(AttrFind("b"), 0);
}

TEST_F(Attributes, TextBetweenBlocksIsReportedOnce) {
    EXPECT_FALSE(ReadAttributes("atr a { }\nsome words here\natr b { }"));
    EXPECT_EQ(messages, Lines{"t.suf  2 :  atr がありません。   next token=some"});
    EXPECT_EQ(AttrFind("b"), 1);
}

TEST_F(Attributes, TheEndOfTheFileInsideABlockKeepsWhatWasRead) {
    EXPECT_FALSE(ReadAttributes("atr a { col ( 0.5 ) amb ( 0.2"));
    EXPECT_EQ(messages, Lines{"t.suf  1 : エンドオブファイルになりました   next token="});
    EXPECT_EQ(AttrTable[0].col.red, 2048);
    EXPECT_EQ(AttrTable[0].amb.red, 2048);
}

TEST_F(Attributes, AFullTableEndsTheReadWithOneMessage) {
    Model(1 << 20, 16, 1);
    EXPECT_FALSE(ReadAttributes("atr a { } atr b { } atr c { }"));
    EXPECT_EQ(messages, Lines{"アトリビュートバッファがオーバーフローしました"});
}

TEST_F(Attributes, NamesAreKnownByTheirFirstSixteenBytes) {
    EXPECT_TRUE(ReadAttributes("atr abcdefghijklmnopqr { } atr abcdefghijklmnopXX { col ( 0 ) }"));
    EXPECT_EQ(AttrLast, 0);
    EXPECT_EQ(std::string(AttrTable[0].name), "abcdefghijklmnop");
    EXPECT_EQ(AttrTable[0].col.red, 0);
}

}  // namespace
}  // namespace quelmark::test
