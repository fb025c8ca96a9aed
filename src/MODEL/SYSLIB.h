// Script functions that control the host itself.
#pragma once

namespace quelmark {

void SystemLibraryRegister();

}  // namespace quelmark
