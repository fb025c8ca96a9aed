// Random calls with wild arguments: whatever a script does, the store keeps its invariants.
#include <array>

#include "MODEL/model_fixture.h"

namespace quelmark::test {
namespace {

class WildCalls : public ModelTest, public testing::WithParamInterface<std::uint32_t> {
  protected:
    std::uint32_t random = GetParam();
    int completed = 0;  // statements that ended without a message
    std::int32_t largestModel = 0;

    std::uint32_t Next(std::uint32_t below) {
        random = random * 1664525 + 1013904223;
        return (random >> 8) % below;
    }
    template <std::size_t N>
    std::string Any(const std::array<const char*, N>& texts) {
        return texts[Next(N)];
    }
    std::string Number() {
        static constexpr std::array<const char*, 14> NUMBERS{
            "0",   "1",     "2",      "3",     "-1",         "31",          "32",
            "255", "32767", "-32768", "65536", "2147483647", "-2147483648", "5"};
        return Any(NUMBERS);
    }
    std::string Argument() {
        static constexpr std::array<const char*, 16> VALUES{
            "v", "w", "m", "s", "e", "k", "h", "a", "\"ab\"", "1.5", "TRUE", "vector(1, 2, 3)",
            "1", "0", "2", "v"};
        return Next(3) == 0 ? Number() : Any(VALUES);
    }
    std::string Statement() {
        static constexpr std::array<const char*, 66> NAMES{"PolySetVertex",
                                                           "PolyGetVertex",
                                                           "PolyInsVertex",
                                                           "PolyDelVertex",
                                                           "PolyVertexs",
                                                           "PolyType",
                                                           "PolyAttr",
                                                           "PolyObj",
                                                           "PolyAppend",
                                                           "PolyLoad",
                                                           "PolyLoadInit",
                                                           "PolySave",
                                                           "PolyDelete",
                                                           "PolyMove",
                                                           "PolyInvisible",
                                                           "PolyShade",
                                                           "PolyShadeInv",
                                                           "PolyMap",
                                                           "PolyShiftVertex",
                                                           "PolyInvVertex",
                                                           "PolyVector",
                                                           "Vertex",
                                                           "Position",
                                                           "Mapping",
                                                           "VertexLength",
                                                           "AttrCurrent",
                                                           "AttrAppend",
                                                           "AttrChange",
                                                           "AttrName",
                                                           "AttrCode",
                                                           "AttrDelete",
                                                           "AttrCol",
                                                           "AttrMap",
                                                           "GetAttrMapSize",
                                                           "SetAttrMapWind",
                                                           "ObjAppend",
                                                           "ObjChange",
                                                           "ObjName",
                                                           "ObjEdit",
                                                           "ObjDelete",
                                                           "ObjCurrent",
                                                           "SelectAll",
                                                           "SelectArea",
                                                           "SelectAttr",
                                                           "SelectPolyType",
                                                           "SelectBox",
                                                           "SelectPolygons",
                                                           "Select",
                                                           "SelectCurrent",
                                                           "SelectAdjoint",
                                                           "SelectNumber",
                                                           "VertexSet",
                                                           "VertexSelect",
                                                           "VertexGetVertex",
                                                           "VertexPositionVertex",
                                                           "VertexSelectPosition",
                                                           "Edge",
                                                           "EdgeSelect",
                                                           "EdgeGetVertex",
                                                           "EdgeGetCount",
                                                           "EdgeVertex",
                                                           "EdgeSelectCount",
                                                           "tostring",
                                                           "PolyAppend",
                                                           "PolyLoad",
                                                           "PolySave"};
        static constexpr std::array<const char*, 8> OPERATORS{"+", "-", "*", "&", "|", "^", "==", "!="};
        static constexpr std::array<const char*, 14> SENSIBLE{
            "PolyVertexs(3); PolyAppend(1);",
            "PolyVertexs(5); PolyAppend(0);",
            "s = Select();",
            "k = VertexSelect();",
            "e = EdgeSelect();",
            "h = PolyLoad(); PolySave();",
            "SelectAll(1, SELECT_XOR);",
            "PolyMove(m);",
            "PolyVertexs(4); PolySetVertex(w, 1); PolySave();",
            "v = v + w; w = w * m;",
            "Select(s);",
            "PolyInvisible(0);",
            "k = k + v; k = k * m;",
            "PolyDelete(s);"};
        if (Next(3) == 0) {
            return Any(SENSIBLE);
        }
        if (Next(6) == 0) {
            return "tostring(" + Argument() + Any(OPERATORS) + Argument() + ");";
        }
        std::string call = Any(NAMES) + "(";
        const std::uint32_t count = Next(5);
        for (std::uint32_t i = 0; i < count; ++i) {
            call += (i > 0 ? ", " : "") + Argument();
        }
        return call + ");";
    }
    // Runs one statement; an error unwinds as it does in the event loop.
    void Step(const std::string& statement) {
        const ExecMark mark = ExecTakeMark();
        try {
            CompileText("wild.qms", statement);
            ExecTopLevel();
            ++completed;
        } catch (const ScriptAbort&) {
            ExecRecover(mark);
        }
        largestModel = std::max(largestModel, PolygonCount());
    }
    static void ExpectWhole(const std::string& statement) {
        BufferCheck();
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            ASSERT_GT(polygon->vers, 0) << statement;
            ASSERT_LE(PolygonSize(polygon->vers), polygon->header.size) << statement;
        }
        ASSERT_LE(BufNext, BufEnd) << statement;
    }
};

TEST_P(WildCalls, LeaveTheStoreWhole) {
    sizes.codeBytes = 16 << 20;
    Script(
        "var v = Vertex(1, 2, 3), w = Vertex(-4, 5, 6, 0, 0, 256, 7, 8), m = UNIT_MATRIX.rot(AXISX, "
        "30).move(1, 2, 3),"
        "s, e, k, h = 0, a[2]; s = Select(); e = Edge(v, w); k = VertexSet(v); a[0] = 1; a[1] = 2;");
    ASSERT_EQ(message, "");
    for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
        const std::string statement = Statement();
        Step(statement);
        ExpectWhole(statement);
    }
    EXPECT_GT(completed, 500);
    EXPECT_GT(largestModel, 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, WildCalls, testing::Values(1, 20, 300, 4000, 50000));

}  // namespace
}  // namespace quelmark::test
