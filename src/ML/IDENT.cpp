#include "ML/IDENT.h"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include "ML/ERROR.h"
#include "text/sjis.h"

namespace quelmark {

namespace {

constexpr std::size_t NAME_BYTES = 31;

struct Slot {
    std::uint8_t attribute = 0;
    char name[NAME_BYTES + 1] = {};
};

}  // namespace

struct IdentTable {
    std::int32_t capacity = 0;
    std::vector<Slot> slots;          // by id
    std::vector<std::int32_t> index;  // ids in the byte order of their names
};

namespace {

// The place in the index of the first name not before `name`.
std::vector<std::int32_t>::const_iterator Place(const IdentTable& table, std::string_view name) {
    return std::lower_bound(
        table.index.begin(), table.index.end(), name, [&table](std::int32_t id, std::string_view wanted) {
            return std::string_view(table.slots[static_cast<std::size_t>(id)].name) < wanted;
        });
}

void CheckRoom(const IdentTable& table) {
    if (IdentCount(&table) >= table.capacity) {
        FatalError("%s", "識別子管理バッファがオーバーフローしました"_sjis);
    }
}

const Slot& SlotOf(const IdentTable* table, std::int32_t id) {
    Check(table != nullptr && 0 <= id && id < IdentCount(table), "0 <= id && id < table->count");
    return table->slots[static_cast<std::size_t>(id)];
}

}  // namespace

void IdentTableDelete::operator()(IdentTable* table) const {
    delete table;
}

IdentTablePtr IdentCreate(std::int32_t capacity, std::int32_t reserved) {
    IdentTablePtr table;
    try {
        table.reset(new IdentTable);
        table->capacity = capacity;
        table->slots.resize(static_cast<std::size_t>(reserved));
    } catch (const std::exception&) {
        FatalError("%s", "識別子管理バッファが確保できません"_sjis);
    }
    return table;
}

std::int32_t IdentAddHidden(IdentTable* table, std::string_view name, std::uint8_t attribute) {
    CheckRoom(*table);
    Slot slot;
    slot.attribute = attribute;
    name.substr(0, NAME_BYTES).copy(slot.name, NAME_BYTES);
    table->slots.push_back(slot);
    return IdentCount(table) - 1;
}

std::int32_t IdentAdd(IdentTable* table, std::string_view name, std::uint8_t attribute) {
    CheckRoom(*table);
    if (IdentFind(table, name) >= 0) {
        CompileError("識別子 %s が２重定義されています"_sjis, std::string(name).c_str());
    }
    const auto place = Place(*table, name) - table->index.cbegin();
    const std::int32_t id = IdentAddHidden(table, name, attribute);
    table->index.insert(table->index.cbegin() + place, id);
    return id;
}

std::int32_t IdentFind(const IdentTable* table, std::string_view name) {
    if (table == nullptr) {
        return -1;
    }
    const auto place = Place(*table, name);
    if (place == table->index.end() || table->slots[static_cast<std::size_t>(*place)].name != name) {
        return -1;
    }
    return *place;
}

std::uint8_t IdentAttr(const IdentTable* table, std::int32_t id) {
    return SlotOf(table, id).attribute;
}

const char* IdentName(const IdentTable* table, std::int32_t id) {
    return SlotOf(table, id).name;
}

std::int32_t IdentCount(const IdentTable* table) {
    return table == nullptr ? 0 : static_cast<std::int32_t>(table->slots.size());
}

void IdentMakePrivate(IdentTable* table, std::int32_t id) {
    Check(table != nullptr && 0 <= id && id < IdentCount(table), "0 <= id && id < table->count");
    table->slots[static_cast<std::size_t>(id)].attribute |= IDENT_PRIVATE;
}

void IdentPurgePrivate(IdentTable* table) {
    std::erase_if(table->index, [table](std::int32_t id) {
        Slot& slot = table->slots[static_cast<std::size_t>(id)];
        const bool isPrivate = (slot.attribute & IDENT_PRIVATE) != 0;
        if (isPrivate) {
            slot.attribute = 0;
        }
        return isPrivate;
    });
}

}  // namespace quelmark
