// Script functions that read shape files.
#pragma once

namespace quelmark {

void FileLibraryRegister();

}  // namespace quelmark
