#include "MODEL/DLOGLIB.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "host/DIALOG.h"
#include "host/TEXTCUT.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t BUTTONS_MOST = 4;
constexpr std::int32_t TEXT_WIDTH = 20;  // characters, of a field whose width is given as 0

[[noreturn]] void ReportTypes(const char* name) {
    RuntimeError("%s: 引数の型が異なります。"_sjis, name);
}

std::string TextOf(const DataCell& cell) {
    return std::string(StringText(cell));
}

// The text of an argument that must be a String; its type is reported under the function's name otherwise.
std::string RequireText(const char* name, const DataCell* argv, std::int32_t index) {
    if (!IsString(argv[index])) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, index + 1, name);
    }
    return TextOf(argv[index]);
}

bool IsFlag(const DataCell& cell) {
    return (cell.type & TYPE_FLAG) != 0;
}

// The row number of a row function; one outside the dialog's rows is the error of DlogOpen.
std::int32_t RowOf(const DataCell& cell) {
    if (cell.integer < 0 || cell.integer >= DIALOG_ROWS) {
        ReportTypes("DlogOpen");
    }
    return cell.integer;
}

void AddButton(Dialog& dialog, std::string_view label, std::int32_t result) {
    dialog.buttons.push_back({std::string(CutText(label, DIALOG_LABEL_BYTES)), result});
    dialog.acceptButton = dialog.buttons.size() - 1;
}

void AddPair(Dialog& dialog) {
    AddButton(dialog, "中止"_sjis, 0);
    AddButton(dialog, "決定"_sjis, 1);
}

void AddLabels(Dialog& dialog, std::int32_t argc, const DataCell* argv) {
    if (argc > BUTTONS_MOST) {
        ReportTypes("DlogOpen");
    }
    for (std::int32_t i = 0; i < argc; ++i) {
        if (!IsString(argv[i])) {
            ReportTypes("DlogOpen");
        }
        AddButton(dialog, StringText(argv[i]), i);
    }
}

std::int32_t DlogOpen(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 2 || !IsString(argv[0]) || argv[1].type != TYPE_INT) {
        ReportTypes("DlogOpen");
    }
    Dialog dialog;
    dialog.title = TextOf(argv[0]);
    dialog.rowCount = argv[1].integer < 0 ? 0 : std::min(argv[1].integer, DIALOG_ROWS);
    if (argc == 2) {
        AddPair(dialog);
    } else if (IsString(argv[2])) {
        AddLabels(dialog, argc - 2, argv + 2);
    } else if (argc == 3 && IsFlag(argv[2])) {
        if (argv[2].integer != 0) {
            AddPair(dialog);
        } else {
            AddButton(dialog, "確認"_sjis, 1);
        }
    } else {
        ReportTypes("DlogOpen");
    }
    DialogOpen(std::move(dialog));
    return NO_RESULT;
}

std::int32_t DlogMessage(std::int32_t, std::int32_t, DataCell* argv) {
    DialogRow row;
    row.label = RequireText("DlogMessage", argv, 1);
    row.row = RowOf(argv[0]);
    DialogAddRow(std::move(row));
    return NO_RESULT;
}

// The texts from argv on; a text that is no String is reported.
std::vector<std::string> FilterTexts(std::int32_t argc, const DataCell* argv) {
    std::vector<std::string> texts;
    for (std::int32_t i = 0; i < argc; ++i) {
        if (!IsString(argv[i])) {
            ReportTypes("DlogString");
        }
        texts.push_back(TextOf(argv[i]));
    }
    return texts;
}

std::string ExtensionOf(const std::vector<FileFilter>& filters) {
    return filters.empty() ? "" : filters.front().pattern.substr(2);  // behind "*."
}

std::int32_t DlogString(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 4 || argv[0].type != TYPE_INT || !IsString(argv[1]) || !IsString(argv[2]) ||
        argv[3].type != TYPE_INT) {
        ReportTypes("DlogString");
    }
    DialogRow row;
    row.kind = RowKind::Text;
    row.row = RowOf(argv[0]);
    row.label = TextOf(argv[1]);
    row.text = TextOf(argv[2]);
    row.width = argv[3].integer > 0 ? argv[3].integer : TEXT_WIDTH;
    row.filters = FileFilters(FilterTexts(argc - 4, argv + 4));
    row.defaultExtension = ExtensionOf(row.filters);
    DialogAddRow(std::move(row));
    return NO_RESULT;
}

