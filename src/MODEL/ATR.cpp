#include "MODEL/ATR.h"

#include "ML/ERROR.h"
#include "MODEL/BUFFER.h"
#include "MODEL/SUFTEXT.h"
#include "MODEL/TABLE.h"
#include "text/sjis.h"

namespace quelmark {

AttributeRecord* AttrTable = nullptr;
std::int32_t AttributeCount = 0;
std::int32_t AttrLast = 0;
std::int32_t AttrCurrent = 0;
std::uint32_t AttrRevision = 0;

namespace {

constexpr std::int16_t ONE = 4096;  // 1.0
constexpr std::int16_t HALF = 2048;
constexpr std::int16_t CODE_LEAST = 2457;  // a component above this sets its bit of the drawing colour

}  // namespace

void AttrInit(std::int32_t count) {
    AttributeCount = count > 0 ? count : 0;
    AttrTable = static_cast<AttributeRecord*>(MemoryAlloc(
        static_cast<std::uint32_t>(static_cast<std::size_t>(AttributeCount + 1) * sizeof(AttributeRecord))));
    AttrLast = 0;
    AttrCurrent = 0;
    ++AttrRevision;
}

void AttrExit() {
    if (AttrTable != nullptr) {
        MemoryFree(AttrTable);
    }
    AttrTable = nullptr;
    AttributeCount = 0;
}

void AttrDefaults(AttributeRecord& attribute, std::string_view name) {
    attribute = AttributeRecord{};
    attribute.used = 1;
    attribute.code = 7;
    attribute.col = {ONE, ONE, ONE, 0};
    attribute.amb = {HALF, HALF, HALF, 0};
    attribute.dif = {HALF, HALF, HALF, 0};
    CopyText(attribute.name, name, TABLE_NAME_BYTES);
}

std::int32_t AttrAlloc(std::string_view name) {
    const std::int32_t slot = TableFreeSlot(AttrTable, AttributeCount);
    if (slot < 0) {
        ReportTableFull("アトリビュートバッファがオーバーフローしました"_sjis);
        return -1;
    }
    AttrDefaults(AttrTable[slot], name);
    AttrLast = slot > AttrLast ? slot : AttrLast;
    ++AttrRevision;
    return slot;
}

std::int32_t AttrFind(std::string_view name) {
    return TableFind(AttrTable, AttributeCount, AttrLast, name);
}

std::int32_t AttrSearchOrAlloc(std::string_view name) {
    const std::int32_t found = AttrFind(name);
    return found >= 0 ? found : AttrAlloc(name);
}

bool AttrDelete(std::int32_t attribute) {
    if (attribute < 0 || attribute > AttrLast || attribute >= AttributeCount) {
        return false;
    }
    if (!TableDelete(AttrTable, attribute, AttrLast, AttrCurrent, &PolygonRecord::attr)) {
        return false;
    }
    ++AttrRevision;
    return true;
}

bool AttrWrite(std::string_view fileName, std::int32_t atrno, std::int32_t mode) {
    Check(0 <= atrno && atrno <= AttrLast, "0 <= atrno && atrno <= AttrLast");
    if (atrno >= AttributeCount || AttrTable[atrno].used == 0) {
        return false;
    }
    return SaveBlock(fileName, AttributeText(AttrTable[atrno]), mode);
}

std::uint16_t AttrCodeOfColour(const ColourTriple& colour) {
    return static_cast<std::uint16_t>((colour.red > CODE_LEAST ? 2 : 0) |
                                      (colour.green > CODE_LEAST ? 4 : 0) |
                                      (colour.blue > CODE_LEAST ? 1 : 0));
}

}  // namespace quelmark
