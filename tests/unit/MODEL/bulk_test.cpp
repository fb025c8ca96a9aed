// What is done to every selected polygon: moving, mapping, hiding, shading.
#include "MODEL/BULK.h"

#include "MODEL/SHADE.h"
#include "model_fixture.h"

namespace quelmark::test {
namespace {

class Bulk : public ModelTest {
  protected:
    static std::array<int, 3> Normal(const VertexRecord& v) { return {v.nx, v.ny, v.nz}; }
    using Three = std::array<int, 3>;
    // The six faces of a cube from -s to s, all seen from outside.
    static void AddCube(int s) {
        Add({At(-s, -s, s), At(s, -s, s), At(s, s, s), At(-s, s, s)});
        Add({At(-s, s, -s), At(s, s, -s), At(s, -s, -s), At(-s, -s, -s)});
        Add({At(s, -s, -s), At(s, s, -s), At(s, s, s), At(s, -s, s)});
        Add({At(-s, -s, s), At(-s, s, s), At(-s, s, -s), At(-s, -s, -s)});
        Add({At(-s, s, s), At(s, s, s), At(s, s, -s), At(-s, s, -s)});
        Add({At(-s, -s, -s), At(s, -s, -s), At(s, -s, s), At(-s, -s, s)});
    }
};

TEST_F(Bulk, MoveTransformsOnlyTheSelected) {
    Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); PolyAppend(0); PolyMove(UNIT_MATRIX.move(5, -6, 7));");
    EXPECT_EQ(Polygon(0).vertex[1].x, 15);
    EXPECT_EQ(Polygon(0).vertex[1].y, -6);
    EXPECT_EQ(Polygon(0).vertex[1].z, 7);
    EXPECT_EQ(Polygon(1).vertex[1].x, 10);
}
TEST_F(Bulk, MoveShiftsFractionsDown) {
    Script("tri(3, -3, 0, 1, -1, 0, 32767, -32767, 2); PolyMove(UNIT_MATRIX.scale(0.5, 0.5, 0.5));");
    EXPECT_EQ(Polygon(0).vertex[0].x, 1);
    EXPECT_EQ(Polygon(0).vertex[0].y, -2);
    EXPECT_EQ(Polygon(0).vertex[2].x, 16383);
    EXPECT_EQ(Polygon(0).vertex[2].y, -16384);
}
TEST_F(Bulk, MoveAddsTheFractionOfTheTranslationBeforeTheShift) {
    Script(
        "tri(1, 1, 1, 0, 0, 0, 0, 1, 0); PolyMove(UNIT_MATRIX.scale(0.5, 0.5, 0.5) * UNIT_MATRIX.move(0.5, "
        "-0.5, 2.25));");
    EXPECT_EQ(Polygon(0).vertex[0].x, 1);
    EXPECT_EQ(Polygon(0).vertex[0].y, 0);
    EXPECT_EQ(Polygon(0).vertex[0].z, 2);
}
TEST_F(Bulk, MoveWrapsAt16Bits) {
    Script("tri(32767, -32767, 0, 0, 0, 0, 0, 1, 0); PolyMove(UNIT_MATRIX.move(1, -2, 65536));");
    EXPECT_EQ(Polygon(0).vertex[0].x, -32768);
    EXPECT_EQ(Polygon(0).vertex[0].y, 32767);
    EXPECT_EQ(Polygon(0).vertex[0].z, 0);
}
TEST_F(Bulk, MoveTurnsNormalsByTheInverseTransposeAndKeepsTheirLength) {
    Script(
        "PolyType(POLY_SHADE); PolyVertexs(3); PolySetVertex(Vertex(0, 0, 0, 181, 181, 0), 0);"
        "PolySetVertex(Vertex(10, 0, 0), 1); PolySetVertex(Vertex(0, 10, 0), 2); PolyAppend(1);"
        "PolyMove(UNIT_MATRIX.scale(2, 1, 1));");
    EXPECT_EQ(Normal(Polygon(0).vertex[0]), (Three{113, 229, 0}));
    EXPECT_EQ(Normal(Polygon(0).vertex[1]), (Three{0, 0, 0}));
    EXPECT_EQ(Polygon(0).normal[2], 256);
}
TEST_F(Bulk, MoveKeepsTheMapping) {
    Script(
        "PolyType(POLY_UV); PolyVertexs(1); PolySetVertex(Vertex(1, 1, 1, 0, 0, 0, 12, 34), 0); "
        "PolyAppend(1);"
        "PolyMove(UNIT_MATRIX.scale(2, 2, 2));");
    EXPECT_EQ(Polygon(0).vertex[0].u, 12);
    EXPECT_EQ(Polygon(0).vertex[0].v, 34);
}
TEST_F(Bulk, MoveBySingularAndHugeMatricesIsHarmless) {
    EXPECT_EQ(Script("tri(1, 2, 3, 4, 5, 6, 7, 8, 9); PolyShade(2); PolyMove(UNIT_MATRIX.scale(0, 0, 0));"
                     "PolyMove(UNIT_MATRIX.scale(1e30, -1e30, 1e30).move(1e30, 1e30, -1e30)); PolyLoad(); "
                     "print(PolyVertexs());"),
              "3");
}
TEST_F(Bulk, HidingMarksTheUnselectedAndKeepsTheSelected) {
    Script("tri(0, 0, 0, 1, 0, 0, 0, 1, 0); PolyAppend(0); PolyInvisible(1);");
    EXPECT_EQ(Polygon(0).flags & POLYGON_INVISIBLE, 0);
    EXPECT_EQ(Polygon(1).flags & POLYGON_INVISIBLE, POLYGON_INVISIBLE);
    RunMore("PolyInvisible(FALSE);");
    EXPECT_EQ(Polygon(1).flags & POLYGON_INVISIBLE, 0);
}

// ---- mapping ----

TEST_F(Bulk, MapRoundsTheFirstTwoColumnsWithHalvesTowardZero) {
    Script("tri(3, -3, 0, 1, -1, 0, 5, 7, 2); PolyMap(1, UNIT_MATRIX.scale(0.5, 0.5, 0.5));");
    EXPECT_EQ(Polygon(0).type, POLY_UV);
    EXPECT_EQ(Polygon(0).vertex[0].u, 1);
    EXPECT_EQ(Polygon(0).vertex[0].v, -1);
    EXPECT_EQ(Polygon(0).vertex[2].u, 2);
    EXPECT_EQ(Polygon(0).vertex[2].v, 3);
}
TEST_F(Bulk, MapRoundsToTheNearest) {
    Script("tri(3, -3, 0, 1, -1, 0, 5, 7, 2); PolyMap(1, UNIT_MATRIX.scale(0.51, 0.51, 0.51));");
    EXPECT_EQ(Polygon(0).vertex[0].u, 2);
    EXPECT_EQ(Polygon(0).vertex[0].v, -2);
}
TEST_F(Bulk, MapWithoutAMatrixTakesThePosition) {
    Script("tri(3, -4, 0, 1, -1, 0, 5, 7, 2); PolyMap(TRUE);");
    EXPECT_EQ(Polygon(0).vertex[0].u, 3);
    EXPECT_EQ(Polygon(0).vertex[0].v, -4);
}
TEST_F(Bulk, MapKeepsTheCoordinatesWithinTheLimits) {
    Script("tri(30000, -30000, 0, 100, 50, 0, 0, 0, 0); PolyMap(1, UNIT_MATRIX, -10, -20, 30, 40);");
    EXPECT_EQ(Polygon(0).vertex[0].u, 30);
    EXPECT_EQ(Polygon(0).vertex[0].v, -20);
    EXPECT_EQ(Polygon(0).vertex[1].v, 40);
    Script("SelectAll(1); PolyMap(1, UNIT_MATRIX.move(100000, -100000, 0));");
    EXPECT_EQ(Polygon(0).vertex[0].u, 32767);
    EXPECT_EQ(Polygon(0).vertex[0].v, -32767);
}
TEST_F(Bulk, MapFarBeyondTheLimitsEndsAtTheLimitOnItsSide) {
    Script("tri(100, -400, 0, 32767, -32767, 0, -1, 1, 0); PolyMap(1, UNIT_MATRIX.scale(1000, 30000, 1));");
    EXPECT_EQ(Polygon(0).vertex[0].u, 32767);
    EXPECT_EQ(Polygon(0).vertex[0].v, -32767);
    EXPECT_EQ(Polygon(0).vertex[1].u, 32767);
    EXPECT_EQ(Polygon(0).vertex[2].u, -1000);
    EXPECT_EQ(Polygon(0).vertex[2].v, 30000);
}
TEST_F(Bulk, MapWithFlagZeroClearsTheTypeAndKeepsTheCoordinatesUntilASave) {
    Script("tri(3, -4, 0, 1, -1, 0, 5, 7, 2); PolyMap(1); PolyMap(0);");
    EXPECT_EQ(Polygon(0).type, POLY_SIMPLE);
    EXPECT_EQ(Polygon(0).vertex[0].u, 3);
    RunMore("PolyLoadInit(); PolyLoad(); PolySave();");
    EXPECT_EQ(Polygon(0).vertex[0].u, 0);
}
TEST_F(Bulk, MapWithNothingSelectedChangesNothing) {
    Script("tri(3, -4, 0, 1, -1, 0, 5, 7, 2); SelectAll(0); PolyMap(1);");
    EXPECT_EQ(Polygon(0).type, POLY_SIMPLE);
}
TEST_F(Bulk, MapReportsBadArguments) {
    EXPECT_EQ(Failure("PolyMap();"), "引数の数が不正です。( PolyMap )");
    EXPECT_EQ(Failure("PolyMap(1, UNIT_MATRIX, 1, 2);"), "引数の数が不正です。( PolyMap )");
    EXPECT_EQ(Failure("PolyMap(1, Vertex(1, 2, 3));"), "2 番目の引数の型が不正です。( PolyMap )");
    EXPECT_EQ(Failure("PolyMap(1, 2);"), "2 番目の引数の型が不正です。( PolyMap )");
    EXPECT_EQ(Failure("PolyMap(1, UNIT_MATRIX, 1, 2, 3, \"a\");"), "6 番目の引数の型が不正です。( PolyMap )");
}

// ---- shading ----

TEST_F(Bulk, FlatShadingGivesEveryVertexThePlaneNormal) {
    Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); PolyAppend(0); PolyShade(NORMAL_CREATE);");
    EXPECT_EQ(Polygon(0).type, POLY_SHADE);
    EXPECT_EQ(Normal(Polygon(0).vertex[2]), (Three{0, 0, 256}));
    EXPECT_EQ(Polygon(1).type, POLY_SIMPLE);
}
TEST_F(Bulk, ShadingOffKeepsTheNormalsUntilASave) {
    Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); PolyMap(1); PolyShade(NORMAL_CREATE); PolyShade(NORMAL_OFF);");
    EXPECT_EQ(Polygon(0).type, POLY_UV);
    EXPECT_EQ(Polygon(0).vertex[0].nz, 256);
}
TEST_F(Bulk, SmoothShadingOfACubePointsAlongTheDiagonals) {
    AddCube(100);
    ShadeSelected(NORMAL_ON);
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        EXPECT_EQ(polygon->type, POLY_SHADE);
        for (const VertexRecord& v : polygon->Vertices()) {
            EXPECT_EQ(Normal(v), (Three{v.x > 0 ? 147 : -147, v.y > 0 ? 147 : -147, v.z > 0 ? 147 : -147}));
        }
    }
}
TEST_F(Bulk, SmoothShadingOfCoplanarNeighboursIsTheirNormal) {
    Add({At(0, 0, 0), At(10, 0, 0), At(10, 10, 0), At(0, 10, 0)});
    Add({At(10, 0, 0), At(20, 0, 0), At(20, 10, 0), At(10, 10, 0)});
    ShadeSelected(NORMAL_ON);
    for (int n = 0; n < 2; ++n) {
        for (const VertexRecord& v : Polygon(n).Vertices()) {
            EXPECT_EQ(Normal(v), (Three{0, 0, 256}));
        }
    }
}
TEST_F(Bulk, SmoothShadingWithAReversedCopyKeepsTheNormalsOfBothSides) {
    Add({At(0, 0, 0), At(10, 0, 0), At(0, 10, 0)});
    Add({At(0, 10, 0), At(10, 0, 0), At(0, 0, 0)});
    ShadeSelected(NORMAL_ON);
    EXPECT_EQ(Normal(Polygon(0).vertex[0]), (Three{0, 0, 256}));
    EXPECT_EQ(Normal(Polygon(1).vertex[0]), (Three{0, 0, -256}));
}
TEST_F(Bulk, SmoothShadingTakesOnlySelectedNeighbours) {
    Add({At(0, 0, 0), At(10, 0, 0), At(0, 10, 0)});
    Add({At(0, 0, 0), At(10, 0, 0), At(0, 0, 10)}, false);
    ShadeSelected(NORMAL_ON);
    EXPECT_EQ(Normal(Polygon(0).vertex[0]), (Three{0, 0, 256}));
    EXPECT_EQ(Polygon(1).type, POLY_SIMPLE);
}
TEST_F(Bulk, SmoothShadingOfADegeneratePolygonIsZero) {
    Add({At(0, 0, 0), At(10, 0, 0), At(20, 0, 0)});
    ShadeSelected(NORMAL_ON);
    EXPECT_EQ(Normal(Polygon(0).vertex[0]), (Three{0, 0, 0}));
}
TEST_F(Bulk, AnyOtherModeShadesSmooth) {
    Script("tri(0, 0, 0, 10, 0, 0, 0, 10, 0); PolyShade(TRUE);");
    EXPECT_EQ(Polygon(0).vertex[0].nz, 256);
    Script("SelectAll(1); PolyShade(-7);");
    EXPECT_EQ(Polygon(0).type, POLY_SHADE);
}
TEST_F(Bulk, ShadingWithNothingSelectedChangesNothing) {
    AddCube(10);
    Script("SelectAll(0); PolyShade(NORMAL_ON); PolyShade(NORMAL_CREATE);");
    EXPECT_EQ(Polygon(0).type, POLY_SIMPLE);
}
TEST_F(Bulk, ReversingTurnsTheNormalsOfShadedPolygonsOnly) {
    Script(
        "tri(0, 0, 0, 10, 0, 0, 0, 10, 0); PolyShade(NORMAL_CREATE); tri(0, 0, 0, 10, 0, 0, 0, 10, 0); "
        "PolyShadeInv();");
    EXPECT_EQ(Polygon(0).vertex[0].nz, -256);
    EXPECT_EQ(Polygon(1).vertex[0].nz, 0);
}
TEST_F(Bulk, TheTableHasOneSlotMoreThanAPowerOfTwoNeeds) {
    for (const auto& [vertices, size] : {std::pair{7, 8}, {8, 16}, {1, 2}, {15, 16}, {16, 32}}) {
        HashInit(vertices);
        EXPECT_EQ(HashSize, size) << vertices;
        EXPECT_EQ(HashMask, size - 1);
        HashExit();
    }
}
TEST_F(Bulk, TheTableKeepsCollidingPositionsApart) {
    HashInit(7);
    const std::int16_t normal[3] = {0, 0, 256};
    for (int i = 0; i < 7; ++i) {
        HashAdd(At(i * 181, i, 0), normal);
        HashAdd(At(i * 181, i, 0), normal);
    }
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(HashFind(At(i * 181, i, 0)).nz, 512) << i;
    }
    EXPECT_EQ(HashFind(At(1, 2, 3)).flag, 0);
    HashExit();
}
// Positions of few keys, and some of them twice: each must stand where comparing with every entry of the
// probe, from the key in steps of 997, puts it.
TEST_F(Bulk, LongProbesEndWherePlainProbingEnds) {
    HashInit(3000);
    const std::int16_t normal[3] = {0, 0, 256};
    std::vector<VertexRecord> slots(static_cast<std::size_t>(HashSize));
    std::vector<bool> used(slots.size());
    for (int i = 0; i < 3000; ++i) {
        const int n = i % 7 == 6 ? i / 2 : i;
        const VertexRecord v = At(n % 180 * 181 + n % 2, -(n / 180 % 60) * 479, n % 3 * 571);
        std::int32_t at = ((v.z % 571) * 997 + (v.y % 479) * 97 + (v.x % 181)) & HashMask;
        const auto holds = [&](const VertexRecord& other) {
            return other.x == v.x && other.y == v.y && other.z == v.z;
        };
        while (used[static_cast<std::size_t>(at)] && !holds(slots[static_cast<std::size_t>(at)])) {
            at = (at + 997) & HashMask;
        }
        used[static_cast<std::size_t>(at)] = true;
        slots[static_cast<std::size_t>(at)] = v;
        EXPECT_EQ(&HashFind(v) - HashTable, at) << i;
        EXPECT_EQ(&HashAdd(v, normal) - HashTable, at) << i;
    }
    HashExit();
}
TEST_F(Bulk, AFullTableTripsTheProbeCheck) {
    HashInit(1);
    const std::int16_t normal[3] = {0, 0, 256};
    HashAdd(At(1, 0, 0), normal);
    HashAdd(At(2, 0, 0), normal);
    EXPECT_THROW(HashAdd(At(3, 0, 0), normal), ScriptAbort);
    EXPECT_NE(message.find("i < HashSize"), std::string::npos);
    HashTable[0].flag = 5;
    EXPECT_THROW(HashFind(At(4, 0, 0)), ScriptAbort);
    EXPECT_NE(message.find("HashTable[n].flag == TRUE"), std::string::npos);
    HashExit();
}
TEST_F(Bulk, SumsOfNormalsWrapAt16Bits) {
    HashInit(300);
    const std::int16_t normal[3] = {0, 0, 256};
    for (int i = 0; i < 128; ++i) {
        HashAdd(At(0, 0, 0), normal);
    }
    EXPECT_EQ(HashFind(At(0, 0, 0)).nz, -32768);
    HashExit();
}

}  // namespace
}  // namespace quelmark::test
