// Every script under tests/script/language runs here too: what it prints must be the `// expect: …` texts, line by
// line, and what ends it the `// expect error: …`.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "expectations.h"
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

class LanguageScript : public ScriptTest, public testing::WithParamInterface<std::string> {};

TEST_P(LanguageScript, PrintsWhatStandsBesideItsStatements) {
    const std::string source = ReadFile(GetParam());
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
