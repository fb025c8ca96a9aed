#include "host/STARTUP.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "ML/ERROR.h"
#include "ML/ML.h"
#include "MODEL/POLY.h"
#include "host/BUTTONS.h"
#include "host/CONFIG.h"
#include "host/DIALOG.h"
#include "host/INPUT.h"
#include "host/LOG.h"
#include "host/LOOPEVENT.h"
#include "host/MENUBAR.h"
#include "host/PALETTE.h"
#include "host/PANES.h"
#include "reader/objread.h"
#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr const char* CONFIG_NAME = "Quelmark.ini";
constexpr std::int32_t KILOBYTE = 1024;

std::string programDirectory;
std::vector<std::string> argumentTexts;  // cp932, the program's path first
std::string searchPath;

struct Settings {
    InterpreterSizes interpreter;
    std::int32_t codeKilobytes = 64;
    std::int32_t bufferKilobytes = 128, objects = 16, attributes = 256, vertices = 256;
};

// Decimal conversion: text that is no number is 0; far too large numbers are cut.
std::int32_t ToNumber(const std::string& text) {
    return static_cast<std::int32_t>(
        std::clamp(std::strtol(text.c_str(), nullptr, 10), -2147483647L, 2147483647L));
}

// A number of the configuration: its place, and the most that the tables behind it can have; the least is 0.
struct NumberKey {
    std::string_view key;
    std::int32_t* place;
    std::int32_t most;
    std::string text = {};  // as the file has it
};

std::array<NumberKey, 8> NumberKeys(Settings& settings) {
    constexpr std::int32_t TABLE_MOST = 32767;
    constexpr std::int32_t KILOBYTES_MOST = INT32_MAX / KILOBYTE;
    constexpr std::int32_t STACK_MOST = 1 << 28;
    InterpreterSizes& sizes = settings.interpreter;
    return {{
        {"CodeSize", &settings.codeKilobytes, KILOBYTES_MOST},
        {"Global", &sizes.globals, TABLE_MOST},
        {"Function", &sizes.functions, TABLE_MOST},
        {"Stack", &sizes.stackCells, STACK_MOST},
        {"BufferSize", &settings.bufferKilobytes, KILOBYTES_MOST},
        {"Attr", &settings.attributes, TABLE_MOST},
        {"Object", &settings.objects, TABLE_MOST},
        {"Vertexs", &settings.vertices, TABLE_MOST},
    }};
}

Settings ReadSettings(const std::vector<std::string>& lines) {
    Settings settings;
    auto keys = NumberKeys(settings);
    for (const std::string& line : lines) {
        const auto entry = ConfigSplit(line);
        if (!entry) {
            continue;
        }
        const auto found = std::ranges::find(keys, entry->key, &NumberKey::key);
        if (found != keys.end()) {
            *found->place = ToNumber(entry->value);
            found->text = entry->value;
        } else if (entry->key == "Path") {
            searchPath = entry->value;
        }
    }
    for (const NumberKey& key : keys) {
        if (*key.place < 0 || *key.place > key.most) {
            FatalError("設定 %s の値 %s は範囲外です。(0 から %d まで)"_sjis, std::string(key.key).c_str(),
                       key.text.c_str(), key.most);
        }
    }
    settings.interpreter.codeBytes = settings.codeKilobytes * KILOBYTE;
    return settings;
}

void CompileSources(const std::vector<std::string>& lines) {
    LogWrite("\nCode Used\n");
    bool any = false;
    for (const std::string& line : lines) {
        const auto entry = ConfigSplit(line);
        if (!entry || entry->key != "SourceFile") {
            continue;
        }
        const auto name = ConfigSplit(entry->value);  // the first word alone counts
        if (!name) {
            continue;
        }
        const auto path = ConfigFind(searchPath, name->key);
        if (!path) {
            FatalError("ファイル %s が存在しません。"_sjis, name->key.c_str());
        }
        any = true;
        const std::int32_t used = CompileFile(*path);
        LogFormat("%-10s : %d\n", name->key.c_str(), used);
    }
    LogFormat("%-10s : %d\n", "Total", CodeUsed());
    if (!any) {
        FatalError("%s", "ソースファイルが読み込まれていません。"_sjis);
    }
}

// A text of the command line or the environment as cp932; one that cp932 cannot carry ends the program with a
// message that names where it came from.
std::string Carried(const std::optional<std::string>& text, const std::string& where) {
    if (!text) {
        FatalError("%s はシフトJISで表せないので使えません。"_sjis, where.c_str());
    }
    return *text;
}

void TakeCommandLine(const CommandLine& line) {
    const bool dump = !line.arguments.empty() && line.arguments[0] == "--dump";
    SetTrace(dump);
    const std::string program = Carried(ScriptPath(line.programPath), "プログラムのパス"_sjis);
    programDirectory = DirectoryPart(program);
    argumentTexts.assign(1, program);
    for (std::size_t i = dump ? 1 : 0; i < line.arguments.size(); ++i) {
        const std::string name = "引数 "_sjis + std::to_string(argumentTexts.size());
        argumentTexts.push_back(Carried(Utf8ToCp932(line.arguments[i]), name));
    }
}

// The search path in force: MODELPATH, else HOME (or home), the program directory and its subdirectories.
std::string DefaultSearchPath() {
    for (const char* name : {"MODELPATH", "HOME", "home"}) {
        if (const char* value = std::getenv(name)) {
            const std::string text = Carried(Utf8ToCp932(value), "環境変数 "_sjis + std::string(name));
            return ConfigSearchPath(name, text, programDirectory);
        }
    }
    return ConfigSearchPath("", "", programDirectory);
}

}  // namespace

void StartUp(const CommandLine& commandLine, void (*registerLibraries)()) {
    TakeCommandLine(commandLine);
    ReaderInit(programDirectory);
    searchPath = DefaultSearchPath();
    const auto path = ConfigFind(searchPath, CONFIG_NAME);
    if (!path) {
        FatalError("ファイル %s が存在しません。"_sjis, CONFIG_NAME);
    }
    const auto lines = ConfigReadLines(*path);
    if (!lines) {
        FatalError("ファイル %s がオープンできません。"_sjis, path->c_str());
    }
    const Settings settings = ReadSettings(*lines);
    InterpreterInit(settings.interpreter);
    registerLibraries();
    ConfigKeep(*path, *lines);
    CompileSources(*lines);
    ExecInit();
    PanesReset();
    PaletteInit();
    HandlersReset();
    LoopEventsReset();
    MenuBarReset();
    DialogReset();
    ButtonsReset();
    if (!ModelInit(settings.bufferKilobytes * KILOBYTE, settings.objects, settings.attributes,
                   settings.vertices)) {
        FatalError("%s", "メモリが確保できません。(ModelInit)"_sjis);
    }
    ViewInit();
}

const std::string& ProgramDirectory() {
    return programDirectory;
}

std::string ProgramArgument(std::int32_t index) {
    return 0 <= index && index < static_cast<std::int32_t>(argumentTexts.size())
               ? argumentTexts[static_cast<std::size_t>(index)]
               : std::string();
}

}  // namespace quelmark
