#include "MODEL/VERTEX.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/TRANSFORM.h"
#include "text/number.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t VertexClass = -1;

namespace {

[[noreturn]] void ReportConstructor() {
    RuntimeError("%s", "引数の型が不正です。（Vertex）"_sjis);
}

// The mapping at the end of the constructor's arguments: a Vector, an array of at least two numbers, or two
// numbers.
void ReadMapping(std::int32_t argc, const DataCell* argv, VertexRecord& vertex) {
    if (argv[0].type == TYPE_OBJECT) {
        if (!IsVector(argv[0])) {
            ReportConstructor();
        }
        const Vector& vector = ObjectData<Vector>(argv[0]);
        vertex.u = ToCoordinate(static_cast<double>(vector.x));
        vertex.v = ToCoordinate(static_cast<double>(vector.y));
        return;
    }
    const bool array = argv[0].type == TYPE_ARRAY;
    if (array ? ArrayCount(argv[0]) < 2 : argc < 2) {
        ReportConstructor();
    }
    const DataCell* cells = array ? ArrayElements(argv[0]) : argv;
    if ((cells[0].type & TYPE_NUMBER) == 0 || (cells[1].type & TYPE_NUMBER) == 0) {
        ReportConstructor();
    }
    vertex.u = ToCoordinate(CellNumber(cells[0]));
    vertex.v = ToCoordinate(CellNumber(cells[1]));
}

// Three components at the front of the arguments, as coordinates; moves past them.
void ReadCoordinates(std::int32_t& argc, const DataCell*& argv, std::int16_t& x, std::int16_t& y,
                     std::int16_t& z) {
    Vector vector{};
    const int taken = ReadThreeComponents(argc, argv, vector);
    if (taken == 0) {
        ReportConstructor();
    }
    x = ToCoordinate(static_cast<double>(vector.x));
    y = ToCoordinate(static_cast<double>(vector.y));
    z = ToCoordinate(static_cast<double>(vector.z));
    argc -= taken;
    argv += taken;
}

std::int32_t Construct(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        RuntimeError("%s", "引数の数が違います。(Vertex)"_sjis);
    }
    VertexRecord vertex{};
    std::uint32_t valid = 0;
    const DataCell* at = argv;
    ReadCoordinates(argc, at, vertex.x, vertex.y, vertex.z);
    if (argc > 0) {
        valid = VALID_NORMAL;
        ReadCoordinates(argc, at, vertex.nx, vertex.ny, vertex.nz);
    }
    if (argc > 0) {
        valid = VALID_NORMAL | VALID_MAPPING;
        ReadMapping(argc, at, vertex);
    }
    StackPushVertex(vertex, valid);
    return RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(VertexClass, ident, argc, argv);
    }
    Check(argc > 0 && argv->type == TYPE_OBJECT, "buf->type == TYPE_OBJECT");
    const VertexObject object = VertexOf(argv[0]);
    const VertexRecord& v = object.vertex;
    char buffer[256];
    int length = std::snprintf(buffer, sizeof buffer, "( %-4d, %-4d, %-4d )", v.x, v.y, v.z);
    std::string text(buffer, static_cast<std::size_t>(length));
    if ((object.valid & VALID_NORMAL) != 0) {
        const char* before = " ( ";
        for (const std::int16_t component : {v.nx, v.ny, v.nz}) {
            text += before;
            length = FormatReal(buffer, sizeof buffer, "%-8.5g", component);
            text.append(buffer, static_cast<std::size_t>(length));
            before = ", ";
        }
        text += " )";
    }
    if ((object.valid & VALID_MAPPING) != 0) {
        length = std::snprintf(buffer, sizeof buffer, " ( %-4d, %-4d )", v.u, v.v);
        text.append(buffer, static_cast<std::size_t>(length));
    }
    StackPushString(text);
    return RESULT;
}

// One argument: the three words as a Vector; with an array: as integers into its elements.
std::int32_t GiveThree(std::int32_t argc, DataCell* argv, std::int16_t x, std::int16_t y, std::int16_t z,
                       const char* sizeMessage) {
    if (argc == 1) {
        StackPushVector({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
        return RESULT;
    }
    if (ArrayCount(argv[1]) < 3) {
        RuntimeError("%s", sizeMessage);
    }
    DataCell* elements = ArrayElements(argv[1]);
    CellAssign(elements[0], IntCell(x));
    CellAssign(elements[1], IntCell(y));
    CellAssign(elements[2], IntCell(z));
    return NO_RESULT;
}

std::int32_t Position(std::int32_t, std::int32_t argc, DataCell* argv) {
    const VertexRecord v = VertexOf(argv[0]).vertex;
    return GiveThree(argc, argv, v.x, v.y, v.z, "引数配列のサイズが不正です。( Vertex:Position )"_sjis);
}

std::int32_t Normal(std::int32_t, std::int32_t argc, DataCell* argv) {
    const VertexRecord v = VertexOf(argv[0]).vertex;
    return GiveThree(argc, argv, v.nx, v.ny, v.nz, "引数配列のサイズが不正です。( Vertex:Vector )"_sjis);
}

std::int32_t Mapping(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[1]) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。( Vertex:Mapping )"_sjis);
    }
    const VertexRecord v = VertexOf(argv[0]).vertex;
    DataCell* elements = ArrayElements(argv[1]);
    CellAssign(elements[0], IntCell(v.u));
    CellAssign(elements[1], IntCell(v.v));
    return NO_RESULT;
}

// The squared distance of two vertices; up to 34 bits.
std::int64_t SquaredDistance(const DataCell* argv, const char* typeMessage) {
    if (!IsVertex(argv[0]) || !IsVertex(argv[1])) {
        RuntimeError("%s", typeMessage);
    }
    const VertexRecord& a = VertexOf(argv[0]).vertex;
    const VertexRecord& b = VertexOf(argv[1]).vertex;
    const std::int64_t dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz;
}

