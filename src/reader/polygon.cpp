// Polygons of an object block, read straight into the data buffer.
#include <algorithm>
#include <array>
#include <cmath>

#include "MODEL/ATR.h"
#include "MODEL/POLY.h"
#include "MODEL/TRANSFORM.h"
#include "reader/blocks.h"
#include "reader/report.h"
#include "reader/scanner.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr std::int32_t POLYGONS_BETWEEN_POLLS = 8192;
std::int32_t polygonsToPoll = POLYGONS_BETWEEN_POLLS;

// Where vertices are read when the end of the data buffer has no room for the largest polygon.
alignas(
    PolygonRecord) std::array<char, POLYGON_HEADER_BYTES + sizeof(VertexRecord) * VERTEX_LIMIT> besideBuffer;

enum class Outcome { read, noNumber, tooMany };

struct Vertices {
    VertexRecord* first;
    std::int32_t count = 0;
    bool limited = false;  // a coordinate was out of range
};

// A position's word, or one of a normal or a mapping, which may be -32768 as well.
bool Take(ShapeCursor& cursor, std::int16_t& value, bool& limited) {
    return TakeCoordinate(cursor, value) || TakeAnyCoordinate(cursor, value, VERTEX_MIN, limited);
}
bool TakeWord(ShapeCursor& cursor, std::int16_t& value, bool& limited) {
    return TakeCoordinate(cursor, value) || TakeAnyCoordinate(cursor, value, INT16_MIN, limited);
}

// True, with the cursor behind it, when a `)` comes next.
bool TakeEnd(ShapeCursor& cursor) {
    SkipToWord(cursor);
    if (*cursor.at == '/' || *cursor.at == '\0') {
        // A comment, or a NUL: let the tokens tell, and stay in front of what comes behind.
        ShapeResume(cursor);
        cursor = {Shape.at - (Shape.token == TOKEN_END ? 0 : Shape.text.size()), Shape.line};
    }
    if (*cursor.at != ')') {
        return false;
    }
    ++cursor.at;
    return true;
}

// The vertices up to the `)`. Afterwards the cursor stands behind it, or the faulty token is the current one.
template <std::uint16_t type>
Outcome ReadVertices(ShapeCursor& start, Vertices& vertices) {
    const std::int32_t most = std::min(MaxVertex, VERTEX_LIMIT - 1);
    ShapeCursor cursor = start;
    bool limited = false;
    std::int32_t count = 0;
    for (; !TakeEnd(cursor); ++count) {
        VertexRecord v{};
        bool good = Take(cursor, v.x, limited) && Take(cursor, v.y, limited) && Take(cursor, v.z, limited);
        if constexpr ((type & POLY_SHADE) != 0) {
            good = good && TakeWord(cursor, v.nx, limited) && TakeWord(cursor, v.ny, limited) &&
                   TakeWord(cursor, v.nz, limited);
        }
        if constexpr ((type & POLY_UV) != 0) {
            good = good && TakeWord(cursor, v.u, limited) && TakeWord(cursor, v.v, limited);
        }
        if (!good) {
            return Outcome::noNumber;
        }
        if (count >= most) {
            ShapeResume(cursor);
            return Outcome::tooMany;
        }
        vertices.first[count] = v;
    }
    start = cursor;
    vertices.count = count;
    vertices.limited = limited;
    return Outcome::read;
}

struct TypeRow {
    std::int32_t word;
    std::uint16_t type;
    Outcome (*read)(ShapeCursor& cursor, Vertices& vertices);
};
constexpr TypeRow TYPES[] = {{WORD_POLY, POLY_SIMPLE, ReadVertices<POLY_SIMPLE>},
                             {WORD_SHADE, POLY_SHADE, ReadVertices<POLY_SHADE>},
                             {WORD_UVPOLY, POLY_UV, ReadVertices<POLY_UV>},
                             {WORD_UVSHADE, POLY_UVSHADE, ReadVertices<POLY_UVSHADE>}};

std::int16_t ToCoordinate(float value) {
    constexpr auto MOST = static_cast<float>(VERTEX_MAX);
    return std::isnan(value) ? std::int16_t{0}
                             : static_cast<std::int16_t>(std::nearbyint(std::clamp(value, -MOST, MOST)));
}

// A part's polygon, moved by the matrix of its level.
void Transform(std::span<VertexRecord> vertices, std::uint16_t type) {
    const Matrix& matrix = Reading.matrices[static_cast<std::size_t>(Reading.levels)];
    const ModelTransform turn(matrix);
    for (VertexRecord& v : vertices) {
        const Vector moved =
            MatrixApply({static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)}, matrix);
        v.x = ToCoordinate(moved.x);
        v.y = ToCoordinate(moved.y);
        v.z = ToCoordinate(moved.z);
        if ((type & POLY_SHADE) != 0) {
            turn.TurnNormal(&v.nx);
            NormaliseTo256(&v.nx);
        }
    }
}

