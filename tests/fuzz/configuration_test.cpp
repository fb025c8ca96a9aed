// Damaged configuration files and wild entries written into them: reading ends, what is written is read back,
// and no other line changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "host/CONFIG.h"
#include "text/path.h"

namespace quelmark::test {
namespace {

constexpr int FILES = 400;
constexpr int WRITES = 8;

const char* const PIECES[] = {"Key",  "Path", "SourceFile", "a.qms",    "=",        "==",   " ",
                              "\t",   "#",    "\r\n",       "\n",       "\n",       "\n\n", "-1",
                              "1e99", "\x83", "\\",         "\x83\x5c", "\xEF\xBB", "x"};

class Configuration : public testing::Test {
  protected:
    std::mt19937 random{20261121};
    std::filesystem::path folder;
    std::string file;

    void SetUp() override {
        std::string name = std::filesystem::temp_directory_path() / "configXXXXXX";
        folder = std::filesystem::canonical(::mkdtemp(name.data()));
        file = (folder / "q.ini").string();
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string Text(std::size_t pieces) {
        std::string text;
        for (std::size_t i = 0; i < pieces; ++i) {
            text += PIECES[std::uniform_int_distribution<std::size_t>(0, std::size(PIECES) - 1)(random)];
        }
        return text;
    }
    std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); }
};

// What a file says of all keys but one.
std::vector<std::string> Others(const std::vector<std::string>& lines, const std::string& key) {
    std::vector<std::string> others;
    for (const std::string& line : lines) {
        const auto entry = ConfigSplit(line);
        if (!entry || entry->key != key) {
            others.push_back(line.substr(0, line.find_last_not_of('\r') + 1));
        }
    }
    return others;
}

TEST_F(Configuration, AWrittenEntryIsReadBackAndEveryOtherLineStays) {
    int written = 0;
    int refused = 0;
    for (int i = 0; i < FILES; ++i) {
        std::ofstream(file, std::ios::binary) << Text(Below(60));
        ConfigKeep(file, ConfigReadLines(file).value());
        for (int j = 0; j < WRITES; ++j) {
            const std::string key = Text(1 + Below(2));
            const std::string value = Text(Below(5));
            const std::string before = ReadWholeFile(file).value();
            const auto others = Others(ConfigReadLines(file).value(), key);
            if (!ConfigWrite(key, value)) {
                ++refused;
                EXPECT_EQ(ReadWholeFile(file), before);
                continue;
            }
            ++written;
            const auto lines = ConfigReadLines(file).value();
            EXPECT_EQ(Others(lines, key), others) << before;
            const auto isKey = [&key](const std::string& line) {
                const auto entry = ConfigSplit(line);
                return entry && entry->key == key;
            };
            const auto line = std::ranges::find_if(lines, isKey);
            ASSERT_NE(line, lines.end()) << key;
            EXPECT_EQ(ConfigSplit(*line)->value, ConfigSplit(key + "\t= " + value)->value);
        }
    }
    EXPECT_GT(written, FILES);
    EXPECT_GT(refused, FILES);
}

}  // namespace
}  // namespace quelmark::test
