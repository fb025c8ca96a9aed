// Identifier tables, classes, member tables, calls and argument checks.
#include "ML/FUNC.h"

#include <deque>
#include <string>

#include "ML/IDENT.h"
#include "ML/STRING.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

class Functions : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        Start();
        StackInit(100);
    }

    template <class Action>
    std::string ErrorOf(Action action) {
        message.clear();
        try {
            action();
        } catch (const ScriptAbort&) {
            StackRelease(StackBuf - 1);
        }
        return message;
    }

    // An object of the class on top of the stack.
    static DataCell* PushInstance(std::int32_t classId) {
        StackPushObject(ObjectAlloc(4, classId));
        return StackTop();
    }
};

std::int32_t One(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(1);
    return RESULT;
}
std::int32_t Two(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(2);
    return RESULT;
}
std::int32_t Nothing(std::int32_t, std::int32_t, DataCell*) {
    return NO_RESULT;
}
std::int32_t Sum(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    std::int32_t sum = ident == OP_ADD ? 1000 : 0;
    for (std::int32_t i = 0; i < argc; ++i) {
        sum += argv[i].integer;
        argv[i] = IntCell(-1);  // a built-in may change its arguments
    }
    StackPushInt(99);  // scratch cells of its own are discarded with the arguments
    StackPushInt(sum);
    return RESULT;
}

TEST_F(Functions, IdsCountUpFromTheReservedOnes) {
    const IdentTablePtr table = IdentCreate(10, 3);
    EXPECT_EQ(IdentAdd(table.get(), "b", IDENT_LOCAL), 3);
    EXPECT_EQ(IdentAdd(table.get(), "a", IDENT_GLOBAL), 4);
    EXPECT_EQ(IdentFind(table.get(), "a"), 4);
    EXPECT_EQ(IdentFind(table.get(), "b"), 3);
    EXPECT_EQ(IdentFind(table.get(), ""), -1);
    EXPECT_EQ(IdentFind(table.get(), "c"), -1);
    EXPECT_EQ(IdentAttr(table.get(), 0), 0);
    EXPECT_EQ(IdentAttr(table.get(), 4), IDENT_GLOBAL);
    EXPECT_STREQ(IdentName(table.get(), 3), "b");
}

TEST_F(Functions, AnAbsentTableFindsNothing) {
    EXPECT_EQ(IdentFind(nullptr, "a"), -1);
}

TEST_F(Functions, AFullIdentifierTableIsFatal) {
    const IdentTablePtr table = IdentCreate(1, 0);
    IdentAdd(table.get(), "a", 0);
    EXPECT_EQ(ErrorOf([&] { IdentAdd(table.get(), "b", 0); }),
              "Fatal 識別子管理バッファがオーバーフローしました");
}

TEST_F(Functions, ATableOfImpossibleSizeIsFatal) {
    EXPECT_EQ(ErrorOf([] { IdentCreate(-1, -1); }), "Fatal 識別子管理バッファが確保できません");
}

TEST_F(Functions, AnIdentifierDefinedTwiceIsAnError) {
    const IdentTablePtr table = IdentCreate(4, 0);
    IdentAdd(table.get(), "twice", 0);
    EXPECT_EQ(ErrorOf([&] { IdentAdd(table.get(), "twice", 0); }),
              "Error 識別子 twice が２重定義されています");
}

TEST_F(Functions, NamesBeyond31BytesAreCutAndNotFoundByTheirFullSpelling) {
    const IdentTablePtr table = IdentCreate(4, 0);
    const std::string name(40, 'n');
    IdentAdd(table.get(), name, 0);
    EXPECT_EQ(IdentFind(table.get(), name), -1);
    EXPECT_EQ(IdentFind(table.get(), name.substr(0, 31)), 0);
}

