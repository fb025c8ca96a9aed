// Every script under tests/script/language runs here too: what it prints must be the `// expect: …` texts, line by
// line, and what ends it the `// expect error: …`.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "script_fixture.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> LanguageScripts() {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(QUELMARK_SOURCE_DIR "/tests/script/language")) {
        if (entry.path().extension() == ".qms") {
            paths.push_back(entry.path().string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::string NameOf(const testing::TestParamInfo<std::string>& info) {
    const fs::path path = info.param;
    return path.parent_path().filename().string() + "_" + path.stem().string();
}

// The texts behind `mark` in the source, one a line.
std::vector<std::string> Expected(const std::string& source, const std::string& mark) {
    std::vector<std::string> texts;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(mark);
        if (at != std::string::npos) {
            texts.push_back(line.substr(at + mark.size()));
        }
    }
    return texts;
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        found.push_back(line);
    }
    return found;
}

class LanguageScript : public ScriptTest, public testing::WithParamInterface<std::string> {};

TEST_P(LanguageScript, PrintsWhatStandsBesideItsStatements) {
    std::ifstream file(GetParam(), std::ios::binary);
    const std::string source(std::istreambuf_iterator<char>(file), {});
    Start();
    ExecMark mark{};
    try {
        CompileFile(GetParam());
        ExecInit();
        mark = ExecTakeMark();
        ExecTopLevel();
    } catch (const ScriptAbort&) {
        ExecRecover(mark.top == nullptr ? ExecTakeMark() : mark);
    }
    EXPECT_EQ(LinesOf(Cp932ToUtf8(printed)), Expected(source, "// expect: "));
    const std::vector<std::string> errors = Expected(source, "// expect error: ");
    EXPECT_EQ(message, errors.empty() ? "" : errors[0]);
}

INSTANTIATE_TEST_SUITE_P(Files, LanguageScript, testing::ValuesIn(LanguageScripts()), NameOf);

}  // namespace
}  // namespace quelmark::test
