#include "MODEL/BUFFER.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "ML/ERROR.h"
#include "text/sjis.h"

namespace quelmark {

char* BufTop = nullptr;
char* BufNext = nullptr;
char* BufEnd = nullptr;
std::uint32_t BufLayout = 0;

namespace {

constexpr std::uint32_t GUARD = 0x12345678;
struct Prefix {
    std::uint32_t guard;
    std::uint32_t size;
};

// Every block that MemoryAlloc gave and MemoryFree has not taken back, so that a wrong address is never
// followed.
std::vector<Prefix*> memoryBlocks;

DataBuffer* BlockAt(char* address) {
    return reinterpret_cast<DataBuffer*>(address);
}
char* AddressOf(DataBuffer* block) {
    return reinterpret_cast<char*>(block);
}

void CheckLive(DataBuffer* buf) {
    Check(buf->flag == FLAG_USE, "buf->flag == FLAG_USE");
    Check(BufTop <= AddressOf(buf) && AddressOf(buf) < BufNext,
          "BufTop <= (char*)buf && (char*)buf < BufNext");
}

// One byte always stays unused.
bool HasRoom(std::int32_t bytes) {
    return bytes < BufEnd - BufNext;
}

}  // namespace

void BufferInit(std::size_t bytes) {
    BufTop = static_cast<char*>(MemoryAlloc(static_cast<std::uint32_t>(bytes)));
    BufNext = BufTop;
    BufEnd = BufTop == nullptr ? nullptr : BufTop + bytes;
    ++BufLayout;
}

void BufferExit() {
    if (BufTop != nullptr) {
        MemoryFree(BufTop);
    }
    BufTop = BufNext = BufEnd = nullptr;
    ++BufLayout;
}

DataBuffer* BufferAppend(std::int32_t size) {
    Check(size > static_cast<std::int32_t>(sizeof(DataBuffer)), "size > sizeof( DataBuffer )");
    Check((size & 3) == 0, "( size & 3 ) == 0");
    if (!HasRoom(size)) {
        ReportTableFull("データバッファがオーバフローしました(BufferAppend)"_sjis);
        return nullptr;
    }
    DataBuffer* block = BlockAt(BufNext);
    *block = {FLAG_USE, static_cast<std::int16_t>(size)};
    BufNext += size;
    return block;
}

DataBuffer* BufferInsert(DataBuffer* block, std::int32_t size) {
    CheckLive(block);
    if (!HasRoom(size)) {
        ReportTableFull("データバッファがオーバフローしました(BufferInsert)"_sjis);
        return nullptr;
    }
    char* address = AddressOf(block);
    ++BufLayout;
    std::memmove(address + size, address, static_cast<std::size_t>(BufNext - address));
    *block = {FLAG_USE, static_cast<std::int16_t>(size)};
    BufNext += size;
    return block;
}

DataBuffer* BufferResize(DataBuffer* block, std::int32_t newSize) {
    CheckLive(block);
    const std::int32_t delta = newSize - block->size;
    if (delta < 1) {
        return block;
    }
    if (!HasRoom(delta)) {
        // The text names the insertion: both paths have always reported it so.
        ReportTableFull("データバッファがオーバフローしました(BufferInsert)"_sjis);
        return nullptr;
    }
    char* address = AddressOf(block);
    ++BufLayout;
    std::memmove(address + delta, address, static_cast<std::size_t>(BufNext - address));
    *block = {FLAG_USE, static_cast<std::int16_t>(newSize)};
    BufNext += delta;
    return block;
}

void BufferDelete(DataBuffer* block) {
    Check(block->flag == FLAG_USE, "((DataBuffer*)buf)->flag == FLAG_USE");
    Check(BufTop <= AddressOf(block) && AddressOf(block) < BufNext,
          "BufTop <= (char*)buf && (char*)buf < BufNext");
    block->flag = FLAG_NOUSE;
}

void BufferCompact() {
    ++BufLayout;
    char* dst = BufTop;
    for (char* src = BufTop; src < BufNext;) {
        Check(dst <= src, "dst <= src");
        // Neighbouring live blocks move together.
        char* const run = src;
        while (src < BufNext && BlockAt(src)->flag == FLAG_USE) {
            src += BlockAt(src)->size;
        }
        if (run > dst) {
            std::memmove(dst, run, static_cast<std::size_t>(src - run));
        }
        dst += src - run;
        while (src < BufNext && BlockAt(src)->flag != FLAG_USE) {
            Check(BlockAt(src)->flag == FLAG_NOUSE, "src->flag == FLAG_NOUSE");
            src += BlockAt(src)->size;
        }
    }
    BufNext = dst;
}

void BufferCopy(DataBuffer* destination, const DataBuffer* source, std::int32_t size) {
    std::memcpy(destination + 1, source + 1, static_cast<std::size_t>(size) - sizeof(DataBuffer));
}

DataBuffer* BufferTop() {
    return BufTop != BufNext ? BlockAt(BufTop) : nullptr;
}

DataBuffer* BufferNext(DataBuffer* block) {
    CheckLive(block);
    char* next = AddressOf(block) + block->size;
    return next < BufNext ? BlockAt(next) : nullptr;
}

void BufferCheck() {
    for (char* at = BufTop; at < BufNext; at += BlockAt(at)->size) {
        Check(BlockAt(at)->flag == FLAG_USE, "buf->flag == FLAG_USE");
    }
}

void* MemoryAlloc(std::uint32_t size) {
    // Large tables are left to the system's zero pages until they are used.
    auto* prefix = static_cast<Prefix*>(std::calloc(1, sizeof(Prefix) + static_cast<std::size_t>(size)));
    if (prefix == nullptr) {
        return nullptr;
    }
    *prefix = {GUARD, size};
    memoryBlocks.push_back(prefix);
    return prefix + 1;
}

void MemoryFree(void* memory) {
    Prefix* prefix = static_cast<Prefix*>(memory) - 1;
    const auto place = std::ranges::find(memoryBlocks, prefix);
    if (place == memoryBlocks.end() || prefix->guard != GUARD) {
        RuntimeError("Memory Block Error(%X)!!!",
                     static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(prefix)));
    }
    memoryBlocks.erase(place);
    prefix->guard = 0;
    std::free(prefix);
}

}  // namespace quelmark
