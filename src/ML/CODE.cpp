#include "ML/CODE.h"

#include <algorithm>
#include <exception>

#include "ML/ERROR.h"
#include "ML/SCAN.h"
#include "text/sjis.h"

namespace quelmark {

std::deque<ScriptFunction> ScriptFunctions;
std::vector<Instruction> Code;

namespace {

struct Position {
    std::int32_t index;
    std::int32_t line;
    const char* file;
};

std::vector<Position> positions;  // in the order of index
std::size_t roomForCode = 0;

struct OpcodeRow {
    const char* name;
    const char* slots;
};
constexpr OpcodeRow OPCODES[] = {
#define QUELMARK_ROW(name, slots, meaning) {#name, slots},
    QUELMARK_OPCODES(QUELMARK_ROW)
#undef QUELMARK_ROW
};

std::uint16_t Settled(std::uint16_t slot, std::int32_t locals) {
    return (slot & TEMPORARY) == 0 ? slot : static_cast<std::uint16_t>(locals + (slot & ~TEMPORARY));
}

}  // namespace

void CodeInit(std::int32_t bytes) {
    CodeExit();
    roomForCode = static_cast<std::size_t>(std::max(bytes, 0)) / sizeof(Instruction);
    try {
        Code.reserve(roomForCode);
    } catch (const std::exception&) {
        FatalError("%s", "内部コード用バッファが確保できません。！！"_sjis);
    }
}

void CodeExit() {
    Code = std::vector<Instruction>();
    positions.clear();
    ScriptFunctions.clear();
    roomForCode = 0;
}

std::int32_t CodeEmit(const Instruction& instruction) {
    if (Code.size() >= roomForCode) {
        CodeReportFull();
    }
    Code.push_back(instruction);
    return CodeHere() - 1;
}

std::size_t CodeRoom() {
    return roomForCode;
}

void CodeReportFull() {
    FatalError("%s", "内部コード用バッファがオーバフローしました。！！"_sjis);
}

std::int32_t CodeHere() {
    return static_cast<std::int32_t>(Code.size());
}

void CodePatch(std::int32_t index, std::int32_t target) {
    Code[static_cast<std::size_t>(index)].jump = target - (index + 1);
}

void CodePosition(std::int32_t line) {
    const std::int32_t index = CodeHere();
    if (!positions.empty() && positions.back().index == index) {
        positions.back() = {index, line, ScanFileName()};
    } else {
        positions.push_back({index, line, ScanFileName()});
    }
}

SourcePosition CodePositionOf(std::int32_t index) {
    const auto behind =
        std::upper_bound(positions.begin(), positions.end(), index,
                         [](std::int32_t wanted, const Position& row) { return wanted < row.index; });
    if (behind == positions.begin()) {
        return {nullptr, 0};
    }
    return {(behind - 1)->file, (behind - 1)->line};
}

std::vector<Instruction> CodeCut(std::int32_t start) {
    std::vector<Instruction> cut(Code.begin() + start, Code.end());
    CodeDiscard(start);
    return cut;
}

void CodeDiscard(std::int32_t start) {
    Code.resize(static_cast<std::size_t>(start), Instruction{Opcode::END});
    while (!positions.empty() && positions.back().index >= start) {
        positions.pop_back();
    }
}

void CodePaste(const std::vector<Instruction>& instructions) {
    for (const Instruction& instruction : instructions) {
        CodeEmit(instruction);
    }
}

void CodeSettleSlots(std::int32_t start, std::int32_t locals) {
    for (auto index = static_cast<std::size_t>(start); index < Code.size(); ++index) {
        Instruction& instruction = Code[index];
        const char* slots = OPCODES[static_cast<std::size_t>(instruction.op)].slots;
        instruction.a = slots[0] == 's' ? Settled(instruction.a, locals) : instruction.a;
        instruction.b = slots[1] == 's' ? Settled(instruction.b, locals) : instruction.b;
        instruction.c = slots[2] == 's' ? Settled(instruction.c, locals) : instruction.c;
        if (slots[3] == 's') {
            instruction.jump = Settled(static_cast<std::uint16_t>(instruction.jump), locals);
        }
        if ((instruction.op == Opcode::RETURN || instruction.op == Opcode::RETURN_NONE) &&
            instruction.value == UNSETTLED) {
            instruction.value = locals;
        }
    }
}

void CodeRenameFunction(std::int32_t start, std::int32_t from, std::int32_t to) {
    for (auto index = static_cast<std::size_t>(start); index < Code.size(); ++index) {
        Instruction& i = Code[index];
        const bool isCall = i.op == Opcode::CALL || i.op == Opcode::CALL_DROP;
        const bool isValue = (i.op == Opcode::LOAD && i.c == TYPE_FUNC) ||
                             (i.op == Opcode::SET_ELEMENT_CONSTANT && i.a == TYPE_FUNC);
        if ((isCall || isValue) && i.value == from) {
            i.value = to;
        }
    }
}

const char* OpcodeName(Opcode op) {
    return OPCODES[static_cast<std::size_t>(op)].name;
}

}  // namespace quelmark
