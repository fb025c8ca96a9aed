// The script class VertexSet.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/VERSET.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t setClass = -1;

struct SetData {
    std::int32_t capacity;
    std::int32_t count;
    VertexRecord elements[1];
};

using Elements = std::span<const VertexRecord>;

// Pushes a set of sorted elements. A set that grew out of another has at least its slots.
void PushSet(Elements elements, std::int32_t slots) {
    const auto count = static_cast<std::int32_t>(elements.size());
    const std::int32_t capacity = SlotsOfGrownSet(elements.size(), slots);
    ObjectBlock* block = ObjectAlloc(
        offsetof(SetData, elements) + sizeof(VertexRecord) * static_cast<std::size_t>(capacity), setClass);
    auto* data = reinterpret_cast<SetData*>(block->Data());
    data->capacity = capacity;
    data->count = count;
    if (count > 0) {
        std::memcpy(static_cast<void*>(data->elements), elements.data(), elements.size_bytes());
    }
    StackPushObject(block);
}

std::int32_t PushNewSet(Elements elements) {
    PushSet(elements, SlotsOfNewSet(elements.size()));
    return RESULT;
}

// A Vertex, or a Vector as a position.
bool ReadElement(const DataCell& cell, VertexRecord& vertex) {
    if (IsVertex(cell)) {
        vertex = VertexOf(cell).vertex;
        return true;
    }
    if (IsVector(cell)) {
        vertex = ToPosition(ObjectData<Vector>(cell));
        return true;
    }
    return false;
}

std::int32_t Construct(std::int32_t, std::int32_t argc, DataCell* argv) {
    VertexRecord vertex{};
    if (argc > 1 || (argc == 1 && !ReadElement(argv[0], vertex))) {
        RuntimeError("%s", "VertexSet:引数の型が異なる"_sjis);
    }
    return PushNewSet({&vertex, static_cast<std::size_t>(argc)});
}

std::int32_t OfSelected(std::int32_t, std::int32_t argc, DataCell*) {
    if (argc > 0) {
        RuntimeError("%s", "VertexSelect:引数の型が異なる"_sjis);
    }
    return PushNewSet(VerticesOfSelected());
}

std::int32_t SelectBy(std::int32_t, std::int32_t, DataCell* argv) {
    SelectByVertices(VertexSetElements(argv[0]), argv[1].integer != 0, argv[2].integer);
    return NO_RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(setClass, ident, argc, argv);
    }
    std::string text;
    for (const VertexRecord& v : VertexSetElements(argv[0])) {
        char line[128];
        const int length = std::snprintf(line, sizeof line, "(%6d,%6d,%6d) (%4d %4d %4d) (%4d %4d)\n", v.x,
                                         v.y, v.z, v.nx, v.ny, v.nz, v.u, v.v);
        text.append(line, static_cast<std::size_t>(length));
    }
    StackPushString(text);
    return RESULT;
}

// With a number the element, with a Vertex or Vector its index.
std::int32_t GetVertex(std::int32_t, std::int32_t, DataCell* argv) {
    const Elements elements = VertexSetElements(argv[0]);
    if (argv[1].type == TYPE_INT) {
        const std::int32_t n = argv[1].integer;
        if (n < 0 || n >= static_cast<std::int32_t>(elements.size())) {
            return NO_RESULT;
        }
        const VertexRecord vertex = elements[static_cast<std::size_t>(n)];
        StackPushVertex(vertex, VALID_NORMAL | VALID_MAPPING);
        return RESULT;
    }
    VertexRecord vertex;
    if (!ReadElement(argv[1], vertex)) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 2, "VertexGetVertex");
    }
    StackPushInt(VertexFind(elements, vertex));
    return RESULT;
}

std::int32_t Count(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(static_cast<std::int32_t>(VertexSetElements(argv[0]).size()));
    return RESULT;
}

std::int32_t Positions(std::int32_t, std::int32_t, DataCell* argv) {
    const Elements elements = VertexSetElements(argv[0]);
    std::vector<VertexRecord> positions;
    positions.reserve(elements.size());
    for (const VertexRecord& v : elements) {
        positions.push_back({v.x, v.y, v.z, 0, 0, 0, 0, 0});
    }
    VertexSort(positions);
    return PushNewSet(positions);
}

std::int32_t AtPosition(std::int32_t, std::int32_t argc, DataCell* argv) {
    VertexRecord wanted;
    if (argc != 2 || !ReadElement(argv[1], wanted)) {
        RuntimeError("%s", "VertexSelectPosition: 引数の型が異なる"_sjis);
    }
    std::vector<VertexRecord> found;
    for (const VertexRecord& v : VertexSetElements(argv[0])) {
        if (v.x == wanted.x && v.y == wanted.y && v.z == wanted.z) {
            found.push_back(v);
        }
    }
    return PushNewSet(found);
}

