// What the parsers of statements share.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ML/EXPR.h"

namespace quelmark {

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
    STATEMENT_ADD_ASSIGN = 23,
    STATEMENT_SUBTRACT_ASSIGN = 24,
    STATEMENT_MULTIPLY_ASSIGN = 25,
    STATEMENT_DIVIDE_ASSIGN = 26,
    STATEMENT_AND_ASSIGN = 27,
    STATEMENT_OR_ASSIGN = 28,
    STATEMENT_INCREMENT = 30,
    STATEMENT_DECREMENT = 31,
    STATEMENT_EXPRESSION = 32,
};

// One statement of any kind.
void ParseStatement();
// An assignment when the statement begins with a variable, else an expression; without the `;`.
void ParseSimple(std::int32_t line);
// The `;` is next, or the `)` in whose place it may be missing.
bool AtStatementEnd();
void ExpectSemicolon(const char* message);
void ExpectSemicolon();
// The start of a statement: where its errors are reported, and its trace line.
void BeginStatement(StatementKind kind, std::int32_t line);
// True when no other statement is around the one being parsed.
bool StatementIsOutermost();

// While this lives a statement may end without its `;` before a `)`, or may not.
class SemicolonRule {
  public:
    explicit SemicolonRule(bool mayBeMissing);
    ~SemicolonRule();
    SemicolonRule(const SemicolonRule&) = delete;
    SemicolonRule& operator=(const SemicolonRule&) = delete;

  private:
    bool before_;
};

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

}  // namespace quelmark
