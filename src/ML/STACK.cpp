#include "ML/STACK.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "ML/ERROR.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t ObjectCount = 0;
ObjectBlock** ObjectTable = nullptr;
std::int32_t MaxStack = 0;
std::int32_t StackPtr = -1;
std::int32_t StackHighWater = -1;

namespace {

constexpr std::size_t SIZE_STEP = 16;     // capacities of small blocks are multiples of this
constexpr std::size_t SMALL_LIMIT = 256;  // larger blocks go back to the heap at once
constexpr int DESTRUCTORS = 256;

bool overflowed = false;

// Without a stack StackBuf points behind this cell: there is always a place below it for the mark of the
// empty stack, and no room above.
DataCell noStack[1];
DataCell* allocated = nullptr;  // one cell more than the stack has, below it

std::vector<ObjectBlock*> handles(1, nullptr);  // handle 0 is never used
std::vector<std::uint32_t> freeHandles;
std::vector<ObjectBlock*> freeBlocks[SMALL_LIMIT / SIZE_STEP + 1];  // by capacity

// Gives all blocks back when the program ends, however it ends.
struct BlockOwner {
    ~BlockOwner() {
        for (ObjectBlock* block : handles) {
            std::free(block);
        }
        for (const auto& list : freeBlocks) {
            for (ObjectBlock* block : list) {
                std::free(block);
            }
        }
        handles.clear();
    }
};
const BlockOwner blockOwner;  // stands behind the tables, so it ends before them

void (*destructors[DESTRUCTORS])(ObjectBlock*) = {};

std::size_t RoundedCapacity(std::size_t size) {
    const std::size_t wanted = size == 0 ? 1 : size;
    return (wanted + SIZE_STEP - 1) / SIZE_STEP * SIZE_STEP;
}

ObjectBlock* TakeBlock(std::size_t capacity) {
    if (capacity <= SMALL_LIMIT && !freeBlocks[capacity / SIZE_STEP].empty()) {
        auto& list = freeBlocks[capacity / SIZE_STEP];
        ObjectBlock* block = list.back();
        list.pop_back();
        return block;
    }
    auto* block = capacity <= std::numeric_limits<std::int32_t>::max()
                      ? static_cast<ObjectBlock*>(std::malloc(sizeof(ObjectBlock) + capacity))
                      : nullptr;
    if (block == nullptr) {
        RuntimeError("%s", "オブジェクト領域が確保できません。"_sjis);
    }
    block->capacity = static_cast<std::uint32_t>(capacity);
    return block;
}

std::uint32_t TakeHandle() {
    if (!freeHandles.empty()) {
        const std::uint32_t handle = freeHandles.back();
        freeHandles.pop_back();
        return handle;
    }
    handles.push_back(nullptr);
    ObjectTable = handles.data();
    return static_cast<std::uint32_t>(handles.size() - 1);
}

// Raises the top by so many cells, with the checks that every push makes, and returns it.
DataCell* Advance(std::int32_t cells) {
    StackPtr += cells;
    Check(StackPtr >= 0, "StackPtr >= 0");
    if (StackPtr > StackHighWater) {
        const std::int32_t top = StackPtr;
        StackPtr -= cells;
        StackRaiseHighWater(top);
        StackPtr = top;
    }
    return StackBuf + StackPtr;
}

int EndText(char* buffer, char* end) {
    *end = '\0';
    return static_cast<int>(end - buffer);
}

const char* TypeName(std::int32_t code) {
    switch (code) {
        case TYPE_NOASSIGN:
            return "NO_ASSIGN";
        case TYPE_BOOLEAN:  // prints as INT: scripts have come to expect it
        case TYPE_INT:
            return "INT";
        case TYPE_REAL:
            return "REAL";
        case TYPE_TYPE:
            return "TYPE";
        case TYPE_FUNC:
            return "FUNC";
        case TYPE_ARRAY:
            return "ARRAY";
        case TYPE_OBJECT:
            return "OBJECT";
        default:
            return "DATA TYPE ERROR!!!";
    }
}

}  // namespace

DataCell* StackBuf = noStack + 1;

