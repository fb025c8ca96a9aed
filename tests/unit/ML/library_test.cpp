// Standard functions and the String class.
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Library : public ScriptTest {
  protected:
    // The value of an expression, as print shows it.
    std::string Value(const std::string& expression) { return Run("print(" + expression + ");"); }
};

TEST_F(Library, TostringPadsOnTheLeftForAPositiveWidth) {
    EXPECT_EQ(Value("tostring(5, 4)"), "   5");
}
TEST_F(Library, TostringPadsOnTheRightForANegativeWidth) {
    EXPECT_EQ(Value("tostring(5, -4) + \"|\""), "5   |");
}
TEST_F(Library, TostringRefusesAWidthOf4096) {
    EXPECT_EQ(Fail("tostring(5, 4096);"), "test.qms:1:  Error 2 番目の引数が不正です( tostring )");
}
TEST_F(Library, TostringNamesBooleanAndIntAlike) {
    EXPECT_EQ(Run("print(tostring(TRUE), tostring(INT), tostring(BOOLEAN), tostring(NOASSIGN));"),
              "TRUE INT INT NO_ASSIGN");
}
TEST_F(Library, SineTakesNoInteger) {
    EXPECT_EQ(Fail("sin(1);"), "test.qms:1:  Error 1 番目の引数の型が不正です。( sin )");
}
TEST_F(Library, ArcSineReportsUnderTheNameOfTheSine) {
    EXPECT_EQ(Fail("asin(1.0, 2.0);"), "test.qms:1:  Error 2 番目の引数の型が不正です。( sin )");
    EXPECT_EQ(Fail("asin();"), "test.qms:1:  Error 引数の数が不正です。( sin )");
}
TEST_F(Library, PrintSeparatesByOneBlankAndEndsNoLine) {
    EXPECT_EQ(Run("print(1, 2.5);"), "1 2.500000");
}
TEST_F(Library, SqrtTakesIntegerAndReal) {
    EXPECT_EQ(Value("sqrt(9), sqrt(2.25)"), "3.000000 1.500000");
}
TEST_F(Library, SqrtWithoutArgumentIsACountError) {
    EXPECT_EQ(Fail("sqrt();"), "test.qms:1:  Error 引数の数が不正です。( sqrt )");
    EXPECT_EQ(Fail("sqrt(1, 2);"), "test.qms:1:  Error 2 番目の引数の型が不正です。( sqrt )");
}
TEST_F(Library, AbsKeepsTheTypeAndTheLeastInteger) {
    EXPECT_EQ(Value("abs(-3), abs(-2.5), abs(-2147483648)"), "3 2.500000 -2147483648");
}
TEST_F(Library, CallReturnsWhatTheFunctionDoes) {
    EXPECT_EQ(Run("function twice(x) { return x * 2; } print(call(twice, 21), call(abs, -4));"), "42 4");
}
TEST_F(Library, CallWithoutAFunctionIsAnError) {
    EXPECT_EQ(Fail("call(1);"), "test.qms:1:  Error 1 番目の引数の型が不正です( callfunction )");
}
TEST_F(Library, TypeofAndSizeof) {
    EXPECT_EQ(Run("var a[7]; print(typeof(1) == INT, typeof(\"\"), typeof(a), sizeof(a));"),
              "TRUE OBJECT ARRAY 7");
}
TEST_F(Library, StackPtrAndObjectCountComeBack) {
    EXPECT_EQ(Run("function f(s) { var a[10], t = s + s; return !t; } var s = \"ab\", p = StackPtr(), o = "
                  "ObjectCount();"
                  "f(s); f(s); var q = StackPtr(); print(p == q, o == ObjectCount());"),
              "TRUE TRUE");
}

