// The script class Edge.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/EDGE.h"
#include "MODEL/TRANSFORM.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t edgeClass = -1;

constexpr std::int32_t USES_MOST = 9999;  // the upper bound of "EdgeSelectCount" when none is given

struct EdgeData {
    EdgeBox box;
    std::int32_t capacity;
    std::int32_t count;
    EdgeRecord edges[1];
};

using Elements = std::span<const EdgeRecord>;

// Pushes a set of sorted edges. A set that grew out of another has at least its slots.
std::int32_t PushEdges(Elements edges, const EdgeBox& box, std::int32_t slots) {
    const auto count = static_cast<std::int32_t>(edges.size());
    const std::int32_t capacity = SlotsOfGrownSet(edges.size(), slots);
    ObjectBlock* block = ObjectAlloc(
        offsetof(EdgeData, edges) + sizeof(EdgeRecord) * static_cast<std::size_t>(capacity), edgeClass);
    auto* data = reinterpret_cast<EdgeData*>(block->Data());
    data->box = box;
    data->capacity = capacity;
    data->count = count;
    if (count > 0) {
        std::memcpy(static_cast<void*>(data->edges), edges.data(), edges.size_bytes());
    }
    StackPushObject(block);
    return RESULT;
}

EdgeBox BoxOf(Elements edges) {
    EdgeBox box;
    for (const EdgeRecord& edge : edges) {
        box.Widen(edge.first);
        box.Widen(edge.second);
    }
    return box;
}

std::int32_t PushNewEdges(Elements edges) {
    return PushEdges(edges, BoxOf(edges), SlotsOfNewSet(edges.size()));
}

EdgeEnd EndOf(const DataCell& vertex) {
    return quelmark::EndOf(VertexOf(vertex).vertex);
}

std::int32_t Construct(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 0) {
        return PushNewEdges({});
    }
    if (argc != 2 || !IsVertex(argv[0]) || !IsVertex(argv[1])) {
        RuntimeError("%s", "Edge:引数の型が異なる"_sjis);
    }
    const EdgeRecord edge = EdgeBetween(EndOf(argv[0]), EndOf(argv[1]), 1);
    return PushNewEdges({&edge, 1});
}

std::int32_t OfSelected(std::int32_t, std::int32_t argc, DataCell*) {
    if (argc > 0) {
        RuntimeError("%s", "EdgeSelect:引数の型が異なる"_sjis);
    }
    return PushNewEdges(EdgesOfSelected());
}

std::int32_t SelectBy(std::int32_t, std::int32_t, DataCell* argv) {
    SelectByEdges(EdgeElements(argv[0]), EdgeBounds(argv[0]), argv[1].integer != 0, argv[2].integer);
    return NO_RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(edgeClass, ident, argc, argv);
    }
    std::string text;
    for (const EdgeRecord& edge : EdgeElements(argv[0])) {
        char line[128];
        const int length =
            std::snprintf(line, sizeof line, "(%6d,%6d,%6d)-(%6d,%6d,%6d):%3d\n", edge.first.x, edge.first.y,
                          edge.first.z, edge.second.x, edge.second.y, edge.second.z, edge.uses);
        text.append(line, static_cast<std::size_t>(length));
    }
    StackPushString(text);
    return RESULT;
}

std::int32_t Count(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(static_cast<std::int32_t>(EdgeElements(argv[0]).size()));
    return RESULT;
}

// The n-th edge, or null.
const EdgeRecord* EdgeAt(const DataCell& set, std::int32_t n) {
    const Elements edges = EdgeElements(set);
    return 0 <= n && n < static_cast<std::int32_t>(edges.size()) ? &edges[static_cast<std::size_t>(n)]
                                                                 : nullptr;
}

std::int32_t GetVertex(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[2]) < 2) {
        // The text names the method of Vertex: both have always reported it so.
        RuntimeError("%s", "引数配列のサイズが不正です。( Vertex:Position )"_sjis);
    }
    const EdgeRecord* edge = EdgeAt(argv[0], argv[1].integer);
    if (edge == nullptr) {
        return NO_RESULT;
    }
    const EdgeEnd ends[2] = {edge->first, edge->second};
    for (int i = 0; i < 2; ++i) {
        StoreVertex(argv[2], i, {ends[i].x, ends[i].y, ends[i].z, 0, 0, 0, 0, 0});
    }
    return NO_RESULT;
}

// (set, n) or (set, a, b)
std::int32_t GetCount(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc == 2 && argv[1].type == TYPE_INT) {
        const EdgeRecord* edge = EdgeAt(argv[0], argv[1].integer);
        StackPushInt(edge != nullptr ? edge->uses : 0);
        return RESULT;
    }
    if (argc != 3 || !IsVertex(argv[1]) || !IsVertex(argv[2])) {
        RuntimeError("%s", "EdgeGetCount:引数の型が異なる"_sjis);
    }
    StackPushInt(EdgeUses(EdgeElements(argv[0]), EdgeBetween(EndOf(argv[1]), EndOf(argv[2]), 0)));
    return RESULT;
}

// Pushes a copy that holds only the edges that pass the test.
template <class Test>
std::int32_t PushFiltered(const DataCell& set, Test test) {
    std::vector<EdgeRecord> kept;
    std::ranges::copy_if(EdgeElements(set), std::back_inserter(kept), test);
    return PushEdges(kept, EdgeBounds(set), EdgeCapacity(set));
}

std::int32_t AtVertex(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc != 2 || !IsVertex(argv[1])) {
        RuntimeError("%s", "引数の型が不正です(EdgeVertex)"_sjis);
    }
    const EdgeEnd end = EndOf(argv[1]);
    if (!EdgeBounds(argv[0]).Holds(end)) {
        return PushNewEdges({});
    }
    return PushFiltered(argv[0],
                        [end](const EdgeRecord& edge) { return edge.first == end || edge.second == end; });
}