// ---- operators ----

[[noreturn]] void ReportOperand() {
    RuntimeError("%s", "論理演算の型が不正です(Vertex)"_sjis);
}

// One merge of two sorted sets.
std::vector<VertexRecord> Merge(std::int32_t code, Elements left, Elements right) {
    std::vector<VertexRecord> result;
    const auto into = std::back_inserter(result);
    switch (code) {
        case OP_ADD:
        case OP_OR:
            result.reserve(left.size() + right.size());
            std::ranges::set_union(left, right, into, VertexLess);
            break;
        case OP_SUBTRACT:
            result.reserve(left.size());
            std::ranges::set_difference(left, right, into, VertexLess);
            break;
        case OP_XOR:
            result.reserve(left.size() + right.size());
            std::ranges::set_symmetric_difference(left, right, into, VertexLess);
            break;
        default:
            std::ranges::set_intersection(left, right, into, VertexLess);
            break;
    }
    return result;
}

std::int32_t Moved(Elements elements, const Matrix& matrix, std::int32_t slots) {
    const ModelTransform transform(matrix);
    std::vector<VertexRecord> moved(elements.begin(), elements.end());
    for (VertexRecord& v : moved) {
        transform.MoveVertex(v);
    }
    VertexSort(moved);
    PushSet(moved, slots);
    return RESULT;
}

std::int32_t Combine(std::int32_t code, std::int32_t, DataCell* argv) {
    const Elements left = VertexSetElements(argv[0]);
    const std::int32_t slots = VertexSetCapacity(argv[0]);
    const DataCell& operand = argv[1];
    if (code == OP_MULTIPLY && IsMatrix(operand)) {
        return Moved(left, ObjectData<Matrix>(operand), slots);
    }
    if (IsVertexSet(operand)) {
        const Elements right = VertexSetElements(operand);
        const std::vector<VertexRecord> result = Merge(code, left, right);
        const bool isNew = code == OP_AND || code == OP_MULTIPLY;
        const bool fromLeft = code == OP_SUBTRACT || left.size() > right.size();
        PushSet(result, isNew ? SlotsOfNewSet(result.size()) : fromLeft ? slots : VertexSetCapacity(operand));
        return RESULT;
    }
    VertexRecord vertex;
    const bool takesElement = code == OP_ADD || code == OP_OR || code == OP_SUBTRACT;
    if (!takesElement || !ReadElement(operand, vertex)) {
        ReportOperand();
    }
    PushSet(Merge(code, left, {&vertex, 1}), slots);
    return RESULT;
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsVertexSet(argv[1])) {
        ReportOperand();
    }
    const bool equal = std::ranges::equal(VertexSetElements(argv[0]), VertexSetElements(argv[1]), VertexSame);
    StackPushBool(equal == (code == OP_EQUAL));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "VertexSet", Construct},
    {"", "VertexSelect", OfSelected},
    {"VertexSet", "tostring", ToString},
    {"VertexSet", "VertexSelect", SelectBy, Takes("VertexSelect", {TYPE_OBJECT, TYPE_FLAG, TYPE_INT})},
    {"VertexSet", "VertexGetVertex", GetVertex,
     Takes("VertexGetVertex", {TYPE_OBJECT, TYPE_INT | TYPE_OBJECT})},
    {"VertexSet", "Vertexs", Count, Takes("Vertexs", {TYPE_OBJECT})},
    {"VertexSet", "VertexPositionVertex", Positions, Takes("VertexPositionVertex", {TYPE_OBJECT})},
    {"VertexSet", "VertexSelectPosition", AtPosition},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"VertexSet", OP_ADD, Combine}, {"VertexSet", OP_SUBTRACT, Combine}, {"VertexSet", OP_MULTIPLY, Combine},
    {"VertexSet", OP_AND, Combine}, {"VertexSet", OP_OR, Combine},       {"VertexSet", OP_XOR, Combine},
    {"VertexSet", OP_EQUAL, Equal}, {"VertexSet", OP_NOT_EQUAL, Equal},
};

}  // namespace

void VertexSetRegister() {
    setClass = ClassRegister("VertexSet", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
}

bool IsVertexSet(const DataCell& cell) {
    return IsInstance(cell, setClass);
}

Elements VertexSetElements(const DataCell& cell) {
    const SetData& data = ObjectData<SetData>(cell);
    return {data.elements, static_cast<std::size_t>(data.count)};
}

std::int32_t VertexSetCapacity(const DataCell& cell) {
    return ObjectData<SetData>(cell).capacity;
}

}  // namespace quelmark
