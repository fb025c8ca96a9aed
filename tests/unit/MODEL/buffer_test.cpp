#include "MODEL/BUFFER.h"

#include <cstring>
#include <vector>

#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Buffer : public ScriptTest {
  protected:
    void TearDown() override {
        BufferExit();
        ScriptTest::TearDown();
    }
    // The message that a call ends with.
    template <class Call>
    static std::string MessageOf(Call call) {
        message.clear();
        try {
            call();
        } catch (const ScriptAbort&) {
        }
        return message;
    }
    static std::vector<int> Sizes() {
        std::vector<int> sizes;
        for (DataBuffer* block = BufferTop(); block != nullptr; block = BufferNext(block)) {
            sizes.push_back(block->size);
        }
        return sizes;
    }
    using Sizing = std::vector<int>;
};

TEST_F(Buffer, EmptyArenaHasNoFirstBlock) {
    BufferInit(1024);
    EXPECT_EQ(BufferTop(), nullptr);
    EXPECT_EQ(BufNext, BufTop);
    EXPECT_EQ(BufEnd, BufTop + 1024);
    BufferCheck();
}

TEST_F(Buffer, BlocksFollowEachOtherWithoutGaps) {
    BufferInit(1024);
    DataBuffer* first = BufferAppend(8);
    DataBuffer* second = BufferAppend(40);
    EXPECT_EQ(first->flag, FLAG_USE);
    EXPECT_EQ(reinterpret_cast<char*>(second), BufTop + 8);
    EXPECT_EQ(BufNext, BufTop + 48);
    EXPECT_EQ(BufferNext(first), second);
    EXPECT_EQ(BufferNext(second), nullptr);
}

TEST_F(Buffer, AnAppendThatWouldFillTheArenaExactlyFails) {
    BufferInit(64);
    EXPECT_NE(BufferAppend(32), nullptr);
    EXPECT_EQ(BufferAppend(32), nullptr);
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferAppend)\n");
    EXPECT_EQ(BufNext, BufTop + 32);
    EXPECT_NE(BufferAppend(28), nullptr);
}

TEST_F(Buffer, SizeOfAHeaderOrLessIsRefused) {
    BufferInit(64);
    EXPECT_NE(MessageOf([] { BufferAppend(4); }).find("size > sizeof( DataBuffer )"), std::string::npos);
    EXPECT_NE(message.find("MODEL\\BUFFER"), std::string::npos);
    EXPECT_NE(MessageOf([] { BufferAppend(0); }).find("size > sizeof( DataBuffer )"), std::string::npos);
    EXPECT_EQ(BufNext, BufTop);
}

TEST_F(Buffer, SizeThatIsNoMultipleOfFourIsRefused) {
    BufferInit(64);
    EXPECT_NE(MessageOf([] { BufferAppend(10); }).find("( size & 3 ) == 0"), std::string::npos);
}

TEST_F(Buffer, InsertMovesTheBlockAndAllBehindItUp) {
    BufferInit(1024);
    BufferAppend(8);
    DataBuffer* second = BufferAppend(12);
    BufferAppend(16);
    EXPECT_EQ(BufferInsert(second, 20), second);
    EXPECT_EQ(Sizes(), (Sizing{8, 20, 12, 16}));
}

TEST_F(Buffer, InsertIntoAFullArenaChangesNothing) {
    BufferInit(64);
    DataBuffer* block = BufferAppend(40);
    EXPECT_EQ(BufferInsert(block, 24), nullptr);
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferInsert)\n");
    EXPECT_EQ(Sizes(), (Sizing{40}));
}

TEST_F(Buffer, ResizeToASmallerOrEqualSizeKeepsTheBlock) {
    BufferInit(1024);
    DataBuffer* block = BufferAppend(40);
    EXPECT_EQ(BufferResize(block, 24), block);
    EXPECT_EQ(BufferResize(block, 40), block);
    EXPECT_EQ(block->size, 40);
    EXPECT_EQ(BufNext, BufTop + 40);
}

TEST_F(Buffer, ResizeGrowsInPlaceAndMovesWhatFollows) {
    BufferInit(1024);
    DataBuffer* block = BufferAppend(8);
    DataBuffer* last = BufferAppend(12);
    std::memcpy(last + 1, "payload", 8);
    EXPECT_EQ(BufferResize(block, 24), block);
    EXPECT_EQ(Sizes(), (Sizing{24, 12}));
    EXPECT_STREQ(reinterpret_cast<char*>(BufferNext(block) + 1), "payload");
}

TEST_F(Buffer, ResizeInAFullArenaReportsTheInsertion) {
    BufferInit(64);
    DataBuffer* block = BufferAppend(40);
    EXPECT_EQ(BufferResize(block, 64), nullptr);
    EXPECT_EQ(warnings, "データバッファがオーバフローしました(BufferInsert)\n");
    EXPECT_EQ(block->size, 40);
}

