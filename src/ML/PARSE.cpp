#include "ML/PARSE.h"

#include <algorithm>
#include <string>
#include <vector>

#include "ML/ASSIGN.h"
#include "ML/CODE.h"
#include "ML/CONTROL.h"
#include "ML/EMIT.h"
#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/SCAN.h"
#include "ML/STATEMENT.h"
#include "text/sjis.h"

namespace quelmark {

TopLevelCode TopLevel;

namespace {

constexpr std::int32_t LOCALS_MOST = 256;
constexpr std::int32_t GLOBALS_MOST = 32767;

struct AssignRow {
    std::int32_t symbol;
    std::int32_t code;  // 0: plain assignment
    StatementKind kind;
    bool takesValue;
};
constexpr AssignRow ASSIGNMENTS[] = {
    {SYM_ASSIGN, 0, STATEMENT_ASSIGN, true},
    {SYM_ADD_ASSIGN, OP_ADD, STATEMENT_ADD_ASSIGN, true},
    {SYM_SUBTRACT_ASSIGN, OP_SUBTRACT, STATEMENT_SUBTRACT_ASSIGN, true},
    {SYM_MULTIPLY_ASSIGN, OP_MULTIPLY, STATEMENT_MULTIPLY_ASSIGN, true},
    {SYM_DIVIDE_ASSIGN, OP_DIVIDE, STATEMENT_DIVIDE_ASSIGN, true},
    {SYM_AND_ASSIGN, OP_AND, STATEMENT_AND_ASSIGN, true},
    {SYM_OR_ASSIGN, OP_OR, STATEMENT_OR_ASSIGN, true},
    {SYM_INCREMENT, OP_INCREMENT, STATEMENT_INCREMENT, false},
    {SYM_DECREMENT, OP_DECREMENT, STATEMENT_DECREMENT, false},
};

IdentTablePtr globalNames;
IdentTablePtr localNames;
std::int32_t statementDepth = 0;  // 1 for the outermost statement
bool semicolonMayBeMissing = false;

std::vector<std::int32_t> privateMethods;  // private functions of this file that have the name of a method

void PurgePrivateNames() {
    IdentPurgePrivate(globalNames.get());
    IdentPurgePrivate(FunctionNames.get());
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

}  // namespace

SemicolonRule::SemicolonRule(bool mayBeMissing) : before_(semicolonMayBeMissing) {
    semicolonMayBeMissing = mayBeMissing;
}
SemicolonRule::~SemicolonRule() {
    semicolonMayBeMissing = before_;
}

bool AtStatementEnd() {
    return CurrentToken.kind == SYM_SEMICOLON ||
           (semicolonMayBeMissing && CurrentToken.kind == SYM_RIGHT_PAREN);
}

void ExpectSemicolon(const char* message) {
    if (!Accept(SYM_SEMICOLON) && !AtStatementEnd()) {
        CompileError("%s", message);
    }
}
void ExpectSemicolon() {
    ExpectSemicolon(" ; が必要です。"_sjis);
}

void BeginStatement(StatementKind kind, std::int32_t line) {
    CodePosition(line);
    if (TraceIsOn()) {
        CodeEmit({Opcode::TRACE, kind});
    }
}

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

namespace {

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
    ExpectSemicolon(";が必要です"_sjis);
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
    if (isPrivate && IsMethodName(ident)) {
        privateMethods.push_back(ident);
    } else if (isPrivate) {
        IdentMakePrivate(FunctionNames.get(), ident);  // it may have been declared ahead without the word
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
    if (!StatementIsOutermost()) {
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

void ParseBlock(std::int32_t line) {
    const SemicolonRule rule(false);
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

}  // namespace

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

bool StatementIsOutermost() {
    return statementDepth <= 1;
}

void ParserInit(std::int32_t globals) {
    ParserExit();
    globalNames = IdentCreate(std::clamp(globals, 0, GLOBALS_MOST), 0);
}

void ParserExit() {
    globalNames.reset();
    localNames.reset();
    ControlReset();
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
        ControlReset();
        Nodes.clear();
        privateMethods.clear();
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
    void Finish() {
        HidePrivateMethods();
        PurgePrivateNames();
        finished_ = true;
    }

  private:
    // The methods keep the name, this file's code keeps the function.
    void HidePrivateMethods() {
        for (std::size_t i = functions_; i < ScriptFunctions.size(); ++i) {
            std::int32_t& ident = ScriptFunctions[i].ident;
            if (std::find(privateMethods.begin(), privateMethods.end(), ident) != privateMethods.end()) {
                const std::int32_t hidden = FunctionHide(ident);
                CodeRenameFunction(code_, ident, hidden);
                ident = hidden;
            }
        }
    }

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
        ControlLeaveHere();
    }
    TopLevel.temporaries = std::max(TopLevel.temporaries, EmitTemporariesUsed());
    scope.Finish();
}

IdentTable* GlobalNames() {
    return globalNames.get();
}
IdentTable* LocalNames() {
    return localNames.get();
}

}  // namespace quelmark
