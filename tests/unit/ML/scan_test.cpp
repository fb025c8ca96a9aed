// The scanner: tokens, constants, literals, positions.
#include "ML/SCAN.h"

#include <fstream>
#include <string>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Scanner : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        Start();
        StackInit(100);
    }

    void Open(std::string source) { ScanText("scan.qms", std::move(source)); }

    // All tokens: kind in hexadecimal, a colon, the text or value.
    static std::string TokenText() {
        if (CurrentToken.kind == SYM_END) {
            return "end";
        }
        if (CurrentToken.kind == TOKEN_CONSTANT) {
            if (IsString(CurrentToken.value)) {
                return "\"" + std::string(StringText(CurrentToken.value)) + "\"";
            }
            char buffer[4096];
            CellToText(buffer, CurrentToken.value);
            return std::string(buffer) + (CurrentToken.value.type == TYPE_INT ? "i" : "");
        }
        if (CurrentToken.kind >= TOKEN_KEYWORD) {
            return "key" + std::to_string(CurrentToken.kind - TOKEN_KEYWORD);
        }
        if (CurrentToken.kind >= TOKEN_SYMBOL) {
            return CurrentToken.text + "#" + std::to_string(CurrentToken.kind - TOKEN_SYMBOL);
        }
        return CurrentToken.text;
    }
    std::string All(std::string source) {
        Open(std::move(source));
        std::string all = TokenText();
        while (CurrentToken.kind != SYM_END) {
            NextToken();
            all += " " + TokenText();
        }
        return all;
    }
};

