#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/TABLE.h"
#include "reader/objread.h"
#include "reader/scanner.h"
#include "script_fixture.h"
#include "text/path.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

class Reader : public ScriptTest {
  protected:
    fs::path folder;
    void SetUp() override {
        ScriptTest::SetUp();
        char name[] = "/tmp/quelmark_reader_XXXXXX";
        folder = mkdtemp(name);
        InterpreterInit(sizes);
        MatrixLibraryRegister();
        PolygonRegister();
        ModelInit(1 << 20, 8, 8, 300);
        ReaderInit((folder / "").string());
    }
    void TearDown() override {
        ModelExit();
        fs::remove_all(folder);
        ScriptTest::TearDown();
    }
    std::string File(const std::string& name, const std::string& text) {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << Utf8ToCp932(text).value_or(text);
        return (folder / name).string();
    }
    // Reads a file of this text; its warnings without the folder.
    std::string Read(const std::string& text, bool* good = nullptr) {
        warnings.clear();
        const bool result = ReadShapeFile(File("t.suf", text), 1);
        if (good != nullptr) {
            *good = result;
        }
        std::string said = warnings;
        for (std::size_t at = 0; (at = said.find(folder.string() + "/")) != std::string::npos;) {
            said.erase(at, folder.string().size() + 1);
        }
        return said;
    }
    static std::int32_t Polygons() { return TablePolygons(&PolygonRecord::obj, nullptr); }
    static constexpr const char* TRI = "prim poly ( 0 0 0 10 0 0 0 10 0 )\n";
};

