// The scanner: one script file, read whole, into tokens. It replaces the names of system constants by their
// values, so that they cost nothing at run time, and keeps the file name and line for messages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ML/STACK.h"

namespace quelmark {

// Token kinds: 0 an identifier; KEYWORD + n, SYMBOL + n; CONSTANT.
inline constexpr std::int32_t TOKEN_IDENTIFIER = 0;
inline constexpr std::int32_t TOKEN_SYMBOL = 0x10000;
inline constexpr std::int32_t TOKEN_KEYWORD = 0x20000;
inline constexpr std::int32_t TOKEN_CONSTANT = 0x40000;

enum Keyword : std::int32_t {
    KEY_BREAK = TOKEN_KEYWORD + 1,
    KEY_CONST,
    KEY_CONTINUE,
    KEY_DO,
    KEY_ELSE,
    KEY_FOR,
    KEY_FUNCTION,
    KEY_IF,
    KEY_PRIVATE,
    KEY_RETURN,
    KEY_VAR,
    KEY_WHILE,
};

enum Symbol : std::int32_t {
    SYM_LEFT_PAREN = TOKEN_SYMBOL + 1,
    SYM_RIGHT_PAREN,
    SYM_LEFT_BRACE,
    SYM_RIGHT_BRACE,
    SYM_LEFT_BRACKET,
    SYM_RIGHT_BRACKET,
    SYM_PLUS = TOKEN_SYMBOL + 11,
    SYM_MINUS,
    SYM_STAR,
    SYM_SLASH,
    SYM_PERCENT,
    SYM_DOT,
    SYM_ARROW,
    SYM_AND = TOKEN_SYMBOL + 22,
    SYM_OR,
    SYM_XOR,
    SYM_NOT,
    SYM_NOT_EQUAL = TOKEN_SYMBOL + 31,
    SYM_EQUAL,
    SYM_LESS,
    SYM_GREATER,
    SYM_LESS_EQUAL,
    SYM_GREATER_EQUAL,
    SYM_SHIFT_LEFT,
    SYM_SHIFT_RIGHT,
    SYM_ASSIGN = TOKEN_SYMBOL + 41,
    SYM_ADD_ASSIGN,
    SYM_SUBTRACT_ASSIGN,
    SYM_MULTIPLY_ASSIGN,
    SYM_DIVIDE_ASSIGN,
    SYM_AND_ASSIGN,
    SYM_OR_ASSIGN,
    SYM_XOR_ASSIGN,
    SYM_INCREMENT,
    SYM_DECREMENT,
    SYM_COMMA = TOKEN_SYMBOL + 61,
    SYM_SEMICOLON,
    SYM_COLON,
    SYM_HASH,
    SYM_END = TOKEN_SYMBOL + 70,
    SYM_UNKNOWN,
};

inline constexpr std::size_t TOKEN_BYTES = 31;

// The current token.
struct Token {
    std::int32_t kind = SYM_END;
    std::string text;       // identifier, keyword or symbol as written
    DataCell value = {};    // constant; a String is owned by the scanner's literals
    std::int32_t line = 0;  // where it begins
};
extern Token CurrentToken;

// Opens a file (script path), reads it whole and scans the first token.
// "ファイル %s がオープンできません。", "ファイルサイズが不正です。", "メモリが確保できません。(FileOpen)".
void ScanOpen(std::string_view path);
// The same from memory; `name` stands in messages.
void ScanText(std::string_view name, std::string source);
void ScanClose();
std::int32_t NextToken();
// The character reader: -1 at the end; NextChar counts line feeds.
std::int32_t NextChar();
std::int32_t PeekChar();

// True when the next character that is no blank or comment is this one.
bool ScanFollowedBy(char character);
// A place to come back to, for the one spot of the grammar that looks two tokens ahead.
struct ScanPlace {
    std::size_t at;
    std::int32_t line;
    Token token;
};
ScanPlace ScanRemember();
void ScanReturn(const ScanPlace& place);

// The file name that stands in messages (kept for the whole run), null when nothing is being compiled.
const char* ScanFileName();
// Releases the String literals of all files compiled so far.
void ScanFreeLiterals();

}  // namespace quelmark