TEST_F(Functions, PurgedPrivateNamesMayBeDefinedAgain) {
    const IdentTablePtr table = IdentCreate(8, 0);
    IdentAdd(table.get(), "a", IDENT_GLOBAL);
    IdentAdd(table.get(), "b", IDENT_GLOBAL | IDENT_PRIVATE);
    IdentAdd(table.get(), "c", IDENT_GLOBAL);
    IdentPurgePrivate(table.get());
    EXPECT_EQ(IdentFind(table.get(), "b"), -1);
    EXPECT_EQ(IdentAttr(table.get(), 1), 0);
    EXPECT_EQ(IdentFind(table.get(), "c"), 2);
    EXPECT_EQ(IdentAdd(table.get(), "b", IDENT_GLOBAL), 3);
}

TEST_F(Functions, AMethodOfTheParentIsFoundForADerivedObject) {
    const std::int32_t base = ClassRegister("Base", 0);
    const std::int32_t derived = ClassRegister("Derived", base);
    const std::int32_t ident = FunctionRegister(base, "method", One);
    DataCell* argv = PushInstance(derived);
    EXPECT_EQ(CallFunction(ident, 1, argv), RESULT);
    EXPECT_EQ(argv->integer, 1);
    EXPECT_EQ(StackTop(), argv);
}

TEST_F(Functions, AMethodRegisteredOnAParentLaterReachesItsDescendants) {
    const std::int32_t base = ClassRegister("Base", 0);
    const std::int32_t middle = ClassRegister("Middle", base);
    const std::int32_t derived = ClassRegister("Derived", middle);
    const std::int32_t ident = FunctionRegister(0, "late", Two);
    FunctionRegister(middle, "late", One);
    FunctionRegister(base, "late", Nothing);
    DataCell* argv = PushInstance(derived);
    CallFunction(ident, 1, argv);
    EXPECT_EQ(argv->integer, 1);
}

TEST_F(Functions, AGlobalFunctionServesObjectsWhoseClassesDoNotDefineIt) {
    const std::int32_t classId = ClassRegister("Plain", 0);
    const std::int32_t ident = FunctionRegister(0, "general", Two);
    DataCell* argv = PushInstance(classId);
    CallFunction(ident, 1, argv);
    EXPECT_EQ(argv->integer, 2);
}

TEST_F(Functions, CallInheritedStartsAtTheParent) {
    const std::int32_t base = ClassRegister("Base", 0);
    const std::int32_t derived = ClassRegister("Derived", base);
    const std::int32_t ident = FunctionRegister(base, "both", One);
    FunctionRegister(derived, "both", Two);
    DataCell* argv = PushInstance(derived);
    EXPECT_EQ(CallInherited(derived, ident, 1, argv), RESULT);
    EXPECT_EQ(argv->integer, 1);
    EXPECT_NE(ErrorOf([&] { CallInherited(0, ident, 0, StackTop() + 1); }).find("classId > 0"),
              std::string::npos);
}

TEST_F(Functions, ABuiltInThatReturnsNothingLeavesTheStackAsBeforeItsArguments) {
    const std::int32_t ident = FunctionRegister(0, "nothing", Nothing);
    StackPushInt(7);
    StackPushInt(1);
    StackPushString("x");
    EXPECT_EQ(CallFunction(ident, 2, StackTop() - 1), NO_RESULT);
    EXPECT_EQ(StackPtr, 0);
    EXPECT_EQ(StackTop()->integer, 7);
}

TEST_F(Functions, AResultTakesTheFirstArgumentsPlace) {
    const std::int32_t ident = FunctionRegister(0, "sum", Sum);
    StackPushInt(7);
    StackPushInt(1);
    StackPushInt(2);
    StackPushInt(3);
    EXPECT_EQ(CallFunction(ident, 3, StackTop() - 2), RESULT);
    EXPECT_EQ(StackPtr, 1);
    EXPECT_EQ(StackTop()->integer, 6);
}

TEST_F(Functions, AResultWithoutArgumentsIsPushed) {
    const std::int32_t ident = FunctionRegister(0, "one", One);
    EXPECT_EQ(CallFunction(ident, 0, StackTop() + 1), RESULT);
    EXPECT_EQ(StackPtr, 0);
    EXPECT_EQ(StackTop()->integer, 1);
}