TEST_F(Reader, WhatTheWriterWritesIsRead) {
    bool good = false;
    EXPECT_EQ(
        Read("atr akai {\n\tcol ( rgb ( 1.00 0.00 0.50 ) )\n\ttra ( 0.25 )\n\tamb ( 0.50 )\n\tdif ( 0.50 )\n"
             "\tspc ( 0.50 0.25 2.00 )\n\tref ( 0.10 )\n\tcolormap ( wood.tga )\n\tmapsize ( 320 200   "
             "0.5000 -1 )\n}\n"
             "obj suf hako {\natr akai\nprim\tuvshade\t(\t1\t2\t3\t0\t0\t256\t7\t8\n\t\t "
             "\t4\t5\t6\t0\t0\t256\t0\t0\n"
             "\t\t \t-7\t8\t9\t0\t0\t256\t1\t1 )\n\n}\n",
             &good),
        "");
    EXPECT_TRUE(good);
    const AttributeRecord& a = AttrTable[0];
    EXPECT_STREQ(a.name, "akai");
    EXPECT_EQ(a.col.red, 4096);
    EXPECT_EQ(a.col.blue, 2048);
    EXPECT_EQ(a.code, 2);
    EXPECT_EQ(a.tra.red, 1024);
    EXPECT_EQ(a.spc.red, 2048);
    EXPECT_EQ(a.size.red, 1024);
    EXPECT_EQ(a.spcextra, 8192);
    EXPECT_STREQ(a.mapfile, "wood.tga");
    EXPECT_EQ(a.map, 1);
    EXPECT_EQ(a.mapsize[1][0], 32768);
    EXPECT_EQ(a.mapsize[1][1], -65536);
    const PolygonRecord* p = PolygonTop();
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->type, POLY_UVSHADE);
    EXPECT_EQ(p->vers, 3);
    EXPECT_EQ(p->vertex[2].x, -7);
    EXPECT_EQ(p->vertex[0].nz, 256);
    EXPECT_EQ(p->vertex[0].v, 8);
    EXPECT_EQ(p->select, 1);
}
TEST_F(Reader, AnotherKindOfFileIsRefused) {
    bool good = true;
    EXPECT_EQ(Read("hello world", &good), "t.suf  1 : 形状ファイルではありません。   next token=hello\n");
    EXPECT_FALSE(good);
}
TEST_F(Reader, PrivateIsSkippedWithAWarning) {
    bool good = false;
    EXPECT_EQ(Read("obj private suf a {\natr x\n" + std::string(TRI) + "}", &good),
              "t.suf  1 : 警告：private 処理はサポートしていません。   next token=private\n");
    EXPECT_TRUE(good);
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, AHeaderWithoutSufIsNoSurfaceModel) {
    EXPECT_EQ(Read("obj mod a {\n}"), "t.suf  1 : サーフィスモデルではありません。   next token=mod\n");
}
TEST_F(Reader, AMissingBraceIsNamed) {
    EXPECT_EQ(Read("obj suf a prim"), "t.suf  1 :  { がありません。   next token=prim\n");
}
TEST_F(Reader, ABlockThatIsNoObjectIsSkippedToTheNext) {
    EXPECT_EQ(
        Read("obj suf a {\natr x\n" + std::string(TRI) + "}\nfoo bar\nobj suf b {\natr x\n" + TRI + "}"),
        "t.suf  5 :  obj がありません。   next token=foo\n");
    EXPECT_EQ(Polygons(), 2);
}
TEST_F(Reader, ANameOf32BytesIsRefusedAndQuoted) {
    const std::string name(32, 'n');
    EXPECT_EQ(Read("obj suf " + name + " {\n}"),
              "t.suf  1 : 名前（" + name + "）が長すぎます。（３１文字まで)   next token=" + name + "\n");
    EXPECT_EQ(Read("obj suf " + std::string(31, 'n') + " {\n}"), "");
}
TEST_F(Reader, AnyWordMayBeANameAndPunctuationIsNone) {
    EXPECT_EQ(Read("obj suf red {\n}"), "");
    EXPECT_EQ(Read("obj suf ( {\n}"), "t.suf  1 : 名前（(）がおかしい   next token=(\n");
}
TEST_F(Reader, TwoVerticesAreTooFewAndThePolygonIsDropped) {
    EXPECT_EQ(Read("obj suf a {\natr x\nprim poly ( 0 0 0 1 1 1 )\n" + std::string(TRI) + "}"),
              "t.suf  3 : 多角形の頂点が２つ以下しかありません。   next token=)\n");
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, AWordAmongTheNumbersIsReportedWithItsLine) {
    EXPECT_EQ(Read("obj suf a {\natr x\nprim poly ( 0 0 0\n1 q 1 )\n" + std::string(TRI) + "}"),
              "t.suf  4 : 数字が必要です。   next token=q\n");
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, AnUnknownPolygonTypeIsNotSupported) {
    EXPECT_EQ(Read("obj suf a {\natr x\nprim star ( 0 0 0 )\n}"),
              "t.suf  3 :  star はサポートしていません。   next token=star\n");
}
TEST_F(Reader, APolygonBeforeAnyAttributeUsesNo) {
    EXPECT_EQ(Read("obj suf a {\n" + std::string(TRI) + TRI + "}"),
              "t.suf  2 : atr no があります。   next token=)\n");
    EXPECT_STREQ(AttrTable[0].name, "no");
}
TEST_F(Reader, TheEndInsideABlockIsReportedAndWhatWasReadStays) {
    EXPECT_EQ(Read("obj suf a {\natr x\n" + std::string(TRI)),
              "t.suf  4 : エンドオブファイルになりました   next token=\n");
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, CoordinatesOutsideTheRangeAreClampedWithOneWarning) {
    EXPECT_EQ(Read("obj suf a {\natr x\nprim poly ( 99999 0 0 -99999 1.9 0 0 -1.9 40000 )\nprim poly ( 40000 "
                   "0 0 1 0 0 0 1 0 )\n}"),
              "t.suf  3 : 警告：座標が範囲を越えたので制限しました。   next token=)\n");
    const PolygonRecord* p = PolygonTop();
    EXPECT_EQ(p->vertex[0].x, 32767);
    EXPECT_EQ(p->vertex[1].x, -32767);
    EXPECT_EQ(p->vertex[1].y, 1);
    EXPECT_EQ(p->vertex[2].y, -1);
}
TEST_F(Reader, TooManyVerticesAreTooComplex) {
    std::string numbers;
    for (int i = 0; i < 301; ++i) {
        numbers += "1 2 3\n";
    }
    EXPECT_NE(Read("obj suf a {\natr x\nprim poly ( " + numbers + ")\n" + TRI + "}")
                  .find("構造定義が複雑すぎます。"),
              std::string::npos);
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, CommentsAreBlanks) {
    EXPECT_EQ(Read("/* a\n} */ obj suf a { atr x /* b */ " + std::string(TRI) + "}"), "");
}
TEST_F(Reader, AttributeFaults) {
    EXPECT_EQ(Read("atr x { bumpmap ( a ) }"),
              "t.suf  1 : bumpmap 処理はサポートしていません。   next token=bumpmap\n");
    EXPECT_EQ(Read("atr x { mapsize ( 1 2 3 ) }"),
              "t.suf  1 : マッピングデータがおかしい。   next token=)\n");
    EXPECT_EQ(Read("atr x { col ( foo ) }"), "t.suf  1 : 色情報がおかしい。   next token=foo\n");
    EXPECT_EQ(Read("atr x { light }"), "t.suf  1 :  light はサポートしていません。   next token=light\n");
    EXPECT_EQ(Read("atr x col"), "t.suf  1 :  { がありません。   next token=col\n");
    EXPECT_EQ(Read("atr x { col ( 1"), "t.suf  1 : エンドオブファイルになりました   next token=\n");
    EXPECT_EQ(Read("atr x { q }"), "t.suf  1 :  q が存在します。   next token=q\n");
}
TEST_F(Reader, HsvColours) {
    Read("atr x { col ( hsv ( 120 1 1 ) ) }");
    EXPECT_EQ(AttrTable[0].col.green, 4096);
    EXPECT_EQ(AttrTable[0].col.red, 0);
}
TEST_F(Reader, AMissingFileCannotBeOpened) {
    warnings.clear();
    EXPECT_FALSE(ReadShapeFile("/no/such", 1));
    EXPECT_EQ(warnings, "/no/such.suf  1 : ファイル /no/such.suf がオープンできません。   next token=\n");
    EXPECT_FALSE(ReadShapeFile("/tmp/.", 1));
}
TEST_F(Reader, AnAttributeFileMustBeginWithABlock) {
    EXPECT_FALSE(ReadAttributeFile(File("a.suf", "foo"), 1));
    EXPECT_NE(warnings.find("アトリビュートファイルではありません。"), std::string::npos);
}
TEST_F(Reader, AttributeFilesMergeByNameInModeOne) {
    EXPECT_TRUE(ReadAttributeFile(File("a.suf", "atr x { col ( 0.5 ) }\nobj suf o { }\natr y { }"), 1));
    EXPECT_TRUE(ReadAttributeFile(File("b.suf", "atr x { col ( 0.25 ) }"), 1));
    EXPECT_EQ(AttrLast, 1);
    EXPECT_EQ(AttrTable[0].col.red, 1024);
    EXPECT_TRUE(ReadAttributeFile(File("b.suf", "atr x { col ( 0.25 ) }"), 0));
    EXPECT_EQ(AttrLast, 2);
}
TEST_F(Reader, APartIsFoundInItsTwoLetterFolderAndMoved) {
    File("parts/ab/abcd.suf", "obj suf p {\natr x\nprim poly ( 0 0 0 10 0 0 0 10 0 )\n}");
    EXPECT_EQ(Read("obj suf a {\nparts abcd mov ( 100 0 0 ) rotz ( 90 )\n}"), "");
    ASSERT_EQ(Polygons(), 1);
    EXPECT_EQ(PolygonTop()->vertex[1].x, 0);
    EXPECT_EQ(PolygonTop()->vertex[1].y, 110);
}
TEST_F(Reader, APartDirectlyUnderPartsIsNotFound) {
    File("parts/abcd.suf", "obj suf p { }");
    EXPECT_NE(Read("obj suf a {\nparts abcd\n}").find("ファイル abcd がオープンできません。"),
              std::string::npos);
}
TEST_F(Reader, TenLevelsOfPartsAreReadAndTheEleventhIsTooComplex) {
    for (int i = 1; i <= 11; ++i) {
        File("p" + std::to_string(i) + "x.suf",
             "obj suf p {\natr x\n" + std::string(TRI) +
                 (i < 11 ? "parts p" + std::to_string(i + 1) + "x\n" : "") + "}");
    }
    EXPECT_NE(Read("obj suf a {\nparts p1x\n}").find("構造定義が複雑すぎます。"), std::string::npos);
    EXPECT_EQ(Polygons(), 10);
}
TEST_F(Reader, APartThatRefersToItselfEnds) {
    Read("obj suf a {\natr x\n" + std::string(TRI) + "parts t\nparts t\n}");
    EXPECT_GE(Polygons(), 11);
}
TEST_F(Reader, AFullBufferSaysSoOnceAndKeepsWhatWasRead) {
    ModelExit();
    ModelInit(200, 8, 8, 300);
    bool good = true;
    const std::string said = Read("obj suf a {\natr x\n" + std::string(TRI) + TRI + TRI + TRI + "}", &good);
    EXPECT_EQ(said, "データバッファがオーバフローしました(BufferAppend)\n");
    EXPECT_FALSE(good);
    EXPECT_EQ(Polygons(), 2);
}
TEST_F(Reader, EscapeStopsTheRead) {
    ReaderSetCancelCheck([] { return true; });
    std::string text = "obj suf a {\natr x\n";
    for (int i = 0; i < 9000; ++i) {
        text += TRI;
    }
    EXPECT_NE(Read(text + "}").find(" ESC キーが押されました。"), std::string::npos);
    ReaderSetCancelCheck(nullptr);
}
TEST_F(Reader, TruncatedFilesNeverCrash) {
    const std::string text =
        "atr x { col ( rgb ( 1 0 0 ) ) spc ( 1 1 1 ) mapsize ( 1 2 3 4 ) }\nobj private suf a {\natr x\n"
        "prim shade ( 0 0 0 0 0 256 1 0 0 0 0 256 0 1 0 0 0 256 )\nparts q mov ( 1 2 3 ) mat ( 1 ) /* c "
        "*/\n}";
    for (std::size_t length = 0; length < text.size(); ++length) {
        Read(text.substr(0, length));
    }
    SUCCEED();
}
TEST_F(Reader, MutatedFilesNeverCrash) {
    const std::string text =
        "atr x { col ( rgb ( 1 0 0 ) ) spc ( 1 1 1 ) }\nobj suf a {\natr x\nprim poly ( 0 0 0 1 0 0 0 1 0 "
        ")\n}";
    std::uint32_t random = 12345;
    const auto next = [&random] { return (random = random * 1664525U + 1013904223U) >> 8; };
    for (int round = 0; round < 3000; ++round) {
        std::string changed = text;
        for (int i = 0; i < 4; ++i) {
            changed[next() % changed.size()] = static_cast<char>(next());
        }
        std::ofstream(folder / "m.suf", std::ios::binary) << changed;
        ReadShapeFile((folder / "m.suf").string(), static_cast<std::int32_t>(round & 1));
        if (round % 100 == 0) {
            ModelExit();
            ModelInit(1 << 16, 8, 8, 300);
        }
    }
    SUCCEED();
}
TEST_F(Reader, OneLongLineIsRead) {
    std::string text = "obj suf a { atr x ";
    text.reserve(4 << 20);
    while (text.size() < (3U << 20)) {
        text += "/*          */ ";
    }
    EXPECT_EQ(Read(text + TRI + "}"), "");
    EXPECT_EQ(Polygons(), 1);
}
TEST_F(Reader, DoubleByteNamesAreKept) {
    EXPECT_EQ(Read("obj suf 表示箱 {\natr 赤能\n" + std::string(TRI) + "}"), "");
    EXPECT_EQ(Cp932ToUtf8(ObjTable[0].name), "表示箱");
    EXPECT_EQ(Cp932ToUtf8(AttrTable[0].name), "赤能");
}

}  // namespace
}  // namespace quelmark::test
