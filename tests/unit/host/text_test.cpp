#include <gtest/gtest.h>

#include "host/TEXTCUT.h"
#include "text/sjis.h"

namespace quelmark::test {

TEST(CutText, KeepsShortTextWhole) {
    EXPECT_EQ(CutText("abc", 3), "abc");
    EXPECT_EQ(CutText("", 3), "");
}

TEST(CutText, CutsAtTheNumberOfBytes) {
    EXPECT_EQ(CutText("abcdef", 4), "abcd");
    EXPECT_EQ(CutText("abc", 0), "");
}

TEST(CutText, NeverKeepsHalfADoubleByteCharacter) {
    EXPECT_EQ(CutText("表示"_sjis, 3), std::string_view("表"_sjis));
    EXPECT_EQ(CutText("a表示"_sjis, 2), "a");
    EXPECT_EQ(CutText("ｱｲｳ"_sjis, 2), std::string_view("ｱｲ"_sjis));
}

TEST(CutText, TakesALeadByteAtTheEndAsItIs) {
    EXPECT_EQ(CutText("a\x95", 2), "a\x95");
    EXPECT_EQ(CutText("a\x95", 1), "a");
}

TEST(SplitLines, SplitsAtLineEndsOfBothKinds) {
    EXPECT_EQ(SplitLines("a\nb\r\n\nc"), (std::vector<std::string>{"a", "b", "", "c"}));
}

TEST(SplitLines, ALineEndAtTheVeryEndStartsNoLine) {
    EXPECT_EQ(SplitLines("a\n"), (std::vector<std::string>{"a"}));
    EXPECT_TRUE(SplitLines("").empty());
}

TEST(OneLineText, ShowsControlCharactersAsBlanks) {
    EXPECT_EQ(OneLineText("a\tb\nc\x7F"), "a b c ");
    EXPECT_EQ(OneLineText("表"_sjis), "表"_sjis);
}

}  // namespace quelmark::test
