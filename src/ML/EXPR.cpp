#include "ML/EXPR.h"

#include <string>

#include "ML/CODE.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/MEMBER.h"
#include "ML/OPERATE.h"
#include "ML/PARSE.h"
#include "ML/SCAN.h"
#include "text/sjis.h"

namespace quelmark {

std::vector<Node> Nodes;

namespace {

int nesting = 0;
constexpr std::size_t NODES_LEAST = 4096;

struct Level {
    std::int32_t symbol;
    std::int32_t level;  // 0 binds loosest
    std::int32_t code;
};
constexpr Level LEVELS[] = {
    {SYM_OR, 0, OP_OR},
    {SYM_XOR, 0, OP_XOR},
    {SYM_AND, 1, OP_AND},
    {SYM_NOT_EQUAL, 2, OP_NOT_EQUAL},
    {SYM_EQUAL, 2, OP_EQUAL},
    {SYM_LESS, 2, OP_LESS},
    {SYM_GREATER, 2, OP_GREATER},
    {SYM_LESS_EQUAL, 2, OP_LESS_EQUAL},
    {SYM_GREATER_EQUAL, 2, OP_GREATER_EQUAL},
    {SYM_SHIFT_LEFT, 3, OP_SHIFT_LEFT},
    {SYM_SHIFT_RIGHT, 3, OP_SHIFT_RIGHT},
    {SYM_PLUS, 4, OP_ADD},
    {SYM_MINUS, 4, OP_SUBTRACT},
    {SYM_STAR, 5, OP_MULTIPLY},
    {SYM_SLASH, 5, OP_DIVIDE},
    {SYM_PERCENT, 5, OP_REMAINDER},
    {SYM_DOT, 6, OP_DOT},
    {SYM_ARROW, 6, OP_ARROW},
};

const Level* LevelOf(std::int32_t symbol) {
    for (const Level& row : LEVELS) {
        if (row.symbol == symbol) {
            return &row;
        }
    }
    return nullptr;
}

// A node is worth an instruction sooner or later, so a statement of more nodes than the code buffer could
// hold is refused before it fills the memory.
NodeId AddNode(const Node& node) {
    if (Nodes.size() >= NODES_LEAST && Nodes.size() / 2 > CodeRoom()) {
        CodeReportFull();
    }
    Nodes.push_back(node);
    return static_cast<NodeId>(Nodes.size() - 1);
}

NodeId ConstantNode(const DataCell& cell) {
    Node node{NodeKind::Constant};
    node.cell = cell;
    return AddNode(node);
}

void AddChild(NodeId parent, NodeId child, NodeId& last) {
    if (last == NO_NODE) {
        NodeOf(parent).firstChild = child;
    } else {
        NodeOf(last).nextSibling = child;
    }
    last = child;
    ++NodeOf(parent).children;
    NodeOf(parent).calls |= NodeOf(child).calls;
}

std::int32_t FunctionOrError(const std::string& name) {
    const std::int32_t ident = FunctionFind(name);
    if (ident < 0) {
        CompileError("識別子 %s は定義されていません"_sjis, name.c_str());
    }
    return ident;
}

// The arguments of a call, its `(` being the current token; `receiver` is the first of them, if any.
NodeId ParseCall(std::int32_t ident, NodeId receiver) {
    Node call{NodeKind::Call};
    call.index = ident;
    call.calls = true;
    const NodeId node = AddNode(call);
    NodeId last = NO_NODE;
    if (receiver != NO_NODE) {
        AddChild(node, receiver, last);
    }
    NextToken();
    if (Accept(SYM_RIGHT_PAREN)) {
        return node;
    }
    for (;;) {
        AddChild(node, ParseExpression(), last);
        if (!Accept(SYM_COMMA)) {
            break;
        }
    }
    Expect(SYM_RIGHT_PAREN, " ) が必要です"_sjis);
    return node;
}

// What a name means that has just been read, `(` or not being the current token.
NodeId ParseNamed(const std::string& name) {
    if (CurrentToken.kind == SYM_LEFT_PAREN) {
        return ParseCall(FunctionOrError(name), NO_NODE);
    }
    const Variable variable = FindVariable(name);
    if (variable.found) {
        return ParseSubscripts(VariableNode(variable));
    }
    return ConstantNode(FuncCell(FunctionOrError(name)));
}

NodeId ParsePrimary() {
    if (CurrentToken.kind == TOKEN_CONSTANT) {
        const DataCell cell = CurrentToken.value;
        NextToken();
        return ConstantNode(cell);
    }
    if (CurrentToken.kind == TOKEN_IDENTIFIER) {
        const std::string name = CurrentToken.text;
        NextToken();
        return ParseNamed(name);
    }
    if (Accept(SYM_LEFT_PAREN)) {
        const NodeId inner = ParseExpression();
        Expect(SYM_RIGHT_PAREN, " ) が必要です"_sjis);
        return inner;
    }
    if (CurrentToken.kind == SYM_END) {
        CompileError("%s", "式の途中でファイルエンドになりました"_sjis);
    }
    CompileError("識別子 %s は定義されていません"_sjis, CurrentToken.text.c_str());
}

// A primary and the `.name(args)` or `->name(args)` behind it.
NodeId ParsePostfix() {
    NodeId node = ParsePrimary();
    while (CurrentToken.kind == SYM_DOT || CurrentToken.kind == SYM_ARROW) {
        if (ScanFollowedBy('"')) {
            break;  // a literal is scanned once only: it makes an object
        }
        const ScanPlace place = ScanRemember();
        if (NextToken() != TOKEN_IDENTIFIER || !ScanFollowedBy('(')) {
            ScanReturn(place);  // the operator of that sign
            break;
        }
        const std::string name = CurrentToken.text;
        NextToken();
        node = ParseCall(FunctionOrError(name), node);
    }
    return node;
}

NodeId ParseUnary() {
    const NestingGuard guard;
    std::int32_t code = 0;
    switch (CurrentToken.kind) {
        case SYM_NOT:
            code = OP_NOT;
            break;
        case SYM_MINUS:
            code = OP_NEGATE;
            break;
        case SYM_PLUS:
            NextToken();
            return ParseUnary();
        default:
            return ParsePostfix();
    }
    NextToken();
    const NodeId operand = ParseUnary();
    Node& inner = NodeOf(operand);
    if (code == OP_NEGATE && inner.kind == NodeKind::Constant && inner.cell.type == TYPE_INT) {
        inner.cell = IntCell(static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(inner.cell.integer)));
        return operand;
    }
    if (code == OP_NEGATE && inner.kind == NodeKind::Constant && inner.cell.type == TYPE_REAL) {
        inner.cell.real = -inner.cell.real;
        return operand;
    }
    Node node{NodeKind::Unary};
    node.index = code;
    node.left = operand;
    node.calls = inner.calls;
    return AddNode(node);
}

// Operators of `least` and tighter levels.
NodeId ParseBinary(std::int32_t least) {
    NodeId left = ParseUnary();
    for (;;) {
        const Level* row = LevelOf(CurrentToken.kind);
        if (row == nullptr || row->level < least) {
            return left;
        }
        NextToken();
        const NodeId right = ParseBinary(row->level + 1);
        if (NodeOf(left).kind == NodeKind::Constant && NodeOf(right).kind == NodeKind::Constant) {
            if (const auto folded = OperateConstants(row->code, NodeOf(left).cell, NodeOf(right).cell)) {
                NodeOf(left).cell = *folded;
                continue;
            }
        }
        Node node{NodeKind::Binary};
        node.index = row->code;
        node.left = left;
        node.right = right;
        node.calls = NodeOf(left).calls || NodeOf(right).calls;
        left = AddNode(node);
    }
}

}  // namespace