std::int32_t VertexLength(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int64_t squared = SquaredDistance(argv, "2番目の引数の型が不正です。(VertexLength)"_sjis);
    StackPushInt(RealToInt(std::sqrt(static_cast<double>(squared))));
    return RESULT;
}

// Wraps at 32 bits.
std::int32_t VertexLength2(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int64_t squared = SquaredDistance(argv, "2番目の引数の型が不正です。(VertexLength2)"_sjis);
    StackPushInt(static_cast<std::int32_t>(static_cast<std::uint32_t>(squared)));
    return RESULT;
}

// The right operand of + and -: a Vertex with what is valid of it, or a Vector as a position.
VertexRecord Summand(const DataCell& cell, std::int32_t code) {
    VertexRecord v{};
    if (IsVertex(cell)) {
        const VertexObject& object = VertexOf(cell);
        v = object.vertex;
        if ((object.valid & VALID_NORMAL) == 0) {
            v.nx = v.ny = v.nz = 0;
        }
        if ((object.valid & VALID_MAPPING) == 0) {
            v.u = v.v = 0;
        }
    } else if (IsVector(cell)) {
        v = ToPosition(ObjectData<Vector>(cell));
    } else {
        RuntimeError("%s",
                     code == OP_ADD ? "型が不正です。（演算子+）"_sjis : "型が不正です。（演算子-）"_sjis);
    }
    return v;
}

std::int32_t AddOrSubtract(std::int32_t code, std::int32_t, DataCell* argv) {
    VertexObject result = VertexOf(argv[0]);
    const VertexRecord right = Summand(argv[1], code);
    const std::int32_t sign = code == OP_ADD ? 1 : -1;
    const auto apply = [sign](std::int16_t& word, std::int16_t by) { word = CutTo16(word + sign * by); };
    VertexRecord& v = result.vertex;
    apply(v.x, right.x);
    apply(v.y, right.y);
    apply(v.z, right.z);
    apply(v.nx, right.nx);
    apply(v.ny, right.ny);
    apply(v.nz, right.nz);
    apply(v.u, right.u);
    apply(v.v, right.v);
    StackPushVertex(v, result.valid);
    return RESULT;
}

std::int32_t Transform(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsMatrix(argv[1])) {
        RuntimeError("%s", "型が不正です。（演算子*）"_sjis);
    }
    VertexObject result = VertexOf(argv[0]);
    const ModelTransform transform(ObjectData<Matrix>(argv[1]));
    transform.MovePoint(result.vertex);
    transform.TurnNormal(&result.vertex.nx);
    StackPushVertex(result.vertex, result.valid);
    return RESULT;
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsVertex(argv[1])) {
        RuntimeError("%s", "演算の型が不正です"_sjis);
    }
    const VertexRecord& a = VertexOf(argv[0]).vertex;
    const VertexRecord& b = VertexOf(argv[1]).vertex;
    StackPushBool((a.x == b.x && a.y == b.y && a.z == b.z) == (code == OP_EQUAL));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "Vertex", Construct},
    {"Vector", "Vertex", Construct},
    {"Vertex", "tostring", ToString},
    {"Vertex", "Position", Position, Takes("Position", {TYPE_OBJECT, TYPE_ARRAY}, 1)},
    {"Vertex", "Vector", Normal, Takes("Vector", {TYPE_OBJECT, TYPE_ARRAY}, 1)},
    {"Vertex", "Mapping", Mapping, Takes("Mapping", {TYPE_OBJECT, TYPE_ARRAY})},
    {"Vertex", "VertexLength", VertexLength, Takes("PolyVertexLength", {TYPE_OBJECT, TYPE_OBJECT})},
    {"Vertex", "VertexLength2", VertexLength2, Takes("PolyVertex2Length", {TYPE_OBJECT, TYPE_OBJECT})},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Vertex", OP_ADD, AddOrSubtract},  {"Vertex", OP_SUBTRACT, AddOrSubtract},
    {"Vertex", OP_MULTIPLY, Transform}, {"Vertex", OP_EQUAL, Equal},
    {"Vertex", OP_NOT_EQUAL, Equal},
};

}  // namespace

void VertexRegister() {
    VertexClass = ClassRegister("Vertex", 0);
    RegisterOperators(OPERATORS);
    RegisterBuiltIns(FUNCTIONS);
}

bool IsVertex(const DataCell& cell) {
    return IsInstance(cell, VertexClass);
}

void StackPushVertex(const VertexRecord& vertex, std::uint32_t valid) {
    ObjectBlock* block = ObjectAlloc(sizeof(VertexObject), VertexClass);
    *reinterpret_cast<VertexObject*>(block->Data()) = {valid, vertex};
    StackPushObject(block);
}

VertexObject& VertexOf(const DataCell& cell) {
    Check(IsVertex(cell), "buf[0] is a Vertex");
    return ObjectData<VertexObject>(cell);
}

void StoreVertex(const DataCell& array, std::int32_t index, const VertexRecord& position) {
    StackPushVertex(position, 0);
    CellAssign(ArrayElements(array)[index], *StackTop());
    StackPop();
}

std::int16_t ToCoordinate(double value) {
    return CutTo16(RealToInt(value));
}

VertexRecord ToPosition(const Vector& vector) {
    VertexRecord position{};
    position.x = ToCoordinate(static_cast<double>(vector.x));
    position.y = ToCoordinate(static_cast<double>(vector.y));
    position.z = ToCoordinate(static_cast<double>(vector.z));
    return position;
}

}  // namespace quelmark
