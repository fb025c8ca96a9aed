// Script values and the value stack. Every value a script handles is one 8-byte DataCell; all cells of
// variables, arrays, arguments and temporaries live in one contiguous stack that never grows. Objects are
// reference-counted blocks in a table of their own; a cell holds the block's 32-bit handle.
// Invariants: every OBJECT cell from StackBuf to StackBuf[StackPtr] holds one reference; no cell above the
// top has the type OBJECT.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace quelmark {

// Type codes are bit flags, so that a set of acceptable types is their OR.
enum Type : std::uint16_t {
    TYPE_NOASSIGN = 0,
    TYPE_BOOLEAN = 1,
    TYPE_INT = 2,
    TYPE_REAL = 4,
    TYPE_TYPE = 8,
    TYPE_FUNC = 16,
    TYPE_ARRAY = 32,
    TYPE_OBJECT = 64,
};
inline constexpr std::uint16_t TYPE_NUMBER = TYPE_INT | TYPE_REAL;
inline constexpr std::uint16_t TYPE_FLAG = TYPE_BOOLEAN | TYPE_INT;
inline constexpr std::uint16_t TYPE_ANY = 127;

struct DataCell {
    std::uint16_t type;
    std::int16_t count;  // TYPE_ARRAY: number of elements, read as unsigned; 0 for other types
    union {
        std::int32_t integer;   // BOOLEAN, INT, TYPE, FUNC
        float real;             // REAL
        std::uint32_t element;  // ARRAY: index in StackBuf of the first element cell
        std::uint32_t object;   // OBJECT: handle of the block
    };
};
static_assert(sizeof(DataCell) == 8);

constexpr DataCell BoolCell(std::int32_t value) {
    return {TYPE_BOOLEAN, 0, {value}};
}
constexpr DataCell IntCell(std::int32_t value) {
    return {TYPE_INT, 0, {value}};
}
constexpr DataCell TypeCell(std::int32_t code) {
    return {TYPE_TYPE, 0, {code}};
}
constexpr DataCell FuncCell(std::int32_t ident) {
    return {TYPE_FUNC, 0, {ident}};
}
constexpr DataCell NoCell() {
    return {TYPE_NOASSIGN, 0, {0}};
}
DataCell RealCell(double value);  // narrowed to single precision
// A copy of a cell that may just have been written in parts: the type and the payload are read apart, because
// one read across two fresh writes would wait until both have left the processor's store buffer. The copy is
// one word, so that it is written in one piece.
inline DataCell ReadCell(const DataCell& cell) {
    const volatile DataCell& parts = cell;
    const std::uint32_t head =
        parts.type | static_cast<std::uint32_t>(static_cast<std::uint16_t>(parts.count)) << 16;
    const auto payload = static_cast<std::uint32_t>(parts.integer);
    return std::bit_cast<DataCell>(static_cast<std::uint64_t>(payload) << 32 | head);
}

// REAL to INT: truncates; out of range or not a number gives -2147483648.
std::int32_t RealToInt(double value);
// The number in an INT, BOOLEAN or REAL cell; requires one of these types.
double CellNumber(const DataCell& cell);
std::int32_t CellInteger(const DataCell& cell);

// ---- object blocks ----

// Header of an object block; `size` data bytes follow it, 8-byte aligned.
struct ObjectBlock {
    std::int16_t classId;
    std::int16_t references;  // stays at 32767 once there: such a block is never freed
    std::uint32_t size;
    std::uint32_t handle;
    std::uint32_t capacity;  // bytes allocated for data, at least `size`

    std::byte* Data() { return reinterpret_cast<std::byte*>(this + 1); }
    const std::byte* Data() const { return reinterpret_cast<const std::byte*>(this + 1); }
};
static_assert(sizeof(ObjectBlock) == 16);

// Live references to objects (not blocks): what the script function "ObjectCount" returns.
extern std::int32_t ObjectCount;

