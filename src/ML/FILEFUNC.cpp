#include "ML/FILEFUNC.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STDFUNC.h"
#include "ML/STRING.h"
#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::size_t LINE_BYTES = 2048;  // the NUL included
constexpr std::size_t DIRECTORY_BYTES = 1023;

std::int32_t fileClass = -1;

struct FileData {
    std::FILE* stream;  // null once closed
    std::int32_t reading;
};

FileData& DataOf(const DataCell& cell) {
    Check(IsInstance(cell, fileClass), "buf[0] is a File");
    return ObjectData<FileData>(cell);
}

void CloseStream(ObjectBlock* block) {
    auto& file = *reinterpret_cast<FileData*>(block->Data());
    if (file.stream != nullptr) {
        std::fclose(file.stream);
        file.stream = nullptr;
    }
}

std::string_view PathText(const DataCell& cell) {
    return IsString(cell) ? StringText(cell) : std::string_view();
}

// ---- paths ----

// Appends the components of a path, resolving ".\" and "..\"; never climbs past the drive.
void AppendComponents(std::string& result, std::string_view path) {
    while (!path.empty()) {
        const std::size_t separator = FindFirstOf(path, "\\");
        if (separator == std::string_view::npos) {
            result += path;
            return;
        }
        const std::string_view component = path.substr(0, separator);
        path.remove_prefix(separator + 1);
        if (component == "..") {
            const std::size_t previous =
                FindLastOf(std::string_view(result).substr(0, result.size() - 1), "\\");
            if (previous != std::string::npos) {
                result.resize(previous + 1);
            }
        } else if (component != ".") {
            result += component;
            result += '\\';
        }
    }
}

std::string CurrentDirectoryName() {
    const auto name = CurrentDirectory();
    if (!name) {
        RuntimeError("%s", "現在のディレクトリの名前はシフトJISで表せないので使えません。"_sjis);
    }
    return *name;
}

std::string FullPath(std::string_view given) {
    std::string path(given);
    ReplaceCharacter(path, '/', '\\');
    std::string result = "C:";
    if (path.size() >= 2 && path[1] == ':') {
        result[0] = path[0] >= 'a' && path[0] <= 'z' ? static_cast<char>(path[0] - ('a' - 'A')) : path[0];
        path.erase(0, 2);
    }
    result += '\\';
    if (path.starts_with('\\')) {
        path.erase(0, 1);
    } else {
        std::string current = CurrentDirectoryName().substr(3);
        if (!current.empty() && !current.ends_with('\\')) {
            current += '\\';
        }
        result += current;
    }
    AppendComponents(result, path);
    return result;
}

std::int32_t FullPathOf(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushString(FullPath(PathText(argv[0])));
    return RESULT;
}

std::int32_t Delete(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0) {
        if (const auto path = HostPath(PathText(argv[0]))) {
            ::unlink(path->c_str());
        }
    }
    return NO_RESULT;
}

std::int32_t Directory(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        StackPushString(CurrentDirectoryName().substr(0, DIRECTORY_BYTES));
        return RESULT;
    }
    ArgCheck("dir", argc, argv, {TYPE_OBJECT});
    if (!IsString(argv[0])) {
        RuntimeError("%s", "引数の型が違います。(dir)"_sjis);
    }
    if (const auto path = HostPath(StringText(argv[0])); path && ::chdir(path->c_str()) != 0) {
        return NO_RESULT;  // a directory that is not there changes nothing
    }
    return NO_RESULT;
}

// ---- files ----

// The texts of the values, made before anything is opened or written.
std::string JoinedTexts(std::int32_t argc, const DataCell* argv) {
    std::string text;
    WriteTexts(argc, argv, [&text](std::string_view part) { text += part; });
    return text;
}

