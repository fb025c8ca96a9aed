#include "reader/objread.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/TABLE.h"
#include "MODEL/TRANSFORM.h"
#include "reader/atrread.h"
#include "reader/scanner.h"
#include "reader/transform.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

enum ObjectFault : std::int32_t {
    PRIVATE = 1,
    MISSING = 11,
    EXISTS = 12,
    SURFACE = 13,
    UNSUPPORTED = 14,
    FEW_VERTICES = 15,
    NO_ATTRIBUTE = 16,
    COMPLEX = 17,
    END = 21,
    KIND = 22,
};

constexpr ReaderMessage MESSAGES[] = {
    {PRIVATE, "警告：private 処理はサポートしていません。"_sjis, 1},
    {MISSING, " %s がありません。"_sjis, 10},
    {EXISTS, " %s が存在します。"_sjis, 10},
    {SURFACE, "サーフィスモデルではありません。"_sjis, 10},
    {UNSUPPORTED, " %s はサポートしていません。"_sjis, 10},
    {FEW_VERTICES, "多角形の頂点が２つ以下しかありません。"_sjis, 10},
    {NO_ATTRIBUTE, "atr no があります。"_sjis, 1},
    {COMPLEX, "構造定義が複雑すぎます。"_sjis, 10},
    {END, "エンドオブファイルになりました"_sjis, 20},
    {KIND, "形状ファイルではありません。"_sjis, 20},
    {0, "エラーコードの誤り。( objread )"_sjis, 20},
};

constexpr std::int32_t LEVELS_MOST = 10;    // of part references inside each other
constexpr std::int32_t PARTS_MOST = 10000;  // references of one read in all
constexpr std::int32_t POLYGONS_BETWEEN_POLLS = 8192;
constexpr std::size_t WORDS_MOST = 8;  // of one vertex

std::string startDirectory;
CancelCheck cancelCheck = nullptr;
std::int32_t levels = 0;
std::int32_t parts = 0;
std::int32_t polygonsToPoll = POLYGONS_BETWEEN_POLLS;
bool bufferFull = false;
std::array<Matrix, LEVELS_MOST + 1> matrices;  // the reference stack, level 0 the unit matrix

// The object block being read.
struct Block {
    std::int32_t object = -1;
    std::int32_t attribute = -1;  // -1: still "no"
    bool changed = false;
};

void Report(ObjectFault code, std::string_view argument = "") {
    ReaderReport(MESSAGES, code, argument);
}

bool Ended() {
    return ReaderSeverity >= SEVERITY_END || bufferFull;
}

// ---- polygons ----

struct TypeRow {
    std::int32_t word;
    std::uint16_t type;
    std::uint8_t words;  // per vertex
};
constexpr TypeRow TYPES[] = {{WORD_POLY, POLY_SIMPLE, 3},
                             {WORD_SHADE, POLY_SHADE, 6},
                             {WORD_UVPOLY, POLY_UV, 5},
                             {WORD_UVSHADE, POLY_UVSHADE, 8}};

VertexRecord ToVertex(const std::int16_t* words, std::uint16_t type) {
    VertexRecord vertex{words[0], words[1], words[2], 0, 0, 0, 0, 0};
    words += 3;
    if ((type & POLY_SHADE) != 0) {
        vertex.nx = words[0];
        vertex.ny = words[1];
        vertex.nz = words[2];
        words += 3;
    }
    if ((type & POLY_UV) != 0) {
        vertex.u = words[0];
        vertex.v = words[1];
    }
    return vertex;
}

std::int16_t Rounded(float value) {
    const float limited = std::clamp(value, static_cast<float>(VERTEX_MIN), static_cast<float>(VERTEX_MAX));
    return static_cast<std::int16_t>(std::isnan(value) ? 0.0F : std::nearbyint(limited));
}

// A part's polygon, moved by the matrix of its level.
void TransformVertices(std::span<VertexRecord> vertices, std::uint16_t type) {
    const Matrix& matrix = matrices[static_cast<std::size_t>(levels)];
    const ModelTransform turn(matrix);
    for (VertexRecord& v : vertices) {
        const Vector moved =
            MatrixApply({static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)}, matrix);
        v.x = Rounded(moved.x);
        v.y = Rounded(moved.y);
        v.z = Rounded(moved.z);
        if ((type & POLY_SHADE) != 0) {
            turn.TurnNormal(&v.nx);
            NormaliseTo256(&v.nx);
        }
    }
}

bool StorePolygon(Block& block, std::uint16_t type, std::span<const VertexRecord> vertices) {
    const auto vers = static_cast<std::int32_t>(vertices.size());
    auto* polygon = reinterpret_cast<PolygonRecord*>(BufferAppend(PolygonSize(vers)));
    if (polygon == nullptr) {
        bufferFull = true;
        return false;
    }
    polygon->select = 1;
    polygon->type = type;
    polygon->attr = static_cast<std::int16_t>(block.attribute);
    polygon->obj = static_cast<std::int16_t>(block.object);
    polygon->vers = static_cast<std::int16_t>(vers);
    polygon->flags = 0;
    polygon->reserved = 0;
    std::ranges::copy(vertices, polygon->vertex);
    PlaneNormal(vertices, polygon->normal);
    ++SelectCount;
    block.changed = true;
    return true;
}

