// The writers of shape and frame files: their text byte for byte, what a failure leaves of the old file, and
// that the reader gets back what was written.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "MODEL/ATR.h"
#include "MODEL/MDLINIT.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/SUFTEXT.h"
#include "MODEL/TABLE.h"
#include "reader/objread.h"
#include "script_fixture.h"
#include "text/savefile.h"
#include "view/VIEW.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

class Writer : public ScriptTest {
  protected:
    fs::path folder;
    fs::path before;

    void SetUp() override {
        ScriptTest::SetUp();
        char name[] = "/tmp/quelmark-writer-XXXXXX";
        before = fs::current_path();
        folder = mkdtemp(name);
        fs::current_path(folder);
        registerMore = ModelLibrariesRegister;
        ReaderInit("");
        ModelInit(1 << 22, 16, 64, 1023);
        ViewInit();
    }
    void TearDown() override {
        ViewExit();
        ModelExit();
        fs::current_path(before);
        fs::remove_all(folder);
        ScriptTest::TearDown();
    }
    static std::string Get(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void Put(const fs::path& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    std::size_t FilesHere() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
    static void Append(std::uint16_t type, std::int16_t attribute,
                       std::initializer_list<VertexRecord> vertices, bool select = true) {
        CurrentPolygon->type = type;
        CurrentPolygon->attr = attribute;
        CurrentPolygon->obj = 0;
        CurrentPolygon->vers = static_cast<std::int16_t>(vertices.size());
        std::copy(vertices.begin(), vertices.end(), CurrentPolygon->vertex);
        PolygonAppend(select ? 1 : 0);
    }
};

TEST_F(Writer, AnObjectIsWrittenByteForByte) {
    AttrAlloc("red");
    AttrAlloc("blue");
    Append(POLY_SIMPLE, 0,
           {{1, 2, 3, 9, 9, 9, 9, 9}, {-4, 5, 6, 0, 0, 0, 0, 0}, {7, 8, -32767, 0, 0, 0, 0, 0}});
    Append(POLY_SHADE, 0,
           {{1, 2, 3, 0, 0, 256, 0, 0}, {4, 5, 6, 0, 256, 0, 0, 0}, {7, 8, 9, -256, 0, 0, 0, 0}});
    Append(POLY_UV, 1, {{1, 2, 3, 0, 0, 0, 10, 20}, {4, 5, 6, 0, 0, 0, 30, 40}, {7, 8, 9, 0, 0, 0, 50, 60}});
    Append(POLY_UVSHADE, 1, {{1, 2, 3, 4, 5, 6, 7, 8}, {1, 2, 3, 4, 5, 6, 7, 8}, {9, 2, 3, 4, 5, 6, 7, 8}});
    Append(POLY_SIMPLE, 0, {{1, 1, 1, 0, 0, 0, 0, 0}}, false);
    EXPECT_EQ(
        ObjectText("box"),
        "obj suf box {\natr red\nprim\tpoly\t(\t1\t2\t3\n\t\t \t-4\t5\t6\n\t\t \t7\t8\t-32767 )\n\n"
        "prim\tshade\t(\t1\t2\t3\t0\t0\t256\n\t\t \t4\t5\t6\t0\t256\t0\n\t\t \t7\t8\t9\t-256\t0\t0 )\n\n"
        "atr blue\nprim\tuvpoly\t(\t1\t2\t3\t10\t20\n\t\t \t4\t5\t6\t30\t40\n\t\t "
        "\t7\t8\t9\t50\t60 )\n\n"
        "prim\tuvshade\t(\t1\t2\t3\t4\t5\t6\t7\t8\n\t\t \t1\t2\t3\t4\t5\t6\t7\t8\n\t\t "
        "\t9\t2\t3\t4\t5\t6\t7\t8 )\n\n}\n");
}

TEST_F(Writer, WithNothingSelectedAnObjectIsItsHeaderAndItsBrace) {
    Append(POLY_SIMPLE, 0, {{1, 1, 1, 0, 0, 0, 0, 0}}, false);
    EXPECT_EQ(ObjectText("o"), "obj suf o {\n}\n");
}

TEST_F(Writer, AnAttributeNumberThatNamesNoneIsWrittenAsNo) {
    Append(POLY_SIMPLE, 999, {{0, 0, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0, 0, 0}, {0, 1, 0, 0, 0, 0, 0, 0}});
    EXPECT_NE(ObjectText("o")->find("atr no\n"), std::string::npos);
}

TEST_F(Writer, ANewAttributeHasItsFiveLines) {
    AttrAlloc("a");
    EXPECT_EQ(AttributeText(AttrTable[0]),
              "atr a {\n\tcol ( 1.00 )\n\ttra ( 0.00 )\n\tamb ( 0.50 )\n\tdif ( 0.50 )\n"
              "\tspc ( 0.00 0.00 0.00 )\n}\n");
}

TEST_F(Writer, AnAttributeIsWrittenByteForByte) {
    AttrAlloc("all");
    AttributeRecord& a = AttrTable[0];
    a.col = {4096, 0, 2048, 0};
    a.spc = {2048, 2048, 2048, 0};
    a.size = {1024, 2048, 3072, 0};
    a.spcextra = 12288;
    a.ref = {2048, 2048, 2048, 0};
    a.rfr = {0, 0, 4096, 0};
    a.att = {-4096, -4096, -4096, 0};
    a.map = 1;
    a.mapsize[1][0] = 320 * 65536;
    a.mapsize[1][1] = 2 * 65536;
    a.mapview[0][0] = 32768;
    a.mapview[0][1] = -163840;
    a.mapwind[0][0] = -65536;
    const std::string head =
        "atr all {\n\tcol ( rgb ( 1.00 0.00 0.50 ) )\n\ttra ( 0.00 )\n\tamb ( 0.50 )\n\tdif ( 0.50 )\n"
        "\tspc ( 0.50 rgb ( 0.25 0.50 0.75 ) 3.00 )\n\tref ( 0.50 )\n\trfr ( rgb ( 0.00 0.00 1.00 ) )\n"
        "\tatt ( -1.00 )\n";
    EXPECT_EQ(AttributeText(a), head + "}\n") << "a map without a file";
    std::strcpy(a.mapfile, "a.bmp");
    EXPECT_EQ(AttributeText(a),
              head +
                  "\tcolormap ( a.bmp )\n\tmapsize ( 0 0 320 2 )\n\tmapview (   0.5000  -2.5000 0 0 )\n"
                  "\tmapwind ( -1 0 0 0 )\n}\n");
    a.map = 0;
    EXPECT_EQ(AttributeText(a), head + "}\n") << "a file without the map";
}

TEST_F(Writer, AFrameIsWrittenByteForByte) {
    const Matrix matrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, -1.5F}, {100, -20.25F, 12345}}};
    const std::string frame =
        "fram {\n\tlight pal ( rgb ( 1 1 1 ) 4 2 -1 )\n\teye deg ( 60 )\n\tmat(\n"
        "\t\t1.000000 0.000000 0.000000 0.0\n\t\t0.000000 1.000000 0.000000 0.0\n"
        "\t\t0.000000 0.000000 -1.500000 0.0\n\t\t100.000000 -20.250000 12345.000000 1.0\n\t)\n\tobj "
        "box\n}\n";
    EXPECT_EQ(FrameText(matrix, "box", {0, 0, 0}, 60), frame);
    EXPECT_EQ(FrameText(matrix, "box", {0, 0, 0.5F}, 60),
              "env { back ( rgb ( 0.000000 0.000000 0.500000 ) ) }" + frame);
}

