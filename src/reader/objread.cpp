#include "reader/objread.h"

#include <string>

#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/TABLE.h"
#include "reader/atrread.h"
#include "reader/blocks.h"
#include "reader/report.h"
#include "reader/scanner.h"
#include "text/path.h"

namespace quelmark {

ReadState Reading;

namespace {

CancelCheck cancelCheck = nullptr;

// "atr NAME {" begins an attribute block, "atr NAME" alone names the attribute of what follows.
bool AtAttributeBlock() {
    const ShapeCursor here;
    const std::string_view text = Shape.text;
    ShapeNext();
    const bool named = ShapeAtWord();
    ShapeNext();
    const bool block = named && Shape.token == TOKEN_LEFT_BRACE;
    Shape.at = here.at;
    Shape.line = here.line;
    Shape.text = text;
    Shape.token = WORD_ATR;
    return block;
}

void ReadAttributeSwitch(ShapeBlock& block) {
    std::string name;
    ShapeNext();
    if (!ShapeName(name)) {
        return SkipConstruct();
    }
    block.attribute = AttrSearchOrAlloc(name);
    Reading.stopped = block.attribute < 0;
}

void ReadConstruct(ShapeBlock& block) {
    switch (Shape.token) {
        case WORD_PRIM:
            return ReadPolygon(block);
        case WORD_ATR:
            return ReadAttributeSwitch(block);
        case WORD_PARTS:
            return ReadPart(block);
        default:
            ObjectReport(Shape.token < WORD_COUNT ? OBJECT_UNSUPPORTED : OBJECT_EXISTS, Shape.text);
            ShapeNext();
            SkipConstruct();
    }
}

void ReadBody(ShapeBlock& block) {
    while (!ReadEnded() && !ShapeAccept(TOKEN_RIGHT_BRACE)) {
        if (Shape.token == TOKEN_END) {
            ObjectReport(OBJECT_END);
        } else if (Shape.token == WORD_OBJ || (Shape.token == WORD_ATR && AtAttributeBlock())) {
            ObjectReport(OBJECT_MISSING, "}");
            return;
        } else {
            ReadConstruct(block);
        }
    }
}

// "obj [private] suf NAME {". False when it is something else.
bool ReadHeader(std::string& name) {
    ShapeNext();
    if (Shape.token == WORD_PRIVATE) {
        ObjectReport(OBJECT_PRIVATE);
        ShapeNext();
    }
    if (Shape.token != TOKEN_END && !ShapeAccept(WORD_SUF)) {
        ObjectReport(OBJECT_SURFACE);
        return false;
    }
    const bool named = ShapeName(name);
    if (Shape.token == TOKEN_END) {
        ScannerReport(SCANNER_END);
        return false;
    }
    if (named && !ShapeAccept(TOKEN_LEFT_BRACE)) {
        ObjectReport(OBJECT_MISSING, "{");
        return false;
    }
    return named;
}

void SkipToObject() {
    while (Shape.token != WORD_OBJ && Shape.token != TOKEN_END) {
        ShapeNext();
    }
}

void ReadObjectBlock(std::string_view file, ShapeBlock* into) {
    std::string name;
    PollCancel();
    if (!ReadHeader(name)) {
        return SkipToObject();
    }
    if (into != nullptr) {
        into->attribute = -1;
        return ReadBody(*into);
    }
    const bool existed = Reading.mode == 1 && ObjFind(name) >= 0;
    ShapeBlock block;
    block.object = Reading.mode == 1 ? ObjSearchOrAlloc(name) : ObjAlloc(name);
    if (block.object < 0) {
        Reading.stopped = true;
        return;
    }
    CopyText(ObjTable[block.object].file, file);
    ReadBody(block);
    if (existed && block.changed) {
        ObjMarkEdited(block.object);
    }
}

}  // namespace

void ReaderSetCancelCheck(CancelCheck check) {
    cancelCheck = check;
}

void PollCancel() {
    if (cancelCheck != nullptr && cancelCheck()) {
        ScannerReport(SCANNER_ESCAPE);
        Reading.stopped = true;
    }
}

bool ReadEnded() {
    return ReaderSeverity >= SEVERITY_END || Reading.stopped;
}

bool EndRead() {
    ShapeClose();
    ReaderEnd();
    return ReaderSeverity < SEVERITY_CONSTRUCT && !Reading.stopped;
}

bool ReadWasStopped() {
    return Reading.stopped;
}

void ReadBlocks(std::string_view file, ShapeBlock* into) {
    if (Shape.token != WORD_OBJ && Shape.token != WORD_ATR) {
        ObjectReport(OBJECT_KIND);
    }
    while (!ReadEnded() && Shape.token != TOKEN_END) {
        if (Shape.token == WORD_OBJ) {
            ReadObjectBlock(file, into);
        } else if (Shape.token == WORD_ATR) {
            PollCancel();
            ReadAttributeBlock(file, 1);
        } else {
            ObjectReport(OBJECT_MISSING, "obj");
            SkipToObject();
        }
    }
}

bool ReadShapeFile(std::string_view given, std::int32_t mode) {
    std::string name(given);
    if (!HasExtension(name)) {
        name += ".suf";
    }
    BeginRead(mode, UNIT_MATRIX);
    if (ShapeOpen(name)) {
        ReadBlocks(name, nullptr);
    }
    return EndRead();
}

}  // namespace quelmark