// Header plus `size` data bytes (uninitialised), reference count 1. Failure:
// "オブジェクト領域が確保できません。".
ObjectBlock* ObjectAlloc(std::size_t size, int classId);
// Frees a block whose last reference has gone.
void ObjectDestroy(ObjectBlock* block);
inline constexpr std::int16_t REFERENCES_MOST = 32767;
inline ObjectBlock* ObjectAddRef(ObjectBlock* block) {
    block->references =
        static_cast<std::int16_t>(block->references + (block->references < REFERENCES_MOST ? 1 : 0));
    ++ObjectCount;
    return block;
}
inline void ObjectRelease(ObjectBlock* block) {
    --ObjectCount;
    if (block->references < REFERENCES_MOST && --block->references == 0) {
        ObjectDestroy(block);
    }
}
// A new block of the cell's class and size with a copy of its data, reference count 1.
ObjectBlock* ObjectClone(const DataCell& cell);
// The blocks by handle; it moves when objects are made.
extern ObjectBlock** ObjectTable;
// The block of an OBJECT cell.
inline ObjectBlock* ObjectOf(const DataCell& cell) {
    return ObjectTable[cell.object];
}
// Gives the block room for `size` data bytes, keeping its handle and its data; the block may move.
ObjectBlock* ObjectGrow(ObjectBlock* block, std::size_t size);
inline DataCell ObjectCell(const ObjectBlock* block) {
    DataCell cell{TYPE_OBJECT, 0, {0}};
    cell.object = block->handle;
    return cell;
}
// The data of an OBJECT cell as the record its class keeps there.
template <class Record>
Record& ObjectData(const DataCell& cell) {
    return *reinterpret_cast<Record*>(ObjectOf(cell)->Data());
}
// A class whose data owns something (an open file) registers what to do when the last reference goes.
void SetObjectDestructor(int classId, void (*destroy)(ObjectBlock* block));

// ---- the value stack ----

extern DataCell* StackBuf;
extern std::int32_t MaxStack;  // capacity in cells
extern std::int32_t StackPtr;  // index of the top cell, -1 when empty

// Allocates `size` cells. Failure: "スタック用バッファが確保できません。！！".
void StackInit(std::int32_t size);
// Releases everything held on the stack and frees it.
void StackFree();
// The top cell; with an empty stack the position just below StackBuf, the mark for the whole stack.
DataCell* StackTop();
// Every push reports "スタックオーバーフロー！！" when the stack is full.
void StackPush(const DataCell& cell);      // an OBJECT gains a reference
void StackPushObject(ObjectBlock* block);  // takes over the caller's reference
void StackPushBool(std::int32_t value);
void StackPushInt(std::int32_t value);
void StackPushReal(double value);
// Reserves n >= 0 NOASSIGN cells and returns the first.
DataCell* StackAlloc(std::int32_t n);
void StackPop();
// Discards every cell above `mark`, releasing the objects held there; requires
// StackBuf - 1 <= mark <= top.
void StackRelease(DataCell* mark);
extern std::int32_t StackHighWater;  // always below MaxStack, so that one comparison serves every push
// The top reaches `top` for the first time: remembers it, or reports the overflow.
void StackRaiseHighWater(std::int32_t top);
// The largest StackPtr reached since StackInit; MaxStack after an overflow.
std::int32_t StackMaxUsed();

// The cells of an ARRAY cell, its count read as unsigned; reports "配列の添え字が不正です" when the array
// has outlived its frame.
DataCell* ArrayElements(const DataCell& array);
inline std::uint32_t ArrayCount(const DataCell& array) {
    return static_cast<std::uint16_t>(array.count);
}

// Replaces what a variable or element cell holds, with the references kept right (no array rules).
void CellAssign(DataCell& destination, const DataCell& source);

inline constexpr std::size_t CELL_TEXT_BYTES = 4096;
// Writes a readable, NUL-terminated form of a cell to `buffer` (CELL_TEXT_BYTES) and returns its length.
int CellToText(char* buffer, const DataCell& cell);

}  // namespace quelmark
