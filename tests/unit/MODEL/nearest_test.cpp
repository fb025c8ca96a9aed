// The nearest vertex and the projection onto a plane.
#include "MODEL/NEAREST.h"

#include "ML/FUNC.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

bool facing = true;
// An eye at the origin that looks along +x, one unit before the screen.
constexpr PerspectiveSight SIGHT{
    [](const PolygonRecord&) { return facing; },
    [](const VertexRecord& p, std::int32_t& x, std::int32_t& y) {
        if (p.x < 1) {
            return false;
        }
        x = -p.y * 100 / p.x;
        y = -p.z * 100 / p.x;
        return true;
    },
    [](const VertexRecord& p) {
        return SightLine{{0, 0, 0},
                         {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)}};
    }};

constexpr BuiltIn FUNCTIONS[] = {
    {"Vertex", "PolyVertex",
     [](std::int32_t, std::int32_t argc, DataCell* argv) { return CallPolyVertex(argc, argv, SIGHT); }},
    {"Vertex", "PolyPlane",
     [](std::int32_t, std::int32_t argc, DataCell* argv) { return CallPolyPlane(argc, argv, SIGHT); }},
};

class Nearest : public ModelTest {
  protected:
    void SetUp() override {
        ModelTest::SetUp();
        facing = true;
        const auto before = registerMore;
        registerMore = [before] {
            before();
            RegisterBuiltIns(FUNCTIONS);
        };
    }
};

TEST_F(Nearest, AnEmptyModelGivesAllZeros) {
    EXPECT_EQ(Script("print(PolyVertex(Vertex(5, 6, 7)));"), "( 0   , 0   , 0    )");
}
TEST_F(Nearest, WithoutAWindowTheDistanceInSpaceCounts) {
    EXPECT_EQ(Script("tri(0, 0, 100, 10, 0, 0, 0, 30, 0); print(PolyVertex(Vertex(0, 0, 0)), "
                     "PolyVertex(Vertex(0, 20, 0), 3));"),
              "( 10  , 0   , 0    ) ( 0   , 30  , 0    )");
}
TEST_F(Nearest, TheFirstOfEqualDistancesInSpaceIsKept) {
    EXPECT_EQ(Script("tri(10, 0, 0, -10, 0, 0, 0, 10, 0); print(PolyVertex(Vertex(0, 0, 0)));"),
              "( 10  , 0   , 0    )");
}
TEST_F(Nearest, AnOrthographicWindowLeavesItsDepthOut) {
    const std::string model = "tri(1, 50, 900, 900, 2, 50, 50, 900, 3);";
    EXPECT_EQ(Script(model + "print(PolyVertex(Vertex(0, 50, 0), 1));"), "( 1   , 50  , 900  )");
    EXPECT_EQ(Script(model + "print(PolyVertex(Vertex(0, 0, 50), 2));"), "( 900 , 2   , 50   )");
    EXPECT_EQ(Script(model + "print(PolyVertex(Vertex(50, 0, 0), 4));"), "( 50  , 900 , 3    )");
}
TEST_F(Nearest, EqualDistancesInAWindowAreDecidedByTheDepth) {
    EXPECT_EQ(Script("tri(1, 1, 90, 1, 1, 20, 1, 1, 60); print(PolyVertex(Vertex(1, 1, 0), 1));"),
              "( 1   , 1   , 20   )");
}
TEST_F(Nearest, InvisiblePolygonsAreSkipped) {
    EXPECT_EQ(
        Script(
            "tri(1, 0, 0, 1, 1, 0, 1, 2, 0); SelectAll(0); tri(9, 0, 0, 9, 1, 0, 9, 2, 0); PolyInvisible(1);"
            "print(PolyVertex(Vertex(0, 0, 0)));"),
        "( 9   , 0   , 0    )");
}
TEST_F(Nearest, VerticesBeyondTheExtentOfTheModelAreNotFound) {
    EXPECT_EQ(Script("tri(32767, 32767, 0, 32767, 32767, 0, 32767, 32767, 0); "
                     "print(PolyVertex(Vertex(-32767, -32767, 0)));"),
              "( 0   , 0   , 0    )");
}
TEST_F(Nearest, TheResultHasNoValidNormalButKeepsItsWords) {
    EXPECT_EQ(Script("PolyVertexs(1); PolySetVertex(Vertex(1, 2, 3, 4, 5, 6), 0); PolyAppend(); var v;"
                     "v = PolyVertex(Vertex(0, 0, 0)); print(v, v.Vector());"),
              "( 1   , 2   , 3    ) (   4.0000,   5.0000,   6.0000 )");
}
TEST_F(Nearest, ThePerspectiveWindowComparesOnTheScreen) {
    // On the screen (10, 0) the far vertex at (900, -90, 0) is nearest; in space it is farthest away.
    EXPECT_EQ(Script("tri(900, -90, 0, 10, 30, 0, 10, 0, 30); print(PolyVertex(Vertex(100, -10, 0), 8));"),
              "( 900 , -90 , 0    )");
}
TEST_F(Nearest, APolygonThatFacesAwayCountsByItsDistanceInSpace) {
    facing = false;
    EXPECT_EQ(Script("tri(900, -90, 0, 10, 30, 0, 10, 0, 30); print(PolyVertex(Vertex(100, -10, 0), 8));"),
              "( 10  , 0   , 30   )");
}
TEST_F(Nearest, ADistanceInSpaceMayDisplaceAScreenDistance) {
    EXPECT_EQ(Script("tri(10, 10, 0, 2, -3, 0, 2, 30, 0); print(PolyVertex(Vertex(1, -3, 0), 8));"),
              "( 2   , -3  , 0    )");
}
TEST_F(Nearest, APointBehindTheEyeIsSearchedInSpace) {
    EXPECT_EQ(Script("tri(10, 10, 0, 2, -3, 0, 2, 30, 0); print(PolyVertex(Vertex(-5, 9, 0), 8));"),
              "( 2   , -3  , 0    )");
}
TEST_F(Nearest, ArgumentsAreChecked) {
    EXPECT_EQ(Failure("PolyVertex(Vertex(1, 2, 3), \"a\");"), "2 番目の引数の型が不正です。( PolyVertex )");
}