void PollCancel() {
    if (--polygonsToPoll > 0) {
        return;
    }
    polygonsToPoll = POLYGONS_BETWEEN_POLLS;
    if (cancelCheck != nullptr && cancelCheck()) {
        ScannerReport(FAULT_ESCAPE);
    }
}

// Behind a fault: to the end of the polygon, or to what begins the next construct.
void SkipPolygon() {
    while (Shape.token != TOKEN_RIGHT_PAREN && Shape.token != TOKEN_RIGHT_BRACE && Shape.token != TOKEN_END &&
           Shape.token != WORD_PRIM && Shape.token != WORD_ATR && Shape.token != WORD_PARTS &&
           Shape.token != WORD_OBJ) {
        ShapeNext();
    }
    ShapeAccept(TOKEN_RIGHT_PAREN);
}

// The vertices of a polygon up to its `)`. False after a fault.
bool ReadVertices(const TypeRow& row, std::array<VertexRecord, VERTEX_LIMIT>& vertices, std::size_t& count) {
    const auto most = static_cast<std::size_t>(std::min(MaxVertex, VERTEX_LIMIT - 1));
    std::array<std::int16_t, WORDS_MOST> words;
    bool clamped = false;
    for (count = 0; !ShapeAtRightParen(); ++count) {
        if (ShapeIntegers(words.data(), row.words, clamped) < row.words) {
            ScannerReport(FAULT_NUMBER);
            return false;
        }
        if (count >= most) {
            ShapeNext();
            Report(COMPLEX);
            return false;
        }
        vertices[count] = ToVertex(words.data(), row.type);
    }
    if (clamped && !Shape.clampWarned) {
        Shape.clampWarned = true;
        ReaderReportText("警告：座標が範囲を越えたので制限しました。"_sjis, 1);
    }
    return true;
}

void UseDefaultAttribute(Block& block) {
    Report(NO_ATTRIBUTE);
    block.attribute = AttrSearchOrAlloc("no");
}

void ReadPolygon(Block& block) {
    PollCancel();
    ShapeNext();
    const auto* row = std::ranges::find(TYPES, Shape.token, &TypeRow::word);
    if (row == std::end(TYPES)) {
        Report(Shape.token < WORD_COUNT ? UNSUPPORTED : MISSING,
               Shape.token < WORD_COUNT ? Shape.text : "poly");
        return SkipPolygon();
    }
    ShapeNext();
    if (Shape.token != TOKEN_LEFT_PAREN) {
        Report(MISSING, "(");
        return SkipPolygon();
    }
    static std::array<VertexRecord, VERTEX_LIMIT> vertices;
    std::size_t count = 0;
    if (!ReadVertices(*row, vertices, count)) {
        return SkipPolygon();
    }
    if (count < 3) {
        Report(FEW_VERTICES);
        return SkipPolygon();
    }
    if (block.attribute < 0) {
        UseDefaultAttribute(block);
        if (block.attribute < 0) {
            ReaderSeverity = std::max(ReaderSeverity, SEVERITY_CONSTRUCT);
            return SkipPolygon();
        }
    }
    const std::span<VertexRecord> read = std::span(vertices).first(count);
    if (levels > 0) {
        TransformVertices(read, row->type);
    }
    StorePolygon(block, row->type, read);
    ShapeNext();
}

// ---- blocks ----

void ReadBody(Block& block);
void ReadBlocks(std::string_view file, std::int32_t mode, Block* into);

void ReadAttributeSwitch(Block& block) {
    std::string name;
    ShapeNext();
    if (ShapeName(name)) {
        block.attribute = AttrSearchOrAlloc(name);
    }
}

// `parts NAME` and its transformations: the file's polygons become this object's.
void ReadPart(Block& block) {
    std::string name;
    ShapeNext();
    if (!ShapeName(name)) {
        return;
    }
    Matrix matrix = UNIT_MATRIX;
    if (!ReadTransforms(matrix)) {
        return SkipPolygon();
    }
    if (levels >= LEVELS_MOST || ++parts > PARTS_MOST) {
        return Report(COMPLEX);
    }
    std::string path;
    if (!FindPartFile(name, Shape.directory, path) &&
        (HasExtension(name) || !FindPartFile(name + ".suf", Shape.directory, path))) {
        ReaderReportText("形状参照指定"_sjis, 1);
        ScannerReport(FAULT_OPEN, name);
        ReaderSeverity = std::min(ReaderSeverity, SEVERITY_CONSTRUCT);
        return;
    }
    ShapeText outer = std::move(Shape);
    const auto level = static_cast<std::size_t>(++levels);
    matrices[level] = MatrixProduct(matrix, matrices[level - 1]);
    const std::int32_t attribute = block.attribute;
    if (ShapeOpen(path)) {
        ReadBlocks(path, 1, &block);
    }
    block.attribute = attribute;
    --levels;
    Shape = std::move(outer);
}

