#include "reader/atrread.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "ML/STACK.h"
#include "MODEL/ATR.h"
#include "MODEL/POLY.h"
#include "MODEL/TABLE.h"
#include "reader/blocks.h"
#include "reader/objread.h"
#include "reader/report.h"
#include "reader/scanner.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr double FIXED_12 = 4096;
constexpr double FIXED_16 = 65536;

std::int16_t ToFixed12(double value) {
    return static_cast<std::int16_t>(RealToInt(std::clamp(value * FIXED_12, -32768.0, 32767.0)));
}

ColourTriple Triple(double red, double green, double blue) {
    return {ToFixed12(red), ToFixed12(green), ToFixed12(blue), 0};
}

// Hue in degrees, saturation and value 0 to 1: the usual hexcone.
ColourTriple FromHsv(double hue, double saturation, double value) {
    hue = std::fmod(std::fmod(hue, 360.0) + 360.0, 360.0) / 60.0;
    if (!std::isfinite(hue)) {
        hue = 0;
    }
    const double chroma = value * saturation;
    const double middle = chroma * (1 - std::fabs(std::fmod(hue, 2.0) - 1));
    const double least = value - chroma;
    const double table[6][3] = {{chroma, middle, 0}, {middle, chroma, 0}, {0, chroma, middle},
                                {0, middle, chroma}, {middle, 0, chroma}, {chroma, 0, middle}};
    const auto& row = table[static_cast<int>(hue) % 6];
    return Triple(row[0] + least, row[1] + least, row[2] + least);
}

// A number, `rgb ( r g b )` or `hsv ( h s v )`.
bool ReadColour(ColourTriple& colour) {
    if (Shape.token == TOKEN_NUMBER) {
        colour = Triple(Shape.number, Shape.number, Shape.number);
        ShapeNext();
        return true;
    }
    const bool hsv = Shape.token == WORD_HSV;
    if (!hsv && Shape.token != WORD_RGB) {
        if (Shape.token != TOKEN_END) {
            ScannerReport(SCANNER_COLOUR);
        }
        return false;
    }
    ShapeNext();
    double numbers[3];
    if (!ShapeNumbers(numbers)) {
        return false;
    }
    colour = hsv ? FromHsv(numbers[0], numbers[1], numbers[2]) : Triple(numbers[0], numbers[1], numbers[2]);
    return true;
}

bool ExpectToken(std::int32_t token, std::string_view text) {
    if (ShapeAccept(token)) {
        return true;
    }
    if (Shape.token != TOKEN_END) {
        AttributeReport(ATTRIBUTE_MISSING, text);
    }
    return false;
}

struct ColourRow {
    std::int32_t word;
    ColourTriple AttributeRecord::*field;
};
constexpr ColourRow COLOURS[] = {
    {WORD_COL, &AttributeRecord::col}, {WORD_TRA, &AttributeRecord::tra}, {WORD_AMB, &AttributeRecord::amb},
    {WORD_DIF, &AttributeRecord::dif}, {WORD_REF, &AttributeRecord::ref}, {WORD_RFR, &AttributeRecord::rfr},
    {WORD_ATT, &AttributeRecord::att},
};

bool ReadColourLine(AttributeRecord& attribute, const ColourRow& row) {
    ColourTriple colour{};
    ShapeNext();
    if (!ExpectToken(TOKEN_LEFT_PAREN, "(") || !ReadColour(colour) || !ExpectToken(TOKEN_RIGHT_PAREN, ")")) {
        return false;
    }
    attribute.*row.field = colour;
    return true;
}

// Two colours, then the specular number.
bool ReadSpecular(AttributeRecord& attribute) {
    ColourTriple first{};
    ColourTriple second{};
    ShapeNext();
    if (!ExpectToken(TOKEN_LEFT_PAREN, "(") || !ReadColour(first) || !ReadColour(second)) {
        return false;
    }
    if (Shape.token != TOKEN_NUMBER) {
        if (Shape.token != TOKEN_END) {
            ScannerReport(SCANNER_NUMBER);
        }
        return false;
    }
    const std::int16_t number = ToFixed12(Shape.number);
    ShapeNext();
    if (!ExpectToken(TOKEN_RIGHT_PAREN, ")")) {
        return false;
    }
    attribute.spc = first;
    attribute.size = second;
    attribute.spcextra = number;
    return true;
}

bool ReadColourMap(AttributeRecord& attribute) {
    std::string name;
    ShapeNext();
    if (!ExpectToken(TOKEN_LEFT_PAREN, "(") || !ShapeName(name) || !ExpectToken(TOKEN_RIGHT_PAREN, ")")) {
        return false;
    }
    CopyText(attribute.mapfile, name);
    attribute.map = 1;
    return true;
}

// Four numbers in parentheses.
bool TakeFour(double (&numbers)[4]) {
    if (!ShapeAccept(TOKEN_LEFT_PAREN)) {
        return false;
    }
    for (double& number : numbers) {
        if (Shape.token != TOKEN_NUMBER) {
            return false;
        }
        number = Shape.number;
        ShapeNext();
    }
    return ShapeAccept(TOKEN_RIGHT_PAREN);
}