TEST_F(Functions, AnUndefinedFunctionIsReportedByItsName) {
    const std::int32_t classId = ClassRegister("Owner", 0);
    const std::int32_t ident = FunctionRegister(classId, "onlyhere", One);
    StackPushInt(1);
    EXPECT_EQ(ErrorOf([&] { CallFunction(ident, 1, StackTop()); }),
              "Error 関数 onlyhere が定義されていません。");
}

TEST_F(Functions, AnUndefinedOperatorOfAnObjectIsReported) {
    const std::int32_t classId = ClassRegister("Bare", 0);
    PushInstance(classId);
    EXPECT_EQ(ErrorOf([&] { CallFunction(OP_ADD, 1, StackTop()); }), "Error 演算子が定義されていません。");
}

TEST_F(Functions, OneRoutineServesSeveralOperatorsByTheirCode) {
    const std::int32_t classId = ClassRegister("Number", 0);
    OperatorRegister(classId, OP_ADD, Sum);
    DataCell* argv = PushInstance(classId);
    StackPushInt(5);
    argv->type = TYPE_INT;  // the test's class keeps its value in the cell
    ObjectRelease(ObjectOf(*argv));
    *argv = IntCell(0);
    StackRelease(StackBuf - 1);
    argv = PushInstance(classId);
    StackPushInt(5);
    EXPECT_EQ(CallFunction(OP_ADD, 2, argv), RESULT);
    EXPECT_GE(argv->integer, 1000);
}

TEST_F(Functions, IsInstanceFollowsTheParentsAndNeverMatchesClassZero) {
    const std::int32_t base = ClassRegister("Base", 0);
    const std::int32_t derived = ClassRegister("Derived", base);
    const std::int32_t other = ClassRegister("Other", 0);
    const DataCell cell = *PushInstance(derived);
    EXPECT_TRUE(IsInstance(cell, derived));
    EXPECT_TRUE(IsInstance(cell, base));
    EXPECT_FALSE(IsInstance(cell, other));
    EXPECT_FALSE(IsInstance(cell, 0));
    EXPECT_FALSE(IsInstance(IntCell(1), base));
}

TEST_F(Functions, The257thClassIsFatal) {
    std::deque<std::string> names;
    std::int32_t last = 0;
    while (last < MAX_CLASS - 1) {
        last = ClassRegister(names.emplace_back("Class" + std::to_string(names.size())).c_str(), 0);
    }
    EXPECT_EQ(ErrorOf([] { ClassRegister("OneTooMany", 0); }), "Fatal 新しいクラスが登録できません。");
}

TEST_F(Functions, ClassesAreFoundByName) {
    EXPECT_EQ(ClassFind(""), 0);
    EXPECT_EQ(ClassFind("String"), StringClass);
    EXPECT_EQ(ClassFind("None"), -1);
}

TEST_F(Functions, RegisteringOnAnUnknownClassIsAnInternalError) {
    for (const std::int32_t id : {-1, 200, MAX_CLASS}) {
        EXPECT_NE(ErrorOf([id] {
                      FunctionRegister(id, "f", One);
                  }).find("0 <= id && id < MAX_CLASS && ClassList[id].name != NULL"),
                  std::string::npos);
    }
}

TEST_F(Functions, AFullMemberTableIsFatal) {
    std::deque<std::string> names;
    const std::string text = ErrorOf([&] {
        for (int i = 0; i < 100000; ++i) {
            FunctionRegister(0, names.emplace_back("f" + std::to_string(i)).c_str(), One);
        }
    });
    EXPECT_EQ(text, "Fatal 新しいメンバー関数が登録できません。");
}