DataCell RealCell(double value) {
    DataCell cell{TYPE_REAL, 0, {0}};
    cell.real = static_cast<float>(value);
    return cell;
}

std::int32_t RealToInt(double value) {
    if (value > -2147483649.0 && value < 2147483648.0) {
        return static_cast<std::int32_t>(value);
    }
    return std::numeric_limits<std::int32_t>::min();
}

double CellNumber(const DataCell& cell) {
    Check((cell.type & (TYPE_NUMBER | TYPE_BOOLEAN)) != 0, "buf->type & (TYPE_INT|TYPE_REAL)");
    return cell.type == TYPE_REAL ? static_cast<double>(cell.real) : cell.integer;
}

std::int32_t CellInteger(const DataCell& cell) {
    return cell.type == TYPE_REAL ? RealToInt(static_cast<double>(cell.real)) : cell.integer;
}

ObjectBlock* ObjectAlloc(std::size_t size, int classId) {
    ObjectBlock* block = TakeBlock(RoundedCapacity(size));
    block->classId = static_cast<std::int16_t>(classId);
    block->references = 1;
    block->size = static_cast<std::uint32_t>(size);
    block->handle = TakeHandle();
    handles[block->handle] = block;
    ++ObjectCount;
    return block;
}

void ObjectDestroy(ObjectBlock* block) {
    if (auto* destroy = destructors[block->classId]) {
        destroy(block);
    }
    handles[block->handle] = nullptr;
    freeHandles.push_back(block->handle);
    if (block->capacity <= SMALL_LIMIT) {
        freeBlocks[block->capacity / SIZE_STEP].push_back(block);
    } else {
        std::free(block);
    }
}

ObjectBlock* ObjectClone(const DataCell& cell) {
    const ObjectBlock* source = ObjectOf(cell);
    ObjectBlock* block = ObjectAlloc(source->size, source->classId);
    std::memcpy(block->Data(), ObjectOf(cell)->Data(), source->size);
    return block;
}

ObjectBlock* ObjectGrow(ObjectBlock* block, std::size_t size) {
    if (size > block->capacity) {
        const std::size_t capacity = RoundedCapacity(size + size / 2);
        auto* grown = TakeBlock(capacity);
        const std::uint32_t room = grown->capacity;
        std::memcpy(static_cast<void*>(grown), block, sizeof(ObjectBlock) + block->size);
        grown->capacity = room;
        handles[block->handle] = grown;
        if (block->capacity <= SMALL_LIMIT) {
            freeBlocks[block->capacity / SIZE_STEP].push_back(block);
        } else {
            std::free(block);
        }
        block = grown;
    }
    block->size = static_cast<std::uint32_t>(size);
    return block;
}

void SetObjectDestructor(int classId, void (*destroy)(ObjectBlock* block)) {
    destructors[classId] = destroy;
}

void StackInit(std::int32_t size) {
    StackFree();
    allocated =
        size > 0 ? static_cast<DataCell*>(std::calloc(static_cast<std::size_t>(size) + 1, sizeof(DataCell)))
                 : nullptr;
    if (allocated == nullptr) {
        RuntimeError("%s", "スタック用バッファが確保できません。！！"_sjis);
    }
    StackBuf = allocated + 1;
    MaxStack = size;
    StackPtr = -1;
    StackHighWater = 0;
    overflowed = false;
}

void StackFree() {
    StackRelease(StackBuf - 1);
    std::free(allocated);
    allocated = nullptr;
    StackBuf = noStack + 1;
    MaxStack = 0;
    StackHighWater = -1;
}

DataCell* StackTop() {
    Check(-1 <= StackPtr && StackPtr < MaxStack, "-1 <= StackPtr && StackPtr < MaxStack");
    return StackBuf + StackPtr;
}

void StackPush(const DataCell& cell) {
    const DataCell copy = ReadCell(cell);  // the source may be a stack cell
    if (copy.type == TYPE_OBJECT) {
        DataCell* top = Advance(1);
        ObjectAddRef(ObjectOf(copy));
        *top = copy;
    } else {
        *Advance(1) = copy;
    }
}