bool ReadRectangle(std::int32_t (&rectangle)[2][2]) {
    double numbers[4];
    ShapeNext();
    if (!TakeFour(numbers)) {
        if (Shape.token != TOKEN_END) {
            AttributeReport(ATTRIBUTE_MAPPING);
        }
        return false;
    }
    for (int i = 0; i < 4; ++i) {
        rectangle[i / 2][i % 2] = RealToInt(numbers[i] * FIXED_16);
    }
    return true;
}

// One line of the block; false drops it.
bool ReadLine(AttributeRecord& attribute) {
    const auto* colour = std::ranges::find(COLOURS, Shape.token, &ColourRow::word);
    if (colour != std::end(COLOURS)) {
        return ReadColourLine(attribute, *colour);
    }
    switch (Shape.token) {
        case WORD_SPC:
            return ReadSpecular(attribute);
        case WORD_COLORMAP:
            return ReadColourMap(attribute);
        case WORD_MAPSIZE:
            return ReadRectangle(attribute.mapsize);
        case WORD_MAPVIEW:
            return ReadRectangle(attribute.mapview);
        case WORD_MAPWIND:
            return ReadRectangle(attribute.mapwind);
        case WORD_BUMPMAP:
            AttributeReport(ATTRIBUTE_BUMPMAP, Shape.text);
            ShapeNext();
            return false;
        default:
            if (Shape.token < WORD_COUNT) {
                AttributeReport(ATTRIBUTE_UNSUPPORTED, Shape.text);
            } else {
                AttributeReport(ATTRIBUTE_EXISTS, Shape.text);
            }
            ShapeNext();
            return false;
    }
}

bool BeginsLine(std::int32_t token) {
    return std::ranges::find(COLOURS, token, &ColourRow::word) != std::end(COLOURS) || token == WORD_SPC ||
           token == WORD_COLORMAP || token == WORD_MAPSIZE || token == WORD_MAPVIEW ||
           token == WORD_MAPWIND || token == WORD_BUMPMAP;
}

// To the next line that can be read, the end of the block or of the file, or the next block.
void SkipLine() {
    while (Shape.token != TOKEN_END && Shape.token != TOKEN_RIGHT_BRACE && Shape.token != WORD_OBJ &&
           Shape.token != WORD_ATR && !BeginsLine(Shape.token)) {
        ShapeNext();
    }
}

void ReadBody(AttributeRecord& attribute) {
    while (!ShapeAccept(TOKEN_RIGHT_BRACE)) {
        if (Shape.token == TOKEN_END) {
            AttributeReport(ATTRIBUTE_END);
            return;
        }
        if (Shape.token == WORD_OBJ || Shape.token == WORD_ATR) {
            AttributeReport(ATTRIBUTE_MISSING, "}");
            return;
        }
        if (!ReadLine(attribute)) {
            SkipLine();
        }
    }
}

// "atr NAME {". False when it is something else.
bool ReadHeader(std::string& name) {
    ShapeNext();
    const bool named = ShapeName(name);
    if (Shape.token == TOKEN_END) {
        ScannerReport(SCANNER_END);
        return false;
    }
    return named && ExpectToken(TOKEN_LEFT_BRACE, "{");
}

void SkipToBlock() {
    while (Shape.token != TOKEN_END && Shape.token != WORD_ATR && Shape.token != WORD_OBJ) {
        ShapeNext();
    }
}

// An object block, up to and including its closing brace.
void SkipObject() {
    for (std::int32_t depth = 0; Shape.token != TOKEN_END; ShapeNext()) {
        depth += Shape.token == TOKEN_LEFT_BRACE ? 1 : 0;
        if (Shape.token == TOKEN_RIGHT_BRACE && --depth <= 0) {
            ShapeNext();
            return;
        }
    }
}

}  // namespace

void ReadAttributeBlock(std::string_view file, std::int32_t mode) {
    std::string name;
    if (!ReadHeader(name)) {
        return SkipToBlock();
    }
    const std::int32_t n = mode == 1 ? AttrSearchOrAlloc(name) : AttrAlloc(name);
    if (n < 0) {
        Reading.stopped = true;
        return;
    }
    AttributeRecord read{};
    AttrDefaults(read, name);
    ReadBody(read);
    CopyText(read.file, file);
    read.code = AttrCodeOfColour(read.col);
    AttrTable[n] = read;
    ++AttrRevision;
}

bool ReadAttributeFile(std::string_view given, std::int32_t mode) {
    std::string name(given);
    if (!HasExtension(name)) {
        name += ".suf";
    }
    BeginRead(mode, UNIT_MATRIX);
    if (ShapeOpen(name) && Shape.token != WORD_ATR) {
        AttributeReport(ATTRIBUTE_KIND);
    }
    while (!ReadEnded() && Shape.token != TOKEN_END) {
        PollCancel();
        if (Shape.token == WORD_ATR) {
            ReadAttributeBlock(name, mode);
        } else if (Shape.token == WORD_OBJ) {
            SkipObject();
        } else {
            AttributeReport(ATTRIBUTE_MISSING, "atr");
            SkipToBlock();
        }
    }
    return EndRead();
}

}  // namespace quelmark
