// Shows a dialog's rows with the window library's controls.
#pragma once

#include <QWidget>
#include <functional>

#include "host/DIALOG.h"

namespace quelmark {

// Fills in the rows' answers; the result of the button pressed, 0 when cancelled. `changed` is told of each
// row that the user changes, when all rows hold what their controls show.
std::int32_t QtRunDialog(QWidget* parent, Dialog& dialog,
                         const std::function<bool(std::int32_t row)>& changed);

}  // namespace quelmark
