// Which polygon, vertex or edge a pane point means.
#include <cmath>
#include <optional>
#include <random>

#include "MODEL/SELECT.h"
#include "view_fixture.h"

namespace quelmark::test {
namespace {

TEST_F(View3D, APickFindsTheNearestOutline) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    Triangle(0, 0, 0, -50, 0, 0, 0, -50, 0);
    EXPECT_EQ(ViewPick(200 + 30, 150 + 2, 12), PolygonTop());
    EXPECT_EQ(ViewPick(200 + 120, 150 - 120, 12), nullptr);
}
// Pixels from a pane point to where a vertex is drawn; nothing for one behind the eye.
std::optional<double> PixelsTo(std::int32_t x, std::int32_t y, const VertexRecord& vertex) {
    const std::int32_t view = ViewAt(x, y);
    const ModelPoint point = ViewConverted(vertex);
    if (view == WIN_PERS && ViewToEye(point).x < 1) {
        return std::nullopt;
    }
    const PanePoint at = view == WIN_PERS ? ViewProjectEye(ViewToEye(point)) : ViewProject(point, view);
    return std::hypot(static_cast<double>(at.x - x), static_cast<double>(at.y - y));
}

TEST_F(View3D, APickedVertexAndEdgeAreTheNearestOnTheScreen) {
    std::mt19937 random(22);
    std::uniform_int_distribution<int> place(-300, 300), across(0, 800), down(0, 560), coin(0, 1);
    for (int i = 0; i < 300; ++i) {
        Triangle(place(random) + 400, place(random), place(random), place(random), place(random),
                 place(random), place(random), place(random), place(random));
    }
    for (int round = 0; round < 400; ++round) {
        SelectCount = 0;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            polygon->select = static_cast<std::int16_t>(round % 2 == 1 && coin(random) != 0);
            polygon->flags = static_cast<std::uint16_t>(polygon->select == 0 && coin(random) != 0);
            SelectCount += polygon->select;
        }
        ViewState.frontOnly = round % 3 == 0;
        ViewSetZoom(round % 5 - 2, 0);
        if (round == 200) {
            ViewSetConversion(MatrixRotation(2, 30));
        }
        const std::int32_t x = across(random), y = down(random);
        const bool isPers = ViewAt(x, y) == WIN_PERS;
        double nearest = 1e30;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            if ((polygon->flags & POLYGON_INVISIBLE) != 0 || (SelectCount > 0 && polygon->select == 0) ||
                (isPers && ViewState.frontOnly && !ViewFacesViewer(*polygon))) {
                continue;
            }
            for (const VertexRecord& vertex : polygon->Vertices()) {
                nearest = std::min(nearest, PixelsTo(x, y, vertex).value_or(1e30));
            }
        }
        VertexRecord vertex{}, ends[2]{};
        ASSERT_TRUE(ViewPickVertex(x, y, vertex)) << round;
        EXPECT_NEAR(*PixelsTo(x, y, vertex), nearest, 2.5) << round;
        ASSERT_TRUE(ViewPickEdge(x, y, ends[0], ends[1])) << round;
        // No farther than the nearest vertex in front of the eye, unless its edges go behind it.
        if (!isPers) {
            const PanePoint a = ViewProject(ViewConverted(ends[0]), ViewAt(x, y));
            const PanePoint b = ViewProject(ViewConverted(ends[1]), ViewAt(x, y));
            const double ax = static_cast<double>(a.x - x), ay = static_cast<double>(a.y - y);
            const double dx = static_cast<double>(b.x - a.x), dy = static_cast<double>(b.y - a.y);
            const double part = std::clamp(-(ax * dx + ay * dy) / (dx * dx + dy * dy), 0.0, 1.0);
            EXPECT_LT(std::hypot(ax + part * dx, ay + part * dy), nearest + 2.5) << round;
        }
    }
}
TEST_F(View3D, OfVerticesInOnePlaceTheNearestToTheViewerIsPicked) {
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    Triangle(0, 0, 40, 50, 0, 40, 0, 50, 40);
    Triangle(0, 0, -40, 50, 0, -40, 0, 50, -40);
    SelectAll(false, SELECT_UPDATE);
    VertexRecord vertex{}, ends[2]{};
    ASSERT_TRUE(ViewPickVertex(200 + 48, 150, vertex));
    EXPECT_EQ(vertex.x, 50);
    EXPECT_EQ(vertex.z, 40);
    ASSERT_TRUE(ViewPickEdge(200 + 25, 150 + 3, ends[0], ends[1]));
    EXPECT_EQ(ends[0].z, 40);
    EXPECT_EQ(ends[1].z, 40);
    EXPECT_EQ(ends[0].x + ends[1].x, 50);
    EXPECT_EQ(ends[0].y + ends[1].y, 0);
}
TEST_F(View3D, NothingIsPickedFromAnEmptyModelOrOutsideTheViews) {
    VertexRecord vertex{}, ends[2]{};
    EXPECT_FALSE(ViewPickVertex(200, 150, vertex));
    EXPECT_FALSE(ViewPickEdge(200, 150, ends[0], ends[1]));
    Triangle(0, 0, 0, 50, 0, 0, 0, 50, 0);
    EXPECT_FALSE(ViewPickVertex(-5, 150, vertex));
    EXPECT_FALSE(ViewPickEdge(200, 5000, ends[0], ends[1]));
}

}  // namespace
}  // namespace quelmark::test
