#include <fcntl.h>
#include <gtest/gtest.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

// What the C library's converter makes of the bytes; empty when it refuses them.
std::string ByIconv(const char* to, const char* from, std::string bytes) {
    const iconv_t converter = iconv_open(to, from);
    char out[16];
    char* at = out;
    char* in = bytes.data();
    std::size_t left = bytes.size(), room = sizeof out;
    const bool good = iconv(converter, &in, &left, &at, &room) == 0 && left == 0;
    iconv_close(converter);
    return good ? std::string(out, sizeof out - room) : std::string();
}

std::string Utf8Of(std::uint32_t unicode) {
    std::string text;
    if (unicode < 0x80) {
        text += static_cast<char>(unicode);
    } else if (unicode < 0x800) {
        text += static_cast<char>(0xC0 | unicode >> 6);
        text += static_cast<char>(0x80 | (unicode & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | unicode >> 12);
        text += static_cast<char>(0x80 | (unicode >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (unicode & 0x3F));
    }
    return text;
}

TEST(Cp932, DecodesEveryCodeAsTheCLibraryDoes) {
    int compared = 0;
    for (int lead = 1; lead < 256; ++lead) {
        for (int trail = IsLeadByte(static_cast<unsigned char>(lead)) ? 1 : 0; trail < 256; ++trail) {
            std::string bytes(1, static_cast<char>(lead));
            if (trail != 0) {
                bytes += static_cast<char>(trail);
            }
            const std::string wanted = ByIconv("UTF-8", "CP932", bytes);
            if (!wanted.empty()) {
                ASSERT_EQ(Cp932ToUtf8(bytes), wanted) << lead << " " << trail;
                ++compared;
            }
            if (!IsLeadByte(static_cast<unsigned char>(lead))) {
                break;
            }
        }
    }
    EXPECT_GT(compared, 9000);
}

TEST(Cp932, EncodesEveryCharacterAsTheCLibraryDoes) {
    int compared = 0;
    for (std::uint32_t unicode = 1; unicode < 0x10000; ++unicode) {
        if (unicode >= 0xD800 && unicode < 0xE000) {
            continue;
        }
        const std::string utf8 = Utf8Of(unicode);
        const std::string wanted = ByIconv("CP932", "UTF-8", utf8);
        const auto got = Utf8ToCp932(utf8);
        ASSERT_EQ(got.value_or(""), wanted) << std::hex << unicode;
        compared += wanted.empty() ? 0 : 1;
    }
    EXPECT_GT(compared, 9000);
}

TEST(Cp932, LiteralIsTheSameAsTheConversion) {
    EXPECT_EQ(std::string("引数の数が不正です。( %s )"_sjis), Utf8ToCp932("引数の数が不正です。( %s )"));
    EXPECT_EQ(std::string("ｱﾄﾘﾋﾞｭｰﾄ"_sjis), Utf8ToCp932("ｱﾄﾘﾋﾞｭｰﾄ"));
}

TEST(Cp932, CharactersWithoutACodeAreRefusedOrShownAsQuestionMarks) {
    EXPECT_EQ(Utf8ToCp932("a😀"), std::nullopt);
    EXPECT_EQ(Utf8ToCp932("\xC3\x28"), std::nullopt);
    EXPECT_EQ(Utf8ToCp932Lossy("a😀b"), "a?b");
}

TEST(Cp932, BrokenBytesBecomeReplacementCharacters) {
    EXPECT_EQ(Cp932ToUtf8("a\x81"), "a\xEF\xBF\xBD");
    EXPECT_EQ(Cp932ToUtf8("\x81\x20z"), "\xEF\xBF\xBD z");
}

TEST(Cp932, SearchPassesOverSecondBytes) {
    const std::string text = "表\\能"_sjis;  // both characters end in a backslash byte
    EXPECT_EQ(FindFirstOf(text, "\\"), 2U);
    EXPECT_EQ(FindLastOf(text, "\\"), 2U);
}

TEST(Cp932, AByteOrderMarkMeansUtf8) {
    EXPECT_EQ(FileTextToCp932("\xEF\xBB\xBF表"), std::string("表"_sjis));
    EXPECT_EQ(FileTextToCp932("\x95\x5C"), "\x95\x5C");
}

class Path : public testing::Test {
  protected:
    std::filesystem::path folder;
    void SetUp() override {
        char name[] = "/tmp/quelmark_path_XXXXXX";
        folder = mkdtemp(name);
        std::filesystem::create_directory(folder / "Sub");
        std::ofstream(folder / "Sub" / "File.TXT") << "x";
        std::ofstream(folder / "表.suf") << "y";
    }
    void TearDown() override { std::filesystem::remove_all(folder); }
};

TEST_F(Path, BackslashesAndTheDriveAreUnderstood) {
    const std::string script = ScriptPath(folder.string()).value();
    EXPECT_EQ(script.substr(0, 3), "C:\\");
    EXPECT_EQ(HostPath(script + "\\Sub\\File.TXT"), (folder / "Sub" / "File.TXT").string());
}
TEST_F(Path, LettersInAnotherCaseAreFound) {
    EXPECT_EQ(HostPath(folder.string() + "/SUB/file.txt"), (folder / "Sub" / "File.TXT").string());
    EXPECT_TRUE(PathExists(folder.string() + "\\sub\\FILE.txt"));
    EXPECT_FALSE(PathExists(folder.string() + "\\sub\\FILE.tx"));
}
TEST_F(Path, JapaneseNamesAreFound) {
    EXPECT_TRUE(PathExists(folder.string() + "\\" + std::string("表.suf"_sjis)));
}
TEST_F(Path, ADirectoryIsNoFile) {
    EXPECT_EQ(OpenFile(folder.string(), "r"), nullptr);
    EXPECT_EQ(ReadWholeFile(folder.string()), std::nullopt);
    EXPECT_TRUE(PathIsDirectory(folder.string()));
}
TEST_F(Path, AMissingFileKeepsTheNameItWouldHave) {
    EXPECT_EQ(HostPath(folder.string() + "\\SUB\\new.txt"), (folder / "Sub" / "new.txt").string());
}
TEST_F(Path, PartsOfAName) {
    EXPECT_EQ(FileNamePart("C:\\a\\b.suf"), "b.suf");
    EXPECT_EQ(DirectoryPart("C:\\a\\b.suf"), "C:\\a\\");
    EXPECT_TRUE(HasExtension("a\\b.suf"));
    EXPECT_FALSE(HasExtension("a.x\\b"));
}

}  // namespace
}  // namespace quelmark