TEST_F(Writer, ScriptsWriteObjectsAttributesAndFramesAndReadThemBack) {
    EXPECT_EQ(
        Run("AttrAppend(\"red\", 2); ObjAppend(\"box\", \"b.suf\");\n"
            "var i; PolyVertexs(3); for (i = 0; i < 3; i++) PolySetVertex(Vertex(i * i, i * 10, 7), i);\n"
            "PolyAppend(1);\n"
            "print(AttrWriteFile(\"b.suf\", 0), WriteFile(0, FILE_APPEND), ReadFile(\"b.suf\", 0));\n"
            "print(\" \", Objects(), ObjPolygons(1), AttrPolygons(0));\n"),
        "1 1 1  2 1 2");
    EXPECT_TRUE(Get("b.suf").starts_with("atr red {\n"));
    EXPECT_EQ(RunMore("print(AttrReadFile(\"b.suf\"), ObjWriteFile(1));"), "1 1");
    EXPECT_TRUE(Get("b.suf").starts_with("obj suf box {\natr red\nprim\tpoly\t(\t0\t0\t7\n"));
    EXPECT_EQ(RunMore("WriteFrame(UNIT_MATRIX, \"f.frm\", \"b\", vector(0, 0, 1));\n"
                      "print(FrmReadFile(\"f.frm\", 0), Objects());"),
              "1 3");
    EXPECT_TRUE(Get("f.frm").starts_with("env { back ( rgb ( 0.000000 0.000000 1.000000 ) ) }fram {\n"));
    EXPECT_EQ(warnings, "");
}

