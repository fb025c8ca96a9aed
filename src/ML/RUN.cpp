// Entering and leaving the executor: start, calls from outside, the break check, positions and recovery.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "ML/COLD.h"
#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/FUNC.h"
#include "ML/PARSE.h"
#include "text/sjis.h"

namespace quelmark {

Frame Frames[FRAMES_MOST + 1];
Frame* CurrentFrame = Frames;

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds POLL_INTERVAL{4};
constexpr std::chrono::milliseconds LOOK_INTERVAL{1};
constexpr std::int32_t TICKS_MOST = 4096;
constexpr std::int32_t STACK_CELLS_MOST = 1 << 28;  // so that no sum of positions leaves 32 bits

BreakCheck breakCheck = nullptr;
bool traceOn = false;
Clock::time_point lastLook;
Clock::time_point lastPoll;
std::int32_t ticksGiven = 1;
ScriptFunction topLevelFunction;

// Makes room at the bottom of the stack for globals and top-level temporaries that came with code compiled
// after a run: arrays that the run left above move up, and with them every reference to their elements.
void WidenTopLevel(std::int32_t cells) {
    const std::int32_t before =
        std::min(topLevelFunction.cells, StackPtr + 1);  // a recovery may have cut it back
    const std::int32_t more = cells - before;
    if (more <= 0) {
        return;
    }
    StackAlloc(more);
    std::move_backward(StackBuf + before, StackBuf + StackPtr + 1 - more, StackBuf + StackPtr + 1);
    std::fill(StackBuf + before, StackBuf + cells, NoCell());
    for (DataCell* cell = StackBuf; cell <= StackBuf + StackPtr; ++cell) {
        if (cell->type == TYPE_ARRAY && cell->element >= static_cast<std::uint32_t>(before)) {
            cell->element += static_cast<std::uint32_t>(more);
        }
    }
    topLevelFunction.cells = cells;
}

}  // namespace

std::int32_t Ticks = 1;
std::int32_t Nesting = 0;

void ReportOverflow() {
    RuntimeError("%s", "スタックオーバーフロー！！"_sjis);
}

void SetBreakCheck(BreakCheck check) {
    breakCheck = check;
}

void ExecPoll() {
    const Clock::time_point now = Clock::now();
    // As many ticks as last about LOOK_INTERVAL, so that slow built-ins do not delay the check.
    const auto elapsed = now - lastLook;
    lastLook = now;
    if (elapsed > 2 * LOOK_INTERVAL) {
        ticksGiven = std::max(ticksGiven / 4, 1);
    } else if (elapsed < LOOK_INTERVAL) {
        ticksGiven = std::min(ticksGiven * 2, TICKS_MOST);
    }
    Ticks = ticksGiven;
    if (breakCheck == nullptr || now - lastPoll < POLL_INTERVAL) {
        return;
    }
    const bool stop = breakCheck();
    lastPoll = Clock::now();
    if (stop) {
        RuntimeError("%s", "強制終了しました"_sjis);
    }
}

void SetTrace(bool on) {
    traceOn = on;
}
bool TraceIsOn() {
    return traceOn;
}

void WriteTrace(const Instruction& trace) {
    constexpr int STATEMENT_NODE = 3;
    const auto index = static_cast<std::int32_t>(&trace - Code.data());
    const SourcePosition position = CodePositionOf(index);
    char text[512];
    std::snprintf(text, sizeof text, "EXEC[%06X][%s:%4d] : %d : %d\n",
                  static_cast<unsigned>(static_cast<std::size_t>(index) * sizeof(Instruction)),
                  position.file == nullptr ? "" : position.file, position.line, STATEMENT_NODE, trace.a);
    TraceLog(text);
}

SourcePosition ExecPosition() {
    if (CurrentFrame == Frames) {
        return {nullptr, 0};
    }
    return CodePositionOf(static_cast<std::int32_t>(CurrentFrame->at - Code.data()) - 1);
}

// In a frame, the cells between the temporaries in use and its arrays or its callee are passed over: of a
// cell at or above the callee's base, as many as stood in use below it remain.
std::int32_t ExecVisibleTop(const DataCell* argv, std::int32_t argc) {
    std::int32_t hidden = 0;
    if (CurrentFrame == Frames || Frames[1].function != &topLevelFunction) {
        hidden = topLevelFunction.cells - topLevelFunction.locals;
    }
    for (const Frame* frame = Frames + 1; frame <= CurrentFrame; ++frame) {
        const DataCell* const next = frame == CurrentFrame ? argv : frame[1].base;
        const DataCell* const behind = StackBuf + frame->top + 1;
        if (next > behind) {  // the frame's arrays lie between
            hidden += static_cast<std::int32_t>(behind - (frame->base + (frame->at - 1)->a));
        }
    }
    return static_cast<std::int32_t>(argv - StackBuf) + argc - 1 - hidden;
}

ExecMark ExecTakeMark() {
    return {StackTop(), static_cast<std::int32_t>(CurrentFrame - Frames), Nesting};
}

void ExecRecover(const ExecMark& mark) {
    CurrentFrame = Frames + mark.depth;
    Nesting = mark.nesting;
    StackRelease(std::min(mark.top, StackTop()));
}

std::int32_t ExecCall(const ScriptFunction& function, std::int32_t argc, DataCell* argv) {
    const ExecNesting guard;
    const auto first = static_cast<std::int32_t>(argv - StackBuf);
    const std::int32_t top = std::max(first + std::max(function.cells, argc) - 1, StackPtr);
    if (top > StackHighWater) {
        StackRaiseHighWater(top);
    }
    if (CurrentFrame == Frames + FRAMES_MOST) {
        ReportOverflow();
    }
    if (argc > function.locals) {
        ReleaseSurplus(argv + function.locals, argv + argc);
    }
    std::fill(argv + std::min(argc, function.locals), argv + function.locals, NoCell());
    *++CurrentFrame = {function.code, argv, &function, argv, top, StackPtr};
    StackPtr = top;
    const std::int32_t status = Execute();
    StackPtr = first - (status == RESULT ? 0 : 1);
    return status;
}

void ExecInit(std::int32_t stackCells) {
    ExecExit();
    StackInit(std::min(stackCells, STACK_CELLS_MOST));
    WidenTopLevel(GlobalsUsed());
}

void ExecExit() {
    StackFree();
    CurrentFrame = Frames;
    Nesting = 0;
    ticksGiven = Ticks = 1;
    topLevelFunction = ScriptFunction{};
}

void ExecTopLevel() {
    CodeEmit({Opcode::END});
    const std::int32_t start = TopLevel.start;
    TopLevel.start = CodeHere();
    const std::int32_t globalsBefore = topLevelFunction.locals;
    topLevelFunction.locals = GlobalsUsed();
    CodeSettleSlots(start, topLevelFunction.locals);
    WidenTopLevel(topLevelFunction.locals + TopLevel.temporaries);
    // What were temporaries may be new globals now.
    for (std::int32_t cell = globalsBefore; cell < topLevelFunction.locals; ++cell) {
        StackBuf[cell] = NoCell();
    }
    const ExecNesting guard;
    *++CurrentFrame = {Code.data() + start,        StackBuf, &topLevelFunction, nullptr,
                       topLevelFunction.cells - 1, StackPtr};
    Execute();
}

}  // namespace quelmark
