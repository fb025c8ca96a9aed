// Script functions of selections, and the class Select.
#include <cstring>
#include <string>

#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/SELECT.h"
#include "MODEL/VERTEX.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

std::int32_t selectClass = -1;

// What a Select object holds: the polygon count, then the words.
struct SelectData {
    std::int32_t count;
    std::uint32_t words[1];
};

bool IsSelect(const DataCell& cell) {
    return IsInstance(cell, selectClass);
}

// Valid until the object goes.
SelectBits BitsOf(const DataCell& cell) {
    SelectData& data = ObjectData<SelectData>(cell);
    return {data.count, {data.words, ObjectOf(cell)->size / sizeof(std::uint32_t) - 1}};
}

// Pushes a Select of `words` empty words.
SelectBits PushSelect(std::int32_t count, std::int32_t words) {
    ObjectBlock* block =
        ObjectAlloc(sizeof(std::uint32_t) * static_cast<std::size_t>(words + 1), selectClass);
    std::memset(block->Data(), 0, block->size);
    reinterpret_cast<SelectData*>(block->Data())->count = count;
    StackPushObject(block);
    return BitsOf(*StackTop());
}

SelectBits PushSnapshot() {
    const std::int32_t count = PolygonCount();
    return PushSelect(count, count / 32 + 1);
}

bool Flag(const DataCell& cell) {
    return cell.integer != 0;
}

std::int32_t All(std::int32_t, std::int32_t argc, DataCell* argv) {
    SelectAll(Flag(argv[0]), argc > 1 ? argv[1].integer : SELECT_UPDATE);
    return NO_RESULT;
}

std::int32_t Area(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsVertex(argv[2]) || !IsVertex(argv[3])) {
        RuntimeError("%s", "引数の型が不正です。(SelectArea)"_sjis);
    }
    SelectArea(Flag(argv[0]), argv[1].integer, VertexOf(argv[2]).vertex, VertexOf(argv[3]).vertex);
    return NO_RESULT;
}

// "SelectAttr", "SelectObj", "SelectPolyType": value, flag [, mode].
template <auto field>
std::int32_t ByWord(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t wanted = argv[0].integer;
    SelectWhere(Flag(argv[1]), argc > 2 ? argv[2].integer : SELECT_UPDATE,
                [wanted](const PolygonRecord& polygon) { return polygon.*field == wanted; });
    return NO_RESULT;
}

std::int32_t BoundingBox(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[0]) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。(SelectBox)"_sjis);
    }
    VertexRecord corners[2];
    const bool any = SelectBounds(corners[0], corners[1]);
    for (int corner = 0; any && corner < 2; ++corner) {
        StoreVertex(argv[0], corner, corners[corner]);
    }
    StackPushBool(any);
    return RESULT;
}

std::int32_t CountMembers(const SelectBits& bits) {
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < bits.count; ++i) {
        count += bits.Has(i) ? 1 : 0;
    }
    return count;
}

std::int32_t Polygons(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 0 && !IsSelect(argv[0])) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 1, "SelectPolygons");
    }
    StackPushInt(argc == 0 ? SelectCount : CountMembers(BitsOf(argv[0])));
    return RESULT;
}

std::int32_t Snapshot(std::int32_t, std::int32_t, DataCell*) {
    SelectBits bits = PushSnapshot();
    std::int32_t i = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon), ++i) {
        if (polygon->select != 0) {
            bits.Add(i);
        }
    }
    return RESULT;
}

std::int32_t SnapshotLoaded(std::int32_t, std::int32_t, DataCell*) {
    SelectBits bits = PushSnapshot();
    if (const std::int32_t number = PolygonNumber(LoadedPolygon); number >= 0) {
        bits.Add(number);
    }
    return RESULT;
}

std::int32_t Restore(std::int32_t, std::int32_t, DataCell* argv) {
    SelectRestore(BitsOf(argv[0]));
    StackPush(argv[0]);
    return RESULT;
}

std::int32_t Adjoint(std::int32_t, std::int32_t, DataCell* argv) {
    const SelectBits result = PushSnapshot();
    SelectAdjoining(BitsOf(argv[0]), result);
    return RESULT;
}

std::int32_t Number(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[1].integer;
    if (n < 0) {
        StackPushBool(0);
        return RESULT;
    }
    const PolygonRecord* wanted = SelectMember(BitsOf(argv[0]), n);
    SelectOnly(wanted);
    StackPushBool(wanted != nullptr);
    return RESULT;
}

std::int32_t LoadMember(std::int32_t, std::int32_t, DataCell* argv) {
    PolygonRecord* wanted = argv[1].integer < 0 ? nullptr : SelectMember(BitsOf(argv[0]), argv[1].integer);
    if (wanted != nullptr) {
        PolygonLoadRecord(wanted);
    }
    StackPushInt(wanted != nullptr ? PolygonHandle(wanted) : 0);
    return RESULT;
}

std::int32_t DeleteMembers(std::int32_t, std::int32_t, DataCell* argv) {
    SelectDelete(BitsOf(argv[0]));
    return NO_RESULT;
}

std::int32_t Hold(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushBool(SelectHold(argc > 0 ? argv[0].integer : 0));
    return RESULT;
}

