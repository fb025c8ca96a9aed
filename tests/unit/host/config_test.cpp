#include "host/CONFIG.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "text/path.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

std::string Split(std::string_view line) {
    const auto entry = ConfigSplit(line);
    return entry ? "[" + entry->key + "][" + entry->value + "]" : "none";
}

}  // namespace

TEST(ConfigSplit, TakesKeyAndValueWithOrWithoutAnEqualsSign) {
    EXPECT_EQ(Split("BufferSize 200"), "[BufferSize][200]");
    EXPECT_EQ(Split("BufferSize=200"), "[BufferSize][200]");
    EXPECT_EQ(Split(" \tBufferSize \t= \t200 \t\r\n"), "[BufferSize][200]");
}

TEST(ConfigSplit, TakesOneEqualsSignOnly) {
    EXPECT_EQ(Split("a == b"), "[a][= b]");
    EXPECT_EQ(Split("a b = c"), "[a][b = c]");
    EXPECT_EQ(Split("= c"), "[][c]");
}

TEST(ConfigSplit, LeavesOutCommentsAndEmptyLines) {
    EXPECT_EQ(Split(""), "none");
    EXPECT_EQ(Split("  \t\r\n"), "none");
    EXPECT_EQ(Split("# SourceFile = a"), "none");
    EXPECT_EQ(Split("  #a"), "none");
    EXPECT_EQ(Split("a # b"), "[a][# b]");
}

TEST(ConfigSplit, AKeyAloneHasAnEmptyValue) {
    EXPECT_EQ(Split("Key"), "[Key][]");
    EXPECT_EQ(Split("Key ="), "[Key][]");
    EXPECT_EQ(Split("Key=  \n"), "[Key][]");
}

TEST(ConfigSplit, KeepsBlanksInsideAValue) {
    EXPECT_EQ(Split("Name = a  b\tc "), "[Name][a  b\tc]");
}

TEST(ConfigSplit, PassesOverTheSecondBytesOfCharacters) {
    EXPECT_EQ(Split("Name = 表ソ"_sjis), std::string("[Name][") + "表ソ"_sjis + "]");
}

TEST(ConfigSearchPath, ModelPathStandsAsItIs) {
    EXPECT_EQ(ConfigSearchPath("MODELPATH", "a;b", "C:\\q\\"), "a;b");
    EXPECT_EQ(ConfigSearchPath("MODELPATH", "", "C:\\q\\"), "");
}

TEST(ConfigSearchPath, HomeStandsBeforeTheProgramsFolders) {
    const std::string folders = "C:\\q\\;C:\\q\\MACRO;C:\\q\\QUELMARK;C:\\q\\MODEL";
    EXPECT_EQ(ConfigSearchPath("HOME", "/home/a", "C:\\q\\"), "/home/a;" + folders);
    EXPECT_EQ(ConfigSearchPath("home", "x", "C:\\q\\"), "x;" + folders);
    EXPECT_EQ(ConfigSearchPath("", "", "C:\\q\\"), folders);
}

class ConfigFindTest : public testing::Test {
  protected:
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::path folder;

    void SetUp() override {
        std::string name = std::filesystem::temp_directory_path() / "configXXXXXX";
        folder = std::filesystem::canonical(::mkdtemp(name.data()));
        for (const char* file : {"here.ini", "one/both.ini", "two/both.ini", "two/late.ini"}) {
            std::filesystem::create_directories((folder / file).parent_path());
            std::ofstream(folder / file) << "x";
        }
        std::filesystem::current_path(folder);
    }
    void TearDown() override {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }
    std::string Drive(const std::string& path) const { return ScriptPath((folder / path).string()).value(); }
};

TEST_F(ConfigFindTest, AFileOfTheCurrentDirectoryIsToldByItsWholePath) {
    EXPECT_EQ(ConfigFind("one;two", "here.ini"), Drive("here.ini"));
    EXPECT_EQ(ConfigFind("", "here.ini"), Drive("here.ini"));
}

TEST_F(ConfigFindTest, TheFirstFolderThatHasTheFileCounts) {
    EXPECT_EQ(ConfigFind("one;two", "both.ini"), "one\\both.ini");
    EXPECT_EQ(ConfigFind("two;one", "both.ini"), "two\\both.ini");
    EXPECT_EQ(ConfigFind("none;one;two", "late.ini"), "two\\late.ini");
}

TEST_F(ConfigFindTest, ASeparatorIsAddedOnlyWhereThereIsNone) {
    EXPECT_EQ(ConfigFind("two\\", "late.ini"), "two\\late.ini");
    EXPECT_EQ(ConfigFind("two/", "late.ini"), "two/late.ini");
    EXPECT_EQ(ConfigFind(";;two;", "late.ini"), "two\\late.ini");
}

TEST_F(ConfigFindTest, NothingIsFoundElsewhere) {
    EXPECT_EQ(ConfigFind("one", "late.ini"), std::nullopt);
    EXPECT_EQ(ConfigFind("", "late.ini"), std::nullopt);
}

TEST_F(ConfigFindTest, ASecondByteIsNoSeparator) {
    std::filesystem::create_directories(folder / "表");
    std::ofstream(folder / "表/in.ini") << "x";
    EXPECT_EQ(ConfigFind("表"_sjis, "in.ini"), std::string("表"_sjis) + "\\in.ini");
}

TEST_F(ConfigFindTest, WhatIsWrittenIsReadAndAppendedKeysComeLast) {
    std::ofstream("q.ini") << "# first\r\nA = 1\r\nB 2\r\nA = 3";
    ConfigKeep("q.ini", ConfigReadLines("q.ini").value());
    EXPECT_EQ(ConfigValue("A"), "1");
    EXPECT_TRUE(ConfigWrite("A", "new"));
    EXPECT_TRUE(ConfigWrite("C", "x"));
    EXPECT_EQ(ConfigValue("A"), "new");
    EXPECT_EQ(ConfigValue("C"), "x");
    EXPECT_EQ(ReadWholeFile("q.ini"), "# first\r\nA\t= new\r\nB 2\r\nA = 3\r\nC\t= x\r\n");
    EXPECT_FALSE(std::filesystem::exists("q.tmp"));
}

TEST_F(ConfigFindTest, ManyKeysMayBeAdded) {
    std::ofstream("q.ini") << "A = 1\n";
    ConfigKeep("q.ini", ConfigReadLines("q.ini").value());
    for (int i = 0; i < 200; ++i) {
        EXPECT_TRUE(ConfigWrite("K" + std::to_string(i), std::to_string(i)));
    }
    EXPECT_EQ(ConfigValue("K199"), "199");
    ConfigKeep("q.ini", ConfigReadLines("q.ini").value());
    EXPECT_EQ(ConfigValue("K0"), "0");
}

TEST_F(ConfigFindTest, AFolderInTheWayOfTheSiblingLeavesTheFileAsItWas) {
    std::ofstream("q.ini") << "A = 1\n";
    ConfigKeep("q.ini", ConfigReadLines("q.ini").value());
    std::filesystem::create_directories("q.tmp/in");
    EXPECT_FALSE(ConfigWrite("A", "2"));
    EXPECT_EQ(ReadWholeFile("q.ini"), "A = 1\n");
    EXPECT_EQ(ConfigValue("A"), "1");
}

}  // namespace quelmark::test
