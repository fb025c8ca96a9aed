#include "ML/CONTROL.h"

#include <utility>
#include <vector>

#include "ML/BRANCH.h"
#include "ML/CODE.h"
#include "ML/EMIT.h"
#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/PARSE.h"
#include "ML/SCAN.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

// The jumps out of the loop being compiled, to be patched when its ends are known.
struct Loop {
    std::vector<std::int32_t> breaks;
    std::vector<std::int32_t> continues;
};

std::vector<Loop> loops;
std::vector<std::int32_t> leaves;  // jumps to the end of the outermost statement of the top level

void PatchAll(const std::vector<std::int32_t>& jumps, std::int32_t target) {
    for (const std::int32_t jump : jumps) {
        CodePatch(jump, target);
    }
}

NodeId ParseCondition() {
    Expect(SYM_LEFT_PAREN, " ( が必要です。"_sjis);
    const NodeId condition = ParseExpression();
    Expect(SYM_RIGHT_PAREN, " ) が必要です。"_sjis);
    return condition;
}

// One `if (condition) statement`; answers the jump to what follows when the condition is false.
std::int32_t ParseIfBranch(std::int32_t line) {
    NextToken();
    const std::int32_t trace = CodeHere();
    BeginStatement(STATEMENT_IF, line);
    std::int32_t otherwise = 0;
    {
        const NodeScope nodes;
        otherwise = EmitJumpUnless(ParseCondition());
    }
    EmitFreeTemporaries();
    ParseStatement();
    if (TraceIsOn() && CurrentToken.kind == KEY_ELSE) {
        Code[static_cast<std::size_t>(trace)].a = STATEMENT_IF_ELSE;
    }
    return otherwise;
}

void EndLoop(std::int32_t next) {
    PatchAll(loops.back().continues, next);
    PatchAll(loops.back().breaks, CodeHere());
    loops.pop_back();
}

// The test at the bottom of a loop, reported at the loop's own line.
void EmitLoopTest(NodeId condition, std::int32_t body, std::int32_t line) {
    CodePosition(line);
    EmitLoopIf(condition, body);
    EmitFreeTemporaries();
}

// The first statement of a `for`, and its condition.
NodeId ParseForStart() {
    const SemicolonRule rule(false);
    ParseStatement();
    const NodeId condition = ParseExpression();
    ExpectSemicolon();
    return condition;
}

// The step of a `for`: a statement whose `;` may be missing before the `)`, or nothing.
void ParseStep(std::int32_t line) {
    const bool isKeyword = CurrentToken.kind >= TOKEN_KEYWORD && CurrentToken.kind < TOKEN_CONSTANT;
    if (isKeyword || CurrentToken.kind == SYM_LEFT_BRACE) {
        const SemicolonRule rule(true);
        ParseStatement();
        return;
    }
    if (CurrentToken.kind != SYM_RIGHT_PAREN && !Accept(SYM_SEMICOLON)) {
        ParseSimple(line);
        Accept(SYM_SEMICOLON);
    }
}

// The step of a `for`, cut out of the code to stand behind the body. Jumps out of it count from its start.
struct LoopStep {
    std::vector<Instruction> code;
    Loop jumps;
    std::vector<std::int32_t> leaves;
};

LoopStep ParseLoopStep(std::int32_t line) {
    const std::int32_t start = CodeHere();
    LoopStep step;
    const std::size_t leavesBefore = leaves.size();
    loops.emplace_back();
    ParseStep(line);
    step.jumps = std::move(loops.back());
    loops.pop_back();
    step.leaves.assign(leaves.begin() + static_cast<std::ptrdiff_t>(leavesBefore), leaves.end());
    leaves.resize(leavesBefore);
    step.code = CodeCut(start);
    for (auto* jumps : {&step.jumps.breaks, &step.jumps.continues, &step.leaves}) {
        for (std::int32_t& jump : *jumps) {
            jump -= start;
        }
    }
    return step;
}

// Behind the body: `break` in the step ends the loop, `continue` the step.
void PasteLoopStep(const LoopStep& step) {
    const std::int32_t start = CodeHere();
    CodePaste(step.code);
    for (const std::int32_t jump : step.jumps.continues) {
        CodePatch(start + jump, CodeHere());
    }
    for (const std::int32_t jump : step.jumps.breaks) {
        loops.back().breaks.push_back(start + jump);
    }
    for (const std::int32_t jump : step.leaves) {
        leaves.push_back(start + jump);
    }
}

