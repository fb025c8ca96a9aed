// Every message of the readers, with its file, line and token, and what a fault leaves in the model.
#include <clocale>

#include "reader/report.h"
#include "reader/scanner.h"
#include "reader_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

using Faults = ReaderTest;
const std::string GOOD = "atr a " + TRIANGLE;

TEST_F(Faults, AFileThatBeginsWithAnythingElseIsNoShapeFile) {
    EXPECT_FALSE(Read("fram { }"));
    EXPECT_FALSE(Read(""));
    EXPECT_EQ(messages, (Lines{"t.suf  1 : 形状ファイルではありません。   next token=fram",
                               "t.suf  1 : 形状ファイルではありません。   next token="}));
}

TEST_F(Faults, PrivateGivesOneWarningAndIsSkipped) {
    EXPECT_TRUE(Read("obj private suf o {\n" + GOOD + "}"));
    EXPECT_EQ(messages, Lines{"t.suf  1 : 警告：private 処理はサポートしていません。   next token=private"});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AHeaderWithoutSufIsNoSurfaceModelAndTheNextObjectIsRead) {
    EXPECT_FALSE(Read("obj mod o {\n" + GOOD + "}\n" + Block(GOOD, "p")));
    EXPECT_EQ(messages, Lines{"t.suf  1 : サーフィスモデルではありません。   next token=mod"});
    ASSERT_EQ(Polygons().size(), 1U);
    EXPECT_EQ(ObjectOf(Polygons()[0]), "p");
}

TEST_F(Faults, ANameOf31BytesIsReadAndOneOf32Refused) {
    EXPECT_TRUE(Read(Block(GOOD, std::string(31, 'n'))));
    EXPECT_EQ(std::string(ObjTable[0].name), std::string(16, 'n'));
    EXPECT_FALSE(Read(Block(GOOD, std::string(32, 'n'))));
    const std::string name(32, 'n');
    EXPECT_EQ(messages,
              Lines{"t.suf  1 : 名前（" + name + "）が長すぎます。（３１文字まで)   next token=" + name});
}

TEST_F(Faults, ALongJapaneseNameIsQuotedWhole) {
    std::string name;
    for (int i = 0; i < 16; ++i) {
        name += "壁";
    }
    EXPECT_FALSE(Read(Block("atr " + name + "\n" + GOOD)));
    EXPECT_EQ(messages,
              Lines{"t.suf  2 : 名前（" + name + "）が長すぎます。（３１文字まで)   next token=" + name});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AVeryLongTokenIsQuotedInPartWithoutCuttingACharacter) {
    std::string name = "x";
    for (int i = 0; i < 5000; ++i) {
        name += "壁";
    }
    EXPECT_FALSE(Read(Block(GOOD, name)));
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_LT(messages[0].size(), 600U);
    EXPECT_EQ(messages[0].find("\xEF\xBF\xBD"), std::string::npos);
}

TEST_F(Faults, PunctuationInThePlaceOfANameIsMalformed) {
    EXPECT_FALSE(Read("obj suf ( {\n}\n" + Block(GOOD)));
    EXPECT_EQ(messages, Lines{"t.suf  1 : 名前（(）がおかしい   next token=("});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, ANumberIsNoName) {
    EXPECT_FALSE(
        Read("obj suf\n12 {\n" + TRIANGLE + "}\n" + Block("atr a " + TRIANGLE + "atr -0.5 " + TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 : 名前（12）がおかしい   next token=12",
                               "t.suf  7 : 名前（-0.5）がおかしい   next token=-0.5"}));
    ASSERT_EQ(Polygons().size(), 2U);
    EXPECT_EQ(AttributeOf(Polygons()[1]), "a");
    messages.clear();
    EXPECT_FALSE(ReadAttributes("atr 1 { }\natr b { colormap ( 001 ) }"));
    EXPECT_EQ(messages, (Lines{"t.suf  1 : 名前（1）がおかしい   next token=1",
                               "t.suf  2 : 名前（001）がおかしい   next token=001"}));
}

TEST_F(Faults, AMissingBraceFailsTheBlock) {
    EXPECT_FALSE(Read("obj suf o\n" + GOOD + "}\n" + Block(GOOD, "p")));
    EXPECT_EQ(messages, Lines{"t.suf  2 :  { がありません。   next token=atr"});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, WhatStandsBetweenBlocksIsSkippedToTheNextObject) {
    EXPECT_FALSE(Read(Block(GOOD) + "star 1 2\n" + Block(GOOD, "p")));
    EXPECT_EQ(messages, Lines{"t.suf  4 :  obj がありません。   next token=star"});
    EXPECT_EQ(Polygons().size(), 2U);
}

