#include "host/HOST.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/ML.h"
#include "MODEL/POLY.h"
#include "host/BUTTONS.h"
#include "host/CONFIG.h"
#include "host/INPUT.h"
#include "host/LOG.h"
#include "host/LOOPEVENT.h"
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
constexpr std::int32_t HELD_INTERVAL = 20;
constexpr std::int32_t KILOBYTE = 1024;

Window* window = nullptr;
std::string programDirectory;
std::vector<std::string> argumentTexts;  // cp932, the program's path first
std::string searchPath;
bool handlersInstalled = false;
bool started = false;
bool failed = false;         // an error has been reported
bool askingToClose = false;  // the can-close handler is running
bool errorKept = false;      // raised inside the window system, not yet in the wait step

struct Settings {
    InterpreterSizes interpreter;
    std::int32_t codeKilobytes = 64;
    std::int32_t bufferKilobytes = 128, objects = 16, attributes = 256, vertices = 256;
};

// ---- messages ----

void OnError(std::string_view message) {
    failed = true;
    if (!handlersInstalled) {
        TerminalShow(message);
    } else {
        window->Beep();
        MessageShow(message);
    }
    throw ScriptAbort{};
}

int OnWarning(std::string_view message) {
    window->Beep();
    MessageAdd(message);
    return 0;
}

// ---- start-up ----

// Decimal conversion: text that is no number is 0; far too large numbers are cut.
std::int32_t ToNumber(const std::string& text) {
    return static_cast<std::int32_t>(
        std::clamp(std::strtol(text.c_str(), nullptr, 10), -2147483647L, 2147483647L));
}

// A number of the configuration: its place, the least and the most that the tables behind it can have.
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

bool BreakWanted() {
    std::fflush(stdout);  // what a script prints is to be seen while it runs
    const bool wanted = window->TakeBreakKey();
    PanesRefresh();
    if (!wanted && window->TakeCloseRequest()) {
        HostCloseRequested();
        if (QuitFlag) {
            HostUnwind();  // a script that never waits would keep the window open
        }
    }
    return wanted;
}

// The reader's question in the middle of a file. What was pressed before the reading began has been taken by
// the command that reads, so an Escape that waits is meant for it.
bool EscapeWanted() {
    const bool wanted = window->TakeEscapeKey();
    PanesRefresh();
    return wanted;
}

// A text of the command line or the environment as cp932; one that cp932 cannot carry ends the program with a
// message that names where it came from.
std::string Carried(const std::optional<std::string>& text, const std::string& where) {
    if (!text) {
        FatalError("%s はシフトJISで表せないので使えません。"_sjis, where.c_str());
    }
    return *text;
}

struct CommandLine {
    const std::string& programPath;
    const std::vector<std::string>& arguments;
};

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

// Everything up to the scripts' first statement.
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
    ModelInit(settings.bufferKilobytes * KILOBYTE, settings.objects, settings.attributes, settings.vertices);
    if (BufTop == nullptr || AttrRevision == 0) {
        FatalError("%s", "メモリが確保できません。(ModelInit)"_sjis);
    }
    ViewInit();
    ViewSetDamageHook([](const PixelRect& rect) { window->InvalidateFrame(rect); });
    HostResized();
    SetBreakCheck(BreakWanted);
    ReaderSetCancelCheck(EscapeWanted);
}

// ---- running ----

// What an abandoned handler leaves open.
void CloseOpenInteraction() {
    DialogDiscard();
    ButtonsRelease();
    PressSpend();
    MenuPopAll();
}

// Runs one pass of something that may fail: false when an error or a quit has unwound it.
template <class Pass>
bool Guarded(const ExecMark& base, Pass pass) {
    try {
        pass();
    } catch (const ScriptAbort&) {
        ExecRecover(base);
        CloseOpenInteraction();
        return false;
    } catch (const std::bad_alloc&) {
        MessageShow("メモリが足りません。"_sjis);
        ExecRecover(base);
        CloseOpenInteraction();
        return false;
    }
    ExecRecover(base);
    return true;
}

void EventLoop(const ExecMark& base) {
    while (!QuitFlag) {
        Guarded(base, [] {
            const bool come = InputStep(Waiting::EventLoop);
            if (Input.keyCode != 0) {
                DispatchKey();
            }
            if (Input.wheel != 0) {
                CallHandler(Handlers.wheel, {Input.wheel, Input.shift});
            }
            if (come) {
                CallHandler(Handlers.input, {Input.shift});
            }
            LoopEventCall();
        });
    }
}

