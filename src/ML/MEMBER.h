// Member tables as the executor and the parser see them. A class's table holds, for every function id, what
// an object of the class calls: its own member or the one inherited from its parents, so that a call is one
// lookup without a walk.
#pragma once

#include <cstdint>

#include "ML/CODE.h"
#include "ML/FUNC.h"
#include "ML/IDENT.h"

namespace quelmark {

enum class MemberKind : std::uint8_t { Undefined = 0, BuiltIn = 1, Script = 2 };

struct Member {
    MemberKind kind = MemberKind::Undefined;
    bool own = false;                        // set by this class itself, not inherited
    const ScriptFunction* script = nullptr;  // Script
    SysFunc function = nullptr;              // BuiltIn
    const Signature* signature = nullptr;
};

struct ClassEntry {
    const char* name = nullptr;  // null: free
    std::int32_t parent = -1;
    Member* members = nullptr;
};
extern ClassEntry ClassList[MAX_CLASS];

extern IdentTablePtr FunctionNames;
// Room for names beyond the operator slots and the built-in ones; set before anything is registered.
void FunctionTablesInit(std::int32_t scriptFunctions);
void FunctionTablesExit();
// The built-in registrations are over: from here on names count against the configured room.
void FunctionTablesSeal();
// Adds a name to the function table (fatal when full) and returns its id.
std::int32_t FunctionNameAdd(std::string_view name, std::uint8_t attribute);
// Some class has a method of this name, which every file must find.
bool IsMethodName(std::int32_t ident);
// Gives the script function an id of its own, known to compiled code alone, and leaves the name to the
// methods that share it. The id.
std::int32_t FunctionHide(std::int32_t ident);
// Makes a global function a script function.
void ScriptMemberSet(std::int32_t ident, const ScriptFunction* script);

// Undoes that.
void ScriptMemberClear(std::int32_t ident);

// The member that a call of `ident` reaches, by the class of its first argument.
inline const Member& MemberFor(std::int32_t ident, std::int32_t argc, const DataCell* argv) {
    const std::int32_t classId = argc > 0 && argv->type == TYPE_OBJECT ? ObjectOf(*argv)->classId : 0;
    return ClassList[classId].members[ident];
}
[[noreturn]] void ReportUndefined(std::int32_t ident);

// Runs a built-in whose arguments are on top of the stack and moves its result into argv[0].
std::int32_t CallBuiltIn(const Member& member, std::int32_t ident, std::int32_t argc, DataCell* argv);

}  // namespace quelmark
