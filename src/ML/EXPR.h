// Expressions: parsed by precedence climbing into a small tree that lives until its statement is compiled, so
// that the emitter can see constants, variables and calls before it chooses instructions.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "ML/STACK.h"

namespace quelmark {

enum class NodeKind : std::uint8_t {
    Constant,
    Slot,     // a local, or at the top level a global: `index` is the frame's slot
    Global,   // a global seen from inside a function
    Element,  // left: the variable's node; children: subscripts
    Call,     // index: function id; children: arguments
    Unary,    // index: operator; left
    Binary,   // index: operator; left, right
    List,     // children: elements of an initialiser
};

using NodeId = std::int32_t;
inline constexpr NodeId NO_NODE = -1;

struct Node {
    NodeKind kind;
    bool calls = false;  // evaluating it may run script code
    std::int32_t index = 0;
    DataCell cell = {};
    NodeId left = NO_NODE, right = NO_NODE;
    NodeId firstChild = NO_NODE, nextSibling = NO_NODE;
    std::int32_t children = 0;
};

// The nodes of the statements being compiled, innermost last.
extern std::vector<Node> Nodes;
inline Node& NodeOf(NodeId id) {
    return Nodes[static_cast<std::size_t>(id)];
}

// The variable that a name means: a local, else a global. Without `found` there is none.
struct Variable {
    bool found = false;
    bool local = false;
    std::uint8_t attribute = 0;
    std::int32_t index = 0;
};
Variable FindVariable(std::string_view name);
NodeId VariableNode(const Variable& variable);

NodeId ParseExpression();
// `[expr]…` behind a variable whose name has been read; the node itself when there is none.
NodeId ParseSubscripts(NodeId variable);
// `{ e, … }` or an expression.
NodeId ParseInitialiser();
// Consumes the symbol or reports `message`.
void Expect(std::int32_t symbol, const char* message);
bool Accept(std::int32_t symbol);

// Nested constructs of one statement beyond this are refused.
inline constexpr int SOURCE_NESTING_MOST = 1000;
class NestingGuard {
  public:
    NestingGuard();
    ~NestingGuard();
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;
};

}  // namespace quelmark
