#include "MODEL/FILE.h"

#include <string>

#include "ML/FUNC.h"
#include "ML/STRING.h"
#include "MODEL/POLY.h"
#include "reader/objread.h"

namespace quelmark {
namespace {

constexpr std::int32_t MODE_APPEND = 1;  // merge by name

std::string_view NameOf(const DataCell& cell) {
    return IsString(cell) ? StringText(cell) : std::string_view();
}

template <bool (*read)(std::string_view, std::int32_t)>
std::int32_t Read(std::int32_t, std::int32_t argc, DataCell* argv) {
    // The name is copied: reading may end in an error that takes the argument away.
    const std::string name(NameOf(argv[0]));
    PolygonLoadInit();
    StackPushInt(read(name, argc > 1 ? argv[1].integer : MODE_APPEND) ? 1 : 0);
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"String", "ReadFile", Read<ReadShapeFile>, Takes("ReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "ObjReadFile", Read<ReadShapeFile>, Takes("ObjReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "AttrReadFile", Read<ReadAttributeFile>, Takes("AttrReadFile", {TYPE_OBJECT, TYPE_INT}, 1)},
};

}  // namespace

void FileLibraryRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
