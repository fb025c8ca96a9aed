#include "MODEL/SELECT.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <unordered_set>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/OBJ.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t selectClass = -1;

// A saved selection: the polygon count, then one bit per polygon in 32-bit words.
struct SelectData {
    std::int32_t count;
    std::uint32_t words[1];
};

std::int32_t ModelCount() {
    std::int32_t count = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        ++count;
    }
    return count;
}

bool IsSelect(const DataCell& cell) {
    return IsInstance(cell, selectClass);
}

SelectData& DataOf(const DataCell& cell) {
    Check(IsSelect(cell), "buf[0] is a Select");
    return ObjectData<SelectData>(cell);
}

std::int32_t WordsOf(const DataCell& cell) {
    return static_cast<std::int32_t>(ObjectOf(cell)->size / sizeof(std::uint32_t)) - 1;
}

// Pushes a Select of `words` empty words and gives its data.
SelectData& PushSelect(std::int32_t count, std::int32_t words) {
    ObjectBlock* block =
        ObjectAlloc(sizeof(std::uint32_t) * static_cast<std::size_t>(words + 1), selectClass);
    std::memset(block->Data(), 0, block->size);
    auto& data = *reinterpret_cast<SelectData*>(block->Data());
    data.count = count;
    StackPushObject(block);
    return data;
}

bool IsMember(const SelectData& data, std::int32_t words, std::int32_t i) {
    return i < data.count && i / 32 < words && (data.words[i / 32] >> (i % 32) & 1) != 0;
}

void AddMember(SelectData& data, std::int32_t i) {
    data.words[i / 32] |= 1U << (i % 32);
}

// Selects by a test of each polygon.
template <class Hit>
void SelectWhere(bool flag, std::int32_t mode, Hit hit) {
    SelectBegin();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        SelectPolygon(polygon, hit(*polygon), flag, mode);
    }
}

bool Flag(const DataCell& cell) {
    return cell.integer != 0;
}

std::int32_t All(std::int32_t, std::int32_t argc, DataCell* argv) {
    SelectWhere(Flag(argv[0]), argc > 1 ? argv[1].integer & SELECT_MODE_MASK : 0,
                [](const PolygonRecord&) { return true; });
    return NO_RESULT;
}

struct Box {
    std::int16_t low[3], high[3];
};

bool Inside(const Box& box, const VertexRecord& v) {
    return box.low[0] <= v.x && v.x <= box.high[0] && box.low[1] <= v.y && v.y <= box.high[1] &&
           box.low[2] <= v.z && v.z <= box.high[2];
}

std::int32_t Area(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsVertex(argv[2]) || !IsVertex(argv[3])) {
        RuntimeError("%s", "引数の型が不正です。(SelectArea)"_sjis);
    }
    const VertexRecord a = VertexOf(argv[2]).vertex;
    const VertexRecord b = VertexOf(argv[3]).vertex;
    const Box box{{std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)},
                  {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)}};
    const bool partly = (argv[1].integer & SELECT_SUB) != 0;
    const auto inside = [&box](const VertexRecord& v) { return Inside(box, v); };
    SelectWhere(Flag(argv[0]), argv[1].integer & SELECT_MODE_MASK, [&](const PolygonRecord& polygon) {
        return partly ? std::ranges::any_of(polygon.Vertices(), inside)
                      : std::ranges::all_of(polygon.Vertices(), inside);
    });
    return NO_RESULT;
}

// "SelectAttr", "SelectObj", "SelectPolyType": value, flag [, mode].
template <auto field>
std::int32_t ByWord(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t wanted = argv[0].integer;
    SelectWhere(Flag(argv[1]), argc > 2 ? argv[2].integer & SELECT_MODE_MASK : 0,
                [wanted](const PolygonRecord& polygon) { return polygon.*field == wanted; });
    return NO_RESULT;
}

std::int32_t BoundingBox(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[0]) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。(SelectBox)"_sjis);
    }
    VertexRecord low{VERTEX_MAX, VERTEX_MAX, VERTEX_MAX, 0, 0, 0, 0, 0};
    VertexRecord high{VERTEX_MIN, VERTEX_MIN, VERTEX_MIN, 0, 0, 0, 0, 0};
    bool any = false;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 1) {
            continue;
        }
        any = true;
        for (const VertexRecord& v : polygon->Vertices()) {
            low.x = std::min(low.x, v.x);
            low.y = std::min(low.y, v.y);
            low.z = std::min(low.z, v.z);
            high.x = std::max(high.x, v.x);
            high.y = std::max(high.y, v.y);
            high.z = std::max(high.z, v.z);
        }
    }
    for (int corner = 0; any && corner < 2; ++corner) {
        StackPushVertex(corner == 0 ? low : high, 0);
        CellAssign(ArrayElements(argv[0])[corner], *StackTop());
        StackPop();
    }
    StackPushBool(any);
    return RESULT;
}

