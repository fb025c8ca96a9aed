// Every registered function and operator is called with generated arguments, most of them wrong: no call may
// end the program, and after each the store is whole and the value stack where it was.
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "ML/MEMBER.h"
#include "MODEL/BUFFER.h"
#include "MODEL/MDLINIT.h"
#include "MODEL/POLY.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "script_fixture.h"

namespace quelmark::test {
namespace {

namespace fs = std::filesystem;

// A window that nobody looks at or touches.
class DeafWindow : public Window {
  public:
    void Deliver(std::int32_t) override {}
    InputState TakeInput() override {
        InputState state;
        state.finished = true;
        return state;
    }
    bool TakeBreakKey() override { return false; }
    bool TakeCloseRequest() override { return false; }
    bool TakeEscapeKey() override { return false; }
    void KeepLastKey() override {}
    std::uint32_t Milliseconds() override { return clock_ += 100000; }
    std::int32_t ClientWidth() const override { return 1024; }
    std::int32_t ClientHeight() const override { return 768; }
    std::int32_t CharacterWidth() const override { return 8; }
    std::int32_t LineHeight() const override { return 16; }
    void Invalidate(Pane) override {}
    void InvalidateFrame(const PixelRect&) override {}
    void SetPalette(std::int32_t, std::uint8_t, std::uint8_t, std::uint8_t) override {}
    void SetTitle(std::string_view) override {}
    void SetMenu(const MenuTree&) override {}
    std::int32_t RunDialog(Dialog&) override { return 0; }
    std::string RunFileDialog(const FileDialog&) override { return ""; }
    void OpenDocument(const std::string&) override {}
    void Beep() override {}
    std::uint64_t Handle() override { return 0; }
    PixelRect NativeRect(const PixelRect& rect) const override { return rect; }

  private:
    std::uint32_t clock_ = 0;
};

constexpr int ARGUMENTS_MOST = 6;
constexpr int ROUNDS = 12;  // argument lists for each function and count

// What a function is called with: the arguments that the script gave to `probe`.
struct Calls {
    std::mt19937 random{1};
    std::vector<DataCell> pool;
    int made = 0, refused = 0;