TEST_F(Faults, APolygonOfTwoVerticesIsDropped) {
    EXPECT_FALSE(Read(Block("atr a\nprim poly ( 0 0 0 1 0 0 )\nprim poly ( )\n" + TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  3 : 多角形の頂点が２つ以下しかありません。   next token=)",
                               "t.suf  4 : 多角形の頂点が２つ以下しかありません。   next token=)"}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, APolygonWithMoreVerticesThanTheModelAllowsIsDropped) {
    Model(1 << 20, 16, 16, 4);
    EXPECT_FALSE(Read(
        Block("atr a prim poly ( 0 0 0 1 0 0 1 1 0 0 1 0 )\nprim poly ( 0 0 0 1 0 0 1 1 0 0 1 0 5 5 5 )" +
              TRIANGLE)));
    EXPECT_EQ(messages, Lines{"t.suf  3 : 構造定義が複雑すぎます。   next token=)"});
    EXPECT_EQ(Polygons().size(), 2U);
}

TEST_F(Faults, ThousandsOfVerticesInOnePolygonAreDropped) {
    std::string text = "atr a prim poly (";
    for (int i = 0; i < 40000; ++i) {
        text += " 1 2 3";
    }
    EXPECT_FALSE(Read(Block(text + " )\n" + TRIANGLE)));
    EXPECT_EQ(messages, Lines{"t.suf  2 : 構造定義が複雑すぎます。   next token=1"});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AWordAmongCoordinatesNeedsANumberThere) {
    EXPECT_FALSE(Read(Block("atr a prim poly ( 0 0 0\n1 zwei 0 0 1 0 )\n" + TRIANGLE)));
    EXPECT_EQ(messages, Lines{"t.suf  3 : 数字が必要です。   next token=zwei"});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AnIncompleteVertexNeedsANumber) {
    EXPECT_FALSE(Read(Block("atr a prim poly ( 0 0 0 1 0 0 0 1 )\n" + TRIANGLE)));
    EXPECT_EQ(messages, Lines{"t.suf  2 : 数字が必要です。   next token=)"});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, APolygonWithoutItsEndDoesNotTakeTheNextOneWithIt) {
    EXPECT_FALSE(Read(Block("atr a prim poly ( 0 0 0 1 0 0 0 1 0\n" + TRIANGLE + TRIANGLE)));
    EXPECT_EQ(messages, Lines{"t.suf  3 : 数字が必要です。   next token=prim"});
    EXPECT_EQ(Polygons().size(), 2U);
}

TEST_F(Faults, UnknownAndUnsupportedPrimitivesAreDropped) {
    EXPECT_FALSE(Read(Block("atr a prim spot ( 1 2 3 )\nprim ball ( 1 )\nprim poly 1 2 3 )\n" + TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 :  spot はサポートしていません。   next token=spot",
                               "t.suf  3 :  poly がありません。   next token=ball",
                               "t.suf  4 :  ( がありません。   next token=1"}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, SceneWordsInAnObjectAreUnsupportedAndOtherWordsStray) {
    EXPECT_FALSE(Read(Block("light ( 1 2 3 )\nword\n" + GOOD)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 :  light はサポートしていません。   next token=light",
                               "t.suf  3 :  word が存在します。   next token=word"}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AFaultyConstructIsDroppedWithTheParenthesesInsideIt) {
    EXPECT_FALSE(
        Read(Block("light pal ( rgb ( 1 1 1 ) 4 2 -1 )\natr a prim poly ( 0 ( 1 2 ) 3 )\n"
                   "prim spot ( ( 1 ) ( 2 ) )\natr ( b )\n" +
                   TRIANGLE)));
    EXPECT_EQ(messages, (Lines{"t.suf  2 :  light はサポートしていません。   next token=light",
                               "t.suf  3 : 数字が必要です。   next token=(",
                               "t.suf  4 :  spot はサポートしていません。   next token=spot",
                               "t.suf  5 : 名前（(）がおかしい   next token=("}));
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, TheEndOfTheFileInsideABlockEndsTheReadAndKeepsWhatWasRead) {
    EXPECT_FALSE(Read("obj suf o {\n" + GOOD + TRIANGLE));
    EXPECT_FALSE(Read("obj suf o {\n" + GOOD + "prim poly ( 0 0"));
    EXPECT_EQ(messages, (Lines{"t.suf  4 : エンドオブファイルになりました   next token=",
                               "t.suf  3 : エンドオブファイルになりました   next token="}));
    EXPECT_EQ(Polygons().size(), 3U);
}

TEST_F(Faults, TheEndOfTheFileInsideAHeaderIsTheScanners) {
    EXPECT_FALSE(Read("obj suf o"));
    EXPECT_FALSE(Read("atr a"));
    EXPECT_EQ(messages, (Lines{"t.suf  1 : エンドオブファイルになりました。   next token=",
                               "t.suf  1 : エンドオブファイルになりました。   next token="}));
}

TEST_F(Faults, AnOpenCommentReachesToTheEndOfTheFile) {
    EXPECT_FALSE(Read("obj suf o {\n" + GOOD + "/* no end\n\n"));
    EXPECT_EQ(messages, Lines{"t.suf  5 : エンドオブファイルになりました   next token="});
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, AnObjectWithoutItsBraceEndsWhereTheNextBlockBegins) {
    EXPECT_FALSE(Read("obj suf o {\n" + GOOD + Block(GOOD, "p") + "obj suf q {\n" + GOOD +
                      "atr b { col ( 0.25 ) }\n"));
    EXPECT_EQ(messages, (Lines{"t.suf  3 :  } がありません。   next token=obj",
                               "t.suf  8 :  } がありません。   next token=atr"}));
    EXPECT_EQ(Polygons().size(), 3U);
    EXPECT_EQ(AttrTable[AttrFind("b")].col.red, 1024);
}

TEST_F(Faults, FilesThatCannotBeOpenedAreNamed) {
    std::filesystem::create_directory("folder.suf");
    mkfifo("pipe.suf", 0666);
    for (const char* name : {"none", "folder.suf", "pipe.suf", "no/such/folder.suf", "C:"}) {
        EXPECT_FALSE(ReadShapeFile(name, 1));
        EXPECT_FALSE(ReadAttributeFile(name, 1));
    }
    ASSERT_EQ(messages.size(), 10U);
    EXPECT_EQ(messages[0], "none.suf  1 : ファイル none.suf がオープンできません。   next token=");
}

TEST_F(Faults, TheEscapeKeyEndsTheRead) {
    ReaderSetCancelCheck([] { return true; });
    EXPECT_FALSE(Read(Block(GOOD)));
    EXPECT_EQ(messages, Lines{"t.suf  1 :  ESC キーが押されました。   next token=obj"});
    EXPECT_EQ(Polygons().size(), 0U);
}

TEST_F(Faults, TheEscapeKeyIsSeenInTheMiddleOfALongObject) {
    static int polls;
    polls = 0;
    ReaderSetCancelCheck([] { return ++polls > 2; });
    std::string text = "atr a ";
    for (int i = 0; i < 30000; ++i) {
        text += TRIANGLE;
    }
    Model(1 << 24);
    EXPECT_FALSE(Read(Block(text)));
    EXPECT_GT(Polygons().size(), 0U);
    EXPECT_LT(Polygons().size(), 30000U);
}

TEST_F(Faults, ADamagedFileShowsTwoHundredMessagesAndCountsTheRest) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "prim poly ( 1 )\n";
    }
    EXPECT_FALSE(Read(Block(text + GOOD)));
    ASSERT_EQ(messages.size(), 201U);
    EXPECT_EQ(messages[200], "ほかに 800 個のメッセージがあります。");
    EXPECT_EQ(Polygons().size(), 1U);
}

TEST_F(Faults, WhatEndsTheReadIsToldAfterAnyNumberOfMessages) {
    std::string text;
    for (int i = 0; i < 300; ++i) {
        text += "prim poly ( 1 )\n";
    }
    EXPECT_FALSE(Read("obj suf o {\n" + text));
    ASSERT_EQ(messages.size(), 202U);
    EXPECT_EQ(messages[200], "t.suf302 : エンドオブファイルになりました   next token=");
    EXPECT_EQ(messages[201], "ほかに 100 個のメッセージがあります。");
}

TEST_F(Faults, CodesWithoutAMessageSayWhichReaderGaveThem) {
    ReaderBegin();
    EXPECT_EQ(ObjectReport(99), 20);
    EXPECT_EQ(AttributeReport(99), 20);
    EXPECT_EQ(ScannerReport(99), 20);
    EXPECT_EQ(DesignReport(16), 20);
    EXPECT_EQ(messages, (Lines{"  1 : エラーコードの誤り。( objread )   next token=",
                               "  1 : エラーコードの誤り。( atrread )   next token=",
                               "  1 : エラーコードの誤り。( scanner )   next token=",
                               "  1 : エラーコードの誤り。( objread )   next token="}));
}

TEST_F(Faults, TheSecondKindOfModelShowsThePolygonMessageForItsOwn) {
    ReaderBegin();
    EXPECT_EQ(DesignReport(13), 10);
    EXPECT_EQ(DesignReport(11, "obj"), 10);
    EXPECT_EQ(DesignReport(21), 20);
    EXPECT_EQ(messages, (Lines{"  1 : 多角形の頂点が２つ以下しかありません。   next token=",
                               "  1 :  obj がありません。   next token=",
                               "  1 : エンドオブファイルになりました   next token="}));
}

TEST_F(Faults, ExhaustedMemoryHasItsMessage) {
    ReaderBegin();
    EXPECT_EQ(ScannerReport(SCANNER_MEMORY), SEVERITY_END);
    EXPECT_EQ(messages, Lines{"  1 : メモリが足りません。   next token="});
}

TEST_F(Faults, NumbersKeepTheirDecimalPointWhereACommaIsUsual) {
    const std::string old = std::setlocale(LC_ALL, nullptr);
    ::setenv("LOCPATH", QUELMARK_LOCALES, 1);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr) << "no locale in " << QUELMARK_LOCALES;
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_TRUE(Read("atr a { col ( 0.5 ) }" + Block("atr a prim poly ( 1.9 0 0 0 2.5 0 0 0 3.5 )")));
    std::setlocale(LC_ALL, old.c_str());
    EXPECT_EQ(AttrTable[0].col.red, 2048);
    EXPECT_EQ(Polygons()[0]->vertex[2].z, 3);
}

TEST_F(Faults, EveryTruncationOfAFileEndsWithAMessageOrAWholeModel) {
    const std::string text =
        Utf8ToCp932(
            "atr 壁 { col ( rgb ( 1 0.5 0 ) )\n spc ( 1 hsv ( 1 1 1 ) 0 ) colormap ( a.bmp ) "
            "mapsize ( 0 0 1 1 ) }\nobj suf 家 {\natr 壁\nprim shade ( 1 2 3 0 0 256\n4 5 6 0 0 "
            "256 7 8 0 0 0 256 )\nparts none mov ( 1 2 3 ) rotx ( 90 ) /* c */\n}\n")
            .value();
    for (std::size_t size = 0; size < text.size(); ++size) {
        messages.clear();
        Put("t.suf", text.substr(0, size));
        const bool good = ReadShapeFile("t.suf", 1);
        EXPECT_TRUE(good || !messages.empty()) << size;
        messages.clear();
        ReadAttributeFile("t.suf", 1);
    }
}

TEST_F(Faults, ALineOfMegabytesIsNoTrouble) {
    EXPECT_FALSE(Read("obj suf " + std::string(5'000'000, 'x')));
    EXPECT_FALSE(Read(std::string(5'000'000, '{')));
    EXPECT_FALSE(Read("obj suf o {" + std::string(5'000'000, '(')));
    EXPECT_FALSE(Read("obj suf o { atr a prim poly ( " + std::string(5'000'000, '9')));
    EXPECT_LT(messages.size(), 10U);
}

// What a line of 100 MB holds is read whole, or the reason why not is told.
TEST_F(Faults, ALineOfAHundredMegabytesIsReadOrRefused) {
    constexpr std::size_t BYTES = 100'000'000;
    Model(300 << 20);
    const std::string triangle = "prim poly ( -32767 0 0 0 32767 0 1000 0 -1000 ) ";
    const auto polygons = BYTES / triangle.size();
    {
        std::ofstream file("t.suf", std::ios::binary);
        file << "obj suf o { atr a ";
        for (std::size_t i = 0; i < polygons; ++i) {
            file << triangle;
        }
        file << "}";
    }
    EXPECT_TRUE(ReadShapeFile("t.suf", 1));
    EXPECT_EQ(messages, Lines{});
    EXPECT_EQ(SelectCount, static_cast<std::int32_t>(polygons));

    std::filesystem::resize_file("t.suf",
                                 std::filesystem::file_size("t.suf") - 10);  // inside the last polygon
    Model(300 << 20);
    EXPECT_FALSE(ReadShapeFile("t.suf", 1));
    EXPECT_EQ(messages, Lines{"t.suf  1 : エンドオブファイルになりました   next token="});
    EXPECT_EQ(SelectCount, static_cast<std::int32_t>(polygons) - 1);

    messages.clear();
    Put("t.suf", std::string(BYTES, 'x'));
    EXPECT_FALSE(ReadShapeFile("t.suf", 1));
    EXPECT_EQ(messages,
              Lines{"t.suf  1 : 形状ファイルではありません。   next token=" + std::string(127, 'x')});
}

TEST_F(Faults, NulBytesAreBlanks) {
    Put("t.suf", std::string("obj\0suf o { atr a prim poly ( 0 0 0\0 1 0 0 0 1 0 \0) }\0", 55));
    EXPECT_TRUE(ReadShapeFile("t.suf", 1));
    EXPECT_EQ(Polygons().size(), 1U);
}

}  // namespace
}  // namespace quelmark::test