TEST_F(Writer, FrmReadFileTakesAModeAndAnAttributeFileInAnyOrder) {
    Put("a.suf", "atr x { col ( 0.25 ) }");
    Put("b.suf", "obj suf o { atr x prim poly ( 0 0 0 1 0 0 0 1 0 ) }");
    EXPECT_EQ(Run("print(FrmReadFile(\"b\", 1.5, \"a\"), FrmReadFile(\"b\", \"a\", 0), Objects(), "
                  "AttrPolygons(0));"),
              "1 1 2 2");
    EXPECT_EQ(AttrTable[0].col.red, 1024);
    RunMore("FrmReadFile(\"b\", UNIT_MATRIX);");
    EXPECT_NE(message.find("引数の型が不正です。（FrmReadFile）"), std::string::npos);
}

TEST_F(Writer, WriteFrameChecksItsFourthArgumentBeforeTheOthers) {
    const std::string call = "WriteFrame(UNIT_MATRIX, ";
    EXPECT_NE(Fail(call + "UNIT_MATRIX, UNIT_MATRIX, \"x\");").find("4番目の引数の型不正です(WriteFrame)"),
              std::string::npos);
    EXPECT_NE(RunMore(call + "UNIT_MATRIX, UNIT_MATRIX);").find("2番目の引数の型不正です(WriteFrame)"),
              std::string::npos);
    EXPECT_NE(RunMore(call + "\"f\", UNIT_MATRIX);").find("3番目の引数の型不正です(WriteFrame)"),
              std::string::npos);
    EXPECT_EQ(FilesHere(), 0U);
}

TEST_F(Writer, NumbersOutOfRangeFailTheirChecksAndUnusedSlotsWriteNothing) {
    EXPECT_EQ(Run("print(WriteFile(0), AttrWriteFile(\"x.suf\", 0));"), "0 0");
    RunMore("WriteFile(-1);");
    EXPECT_NE(message.find("0 <= objno && objno <= ObjLast"), std::string::npos);
    EXPECT_NE(message.find("MODEL\\FILE"), std::string::npos) << message;
    RunMore("AttrWriteFile(\"x\", 1);");
    EXPECT_NE(message.find("0 <= atrno && atrno <= AttrLast"), std::string::npos);
    EXPECT_NE(message.find("MODEL\\ATR"), std::string::npos) << message;
    EXPECT_EQ(FilesHere(), 0U);
}

