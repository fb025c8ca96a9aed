#include "ML/PARSE.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ML/ASSIGN.h"
#include "ML/BRANCH.h"
#include "ML/CODE.h"
#include "ML/EMIT.h"
#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/SCAN.h"
#include "text/sjis.h"

namespace quelmark {

TopLevelCode TopLevel;

namespace {

constexpr std::int32_t LOCALS_MOST = 256;
constexpr std::int32_t GLOBALS_MOST = 32767;

// Statement kinds, as trace lines name them.
enum StatementKind : std::uint16_t {
    STATEMENT_DECLARATION = 1,
    STATEMENT_FUNCTION = 2,
    STATEMENT_IF = 11,
    STATEMENT_IF_ELSE = 12,
    STATEMENT_WHILE = 13,
    STATEMENT_DO = 14,
    STATEMENT_FOR = 15,
    STATEMENT_BREAK = 16,
    STATEMENT_CONTINUE = 17,
    STATEMENT_RETURN = 18,
    STATEMENT_EMPTY = 20,
    STATEMENT_BLOCK = 21,
    STATEMENT_ASSIGN = 22,
    STATEMENT_INCREMENT = 30,
    STATEMENT_DECREMENT = 31,
    STATEMENT_EXPRESSION = 32,
};

struct AssignRow {
    std::int32_t symbol;
    std::int32_t code;  // 0: plain assignment
    StatementKind kind;
    bool takesValue;
};
constexpr AssignRow ASSIGNMENTS[] = {
    {SYM_ASSIGN, 0, STATEMENT_ASSIGN, true},
    {SYM_ADD_ASSIGN, OP_ADD, static_cast<StatementKind>(23), true},
    {SYM_SUBTRACT_ASSIGN, OP_SUBTRACT, static_cast<StatementKind>(24), true},
    {SYM_MULTIPLY_ASSIGN, OP_MULTIPLY, static_cast<StatementKind>(25), true},
    {SYM_DIVIDE_ASSIGN, OP_DIVIDE, static_cast<StatementKind>(26), true},
    {SYM_AND_ASSIGN, OP_AND, static_cast<StatementKind>(27), true},
    {SYM_OR_ASSIGN, OP_OR, static_cast<StatementKind>(28), true},
    {SYM_INCREMENT, OP_INCREMENT, STATEMENT_INCREMENT, false},
    {SYM_DECREMENT, OP_DECREMENT, STATEMENT_DECREMENT, false},
};

// The jumps out of the loop being compiled, to be patched when its ends are known.
struct Loop {
    std::vector<std::int32_t> breaks;
    std::vector<std::int32_t> continues;
};

IdentTablePtr globalNames;
IdentTablePtr localNames;
std::int32_t globalRoom = 0;
std::vector<Loop> loops;
std::int32_t statementDepth = 0;   // 1 for the outermost statement
std::vector<std::int32_t> leaves;  // jumps to the end of the outermost statement of the top level

void ParseStatement();

void PurgePrivateNames() {
    IdentPurgePrivate(globalNames.get());
    IdentPurgePrivate(FunctionNames.get());
}

void PatchAll(const std::vector<std::int32_t>& jumps, std::int32_t target) {
    for (const std::int32_t jump : jumps) {
        CodePatch(jump, target);
    }
}

void ExpectSemicolon() {
    Expect(SYM_SEMICOLON, " ; が必要です。"_sjis);
}

// The nodes made while this lives are gone afterwards.
class NodeScope {
  public:
    NodeScope() : before_(Nodes.size()) {}
    ~NodeScope() { Nodes.resize(before_, Node{NodeKind::Constant}); }
    NodeScope(const NodeScope&) = delete;
    NodeScope& operator=(const NodeScope&) = delete;

