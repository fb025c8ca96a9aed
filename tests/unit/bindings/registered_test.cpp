// Every function, method, operator and constant of the model families, by class; and that the manual has an
// entry for each function that scripts can call.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "ML/MEMBER.h"
#include "MODEL/MDLINIT.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

// Blank-separated names under one class; "" is the global scope.
struct Names {
    const char* className;
    const char* names;
};

constexpr Names FUNCTIONS[] = {
    {"", "dir Matrix vector"},
    {"String", "fullpath delete fprint fileopen"},
    {"File", "fileputs filegets fileputc filegetc fileclose"},
    {"Matrix", "tostring axis rot move scale vec getvector"},
    {"Vector", "tostring unit vx vy vz element abs"},
    {"", "Vertex"},
    {"Vector", "Vertex"},
    {"Vertex",
     "tostring Position Vector Mapping VertexLength VertexLength2 PolySetVertex PolyInsVertex PolyVertex "
     "PolyPlane"},
    {"",
     "PolyGetVertex PolyDelVertex PolyVertexs PolyType PolyAttr PolyObj PolyAppend PolyLoad PolyLoadInit "
     "PolySave PolyDelete PolyInvisible ReadStopped FrameWritten WriteFile ObjWriteFile PolyShade "
     "PolyShadeAgain "
     "PolyShadeInv PolyMap "
     "PolyShiftVertex PolyInvVertex PolyVector"},
    {"Matrix", "PolyMove WriteFrame"},
    {"String", "ReadFile ObjReadFile FrmReadFile"},
    {"",
     "AttrCurrent Attrs AttrChange AttrName AttrFile AttrCode AttrDelete AttrPolygons AttrCol AttrAmb "
     "AttrDif AttrSpc AttrSize AttrRef AttrTra AttrRfr AttrAtt AttrMap AttrMapFile GetAttrMapSize "
     "GetAttrMapView GetAttrMapWind SetAttrMapSize SetAttrMapView SetAttrMapWind"},
    {"String", "AttrAppend AttrSearch AttrReadFile AttrWriteFile"},
    {"", "ObjCurrent Objects ObjChange ObjName ObjFile ObjEdit ModelEdit ObjDelete ObjPolygons"},
    {"String", "ObjAppend ObjSearch"},
    {"",
     "SelectAll SelectArea SelectPers PickVertex PickEdge SelectAttr SelectObj SelectPolyType SelectBox "
     "SelectPolygons Select "
     "SelectCurrent SelectHold SelectHeld"},
    {"Select", "Select SelectPolygons SelectAdjoint SelectNumber PolyLoad PolyDelete tostring"},
    {"", "VertexSet VertexSelect"},
    {"", "UndoMark Undo Redo UndoRestore UndoCancel UndoText RedoText UndoClear UndoSaved UndoMemory"},
    {"VertexSet",
     "tostring VertexSelect VertexGetVertex Vertexs VertexPositionVertex "
     "VertexSelectPosition DrawVertex"},
    {"", "Edge EdgeSelect"},
    {"Edge", "tostring EdgeSelect Edges EdgeGetVertex EdgeGetCount EdgeVertex EdgeSelectCount DrawEdge"},
};

struct Operators {
    const char* className;
    std::initializer_list<std::int32_t> codes;
};
const Operators OPERATORS[] = {
    {"Matrix", {OP_MULTIPLY, OP_DIVIDE, OP_ADD, OP_SUBTRACT, OP_EQUAL, OP_NOT_EQUAL}},
    {"Vector", {OP_DOT, OP_MULTIPLY, OP_ADD, OP_SUBTRACT, OP_NEGATE, OP_EQUAL, OP_NOT_EQUAL}},
    {"Vertex", {OP_ADD, OP_SUBTRACT, OP_MULTIPLY, OP_EQUAL, OP_NOT_EQUAL}},
    {"Select", {OP_NOT, OP_AND, OP_OR, OP_XOR, OP_EQUAL, OP_NOT_EQUAL}},
    {"VertexSet", {OP_ADD, OP_OR, OP_SUBTRACT, OP_AND, OP_MULTIPLY, OP_XOR, OP_EQUAL, OP_NOT_EQUAL}},
    {"Edge", {OP_ADD, OP_OR, OP_SUBTRACT, OP_AND, OP_MULTIPLY, OP_XOR, OP_EQUAL, OP_NOT_EQUAL}},
};

