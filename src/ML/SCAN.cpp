#include "ML/SCAN.h"

#include <algorithm>
#include <array>
#include <deque>
#include <new>
#include <optional>
#include <vector>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/ML.h"
#include "ML/STRING.h"
#include "text/cp932.h"
#include "text/number.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {

Token CurrentToken;

namespace {

constexpr std::size_t LITERAL_BYTES = 4096;
constexpr std::int32_t END_OF_SOURCE = -1;

std::string source;
std::size_t at = 0;  // of the next character
std::int32_t line = 0;
const char* fileName = nullptr;
std::deque<std::string> fileNames;  // kept: positions of compiled code point here
std::vector<DataCell> literals;     // String constants of compiled code, each with one reference

// In alphabetical order, which is that of Keyword.
constexpr std::array<std::string_view, 12> KEYWORDS = {
    "break", "const", "continue", "do", "else", "for", "function", "if", "private", "return", "var", "while"};

struct SymbolRow {
    std::string_view text;
    std::int32_t kind;
};
// Longer symbols first.
constexpr SymbolRow SYMBOLS[] = {
    {"->", SYM_ARROW},
    {"!=", SYM_NOT_EQUAL},
    {"==", SYM_EQUAL},
    {"<=", SYM_LESS_EQUAL},
    {">=", SYM_GREATER_EQUAL},
    {"<<", SYM_SHIFT_LEFT},
    {">>", SYM_SHIFT_RIGHT},
    {"+=", SYM_ADD_ASSIGN},
    {"-=", SYM_SUBTRACT_ASSIGN},
    {"*=", SYM_MULTIPLY_ASSIGN},
    {"/=", SYM_DIVIDE_ASSIGN},
    {"&=", SYM_AND_ASSIGN},
    {"|=", SYM_OR_ASSIGN},
    {"^=", SYM_XOR_ASSIGN},
    {"++", SYM_INCREMENT},
    {"--", SYM_DECREMENT},
    {"(", SYM_LEFT_PAREN},
    {")", SYM_RIGHT_PAREN},
    {"{", SYM_LEFT_BRACE},
    {"}", SYM_RIGHT_BRACE},
    {"[", SYM_LEFT_BRACKET},
    {"]", SYM_RIGHT_BRACKET},
    {"+", SYM_PLUS},
    {"-", SYM_MINUS},
    {"*", SYM_STAR},
    {"/", SYM_SLASH},
    {"%", SYM_PERCENT},
    {".", SYM_DOT},
    {"&", SYM_AND},
    {"|", SYM_OR},
    {"^", SYM_XOR},
    {"!", SYM_NOT},
    {"<", SYM_LESS},
    {">", SYM_GREATER},
    {"=", SYM_ASSIGN},
    {",", SYM_COMMA},
    {";", SYM_SEMICOLON},
    {":", SYM_COLON},
    {"#", SYM_HASH},
};

bool IsDigit(std::int32_t character) {
    return character >= '0' && character <= '9';
}
bool IsNameStart(std::int32_t character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_';
}
int HexValue(std::int32_t character) {
    if (IsDigit(character)) {
        return character - '0';
    }
    if (character >= 'a' && character <= 'f') {
        return character - 'a' + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return character - 'A' + 10;
    }
    return -1;
}

std::int32_t CharAt(std::size_t position) {
    return position < source.size() ? static_cast<unsigned char>(source[position]) : END_OF_SOURCE;
}

void SkipBlanksAndComments() {
    for (;;) {
        const std::int32_t character = PeekChar();
        if (character >= 0 && character <= 32) {
            NextChar();
        } else if (character == '/' && CharAt(at + 1) == '/') {
            while (PeekChar() >= 0 && PeekChar() != '\n') {
                NextChar();
            }
        } else if (character == '/' && CharAt(at + 1) == '*') {
            NextChar();
            NextChar();
            while (PeekChar() >= 0 && !(PeekChar() == '*' && CharAt(at + 1) == '/')) {
                NextChar();
            }
            NextChar();
            NextChar();
        } else {
            return;
        }
    }
}

void SetConstant(const DataCell& cell) {
    CurrentToken.kind = TOKEN_CONSTANT;
    CurrentToken.value = cell;
}

// An exponent stands there: the letter, a sign or not, a digit.
bool ExponentAt(std::size_t position) {
    const std::int32_t letter = CharAt(position);
    const std::int32_t next = CharAt(position + 1);
    const bool isSigned = next == '+' || next == '-';
    return (letter == 'e' || letter == 'E') && IsDigit(isSigned ? CharAt(position + 2) : next);
}

void ScanNumber() {
    if (PeekChar() == '0' && (CharAt(at + 1) == 'x' || CharAt(at + 1) == 'X')) {
        NextChar();
        NextChar();
        std::uint32_t value = 0;
        while (HexValue(PeekChar()) >= 0) {
            value = value * 16 + static_cast<std::uint32_t>(HexValue(NextChar()));
        }
        SetConstant(IntCell(static_cast<std::int32_t>(value)));
        return;
    }
    const std::size_t start = at;
    std::uint32_t value = 0;
    while (IsDigit(PeekChar())) {
        value = value * 10 + static_cast<std::uint32_t>(NextChar() - '0');
    }
    bool real = false;
    if (PeekChar() == '.' && (!IsNameStart(CharAt(at + 1)) || ExponentAt(at + 1))) {
        real = true;
        NextChar();
        while (IsDigit(PeekChar())) {
            NextChar();
        }
    }
    if (ExponentAt(at)) {
        real = true;
        at += 2;  // the letter, and the sign or first digit
        while (IsDigit(PeekChar())) {
            NextChar();
        }
    }
    SetConstant(real ? RealCell(ParseReal(std::string_view(source).substr(start, at - start)))
                     : IntCell(static_cast<std::int32_t>(value)));
}

void ScanCharacter() {
    NextChar();
    std::uint32_t value = 0;
    while (PeekChar() >= 0 && PeekChar() != '\'') {
        value = value << 8 | static_cast<std::uint32_t>(NextChar());
    }
    NextChar();
    SetConstant(IntCell(static_cast<std::int32_t>(value)));
}

// The value of an escape, after its backslash; a literal keeps its low byte.
std::int32_t ScanEscape() {
    const std::int32_t character = NextChar();
    std::uint32_t value = 0;
    switch (character) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'x':
            while (HexValue(PeekChar()) >= 0) {
                value = value * 16 + static_cast<std::uint32_t>(HexValue(NextChar()));
            }
            return static_cast<std::int32_t>(value);
        default:
            break;
    }
    if (character < '0' || character > '7') {
        return character;
    }
    // The first octal digit announces the escape and does not count.
    while (PeekChar() >= '0' && PeekChar() <= '7') {
        value = value * 8 + static_cast<std::uint32_t>(NextChar() - '0');
    }
    return static_cast<std::int32_t>(value);
}