TEST_F(Scanner, CompoundAssignmentNeedsNoBlankBetween) {
    EXPECT_EQ(All("a+=b"), "a +=#42 b end");
    EXPECT_EQ(All("a+ =b"), "a +#11 =#41 b end");
}
TEST_F(Scanner, PercentEqualsIsTwoSymbols) {
    EXPECT_EQ(All("a%=b"), "a %#15 =#41 b end");
}
TEST_F(Scanner, ShiftEqualsIsTwoSymbols) {
    EXPECT_EQ(All("<<= >>="), "<<#37 =#41 >>#38 =#41 end");
}
TEST_F(Scanner, EverySymbolHasItsNumber) {
    EXPECT_EQ(All("( ) { } [ ] + - * / % . -> & | ^ ! != == < > <= >= << >>"),
              "(#1 )#2 {#3 }#4 [#5 ]#6 +#11 -#12 *#13 /#14 %#15 .#16 ->#17 &#22 |#23 ^#24 !#25 !=#31 ==#32 "
              "<#33 >#34 <=#35 >=#36 <<#37 >>#38 end");
    EXPECT_EQ(All("= += -= *= /= &= |= ^= ++ -- , ; : #"),
              "=#41 +=#42 -=#43 *=#44 /=#45 &=#46 |=#47 ^=#48 ++#49 --#50 ,#61 ;#62 :#63 ##64 end");
}
TEST_F(Scanner, AnyOtherCharacterIsTheUnknownSymbol) {
    EXPECT_EQ(All("@ ~"), "@#71 ~#71 end");
}
TEST_F(Scanner, KeywordsHaveTheirNumbers) {
    EXPECT_EQ(All("break const continue do else for function if private return var while"),
              "key1 key2 key3 key4 key5 key6 key7 key8 key9 key10 key11 key12 end");
}
TEST_F(Scanner, SystemConstantsAreReplacedByTheirValues) {
    EXPECT_EQ(All("TRUE True OFF"), "TRUE True FALSE end");
    Open("TRUE");
    EXPECT_EQ(CurrentToken.kind, TOKEN_CONSTANT);
    EXPECT_EQ(CurrentToken.value.type, TYPE_BOOLEAN);
}
TEST_F(Scanner, DecimalIntegersKeepTheirLow32Bits) {
    EXPECT_EQ(All("0 42 2147483647 2147483648 4294967297"), "0i 42i 2147483647i -2147483648i 1i end");
}
TEST_F(Scanner, HexadecimalIntegersKeepTheirLow32Bits) {
    EXPECT_EQ(All("0x1F 0XfF 0xFFFFFFFF 0x123456789"), "31i 255i -1i 591751049i end");
}
TEST_F(Scanner, ADigitStringOfAnyLengthIsANumber) {
    EXPECT_EQ(All(std::string(1000000, '0') + "7"), "7i end");
    EXPECT_EQ(All(std::string(5000, '9') + ".0"), "inf end");
}
TEST_F(Scanner, APointOrAnExponentMakesAReal) {
    EXPECT_EQ(All("1.5 1. 2e3 2E+1 25e-1 1.e1 1.5e2"),
              "1.500000 1.000000 2000.000000 20.000000 2.500000 10.000000 150.000000 end");
}
TEST_F(Scanner, AnEWithoutDigitsIsAName) {
    EXPECT_EQ(All("2e 2e+ 1.e"), "2i e 2i e +#11 1i .#16 e end");
}
TEST_F(Scanner, ANameBehindAPointIsAMethod) {
    EXPECT_EQ(All("1.tostring"), "1i .#16 tostring end");
}
TEST_F(Scanner, CharacterConstantsShiftTheirBytesIn) {
    EXPECT_EQ(All("'a' 'ab' '' 'abcde'"), "97i 24930i 0i 1650680933i end");
}
TEST_F(Scanner, AnUnfinishedCharacterConstantEndsWithTheFile) {
    EXPECT_EQ(All("'a"), "97i end");
}
TEST_F(Scanner, CharacterConstantsHaveNoEscapes) {
    EXPECT_EQ(All("'\\'"), "92i end");
}
TEST_F(Scanner, EscapesInStrings) {
    EXPECT_EQ(All(R"("a\nb\tc\\d\"e\q")"), "\"a\nb\tc\\d\"eq\" end");
    EXPECT_EQ(All(R"("\x41\x4a!")"), "\"AJ!\" end");
}
TEST_F(Scanner, TheFirstOctalDigitIsNotCounted) {
    EXPECT_EQ(All(R"("\012")"), "\"\n\" end");
    EXPECT_EQ(All(R"("\101")"), "\"\x01\" end");
    EXPECT_EQ(All(R"("\7101")"), "\"A\" end");
}
TEST_F(Scanner, AZeroEscapeEndsTheLiteralAtOnce) {
    EXPECT_EQ(All(R"("ab\xzz;")"), "\"ab\" zz ;#62 \"\" end");
    EXPECT_EQ(All("\"ab\\0;"), "\"ab\" ;#62 end");
}
TEST_F(Scanner, ARawNulEndsTheLiteral) {
    EXPECT_EQ(All(std::string("\"ab\0cd", 6)), "\"ab\" cd end");
}
TEST_F(Scanner, ADoubleByteCharacterHidesItsSecondByte) {
    EXPECT_EQ(All("\"\x83\\\" a"), "\"\x83\\\" a end");
    EXPECT_EQ(All("\"\xE0\"\" a"), "\"\xE0\"\" a end");
}
TEST_F(Scanner, Bytes159And252AreNoFirstBytes) {
    EXPECT_EQ(All("\"\x9F\" a"), "\"\x9F\" a end");
    EXPECT_EQ(All("\"\xFC\" a"), "\"\xFC\" a end");
}
TEST_F(Scanner, Bytes128To158And224To251AreFirstBytes) {
    for (int byte = 128; byte < 256; ++byte) {
        const std::string before = std::string("\"") + static_cast<char>(byte);
        const bool isFirst = byte <= 158 || (byte >= 224 && byte <= 251);
        Open(before + "\\n\"");
        EXPECT_EQ(StringText(CurrentToken.value).size(), isFirst ? 3U : 2U) << byte;
    }
}
TEST_F(Scanner, AnEscapeMayBeAFirstByte) {
    EXPECT_EQ(All("\"\\x83\"\" a"), "\"\x83\"\" a end");
    EXPECT_EQ(All("\"\\0203\"\" a"), "\"\x83\"\" a end");
}
TEST_F(Scanner, AdjacentStringLiteralsJoin) {
    EXPECT_EQ(All("\"ab\" /* and */ \n // more\n \"cd\" x"), "\"abcd\" x end");
}
TEST_F(Scanner, StringLiteralsKeepTheirFirst4096Bytes) {
    Open("\"" + std::string(5000, 'x') + "\" y");
    EXPECT_EQ(StringText(CurrentToken.value).size(), 4096U);
    NextToken();
    EXPECT_EQ(CurrentToken.text, "y");
}
TEST_F(Scanner, AnUnfinishedStringEndsWithTheFile) {
    EXPECT_EQ(All("\"ab"), "\"ab\" end");
}
TEST_F(Scanner, NamesAreCutTo31Bytes) {
    EXPECT_EQ(All(std::string(40, 'n') + "+"), std::string(31, 'n') + " +#11 end");
}
TEST_F(Scanner, CommentsDoNotNestAndEndWithTheFile) {
    EXPECT_EQ(All("a /* b /* c */ d */"), "a d *#13 /#14 end");
    EXPECT_EQ(All("a // b\nc"), "a c end");
    EXPECT_EQ(All("a /* b"), "a end");
    EXPECT_EQ(All("a //"), "a end");
    EXPECT_EQ(All("a /*/ b"), "a end");
}
TEST_F(Scanner, LineFeedsInCommentsAndLiteralsAdvanceTheLine) {
    Open("/* 1\n 2\n */ a \"x\ny\" b");
    EXPECT_EQ(CurrentToken.line, 3);
    NextToken();
    NextToken();
    EXPECT_EQ(CurrentToken.text, "b");
    EXPECT_EQ(CurrentToken.line, 4);
}
TEST_F(Scanner, ControlCharactersAreBlanks) {
    EXPECT_EQ(All(std::string("a\0\x01\x1F b", 6)), "a b end");
}
TEST_F(Scanner, AnEmptyFileIsItsEnd) {
    EXPECT_EQ(All(""), "end");
}
TEST_F(Scanner, AFileWithAByteOrderMarkIsUtf8) {
    EXPECT_EQ(All("\xEF\xBB\xBF\"あ\""), "\"\x82\xA0\" end");
    EXPECT_EQ(All("\"\x82\xA0\""), "\"\x82\xA0\" end");
}
TEST_F(Scanner, AFileThatCannotBeOpenedIsNamed) {
    try {
        ScanOpen("C:\\no\\such\\file.qms");
        FAIL();
    } catch (const ScriptAbort&) {
        EXPECT_EQ(message, "Error ファイル C:\\no\\such\\file.qms がオープンできません。");
    }
}
TEST_F(Scanner, ADirectoryIsNoFile) {
    EXPECT_THROW(ScanOpen("/tmp"), ScriptAbort);
    EXPECT_EQ(message, "Error ファイル /tmp がオープンできません。");
}
TEST_F(Scanner, PositionsNameThePartBehindTheLastSeparator) {
    const std::string path = testing::TempDir() + "named.qms";
    std::ofstream(path) << "a\n\n  ?";
    ScanOpen(path);
    EXPECT_STREQ(ScanPosition().file, "named.qms");
    NextToken();
    EXPECT_EQ(ScanPosition().line, 3);
    ScanClose();
    EXPECT_EQ(ScanPosition().file, nullptr);
}
TEST_F(Scanner, BinaryDataIsScannedToItsEnd) {
    std::string bytes;
    std::uint32_t state = 12345;
    for (int i = 0; i < 200000; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes += static_cast<char>(state >> 24);
    }
    Open(bytes);
    while (CurrentToken.kind != SYM_END) {
        NextToken();
    }
}

}  // namespace
}  // namespace quelmark::test