std::int32_t CountMembers(const DataCell& cell) {
    const SelectData& data = DataOf(cell);
    const std::int32_t words = WordsOf(cell);
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < data.count; ++i) {
        count += IsMember(data, words, i) ? 1 : 0;
    }
    return count;
}

std::int32_t Polygons(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(argc == 0 ? SelectCount : CountMembers(argv[0]));
    return RESULT;
}

std::int32_t Snapshot(std::int32_t, std::int32_t, DataCell*) {
    const std::int32_t count = ModelCount();
    SelectData& data = PushSelect(count, count / 32 + 1);
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (polygon->select != 0) {
            AddMember(data, i);
        }
    }
    return RESULT;
}

std::int32_t SnapshotLoaded(std::int32_t, std::int32_t, DataCell*) {
    const std::int32_t count = ModelCount();
    SelectData& data = PushSelect(count, count / 32 + 1);
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (polygon == LoadedPolygon) {
            AddMember(data, i);
        }
    }
    return RESULT;
}

std::int32_t Restore(std::int32_t, std::int32_t, DataCell* argv) {
    const SelectData& data = DataOf(argv[0]);
    const std::int32_t words = WordsOf(argv[0]);
    SelectBegin();
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        polygon->select = IsMember(data, words, i) ? 1 : 0;
        SelectCount += polygon->select;
    }
    StackPush(argv[0]);
    return RESULT;
}

std::uint64_t PositionKey(const VertexRecord& v) {
    const auto word = [](std::int16_t value) {
        return static_cast<std::uint64_t>(static_cast<std::uint16_t>(value));
    };
    return word(v.x) << 32 | word(v.y) << 16 | word(v.z);
}

// Two passes over a set of positions give what comparing every pair of vertices would.
std::int32_t Adjoint(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t count = ModelCount();
    std::unordered_set<std::uint64_t> positions;
    const std::int32_t words = WordsOf(argv[0]);
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if ((polygon->flags & POLYGON_INVISIBLE) == 0 && IsMember(DataOf(argv[0]), words, i)) {
            for (const VertexRecord& v : polygon->Vertices()) {
                positions.insert(PositionKey(v));
            }
        }
    }
    SelectData& result = PushSelect(count, count / 32 + 1);
    i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        const auto shared = [&positions](const VertexRecord& v) {
            return positions.contains(PositionKey(v));
        };
        if ((polygon->flags & POLYGON_INVISIBLE) == 0 && std::ranges::any_of(polygon->Vertices(), shared)) {
            AddMember(result, i);
        }
    }
    return RESULT;
}

// The n-th member of a Select, as a record and its position; null when there is none.
PolygonRecord* NthMember(const DataCell& cell, std::int32_t n) {
    const SelectData& data = DataOf(cell);
    const std::int32_t words = WordsOf(cell);
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (IsMember(data, words, i) && n-- == 0) {
            return polygon;
        }
    }
    return nullptr;
}

std::int32_t Number(std::int32_t, std::int32_t, DataCell* argv) {
    if (argv[1].integer < 0) {
        StackPushBool(0);
        return RESULT;
    }
    const PolygonRecord* wanted = NthMember(argv[0], argv[1].integer);
    SelectBegin();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->select = polygon == wanted ? 1 : 0;
        SelectCount += polygon->select;
    }
    StackPushBool(wanted != nullptr);
    return RESULT;
}

std::int32_t LoadMember(std::int32_t, std::int32_t, DataCell* argv) {
    const PolygonRecord* wanted = argv[1].integer < 0 ? nullptr : NthMember(argv[0], argv[1].integer);
    const std::int32_t handle = wanted == nullptr ? 0 : PolygonHandle(wanted);
    if (handle != 0) {
        PolygonLoad(handle);
    }
    StackPushInt(handle);
    return RESULT;
}

std::int32_t DeleteMembers(std::int32_t, std::int32_t, DataCell* argv) {
    const SelectData& data = DataOf(argv[0]);
    const std::int32_t words = WordsOf(argv[0]);
    SelectCount = 0;
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; ++i) {
        PolygonRecord* next = PolygonNext(polygon);
        if (IsMember(data, words, i)) {
            ObjMarkEdited(polygon->obj);
            BufferDelete(&polygon->header);
        } else {
            SelectCount += polygon->select == 1 ? 1 : 0;
        }
        polygon = next;
    }
    BufferCompact();
    return NO_RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(selectClass, ident, argc, argv);
    }
    std::string text;
    for (std::int32_t i = 0; i < WordsOf(argv[0]) * 32; ++i) {
        text += (DataOf(argv[0]).words[i / 32] >> (i % 32) & 1) != 0 ? '1' : '0';
    }
    StackPushString(text);
    return RESULT;
}

