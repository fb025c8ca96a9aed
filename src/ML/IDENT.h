// Identifier tables: names of at most 31 bytes to small ids, looked up by binary search. The interpreter
// has three: global identifiers, function names, and the locals of the function being compiled.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

namespace quelmark {

// Attribute bits of an identifier (`itype`). Bit 8 is unused.
enum IdentBits : std::uint8_t {
    IDENT_LOCAL = 1,
    IDENT_GLOBAL = 2,
    IDENT_FUNC = 4,
    IDENT_ARRAY = 16,
    IDENT_PRIVATE = 32,
    IDENT_CONST = 64,
};

struct IdentTable;
struct IdentTableDelete {
    void operator()(IdentTable* table) const;
};
using IdentTablePtr = std::unique_ptr<IdentTable, IdentTableDelete>;

// The first `reserved` ids get attribute 0 and no name. Fatal: "識別子管理バッファが確保できません".
IdentTablePtr IdentCreate(std::int32_t capacity, std::int32_t reserved);
// The new id. Fatal when full: "識別子管理バッファがオーバーフローしました"; a name already there is the
// positional error "識別子 %s が２重定義されています".
std::int32_t IdentAdd(IdentTable* table, std::string_view name, std::uint8_t attribute);
// The same, but the name is found by no lookup.
std::int32_t IdentAddHidden(IdentTable* table, std::string_view name, std::uint8_t attribute);
// The id, or -1 (also for a null table).
std::int32_t IdentFind(const IdentTable* table, std::string_view name);
std::uint8_t IdentAttr(const IdentTable* table, std::int32_t id);
const char* IdentName(const IdentTable* table, std::int32_t id);
std::int32_t IdentCount(const IdentTable* table);
// The name is known in the file being compiled only, from now on.
void IdentMakePrivate(IdentTable* table, std::int32_t id);
// Ends the lookup of every private name; ids, storage and code stay.
void IdentPurgePrivate(IdentTable* table);

}  // namespace quelmark