TEST_F(Buffer, CompactionKeepsTheOrderOfLiveBlocks) {
    BufferInit(1024);
    std::vector<DataBuffer*> blocks;
    for (int size = 8; size <= 32; size += 4) {
        blocks.push_back(BufferAppend(size));
        std::memset(blocks.back() + 1, size, static_cast<std::size_t>(size) - 4);
    }
    for (const std::size_t i : {0U, 3U, 6U}) {
        BufferDelete(blocks[i]);
    }
    char* before = BufNext;
    BufferCompact();
    EXPECT_EQ(Sizes(), (Sizing{12, 16, 24, 28}));
    EXPECT_EQ(BufNext, before - (8 + 20 + 32));
    for (DataBuffer* block = BufferTop(); block != nullptr; block = BufferNext(block)) {
        EXPECT_EQ(*reinterpret_cast<char*>(block + 1), block->size);
    }
}

TEST_F(Buffer, DeletingEveryBlockEmptiesTheArena) {
    BufferInit(1024);
    BufferDelete(BufferAppend(8));
    BufferDelete(BufferAppend(8));
    BufferCompact();
    EXPECT_EQ(BufferTop(), nullptr);
}

TEST_F(Buffer, ADeletedBlockCannotBeDeletedAgain) {
    BufferInit(1024);
    DataBuffer* block = BufferAppend(8);
    BufferDelete(block);
    EXPECT_NE(MessageOf([&] { BufferDelete(block); }).find("((DataBuffer*)buf)->flag == FLAG_USE"),
              std::string::npos);
    EXPECT_NE(MessageOf([&] { BufferNext(block); }).find("buf->flag == FLAG_USE"), std::string::npos);
    EXPECT_NE(MessageOf([] { BufferCheck(); }).find("buf->flag == FLAG_USE"), std::string::npos);
}

TEST_F(Buffer, ABlockOutsideTheArenaIsRefused) {
    BufferInit(64);
    BufferAppend(8);
    DataBuffer outside{FLAG_USE, 8};
    const auto text = "BufTop <= (char*)buf && (char*)buf < BufNext";
    EXPECT_NE(MessageOf([&] { BufferNext(&outside); }).find(text), std::string::npos);
    EXPECT_NE(MessageOf([&] { BufferDelete(&outside); }).find(text), std::string::npos);
    EXPECT_NE(MessageOf([&] { BufferResize(&outside, 16); }).find(text), std::string::npos);
}

TEST_F(Buffer, CompactionReportsABlockThatIsNeitherLiveNorDeleted) {
    BufferInit(64);
    BufferAppend(8)->flag = 7;
    EXPECT_NE(MessageOf([] { BufferCompact(); }).find("src->flag == FLAG_NOUSE"), std::string::npos);
}

TEST_F(Buffer, CopyLeavesBothHeaders) {
    BufferInit(64);
    DataBuffer* from = BufferAppend(12);
    std::memcpy(from + 1, "1234567", 8);
    DataBuffer* to = BufferAppend(16);
    BufferCopy(to, from, 12);
    EXPECT_EQ(to->size, 16);
    EXPECT_STREQ(reinterpret_cast<char*>(to + 1), "1234567");
}

TEST_F(Buffer, LayoutNumberGrowsWheneverBlocksMayMove) {
    BufferInit(1024);
    DataBuffer* block = BufferAppend(8);
    const std::uint32_t before = BufLayout;
    BufferAppend(8);
    EXPECT_EQ(BufLayout, before);
    BufferResize(block, 16);
    EXPECT_NE(BufLayout, before);
}

TEST_F(Buffer, FullArenaEndsTheProgramBeforeAHandlerIsInstalled) {
    EXPECT_EXIT(
        {
            SetErrorHandlers(nullptr, nullptr);
            SetOutputSink(nullptr);
            BufferInit(8);
            BufferAppend(8);
        },
        testing::ExitedWithCode(1), "");
}

class Memory : public Buffer {};

TEST_F(Memory, PrefixHoldsTheGuardAndTheSize) {
    void* memory = MemoryAlloc(24);
    const auto* prefix = static_cast<std::uint32_t*>(memory) - 2;
    EXPECT_EQ(prefix[0], 0x12345678U);
    EXPECT_EQ(prefix[1], 24U);
    MemoryFree(memory);
}

TEST_F(Memory, AnOverwrittenPrefixIsReportedWithItsAddress) {
    auto* memory = static_cast<std::uint32_t*>(MemoryAlloc(8));
    memory[-2] = 1;
    char expected[64];
    std::snprintf(expected, sizeof expected, "Error Memory Block Error(%X)!!!",
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(memory - 2)));
    EXPECT_EQ(MessageOf([&] { MemoryFree(memory); }), expected);
    memory[-2] = 0x12345678;
    MemoryFree(memory);
}

TEST_F(Memory, FreeingTwiceIsReported) {
    void* memory = MemoryAlloc(8);
    MemoryFree(memory);
    EXPECT_EQ(MessageOf([&] { MemoryFree(memory); }).substr(0, 25), "Error Memory Block Error(");
}

}  // namespace
}  // namespace quelmark::test