std::int32_t ByUses(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 2 || argc > 3) {
        RuntimeError("%s", "引数の型が不正です(EdgeSelectCount)"_sjis);
    }
    ArgCheck(Takes("EdgeSelectCount", {TYPE_OBJECT, TYPE_INT, TYPE_INT}, 2), argc, argv);
    const std::int32_t low = argv[1].integer;
    const std::int32_t high = argc > 2 ? argv[2].integer : USES_MOST;
    return PushFiltered(argv[0],
                        [=](const EdgeRecord& edge) { return low <= edge.uses && edge.uses <= high; });
}

// ---- operators ----

[[noreturn]] void ReportOperand() {
    RuntimeError("%s", "論理演算の型が不正です(Edge)"_sjis);
}

std::int32_t Moved(const DataCell& set, const Matrix& matrix) {
    const FixedMatrix fixed = MatrixToFixed(matrix);
    const auto move = [&fixed](const EdgeEnd& p) -> EdgeEnd {
        return {CutTo16(FixedRounded(fixed, 0, p.x, p.y, p.z)),
                CutTo16(FixedRounded(fixed, 1, p.x, p.y, p.z)),
                CutTo16(FixedRounded(fixed, 2, p.x, p.y, p.z))};
    };
    std::vector<EdgeRecord> moved;
    moved.reserve(EdgeElements(set).size());
    for (const EdgeRecord& edge : EdgeElements(set)) {
        moved.push_back(EdgeBetween(move(edge.first), move(edge.second), edge.uses));
    }
    EdgeSort(moved);
    return PushEdges(moved, BoxOf(moved), EdgeCapacity(set));
}

// A set operation starts as a copy of `base`, to which the edges of `other` are applied.
std::int32_t Merge(std::int32_t code, const DataCell& base, const DataCell& other) {
    const Elements left = EdgeElements(base);
    const Elements right = EdgeElements(other);
    EdgeBox box = EdgeBounds(base);
    std::vector<EdgeRecord> result;
    const auto into = std::back_inserter(result);
    switch (code) {
        case OP_SUBTRACT:
            std::ranges::set_difference(left, right, into, EdgeLess);
            return PushEdges(result, box, EdgeCapacity(base));
        case OP_AND:
        case OP_MULTIPLY:
            std::ranges::set_intersection(left, right, into, EdgeLess);
            return PushNewEdges(result);
        case OP_XOR:
            std::ranges::set_symmetric_difference(left, right, into, EdgeLess);
            break;
        default:
            result = EdgeUnion(left, right);
            break;
    }
    box.Widen(EdgeBounds(other).low);
    box.Widen(EdgeBounds(other).high);
    return PushEdges(result, right.empty() ? EdgeBounds(base) : box, EdgeCapacity(base));
}

std::int32_t Combine(std::int32_t code, std::int32_t, DataCell* argv) {
    if (code == OP_MULTIPLY && IsMatrix(argv[1])) {
        return Moved(argv[0], ObjectData<Matrix>(argv[1]));
    }
    if (!IsEdge(argv[1])) {
        ReportOperand();
    }
    // The larger one is the base, with equal counts the right one; its uses are what an intersection keeps.
    const bool fromLeft = code == OP_SUBTRACT || EdgeElements(argv[0]).size() > EdgeElements(argv[1]).size();
    return Merge(code, argv[fromLeft ? 0 : 1], argv[fromLeft ? 1 : 0]);
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    if (!IsEdge(argv[1])) {
        ReportOperand();
    }
    const bool equal = std::ranges::equal(EdgeElements(argv[0]), EdgeElements(argv[1]), EdgeSame);
    StackPushBool(equal == (code == OP_EQUAL));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "Edge", Construct},
    {"", "EdgeSelect", OfSelected},
    {"Edge", "tostring", ToString},
    {"Edge", "EdgeSelect", SelectBy, Takes("EdgeSelect", {TYPE_OBJECT, TYPE_FLAG, TYPE_INT})},
    {"Edge", "Edges", Count, Takes("Edges", {TYPE_OBJECT})},
    {"Edge", "EdgeGetVertex", GetVertex, Takes("EdgeGetVertex", {TYPE_OBJECT, TYPE_INT, TYPE_ARRAY})},
    {"Edge", "EdgeGetCount", GetCount},
    {"Edge", "EdgeVertex", AtVertex},
    {"Edge", "EdgeSelectCount", ByUses},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Edge", OP_ADD, Combine}, {"Edge", OP_SUBTRACT, Combine}, {"Edge", OP_MULTIPLY, Combine},
    {"Edge", OP_AND, Combine}, {"Edge", OP_OR, Combine},       {"Edge", OP_XOR, Combine},
    {"Edge", OP_EQUAL, Equal}, {"Edge", OP_NOT_EQUAL, Equal},
};

}  // namespace

void EdgeRegister() {
    edgeClass = ClassRegister("Edge", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
}

bool IsEdge(const DataCell& cell) {
    return IsInstance(cell, edgeClass);
}

Elements EdgeElements(const DataCell& cell) {
    const EdgeData& data = ObjectData<EdgeData>(cell);
    return {data.edges, static_cast<std::size_t>(data.count)};
}

const EdgeBox& EdgeBounds(const DataCell& cell) {
    return ObjectData<EdgeData>(cell).box;
}

std::int32_t EdgeCapacity(const DataCell& cell) {
    return ObjectData<EdgeData>(cell).capacity;
}

}  // namespace quelmark
