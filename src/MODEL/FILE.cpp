#include "MODEL/FILE.h"

#include <cmath>
#include <string>

#include "MATLIB/SETMAT.h"
#include "ML/ERROR.h"
#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/SUFTEXT.h"
#include "reader/objread.h"
#include "text/savefile.h"
#include "text/sjis.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::int32_t MERGE_BY_NAME = 1;

// The name is copied: reading may end in an error that takes the argument away.
std::string NameOf(const DataCell& cell) {
    return IsString(cell) ? std::string(StringText(cell)) : std::string();
}

template <bool (*read)(std::string_view, std::int32_t)>
std::int32_t Read(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string name = NameOf(argv[0]);
    PolygonLoadInit();
    StackPushInt(read(name, argc > 1 ? argv[1].integer : MERGE_BY_NAME) ? 1 : 0);
    return RESULT;
}

// A number among the further arguments is the mode, a String an attribute file that is read first.
std::int32_t ReadFrame(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string name = NameOf(argv[0]);
    std::int32_t mode = MERGE_BY_NAME;
    std::string attributes;
    for (std::int32_t i = 1; i < argc; ++i) {
        if ((argv[i].type & TYPE_NUMBER) != 0) {
            mode = CellInteger(argv[i]);
        } else if (IsString(argv[i])) {
            attributes = NameOf(argv[i]);
        } else {
            RuntimeError("%s", "引数の型が不正です。（FrmReadFile）"_sjis);
        }
    }
    PolygonLoadInit();
    const bool read = attributes.empty() || ReadAttributeFile(attributes, MERGE_BY_NAME);
    StackPushInt(ReadFrameFile(name, mode) && read ? 1 : 0);
    return RESULT;
}

std::int32_t WasStopped(std::int32_t, std::int32_t, DataCell*) {
    StackPushBool(ReadWasStopped());
    return RESULT;
}

std::int32_t Write(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(ObjWrite(argv[0].integer, argc > 1 ? argv[1].integer : 0) ? 1 : 0);
    return RESULT;
}

std::int32_t WriteAttribute(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(AttrWrite(NameOf(argv[0]), argv[1].integer, argc > 2 ? argv[2].integer : 0) ? 1 : 0);
    return RESULT;
}

// All attributes in one file.
std::int32_t WriteAttributes(std::int32_t, std::int32_t, DataCell* argv) {
    StackPushBool(IsString(argv[0]) && SaveBlock(NameOf(argv[0]), AttributesText(), FILE_OVERWRITE));
    return RESULT;
}

// The whole model, or its selected part, in one shape file.
std::int32_t WriteModel(std::int32_t, std::int32_t argc, DataCell* argv) {
    const bool selectedOnly = argc > 1 && argv[1].integer != 0;
    StackPushBool(IsString(argv[0]) && SaveBlock(NameOf(argv[0]), ModelText(selectedOnly), FILE_OVERWRITE));
    return RESULT;
}

// What is infinite or no number has no form in the file.
bool IsFinite(const Matrix& matrix, const Vector& background) {
    for (const auto& row : matrix.row) {
        if (!std::isfinite(row[0]) || !std::isfinite(row[1]) || !std::isfinite(row[2])) {
            return false;
        }
    }
    return std::isfinite(background.x) && std::isfinite(background.y) && std::isfinite(background.z);
}

bool frameWritten = false;

std::int32_t WriteFrame(std::int32_t, std::int32_t argc, DataCell* argv) {
    constexpr const char* TYPE_MESSAGE = "%d番目の引数の型不正です(WriteFrame)"_sjis;
    if (argc > 3 && !IsVector(argv[3])) {
        RuntimeError(TYPE_MESSAGE, 4);
    }
    for (std::int32_t i = 1; i <= 2; ++i) {
        if (!IsString(argv[i])) {
            RuntimeError(TYPE_MESSAGE, i + 1);
        }
    }
    if (!IsMatrix(argv[0])) {
        RuntimeError("%d 番目の引数の型が不正です。( %s )"_sjis, 1, "WriteFrame");
    }
    const Vector background = argc > 3 ? ObjectData<Vector>(argv[3]) : Vector{0, 0, 0};
    const Matrix& matrix = ObjectData<Matrix>(argv[0]);
    const SufText text = FrameText(matrix, StringText(argv[2]), background, ViewState.angle);
    frameWritten = text && IsFinite(matrix, background) &&
                   SaveReplacing(StringText(argv[1]), *text) == SaveResult::saved;
    if (text && !frameWritten) {
        Warning("フレームファイルが出力できません"_sjis);
    }
    return NO_RESULT;
}

std::int32_t WasFrameWritten(std::int32_t, std::int32_t, DataCell*) {
    StackPushBool(frameWritten);
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"String", "ReadFile", Read<ReadShapeFile>, Takes("ReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "ObjReadFile", Read<ReadShapeFile>, Takes("ObjReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "AttrReadFile", Read<ReadAttributeFile>, Takes("AttrReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "FrmReadFile", ReadFrame, Takes("FrmReadFile", {TYPE_OBJECT, TYPE_ANY, TYPE_ANY}, 1)},
    {"", "ReadStopped", WasStopped, Takes("ReadStopped", {})},
    {"", "WriteFile", Write, Takes("WriteFile", {TYPE_INT, TYPE_INT}, 1)},
    {"", "ObjWriteFile", Write, Takes("ObjWriteFile", {TYPE_INT, TYPE_INT}, 1)},
    {"String", "AttrWriteFile", WriteAttribute, Takes("AttrWriteFile", {TYPE_OBJECT, TYPE_INT, TYPE_INT}, 2)},
    {"String", "WriteAttributes", WriteAttributes, Takes("WriteAttributes", {TYPE_OBJECT})},
    {"String", "WriteModel", WriteModel, Takes("WriteModel", {TYPE_OBJECT, TYPE_FLAG}, 1)},
    {"Matrix", "WriteFrame", WriteFrame,
     Takes("WriteFrame", {TYPE_OBJECT, TYPE_OBJECT, TYPE_OBJECT, TYPE_OBJECT}, 3)},
    {"", "FrameWritten", WasFrameWritten, Takes("FrameWritten", {})},
};

}  // namespace

bool ObjWrite(std::int32_t objno, std::int32_t mode) {
    Check(0 <= objno && objno <= ObjLast, "0 <= objno && objno <= ObjLast");
    if (objno >= ObjectTableSize || ObjTable[objno].used == 0) {
        return false;
    }
    const ObjectRecord& object = ObjTable[objno];
    return SaveBlock(object.file, ObjectText(object.name), mode);
}

void FileLibraryRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
