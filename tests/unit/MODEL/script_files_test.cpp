// The examples of the library pages and the scripts of the model families: what each prints must be the `// expect: …`
// texts, line by line, and what ends it the `// expect error: …`.
#include <filesystem>
#include <iterator>
#include <sstream>

#include "expectations.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* FAMILIES[] = {"polygon", "vertex",    "attribute", "object",
                                    "matrix",  "selection", "vertexset", "edge"};
// Pages of what lies below the model; their scripts are run elsewhere.
constexpr const char* PAGES[] = {"file", "string", "standard"};

struct Example {
    std::string name;  // letters, digits and underscores
    std::string source;
};

// Every ```qms block of a page is a complete script.
void AddBlocks(const std::string& family, std::vector<Example>& examples) {
    std::istringstream page(ReadFile(fs::path(QUELMARK_SOURCE_DIR "/docs/library") / (family + ".md")));
    bool inside = false;
    int number = 0;
    for (std::string line; std::getline(page, line);) {
        if (line == "```qms") {
            inside = true;
            examples.push_back({family + "_page_line_" + std::to_string(number + 2), ""});
        } else if (line == "```") {
            inside = false;
        } else if (inside) {
            examples.back().source += line + "\n";
        }
        ++number;
    }
}

std::vector<Example> Examples() {
    std::vector<Example> examples;
    for (const std::string page : PAGES) {
        AddBlocks(page, examples);
    }
    for (const std::string family : FAMILIES) {
        AddBlocks(family, examples);
        const fs::path folder = fs::path(QUELMARK_SOURCE_DIR "/tests/script") / family;
        std::vector<fs::path> files;
        std::ranges::copy(fs::directory_iterator(folder), std::back_inserter(files));
        std::ranges::sort(files);
        for (const fs::path& file : files) {
            examples.push_back({family + "_" + file.stem().string(), ReadFile(file)});
        }
    }
    return examples;
}

// In a folder of its own: some examples write files.
class ModelScript : public ModelTest, public testing::WithParamInterface<Example> {
  protected:
    fs::path before = fs::current_path();
    fs::path folder;

    void SetUp() override {
        ModelTest::SetUp();
        std::string name = fs::temp_directory_path() / "exampleXXXXXX";
        folder = ::mkdtemp(name.data());
        fs::current_path(folder);
    }
    void TearDown() override {
        fs::current_path(before);
        fs::remove_all(folder);
        ModelTest::TearDown();
    }
};

TEST_P(ModelScript, PrintsWhatStandsBesideItsStatements) {
    const std::string& source = GetParam().source;
    const bool hasMark = source.starts_with("\xEF\xBB\xBF");
    Start();
    RunMore(std::string_view(source).substr(hasMark ? 3 : 0));
    EXPECT_EQ(LinesOf(Cp932ToUtf8(printed)), Expected(source, "// expect: "));
    const std::vector<std::string> errors = Expected(source, "// expect error: ");
    // The runner compiles every text as test.qms.
    std::string expected = errors.empty() ? "" : errors[0];
    if (const std::size_t end = expected.find(".qms:"); end != std::string::npos) {
        expected = "test" + expected.substr(end);
    }
    EXPECT_EQ(message, expected);
}

std::string NameOf(const testing::TestParamInfo<Example>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Files, ModelScript, testing::ValuesIn(Examples()), NameOf);

}  // namespace
}  // namespace quelmark::test
