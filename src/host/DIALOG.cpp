#include "host/DIALOG.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <optional>

#include "ML/ERROR.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/TEXTCUT.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t BUTTON_RESULT_FIRST = 1000;  // results from here on number the buttons
constexpr std::int32_t CANCEL_RESULT = 2;           // unless a button has it

std::optional<Dialog> underConstruction;
std::array<DialogAnswerSlot, DIALOG_ROWS> answers;

AnswerKind AnswerKindOf(RowKind kind) {
    switch (kind) {
        case RowKind::Text:
            return AnswerKind::Text;
        case RowKind::Toggle:
            return AnswerKind::Toggle;
        case RowKind::Selection:
            return AnswerKind::Selection;
        case RowKind::Slider:
            return AnswerKind::Slider;
        case RowKind::Message:
            break;
    }
    return AnswerKind::None;
}

void KeepAnswer(const DialogRow& row) {
    answers[static_cast<std::size_t>(row.row)] = {
        AnswerKindOf(row.kind), std::string(CutText(row.text, DIALOG_TEXT_BYTES)), row.value};
}

// The initial value that the row's control can show.
std::int32_t Showable(const DialogRow& row) {
    if (row.kind == RowKind::Slider) {
        return std::clamp(row.value, row.lower, std::max(row.lower, row.upper));
    }
    const bool isChoice = 0 <= row.value && row.value < static_cast<std::int32_t>(row.choices.size());
    return row.kind == RowKind::Selection && !isChoice ? 0 : row.value;
}

// The answers are those of this dialog alone, even when its handler has run another one.
void KeepAnswers(const Dialog& dialog) {
    answers.fill(DialogAnswerSlot{});
    for (const DialogRow& row : dialog.rows) {
        KeepAnswer(row);
    }
}

// What scripts get for the result with which the window has ended the dialog.
std::int32_t ScriptResult(const Dialog& dialog, std::int32_t result) {
    if (result >= BUTTON_RESULT_FIRST) {
        return result - BUTTON_RESULT_FIRST;
    }
    const bool isCancel =
        result == CANCEL_RESULT &&
        std::ranges::find(dialog.buttons, result, &DialogButton::result) == dialog.buttons.end();
    return isCancel ? 0 : result;
}

std::int32_t Columns(std::string_view text) {
    return static_cast<std::int32_t>(text.size());
}

// The rows that the dialog was opened with, as far as they can hold anything, and those that hold something.
std::int32_t RowsShown(const Dialog& dialog) {
    std::int32_t count = std::clamp(dialog.rowCount, 0, DIALOG_ROWS);
    for (const DialogRow& row : dialog.rows) {
        count = std::max(count, row.row + 1);
    }
    return count;
}

}  // namespace

std::vector<FileFilter> FileFilters(std::span<const std::string> texts) {
    constexpr std::size_t ENDING = 7;  // "(*.xxx)"
    constexpr std::size_t SHORTEST = 8;
    std::vector<FileFilter> filters;
    for (const std::string& text : texts) {
        if (text.size() < SHORTEST) {
            continue;
        }
        const std::string ending = text.substr(text.size() - ENDING);
        if (ending.starts_with("(*.") && ending.ends_with(')')) {
            filters.push_back({text, ending.substr(1, ENDING - 2)});
        }
    }
    return filters;
}

DialogLayout LayOutDialog(const Dialog& dialog, std::int32_t cw, std::int32_t lh) {
    DialogLayout layout;
    layout.margin = 2 * cw;
    layout.width = 20 * cw;
    layout.height = (lh + 2) * RowsShown(dialog) + 4 * lh;
    for (const DialogRow& row : dialog.rows) {
        layout.rowTop.push_back(lh + (lh + 2) * row.row);
        if (row.kind == RowKind::Message) {
            layout.width = std::max(layout.width, Columns(row.label) * cw + layout.margin + 3 * cw);
        }
    }
    std::int32_t buttons = 0;
    for (const DialogButton& button : dialog.buttons) {
        layout.buttonWidth.push_back((Columns(button.label) + 2) * cw);
        buttons += layout.buttonWidth.back();
    }
    layout.width = std::max(layout.width, buttons);
    return layout;
}

void DialogOpen(Dialog dialog) {
    underConstruction = std::move(dialog);
    answers.fill(DialogAnswerSlot{});
}

Dialog* DialogUnderConstruction() {
    return underConstruction ? &*underConstruction : nullptr;
}

void DialogAddRow(DialogRow row) {
    if (!underConstruction) {
        return;
    }
    std::erase_if(underConstruction->rows, [&](const DialogRow& old) { return old.row == row.row; });
    row.value = Showable(row);
    underConstruction->rows.push_back(std::move(row));
}

std::int32_t DialogRun() {
    if (!underConstruction) {
        return 0;
    }
    Dialog dialog = std::move(*underConstruction);
    underConstruction.reset();
    std::fflush(stdout);
    const bool quitBefore = QuitFlag;
    const std::int32_t result = HostWindow().RunDialog(dialog);
    KeepAnswers(dialog);
    HostWindow().Deliver(0);
    HostRaiseKept();
    if (QuitFlag && !quitBefore) {
        HostUnwind();  // a dialog is a wait: its command does not go on
    }
    return ScriptResult(dialog, result);
}

bool DialogChanged(Dialog& dialog, std::int32_t row) {
    dialog.untold |= 1U << row;
    if (dialog.telling) {
        return true;
    }
    KeepAnswers(dialog);
    if (dialog.handler < 0) {
        return true;
    }
    // A slow handler lets the window system deliver messages. A row that changes meanwhile is told of when
    // the handler has come back, once, however often it has changed; the handler sees the same answers all
    // the time.
    dialog.telling = true;
    while (dialog.untold != 0 && !QuitFlag) {
        const std::int32_t next = std::countr_zero(dialog.untold);
        dialog.untold &= dialog.untold - 1;
        KeepAnswers(dialog);
        HostGuarded([&] { CallHandler(dialog.handler, {next}); });
        std::fflush(stdout);  // what it has printed is to be seen while the dialog waits
    }
    dialog.telling = false;
    return !QuitFlag;
}

void DialogReset() {
    underConstruction.reset();
    answers.fill(DialogAnswerSlot{});
}

void DialogDiscard() {
    underConstruction.reset();
}

const DialogAnswerSlot& DialogAnswerOf(std::int32_t row) {
    return answers[static_cast<std::size_t>(row)];
}

std::string FileDialogRun(const FileDialog& dialog) {
    const std::string chosen = HostWindow().RunFileDialog(dialog);
    if (chosen.empty()) {
        return "";
    }
    const auto path = ScriptPath(chosen);
    if (!path) {
        Warning("このファイル名はシフトJISで表せないので使えません。"_sjis);
        return "";
    }
    if (path->size() > FILE_DIALOG_BYTES) {
        Warning("ファイル名が長すぎます。"_sjis);
        return "";
    }
    return *path;
}

}  // namespace quelmark