    std::size_t Below(std::size_t limit) { return random() % limit; }
    DataCell Any() { return pool[Below(pool.size())]; }
    // One of these types when there is one.
    DataCell OfType(std::uint16_t types) {
        for (int attempt = 0; attempt < 100; ++attempt) {
            if (const DataCell cell = Any(); (cell.type & types) != 0) {
                return cell;
            }
        }
        return Any();
    }
    DataCell OfClass(std::int32_t classId) {
        for (int attempt = 0; attempt < 1000; ++attempt) {
            if (const DataCell cell = Any(); IsInstance(cell, classId)) {
                return cell;
            }
        }
        return Any();
    }
    // The right type in two cases of three, so that the checks behind the first are reached too.
    DataCell Argument(const Signature* signature, int i) {
        const std::uint16_t types = signature != nullptr && i < signature->allowed
                                        ? signature->types[static_cast<std::size_t>(i)]
                                        : 0;
        return types != 0 && Below(3) != 0 ? OfType(types) : Any();
    }
};
Calls calls;

void ExpectWhole(const std::string& call) {
    BufferCheck();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        ASSERT_TRUE(0 < polygon->vers && PolygonSize(polygon->vers) <= polygon->header.size) << call;
    }
}

void CallOnce(std::int32_t classId, std::int32_t ident, int argc) {
    const Member& member = ClassList[classId].members[ident];
    const ExecMark mark = ExecTakeMark();
    for (int i = 0; i < argc; ++i) {
        StackPush(i == 0 && classId != 0 ? calls.OfClass(classId) : calls.Argument(member.signature, i));
    }
    ++calls.made;
    try {
        CallFunction(ident, argc, StackTop() - argc + 1);
    } catch (const ScriptAbort&) {
        ++calls.refused;
    }
    ExecRecover(mark);
    QuitFlag = false;
    const char* name = ident < OPERATOR_SLOTS ? "operator" : FunctionName(ident);
    ASSERT_EQ(StackTop(), mark.top) << name;
    ExpectWhole(name);
}

std::int32_t Probe(std::int32_t probe, std::int32_t argc, DataCell* argv) {
    calls.pool.assign(argv, argv + argc);
    const auto isCalled = [probe](std::int32_t classId, std::int32_t ident) {
        const Member& member = ClassList[classId].members[ident];
        return member.own && member.kind == MemberKind::BuiltIn && ident != probe;
    };
    for (std::int32_t classId = 0; classId < MAX_CLASS && ClassList[classId].name != nullptr; ++classId) {
        for (std::int32_t ident = 1; ident < IdentCount(FunctionNames.get()); ++ident) {
            for (int count = 0; isCalled(classId, ident) && count <= ARGUMENTS_MOST; ++count) {
                for (int round = 0; round < ROUNDS && !testing::Test::HasFatalFailure(); ++round) {
                    // An operator has its operands always.
                    if (ident >= OPERATOR_SLOTS || count == 2 || (count == 1 && ident <= OP_DECREMENT)) {
                        CallOnce(classId, ident, count);
                    }
                }
            }
        }
    }
    return NO_RESULT;
}

constexpr const char* SCRIPT = R"(
function handler(a, b) { return a; }
function triangle(x, type) {
    PolyVertexs(3); PolyType(type);
    PolySetVertex(Vertex(x, 0, 0), 0); PolySetVertex(Vertex(x + 9, 0, 5), 1); PolySetVertex(Vertex(x, 9, -5), 2);
    PolyAppend(1);
}
AttrAppend("a", 1); AttrAppend("b", 2); ObjAppend("a", "a.suf"); ObjAppend("b", "b.suf");
var i, one[1], two[2], three[3], texts[3], mixed[3], vertices[3], table[2][2];
for (i = 0; i < 40; i++) triangle(i * 5, i & 3);
one[0] = 1; two[0] = 1.5; two[1] = -2; three[0] = 1; three[1] = 2; three[2] = 3; texts[0] = "t"; texts[1] = "u";
mixed[0] = "t"; mixed[1] = 1; for (i = 0; i < 3; i++) vertices[i] = Vertex(i, i * i, 7);
probe(0, 1, 2, 3, -1, 8, 16, 31, 255, 256, 1023, 32767, -32768, 65536, 2147483647, -2147483647 - 1,
    0.0, 1.5, -1.5, 1.0e30, -1.0e30, sqrt(-1.0), TRUE, FALSE, typeof(1), typeof(""), handler, print,
    "", "t", "zz.suf", "%s%d%5.2f", "12345678901234567890", one, two, three, texts, mixed, vertices, table,
    UNIT_MATRIX, UNIT_MATRIX.scale(0, 0, 0), UNIT_MATRIX.rot(AXISX, 30).move(1, 2, 1.0e9), vector(1, 2, 3),
    vector(0, 0, 0), Vertex(1, 2, 3), Vertex(-32767, 32767, 0, 0, 0, 256, 7, 8), Select(), !Select(),
    VertexSelect(), VertexSet(), EdgeSelect(), Edge(Vertex(1, 2, 3), Vertex(4, 5, 6)), fileopen("zz.txt", "w"));
)";

void RegisterWithProbe() {
    ModelLibrariesRegister();
    FunctionRegister(0, "probe", Probe);
}

TEST(WrongArguments, EndNoFunctionOtherThanByAMessage) {
    char name[] = "/tmp/quelmark-arguments-XXXXXX";
    const fs::path before = fs::current_path();
    const fs::path folder = mkdtemp(name);
    fs::current_path(folder);
    std::ofstream("Quelmark.ini")
        << "CodeSize = 256\nGlobal = 512\nFunction = 512\nStack = 20000\nBufferSize = 64\n"
           "Object = 4\nAttr = 4\nVertexs = 64\nSourceFile = t.qms\n";
    std::ofstream("t.qms") << "\xEF\xBB\xBF" << SCRIPT;
    calls = Calls{};
    DeafWindow window;
    const int status = HostMain(window, (folder / "program").string(), {}, [] {
        RegisterWithProbe();
        SetOutputSink([](std::string_view) {});
    });
    EXPECT_EQ(status, 0);
    // Both what is refused and what is done must have been reached.
    EXPECT_GT(calls.made, 15000);
    EXPECT_GT(calls.refused, calls.made / 3);
    EXPECT_LT(calls.refused, calls.made * 19 / 20);
    fs::current_path(before);
    fs::remove_all(folder);
}

}  // namespace
}  // namespace quelmark::test