// ---- operators ----

std::uint32_t WordAt(const DataCell& cell, std::int32_t word) {
    return word < WordsOf(cell) ? DataOf(cell).words[word] : 0;
}

std::int32_t Combine(std::int32_t code, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsSelect(argv[1])) {
        RuntimeError("%s", "論理演算の型が不正です(Select)"_sjis);
    }
    const std::int32_t count = ModelCount();
    const std::int32_t words = (count + 31) / 32;
    if (code == OP_EQUAL || code == OP_NOT_EQUAL) {
        bool equal = true;
        for (std::int32_t word = 0; word < words; ++word) {
            equal = equal && WordAt(argv[0], word) == WordAt(argv[1], word);
        }
        StackPushBool(equal == (code == OP_EQUAL));
        return RESULT;
    }
    SelectData& result = PushSelect(count, words);
    for (std::int32_t word = 0; word < words; ++word) {
        const std::uint32_t left = WordAt(argv[0], word);
        const std::uint32_t right = argc > 1 ? WordAt(argv[1], word) : 0;
        switch (code) {
            case OP_NOT:
                result.words[word] = ~left;
                break;
            case OP_AND:
                result.words[word] = left & right;
                break;
            case OP_OR:
                result.words[word] = left | right;
                break;
            case OP_XOR:
                result.words[word] = left ^ right;
                break;
            default:
                RuntimeError("%s", "演算子が不正です。(SelectClass)"_sjis);
        }
    }
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "SelectAll", All, Takes("SelectAll", {TYPE_FLAG, TYPE_INT}, 1)},
    {"", "SelectArea", Area, Takes("SelectArea", {TYPE_FLAG, TYPE_INT, TYPE_OBJECT, TYPE_OBJECT})},
    {"", "SelectAttr", ByWord<&PolygonRecord::attr>, Takes("SelectAttr", {TYPE_INT, TYPE_FLAG, TYPE_INT}, 2)},
    {"", "SelectObj", ByWord<&PolygonRecord::obj>, Takes("SelectObj", {TYPE_INT, TYPE_FLAG, TYPE_INT}, 2)},
    {"", "SelectPolyType", ByWord<&PolygonRecord::type>,
     Takes("SelectPolyType", {TYPE_INT, TYPE_FLAG, TYPE_INT}, 2)},
    {"", "SelectBox", BoundingBox, Takes("SelectBox", {TYPE_ARRAY})},
    {"", "SelectPolygons", Polygons, Takes("SelectPolygons", {TYPE_OBJECT}, 0)},
    {"", "Select", Snapshot, Takes("Select", {})},
    {"", "SelectCurrent", SnapshotLoaded, Takes("SelectCurrent", {})},
    {"Select", "Select", Restore, Takes("SelectLoad", {TYPE_OBJECT})},
    {"Select", "SelectPolygons", Polygons, Takes("SelectPolygons", {TYPE_OBJECT})},
    {"Select", "SelectAdjoint", Adjoint, Takes("SelectAdjoint", {TYPE_OBJECT})},
    {"Select", "SelectNumber", Number, Takes("SelectNumber", {TYPE_OBJECT, TYPE_INT})},
    {"Select", "PolyLoad", LoadMember, Takes("PolyLoad", {TYPE_OBJECT, TYPE_INT})},
    {"Select", "PolyDelete", DeleteMembers, Takes("PolyDelete", {TYPE_OBJECT})},
    {"Select", "tostring", ToString},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Select", OP_NOT, Combine}, {"Select", OP_AND, Combine},   {"Select", OP_OR, Combine},
    {"Select", OP_XOR, Combine}, {"Select", OP_EQUAL, Combine}, {"Select", OP_NOT_EQUAL, Combine},
};

}  // namespace

void SelectBegin() {
    PolygonLoadInit();
    SelectCount = 0;
}

void SelectPolygon(PolygonRecord* polygon, bool hit, bool flag, std::int32_t mode) {
    if ((polygon->flags & POLYGON_INVISIBLE) != 0) {
        return;
    }
    const std::int16_t value = hit == flag ? 1 : 0;
    switch (mode & SELECT_MODE_MASK) {
        case 0:
            polygon->select = value;
            break;
        case 1:
            polygon->select = static_cast<std::int16_t>(polygon->select & value);
            break;
        case 2:
            polygon->select = static_cast<std::int16_t>(polygon->select | value);
            break;
        default:
            polygon->select = static_cast<std::int16_t>(polygon->select ^ value);
            break;
    }
    SelectCount += polygon->select != 0 ? 1 : 0;
}

void SelectRegister() {
    selectClass = ClassRegister("Select", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
}

}  // namespace quelmark
