// Writing a file so that what was there before is never lost to a full disk, a killed process or a folder
// without permission.
#pragma once

#include <string_view>

namespace quelmark {

enum class SaveResult { saved, notOpened, notWritten };

// Replaces the file with `bytes`: they go to a sibling in the same folder, which takes the file's place only
// when it is complete. What is no regular file (a device, a pipe) is written directly.
SaveResult SaveReplacing(std::string_view scriptPath, std::string_view bytes);
// True for a regular file that begins with a UTF-8 byte order mark.
bool BeginsWithUtf8Mark(std::string_view scriptPath);
// Adds `bytes` at the end. When they cannot be written whole, the file has its old length again.
SaveResult SaveAppending(std::string_view scriptPath, std::string_view bytes);

}  // namespace quelmark
