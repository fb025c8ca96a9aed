#include "host/HOST.h"

#include <csignal>
#include <cstdio>
#include <new>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/ML.h"
#include "MODEL/POLY.h"
#include "host/BUTTONS.h"
#include "host/INPUT.h"
#include "host/LOG.h"
#include "host/LOOPEVENT.h"
#include "host/PANES.h"
#include "host/STARTUP.h"
#include "reader/objread.h"
#include "text/sjis.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t HELD_INTERVAL = 20;
constexpr std::int32_t KILOBYTE = 1024;

Window* window = nullptr;
bool handlersInstalled = false;
bool failed = false;         // an error has been reported
bool askingToClose = false;  // the can-close handler is running
bool errorKept = false;      // raised inside the window system, not yet in the wait step

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

// ---- what a running script asks now and then ----

bool BreakWanted() {
    std::fflush(stdout);  // what a script prints is to be seen while it runs
    const bool wanted = window->TakeBreakKey();
    PulseOn();
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
    PulseOn();
    PanesRefresh();
    return wanted;
}

// ---- running ----

// The hooks by which lower layers reach the window.
void ConnectLayers() {
    ViewSetDamageHook([](const PixelRect& rect) {
        PulseGoOn();
        window->InvalidateFrame(rect);
    });
    HostResized();
    SetBreakCheck(BreakWanted);
    ReaderSetCancelCheck(EscapeWanted);
}

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
        const bool done = Guarded(base, [] {
            const bool come = InputStep(Waiting::EventLoop);
            const std::int32_t wheel = Input.wheel;  // the key's handler may wait itself
            if (Input.keyCode != 0) {
                DispatchKey();
            }
            if (wheel != 0) {
                CallHandler(Handlers.wheel, {wheel, Input.shift});
            }
            if (come) {
                CallHandler(Handlers.input, {Input.shift});
            }
            LoopEventCall();
        });
        if (!done && !QuitFlag) {
            Guarded(base, ErrorEventCall);
        }
    }
}

void RunScripts() {
    handlersInstalled = true;
    QuitFlag = false;
    ExecTopLevel();
    ViewEnableDrawing(true);
    ViewRedraw(WHOLE_AREA, true);
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
        ConnectLayers();
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
    handlersInstalled = askingToClose = errorKept = failed = false;
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
    if (now.keyCode != 0) {
        KeyPutBack(now.keyCode, now.shift);
    }
    Input.left = now.left;
    Input.right = now.right;
    Input.x = now.x;
    Input.y = now.y;
}

}  // namespace quelmark