TEST_F(Writer, FilesThatCannotBeOpenedGiveTheirMessages) {
    EXPECT_EQ(Run("AttrAppend(\"a\", 7); ObjAppend(\"o\", \"no/such/folder\");\n"
                  "print(WriteFile(0), WriteFile(0, 1), AttrWriteFile(\"\", 0), AttrWriteFile(\"/tmp\", 0, "
                  "1));"),
              "0 0 0 0");
    EXPECT_EQ(warnings,
              "ファイルがオープンできません\nファイルがオープンできません\nファイルがオープンできません\n"
              "ファイルがオープンできません\n");
    warnings.clear();
    RunMore("WriteFrame(UNIT_MATRIX, \"no/such/f\", \"b\");");
    EXPECT_EQ(warnings, "フレームファイルが出力できません\n");
}

TEST_F(Writer, ANameThatCannotBeReadBackIsRefusedAndNothingIsWritten) {
    Put("o.suf", "old");
    const auto refused = [&](const std::string& statements) {
        warnings.clear();
        ModelExit();
        ModelInit(1 << 20, 16, 64, 1023);
        const std::string printed =
            Run("PolyVertexs(3); PolyAppend(1); AttrAppend(\"a\", 7); ObjAppend(\"o\", \"o.suf\"); " +
                statements);
        EXPECT_EQ(Get("o.suf"), "old");
        return printed + "|" + warnings;
    };
    EXPECT_EQ(refused("ObjName(0, \"my box\"); print(WriteFile(0), WriteFile(0, FILE_APPEND));"),
              "0 0|名前（my box）がおかしい\n名前（my box）がおかしい\n");
    EXPECT_EQ(refused("AttrName(0, \"a(1)\"); print(WriteFile(0), AttrWriteFile(\"o.suf\", 0));"),
              "0 0|名前（a(1)）がおかしい\n名前（a(1)）がおかしい\n");
    EXPECT_EQ(refused("AttrName(0, \"a/*b\"); print(WriteModel(\"o.suf\"), WriteModel(\"o.suf\", TRUE));"),
              "FALSE FALSE|名前（a/*b）がおかしい\n名前（a/*b）がおかしい\n");
    EXPECT_EQ(
        refused(
            "ObjName(ObjAppend(\"}\", \"\"), \"\"); ObjAppend(\"}\", \"\"); print(WriteModel(\"o.suf\"));"),
        "FALSE|名前（}）がおかしい\n");
    EXPECT_EQ(refused("ObjName(0, \"12\"); print(WriteFile(0));"), "0|名前（12）がおかしい\n");
    EXPECT_EQ(refused("AttrName(0, \"\"); print(AttrWriteFile(\"o.suf\", 0));"), "0|名前（）がおかしい\n");
    EXPECT_EQ(refused("AttrMap(0, 1); AttrMapFile(0, \"my map.bmp\"); print(AttrWriteFile(\"o.suf\", 0));"),
              "0|名前（my map.bmp）がおかしい\n");
    EXPECT_EQ(refused("AttrMap(0, 1); AttrMapFile(0, \"C:\\\\textures\\\\wood\\\\planks00001.bmp\");\n"
                      "print(AttrWriteFile(\"o.suf\", 0));"),
              "0|名前（C:\\textures\\wood\\planks00001.bmp）が長すぎます。（３１文字まで)\n");
    EXPECT_EQ(refused("WriteFrame(UNIT_MATRIX, \"o.suf\", \"a b\");"), "|名前（a b）がおかしい\n");
    EXPECT_EQ(FilesHere(), 1U);
}

TEST_F(Writer, NamesThatLookLikeWordsOfTheFormatAreReadBack) {
    EXPECT_EQ(
        Run("var i, names = {\"red\", \"obj\", \"12x\", \"-.\", \"private\", \"suf\", \"a*/b\", \"マ\"};\n"
            "PolyVertexs(3);\n"
            "for (i = 0; i < 8; i++) {\n"
            "    PolyAttr(AttrAppend(names[i], i % 8)); PolyObj(ObjAppend(names[i], \"n.suf\")); "
            "PolyAppend(1);\n"
            "}\n"
            "print(WriteModel(\"n.suf\"));\n"
            "SelectAll(1, SELECT_UPDATE); PolyDelete();\n"
            "for (i = 7; i >= 0; i--) { ObjDelete(i); AttrDelete(i); }\n"
            "print(Objects(), Attrs(), ReadFile(\"n.suf\"), Objects(), Attrs());\n"
            "for (i = 0; i < 8; i++) print(ObjName(i) == names[i], AttrName(i) == names[i], "
            "AttrPolygons(i));\n"),
        "TRUE0 0 1 8 8TRUE TRUE 1TRUE TRUE 1TRUE TRUE 1TRUE TRUE 1TRUE TRUE 1TRUE TRUE 1TRUE TRUE 1TRUE TRUE "
        "1");
    EXPECT_EQ(warnings, "");
}

