// The class File and the functions on paths: scripts' own text files.
#pragma once

namespace quelmark {

void FileRegister();

}  // namespace quelmark
