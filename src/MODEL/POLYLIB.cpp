// Script functions of polygons and the constants of the model.
#include <algorithm>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "MODEL/ATR.h"
#include "MODEL/BULK.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/SELECT.h"
#include "MODEL/SHADE.h"
#include "MODEL/SUFTEXT.h"
#include "MODEL/UNDO.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

// The vertices of CurrentPolygon that `vers` really covers.
std::span<VertexRecord> CurrentVertices() {
    const std::int32_t count = std::clamp<std::int32_t>(CurrentPolygon->vers, 0, MaxVertex);
    return {CurrentPolygon->vertex, static_cast<std::size_t>(count)};
}

bool IsVertexIndex(std::int32_t n) {
    return 0 <= n && n < MaxVertex;
}

std::int32_t SetVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[1].integer;
    if (!IsVertexIndex(n)) {
        RuntimeError("%s", "2番目の引数の値が不正です。(SetVertex)"_sjis);
    }
    CurrentPolygon->vertex[n] = VertexOf(argv[0]).vertex;
    return NO_RESULT;
}

std::int32_t GetVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    if (!IsVertexIndex(n)) {
        RuntimeError("%s", "1番目の引数の値が不正です。(PolyGetVertex)"_sjis);
    }
    StackPushVertex(CurrentPolygon->vertex[n], CurrentPolygon->type);
    return RESULT;
}

std::int32_t InsertVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[1].integer;
    const std::int32_t vers = CurrentPolygon->vers;
    if (n < 0 || n >= MaxVertex - 1 || n > vers || vers >= MaxVertex) {
        RuntimeError("%s", "2番目の引数の値が不正です。(InsVertex)"_sjis);
    }
    VertexRecord* vertices = CurrentPolygon->vertex;
    std::copy_backward(vertices + n, vertices + vers, vertices + vers + 1);
    vertices[n] = VertexOf(argv[0]).vertex;
    ++CurrentPolygon->vers;
    return NO_RESULT;
}

std::int32_t DeleteVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    if (!IsVertexIndex(n) || n >= CurrentPolygon->vers) {
        // The text names the getter: both have always reported it so.
        RuntimeError("%s", "1番目の引数の値が不正です。(PolyGetVertex)"_sjis);
    }
    const std::span<VertexRecord> vertices = CurrentVertices();
    std::copy(vertices.begin() + n + 1, vertices.end(), vertices.begin() + n);
    --CurrentPolygon->vers;
    return NO_RESULT;
}

// A word of CurrentPolygon: set when given, and returned.
template <auto field>
std::int32_t Word(std::int32_t, std::int32_t argc, DataCell* argv) {
    auto& word = CurrentPolygon->*field;
    if (argc > 0) {
        word =
            static_cast<std::remove_reference_t<decltype(word)>>(static_cast<std::uint16_t>(argv[0].integer));
    }
    StackPushInt(word);
    return RESULT;
}

std::int32_t Append(std::int32_t, std::int32_t argc, DataCell* argv) {
    PolygonAppend(argc > 0 ? argv[0].integer : 0);
    return NO_RESULT;
}

std::int32_t Load(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        StackPushInt(PolygonLoadNext());
        return RESULT;
    }
    if (argv[0].integer != 0) {
        PolygonLoad(argv[0].integer);
    }
    StackPushInt(argv[0].integer);
    return RESULT;
}

std::int32_t LoadInit(std::int32_t, std::int32_t, DataCell*) {
    PolygonLoadInit();
    return NO_RESULT;
}

std::int32_t Save(std::int32_t, std::int32_t, DataCell*) {
    PolygonSave();
    return NO_RESULT;
}

std::int32_t Delete(std::int32_t, std::int32_t, DataCell*) {
    PolygonDelete();
    return NO_RESULT;
}

std::int32_t Move(std::int32_t, std::int32_t, DataCell* argv) {
    PolygonMove(ObjectData<Matrix>(argv[0]));
    return NO_RESULT;
}

std::int32_t Invisible(std::int32_t, std::int32_t, DataCell* argv) {
    PolygonHide(argv[0].integer != 0);
    return NO_RESULT;
}

std::int32_t Shade(std::int32_t, std::int32_t, DataCell* argv) {
    ShadeSelected(argv[0].integer);
    return NO_RESULT;
}

std::int32_t ShadeOnce(std::int32_t, std::int32_t, DataCell*) {
    ShadeAgain();
    return NO_RESULT;
}

std::int32_t ShadeInverse(std::int32_t, std::int32_t, DataCell*) {
    PolygonReverseNormals();
    return NO_RESULT;
}

// flag [, matrix [, umin, vmin, umax, vmax]]
std::int32_t Map(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 2 && argc < 6) {
        RuntimeError("引数の数が不正です。( %s )"_sjis, "PolyMap");
    }
    if (argc > 1 && !IsMatrix(argv[1])) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 2, "PolyMap");
    }
    if (argv[0].integer == 0) {
        PolygonUnmap();
        return NO_RESULT;
    }
    MapLimits limits;
    if (argc == 6) {
        limits = {argv[2].integer, argv[3].integer, argv[4].integer, argv[5].integer};
    }
    PolygonMap(argc > 1 ? ObjectData<Matrix>(argv[1]) : UNIT_MATRIX, limits);
    return NO_RESULT;
}