NestingGuard::NestingGuard() {
    if (nesting >= SOURCE_NESTING_MOST) {
        CompileError("%s", "スタックオーバーフロー！！"_sjis);
    }
    ++nesting;
}

NestingGuard::~NestingGuard() {
    --nesting;
}

Variable FindVariable(std::string_view name) {
    if (const std::int32_t id = IdentFind(LocalNames(), name); id >= 0) {
        return {true, true, IdentAttr(LocalNames(), id), id};
    }
    if (const std::int32_t id = IdentFind(GlobalNames(), name); id >= 0) {
        return {true, false, IdentAttr(GlobalNames(), id), id};
    }
    return {};
}

NodeId VariableNode(const Variable& variable) {
    const bool slot = variable.local || LocalNames() == nullptr;
    Node node{slot ? NodeKind::Slot : NodeKind::Global};
    node.index = variable.index;
    return AddNode(node);
}

NodeId ParseExpression() {
    const NestingGuard guard;
    return ParseBinary(0);
}

NodeId ParseSubscripts(NodeId variable) {
    if (CurrentToken.kind != SYM_LEFT_BRACKET) {
        return variable;
    }
    Node element{NodeKind::Element};
    element.left = variable;
    const NodeId node = AddNode(element);
    NodeId last = NO_NODE;
    while (Accept(SYM_LEFT_BRACKET)) {
        AddChild(node, ParseExpression(), last);
        Expect(SYM_RIGHT_BRACKET, " ] が必要です"_sjis);
    }
    return node;
}

NodeId ParseInitialiser() {
    if (!Accept(SYM_LEFT_BRACE)) {
        return ParseExpression();
    }
    const NestingGuard guard;
    const NodeId list = AddNode(Node{NodeKind::List});
    NodeId last = NO_NODE;
    if (Accept(SYM_RIGHT_BRACE)) {
        return list;
    }
    for (;;) {
        AddChild(list, ParseInitialiser(), last);
        if (!Accept(SYM_COMMA)) {
            break;
        }
    }
    Expect(SYM_RIGHT_BRACE, ",または}が必要です"_sjis);
    return list;
}

bool Accept(std::int32_t symbol) {
    if (CurrentToken.kind != symbol) {
        return false;
    }
    NextToken();
    return true;
}

void Expect(std::int32_t symbol, const char* message) {
    if (!Accept(symbol)) {
        CompileError("%s", message);
    }
}

}  // namespace quelmark