  private:
    std::size_t before_;
};

// The start of a statement: where its errors are reported, and its trace line.
void BeginStatement(StatementKind kind, std::int32_t line) {
    CodePosition(line);
    if (TraceIsOn()) {
        CodeEmit({Opcode::TRACE, kind});
    }
}

NodeId ParseCondition() {
    Expect(SYM_LEFT_PAREN, " ( が必要です。"_sjis);
    const NodeId condition = ParseExpression();
    Expect(SYM_RIGHT_PAREN, " ) が必要です。"_sjis);
    return condition;
}

// ---- assignment and expression statements, without the `;` ----

void RefuseConstant(const Variable& variable, const std::string& name) {
    if ((variable.attribute & IDENT_CONST) != 0) {
        CompileError(variable.local ? "局所定数 %s に代入しようとしました。"_sjis
                                    : "大域定数 %s に代入しようとしました。"_sjis,
                     name.c_str());
    }
}

void ParseAssignment(const Variable& variable, std::int32_t line) {
    const NodeScope nodes;
    const std::string name = CurrentToken.text;
    NextToken();
    const NodeId target = ParseSubscripts(VariableNode(variable));
    const auto* row =
        std::find_if(std::begin(ASSIGNMENTS), std::end(ASSIGNMENTS),
                     [](const AssignRow& candidate) { return candidate.symbol == CurrentToken.kind; });
    if (row == std::end(ASSIGNMENTS)) {
        CompileError("%s", "代入演算子が必要です"_sjis);
    }
    RefuseConstant(variable, name);
    NextToken();
    BeginStatement(row->kind, line);
    const NodeId value = row->takesValue ? ParseExpression() : NO_NODE;
    if (row->code == 0) {
        EmitAssign(target, value);
    } else {
        EmitUpdate(target, row->code, value);
    }
    EmitFreeTemporaries();
}

// An assignment when the statement begins with a variable, else an expression.
void ParseSimple(std::int32_t line) {
    if (CurrentToken.kind == TOKEN_IDENTIFIER && !ScanFollowedBy('(')) {
        const Variable variable = FindVariable(CurrentToken.text);
        if (variable.found) {
            ParseAssignment(variable, line);
            return;
        }
    }
    const NodeScope nodes;
    BeginStatement(STATEMENT_EXPRESSION, line);
    EmitDropped(ParseExpression());
    EmitFreeTemporaries();
}

// ---- declarations ----

std::int32_t AddVariable(const std::string& name, std::uint8_t attribute) {
    if (localNames) {
        return IdentAdd(localNames.get(), name, static_cast<std::uint8_t>(attribute | IDENT_LOCAL));
    }
    return IdentAdd(globalNames.get(), name, static_cast<std::uint8_t>(attribute | IDENT_GLOBAL));
}

// One declarator behind its modifiers. The name is known from its initial value on.
void ParseDeclarator(std::uint8_t attribute, std::int32_t line) {
    const NodeScope nodes;
    if (CurrentToken.kind != TOKEN_IDENTIFIER) {
        CompileError("%s", "識別子が必要です"_sjis);
    }
    const std::string name = CurrentToken.text;
    NextToken();
    const bool array = CurrentToken.kind == SYM_LEFT_BRACKET;
    const auto slot = static_cast<std::uint16_t>(
        AddVariable(name, static_cast<std::uint8_t>(attribute | (array ? IDENT_ARRAY : 0))));
    BeginStatement(STATEMENT_DECLARATION, line);
    if (array) {
        EmitArray(slot, ParseSubscripts(VariableNode(FindVariable(name))));
    }
    if (!Accept(SYM_ASSIGN)) {
        return;
    }
    if (CurrentToken.kind == SYM_LEFT_BRACE) {
        const NodeId list = ParseInitialiser();
        if (!array) {
            EmitArrayLike(slot, list);
        }
        EmitInitialise(slot, list);
    } else {
        EmitInto(ParseExpression(), slot);
    }
    EmitFreeTemporaries();
}

void ParseVariables(std::int32_t line) {
    NextToken();
    std::uint8_t attribute = 0;  // modifiers carry over to the declarators behind
    for (;;) {
        while (CurrentToken.kind == KEY_PRIVATE || CurrentToken.kind == KEY_CONST) {
            attribute |= CurrentToken.kind == KEY_PRIVATE ? IDENT_PRIVATE : IDENT_CONST;
            NextToken();
        }
        ParseDeclarator(attribute, line);
        if (!Accept(SYM_COMMA)) {
            break;
        }
    }
    Expect(SYM_SEMICOLON, ";が必要です"_sjis);
}

// ---- functions ----

std::int32_t ParseFunctionName(bool isPrivate) {
    if (CurrentToken.kind != TOKEN_IDENTIFIER) {
        CompileError("%s", "識別子が必要です"_sjis);
    }
    const std::string name = CurrentToken.text;
    std::int32_t ident = FunctionFind(name);
    if (ident < 0) {
        ident =
            FunctionNameAdd(name, static_cast<std::uint8_t>(IDENT_FUNC | (isPrivate ? IDENT_PRIVATE : 0)));
    } else if (ClassList[0].members[ident].kind != MemberKind::Undefined) {
        CompileError("関数 %s が二重定義されています。"_sjis, name.c_str());
    }
    NextToken();
    return ident;
}

void ParseParameters() {
    Expect(SYM_LEFT_PAREN, " ( が必要です。"_sjis);
    if (Accept(SYM_RIGHT_PAREN)) {
        return;
    }
    for (;;) {
        if (CurrentToken.kind != TOKEN_IDENTIFIER) {
            CompileError("%s", "識別子が必要です"_sjis);
        }
        AddVariable(CurrentToken.text, 0);
        NextToken();
        if (Accept(SYM_RIGHT_PAREN)) {
            return;
        }
        Expect(SYM_COMMA, " , または ) が必要です。"_sjis);
    }
}

void ParseFunctionBody(std::int32_t ident) {
    const std::int32_t skip = CodeEmit({Opcode::JUMP});
    const std::int32_t start = CodeHere();
    ScriptFunction& function = ScriptFunctions.emplace_back();
    function.ident = ident;
    function.code = Code.data() + start;
    function.parameters = IdentCount(localNames.get());
    ScriptMemberSet(ident, &function);  // before the body, which may call itself
    ParseStatement();
    CodeEmit({Opcode::RETURN_NONE, 0, 0, 0, 0, UNSETTLED});
    function.locals = IdentCount(localNames.get());
    function.cells = function.locals + EmitTemporariesUsed();
    CodeSettleSlots(start, function.locals);
    CodePatch(skip, CodeHere());
}

void ParseFunction(bool isPrivate, std::int32_t line) {
    if (statementDepth > 1) {
        CompileError("%s", "関数宣言の位置が不正です"_sjis);
    }
    NextToken();
    if (Accept(KEY_PRIVATE)) {
        isPrivate = true;
    }
    const std::int32_t ident = ParseFunctionName(isPrivate);
    const std::int32_t topTemporaries = EmitTemporariesUsed();
    localNames = IdentCreate(LOCALS_MOST, 0);
    EmitReset();
    ParseParameters();
    if (!Accept(SYM_SEMICOLON)) {
        BeginStatement(STATEMENT_FUNCTION, line);
        ParseFunctionBody(ident);
    }
    localNames.reset();
    EmitReset();
    TopLevel.temporaries = std::max(TopLevel.temporaries, topTemporaries);
}

// ---- control statements ----

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

// The step of a `for`: a statement whose `;` may be missing before the `)`.
void ParseStep(std::int32_t line) {
    const bool isKeyword = CurrentToken.kind >= TOKEN_KEYWORD && CurrentToken.kind < TOKEN_CONSTANT;
    if (isKeyword || CurrentToken.kind == SYM_LEFT_BRACE) {
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

void ParseFor(std::int32_t line) {
    const NodeScope nodes;
    NextToken();
    BeginStatement(STATEMENT_FOR, line);
    Expect(SYM_LEFT_PAREN, " ( が必要です。"_sjis);
    ParseStatement();
    const NodeId condition = ParseExpression();
    ExpectSemicolon();
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

// Ends the function without a result; at the top level it ends the outermost statement.
void EmitLeave() {
    if (localNames) {
        CodeEmit({Opcode::RETURN_NONE, 0, 0, 0, 0, UNSETTLED});
    } else if (statementDepth > 1) {
        leaves.push_back(CodeEmit({Opcode::JUMP}));
    }
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
    if (CurrentToken.kind == SYM_SEMICOLON) {
        EmitLeave();
    } else {
        const std::uint16_t value = EmitValue(ParseExpression());
        CodeEmit({localNames ? Opcode::RETURN : Opcode::DROP, 0, value, 0, 0, UNSETTLED});
        if (!localNames) {
            EmitLeave();
        }
    }
    EmitFreeTemporaries();
    ExpectSemicolon();
}

void ParseBlock(std::int32_t line) {
    NextToken();
    BeginStatement(STATEMENT_BLOCK, line);
    while (!Accept(SYM_RIGHT_BRACE)) {
        if (CurrentToken.kind == SYM_END) {
            CompileError("%s", "複文中でファイルエンドになりました"_sjis);
        }
        ParseStatement();
    }
}

// Counts the statements around what is being parsed.
class DepthGuard {
  public:
    DepthGuard() { ++statementDepth; }
    ~DepthGuard() { --statementDepth; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;
};

void ParseStatement() {
    const NestingGuard guard;
    const DepthGuard depth;
    const std::int32_t line = CurrentToken.line;
    switch (CurrentToken.kind) {
        case SYM_LEFT_BRACE:
            return ParseBlock(line);
        case SYM_SEMICOLON:
            BeginStatement(STATEMENT_EMPTY, line);
            NextToken();
            return;
        case KEY_BREAK:
            return ParseJump(line, STATEMENT_BREAK);
        case KEY_CONTINUE:
            return ParseJump(line, STATEMENT_CONTINUE);
        case KEY_RETURN:
            return ParseReturn(line);
        case KEY_IF:
            return ParseIf(line);
        case KEY_WHILE:
            return ParseWhile(line);
        case KEY_DO:
            return ParseDo(line);
        case KEY_FOR:
            return ParseFor(line);
        case KEY_VAR:
            return ParseVariables(line);
        case KEY_FUNCTION:
            return ParseFunction(false, line);
        case KEY_PRIVATE:
            if (NextToken() != KEY_FUNCTION) {
                CompileError("%s", "関数宣言の位置が不正です"_sjis);
            }
            return ParseFunction(true, line);
        default:
            ParseSimple(line);
            ExpectSemicolon();
    }
}

}  // namespace

void ParserInit(std::int32_t globals) {
    ParserExit();
    globalRoom = std::clamp(globals, 0, GLOBALS_MOST);
    globalNames = IdentCreate(globalRoom, 0);
}

void ParserExit() {
    globalNames.reset();
    localNames.reset();
    globalRoom = 0;
    loops.clear();
    leaves.clear();
    Nodes.clear();
    TopLevel = {};
}

namespace {

// What a file adds to code and functions, taken back when an error ends its compilation.
class CompileScope {
  public:
    CompileScope() : code_(CodeHere()), functions_(ScriptFunctions.size()) {}
    ~CompileScope() {
        localNames.reset();
        loops.clear();
        leaves.clear();
        Nodes.clear();
        if (finished_) {
            return;
        }
        for (; ScriptFunctions.size() > functions_; ScriptFunctions.pop_back()) {
            ScriptMemberClear(ScriptFunctions.back().ident);
        }
        CodeDiscard(code_);
        PurgePrivateNames();
    }
    CompileScope(const CompileScope&) = delete;
    CompileScope& operator=(const CompileScope&) = delete;
    void Finish() { finished_ = true; }

  private:
    std::int32_t code_;
    std::size_t functions_;
    bool finished_ = false;
};

}  // namespace

void ParseFile() {
    CompileScope scope;
    EmitReset();
    while (CurrentToken.kind != SYM_END) {
        ParseStatement();
        PatchAll(leaves, CodeHere());
        leaves.clear();
    }
    TopLevel.temporaries = std::max(TopLevel.temporaries, EmitTemporariesUsed());
    PurgePrivateNames();
    scope.Finish();
}

IdentTable* GlobalNames() {
    return globalNames.get();
}
IdentTable* LocalNames() {
    return localNames.get();
}
std::int32_t GlobalRoom() {
    return globalRoom;
}

}  // namespace quelmark
