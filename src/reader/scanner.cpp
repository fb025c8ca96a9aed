#include "reader/scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <new>

#include "ML/ERROR.h"
#include "ML/STACK.h"
#include "MODEL/POLY.h"
#include "text/cp932.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t ReaderSeverity = 0;
ShapeText Shape;

namespace {

constexpr std::array<std::string_view, WORD_COUNT> WORDS = {
    "amb",    "atr",     "att",   "back",   "blu",     "bumpmap", "cmp",     "col",  "colormap", "cst",
    "deg",    "depth",   "dif",   "dst",    "env",     "eye",     "fram",    "frm",  "glad",     "hsv",
    "image",  "len",     "light", "map",    "mapsize", "mapview", "mapwind", "mat",  "mod",      "mov",
    "msk",    "non",     "obj",   "opt",    "pal",     "parts",   "plt",     "pnt",  "point",    "poly",
    "prim",   "private", "pxn",   "pxs",    "red",     "ref",     "rfr",     "rgb",  "rln",      "rotx",
    "roty",   "rotz",    "scal",  "scr",    "shade",   "spc",     "spot",    "star", "stop",     "suf",
    "target", "tra",     "trp",   "uvpoly", "uvshade", "vec",
};
static_assert(std::ranges::is_sorted(WORDS));

constexpr ReaderMessage MESSAGES[] = {
    {FAULT_NUMBER, "数字が必要です。"_sjis, 10},
    {FAULT_COLOUR, "色情報がおかしい。"_sjis, 10},
    {FAULT_TRANSFORM, "座標変換指定がおかしい。"_sjis, 10},
    {FAULT_ARGUMENT, "引数の処理はできません。"_sjis, 10},
    {FAULT_LONG_NAME, "名前（%s）が長すぎます。（３１文字まで)"_sjis, 10},
    {FAULT_NAME, "名前（%s）がおかしい"_sjis, 10},
    {FAULT_EXISTS, " %s が存在します。"_sjis, 10},
    {FAULT_MISSING, " %s がありません。"_sjis, 10},
    {FAULT_END, "エンドオブファイルになりました。"_sjis, 20},
    {FAULT_OPEN, "ファイル %s がオープンできません。"_sjis, 20},
    {FAULT_ESCAPE, " ESC キーが押されました。"_sjis, 20},
    {FAULT_MEMORY, "メモリが足りません。"_sjis, 20},
    {0, "エラーコードの誤り。( scanner )"_sjis, 20},
};

bool IsBlank(char character) {
    return static_cast<unsigned char>(character) <= ' ';
}
bool IsPunctuation(char character) {
    return character == '{' || character == '}' || character == '(' || character == ')';
}
bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Moves to the first character of the next token, counting lines; comments are blanks.
void SkipBlanks() {
    const char* at = Shape.at;
    for (; at < Shape.end; ++at) {
        if (*at == '\n') {
            ++Shape.line;
        } else if (*at == '/' && at[1] == '*') {
            at += 2;
            while (at < Shape.end && !(*at == '*' && at[1] == '/')) {
                Shape.line += *at++ == '\n' ? 1 : 0;
            }
            ++at;
        } else if (!IsBlank(*at)) {
            break;
        }
    }
    Shape.at = std::min(at, Shape.end);
}

// The word at Shape.at: up to a blank or a punctuation, neither of which is looked for in second bytes.
std::string_view TakeWord() {
    const char* start = Shape.at;
    const char* at = start;
    while (at < Shape.end && !IsBlank(*at) && !IsPunctuation(*at)) {
        at += IsLeadByte(static_cast<unsigned char>(*at)) && at + 1 < Shape.end ? 2 : 1;
    }
    Shape.at = at;
    return {start, static_cast<std::size_t>(at - start)};
}

std::int32_t WordToken(std::string_view word) {
    const auto found = std::ranges::lower_bound(WORDS, word);
    return found != WORDS.end() && *found == word ? static_cast<std::int32_t>(found - WORDS.begin())
                                                  : TOKEN_NAME;
}

bool LooksNumeric(std::string_view word) {
    const std::size_t sign = word[0] == '-' || word[0] == '+' ? 1 : 0;
    return word.size() > sign &&
           (IsDigit(word[sign]) || (word[sign] == '.' && word.size() > sign + 1 && IsDigit(word[sign + 1])));
}

void ClassifyWord(std::string_view word) {
    Shape.text = word;
    if (LooksNumeric(word)) {
        std::size_t used = 0;
        Shape.number = ParseReal(word, &used);
        Shape.token = used == word.size() ? static_cast<std::int32_t>(TOKEN_NUMBER) : TOKEN_NAME;
    } else {
        Shape.token = WordToken(word);
    }
}

// Digits only, the fast case of a coordinate. Moves behind it; false leaves everything to the careful path.
bool TakePlainInteger(std::int32_t& value) {
    const char* at = Shape.at;
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    const char* first = at;
    std::int32_t sum = 0;
    while (IsDigit(*at)) {
        sum = sum * 10 + (*at++ - '0');
        if (at - first > 8) {
            return false;
        }
    }
    if (at == first || !(IsBlank(*at) || *at == ')')) {
        return false;
    }
    Shape.at = at;
    value = negative ? -sum : sum;
    return true;
}

}  // namespace

