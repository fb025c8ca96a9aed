#include "host/CHILD.h"

#include <sys/stat.h>

#include <chrono>

#include "ML/ERROR.h"
#include "host_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

using Words = std::vector<std::string>;

}  // namespace

TEST(CommandWords, BlanksPartThemAndQuotesHoldThem) {
    EXPECT_EQ(CommandWords("a  b\tc "), (Words{"a", "b", "c"}));
    EXPECT_EQ(CommandWords("a \"b c\" d\"e f\"g"), (Words{"a", "b c", "de fg"}));
    EXPECT_EQ(CommandWords("a \"\""), (Words{"a", ""}));
    EXPECT_EQ(CommandWords("  "), Words{});
}

TEST(CommandWords, ADriveLetterIsTheRoot) {
    EXPECT_EQ(CommandWords("C:\\no\\such\\file c:/x"), (Words{"/no/such/file", "/x"}));
    EXPECT_EQ(CommandWords("-o=C:\\x D:\\y"), (Words{"-o=C:\\x", "D:\\y"}));
}

TEST(CommandWords, TheSecondByteOfACharacterIsNothingElse) {
    EXPECT_EQ(CommandWords("表 ソ"_sjis), (Words{"表", "ソ"}));
}

class ChildTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        Write("t.qms", "function Refuse() { return 0; }\nLook();\n");
    }
    void Program(const std::string& name, const std::string& body) {
        Write(name, "#!/bin/sh\n" + body + "\n");
        ::chmod((folder / name).c_str(), 0755);
    }
    std::string Content(const std::string& name) {
        std::ifstream file(folder / name);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(ChildTest, TheProgramsFolderComesFirstWithTheExtensionsOfPrograms) {
    Program("tool.BAT", "echo \"$@\" > \"$(dirname \"$0\")/ran\"");
    Run([] { ChildStart("tool one two", true); });
    EXPECT_EQ(Content("ran"), "one two\n");
}

TEST_F(ChildTest, AHelpFileIsOpenedAndNotRun) {
    Program("doc.hlp", "touch \"$(dirname \"$0\")/ran\"");
    Program(".hlp", "touch \"$(dirname \"$0\")/ran\"");
    Run([this] {
        ChildStart("doc.hlp topic", true);
        EXPECT_EQ(window.opened, folder / "doc.hlp");
    });
    EXPECT_FALSE(std::filesystem::exists(folder / "ran"));
    Run([] { ChildStart(".hlp", true); });  // four characters: no help file's name
    EXPECT_TRUE(std::filesystem::exists(folder / "ran"));
}

TEST_F(ChildTest, WaitingEndsAfterItsTimeAndDeliversMessagesMeanwhile) {
    Run([this] {
        window.delivered = 0;
        const auto begin = std::chrono::steady_clock::now();
        ChildStart("sleep 2", true, 100);
        const auto passed = std::chrono::steady_clock::now() - begin;
        EXPECT_GE(passed, std::chrono::milliseconds(100));
        EXPECT_LT(passed, std::chrono::milliseconds(1500));
        EXPECT_GT(window.delivered, 2);
    });
}

TEST_F(ChildTest, TheCloseButtonLeavesTheWaitAndAHandlerThatRefusesDoesNot) {
    EXPECT_EQ(Run([this] {
                  PaneEvents.canClose = FunctionFind("Refuse");
                  window.closeWanted = true;
                  ChildStart("sleep 0.2", true);
                  EXPECT_FALSE(window.closeWanted);
                  EXPECT_FALSE(QuitFlag);
                  PaneEvents.canClose = -1;
                  window.closeWanted = true;
                  EXPECT_THROW(ChildStart("sleep 3", true), ScriptAbort);
                  EXPECT_TRUE(QuitFlag);
              }),
              0);
}

TEST_F(ChildTest, AChildThatFailsIsNoError) {
    EXPECT_EQ(Run([] {
                  ChildStart("false", true);
                  ChildStart("no-such-program-anywhere", true);
                  ChildStart("", true);
              }),
              0);
}

}  // namespace quelmark::test
