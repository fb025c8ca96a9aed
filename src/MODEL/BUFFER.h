// The data buffer: one arena that holds every polygon as a packed sequence of blocks, each with a 4-byte
// header, and the guarded allocator of the program's fixed tables. Invariants: the sizes chain exactly from
// BufTop to BufNext; outside the span between a deletion and the compaction that follows it every block is
// live; BufNext < BufEnd after every successful call.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quelmark {

struct DataBuffer {
    std::uint16_t flag;  // FLAG_USE or FLAG_NOUSE
    std::int16_t size;   // whole block in bytes, header included
};
inline constexpr std::uint16_t FLAG_USE = 0x1234;
inline constexpr std::uint16_t FLAG_NOUSE = 0x4321;

extern char* BufTop;
extern char* BufNext;
extern char* BufEnd;
// Grows whenever blocks may have moved; an address taken at another value must be looked up again.
extern std::uint32_t BufLayout;

void BufferInit(std::size_t bytes);
void BufferExit();

// A live block at the end, its payload not filled in; null when there is no room (message
// "データバッファがオーバフローしました(BufferAppend)"). `size` is a multiple of 4 above 4.
DataBuffer* BufferAppend(std::int32_t size);
// A live block at the address of `block`, which moves up with all behind it.
DataBuffer* BufferInsert(DataBuffer* block, std::int32_t size);
// Grows a block in place, never shrinks; the payload of a grown block is undefined.
DataBuffer* BufferResize(DataBuffer* block, std::int32_t newSize);
// Marks the block unused; BufferCompact squeezes such blocks out, and moves what stood behind them.
void BufferDelete(DataBuffer* block);
void BufferCompact();
// Copies size - 4 bytes of payload; neither header is touched.
void BufferCopy(DataBuffer* destination, const DataBuffer* source, std::int32_t size);
DataBuffer* BufferTop();
DataBuffer* BufferNext(DataBuffer* block);
void BufferCheck();

// Zeroed heap memory behind a guard word; null when the heap refuses.
void* MemoryAlloc(std::uint32_t size);
// Reports "Memory Block Error(%X)!!!" when the guard word is not there, or the block was freed before; the
// block is then left alone.
void MemoryFree(void* memory);

}  // namespace quelmark
