// Script functions of attributes.
#include "MATLIB/SETVEC.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/TABLE.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr double FIXED_12 = 4096;
constexpr double FIXED_16 = 65536;

bool InTable(std::int32_t n) {
    return 0 <= n && n < AttributeCount;
}
bool InUse(std::int32_t n) {
    return InTable(n) && n <= AttrLast;
}

std::int32_t Current(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::int32_t previous = AttrCurrent;
    if (argc == 0) {
        StackPushInt(previous);
    } else if (argv[0].integer < 0 || argv[0].integer > AttrLast) {
        StackPushInt(-1);
    } else {
        AttrCurrent = argv[0].integer;
        AttrRevision += AttrCurrent != previous ? 1 : 0;
        StackPushInt(previous);
    }
    return RESULT;
}

std::int32_t Count(std::int32_t, std::int32_t, DataCell*) {
    StackPushInt(AttrLast + 1);
    return RESULT;
}

std::int32_t Append(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 2 && !IsString(argv[2])) {
        RuntimeError("%d番目の引数の型不正です(AttrAppend)"_sjis, 3);
    }
    const std::int32_t n = AttrAlloc(StringText(argv[0]));
    if (n >= 0) {
        AttributeRecord& attribute = AttrTable[n];
        const std::int32_t code = argv[1].integer;
        const auto component = [code](std::int32_t bit) {
            return static_cast<std::int16_t>((code & bit) != 0 ? FIXED_12 : 0);
        };
        attribute.code = static_cast<std::uint16_t>(code);
        attribute.col = {component(2), component(4), component(1), 0};
        CopyText(attribute.file, argc > 2 ? StringText(argv[2]) : std::string_view());
    }
    StackPushInt(n);
    return RESULT;
}

std::int32_t Search(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushInt(AttrFind(StringText(argv[0])));
    return RESULT;
}

std::int32_t Change(std::int32_t, std::int32_t, DataCell* argv) {
    const std::int32_t n = argv[0].integer;
    Check(n <= AttrLast, "atrno <= AttrLast");
    if (n < 0) {
        return NO_RESULT;
    }
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->select != 0) {
            polygon->attr = static_cast<std::int16_t>(n);
            ObjMarkEdited(polygon->obj);
        }
    }
    return NO_RESULT;
}

std::int32_t Name(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1 || argc > 2) {
        RuntimeError("%s", "引数の数が不正です(AttrName)"_sjis);
    }
    const std::int32_t wrong = argv[0].type != TYPE_INT ? 1 : argc > 1 && !IsString(argv[1]) ? 2 : 0;
    if (wrong != 0) {
        RuntimeError("%d番目の引数の型不正です(AttrName)"_sjis, wrong);
    }
    const std::int32_t n = argv[0].integer;
    if (InTable(n) && argc > 1) {
        CopyText(AttrTable[n].name, StringText(argv[1]), TABLE_NAME_BYTES);
        ++AttrRevision;
    }
    StackPushString(InTable(n) ? AttrTable[n].name : "");
    return RESULT;
}

std::int32_t File(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsString(argv[1])) {
        RuntimeError("%d番目の引数の型不正です(ObjFile)"_sjis, 2);
    }
    const std::int32_t n = argv[0].integer;
    if (!InUse(n)) {
        StackPushInt(0);
        return RESULT;
    }
    if (argc > 1) {
        CopyText(AttrTable[n].file, StringText(argv[1]));
    }
    StackPushString(AttrTable[n].file);
    return RESULT;
}

std::int32_t Code(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc < 1 || argc > 2) {
        RuntimeError("%s", "引数の数が不正です(AttrCode)"_sjis);
    }
    for (std::int32_t i = 0; i < argc; ++i) {
        if (argv[i].type != TYPE_INT) {
            RuntimeError("%d番目の引数の型不正です(AttrCode)"_sjis, i + 1);
        }
    }
    const std::int32_t n = argv[0].integer;
    if (InTable(n) && argc > 1) {
        AttrTable[n].code = static_cast<std::uint16_t>(argv[1].integer);
        ++AttrRevision;
    }
    StackPushInt(InTable(n) ? AttrTable[n].code : 0);
    return RESULT;
}

std::int32_t Delete(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(AttrDelete(argv[0].integer));
    return RESULT;
}

std::int32_t Polygons(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(TablePolygons(&PolygonRecord::attr, argc > 0 ? &argv[0].integer : nullptr));
    return RESULT;
}

std::int16_t ToFixed12(float value) {
    return static_cast<std::int16_t>(
        static_cast<std::uint16_t>(RealToInt(static_cast<double>(value) * FIXED_12)));
}

// "AttrCol" … "AttrAtt": one triple of 4.12 values as a Vector, or set from one.
template <ColourTriple AttributeRecord::*field>
std::int32_t Parameter(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsVector(argv[1])) {
        // The text has always named the first argument.
        RuntimeError("%s", "1番目の引数の型が不正です(AttrParameter)"_sjis);
    }
    if (!InUse(argv[0].integer)) {
        return NO_RESULT;
    }
    ColourTriple& triple = AttrTable[argv[0].integer].*field;
    if (argc == 1) {
        StackPushVector({static_cast<float>(triple.red / FIXED_12),
                         static_cast<float>(triple.green / FIXED_12),
                         static_cast<float>(triple.blue / FIXED_12)});
        return RESULT;
    }
    const Vector& value = ObjectData<Vector>(argv[1]);
    triple.red = ToFixed12(value.x);
    triple.green = ToFixed12(value.y);
    triple.blue = ToFixed12(value.z);
    ++AttrRevision;
    return NO_RESULT;
}

