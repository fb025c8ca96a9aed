// Registers every built-in function group above the interpreter, in the order that scripts may rely on.
#pragma once

namespace quelmark {

void ModelLibrariesRegister();

}  // namespace quelmark