void RunScripts() {
    handlersInstalled = true;
    QuitFlag = false;
    ExecTopLevel();
    ViewEnableDrawing(true);
    ViewRedraw(WHOLE_AREA, true);
    started = true;
    PanesRefresh();
    const ExecMark base = ExecTakeMark();
    const std::int32_t entry = FunctionFind("main");
    if (entry >= 0 && IsScriptFunction(entry)) {
        Guarded(base, [entry] {
            if (!QuitFlag) {
                CallFunction(entry, 0, StackTop() + 1);
            }
        });
    } else {
        EventLoop(base);
    }
}

void UsageReport() {
    LogFormat("Code Used  : %d Kbytes\n", CodeUsed() / KILOBYTE + 1);
    LogFormat("Stack Used : %d\n", StackMaxUsed());
    LogFormat("Globals    : %d\n", GlobalsUsed());
    LogFormat("Functions  : %d\n", FunctionsUsed());
    LogWrite("Quelmark 1.1.1\n");
}

void ShutDown() {
    ViewEnableDrawing(false);
    ViewSetDamageHook(nullptr);
    ModelExit();
    ViewExit();
    UsageReport();
}

// Unwound before the scripts had run to their end: by an error, or by a wait that found no input left.
int EndEarly() {
    if (failed) {
        if (handlersInstalled) {
            UsageReport();
        }
        return 1;
    }
    ShutDown();
    return 0;
}

int Run(const CommandLine& commandLine, void (*registerLibraries)()) {
    try {
        StartUp(commandLine, registerLibraries);
        RunScripts();
    } catch (const ScriptAbort&) {
        return EndEarly();
    } catch (const std::bad_alloc&) {
        failed = true;
        TerminalShow("メモリが足りません。"_sjis);
        return EndEarly();
    }
    ShutDown();
    return 0;
}

}  // namespace

int HostMain(Window& mainWindow, const std::string& programPath, const std::vector<std::string>& arguments,
             void (*registerLibraries)()) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file at its limit is a write that fails, not the program's end
    window = &mainWindow;
    handlersInstalled = started = askingToClose = errorKept = failed = false;
    QuitFlag = false;
    LogOpen(programPath);
    SetOutputSink(OutputWrite);
    SetTraceSink(LogWrite);
    SetErrorHandlers([](std::string_view message) { OnError(message); }, OnWarning);
    const int status = Run({programPath, arguments}, registerLibraries);
    std::fflush(stdout);
    SetBreakCheck(nullptr);
    ReaderSetCancelCheck(nullptr);
    InterpreterExit();
    return status;
}

Window& HostWindow() {
    return *window;
}

void HostResized() {
    if (window == nullptr) {
        return;  // the window is being made
    }
    ViewLayout(ViewsRect().right, ViewsRect().bottom, window->LineHeight());
    window->Invalidate(Pane::List);
    window->Invalidate(Pane::Buttons);
    window->Invalidate(Pane::Status);
    window->Invalidate(Pane::Message);
}

const std::string& HostProgramDirectory() {
    return programDirectory;
}

std::string HostArgument(std::int32_t index) {
    return 0 <= index && index < static_cast<std::int32_t>(argumentTexts.size())
               ? argumentTexts[static_cast<std::size_t>(index)]
               : std::string();
}

void HostCloseRequested() {
    if (QuitFlag || askingToClose) {
        return;
    }
    if (PaneEvents.canClose < 0) {
        QuitFlag = true;
        return;
    }
    askingToClose = true;
    bool close = false;
    HostGuarded([&close] { close = CallHandler(PaneEvents.canClose, {0}); });
    askingToClose = false;
    QuitFlag = QuitFlag || close;  // the handler itself may have called Quit
    HostRaiseKept();
}

void HostGuarded(const std::function<void()>& work) {
    const ExecMark mark = ExecTakeMark();
    try {
        work();
    } catch (const ScriptAbort&) {
        ExecRecover(mark);
        errorKept = true;
    } catch (const std::bad_alloc&) {
        ExecRecover(mark);
        MessageShow("メモリが足りません。"_sjis);
        errorKept = failed = true;
    }
}

void HostRaiseKept() {
    if (errorKept) {
        errorKept = false;
        HostUnwind();
    }
}

void HostUnwind() {
    throw ScriptAbort{};
}

void HostDeliverHeld() {
    window->Deliver(HELD_INTERVAL);
    const InputState now = TakeInput();
    QuitFlag = QuitFlag || now.finished;
    if (now.closeRequested) {
        HostCloseRequested();
    }
    if (now.keyCode != 0) {
        KeyPutBack(now.keyCode, now.shift);
    }
    Input.left = now.left;
    Input.right = now.right;
    Input.x = now.x;
    Input.y = now.y;
}

}  // namespace quelmark