std::int32_t DlogToggle(std::int32_t, std::int32_t, DataCell* argv) {
    DialogRow row;
    row.kind = RowKind::Toggle;
    row.label = RequireText("DlogToggle", argv, 1);
    row.caption = RequireText("DlogToggle", argv, 2);
    row.row = RowOf(argv[0]);
    row.value = argv[3].integer != 0 ? 1 : 0;
    DialogAddRow(std::move(row));
    return NO_RESULT;
}

std::int32_t DlogSelect(std::int32_t, std::int32_t, DataCell* argv) {
    DialogRow row;
    row.kind = RowKind::Selection;
    row.label = RequireText("DlogSelect", argv, 1);
    row.row = RowOf(argv[0]);
    const DataCell* elements = ArrayElements(argv[2]);
    bool ended = false;
    for (std::uint32_t i = 0; i < ArrayCount(argv[2]); ++i) {
        if (!IsString(elements[i])) {
            RuntimeError("%s", "引数配列の型が不正です(DlogSelect)"_sjis);
        }
        ended = ended || StringText(elements[i]).empty();
        if (!ended) {
            row.choices.push_back(TextOf(elements[i]));
        }
    }
    row.value = argv[3].integer;
    DialogAddRow(std::move(row));
    return NO_RESULT;
}

std::int32_t DlogSlider(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (!IsString(argv[1])) {
        RuntimeError("%s", "2番目の引数の型が違います。(DlogSlider)"_sjis);
    }
    const DataCell* numbers = argv + (argc == 6 ? 3 : 2);
    DialogRow row;
    row.kind = RowKind::Slider;
    row.row = RowOf(argv[0]);
    row.label = TextOf(argv[1]);
    row.value = argv[2].integer;
    row.lower = numbers[0].integer;
    row.upper = numbers[1].integer;
    row.step = numbers[2].integer;
    DialogAddRow(std::move(row));
    return NO_RESULT;
}

std::int32_t DlogEvent(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (Dialog* dialog = DialogUnderConstruction()) {
        dialog->handler = argc > 0 ? argv[0].integer : -1;
    }
    return NO_RESULT;
}

std::int32_t DlogWait(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(DialogRun());
    return RESULT;
}

std::int32_t DlogAnswer(std::int32_t, std::int32_t, DataCell* argv) {
    const DialogAnswerSlot& answer = DialogAnswerOf(RowOf(argv[0]));
    switch (answer.kind) {
        case AnswerKind::Text:
            StackPushString(answer.text);
            break;
        case AnswerKind::Toggle:
            StackPushBool(answer.value);
            break;
        case AnswerKind::Selection:
        case AnswerKind::Slider:
            StackPushInt(answer.value);
            break;
        case AnswerKind::None:
            Check(false, "FALSE");
    }
    return RESULT;
}

std::int32_t DlogFileOpen(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 2) {
        ReportTypes("DlogString");
    }
    const std::vector<std::string> texts = FilterTexts(argc, argv);
    FileDialog dialog;
    dialog.title = texts[0];
    dialog.initialName = texts[1];
    dialog.filters = FileFilters(std::span(texts).subspan(2));
    dialog.defaultExtension = ExtensionOf(dialog.filters);
    StackPushString(FileDialogRun(dialog));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "DlogOpen", DlogOpen},
    {"", "DlogMessage", DlogMessage, Takes("DlogMessage", {TYPE_INT, TYPE_OBJECT})},
    {"", "DlogString", DlogString},
    {"", "DlogToggle", DlogToggle, Takes("DlogToggle", {TYPE_INT, TYPE_OBJECT, TYPE_OBJECT, TYPE_FLAG})},
    {"", "DlogSelect", DlogSelect, Takes("DlogSelect", {TYPE_INT, TYPE_OBJECT, TYPE_ARRAY, TYPE_INT})},
    {"", "DlogSlider", DlogSlider,
     Takes("DlogSlider", {TYPE_INT, TYPE_ANY, TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT}, 5)},
    {"", "DlogEvent", DlogEvent, Takes("DlogEvent", {TYPE_FUNC}, 0)},
    {"", "DlogWait", DlogWait, Takes("DlogWait", {})},
    {"", "DlogAnswer", DlogAnswer, Takes("DlogAnswer", {TYPE_INT})},
    {"", "DlogFileOpen", DlogFileOpen},
};

}  // namespace

void DialogLibraryRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