// A first byte of a double-byte character, as the language has always drawn these bounds.
bool StartsDoubleByte(std::int32_t value) {
    return (value >= 128 && value <= 158) || (value >= 224 && value <= 251);
}

void ScanString() {
    std::string text;
    const auto append = [&text](std::int32_t value) {
        if (text.size() < LITERAL_BYTES) {
            text += static_cast<char>(value);
        }
    };
    NextChar();
    for (;;) {
        std::int32_t value = NextChar();
        if (value == '"') {
            SkipBlanksAndComments();
            if (PeekChar() != '"') {
                break;
            }
            NextChar();
            continue;
        }
        if (value == '\\') {
            value = ScanEscape();
        }
        if (value == 0 || value == END_OF_SOURCE) {
            break;
        }
        append(value);
        if (StartsDoubleByte(value) && PeekChar() >= 0) {
            append(NextChar());
        }
    }
    const DataCell cell = ObjectCell(StringNew(std::string_view(text).substr(0, text.find('\0'))));
    literals.push_back(cell);
    SetConstant(cell);
}

void ScanName() {
    std::string& name = CurrentToken.text;
    while (IsNameStart(PeekChar()) || IsDigit(PeekChar())) {
        const auto character = static_cast<char>(NextChar());
        if (name.size() < TOKEN_BYTES) {
            name += character;
        }
    }
    const auto keyword = std::lower_bound(KEYWORDS.begin(), KEYWORDS.end(), name);
    if (keyword != KEYWORDS.end() && *keyword == name) {
        CurrentToken.kind = TOKEN_KEYWORD + 1 + static_cast<std::int32_t>(keyword - KEYWORDS.begin());
    } else if (const DataCell* constant = ConstFind(name)) {
        SetConstant(*constant);
    } else {
        CurrentToken.kind = TOKEN_IDENTIFIER;
    }
}

