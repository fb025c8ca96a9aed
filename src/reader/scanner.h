// Tokens of a shape file, read whole into memory, and the one routine through which every fault is reported.
#pragma once

#include <cstdint>
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

inline constexpr std::size_t READER_NAME_BYTES = 31;

// A reader's messages: code, text with at most one "%s", severity (1 warning, 10 construct, 20 end of the
// read).
struct ReaderMessage {
    std::int32_t code;
    const char* text;
    std::int32_t severity;
};
// The worst severity since ReaderBegin.
extern std::int32_t ReaderSeverity;
inline constexpr std::int32_t SEVERITY_CONSTRUCT = 10;
inline constexpr std::int32_t SEVERITY_END = 20;
// Shows "file line : message   next token=token" as a warning; the last row of a table serves unknown codes.
// Returns the severity.
std::int32_t ReaderReport(std::span<const ReaderMessage> table, std::int32_t code,
                          std::string_view argument = "");
std::int32_t ReaderReportText(std::string_view text, std::int32_t severity);

// The scanner's own messages.
enum ScannerFault : std::int32_t {
    FAULT_NUMBER = 11,
    FAULT_COLOUR = 12,
    FAULT_TRANSFORM = 13,
    FAULT_ARGUMENT = 14,
    FAULT_LONG_NAME = 15,
    FAULT_NAME = 16,
    FAULT_EXISTS = 17,
    FAULT_MISSING = 18,
    FAULT_END = 21,
    FAULT_OPEN = 22,
    FAULT_ESCAPE = 23,
    FAULT_MEMORY = 24,
};
std::int32_t ScannerReport(std::int32_t code, std::string_view argument = "");

// The file being read. One is active; a part reference puts it aside and takes it back.
struct ShapeText {
    std::string bytes;         // a NUL stands behind the last one
    std::string name;          // as messages show it
    std::string directory;     // up to and including the last separator
    const char* at = nullptr;  // behind the current token
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
// The next token becomes the current one.
void ShapeNext();
// Skips the current token when it is this one.
bool ShapeAccept(std::int32_t token);
// The reader's fast path, behind the current token and without making tokens: `most` coordinates, truncated
// and clamped to ±32767 (`clamped` tells). Returns how many there were; when fewer, the token that is no
// number is current.
std::size_t ShapeIntegers(std::int16_t* values, std::size_t most, bool& clamped);
// True, with it as the current token, when a `)` comes next.
bool ShapeAtRightParen();
// A name: reports and answers false when the current token is none.
bool ShapeName(std::string& name);
// `( n numbers )`: reports and answers false when it is something else.
bool ShapeNumbers(std::span<double> numbers);

}  // namespace quelmark
