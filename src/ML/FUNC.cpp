#include "ML/FUNC.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ML/ERROR.h"
#include "ML/EXEC.h"
#include "ML/MEMBER.h"
#include "text/sjis.h"

namespace quelmark {

ClassEntry ClassList[MAX_CLASS];
IdentTablePtr FunctionNames;

namespace {

constexpr std::int32_t BUILT_IN_ROOM = 1024;  // names that the program itself registers
constexpr std::int32_t SCRIPT_FUNCTIONS_MOST = 65536;
constexpr std::size_t CONSTANTS_MOST = 256;

struct Constant {
    std::string name;
    DataCell cell;
};

std::int32_t memberRoom = 0;  // entries of every member table
std::int32_t nameLimit = 0;   // ids in use may not reach this
std::int32_t scriptRoom = 0;
bool isSealed = false;
std::vector<std::unique_ptr<Member[]>> memberTables;
std::vector<Constant> constants;  // in the byte order of their names

bool IsRegistered(std::int32_t classId) {
    return 0 <= classId && classId < MAX_CLASS && ClassList[classId].name != nullptr;
}

void CheckClass(std::int32_t classId) {
    Check(IsRegistered(classId), "0 <= id && id < MAX_CLASS && ClassList[id].name != NULL");
}

// Gives the entry to a class's table and to every table below it that inherits it.
void PassDown(std::int32_t classId, std::int32_t ident, const Member& member) {
    ClassList[classId].members[ident] = member;
    for (std::int32_t id = 1; id < MAX_CLASS; ++id) {
        const ClassEntry& entry = ClassList[id];
        if (entry.name != nullptr && entry.parent == classId && !entry.members[ident].own) {
            PassDown(id, ident, member);
        }
    }
}

void SetMember(std::int32_t classId, std::int32_t ident, const Member& member) {
    PassDown(classId, ident, member);
    ClassList[classId].members[ident].own = true;
}

void CheckNameRoom() {
    if (IdentCount(FunctionNames.get()) >= nameLimit) {
        FatalError("%s", "識別子管理バッファがオーバーフローしました"_sjis);
    }
}

std::vector<Constant>::iterator ConstantPlace(std::string_view name) {
    return std::lower_bound(
        constants.begin(), constants.end(), name,
        [](const Constant& constant, std::string_view wanted) { return constant.name < wanted; });
}

std::int32_t RowClass(const char* className) {
    const std::int32_t classId = *className == '\0' ? 0 : ClassFind(className);
    CheckClass(classId);
    return classId;
}

}  // namespace

void FunctionTablesInit(std::int32_t scriptFunctions) {
    FunctionTablesExit();
    scriptRoom = std::clamp(scriptFunctions, 0, SCRIPT_FUNCTIONS_MOST);
    memberRoom = OPERATOR_SLOTS + BUILT_IN_ROOM + scriptRoom;
    nameLimit = memberRoom;
    isSealed = false;
    FunctionNames = IdentCreate(memberRoom, OPERATOR_SLOTS);
}

void FunctionTablesExit() {
    for (ClassEntry& entry : ClassList) {
        entry = ClassEntry{};
    }
    memberTables.clear();
    for (const Constant& constant : constants) {
        if (constant.cell.type == TYPE_OBJECT) {
            ObjectRelease(ObjectOf(constant.cell));
        }
    }
    constants.clear();
    FunctionNames.reset();
}

void FunctionTablesSeal() {
    if (!isSealed) {
        nameLimit = std::min(memberRoom, IdentCount(FunctionNames.get()) + scriptRoom);
        isSealed = true;
    }
}

std::int32_t FunctionNameAdd(std::string_view name, std::uint8_t attribute) {
    CheckNameRoom();
    return IdentAdd(FunctionNames.get(), name, attribute);
}

bool IsMethodName(std::int32_t ident) {
    return std::any_of(ClassList + 1, ClassList + MAX_CLASS, [ident](const ClassEntry& entry) {
        return entry.name != nullptr && entry.members[ident].own;
    });
}

std::int32_t FunctionHide(std::int32_t ident) {
    CheckNameRoom();
    const std::int32_t hidden = IdentAddHidden(FunctionNames.get(), FunctionName(ident), 0);
    for (const ClassEntry& entry : ClassList) {
        if (entry.name != nullptr) {
            entry.members[hidden] = entry.members[ident];
        }
    }
    ScriptMemberClear(ident);
    return hidden;
}

void ScriptMemberSet(std::int32_t ident, const ScriptFunction* script) {
    Member member;
    member.kind = MemberKind::Script;
    member.script = script;
    SetMember(0, ident, member);
}

void ScriptMemberClear(std::int32_t ident) {
    SetMember(0, ident, Member{});
}

void ReportUndefined(std::int32_t ident) {
    if (ident >= OPERATOR_SLOTS) {
        RuntimeError("関数 %s が定義されていません。"_sjis, FunctionName(ident));
    }
    RuntimeError("%s", "演算子が定義されていません。"_sjis);
}

std::int32_t ClassRegister(const char* name, std::int32_t parent) {
    for (std::int32_t id = 0; id < MAX_CLASS; ++id) {
        ClassEntry& entry = ClassList[id];
        if (entry.name != nullptr) {
            continue;
        }
        std::unique_ptr<Member[]> members;
        try {
            members = std::make_unique<Member[]>(static_cast<std::size_t>(memberRoom));
        } catch (const std::bad_alloc&) {
            FatalError("%s", "関数管理バッファが確保できません"_sjis);
        }
        entry.name = name;
        entry.parent = id == 0 ? -1 : parent;
        entry.members = members.get();
        if (entry.parent >= 0) {
            for (std::int32_t ident = 0; ident < memberRoom; ++ident) {
                // Operators come from a class alone: class 0 has none.
                entry.members[ident] = ClassList[entry.parent].members[ident];
                entry.members[ident].own = false;
            }
        }
        memberTables.push_back(std::move(members));
        return id;
    }
    FatalError("%s", "新しいクラスが登録できません。"_sjis);
}

std::int32_t ClassFind(std::string_view name) {
    for (std::int32_t id = 0; id < MAX_CLASS; ++id) {
        if (ClassList[id].name != nullptr && ClassList[id].name == name) {
            return id;
        }
    }
    return -1;
}

const char* ClassName(std::int32_t classId) {
    CheckClass(classId);
    return ClassList[classId].name;
}

std::int32_t FunctionRegister(std::int32_t classId, const char* name, SysFunc function,
                              const Signature& signature) {
    CheckClass(classId);
    std::int32_t ident = FunctionFind(name);
    if (ident < 0) {
        if (IdentCount(FunctionNames.get()) >= nameLimit) {
            FatalError("%s", "新しいメンバー関数が登録できません。"_sjis);
        }
        ident = IdentAdd(FunctionNames.get(), name, IDENT_FUNC);
    }
    Member member;
    member.kind = MemberKind::BuiltIn;
    member.function = function;
    member.signature = signature.name != nullptr ? &signature : nullptr;
    SetMember(classId, ident, member);
    return ident;
}

void OperatorRegister(std::int32_t classId, std::int32_t code, SysFunc function) {
    CheckClass(classId);
    Member member;
    member.kind = MemberKind::BuiltIn;
    member.function = function;
    SetMember(classId, code, member);
}

void RegisterBuiltIns(std::span<const BuiltIn> rows) {
    for (const BuiltIn& row : rows) {
        FunctionRegister(RowClass(row.className), row.name, row.function, row.signature);
    }
}

void RegisterOperators(std::span<const BuiltInOperator> rows) {
    for (const BuiltInOperator& row : rows) {
        OperatorRegister(RowClass(row.className), row.code, row.function);
    }
}

void RegisterConstants(std::span<const ConstantRow> rows) {
    for (const ConstantRow& row : rows) {
        ConstRegister(row.name, row.cell);
    }
}

std::int32_t FunctionFind(std::string_view name) {
    return IdentFind(FunctionNames.get(), name);
}

const char* FunctionName(std::int32_t ident) {
    return IdentName(FunctionNames.get(), ident);
}

bool IsScriptFunction(std::int32_t ident) {
    return ident >= OPERATOR_SLOTS && ClassList[0].members[ident].kind == MemberKind::Script;
}

bool IsInstance(const DataCell& cell, std::int32_t classId) {
    if (cell.type != TYPE_OBJECT) {
        return false;
    }
    for (std::int32_t id = ObjectOf(cell)->classId; id >= 1; id = ClassList[id].parent) {
        if (id == classId) {
            return true;
        }
    }
    return false;
}

namespace {

// Moves the result on top of the stack into argv[0] and discards everything above that.
void MoveResult(DataCell* argv) {
    DataCell* top = StackBuf + StackPtr;
    if (top == argv) {
        return;
    }
    const DataCell result = ReadCell(*top);
    top->type = TYPE_NOASSIGN;
    for (DataCell* cell = top - 1; cell >= argv; --cell) {
        if (cell->type == TYPE_OBJECT) {
            cell->type = TYPE_NOASSIGN;
            ObjectRelease(ObjectOf(*cell));
        }
    }
    *argv = result;
    StackPtr = static_cast<std::int32_t>(argv - StackBuf);
}

}  // namespace

std::int32_t CallBuiltIn(const Member& member, std::int32_t ident, std::int32_t argc, DataCell* argv) {
    const ExecNesting guard;
    Check(member.function != nullptr, "sysfunc != NULL");
    if (member.signature != nullptr) {
        ArgCheck(*member.signature, argc, argv);
    }
    if (member.function(ident, argc, argv) == RESULT) {
        MoveResult(argv);
        return RESULT;
    }
    StackRelease(argv - 1);
    return NO_RESULT;
}

namespace {

std::int32_t CallMember(const Member& member, std::int32_t ident, std::int32_t argc, DataCell* argv) {
    switch (member.kind) {
        case MemberKind::BuiltIn:
            return CallBuiltIn(member, ident, argc, argv);
        case MemberKind::Script:
            return ExecCall(*member.script, argc, argv);
        default:
            ReportUndefined(ident);
    }
}

}  // namespace

std::int32_t CallFunction(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    return CallMember(MemberFor(ident, argc, argv), ident, argc, argv);
}

std::int32_t CallInherited(std::int32_t classId, std::int32_t ident, std::int32_t argc, DataCell* argv) {
    Check(classId > 0, "classId > 0");
    CheckClass(classId);
    return CallMember(ClassList[ClassList[classId].parent].members[ident], ident, argc, argv);
}

void PushText(const DataCell& value) {
    StackPush(value);
    DataCell* argument = StackTop();
    CallFunction(FunctionFind("tostring"), 1, argument);
    Check(argument == StackTop() && argument->type == TYPE_OBJECT, "top->type == TYPE_OBJECT");
}

namespace {

void CheckArguments(const char* name, std::int32_t argc, const DataCell* argv, const std::uint16_t* types,
                    std::int32_t allowed, std::int32_t required) {
    for (std::int32_t i = 0; i < argc; ++i) {
        if (argv[i].type == TYPE_NOASSIGN) {
            RuntimeError("引数の数が不正です。( %s )"_sjis, name);
        }
        if (i >= allowed || (argv[i].type & types[i]) == 0) {
            RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, i + 1, name);
        }
    }
    if (argc < required) {
        RuntimeError("引数の数が不正です。( %s )"_sjis, name);
    }
}

}  // namespace

void ArgCheck(const char* name, std::int32_t argc, const DataCell* argv,
              std::initializer_list<std::uint16_t> types) {
    const auto count = static_cast<std::int32_t>(types.size());
    CheckArguments(name, argc, argv, types.begin(), count, count);
}

void ArgCheck(const Signature& signature, std::int32_t argc, const DataCell* argv) {
    CheckArguments(signature.name, argc, argv, signature.types.data(), signature.allowed, signature.required);
}

void ConstRegister(const char* name, const DataCell& cell) {
    if (constants.size() >= CONSTANTS_MOST) {
        RuntimeError("%s", "システム定数用バッファが確保できません。"_sjis);
    }
    const auto place = ConstantPlace(name);
    if (place != constants.end() && place->name == name) {
        RuntimeError("%s", "システム定数名が重複しています。"_sjis);
    }
    constants.insert(place, {name, cell});
}

const DataCell* ConstFind(std::string_view name) {
    const auto place = ConstantPlace(name);
    return place != constants.end() && place->name == name ? &place->cell : nullptr;
}

}  // namespace quelmark
