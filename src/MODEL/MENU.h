// The script class Menu and the functions of the menu bar.
#pragma once

namespace quelmark {

void MenuLibraryRegister();

}  // namespace quelmark