std::int32_t AppendPrinted(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        return NO_RESULT;
    }
    const std::string text = JoinedTexts(argc - 1, argv + 1);
    if (const FilePtr file = OpenFile(PathText(argv[0]), "a")) {
        std::fwrite(text.data(), 1, text.size(), file.get());
    }
    return NO_RESULT;
}

bool IsMode(std::string_view mode) {
    return !mode.empty() && std::string_view("rwaRWA").find(mode[0]) != std::string_view::npos &&
           mode.substr(1).find_first_not_of("bt+") == std::string_view::npos && mode.size() <= 3;
}

std::int32_t Open(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        ArgCheck("fileopen", argc, argv, {TYPE_OBJECT, TYPE_OBJECT});
    }
    std::string mode = argc > 1 ? std::string(PathText(argv[1])) : "r";
    if (argc < 1 || !IsMode(mode)) {
        StackPushBool(0);
        return RESULT;
    }
    std::erase(mode, 't');
    mode[0] = static_cast<char>(mode[0] | 0x20);
    FilePtr file = OpenFile(PathText(argv[0]), mode.c_str());
    if (!file) {
        StackPushBool(0);
        return RESULT;
    }
    ObjectBlock* block = ObjectAlloc(sizeof(FileData), fileClass);
    *reinterpret_cast<FileData*>(block->Data()) = {file.release(), mode[0] == 'r' ? 1 : 0};
    StackPushObject(block);
    return RESULT;
}

std::int32_t PushGood(const FileData& file) {
    StackPushBool(file.stream != nullptr && std::ferror(file.stream) == 0);
    return RESULT;
}

std::int32_t PutTexts(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string text = JoinedTexts(argc - 1, argv + 1);
    const FileData& file = DataOf(argv[0]);
    if (file.stream != nullptr) {
        std::fwrite(text.data(), 1, text.size(), file.stream);
    }
    return PushGood(file);
}

std::int32_t GetLine(std::int32_t, std::int32_t, DataCell* argv) {
    const FileData& file = DataOf(argv[0]);
    char line[LINE_BYTES];
    if (file.stream == nullptr || std::fgets(line, sizeof line, file.stream) == nullptr) {
        StackPushBool(0);
    } else {
        StackPushString(line);
    }
    return RESULT;
}

std::int32_t PutByte(std::int32_t, std::int32_t, DataCell* argv) {
    const FileData& file = DataOf(argv[0]);
    if (file.stream != nullptr && file.reading == 0) {
        std::fputc(argv[1].integer & 0xFF, file.stream);
    }
    return PushGood(file);
}

std::int32_t GetByte(std::int32_t, std::int32_t, DataCell* argv) {
    const FileData& file = DataOf(argv[0]);
    StackPushInt(file.stream == nullptr ? -1 : std::fgetc(file.stream));
    return RESULT;
}

std::int32_t Close(std::int32_t, std::int32_t, DataCell* argv) {
    FileData& file = DataOf(argv[0]);
    bool good = file.stream != nullptr && std::ferror(file.stream) == 0;
    if (file.stream != nullptr) {
        good = std::fclose(file.stream) == 0 && good;
        file.stream = nullptr;
    }
    StackPushBool(good);
    return RESULT;
}

// "fullpath" and "fileputc" report their arguments under borrowed names: scripts know them so.
constexpr BuiltIn FUNCTIONS[] = {
    {"String", "fullpath", FullPathOf, Takes("toupper", {TYPE_OBJECT})},
    {"String", "delete", Delete},
    {"String", "fprint", AppendPrinted},
    {"String", "fileopen", Open},
    {"", "dir", Directory},
    {"File", "fileputs", PutTexts},
    {"File", "filegets", GetLine},
    {"File", "fileputc", PutByte, Takes("filegetc", {TYPE_OBJECT, TYPE_INT})},
    {"File", "filegetc", GetByte},
    {"File", "fileclose", Close},
};

}  // namespace

void FileRegister() {
    fileClass = ClassRegister("File", 0);
    SetObjectDestructor(fileClass, CloseStream);
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
