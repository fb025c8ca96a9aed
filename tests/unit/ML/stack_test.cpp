// Cells, object blocks and the value stack.
#include "ML/STACK.h"

#include <limits>
#include <string>
#include <vector>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Stack : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        Start();
        StackInit(8);
    }

    // The message that ends the action.
    template <class Action>
    std::string ErrorOf(Action action) {
        message.clear();
        try {
            action();
        } catch (const ScriptAbort&) {
        }
        return message;
    }

    static std::string TextOf(const DataCell& cell) {
        char buffer[CELL_TEXT_BYTES];
        const int length = CellToText(buffer, cell);
        EXPECT_EQ(buffer[length], '\0');
        return {buffer, static_cast<std::size_t>(length)};
    }
};

TEST_F(Stack, ACellIsEightBytes) {
    EXPECT_EQ(sizeof(DataCell), 8U);
}

TEST_F(Stack, AnEmptyStackHasItsTopBelowTheBuffer) {
    EXPECT_EQ(StackPtr, -1);
    EXPECT_EQ(StackTop(), StackBuf - 1);
}

TEST_F(Stack, AsManyPushesAsCellsSucceedAndTheNextOverflows) {
    for (int i = 0; i < 8; ++i) {
        StackPushInt(i);
    }
    EXPECT_EQ(StackPtr, 7);
    EXPECT_EQ(ErrorOf([] { StackPushInt(8); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(StackPtr, 7);
    EXPECT_EQ(StackMaxUsed(), 8);
}

TEST_F(Stack, EveryKindOfPushOverflowsAFullStack) {
    StackAlloc(8);
    const std::int32_t objects = ObjectCount;
    EXPECT_EQ(ErrorOf([] { StackPushBool(1); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(ErrorOf([] { StackPushReal(1); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(ErrorOf([] { StackPush(IntCell(1)); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(ErrorOf([] { StackAlloc(1); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(ErrorOf([] { StackAlloc(std::numeric_limits<std::int32_t>::max()); }),
              "Error スタックオーバーフロー！！");
    EXPECT_EQ(ErrorOf([] { StackPushObject(StringNew("x")); }), "Error スタックオーバーフロー！！");
    EXPECT_EQ(ObjectCount, objects);
}

TEST_F(Stack, ReleaseToTheBottomEmptiesTheStackAndFreesItsObjects) {
    const std::int32_t objects = ObjectCount;
    StackPushString("a");
    StackPushInt(1);
    StackPushString("b");
    EXPECT_EQ(ObjectCount, objects + 2);
    StackRelease(StackBuf - 1);
    EXPECT_EQ(StackPtr, -1);
    EXPECT_EQ(ObjectCount, objects);
}

TEST_F(Stack, PushingAndPoppingAnObjectLeavesItsCounts) {
    StackPushString("a");
    const DataCell cell = *StackTop();
    const std::int32_t objects = ObjectCount;
    StackPush(cell);
    EXPECT_EQ(ObjectOf(cell)->references, 2);
    EXPECT_EQ(ObjectCount, objects + 1);
    StackPop();
    EXPECT_EQ(ObjectOf(cell)->references, 1);
    EXPECT_EQ(ObjectCount, objects);
}

TEST_F(Stack, AReleasedCellIsNoObjectAnyMore) {
    StackPushString("a");
    StackPop();
    EXPECT_NE(StackBuf[0].type, TYPE_OBJECT);
}

TEST_F(Stack, AllocGivesUnassignedCells) {
    StackPushInt(5);
    StackPop();
    DataCell* first = StackAlloc(3);
    EXPECT_EQ(first, StackBuf);
    EXPECT_EQ(first[0].type, TYPE_NOASSIGN);
    EXPECT_EQ(StackPtr, 2);
    EXPECT_EQ(StackAlloc(0), StackBuf + 3);
}

TEST_F(Stack, BrokenPreconditionsNameTheConditionTheModuleAndTheLine) {
    EXPECT_EQ(
        ErrorOf([] { StackPop(); }).find("Error Internal check \"0 <= StackPtr && StackPtr < MaxStack\""),
        0U);
    EXPECT_NE(message.find("ML\\STACK, line "), std::string::npos);
    EXPECT_NE(ErrorOf([] { StackAlloc(-1); }).find("n >= 0"), std::string::npos);
    EXPECT_NE(ErrorOf([] { StackRelease(StackBuf + 1); }).find("mark <= StackTop()"), std::string::npos);
    EXPECT_NE(ErrorOf([] { StackRelease(StackBuf - 2); }).find("StackBuf - 1 <= mark"), std::string::npos);
    EXPECT_NE(ErrorOf([] { TextOf(DataCell{3, 0, {0}}); }).find("ML\\STACK"), std::string::npos);
}

TEST_F(Stack, HighWaterMarkIsTheHighestTopReached) {
    EXPECT_EQ(StackMaxUsed(), 0);
    StackAlloc(5);
    StackRelease(StackBuf - 1);
    StackPushInt(1);
    EXPECT_EQ(StackMaxUsed(), 4);
}

TEST_F(Stack, AStackOfNoCellsCannotBeMade) {
    EXPECT_EQ(ErrorOf([] { StackInit(0); }), "Error スタック用バッファが確保できません。！！");
    EXPECT_EQ(ErrorOf([] { StackInit(-5); }), "Error スタック用バッファが確保できません。！！");
    StackInit(8);
}

TEST_F(Stack, FreeingTheStackReleasesItsObjects) {
    const std::int32_t objects = ObjectCount;
    StackPushString("a");
    StackFree();
    EXPECT_EQ(ObjectCount, objects);
    StackInit(8);
}

TEST_F(Stack, ACloneHasOneReferenceWhateverTheOriginalHas) {
    StackPushString("text");
    StackPush(*StackTop());
    ObjectBlock* clone = ObjectClone(*StackTop());
    EXPECT_EQ(clone->references, 1);
    EXPECT_EQ(clone->classId, StringClass);
    EXPECT_EQ(clone->size, 5U);
    EXPECT_STREQ(reinterpret_cast<const char*>(clone->Data()), "text");
    ObjectRelease(clone);
}

TEST_F(Stack, AnObjectTooLargeCannotBeMade) {
    EXPECT_EQ(ErrorOf([] { ObjectAlloc(std::size_t{1} << 40, 1); }),
              "Error オブジェクト領域が確保できません。");
}

TEST_F(Stack, AReferenceCountThatReachesItsMaximumStaysThere) {
    ObjectBlock* block = StringNew("kept");
    const std::int32_t objects = ObjectCount;
    for (int i = 0; i < 40000; ++i) {
        ObjectAddRef(block);
    }
    EXPECT_EQ(block->references, 32767);
    for (int i = 0; i < 40000; ++i) {
        ObjectRelease(block);
    }
    EXPECT_EQ(block->references, 32767);
    EXPECT_EQ(ObjectCount, objects);
    EXPECT_STREQ(reinterpret_cast<const char*>(block->Data()), "kept");
    block->references = 1;  // so that the test leaks nothing
    ObjectRelease(block);
}

TEST_F(Stack, BlocksOfEverySizeKeepTheirData) {
    std::vector<DataCell> cells;
    for (std::size_t size = 0; size < 600; size += 7) {
        cells.push_back(ObjectCell(StringNew(std::string(size, static_cast<char>('a' + size % 26)))));
    }
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t size = i * 7;
        EXPECT_EQ(StringText(cells[i]), std::string(size, static_cast<char>('a' + size % 26)));
        ObjectRelease(ObjectOf(cells[i]));
    }
}

TEST_F(Stack, AGrownBlockKeepsItsHandleAndData) {
    ObjectBlock* block = StringNew("start");
    const DataCell cell = ObjectCell(block);
    ObjectGrow(block, 100000);
    EXPECT_EQ(ObjectOf(cell)->size, 100000U);
    EXPECT_STREQ(StringChars(cell), "start");
    ObjectRelease(ObjectOf(cell));
}

int destroyed = 0;

TEST_F(Stack, TheLastReferenceRunsTheClassesDestructor) {
    const std::int32_t classId = ClassRegister("Counted", 0);
    destroyed = 0;
    SetObjectDestructor(classId, [](ObjectBlock*) { ++destroyed; });
    ObjectBlock* block = ObjectAlloc(4, classId);
    ObjectAddRef(block);
    ObjectRelease(block);
    EXPECT_EQ(destroyed, 0);
    ObjectRelease(block);
    EXPECT_EQ(destroyed, 1);
    SetObjectDestructor(classId, nullptr);
}

TEST_F(Stack, CellAssignKeepsReferencesRight) {
    StackPushString("a");
    StackPushString("b");
    const std::int32_t objects = ObjectCount;
    CellAssign(StackBuf[0], StackBuf[1]);
    EXPECT_EQ(ObjectCount, objects);
    CellAssign(StackBuf[0], StackBuf[0]);
    EXPECT_EQ(ObjectOf(StackBuf[0])->references, 2);
    CellAssign(StackBuf[0], IntCell(1));
    EXPECT_EQ(ObjectCount, objects - 1);
}

TEST_F(Stack, TextOfAType) {
    const std::pair<std::int32_t, const char*> names[] = {
        {0, "NO_ASSIGN"}, {1, "INT"},     {2, "INT"},
        {4, "REAL"},      {8, "TYPE"},    {16, "FUNC"},
        {32, "ARRAY"},    {64, "OBJECT"}, {3, "DATA TYPE ERROR!!!"},
    };
    for (const auto& [code, name] : names) {
        EXPECT_EQ(TextOf(TypeCell(code)), name) << code;
    }
}

TEST_F(Stack, TextOfNumbersAndTruth) {
    EXPECT_EQ(TextOf(BoolCell(5)), "TRUE");
    EXPECT_EQ(TextOf(BoolCell(0)), "FALSE");
    EXPECT_EQ(TextOf(IntCell(std::numeric_limits<std::int32_t>::min())), "-2147483648");
    EXPECT_EQ(TextOf(RealCell(2.5)), "2.500000");
    EXPECT_EQ(TextOf(RealCell(-0.0)), "-0.000000");
    EXPECT_EQ(TextOf(RealCell(1e38)), "99999996802856924650656260769173209088.000000");
    EXPECT_EQ(TextOf(RealCell(1e300)), "inf");
    EXPECT_EQ(TextOf(FuncCell(33)), "33");
}

TEST_F(Stack, TextOfArraysAndObjects) {
    DataCell array{TYPE_ARRAY, -1, {0}};
    array.element = 26;
    EXPECT_EQ(TextOf(array), "1A[65535]");
    StackPushString("x");
    EXPECT_EQ(TextOf(*StackTop()).find("Object[" + std::to_string(StringClass) + "]["), 0U);
}

TEST_F(Stack, PushBoolKeepsTheValue) {
    StackPushBool(5);
    EXPECT_EQ(StackTop()->integer, 5);
    EXPECT_EQ(TextOf(*StackTop()), "TRUE");
}

TEST_F(Stack, PushRealNarrowsToSinglePrecision) {
    StackPushReal(0.1);
    EXPECT_EQ(StackTop()->real, 0.1F);
}

TEST_F(Stack, RealToIntTruncatesAndGivesTheLeastIntOutOfRange) {
    EXPECT_EQ(RealToInt(2.9), 2);
    EXPECT_EQ(RealToInt(-2.9), -2);
    EXPECT_EQ(RealToInt(2147483647.5), 2147483647);
    EXPECT_EQ(RealToInt(2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(RealToInt(-1e30), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(RealToInt(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
}  // namespace quelmark::test