void StackPushObject(ObjectBlock* block) {
    const DataCell cell = ObjectCell(block);
    if (StackPtr + 1 >= MaxStack) {
        ObjectRelease(block);  // pushing reports that there is no room
    }
    *Advance(1) = cell;
}

void StackPushBool(std::int32_t value) {
    *Advance(1) = BoolCell(value);
}
void StackPushInt(std::int32_t value) {
    *Advance(1) = IntCell(value);
}
void StackPushReal(double value) {
    *Advance(1) = RealCell(value);
}

DataCell* StackAlloc(std::int32_t n) {
    Check(n >= 0, "n >= 0");
    if (n >= MaxStack - StackPtr) {
        StackRaiseHighWater(MaxStack);
    }
    DataCell* first = Advance(n) - n + 1;
    for (DataCell* cell = first; cell < first + n; ++cell) {
        *cell = NoCell();
    }
    return first;
}

void StackPop() {
    Check(0 <= StackPtr && StackPtr < MaxStack, "0 <= StackPtr && StackPtr < MaxStack");
    StackRelease(StackBuf + StackPtr - 1);
}

void StackRelease(DataCell* mark) {
    Check(StackBuf - 1 <= mark && mark <= StackBuf + StackPtr, "StackBuf - 1 <= mark && mark <= StackTop()");
    for (DataCell* cell = StackBuf + StackPtr; cell > mark; --cell) {
        if (cell->type == TYPE_OBJECT) {
            cell->type = TYPE_NOASSIGN;  // no cell above the top is ever taken for a reference
            ObjectRelease(ObjectOf(*cell));
        }
    }
    StackPtr = static_cast<std::int32_t>(mark - StackBuf);
}

void StackRaiseHighWater(std::int32_t top) {
    if (top >= MaxStack) {
        overflowed = true;
        RuntimeError("%s", "スタックオーバーフロー！！"_sjis);
    }
    StackHighWater = top;
}

std::int32_t StackMaxUsed() {
    return overflowed ? MaxStack : StackHighWater;
}

DataCell* ArrayElements(const DataCell& array) {
    const std::uint64_t end = static_cast<std::uint64_t>(array.element) + ArrayCount(array);
    if (end > static_cast<std::uint64_t>(StackPtr) + 1) {
        RuntimeError("%s", "配列の添え字が不正です"_sjis);
    }
    return StackBuf + array.element;
}

void CellAssign(DataCell& destination, const DataCell& source) {
    const DataCell old = ReadCell(destination);
    const DataCell value = ReadCell(source);
    if (value.type == TYPE_OBJECT) {
        ObjectAddRef(ObjectOf(value));
    }
    destination = value;
    if (old.type == TYPE_OBJECT) {
        ObjectRelease(ObjectOf(old));
    }
}

int CellToText(char* buffer, const DataCell& cell) {
    constexpr std::size_t ROOM = CELL_TEXT_BYTES;
    switch (cell.type) {
        case TYPE_BOOLEAN:
            return std::snprintf(buffer, ROOM, "%s", cell.integer != 0 ? "TRUE" : "FALSE");
        case TYPE_INT:
        case TYPE_FUNC:
            return EndText(buffer, std::to_chars(buffer, buffer + ROOM - 1, cell.integer).ptr);
        case TYPE_REAL:
            return EndText(buffer, std::to_chars(buffer, buffer + ROOM - 1, static_cast<double>(cell.real),
                                                 std::chars_format::fixed, 6)
                                       .ptr);
        case TYPE_TYPE:
            return std::snprintf(buffer, ROOM, "%s", TypeName(cell.integer));
        case TYPE_ARRAY:
            return std::snprintf(buffer, ROOM, "%X[%d]", cell.element, static_cast<int>(ArrayCount(cell)));
        case TYPE_OBJECT:
            return std::snprintf(buffer, ROOM, "Object[%d][%X]", ObjectOf(cell)->classId, cell.object);
        default:
            Check(false, "cell->type is a type code");
            return 0;
    }
}

}  // namespace quelmark
