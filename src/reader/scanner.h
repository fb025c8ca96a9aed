// Tokens of a shape file, read whole into memory.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quelmark {

// Reserved words in alphabetical order: a word's place is its token code.
enum ReaderToken : std::int32_t {
    WORD_AMB,
    WORD_ATR,
    WORD_ATT,
    WORD_BACK,
    WORD_BLU,
    WORD_BUMPMAP,
    WORD_CMP,
    WORD_COL,
    WORD_COLORMAP,
    WORD_CST,
    WORD_DEG,
    WORD_DEPTH,
    WORD_DIF,
    WORD_DST,
    WORD_ENV,
    WORD_EYE,
    WORD_FRAM,
    WORD_FRM,
    WORD_GLAD,
    WORD_HSV,
    WORD_IMAGE,
    WORD_LEN,
    WORD_LIGHT,
    WORD_MAP,
    WORD_MAPSIZE,
    WORD_MAPVIEW,
    WORD_MAPWIND,
    WORD_MAT,
    WORD_MOD,
    WORD_MOV,
    WORD_MSK,
    WORD_NON,
    WORD_OBJ,
    WORD_OPT,
    WORD_PAL,
    WORD_PARTS,
    WORD_PLT,
    WORD_PNT,
    WORD_POINT,
    WORD_POLY,
    WORD_PRIM,
    WORD_PRIVATE,
    WORD_PXN,
    WORD_PXS,
    WORD_RED,
    WORD_REF,
    WORD_RFR,
    WORD_RGB,
    WORD_RLN,
    WORD_ROTX,
    WORD_ROTY,
    WORD_ROTZ,
    WORD_SCAL,
    WORD_SCR,
    WORD_SHADE,
    WORD_SPC,
    WORD_SPOT,
    WORD_STAR,
    WORD_STOP,
    WORD_SUF,
    WORD_TARGET,
    WORD_TRA,
    WORD_TRP,
    WORD_UVPOLY,
    WORD_UVSHADE,
    WORD_VEC,
    WORD_COUNT,
    TOKEN_LEFT_PAREN = 200,
    TOKEN_RIGHT_PAREN = 201,
    TOKEN_LEFT_BRACE = 202,
    TOKEN_RIGHT_BRACE = 203,
    TOKEN_NUMBER = 210,
    TOKEN_NAME = 211,
    TOKEN_END = 255,
};

inline constexpr std::uint32_t COORDINATE_MOST = 32767;

// The file being read. One is active; a part reference puts it aside and takes it back.
struct ShapeText {
    std::unique_ptr<char[]> bytes;  // a NUL stands behind the last one
    std::string name;               // as messages show it
    std::string directory;          // up to and including the last separator
    const char* at = nullptr;       // behind the current token
    const char* end = nullptr;
    std::int32_t line = 1;
    std::int32_t token = TOKEN_END;
    std::string_view text;  // of the current token
    double number = 0;      // of a TOKEN_NUMBER
    bool clampWarned = false;
};
extern ShapeText Shape;

// Opens a file as the active one and scans its first token. Reports "ファイル %s がオープンできません。" or
// "メモリが足りません。" and answers false.
bool ShapeOpen(std::string_view path);
void ShapeClose();
// The next token becomes the current one.
void ShapeNext();
// Skips the current token when it is this one.
bool ShapeAccept(std::int32_t token);
// True for a word that is no punctuation.
inline bool ShapeAtWord() {
    return Shape.token < WORD_COUNT || Shape.token == TOKEN_NUMBER || Shape.token == TOKEN_NAME;
}
// A name: any word but a number, also a reserved one. Reports and answers false when the current token is
// none; silently at the end of the file.
bool ShapeName(std::string& name);
// `( n numbers )`: as above.
bool ShapeNumbers(std::span<double> numbers);

// ---- coordinates, without making tokens ----

// A place in the active file that runs ahead of its current token.
struct ShapeCursor {
    const char* at = Shape.at;
    std::int32_t line = Shape.line;
};

// To the first character that is no blank: a NUL is the end of the file, or for the tokens to look at.
inline void SkipToWord(ShapeCursor& cursor) {
    while (static_cast<unsigned char>(*cursor.at - 1) < ' ') {
        cursor.line += *cursor.at++ == '\n' ? 1 : 0;
    }
}

// A coordinate of digits only, inside its range. False, with the cursor in front of the word, when a closer
// look is needed.
inline bool TakeCoordinate(ShapeCursor& cursor, std::int16_t& value) {
    SkipToWord(cursor);
    const char* at = cursor.at;
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    const char* const first = at;
    std::uint32_t sum = 0;
    std::uint32_t digit = 0;
    while ((digit = static_cast<std::uint32_t>(*at) - '0') < 10) {
        sum = sum * 10 + digit;
        ++at;
    }
    // Up to nine digits do not wrap.
    if (at == first || at - first > 9 || sum > COORDINATE_MOST ||
        !(static_cast<unsigned char>(*at) <= ' ' || *at == ')')) {
        return false;
    }
    cursor.at = at;
    value = static_cast<std::int16_t>(negative ? -static_cast<std::int32_t>(sum)
                                               : static_cast<std::int32_t>(sum));
    return true;
}

// The closer look: comments, fractions (truncated), signs, values below `least` or too large (limited;
// `limited` tells). False, with it as the current token, when there is no number.
bool TakeAnyCoordinate(ShapeCursor& cursor, std::int16_t& value, std::int16_t least, bool& limited);
// The token behind the cursor becomes the current one.
void ShapeResume(const ShapeCursor& cursor);

}  // namespace quelmark