TEST_F(Functions, ArgumentCountAndTypeMessages) {
    StackPushInt(1);
    StackPushString("x");
    const DataCell* argv = StackBuf;
    EXPECT_EQ(ErrorOf([&] { ArgCheck("sqrt", 0, argv, {TYPE_NUMBER}); }),
              "Error 引数の数が不正です。( sqrt )");
    StackPushInt(1);
    StackPushInt(1);
    EXPECT_EQ(ErrorOf([&] { ArgCheck("sqrt", 2, argv, {TYPE_NUMBER}); }),
              "Error 2 番目の引数の型が不正です。( sqrt )");
    StackPushInt(1);
    EXPECT_EQ(ErrorOf([&] { ArgCheck("f", 1, argv, {TYPE_OBJECT}); }),
              "Error 1 番目の引数の型が不正です。( f )");
    StackAlloc(1);
    EXPECT_EQ(ErrorOf([&] { ArgCheck("f", 1, argv, {TYPE_ANY}); }), "Error 引数の数が不正です。( f )");
    StackPushInt(1);
    EXPECT_EQ(ErrorOf([&] { ArgCheck("f", 1, argv, {TYPE_INT}); }), "");
    EXPECT_EQ(ErrorOf([&] { ArgCheck(Takes("f", {TYPE_INT, TYPE_INT}, 1), 1, argv); }), "");
    EXPECT_EQ(ErrorOf([&] {
                  ArgCheck(Takes("f", {TYPE_INT, TYPE_INT}), 1, argv);
              }),
              "Error 引数の数が不正です。( f )");
}

TEST_F(Functions, ConstantsAreFoundByName) {
    ASSERT_NE(ConstFind("TRUE"), nullptr);
    EXPECT_EQ(ConstFind("TRUE")->type, TYPE_BOOLEAN);
    EXPECT_EQ(ConstFind("ON")->integer, 1);
    EXPECT_EQ(ConstFind("OFF")->integer, 0);
    EXPECT_EQ(ConstFind("OBJECT")->integer, TYPE_OBJECT);
    EXPECT_EQ(ConstFind("NOASSIGN")->type, TYPE_TYPE);
    EXPECT_EQ(ConstFind("true"), nullptr);
}

TEST_F(Functions, AConstantRegisteredTwiceIsAnError) {
    EXPECT_EQ(ErrorOf([] { ConstRegister("TRUE", IntCell(1)); }), "Error システム定数名が重複しています。");
}

TEST_F(Functions, The257thConstantIsAnError) {
    std::deque<std::string> names;
    const std::string text = ErrorOf([&] {
        for (int i = 0; i < 257; ++i) {
            ConstRegister(names.emplace_back("C" + std::to_string(i)).c_str(), IntCell(i));
        }
    });
    EXPECT_EQ(text, "Error システム定数用バッファが確保できません。");
}

TEST_F(Functions, AnErrorWithoutAStatementHasNoPosition) {
    EXPECT_EQ(ErrorOf([] { RuntimeError("%s", "text"); }), "Error text");
    EXPECT_EQ(ErrorOf([] { FatalError("%d", 5); }), "Fatal 5");
    EXPECT_EQ(ErrorOf([] { CompileError("%s", "text"); }), "Error text");
}

TEST_F(Functions, AnOverlongMessageIsCutNotOverrun) {
    const std::string text = ErrorOf([] { RuntimeError("%s", std::string(100000, 'x').c_str()); });
    EXPECT_EQ(text.find("Error xxx"), 0U);
    EXPECT_LT(text.size(), 100000U);
}

TEST_F(Functions, AWarningWithoutAHandlerGoesToTheOutputLog) {
    SetErrorHandlers(nullptr, nullptr);
    printed.clear();
    EXPECT_EQ(Warning("careful"), 0);
    EXPECT_EQ(printed, "careful\n");
}

TEST_F(Functions, AnErrorWithoutAHandlerEndsTheProgramWithStatusOne) {
    SetErrorHandlers(nullptr, nullptr);
    SetOutputSink(nullptr);
    EXPECT_EXIT(FatalError("%s", "end"), testing::ExitedWithCode(1), "");
    EXPECT_EXIT(ReportTableFull("full"), testing::ExitedWithCode(1), "");
}

TEST_F(Functions, AFullTableOnlyWarnsWhenTheHostHasAHandler) {
    ReportTableFull("full");
    EXPECT_EQ(warnings, "full\n");
}

}  // namespace
}  // namespace quelmark::test
