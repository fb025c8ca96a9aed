#include "host/LOOPEVENT.h"

#include <algorithm>
#include <deque>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t timedHandler = -1;
std::uint32_t interval = 0;
std::uint32_t lastCall = 0;
std::int32_t dropHandler = -1;
std::int32_t errorHandler = -1;
std::deque<std::string> dropped;

void CallDropHandler(const std::string& hostPath) {
    if (dropHandler < 0) {
        return;
    }
    const auto path = ScriptPath(hostPath);
    if (!path) {
        Warning("このファイル名はシフトJISで表せないので使えません。"_sjis);
        return;
    }
    DataCell* mark = StackTop();
    StackPushString(*path);
    CallFunction(dropHandler, 1, mark + 1);
    StackRelease(mark);
}

std::uint32_t TimeLeft() {
    return interval - std::min(HostWindow().Milliseconds() - lastCall, interval);
}

// The interval begins anew when the handler has come back, so that one that takes long leaves time for input;
// also when it has failed.
void CallTimedHandler() {
    struct Restart {
        ~Restart() { lastCall = HostWindow().Milliseconds(); }
    };
    const Restart restart;
    CallHandler(timedHandler, {});
}

}  // namespace

void LoopEventsReset() {
    timedHandler = dropHandler = errorHandler = -1;
    dropped.clear();
}

void SetTimedHandler(std::int32_t handler, std::int32_t milliseconds) {
    timedHandler = handler;
    interval = static_cast<std::uint32_t>(std::max(milliseconds, 1));
    lastCall = HostWindow().Milliseconds();
}

void SetDropHandler(std::int32_t handler) {
    dropHandler = handler;
}

void SetAfterErrorHandler(std::int32_t handler) {
    errorHandler = handler;
}

bool DropWanted() {
    return dropHandler >= 0;
}

void DropPut(std::string path) {
    if (DropWanted()) {
        dropped.push_back(std::move(path));
    }
}

std::int32_t LoopEventWait(std::int32_t most) {
    if (ButtonHeld()) {
        return most;
    }
    return dropped.empty() ? TimedEventWait(most) : 0;
}

std::int32_t TimedEventWait(std::int32_t most) {
    return timedHandler < 0 || ButtonHeld()
               ? most
               : static_cast<std::int32_t>(std::min(TimeLeft(), static_cast<std::uint32_t>(most)));
}

void TimedEventCall() {
    if (timedHandler >= 0 && TimeLeft() == 0 && !ButtonHeld() && !QuitFlag) {
        CallTimedHandler();
    }
}

void LoopEventCall() {
    if (!dropped.empty() && !ButtonHeld() && !QuitFlag) {
        const std::string path = std::move(dropped.front());
        dropped.pop_front();
        CallDropHandler(path);
    }
    TimedEventCall();
}

void ErrorEventCall() {
    CallHandler(errorHandler, {});
}

}  // namespace quelmark