TEST_F(Library, StringPlusAnythingAppendsItsText) {
    EXPECT_EQ(Run("var s = \"abc\"; print(s + 5, s + 2.5, s + TRUE, s + s);"),
              "abc5 abc2.500000 abcTRUE abcabc");
}
TEST_F(Library, NotOfAStringIsItsLength) {
    EXPECT_EQ(Value("!\"abc\", !\"\""), "3 0");
}
TEST_F(Library, SubstrFromEitherEnd) {
    EXPECT_EQ(Value("substr(\"abcdef\", 2), substr(\"abcdef\", -2), substr(\"abc\", 9), substr(\"abc\", -9)"),
              "ab ef abc abc");
}
TEST_F(Library, SearchFindsTheFirstPlace) {
    EXPECT_EQ(Value("search(\"abcabc\", \"ca\"), search(\"abc\", \"\"), search(\"\", \"a\"), search(\"ab\", "
                    "\"abc\")"),
              "2 -1 -1 -1");
}
TEST_F(Library, StringsCompareByBytes) {
    EXPECT_EQ(Value("\"abc\" < \"abd\", \"a\" == \"a\", \"a\" != \"a\""), "TRUE TRUE FALSE");
}
TEST_F(Library, AStringDoesNotCompareWithANumber) {
    EXPECT_EQ(Fail("print(\"5\" == 5);"), "test.qms:1:  Error 比較演算の型が違います。(String)");
}
TEST_F(Library, ANumberPlusAStringIsAnIntegerError) {
    EXPECT_EQ(Fail("print(5 + \"a\");"), "test.qms:1:  Error 整数演算の型が不正です。");
}
TEST_F(Library, AsctostrTakesTheLowEightBits) {
    EXPECT_EQ(Value("asctostr(321), !asctostr(0)"), "A 0");
}
TEST_F(Library, StrtoascIsSigned) {
    EXPECT_EQ(Value("strtoasc(\"A\"), strtoasc(\"\"), strtoasc(asctostr(200))"), "65 0 -56");
}
TEST_F(Library, AtoiAndAtofReadTheLeadingNumber) {
    EXPECT_EQ(Value("atoi(\" 12abc\"), atoi(\"x\"), atof(\"2.5e1z\"), atof(\"\")"),
              "12 0 25.000000 0.000000");
    EXPECT_EQ(Value("atoi(\"+-5\"), atoi(\"+5\"), atof(\"+-5\"), atof(\"-+5\"), atof(\"+5\"), atof(\"-5\")"),
              "0 5 0.000000 0.000000 5.000000 -5.000000");
}
TEST_F(Library, CaseIsMappedByteByByte) {
    EXPECT_EQ(Value("toupper(\"aBz\"), tolower(\"aBZ\")"), "ABZ abz");
}
TEST_F(Library, SprintfFollowsPrintf) {
    EXPECT_EQ(Value("sprintf(\"%d|%5d|%-5d|%05.1f|%s|%x|%c|%%\", 1, 2, 3, 4.25, \"t\", 255, 'A')"),
              "1|    2|3    |004.2|t|ff|A|%");
}
TEST_F(Library, SprintfKnowsAPercentSignBehindAnyByte) {
    EXPECT_EQ(Value("sprintf(asctostr(0x81) + \"%d|能%d\", 5, 6) == asctostr(0x81) + \"5|能6\""), "TRUE");
}
TEST_F(Library, SprintfNamesTheArgumentOfAWrongType) {
    EXPECT_EQ(Fail("sprintf(\"%d%s\", 1, 2);"),
              "test.qms:1:  Error 3番目の引数の型が不正です(String:sprintf)");
    EXPECT_EQ(Fail("sprintf(\"%d\");"), "test.qms:1:  Error 2番目の引数の型が不正です(String:sprintf)");
    EXPECT_EQ(Fail("sprintf(\"%q\", 1);"), "test.qms:1:  Error 2番目の引数の型が不正です(String:sprintf)");
}
TEST_F(Library, SprintfIgnoresSurplusArguments) {
    EXPECT_EQ(Value("sprintf(\"%d\", 1, 2)"), "1");
}
TEST_F(Library, SearchForAnObjectOfAnotherClassIsAnError) {
    EXPECT_EQ(Fail("var f = fileopen(\"/dev/null\"); search(\"a\", f);"),
              "test.qms:1:  Error 2番目の引数の型が不正です(String:search)");
}
TEST_F(Library, GetenvOfAnUnsetNameIsEmpty) {
    EXPECT_EQ(Value("!getenv(\"QUELMARK_NOT_SET\")"), "0");
}
TEST_F(Library, AccessTellsWhetherAFileExists) {
    EXPECT_EQ(Value("access(\"C:\\\\tmp\"), access(\"/no/such\")"), "TRUE FALSE");
}
TEST_F(Library, AppendingInPlaceLeavesOtherHoldersAlone) {
    EXPECT_EQ(Run("var s = \"a\" + 1, t = s; s += \"b\"; s = s + s; print(s, t);"), "a1ba1b a1");
}
TEST_F(Library, FullpathResolvesParents) {
    EXPECT_EQ(Value("fullpath(\"C:\\\\a\\\\b\\\\..\\\\c\"), fullpath(\"\\\\..\\\\x\"), fullpath(\"/a/./b\")"),
              "C:\\a\\c C:\\x C:\\a\\b");
}
TEST_F(Library, FileopenOfAMissingFileIsFalse) {
    EXPECT_EQ(Value("fileopen(\"/no/such/file\")"), "FALSE");
}
TEST_F(Library, FilesAreWrittenAndRead) {
    EXPECT_EQ(Run("var n = \"/tmp/quelmark_library_test.txt\", f = fileopen(n, \"w\"); fileputs(f, \"a\", "
                  "1); fileputc(f, 10);"
                  "fileclose(f); f = fileopen(n); print(filegets(f) == \"a 1\\n\", filegets(f), filegetc(f),"
                  "fileputc(f, 65), fileclose(f), fileclose(f)); delete(n); print(access(n));"),
              "TRUE FALSE -1 TRUE TRUE FALSEFALSE");
}

}  // namespace
}  // namespace quelmark::test