struct Value {
    const char* name;
    std::int32_t value;
};
constexpr Value CONSTANTS[] = {
    {"AXISX", 0},          {"AXISY", 1},          {"AXISZ", 2},        {"POLY_SIMPLE", 0},
    {"POLY_SHADE", 1},     {"POLY_UV", 2},        {"POLY_UVSHADE", 3}, {"SELECT_UPDATE", 0},
    {"SELECT_AND", 1},     {"SELECT_OR", 2},      {"SELECT_XOR", 3},   {"SELECT_ALL", 0},
    {"SELECT_SUB", 16},    {"FILE_OVERWRITE", 0}, {"FILE_APPEND", 1},  {"OBJ_CREATE", 0},
    {"OBJ_APPEND", 1},     {"ATTR_CREATE", 0},    {"ATTR_APPEND", 1},  {"VERTEX_MIN", -32767},
    {"VERTEX_MAX", 32767}, {"NORMAL_OFF", 0},     {"NORMAL_ON", 1},    {"NORMAL_CREATE", 2},
};

class Registered : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        registerMore = ModelLibrariesRegister;
        Start();
    }
    static const Member& OwnMember(const char* className, std::int32_t ident) {
        const std::int32_t classId = *className == '\0' ? 0 : ClassFind(className);
        static constexpr Member NONE{};
        return classId < 0 || ident < 0 ? NONE : ClassList[classId].members[ident];
    }
};

TEST_F(Registered, EveryFunctionOfTheModelUnderItsClass) {
    for (const Names& row : FUNCTIONS) {
        std::istringstream names(row.names);
        for (std::string name; names >> name;) {
            const Member& member = OwnMember(row.className, FunctionFind(name));
            EXPECT_TRUE(member.own && member.kind == MemberKind::BuiltIn) << row.className << ":" << name;
        }
    }
}
TEST_F(Registered, EveryOperatorOfTheModelClasses) {
    for (const Operators& row : OPERATORS) {
        for (const std::int32_t code : row.codes) {
            EXPECT_TRUE(OwnMember(row.className, code).own) << row.className << " operator " << code;
        }
    }
}
TEST_F(Registered, EveryConstantOfTheModelWithItsValue) {
    for (const auto& [name, value] : CONSTANTS) {
        const DataCell* cell = ConstFind(name);
        ASSERT_NE(cell, nullptr) << name;
        EXPECT_EQ(cell->type, TYPE_INT) << name;
        EXPECT_EQ(cell->integer, value) << name;
    }
    ASSERT_NE(ConstFind("UNIT_MATRIX"), nullptr);
    EXPECT_EQ(ConstFind("UNIT_MATRIX")->type, TYPE_OBJECT);
}

bool IsWordByte(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// An entry names the function in code style, as a whole word.
bool HasEntry(const std::string& manual, const std::string& name) {
    for (std::size_t at = manual.find(name); at != std::string::npos; at = manual.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        const std::size_t line = manual.rfind('\n', at);
        const std::string before = manual.substr(line + 1, at - line - 1);
        const bool inCode = std::ranges::count(before, '`') % 2 == 1;
        const bool isHead = before.starts_with("#") || before.starts_with("|");
        if (inCode && isHead && !IsWordByte(before.back()) && !IsWordByte(manual[end])) {
            return true;
        }
    }
    return false;
}

TEST_F(Registered, EveryFunctionHasAnEntryInTheManual) {
    std::string manual;
    for (const auto& page : fs::directory_iterator(QUELMARK_SOURCE_DIR "/docs/library")) {
        std::ifstream file(page.path(), std::ios::binary);
        manual.append(std::istreambuf_iterator<char>(file), {}).append("\n");
    }
    for (std::int32_t ident = OPERATOR_SLOTS; ident < IdentCount(FunctionNames.get()); ++ident) {
        EXPECT_TRUE(HasEntry(manual, FunctionName(ident))) << FunctionName(ident);
    }
    EXPECT_FALSE(HasEntry(manual, "PolyAppen"));
    EXPECT_FALSE(HasEntry(manual, "MaxVertex"));
}

}  // namespace
}  // namespace quelmark::test
