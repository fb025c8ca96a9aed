// The file-selection dialog, with the window library's controls.
#pragma once

#include <QWidget>
#include <string>

#include "host/DIALOG.h"

namespace quelmark {

// A host path (UTF-8), "" when cancelled.
std::string QtRunFileDialog(QWidget* parent, const FileDialog& dialog);

}  // namespace quelmark
