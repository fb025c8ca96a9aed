// Dialogs that scripts build row by row: the one dialog under construction as plain data, its layout, and the
// answers of its rows, which outlive it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quelmark {

inline constexpr std::int32_t DIALOG_ROWS = 30;
inline constexpr std::size_t DIALOG_LABEL_BYTES = 15;
inline constexpr std::size_t DIALOG_TEXT_BYTES = 1024;
inline constexpr std::size_t FILE_DIALOG_BYTES = 512;

// A filter of a file dialog: "形状ファイル(*.suf)" and "*.suf".
struct FileFilter {
    std::string text;
    std::string pattern;
};
// The filters among the texts: those of at least 8 bytes that end in "(*.xxx)".
std::vector<FileFilter> FileFilters(std::span<const std::string> texts);

struct FileDialog {
    std::string title;
    std::string initialName;  // script path
    std::vector<FileFilter> filters;
    std::string defaultExtension;  // of the first filter, without the dot; added to a name that has none
};

enum class RowKind : std::uint8_t { Message, Text, Toggle, Selection, Slider };

// One row. The label stands at the left (of a message: the text itself). The window shows `text` or `value`
// at first and leaves the answer there.
struct DialogRow {
    RowKind kind = RowKind::Message;
    std::int32_t row = 0;
    std::string label;
    std::string caption;              // Toggle: beside the box
    std::string text;                 // Text: the field's contents
    std::int32_t value = 0;           // Toggle: 0 or 1; Selection: index; Slider: value
    std::int32_t width = 0;           // Text: of the field, in characters
    std::vector<FileFilter> filters;  // Text: a file name field with a button that browses
    std::string defaultExtension;
    std::vector<std::string> choices;             // Selection
    std::int32_t lower = 0, upper = 0, step = 1;  // Slider; its number is shown with "%6d"
};

struct DialogButton {
    std::string label;
    std::int32_t result = 0;
};

struct Dialog {
    std::string title;
    std::int32_t rowCount = 0;
    std::vector<DialogRow> rows;
    std::vector<DialogButton> buttons;
    std::size_t acceptButton = 0;  // pressed by Enter; Escape ends with 0
    std::int32_t handler = -1;     // a script's, told of each row that the user changes
    std::uint32_t untold = 0;      // rows changed that it is still to be told of, a bit each
    bool telling = false;          // it is running
};

// The least that a dialog takes, in pixels, for characters cw wide and lines lh high. Under the rows three
// lines are left for the buttons.
struct DialogLayout {
    std::int32_t width = 0, height = 0;
    std::int32_t margin = 0;                // left of the rows
    std::vector<std::int32_t> rowTop;       // of each row in Dialog::rows
    std::vector<std::int32_t> buttonWidth;  // of each button
};
DialogLayout LayOutDialog(const Dialog& dialog, std::int32_t cw, std::int32_t lh);

// What a row answered when its dialog closed.
enum class AnswerKind : std::uint8_t { None, Text, Toggle, Selection, Slider };
struct DialogAnswerSlot {
    AnswerKind kind = AnswerKind::None;
    std::string text;
    std::int32_t value = 0;
};

// A new dialog under construction, in place of one that is there; every answer is forgotten.
void DialogOpen(Dialog dialog);
// The dialog under construction, or null.
Dialog* DialogUnderConstruction();
// Adds a row; it has no answer until the dialog has run. A row that stands already is replaced.
void DialogAddRow(DialogRow row);
// Runs the dialog under construction modally and keeps the answers; 0 when there is none. A result of 1000 or
// more is reduced by 1000; 2 is 0 when no button has it. An error in the dialog's handler is raised when the
// dialog has closed.
std::int32_t DialogRun();
// The window tells of a row that the user has changed; every row holds what its control shows. The answers
// are then those of this moment, and the dialog's handler is called. False when the handler has ended the
// program: the dialog is to be closed.
bool DialogChanged(Dialog& dialog, std::int32_t row);
void DialogReset();
// Without a dialog under construction again (after an error).
void DialogDiscard();
// Requires 0 <= row < DIALOG_ROWS.
const DialogAnswerSlot& DialogAnswerOf(std::int32_t row);
// Runs a file dialog at once: the chosen path in drive-letter form, "" when cancelled. A name that cp932
// cannot carry is refused with a message.
std::string FileDialogRun(const FileDialog& dialog);

}  // namespace quelmark