TEST_F(Writer, APositionThatWrappedIsWrittenAsTheNearestOneOfTheFormat) {
    AttrAlloc("a");
    Append(POLY_UVSHADE, 0,
           {{-32768, -32768, -32768, -32768, 0, 0, -32768, 0},
            {1, 0, 0, 0, 0, 0, 0, 0},
            {0, 1, 0, 0, 0, 0, 0, 0}});
    EXPECT_TRUE(ObjectText("o")->starts_with(
        "obj suf o {\natr a\nprim\tuvshade\t(\t-32767\t-32767\t-32767\t-32768\t0\t0\t-32768\t0\n"));
}

TEST_F(Writer, WhatIsAppendedToAUtf8FileIsUtf8) {
    Put("u.suf",
        "\xEF\xBB\xBF"
        "atr 赤 { }\n");
    EXPECT_EQ(Run("AttrAppend(\"表\", 2); print(AttrWriteFile(\"u.suf\", 0, FILE_APPEND));\n"
                  "print(AttrReadFile(\"u.suf\"), AttrSearch(\"表\"), AttrName(1), Attrs());"),
              "11 0 赤 2");
    EXPECT_NE(Get("u.suf").find("atr 表 {"), std::string::npos);
}

// ---- what becomes of the old file ----

TEST_F(Writer, ReplacingKeepsTheModeOfTheFileAndWhatALinkMeans) {
    Put("real.suf", "old");
    fs::permissions("real.suf", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.suf", "link.suf");
    EXPECT_EQ(SaveReplacing("link.suf", "new"), SaveResult::saved);
    EXPECT_TRUE(fs::is_symlink("link.suf"));
    EXPECT_EQ(Get("real.suf"), "new");
    EXPECT_EQ(fs::status("real.suf").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(FilesHere(), 2U);
}

TEST_F(Writer, ALinkToAMissingFileMakesThatFileAndOneThatLeadsNowhereIsRefused) {
    fs::create_directory("there");
    fs::create_symlink("there/second.suf", "first.suf");
    fs::create_symlink("real.suf", "there/second.suf");
    EXPECT_EQ(SaveReplacing("first.suf", "new"), SaveResult::saved);
    EXPECT_TRUE(fs::is_symlink("first.suf"));
    EXPECT_TRUE(fs::is_symlink("there/second.suf"));
    EXPECT_EQ(Get("there/real.suf"), "new");
    fs::create_symlink("b.suf", "a.suf");
    fs::create_symlink("a.suf", "b.suf");
    EXPECT_EQ(SaveReplacing("a.suf", "new"), SaveResult::notOpened);
    EXPECT_TRUE(fs::is_symlink("a.suf"));
}

TEST_F(Writer, APipeThatNobodyReadsIsRefusedInsteadOfWaitedFor) {
    ASSERT_EQ(::mkfifo("pipe.suf", 0600), 0);
    EXPECT_EQ(SaveReplacing("pipe.suf", "new"), SaveResult::notOpened);
    EXPECT_EQ(SaveAppending("pipe.suf", "new"), SaveResult::notOpened);
    // One that is read takes it all.
    const int reader = ::open("pipe.suf", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(SaveReplacing("pipe.suf", "new"), SaveResult::saved);
    char bytes[8];
    EXPECT_EQ(::read(reader, bytes, sizeof bytes), 3);
    ::close(reader);
}

TEST_F(Writer, AppendingKeepsWhatWasThere) {
    EXPECT_EQ(SaveAppending("a.suf", "one "), SaveResult::saved);
    EXPECT_EQ(SaveAppending("a.suf", "two"), SaveResult::saved);
    EXPECT_EQ(Get("a.suf"), "one two");
}

// Runs `work` in a process of its own, whose files may grow to `bytes` only: a disk that is full.
template <class Work>
int InProcess(rlim_t bytes, Work work) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(work());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Writer, AFullDiskCostsNothingOfTheOldFile) {
    Put("a.suf", "old text");
    const std::string large(100000, 'x');
    EXPECT_EQ(
        InProcess(50000, [&] { return SaveReplacing("a.suf", large) == SaveResult::notWritten ? 7 : 1; }), 7);
    EXPECT_EQ(Get("a.suf"), "old text");
    EXPECT_EQ(
        InProcess(50000, [&] { return SaveAppending("a.suf", large) == SaveResult::notWritten ? 7 : 1; }), 7);
    EXPECT_EQ(Get("a.suf"), "old text");
    EXPECT_EQ(FilesHere(), 1U);
    EXPECT_EQ(SaveReplacing("/dev/full", large), SaveResult::notWritten);
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST_F(Writer, AReadOnlyFolderCostsNothingOfTheOldFile) {
    Put("a.suf", "old text");
    fs::permissions("a.suf", fs::perms::all);
    fs::permissions(folder, static_cast<fs::perms>(0555));
    const bool root = geteuid() == 0;
    const int result = InProcess(RLIM_INFINITY, [root] {
        if (root && setuid(65534) != 0) {
            return 2;
        }
        return SaveReplacing("a.suf", "new") == SaveResult::notOpened ? 7 : 1;
    });
    EXPECT_EQ(result, 7);
    fs::permissions(folder, fs::perms::owner_all);
    EXPECT_EQ(Get("a.suf"), "old text");
    EXPECT_EQ(FilesHere(), 1U);
}

TEST_F(Writer, AKilledProcessLeavesTheOldFileOrTheNewOneWhole) {
    const std::string old(200000, 'o');
    const std::string fresh(300000, 'n');
    Put("a.suf", old);
    std::mt19937 random(7);
    for (int i = 0; i < 60; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            for (;;) {
                SaveReplacing("a.suf", fresh);
                SaveReplacing("a.suf", old);
            }
        }
        usleep(static_cast<useconds_t>(random() % 4000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string found = Get("a.suf");
        ASSERT_TRUE(found == old || found == fresh) << found.size();
    }
}

// ---- what the writer writes the reader reads back ----

class RandomModels {
  public:
    explicit RandomModels(std::uint32_t seed) : random_(seed) {}

    int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    // Extreme values are as frequent as all others together.
    std::int16_t Coordinate() {
        constexpr int EXTREMES[] = {VERTEX_MIN, VERTEX_MAX, 0, 1, -1, 9999, 10000, -10000};
        return static_cast<std::int16_t>(Number(0, 1) == 0 ? EXTREMES[Number(0, 7)]
                                                           : Number(VERTEX_MIN, VERTEX_MAX));
    }
    // Pieces end in a backslash, a brace and other troublesome second bytes.
    std::string Name() {
        constexpr const char* PIECES[] = {"a",  "Z9", "_",  "poly", "家",  "表",
                                          "ソ", "ボ", "マ", "ｱ",    "obj", "#"};
        std::string name = "n" + std::to_string(serial_++);
        for (int i = Number(0, 5); i > 0; --i) {
            const std::string piece = Utf8ToCp932(PIECES[Number(0, 11)]).value();
            name += name.size() + piece.size() <= 16 ? piece : "";
        }
        return name;
    }
    // Hundredths, so that the two places of the text tell all of it; none prints as -0.00.
    std::int16_t Hundredths() { return static_cast<std::int16_t>(41 * Number(-799, 799)); }
    ColourTriple Colour() {
        const std::int16_t grey = Number(0, 2) == 0 ? std::int16_t{0} : Hundredths();
        return Number(0, 1) == 0 ? ColourTriple{grey, grey, grey, 0}
                                 : ColourTriple{Hundredths(), Hundredths(), grey, 0};
    }
    // Whole numbers of every size, and ten thousandths.
    std::int32_t Side() {
        const int whole = Number(0, 2) == 0 ? 0 : Number(-32768, 32767);
        return whole * 65536 + (Number(0, 1) == 0 ? 0 : Number(1, 9998) * 65536 / 10000 + 1);
    }
    void Attribute(AttributeRecord& attribute) {
        for (ColourTriple* colour :
             {&attribute.col, &attribute.amb, &attribute.dif, &attribute.spc, &attribute.size, &attribute.ref,
              &attribute.tra, &attribute.rfr, &attribute.att}) {
            *colour = Colour();
        }
        attribute.spcextra = Hundredths();
        attribute.map = Number(0, 1);
        CopyText(attribute.mapfile, Number(0, 3) == 0 ? "" : Name() + ".tif");
        for (auto* rectangle : {&attribute.mapsize, &attribute.mapview, &attribute.mapwind}) {
            for (int i = 0; i < 4; ++i) {
                (*rectangle)[i / 2][i % 2] = Side();
            }
        }
    }
    void Polygon(std::int16_t attribute) {
        const int vers = Number(0, 30) == 0 ? Number(3, 1023) : Number(3, 8);
        const int type = Number(0, 3);
        CurrentPolygon->type = static_cast<std::uint16_t>(type);
        CurrentPolygon->attr = attribute;
        CurrentPolygon->vers = static_cast<std::int16_t>(vers);
        for (int i = 0; i < vers; ++i) {
            VertexRecord v{Coordinate(), Coordinate(), Coordinate(), 0, 0, 0, 0, 0};
            if ((type & POLY_SHADE) != 0) {
                v.nx = Coordinate(), v.ny = Coordinate(), v.nz = Coordinate();
            }
            if ((type & POLY_UV) != 0) {
                v.u = Coordinate(), v.v = Coordinate();
            }
            CurrentPolygon->vertex[i] = v;
        }
        PolygonAppend(1);
    }

  private:
    std::mt19937 random_;
    int serial_ = 0;
};

// The records of the polygons but for their ids, which are new in every model.
std::string PolygonBytes() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->flags &= POLYGON_INVISIBLE;
        polygon->idLow = 0;
    }
    return {BufTop, BufNext};
}

TEST_F(Writer, ThousandsOfRandomModelsAreReadBackIdentical) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(seed);
        ModelExit();
        ModelInit(1 << 19, 16, 64, 1023);
        RandomModels models(seed);
        const std::string object = models.Name();
        ObjAlloc(object);
        std::string file;
        const int attributes = models.Number(1, 5);
        for (int i = 0; i < attributes; ++i) {
            AttrAlloc(models.Name());
            models.Attribute(AttrTable[i]);
            file += *AttributeText(AttrTable[i]);
        }
        for (int i = models.Number(0, 12); i > 0; --i) {
            models.Polygon(static_cast<std::int16_t>(models.Number(0, attributes - 1)));
        }
        file += *ObjectText(ObjTable[0].name);
        const std::string polygons = PolygonBytes();
        Put("r.suf", file);
        ModelExit();
        ModelInit(1 << 19, 16, 64, 1023);
        ASSERT_TRUE(ReadShapeFile("r.suf", 1)) << warnings;
        ASSERT_EQ(warnings, "");
        ASSERT_EQ(PolygonBytes(), polygons);
        ASSERT_EQ(ObjTable[0].name, object);
        std::string again;
        for (int i = 0; i < attributes; ++i) {
            again += *AttributeText(AttrTable[i]);
        }
        ASSERT_EQ(again + *ObjectText(ObjTable[0].name), file);
    }
}

}  // namespace
}  // namespace quelmark::test
