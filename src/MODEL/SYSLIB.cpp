#include "MODEL/SYSLIB.h"

#include <cstdio>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "host/CHILD.h"
#include "host/CONFIG.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/LOOPEVENT.h"
#include "host/PANES.h"
#include "host/STARTUP.h"
#include "text/holdfile.h"
#include "text/path.h"
#include "text/sjis.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t RENDER_MARGIN = 12;

std::string_view TextOf(const DataCell& cell) {
    return IsString(cell) ? StringText(cell) : std::string_view();
}

std::int32_t Version(std::int32_t, std::int32_t, DataCell*) {
    StackPushString("1.1.1+T1.2.332");
    return RESULT;
}

std::int32_t Environ(std::int32_t, std::int32_t, DataCell*) {
    StackPushString("WINDOWS");
    return RESULT;
}

std::int32_t Quit(std::int32_t, std::int32_t, DataCell*) {
    QuitFlag = true;
    return NO_RESULT;
}

std::int32_t Child(std::int32_t, std::int32_t argc, DataCell* argv) {
    ChildStart(TextOf(argv[0]), argc > 1 && argv[1].integer != 0);
    return NO_RESULT;
}

std::int32_t WaitEvent(std::int32_t, std::int32_t, DataCell*) {
    const bool come = InputStep();
    if (TimedHandlerAllowed()) {
        TimedEventCall();
    }
    StackPushBool(come);
    return RESULT;
}

std::int32_t InputMode(std::int32_t, std::int32_t, DataCell* argv) {
    Mode = {argv[0].integer, argv[1].integer};
    return NO_RESULT;
}

std::int32_t ShowMessage(std::int32_t, std::int32_t, DataCell* argv) {
    MessageShow(TextOf(argv[0]));
    return NO_RESULT;
}

std::int32_t Beep(std::int32_t, std::int32_t, DataCell*) {
    HostWindow().Beep();
    return NO_RESULT;
}

std::int32_t GetArg(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushString(ProgramArgument(argv[0].integer));
    return RESULT;
}

std::int32_t UpdateAll(std::int32_t, std::int32_t, DataCell*) {
    ViewClear(true);
    ViewRedraw(WHOLE_AREA, true);
    for (const Pane pane : {Pane::List, Pane::Buttons, Pane::Status, Pane::Message}) {
        HostWindow().Invalidate(pane);
    }
    return NO_RESULT;
}

std::int32_t Modelrc(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 1) {
        StackPushString(ConfigValue(TextOf(argv[0])));
        return RESULT;
    }
    if (!IsString(argv[1])) {
        RuntimeError("%s", "2番目の引数の型不正です(Modelrc)"_sjis);
    }
    if (!ConfigWrite(TextOf(argv[0]), StringText(argv[1]))) {
        Warning("設定ファイルに書けません。"_sjis);
    }
    return NO_RESULT;
}

std::int32_t Hold(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(HoldFile(TextOf(argv[0])));
    return RESULT;
}

std::int32_t Stamp(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushString(FileStamp(TextOf(argv[0])));
    return RESULT;
}

template <std::int32_t PaneHandlers::*slot>
std::int32_t SetHandler(std::int32_t, std::int32_t, DataCell* argv) {
    PaneEvents.*slot = argv[0].integer;
    return NO_RESULT;
}

std::int32_t StatusBar(std::int32_t, std::int32_t argc, DataCell* argv) {
    StatusSet(argc > 1 ? argv[1].integer : 0, TextOf(argv[0]));
    return NO_RESULT;
}

std::int32_t StatusBarWidth(std::int32_t, std::int32_t, DataCell* argv) {
    StatusSetWidth(argv[0].integer, argv[1].integer);
    return NO_RESULT;
}

std::int32_t WindowTitle(std::int32_t, std::int32_t, DataCell* argv) {
    HostWindow().SetTitle(TextOf(argv[0]));
    return NO_RESULT;
}

std::int32_t RendParameter(std::int32_t, std::int32_t, DataCell*) {
    HostWindow().Deliver(0);  // the window may have a new size already
    const PixelRect all = ViewsRect();
    const PixelRect views = HostWindow().NativeRect({all.left + RENDER_MARGIN, all.top + RENDER_MARGIN,
                                                     all.right - RENDER_MARGIN, all.bottom - RENDER_MARGIN});
    char text[160];
    const int length = std::snprintf(text, sizeof text, "--inline=%lu,%d,%d -c%dx%d",
                                     static_cast<unsigned long>(HostWindow().Handle()), views.left, views.top,
                                     views.right - views.left, views.bottom - views.top);
    StackPushString({text, static_cast<std::size_t>(length)});
    PulseRest();
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "Version", Version, Takes("Version", {})},
    {"", "Environ", Environ, Takes("Environ", {})},
    {"", "Quit", Quit, Takes("Quit", {})},
    {"String", "Child", Child, Takes("Child", {TYPE_OBJECT, TYPE_FLAG, TYPE_FLAG}, 1)},
    {"", "WaitEvent", WaitEvent, Takes("WaitEvent", {})},
    {"", "InputMode", InputMode, Takes("InputMode", {TYPE_INT, TYPE_INT})},
    {"String", "Message", ShowMessage, Takes("Message", {TYPE_OBJECT})},
    {"", "Warning", Beep, Takes("Warning", {})},
    {"", "GetArg", GetArg, Takes("GetArg", {TYPE_INT})},
    {"", "UpdateAll", UpdateAll, Takes("UpdateAll", {})},
    {"String", "Modelrc", Modelrc, Takes("Modelrc", {TYPE_OBJECT, TYPE_OBJECT}, 1)},
    {"String", "HoldFile", Hold, Takes("HoldFile", {TYPE_OBJECT})},
    {"String", "FileStamp", Stamp, Takes("FileStamp", {TYPE_OBJECT})},
    {"", "ControlEvent", SetHandler<&PaneHandlers::control>, Takes("ControlEvent", {TYPE_FUNC})},
    {"", "AttrEvent", SetHandler<&PaneHandlers::attribute>, Takes("AttrEvent", {TYPE_FUNC})},
    {"", "ObjEvent", SetHandler<&PaneHandlers::object>, Takes("ObjEvent", {TYPE_FUNC})},
    {"", "CanCloseEvent", SetHandler<&PaneHandlers::canClose>, Takes("CanCloseEvent", {TYPE_FUNC})},
    {"String", "StatusBar", StatusBar, Takes("StatusBar", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"", "StatusBarWidth", StatusBarWidth, Takes("StatusBarWidth", {TYPE_INT, TYPE_INT})},
    {"", "RendParameter", RendParameter, Takes("RendParameter", {})},
    {"String", "WindowTitle", WindowTitle, Takes("WindowTitle", {TYPE_OBJECT})},
};

}  // namespace

void SystemLibraryRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
