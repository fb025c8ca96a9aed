// Script functions of objects.
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/OBJ.h"
#include "MODEL/TABLE.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

bool InTable(std::int32_t n) {
    return 0 <= n && n < ObjectTableSize;
}

std::int32_t Current(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t previous = ObjCurrent;
    if (argc == 0) {
        StackPushInt(previous);
    } else if (argv[0].integer < 0 || argv[0].integer > ObjLast) {
        StackPushInt(-1);
    } else {
        ObjCurrent = argv[0].integer;
        ObjRevision += ObjCurrent != previous ? 1 : 0;
        StackPushInt(previous);
    }
    return RESULT;
}

std::int32_t Count(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(ObjLast + 1);
    return RESULT;
}

std::int32_t Append(std::int32_t, std::int32_t, DataCell* argv) {
    if (!IsString(argv[1])) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 2, "ObjAppend");
    }
    const std::int32_t n = ObjAlloc(StringText(argv[0]));
    if (n >= 0) {
        CopyText(ObjTable[n].file, StringText(argv[1]));
    }
    StackPushInt(n);
    return RESULT;
}

std::int32_t Search(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(ObjFind(StringText(argv[0])));
    return RESULT;
}

std::int32_t Change(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    Check(n <= ObjLast, "objno <= ObjLast");
    if (n < 0) {
        return NO_RESULT;
    }
    ObjMarkEdited(n);
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 0) {
            ObjMarkEdited(polygon->obj);
            polygon->obj = static_cast<std::int16_t>(n);
        }
    }
    return NO_RESULT;
}

std::int32_t Name(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsString(argv[1])) {
        RuntimeError("%d番目の引数の型不正です(ObjName)"_sjis, 2);
    }
    const std::int32_t n = argv[0].integer;
    if (InTable(n) && argc > 1) {
        if (StringText(argv[1]).empty()) {
            ObjTable[n].used = 0;
        }
        CopyText(ObjTable[n].name, StringText(argv[1]), TABLE_NAME_BYTES);
        ++ObjRevision;
    }
    StackPushString(InTable(n) && ObjTable[n].used != 0 ? ObjTable[n].name : "");
    return RESULT;
}

std::int32_t File(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsString(argv[1])) {
        RuntimeError("%d番目の引数の型不正です(ObjFile)"_sjis, 2);
    }
    const std::int32_t n = argv[0].integer;
    if (InTable(n) && argc > 1) {
        CopyText(ObjTable[n].file, StringText(argv[1]));
    }
    StackPushString(InTable(n) ? ObjTable[n].file : "");
    return RESULT;
}

std::int32_t Edit(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    if (InTable(n) && argc > 1) {
        ObjTable[n].edit = static_cast<std::uint16_t>(argv[1].integer);
    }
    StackPushInt(InTable(n) ? ObjTable[n].edit : 0);
    return RESULT;
}

std::int32_t EditModel(std::int32_t, std::int32_t argc, DataCell* argv) {
    ModelEdit = argc > 0 ? argv[0].integer : ModelEdit;
    StackPushInt(ModelEdit);
    return RESULT;
}

std::int32_t Delete(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(ObjDelete(argv[0].integer));
    return RESULT;
}

std::int32_t Polygons(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(TablePolygons(&PolygonRecord::obj, argc > 0 ? &argv[0].integer : nullptr));
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "ObjCurrent", Current, Takes("ObjCurrent", {TYPE_INT}, 0)},
    {"", "Objects", Count, Takes("Objects", {})},
    {"String", "ObjAppend", Append, Takes("ObjAppend", {TYPE_OBJECT, TYPE_OBJECT})},
    {"String", "ObjSearch", Search, Takes("ObjSearch", {TYPE_OBJECT})},
    {"", "ObjChange", Change, Takes("ObjChange", {TYPE_INT})},
    {"", "ObjName", Name, Takes("ObjFile", {TYPE_INT, TYPE_OBJECT}, 1)},
    {"", "ObjFile", File, Takes("ObjFile", {TYPE_INT, TYPE_OBJECT}, 1)},
    {"", "ObjEdit", Edit, Takes("ObjEdit", {TYPE_INT, TYPE_INT}, 1)},
    {"", "ModelEdit", EditModel, Takes("ModelEdit", {TYPE_INT}, 0)},
    {"", "ObjDelete", Delete, Takes("ObjDelete", {TYPE_INT})},
    {"", "ObjPolygons", Polygons, Takes("ObjPolygons", {TYPE_INT}, 0)},
};

}  // namespace

void ObjectRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