void ScanSymbol() {
    const std::string_view rest = std::string_view(source).substr(at, 2);
    for (const SymbolRow& row : SYMBOLS) {
        if (rest[0] == row.text[0] && rest.starts_with(row.text)) {
            CurrentToken.kind = row.kind;
            CurrentToken.text += row.text;
            at += row.text.size();
            return;
        }
    }
    CurrentToken.kind = SYM_UNKNOWN;
    const bool isDouble = rest.size() == 2 && IsLeadByte(static_cast<unsigned char>(rest[0])) &&
                          static_cast<unsigned char>(rest[1]) >= 0x40;
    CurrentToken.text += rest.substr(0, isDouble ? 2 : 1);
    at += CurrentToken.text.size();
}

}  // namespace

void ScanOpen(std::string_view path) {
    if (!OpenRegularFile(path)) {
        CompileError("ファイル %s がオープンできません。"_sjis, std::string(path).c_str());
    }
    std::optional<std::string> text;
    try {
        text = ReadWholeFile(path);
    } catch (const std::bad_alloc&) {
        CompileError("%s", "メモリが確保できません。(FileOpen)"_sjis);
    }
    if (!text) {
        CompileError("%s", "ファイルサイズが不正です。"_sjis);
    }
    ScanText(FileNamePart(path), std::move(*text));
}

void ScanText(std::string_view name, std::string text) {
    source = FileTextToCp932(std::move(text));
    at = 0;
    line = 1;
    fileName = fileNames.emplace_back(name).c_str();
    NextToken();
}

void ScanClose() {
    source = std::string();
    at = 0;
    fileName = nullptr;
}

std::int32_t NextChar() {
    const std::int32_t character = CharAt(at);
    if (character >= 0) {
        ++at;
        line += character == '\n' ? 1 : 0;
    }
    return character;
}

std::int32_t PeekChar() {
    return CharAt(at);
}

std::int32_t NextToken() {
    SkipBlanksAndComments();
    CurrentToken.text.clear();
    CurrentToken.line = line;
    const std::int32_t character = PeekChar();
    if (character < 0) {
        CurrentToken.kind = SYM_END;
    } else if (IsDigit(character)) {
        ScanNumber();
    } else if (character == '\'') {
        ScanCharacter();
    } else if (character == '"') {
        ScanString();
    } else if (IsNameStart(character)) {
        ScanName();
    } else {
        ScanSymbol();
    }
    return CurrentToken.kind;
}

bool ScanFollowedBy(char character) {
    const std::size_t atBefore = at;
    const std::int32_t lineBefore = line;
    SkipBlanksAndComments();
    const bool follows = PeekChar() == character;
    at = atBefore;
    line = lineBefore;
    return follows;
}

ScanPlace ScanRemember() {
    return {at, line, CurrentToken};
}

void ScanReturn(const ScanPlace& place) {
    at = place.at;
    line = place.line;
    CurrentToken = place.token;
}

const char* ScanFileName() {
    return fileName;
}

SourcePosition ScanPosition() {
    return {fileName, line};
}

void ScanFreeLiterals() {
    for (const DataCell& literal : literals) {
        ObjectRelease(ObjectOf(literal));
    }
    literals.clear();
    fileNames.clear();
}

}  // namespace quelmark