// Makes the vertices, which stand at `place`, a polygon of the model.
void Store(ShapeBlock& block, std::uint16_t type, PolygonRecord* place, std::int32_t count) {
    auto* polygon = reinterpret_cast<PolygonRecord*>(BufferAppend(PolygonSize(count)));
    if (polygon == nullptr) {
        Reading.stopped = true;
        return;
    }
    if (polygon != place) {
        std::copy_n(place->vertex, count, polygon->vertex);
    }
    polygon->select = 1;
    polygon->type = type;
    polygon->attr = static_cast<std::int16_t>(block.attribute);
    polygon->obj = static_cast<std::int16_t>(block.object);
    polygon->vers = static_cast<std::int16_t>(count);
    polygon->flags = 0;
    PolygonGiveId(*polygon);
    PlaneNormal(polygon->Vertices(), polygon->normal);
    ++SelectCount;
    block.changed = true;
}

// The attribute of polygons for which no `atr` line names one. False when the table is full.
bool HasAttribute(ShapeBlock& block) {
    if (block.attribute < 0) {
        ObjectReport(OBJECT_NO_ATTRIBUTE);
        block.attribute = AttrSearchOrAlloc("no");
        Reading.stopped = block.attribute < 0;
    }
    return !Reading.stopped;
}

void WarnOfLimits() {
    if (!Shape.clampWarned) {
        Shape.clampWarned = true;
        ReaderReport("警告：座標が範囲を越えたので制限しました。"_sjis, SEVERITY_WARNING);
    }
}

// The vertices behind the current `(`. False when the polygon was dropped.
bool ReadList(ShapeBlock& block, const TypeRow& row) {
    const bool direct = BufEnd - BufNext > static_cast<std::ptrdiff_t>(besideBuffer.size());
    auto* place = reinterpret_cast<PolygonRecord*>(direct ? BufNext : besideBuffer.data());
    Vertices vertices{place->vertex};
    ShapeCursor cursor;
    switch (row.read(cursor, vertices)) {
        case Outcome::noNumber:
            if (Shape.token != TOKEN_END) {
                ScannerReport(SCANNER_NUMBER);
            }
            return false;
        case Outcome::tooMany:
            ObjectReport(OBJECT_COMPLEX);
            return false;
        case Outcome::read:
            break;
    }
    Shape.at = cursor.at;  // the `)` is the current token of what is reported now
    Shape.line = cursor.line;
    Shape.token = TOKEN_RIGHT_PAREN;
    Shape.text = {cursor.at - 1, 1};
    if (vertices.limited) {
        WarnOfLimits();
    }
    if (vertices.count < 3) {
        ObjectReport(OBJECT_FEW_VERTICES);
    } else if (HasAttribute(block)) {
        if (Reading.moving[static_cast<std::size_t>(Reading.levels)]) {
            Transform({vertices.first, static_cast<std::size_t>(vertices.count)}, row.type);
        }
        Store(block, row.type, place, vertices.count);
    }
    ShapeNext();
    return true;
}

}  // namespace

bool BeginsConstruct() {
    return Shape.token == WORD_PRIM || Shape.token == WORD_ATR || Shape.token == WORD_PARTS ||
           Shape.token == WORD_OBJ || Shape.token == TOKEN_RIGHT_BRACE || Shape.token == TOKEN_END;
}

void SkipConstruct(std::int32_t open) {
    while (!BeginsConstruct()) {
        open += Shape.token == TOKEN_LEFT_PAREN ? 1 : 0;
        const bool end = Shape.token == TOKEN_RIGHT_PAREN && --open <= 0;
        ShapeNext();
        if (end) {
            return;
        }
    }
}

void ReadPolygon(ShapeBlock& block) {
    if (--polygonsToPoll <= 0) {
        polygonsToPoll = POLYGONS_BETWEEN_POLLS;
        PollCancel();
    }
    ShapeNext();
    const auto* row = std::ranges::find(TYPES, Shape.token, &TypeRow::word);
    if (row == std::end(TYPES)) {
        if (Shape.token < WORD_COUNT) {
            ObjectReport(OBJECT_UNSUPPORTED, Shape.text);
        } else if (Shape.token != TOKEN_END) {
            ObjectReport(OBJECT_MISSING, "poly");
        }
        return SkipConstruct();
    }
    ShapeNext();
    if (Shape.token != TOKEN_LEFT_PAREN) {
        if (Shape.token != TOKEN_END) {
            ObjectReport(OBJECT_MISSING, "(");
        }
        return SkipConstruct();
    }
    if (!ReadList(block, *row)) {
        SkipConstruct(1);
    }
}

}  // namespace quelmark