std::int32_t ShiftVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    const std::span<VertexRecord> vertices = CurrentVertices();
    if (0 <= n && n < static_cast<std::int32_t>(vertices.size())) {
        std::rotate(vertices.begin(), vertices.begin() + n, vertices.end());
    }
    return NO_RESULT;
}

std::int32_t InverseVertex(std::int32_t, std::int32_t, DataCell*) {
    std::ranges::reverse(CurrentVertices());
    return NO_RESULT;
}

std::int32_t PlaneVector(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0 && argv[0].integer != 0) {
        PlaneNormal(CurrentVertices(), CurrentPolygon->normal);
    }
    const std::int16_t* normal = CurrentPolygon->normal;
    StackPushVector(
        {static_cast<float>(normal[0]), static_cast<float>(normal[1]), static_cast<float>(normal[2])});
    return RESULT;
}

constexpr ConstantRow CONSTANTS[] = {
    {"POLY_SIMPLE", IntCell(POLY_SIMPLE)},
    {"POLY_SHADE", IntCell(POLY_SHADE)},
    {"POLY_UV", IntCell(POLY_UV)},
    {"POLY_UVSHADE", IntCell(POLY_UVSHADE)},
    {"FILE_OVERWRITE", IntCell(FILE_OVERWRITE)},
    {"FILE_APPEND", IntCell(FILE_APPEND)},
    {"OBJ_CREATE", IntCell(0)},
    {"OBJ_APPEND", IntCell(1)},
    {"ATTR_CREATE", IntCell(0)},
    {"ATTR_APPEND", IntCell(1)},
    {"VERTEX_MIN", IntCell(VERTEX_MIN)},
    {"VERTEX_MAX", IntCell(VERTEX_MAX)},
    {"NORMAL_OFF", IntCell(NORMAL_OFF)},
    {"NORMAL_ON", IntCell(NORMAL_ON)},
    {"NORMAL_CREATE", IntCell(NORMAL_CREATE)},
};

constexpr BuiltIn FUNCTIONS[] = {
    {"Vertex", "PolySetVertex", SetVertex, Takes("PolySetVertex", {TYPE_OBJECT, TYPE_INT})},
    {"", "PolyGetVertex", GetVertex, Takes("PolyGetVertex", {TYPE_INT})},
    {"Vertex", "PolyInsVertex", InsertVertex, Takes("PolyInsVertex", {TYPE_OBJECT, TYPE_INT})},
    {"", "PolyDelVertex", DeleteVertex, Takes("PolyDelVertex", {TYPE_INT})},
    {"", "PolyVertexs", Word<&PolygonRecord::vers>, Takes("PolyVertexs", {TYPE_INT}, 0)},
    {"", "PolyType", Word<&PolygonRecord::type>, Takes("PolyType", {TYPE_INT}, 0)},
    {"", "PolyAttr", Word<&PolygonRecord::attr>, Takes("PolyAttr", {TYPE_INT}, 0)},
    {"", "PolyObj", Word<&PolygonRecord::obj>, Takes("PolyObj", {TYPE_INT}, 0)},
    {"", "PolyAppend", Append, Takes("PolyAppend", {TYPE_FLAG}, 0)},
    {"", "PolyLoad", Load, Takes("PolyLoad", {TYPE_INT}, 0)},
    {"", "PolyLoadInit", LoadInit, Takes("PolyLoadInit", {})},
    {"", "PolySave", Save, Takes("PolySave", {})},
    {"", "PolyDelete", Delete, Takes("PolyDelete", {})},
    {"Matrix", "PolyMove", Move, Takes("PolyMove", {TYPE_OBJECT})},
    {"", "PolyInvisible", Invisible, Takes("PolyInvisible", {TYPE_FLAG})},
    {"", "PolyShade", Shade, Takes("PolyShade", {TYPE_FLAG})},
    {"", "PolyShadeAgain", ShadeOnce, Takes("PolyShadeAgain", {})},
    {"", "PolyShadeInv", ShadeInverse, Takes("PolyShadeInv", {})},
    {"", "PolyMap", Map,
     Takes("PolyMap", {TYPE_FLAG, TYPE_OBJECT, TYPE_INT, TYPE_INT, TYPE_INT, TYPE_INT}, 1)},
    {"", "PolyShiftVertex", ShiftVertex, Takes("PolyShiftVertex", {TYPE_INT})},
    {"", "PolyInvVertex", InverseVertex, Takes("PolyInvVertex", {})},
    {"", "PolyVector", PlaneVector, Takes("PolyVector", {TYPE_FLAG}, 0)},
};

}  // namespace

void PolygonRegister() {
    VertexRegister();
    RegisterConstants(CONSTANTS);
    RegisterBuiltIns(FUNCTIONS);
    SelectRegister();
    AttributeRegister();
    ObjectRegister();
    UndoRegister();
}

}  // namespace quelmark