std::int32_t Held(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t number = argc > 0 ? argv[0].integer : 0;
    SelectHeld(number, PushSnapshot());
    return RESULT;
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    if (argc > 1) {
        return CallInherited(selectClass, ident, argc, argv);
    }
    const SelectBits bits = BitsOf(argv[0]);
    std::string text;
    text.reserve(bits.words.size() * 32);
    for (const std::uint32_t word : bits.words) {
        for (int bit = 0; bit < 32; ++bit) {
            text += (word >> bit & 1) != 0 ? '1' : '0';
        }
    }
    StackPushString(text);
    return RESULT;
}

// ---- operators ----

std::uint32_t WordAt(const SelectBits& bits, std::int32_t word) {
    return static_cast<std::size_t>(word) < bits.words.size() ? bits.words[static_cast<std::size_t>(word)]
                                                              : 0;
}

// Words that an operand does not have count as 0; words beyond those of the current polygons do not count.
std::int32_t WordsOfModel() {
    return (PolygonCount() + 31) / 32;
}

std::int32_t Not(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t words = WordsOfModel();
    const SelectBits result = PushSelect(PolygonCount(), words);
    const SelectBits operand = BitsOf(argv[0]);
    for (std::int32_t word = 0; word < words; ++word) {
        result.words[static_cast<std::size_t>(word)] = ~WordAt(operand, word);
    }
    return RESULT;
}

void CheckOperand(const DataCell& cell) {
    if (!IsSelect(cell)) {
        RuntimeError("%s", "論理演算の型が不正です(Select)"_sjis);
    }
}

std::int32_t Combine(std::int32_t code, std::int32_t, DataCell* argv) {
    CheckOperand(argv[1]);
    const std::int32_t words = WordsOfModel();
    const SelectBits result = PushSelect(PolygonCount(), words);
    const SelectBits left = BitsOf(argv[0]);
    const SelectBits right = BitsOf(argv[1]);
    for (std::int32_t word = 0; word < words; ++word) {
        const std::uint32_t a = WordAt(left, word);
        const std::uint32_t b = WordAt(right, word);
        result.words[static_cast<std::size_t>(word)] = code == OP_AND ? a & b : code == OP_OR ? a | b : a ^ b;
    }
    return RESULT;
}

std::int32_t Equal(std::int32_t code, std::int32_t, DataCell* argv) {
    CheckOperand(argv[1]);
    const std::int32_t words = WordsOfModel();
    bool equal = true;
    for (std::int32_t word = 0; word < words; ++word) {
        equal = equal && WordAt(BitsOf(argv[0]), word) == WordAt(BitsOf(argv[1]), word);
    }
    StackPushBool(equal == (code == OP_EQUAL));
    return RESULT;
}

std::int32_t Unknown(std::int32_t, std::int32_t, DataCell*) {
    RuntimeError("%s", "演算子が不正です。(SelectClass)"_sjis);
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
    {"", "SelectHold", Hold, Takes("SelectHold", {TYPE_INT}, 0)},
    {"", "SelectHeld", Held, Takes("SelectHeld", {TYPE_INT}, 0)},
    {"Select", "Select", Restore, Takes("SelectLoad", {TYPE_OBJECT})},
    {"Select", "SelectPolygons", Polygons, Takes("SelectPolygons", {TYPE_OBJECT})},
    {"Select", "SelectAdjoint", Adjoint, Takes("SelectAdjoint", {TYPE_OBJECT})},
    {"Select", "SelectNumber", Number, Takes("SelectNumber", {TYPE_OBJECT, TYPE_INT})},
    {"Select", "PolyLoad", LoadMember, Takes("PolyLoad", {TYPE_OBJECT, TYPE_INT})},
    {"Select", "PolyDelete", DeleteMembers, Takes("PolyDelete", {TYPE_OBJECT})},
    {"Select", "tostring", ToString},
};
constexpr BuiltInOperator OPERATORS[] = {
    {"Select", OP_NOT, Not},     {"Select", OP_AND, Combine}, {"Select", OP_OR, Combine},
    {"Select", OP_XOR, Combine}, {"Select", OP_EQUAL, Equal}, {"Select", OP_NOT_EQUAL, Equal},
};
constexpr ConstantRow CONSTANTS[] = {
    {"SELECT_UPDATE", IntCell(SELECT_UPDATE)}, {"SELECT_AND", IntCell(SELECT_AND)},
    {"SELECT_OR", IntCell(SELECT_OR)},         {"SELECT_XOR", IntCell(SELECT_XOR)},
    {"SELECT_ALL", IntCell(SELECT_ALL)},       {"SELECT_SUB", IntCell(SELECT_SUB)},
};

}  // namespace

void SelectRegister() {
    selectClass = ClassRegister("Select", 0);
    RegisterConstants(CONSTANTS);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
    // Every other operator has its own message here.
    for (const std::int32_t code : {OP_NEGATE, OP_INCREMENT, OP_DECREMENT, OP_ADD, OP_SUBTRACT, OP_MULTIPLY,
                                    OP_DIVIDE, OP_DOT, OP_ARROW, OP_REMAINDER, OP_LESS, OP_GREATER,
                                    OP_LESS_EQUAL, OP_GREATER_EQUAL, OP_SHIFT_LEFT, OP_SHIFT_RIGHT}) {
        OperatorRegister(selectClass, code, Unknown);
    }
}

}  // namespace quelmark