std::int32_t Map(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (!InUse(argv[0].integer)) {
        return NO_RESULT;
    }
    AttributeRecord& attribute = AttrTable[argv[0].integer];
    if (argc > 1) {
        attribute.map = argv[1].integer != 0 ? 1 : 0;
        return NO_RESULT;
    }
    StackPushBool(attribute.map != 0);
    return RESULT;
}

std::int32_t MapFile(std::int32_t, std::int32_t argc, DataCell* argv) {
    if (argc > 1 && !IsString(argv[1])) {
        RuntimeError("%d番目の引数の型不正です(AttrName)"_sjis, 2);
    }
    if (!InUse(argv[0].integer)) {
        return NO_RESULT;
    }
    AttributeRecord& attribute = AttrTable[argv[0].integer];
    if (argc > 1) {
        CopyText(attribute.mapfile, StringText(argv[1]));
    }
    StackPushString(attribute.mapfile);
    return RESULT;
}

using MapRectangle = std::int32_t (AttributeRecord::*)[2][2];

// "GetAttrMapSize" … "SetAttrMapWind": two points of a 16.16 rectangle to or from two arrays.
template <MapRectangle field, bool sets>
std::int32_t MapView(std::int32_t, std::int32_t, DataCell* argv) {
    if (ArrayCount(argv[1]) < 2 || ArrayCount(argv[2]) < 2) {
        RuntimeError("%s", "引数配列のサイズが不正です。(AttrMapView)"_sjis);
    }
    DataCell* points[2] = {ArrayElements(argv[1]), ArrayElements(argv[2])};
    for (const DataCell* point : points) {
        if (sets && ((point[0].type & TYPE_NUMBER) == 0 || (point[1].type & TYPE_NUMBER) == 0)) {
            RuntimeError("%s", "引数配列の型が不正です。( GetMapView )"_sjis);
        }
    }
    if (!InUse(argv[0].integer)) {
        return NO_RESULT;
    }
    auto& rectangle = AttrTable[argv[0].integer].*field;
    for (int point = 0; point < 2; ++point) {
        for (int axis = 0; axis < 2; ++axis) {
            if (sets) {
                rectangle[point][axis] = RealToInt(CellNumber(points[point][axis]) * FIXED_16);
            } else {
                CellAssign(points[point][axis], RealCell(rectangle[point][axis] / FIXED_16));
            }
        }
    }
    return NO_RESULT;
}

constexpr Signature ParameterSignature(const char* name) {
    return Takes(name, {TYPE_INT, TYPE_OBJECT}, 1);
}
constexpr Signature RectangleSignature() {
    return Takes("AttrMapView", {TYPE_INT, TYPE_ARRAY, TYPE_ARRAY});
}

constexpr BuiltIn FUNCTIONS[] = {
    {"", "AttrCurrent", Current, Takes("AttrCurrent", {TYPE_INT}, 0)},
    {"", "Attrs", Count, Takes("Attrs", {})},
    {"String", "AttrAppend", Append, Takes("AttrAppend", {TYPE_OBJECT, TYPE_INT, TYPE_OBJECT}, 2)},
    {"String", "AttrSearch", Search, Takes("AttrSearch", {TYPE_OBJECT})},
    {"", "AttrChange", Change, Takes("AttrChange", {TYPE_INT})},
    {"", "AttrName", Name},
    {"", "AttrFile", File, Takes("AttrFile", {TYPE_INT, TYPE_OBJECT}, 1)},
    {"", "AttrCode", Code},
    {"", "AttrDelete", Delete, Takes("AttrDelete", {TYPE_INT})},
    {"", "AttrPolygons", Polygons, Takes("Polygons", {TYPE_INT}, 0)},
    {"", "AttrCol", Parameter<&AttributeRecord::col>, ParameterSignature("AttrCol")},
    {"", "AttrAmb", Parameter<&AttributeRecord::amb>, ParameterSignature("AttrAmb")},
    {"", "AttrDif", Parameter<&AttributeRecord::dif>, ParameterSignature("AttrDif")},
    {"", "AttrSpc", Parameter<&AttributeRecord::spc>, ParameterSignature("AttrSpc")},
    {"", "AttrSize", Parameter<&AttributeRecord::size>, ParameterSignature("AttrSize")},
    {"", "AttrRef", Parameter<&AttributeRecord::ref>, ParameterSignature("AttrRef")},
    {"", "AttrTra", Parameter<&AttributeRecord::tra>, ParameterSignature("AttrTra")},
    {"", "AttrRfr", Parameter<&AttributeRecord::rfr>, ParameterSignature("AttrRfr")},
    {"", "AttrAtt", Parameter<&AttributeRecord::att>, ParameterSignature("AttrAtt")},
    {"", "AttrMap", Map, Takes("AttrMap", {TYPE_INT, TYPE_FLAG}, 1)},
    {"", "AttrMapFile", MapFile, Takes("AttrMapFile", {TYPE_INT, TYPE_OBJECT}, 1)},
    {"", "GetAttrMapSize", MapView<&AttributeRecord::mapsize, false>, RectangleSignature()},
    {"", "GetAttrMapView", MapView<&AttributeRecord::mapview, false>, RectangleSignature()},
    {"", "GetAttrMapWind", MapView<&AttributeRecord::mapwind, false>, RectangleSignature()},
    {"", "SetAttrMapSize", MapView<&AttributeRecord::mapsize, true>, RectangleSignature()},
    {"", "SetAttrMapView", MapView<&AttributeRecord::mapview, true>, RectangleSignature()},
    {"", "SetAttrMapWind", MapView<&AttributeRecord::mapwind, true>, RectangleSignature()},
};

}  // namespace

void AttributeRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
