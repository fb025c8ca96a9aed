// Script paths and host paths. Scripts see one drive, "C:", whose root is the file system's root, and
// backslashes; the file system sees UTF-8 with slashes. Opening accepts `\` and `/`, with or without the
// drive, and finds a name whose ASCII letters differ in case when the exact one does not exist.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quelmark {

// The existing file or directory that a script path (cp932) means, as a host path (UTF-8); when none exists
// the path as it would be created. Nothing when the bytes are no cp932 text.
std::optional<std::string> HostPath(std::string_view scriptPath);
// A host path in drive-letter form, cp932; nothing when cp932 cannot carry it.
std::optional<std::string> ScriptPath(std::string_view hostPath);
// True when the script path names something that exists.
bool PathExists(std::string_view scriptPath);
// True when it names a directory.
bool PathIsDirectory(std::string_view scriptPath);
// A text that is another one after the file has been written to; "" when there is no such file.
std::string FileStamp(std::string_view scriptPath);
// The current directory in drive-letter form ("C:\" when it cannot be told); nothing when cp932 cannot carry
// it.
std::optional<std::string> CurrentDirectory();
// The part after the last `\` or `/`; the part up to and including it ("" when there is none).
std::string_view FileNamePart(std::string_view scriptPath);
std::string_view DirectoryPart(std::string_view scriptPath);
// True when the file name part has an extension.
bool HasExtension(std::string_view scriptPath);

struct FileClose {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileClose>;
// fopen of a script path; null when it cannot be opened, or names a directory.
FilePtr OpenFile(std::string_view scriptPath, const char* mode);
// The same for reading, of files proper only: a pipe or a device may never end, or not even open.
FilePtr OpenRegularFile(std::string_view scriptPath);
// The whole file, or nothing when it cannot be opened or read (no file proper, no permission) or is larger
// than any text can be.
std::optional<std::string> ReadWholeFile(std::string_view scriptPath);

}  // namespace quelmark
