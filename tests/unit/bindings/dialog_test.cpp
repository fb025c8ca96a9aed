// What the dialog functions of scripts put into the dialog that the window runs.
#include "host/DIALOG.h"
#include "MODEL/MDLINIT.h"
#include "host/host_fixture.h"
#include "text/cp932.h"

namespace quelmark::test {
namespace {

class DialogScript : public HostTest {
  protected:
    Dialog dialog;  // the one that the script has run last

    // Runs a script whose DlogWait leaves its dialog in `dialog`.
    void RunScript(const std::string& text) {
        Write("t.qms", "\xEF\xBB\xBF" + text);
        window.answer = [this](Dialog& shown) {
            dialog = shown;
            return 0;
        };
        EXPECT_EQ(HostMain(window, folder / "program", {}, ModelLibrariesRegister), 0);
    }
    std::string Labels() const {
        std::string labels;
        for (const DialogButton& button : dialog.buttons) {
            labels += "[" + Cp932ToUtf8(button.label) + " " + std::to_string(button.result) + "]";
        }
        return labels;
    }
};

TEST_F(DialogScript, TwoArgumentsAndAFlagGiveCancelAndAccept) {
    RunScript("DlogOpen(\"t\", 1); DlogWait();");
    EXPECT_EQ(Labels(), "[中止 0][決定 1]");
    RunScript("DlogOpen(\"t\", 1, -1); DlogWait();");
    EXPECT_EQ(Labels(), "[中止 0][決定 1]");
}

TEST_F(DialogScript, AThirdArgumentZeroShowsOnlyTheConfirmButton) {
    RunScript("DlogOpen(\"t\", 1, 0); DlogWait();");
    EXPECT_EQ(Labels(), "[確認 1]");
    RunScript("DlogOpen(\"t\", 1, FALSE); DlogWait();");
    EXPECT_EQ(Labels(), "[確認 1]");
}

TEST_F(DialogScript, LabelsNumberTheButtonsAndHaveFifteenBytes) {
    RunScript("DlogOpen(\"t\", 1, \"\", \"0123456789ABCDEF\", \"表表表表表表表表\", \"&x\"); DlogWait();");
    EXPECT_EQ(Labels(), "[ 0][0123456789ABCDE 1][表表表表表表表 2][&x 3]");
}

TEST_F(DialogScript, AFieldIsTwentyCharactersWideUnlessToldOtherwise) {
    RunScript(
        "DlogOpen(\"t\", 3); DlogString(0, \"l\", \"v\", 0); DlogString(1, \"l\", \"v\", 7);"
        "DlogString(2, \"l\", \"v\", -1); DlogWait();");
    ASSERT_EQ(dialog.rows.size(), 3U);
    EXPECT_EQ(dialog.rows[0].width, 20);
    EXPECT_EQ(dialog.rows[1].width, 7);
    EXPECT_EQ(dialog.rows[2].width, 20);
}

TEST_F(DialogScript, FiltersMakeAFieldAFileName) {
    RunScript(
        "DlogOpen(\"t\", 2); DlogString(0, \"l\", \"v\", 0, \"all\", \"x(*.atr)\", \"y(*.suf)\");"
        "DlogString(1, \"l\", \"v\", 0, \"all\"); DlogWait();");
    ASSERT_EQ(dialog.rows.size(), 2U);
    ASSERT_EQ(dialog.rows[0].filters.size(), 2U);
    EXPECT_EQ(dialog.rows[0].filters[1].text, "y(*.suf)");
    EXPECT_EQ(dialog.rows[0].filters[1].pattern, "*.suf");
    EXPECT_EQ(dialog.rows[0].defaultExtension, "atr");
    EXPECT_TRUE(dialog.rows[1].filters.empty());
}

TEST_F(DialogScript, AToggleHasItsLabelAtTheLeftAndItsCaptionBesideTheBox) {
    RunScript("DlogOpen(\"t\", 1); DlogToggle(0, \"left\", \"beside\", 7); DlogWait();");
    ASSERT_EQ(dialog.rows.size(), 1U);
    EXPECT_EQ(dialog.rows[0].label, "left");
    EXPECT_EQ(dialog.rows[0].caption, "beside");
    EXPECT_EQ(dialog.rows[0].value, 1);
}

TEST_F(DialogScript, ChoicesEndAtTheFirstEmptyText) {
    RunScript(
        "var a = { \"one\", \"two\", \"\", \"four\" };"
        "DlogOpen(\"t\", 1); DlogSelect(0, \"l\", a, 1); DlogWait();");
    ASSERT_EQ(dialog.rows.size(), 1U);
    EXPECT_EQ(dialog.rows[0].choices, (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(dialog.rows[0].value, 1);
}

TEST_F(DialogScript, ASlidersNumbersAreValueLowerUpperStepAndThreeUseTheFirstTwice) {
    RunScript(
        "DlogOpen(\"t\", 2); DlogSlider(0, \"l\", 5, -10, 10, 2); DlogSlider(1, \"l\", 3, 9, 4);"
        "DlogWait();");
    ASSERT_EQ(dialog.rows.size(), 2U);
    const auto numbers = [this](std::size_t row) {
        const DialogRow& r = dialog.rows[row];
        return std::vector<std::int32_t>{r.value, r.lower, r.upper, r.step};
    };
    EXPECT_EQ(numbers(0), (std::vector<std::int32_t>{5, -10, 10, 2}));
    EXPECT_EQ(numbers(1), (std::vector<std::int32_t>{3, 3, 9, 4}));
}

}  // namespace
}  // namespace quelmark::test