// ---- PolyPlane ----

constexpr const char* SLOPE =
    "var a = Vertex(0, 0, 0), b = Vertex(100, 0, 100), c = Vertex(0, 100, 0), p[3];"
    "p[0] = a; p[1] = b; p[2] = c;";

TEST_F(Nearest, PlaneAlongEachAxis) {
    EXPECT_EQ(Script(std::string(SLOPE) +
                     "print(PolyPlane(Vertex(7, 9, 0), 1, a, b, c), PolyPlane(Vertex(0, 9, 8), 2, p));"),
              "( 7   , 9   , 7    ) ( 8   , 9   , 8    )");
    EXPECT_EQ(
        Script(
            "print(PolyPlane(Vertex(5, 0, 7), 4, Vertex(0, 0, 0), Vertex(100, 50, 0), Vertex(0, 0, 100)));"),
        "( 5   , 2   , 7    )");
}
TEST_F(Nearest, PlaneAlongTheLineOfSight) {
    EXPECT_EQ(Script("print(PolyPlane(Vertex(10, 5, 2), 8, Vertex(100, 0, 0), Vertex(100, 50, 0), "
                     "Vertex(100, 0, 50)));"),
              "( 100 , 50  , 20   )");
}
TEST_F(Nearest, PlaneSeenEdgeOnWarnsAndLeavesTheVertex) {
    EXPECT_EQ(Script(std::string(SLOPE) +
                     "print(PolyPlane(Vertex(1, 2, 3), 4, p), PolyPlane(Vertex(1, 2, 3), 1, a, a, a));"),
              "( 1   , 2   , 3    ) ( 1   , 2   , 3    )");
    EXPECT_EQ(warnings, "平面投射できません\n平面投射できません\n");
}
TEST_F(Nearest, PlaneWithoutAWindowIsACopy) {
    EXPECT_EQ(Script(std::string(SLOPE) + "print(PolyPlane(Vertex(1, 2, 3, 4, 5, 6), 0, p), "
                                          "PolyPlane(Vertex(1, 2, 3), 3, a, b, c));"),
              "( 1   , 2   , 3    ) ( 1   , 2   , 3    )");
    EXPECT_EQ(warnings, "");
}
TEST_F(Nearest, PlaneDoesNotChangeItsArgument) {
    EXPECT_EQ(Script(std::string(SLOPE) + "var v = Vertex(7, 9, 0); PolyPlane(v, 1, p); print(v);"),
              "( 7   , 9   , 0    )");
}
TEST_F(Nearest, PlaneReportsEveryBadArgumentAlike) {
    const std::string expected = "引数の型が不正です。(Vertex:PolyPlane)";
    for (const char* call :
         {"PolyPlane(a);", "PolyPlane(a, 1);", "PolyPlane(a, 1, a, b);", "PolyPlane(a, 1, a, b, c, a);",
          "PolyPlane(a, 1.0, p);", "PolyPlane(a, 1, a, b, 5);", "var q[2]; PolyPlane(a, 1, q);",
          "var q[4]; PolyPlane(a, 1, q);", "var q[3]; PolyPlane(a, 1, q);",
          "PolyPlane(a, \"x\", a, b, c);"}) {
        EXPECT_EQ(Failure(std::string(SLOPE) + call), expected) << call;
    }
}

}  // namespace
}  // namespace quelmark::test
