// Frame files: a scene of one frame, of which the objects and their matrices are read.
#include <string>
#include <utility>

#include "reader/blocks.h"
#include "reader/objread.h"
#include "reader/report.h"
#include "reader/scanner.h"
#include "reader/transform.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

void SkipParentheses() {
    for (std::int32_t depth = 0; Shape.token != TOKEN_END;) {
        depth += Shape.token == TOKEN_LEFT_PAREN ? 1 : Shape.token == TOKEN_RIGHT_PAREN ? -1 : 0;
        ShapeNext();
        if (depth <= 0) {
            return;
        }
    }
}

void SkipBraces() {
    for (std::int32_t depth = 0; Shape.token != TOKEN_END;) {
        const bool brace = Shape.token == TOKEN_LEFT_BRACE || Shape.token == TOKEN_RIGHT_BRACE;
        depth += Shape.token == TOKEN_LEFT_BRACE ? 1 : Shape.token == TOKEN_RIGHT_BRACE ? -1 : 0;
        ShapeNext();
        if (brace && depth <= 0) {
            return;
        }
    }
}

// `obj NAME`: the shape that a frame places.
void ReadObject(const Matrix& matrix) {
    std::string name;
    std::string path;
    ShapeNext();
    if (!ShapeName(name)) {
        return;
    }
    if (!FindShape(name, path)) {
        ReaderReport(std::string("ファイル "_sjis) + name + " がオープンできません。"_sjis,
                     SEVERITY_CONSTRUCT);
        return;
    }
    ShapeText frame = std::move(Shape);
    SetBaseMatrix(matrix);
    if (ShapeOpen(path)) {
        ReadBlocks(path, nullptr);
    }
    Shape = std::move(frame);
}

// "fram {" lights, an eye, a matrix, an object "}": what only a picture needs is passed over.
void ReadFrame() {
    Matrix matrix = UNIT_MATRIX;
    ShapeNext();
    if (Shape.token != TOKEN_END && !ShapeAccept(TOKEN_LEFT_BRACE)) {
        ObjectReport(OBJECT_MISSING, "{");
        return;
    }
    while (!ReadEnded() && !ShapeAccept(TOKEN_RIGHT_BRACE)) {
        if (Shape.token == TOKEN_END) {
            ObjectReport(OBJECT_END);
        } else if (Shape.token == WORD_MAT) {
            matrix = UNIT_MATRIX;
            ReadTransforms(matrix);
        } else if (Shape.token == WORD_OBJ) {
            ReadObject(matrix);
        } else if (Shape.token == TOKEN_LEFT_PAREN) {
            SkipParentheses();
        } else {
            ShapeNext();
        }
    }
}

void ReadFrames() {
    while (!ReadEnded() && Shape.token != TOKEN_END) {
        if (Shape.token == WORD_FRAM) {
            ReadFrame();
        } else if (Shape.token == WORD_ENV) {
            SkipBraces();
        } else {
            ObjectReport(OBJECT_MISSING, "fram");
            while (Shape.token != WORD_FRAM && Shape.token != TOKEN_END) {
                ShapeNext();
            }
        }
    }
}

}  // namespace

bool ReadFrameFile(std::string_view given, std::int32_t mode) {
    std::string name(given);
    if (!HasExtension(name) && !PathExists(name)) {
        name += ".suf";
    }
    BeginRead(mode, UNIT_MATRIX);
    if (ShapeOpen(name)) {
        if (Shape.token == WORD_FRAM || Shape.token == WORD_ENV) {
            ReadFrames();
        } else {
            ReadBlocks(name, nullptr);
        }
    }
    return EndRead();
}

}  // namespace quelmark