void ReadConstruct(Block& block) {
    switch (Shape.token) {
        case WORD_PRIM:
            return ReadPolygon(block);
        case WORD_ATR:
            return ReadAttributeSwitch(block);
        case WORD_PARTS:
            return ReadPart(block);
        default:
            Report(Shape.token < WORD_COUNT ? UNSUPPORTED : EXISTS, Shape.text);
            ShapeNext();
            SkipPolygon();
    }
}

void ReadBody(Block& block) {
    while (!Ended() && !ShapeAccept(TOKEN_RIGHT_BRACE)) {
        if (Shape.token == TOKEN_END) {
            return Report(END);
        }
        if (Shape.token == WORD_OBJ) {
            return Report(MISSING, "}");
        }
        ReadConstruct(block);
    }
}

// "obj [private] suf NAME {". False when it is something else.
bool ReadHeader(std::string& name) {
    ShapeNext();
    if (Shape.token == WORD_PRIVATE) {
        Report(PRIVATE);
        ShapeNext();
    }
    if (!ShapeAccept(WORD_SUF)) {
        Report(SURFACE);
        return false;
    }
    if (!ShapeName(name)) {
        return false;
    }
    if (!ShapeAccept(TOKEN_LEFT_BRACE)) {
        Report(MISSING, "{");
        return false;
    }
    return true;
}

void SkipToBlock() {
    while (Shape.token != WORD_OBJ && Shape.token != TOKEN_END) {
        ShapeNext();
    }
}

// An object block; into another object when it belongs to a part.
void ReadObjectBlock(std::string_view file, std::int32_t mode, Block* into) {
    std::string name;
    if (!ReadHeader(name)) {
        return SkipToBlock();
    }
    if (into != nullptr) {
        into->attribute = -1;
        return ReadBody(*into);
    }
    const bool existed = mode == 1 && ObjFind(name) >= 0;
    Block block;
    block.object = mode == 1 ? ObjSearchOrAlloc(name) : ObjAlloc(name);
    if (block.object < 0) {
        ReaderSeverity = std::max(ReaderSeverity, SEVERITY_CONSTRUCT);
        return SkipToBlock();
    }
    CopyText(ObjTable[block.object].file, file);
    ReadBody(block);
    if (existed && block.changed) {
        ObjMarkEdited(block.object);
    }
}

// Every block of the active file.
void ReadBlocks(std::string_view file, std::int32_t mode, Block* into) {
    if (Shape.token != WORD_OBJ && Shape.token != WORD_ATR) {
        Report(KIND);
        return;
    }
    while (!Ended() && Shape.token != TOKEN_END) {
        if (Shape.token == WORD_OBJ) {
            ReadObjectBlock(file, mode, into);
        } else if (Shape.token == WORD_ATR) {
            if (!ReadAttributeBlock(file, 1)) {
                SkipToBlock();
            }
        } else {
            Report(MISSING, "obj");
            SkipToBlock();
        }
    }
}

}  // namespace

void ReaderInit(std::string_view programDirectory) {
    startDirectory = programDirectory;
}

void ReaderSetCancelCheck(CancelCheck check) {
    cancelCheck = check;
}

bool ReadShapeFile(std::string_view given, std::int32_t mode) {
    std::string name(given);
    if (!HasExtension(name)) {
        name += ".suf";
    }
    ReaderSeverity = 0;
    levels = 0;
    parts = 0;
    bufferFull = false;
    matrices[0] = UNIT_MATRIX;
    if (ShapeOpen(name)) {
        ReadBlocks(name, mode, nullptr);
    }
    Shape = ShapeText{};
    return ReaderSeverity < SEVERITY_CONSTRUCT && !bufferFull;
}

bool FindPartFile(std::string_view name, std::string_view shapeDirectory, std::string& path) {
    const auto exists = [&path](const std::string& candidate) {
        path = candidate;
        return PathExists(candidate) && !PathIsDirectory(candidate);
    };
    const std::string n(name);
    const std::string d(shapeDirectory);
    if (exists(n) || exists(startDirectory + n)) {
        return true;
    }
    if (n.size() > 2) {
        const std::string pair = n.substr(0, 2) + "\\" + n;
        const std::string part = "parts\\" + pair;
        if (exists(pair) || exists(startDirectory + pair) || exists(part) || exists(startDirectory + part) ||
            exists("..\\" + part) || exists("..\\..\\" + part) || exists("..\\..\\..\\" + part)) {
            return true;
        }
        if (!d.empty() && (exists(d + n) || exists(d + pair) || exists(d + part))) {
            return true;
        }
    } else if (!d.empty() && exists(d + n)) {
        return true;
    }
    path = n;
    return false;
}

}  // namespace quelmark
