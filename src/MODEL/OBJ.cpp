#include "MODEL/OBJ.h"

#include "ML/ERROR.h"
#include "MODEL/BUFFER.h"
#include "MODEL/TABLE.h"
#include "text/sjis.h"

namespace quelmark {

ObjectRecord* ObjTable = nullptr;
std::int32_t ObjectTableSize = 0;
std::int32_t ObjLast = 0;
std::int32_t ModelEdit = 0;
std::int32_t ObjCurrent = 0;
std::uint32_t ObjRevision = 0;

void ObjInit(std::int32_t count) {
    ObjectTableSize = count > 0 ? count : 0;
    ObjTable = static_cast<ObjectRecord*>(MemoryAlloc(
        static_cast<std::uint32_t>(static_cast<std::size_t>(ObjectTableSize + 1) * sizeof(ObjectRecord))));
    ObjLast = 0;
    ObjCurrent = 0;
    ModelEdit = 0;
    ++ObjRevision;
}

void ObjExit() {
    if (ObjTable != nullptr) {
        MemoryFree(ObjTable);
    }
    ObjTable = nullptr;
    ObjectTableSize = 0;
}

std::int32_t ObjAlloc(std::string_view name) {
    const std::int32_t slot = TableFreeSlot(ObjTable, ObjectTableSize);
    if (slot < 0) {
        ReportTableFull("オブジェクトバッファがオーバーフローしました"_sjis);
        return -1;
    }
    ObjTable[slot] = ObjectRecord{};
    ObjTable[slot].used = 1;
    CopyText(ObjTable[slot].name, name, TABLE_NAME_BYTES);
    ObjLast = slot > ObjLast ? slot : ObjLast;
    ++ObjRevision;
    return slot;
}

std::int32_t ObjFind(std::string_view name) {
    return TableFind(ObjTable, ObjectTableSize, ObjLast, name);
}

std::int32_t ObjSearchOrAlloc(std::string_view name) {
    const std::int32_t found = ObjFind(name);
    return found >= 0 ? found : ObjAlloc(name);
}

bool ObjDelete(std::int32_t object) {
    if (object < 0 || object > ObjLast || object >= ObjectTableSize) {
        return false;
    }
    if (!TableDelete(ObjTable, object, ObjLast, ObjCurrent, &PolygonRecord::obj)) {
        return false;
    }
    ++ObjRevision;
    return true;
}

void ObjMarkEdited(std::int32_t object) {
    if (0 <= object && object < ObjectTableSize) {
        ObjTable[object].edit = 1;
    }
}

}  // namespace quelmark