// Ends the function without a result; at the top level it ends the outermost statement.
void EmitLeave() {
    if (LocalNames() != nullptr) {
        CodeEmit({Opcode::RETURN_NONE, 0, 0, 0, 0, UNSETTLED});
    } else if (!StatementIsOutermost()) {
        leaves.push_back(CodeEmit({Opcode::JUMP}));
    }
}

}  // namespace

// A chain of `else if` is read in turn, however long.
void ParseIf(std::int32_t line) {
    std::vector<std::int32_t> ends;
    std::int32_t otherwise = ParseIfBranch(line);
    while (Accept(KEY_ELSE)) {
        ends.push_back(CodeEmit({Opcode::JUMP}));
        CodePatch(otherwise, CodeHere());
        if (CurrentToken.kind != KEY_IF) {
            ParseStatement();
            PatchAll(ends, CodeHere());
            return;
        }
        otherwise = ParseIfBranch(CurrentToken.line);
    }
    CodePatch(otherwise, CodeHere());
    PatchAll(ends, CodeHere());
}

void ParseWhile(std::int32_t line) {
    const NodeScope nodes;
    NextToken();
    BeginStatement(STATEMENT_WHILE, line);
    const NodeId condition = ParseCondition();
    const std::int32_t enter = CodeEmit({Opcode::JUMP});
    const std::int32_t body = CodeHere();
    loops.emplace_back();
    ParseStatement();
    const std::int32_t next = CodeHere();
    CodePatch(enter, next);
    EmitLoopTest(condition, body, line);
    EndLoop(next);
}

void ParseDo(std::int32_t line) {
    const NodeScope nodes;
    NextToken();
    BeginStatement(STATEMENT_DO, line);
    const std::int32_t body = CodeHere();
    loops.emplace_back();
    ParseStatement();
    if (!Accept(KEY_WHILE)) {
        CompileError("%s", "while が必要です。"_sjis);
    }
    const std::int32_t next = CodeHere();
    EmitLoopTest(ParseCondition(), body, line);
    EndLoop(next);
    ExpectSemicolon();
}

void ParseFor(std::int32_t line) {
    const NodeScope nodes;
    NextToken();
    BeginStatement(STATEMENT_FOR, line);
    Expect(SYM_LEFT_PAREN, " ( が必要です。"_sjis);
    const NodeId condition = ParseForStart();
    const LoopStep step = ParseLoopStep(line);
    Expect(SYM_RIGHT_PAREN, " ) が必要です。"_sjis);
    CodePosition(line);
    const std::int32_t enter = CodeEmit({Opcode::JUMP});
    const std::int32_t body = CodeHere();
    loops.emplace_back();
    ParseStatement();
    const std::int32_t next = CodeHere();
    CodePosition(line);
    if (EmitCountedLoop(step.code, condition, body)) {
        // The count and its test are one instruction, so the first test stands on its own below.
        const std::int32_t leave = CodeEmit({Opcode::JUMP});
        CodePatch(enter, CodeHere());
        EmitLoopTest(condition, body, line);
        CodePatch(leave, CodeHere());
    } else {
        PasteLoopStep(step);
        CodePatch(enter, CodeHere());
        EmitLoopTest(condition, body, line);
    }
    EndLoop(next);
}

void ParseJump(std::int32_t line, StatementKind kind) {
    NextToken();
    BeginStatement(kind, line);
    if (!loops.empty()) {
        auto& jumps = kind == STATEMENT_BREAK ? loops.back().breaks : loops.back().continues;
        jumps.push_back(CodeEmit({Opcode::JUMP}));
    } else {
        EmitLeave();
    }
    ExpectSemicolon();
}

void ParseReturn(std::int32_t line) {
    const NodeScope nodes;
    NextToken();
    BeginStatement(STATEMENT_RETURN, line);
    if (AtStatementEnd()) {
        EmitLeave();
    } else {
        const std::uint16_t value = EmitValue(ParseExpression());
        CodeEmit({LocalNames() != nullptr ? Opcode::RETURN : Opcode::DROP, 0, value, 0, 0, UNSETTLED});
        if (LocalNames() == nullptr) {
            EmitLeave();
        }
    }
    EmitFreeTemporaries();
    ExpectSemicolon();
}

void ControlLeaveHere() {
    PatchAll(leaves, CodeHere());
    leaves.clear();
}

void ControlReset() {
    loops.clear();
    leaves.clear();
}

}  // namespace quelmark