std::int32_t ReaderReportText(std::string_view text, std::int32_t severity) {
    char number[16];
    std::snprintf(number, sizeof number, "%3d", Shape.line);
    std::string line = Shape.name;
    line += number;
    line += " : ";
    line += text;
    line += "   next token=";
    line += Shape.text;
    Warning(line);
    ReaderSeverity = std::max(ReaderSeverity, severity);
    return severity;
}

std::int32_t ReaderReport(std::span<const ReaderMessage> table, std::int32_t code,
                          std::string_view argument) {
    const auto* row =
        std::ranges::find(table.data(), table.data() + table.size() - 1, code, &ReaderMessage::code);
    std::string text = row->text;
    if (const std::size_t place = text.find("%s"); place != std::string::npos) {
        text.replace(place, 2, argument);
    }
    return ReaderReportText(text, row->severity);
}

std::int32_t ScannerReport(std::int32_t code, std::string_view argument) {
    return ReaderReport(MESSAGES, code, argument);
}

bool ShapeOpen(std::string_view path) {
    Shape = ShapeText{};
    Shape.name = path;
    Shape.directory = DirectoryPart(path);
    try {
        auto bytes = ReadWholeFile(path);
        if (!bytes) {
            ScannerReport(FAULT_OPEN, path);
            return false;
        }
        Shape.bytes = FileTextToCp932(std::move(*bytes));
    } catch (const std::bad_alloc&) {
        ScannerReport(FAULT_MEMORY);
        return false;
    }
    Shape.at = Shape.bytes.c_str();
    Shape.end = Shape.at + Shape.bytes.size();
    ShapeNext();
    return true;
}

void ShapeNext() {
    SkipBlanks();
    if (Shape.at == Shape.end) {
        Shape.token = TOKEN_END;
        Shape.text = {};
        return;
    }
    const char first = *Shape.at;
    if (!IsPunctuation(first)) {
        ClassifyWord(TakeWord());
        return;
    }
    Shape.text = {Shape.at++, 1};
    Shape.token = first == '('   ? TOKEN_LEFT_PAREN
                  : first == ')' ? TOKEN_RIGHT_PAREN
                  : first == '{' ? TOKEN_LEFT_BRACE
                                 : TOKEN_RIGHT_BRACE;
}

bool ShapeAtRightParen() {
    SkipBlanks();
    if (*Shape.at != ')') {
        return false;
    }
    ShapeNext();
    return true;
}

bool ShapeAccept(std::int32_t token) {
    if (Shape.token != token) {
        return false;
    }
    ShapeNext();
    return true;
}

std::size_t ShapeIntegers(std::int16_t* values, std::size_t most, bool& clamped) {
    std::size_t count = 0;
    for (; count < most; ++count) {
        SkipBlanks();
        std::int32_t value = 0;
        if (!TakePlainInteger(value)) {
            ShapeNext();
            if (Shape.token != TOKEN_NUMBER) {
                return count;
            }
            const double limited = std::clamp(Shape.number, -40000.0, 40000.0);
            value = static_cast<std::int32_t>(limited);
        }
        if (value < VERTEX_MIN || value > VERTEX_MAX) {
            clamped = true;
            value = std::clamp(value, VERTEX_MIN, VERTEX_MAX);
        }
        values[count] = static_cast<std::int16_t>(value);
    }
    return count;
}

bool ShapeName(std::string& name) {
    if (Shape.token == TOKEN_END) {
        return false;
    }
    if (Shape.token > WORD_COUNT && Shape.token != TOKEN_NUMBER && Shape.token != TOKEN_NAME) {
        ScannerReport(FAULT_NAME, Shape.text);
        return false;
    }
    if (Shape.text.size() > READER_NAME_BYTES) {
        ScannerReport(FAULT_LONG_NAME, Shape.text.substr(0, 256));
        ShapeNext();
        return false;
    }
    name = Shape.text;
    ShapeNext();
    return true;
}

bool ShapeNumbers(std::span<double> numbers) {
    if (!ShapeAccept(TOKEN_LEFT_PAREN)) {
        ScannerReport(FAULT_MISSING, "(");
        return false;
    }
    for (double& number : numbers) {
        if (Shape.token != TOKEN_NUMBER) {
            ScannerReport(FAULT_NUMBER);
            return false;
        }
        number = Shape.number;
        ShapeNext();
    }
    if (!ShapeAccept(TOKEN_RIGHT_PAREN)) {
        ScannerReport(FAULT_MISSING, ")");
        return false;
    }
    return true;
}

}  // namespace quelmark
