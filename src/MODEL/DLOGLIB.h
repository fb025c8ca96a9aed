// Script functions of dialogs.
#pragma once

namespace quelmark {

void DialogLibraryRegister();

}  // namespace quelmark
