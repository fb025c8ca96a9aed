#include "host/DIALOG.h"

#include "host_fixture.h"
#include "text/sjis.h"

namespace quelmark::test {
namespace {

std::string FilterList(std::initializer_list<std::string> texts) {
    std::string list;
    const std::vector<std::string> all(texts);
    for (const FileFilter& filter : FileFilters(all)) {
        list += filter.text + "|" + filter.pattern + "|";
    }
    return list;
}

DialogRow Row(RowKind kind, std::int32_t row, const char* label = "") {
    DialogRow made;
    made.kind = kind;
    made.row = row;
    made.label = label;
    return made;
}

}  // namespace

TEST(FileFilters, TakeTheExtensionInParentheses) {
    EXPECT_EQ(FilterList({"shape(*.suf)", "x(*.ATR)"}), "shape(*.suf)|*.suf|x(*.ATR)|*.ATR|");
    EXPECT_EQ(FilterList({"形状(*.suf)"_sjis}), std::string("形状(*.suf)"_sjis) + "|*.suf|");
}

TEST(FileFilters, OtherTextsAddNothing) {
    EXPECT_EQ(FilterList({"(*.suf)"}), "");  // seven characters
    EXPECT_EQ(
        FilterList({"shape (*.su)", "shape (*.shape)", "shape *.suf", "shape(*.suf) ", "shape[*.suf]", ""}),
        "");
    EXPECT_EQ(FilterList({"a", "b(*.frm)"}), "b(*.frm)|*.frm|");
}

TEST(DialogLayout, StartsTwentyCharactersWide) {
    Dialog dialog;
    dialog.rowCount = 3;
    const DialogLayout layout = LayOutDialog(dialog, 8, 16);
    EXPECT_EQ(layout.width, 160);
    EXPECT_EQ(layout.height, 18 * 3 + 64);
}

TEST(DialogLayout, PlacesRowsAndWidensToMessages) {
    Dialog dialog;
    dialog.rowCount = 5;
    dialog.rows = {Row(RowKind::Message, 0, "short"),
                   Row(RowKind::Message, 4, "a message of thirty characters"),
                   Row(RowKind::Text, 2, "a label of more than forty characters, which counts for nothing")};
    const DialogLayout layout = LayOutDialog(dialog, 8, 16);
    EXPECT_EQ(layout.rowTop, (std::vector<std::int32_t>{16, 16 + 18 * 4, 16 + 18 * 2}));
    EXPECT_EQ(layout.width, 30 * 8 + 2 * 8 + 3 * 8);
}

TEST(DialogLayout, WidensToTheButtons) {
    Dialog dialog;
    dialog.buttons = {{"twelve bytes", 0}, {"twelve bytes", 1}, {"ok", 2}};
    const DialogLayout layout = LayOutDialog(dialog, 8, 16);
    EXPECT_EQ(layout.buttonWidth, (std::vector<std::int32_t>{112, 112, 32}));
    EXPECT_EQ(layout.width, 256);
}

TEST(DialogLayout, HasRoomForEveryRowThatHoldsSomethingAndForNoMoreThanThereAre) {
    Dialog dialog;
    dialog.rowCount = -5;
    dialog.rows = {Row(RowKind::Message, 4, "behind the last")};
    EXPECT_EQ(LayOutDialog(dialog, 8, 16).height, 18 * 5 + 64);
    dialog.rowCount = 2147483647;
    EXPECT_EQ(LayOutDialog(dialog, 8, 16).height, 18 * DIALOG_ROWS + 64);
}

class DialogTest : public HostTest {};

TEST_F(DialogTest, RowsHaveNoAnswerBeforeTheDialogHasRun) {
    Run([] {
        DialogOpen(Dialog{});
        DialogAddRow(Row(RowKind::Slider, 3));
        EXPECT_EQ(DialogAnswerOf(3).kind, AnswerKind::None);
        DialogRun();
        EXPECT_EQ(DialogAnswerOf(3).kind, AnswerKind::Slider);
        DialogOpen(Dialog{});
        EXPECT_EQ(DialogAnswerOf(3).kind, AnswerKind::None);
    });
}

TEST_F(DialogTest, AnswersAreKeptWhateverEndsTheDialog) {
    Run([this] {
        window.answer = [](Dialog& dialog) {
            for (DialogRow& row : dialog.rows) {
                row.value = 7;
                row.text = std::string(1023, 'a') + "表"_sjis;
            }
            return 0;
        };
        DialogOpen(Dialog{});
        DialogAddRow(Row(RowKind::Text, 0));
        DialogAddRow(Row(RowKind::Toggle, 1));
        DialogAddRow(Row(RowKind::Selection, 2));
        DialogAddRow(Row(RowKind::Message, 4));
        EXPECT_EQ(DialogRun(), 0);
        EXPECT_EQ(DialogAnswerOf(0).text, std::string(1023, 'a'));
        EXPECT_EQ(DialogAnswerOf(1).value, 7);
        EXPECT_EQ(DialogAnswerOf(2).kind, AnswerKind::Selection);
        EXPECT_EQ(DialogAnswerOf(4).kind, AnswerKind::None);
        EXPECT_EQ(DialogUnderConstruction(), nullptr);
        EXPECT_EQ(DialogRun(), 0);
    });
}

TEST_F(DialogTest, AResultOfAThousandAndMoreNumbersTheButtons) {
    Run([this] {
        std::int32_t result = 0;
        window.answer = [&result](Dialog&) { return result; };
        for (const auto& [given, wanted] : {std::pair{0, 0}, {1, 1}, {3, 3}, {1000, 0}, {1003, 3}}) {
            result = given;
            DialogOpen(Dialog{});
            EXPECT_EQ(DialogRun(), wanted);
        }
    });
}

TEST_F(DialogTest, AnInitialValueIsOneThatTheControlCanShow) {
    Run([] {
        DialogOpen(Dialog{});
        DialogRow slider = Row(RowKind::Slider, 0);
        slider.lower = 2;
        slider.upper = 9;
        slider.value = 50;
        DialogAddRow(slider);
        DialogRow list = Row(RowKind::Selection, 1);
        list.choices = {"a", "b"};
        list.value = 2;
        DialogAddRow(list);
        DialogRun();
        EXPECT_EQ(DialogAnswerOf(0).value, 9);
        EXPECT_EQ(DialogAnswerOf(1).value, 0);
    });
}

TEST_F(DialogTest, TheHandlerIsToldOfEachRowThatChanges) {
    Run([this] {
        window.answer = [](Dialog& dialog) {
            dialog.rows[1].value = 5;
            DialogChanged(dialog, dialog.rows[1].row);
            EXPECT_EQ(called, (std::vector<std::vector<std::int32_t>>{{29}}));
            EXPECT_EQ(DialogAnswerOf(29).value, 5);
            EXPECT_EQ(DialogAnswerOf(0).value, 2);  // not changed, but there
            dialog.rows[0].value = 3;
            DialogChanged(dialog, 0);
            EXPECT_EQ(DialogAnswerOf(0).value, 3);
            return 1;
        };
        Dialog dialog;
        dialog.handler = NoteHandler();
        DialogOpen(dialog);
        DialogAddRow(Row(RowKind::Slider, 0));
        DialogUnderConstruction()->rows[0].value = 2;
        DialogAddRow(Row(RowKind::Slider, 29));
        EXPECT_EQ(DialogRun(), 1);
        EXPECT_EQ(called, (std::vector<std::vector<std::int32_t>>{{29}, {0}}));
    });
}

TEST_F(DialogTest, AnswersFollowTheRowsWithoutAHandlerToo) {
    Run([this] {
        window.answer = [](Dialog& dialog) {
            dialog.rows[0].value = 5;
            DialogChanged(dialog, 0);
            EXPECT_EQ(DialogAnswerOf(0).value, 5);
            return 0;
        };
        DialogOpen(Dialog{});
        DialogAddRow(Row(RowKind::Slider, 0));
        DialogRun();
        EXPECT_TRUE(called.empty());
    });
}

// The handler is Look here, which changes rows itself as the window does when it delivers messages meanwhile.
TEST_F(DialogTest, RowsThatChangeWhileTheHandlerRunsAreToldOfOnceAfterIt) {
    Run([this] {
        int calls = 0;
        Dialog* running = nullptr;
        std::vector<std::int32_t> seen;
        look = [&] {
            EXPECT_EQ(++calls - static_cast<int>(seen.size()), 1) << "inside itself";
            if (calls == 1) {
                for (std::int32_t value = 1; value <= 3; ++value) {
                    running->rows[0].value = value;
                    DialogChanged(*running, 0);
                    DialogChanged(*running, 7);
                }
            }
            seen.push_back(DialogAnswerOf(0).value);
        };
        window.answer = [&](Dialog& dialog) {
            running = &dialog;
            DialogChanged(dialog, 0);
            EXPECT_EQ(calls, 3);
            EXPECT_FALSE(dialog.telling);
            return 0;
        };
        Dialog dialog;
        dialog.handler = FunctionFind("Look");
        DialogOpen(dialog);
        DialogAddRow(Row(RowKind::Slider, 0));
        DialogAddRow(Row(RowKind::Toggle, 7));
        DialogRun();
        EXPECT_EQ(seen, (std::vector<std::int32_t>{0, 3, 3}));
    });
}

TEST_F(DialogTest, ASecondRowReplacesTheFirstOfItsNumber) {
    Run([] {
        DialogOpen(Dialog{});
        DialogAddRow(Row(RowKind::Text, 1));
        DialogAddRow(Row(RowKind::Slider, 1));
        ASSERT_EQ(DialogUnderConstruction()->rows.size(), 1U);
        DialogRun();
        EXPECT_EQ(DialogAnswerOf(1).kind, AnswerKind::Slider);
        DialogDiscard();
        DialogAddRow(Row(RowKind::Text, 1));
        EXPECT_EQ(DialogUnderConstruction(), nullptr);
    });
}

TEST_F(DialogTest, AChosenFileHasItsDriveAndMustFit) {
    Run([this] {
        window.chosenFile = "/tmp/a b/表.suf";
        EXPECT_EQ(FileDialogRun({}), std::string("C:\\tmp\\a b\\") + "表.suf"_sjis);
        window.chosenFile = "";
        EXPECT_EQ(FileDialogRun({}), "");
        EXPECT_EQ(window.beeps, 0);
        window.chosenFile = "/tmp/\xE2\x98\x83";
        EXPECT_EQ(FileDialogRun({}), "");
        EXPECT_EQ(window.beeps, 1);
        window.chosenFile = "/" + std::string(509, 'a');
        EXPECT_EQ(FileDialogRun({}).size(), 512U);
        window.chosenFile = "/" + std::string(510, 'a');
        EXPECT_EQ(FileDialogRun({}), "");
        EXPECT_EQ(window.beeps, 2);
    });
}

}  // namespace quelmark::test
