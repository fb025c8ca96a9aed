// Script functions of the button panel.
#pragma once

namespace quelmark {

void ButtonLibraryRegister();

}  // namespace quelmark
