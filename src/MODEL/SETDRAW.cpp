#include "MODEL/SETDRAW.h"

#include <utility>
#include <vector>

#include "ML/FUNC.h"
#include "MODEL/EDGE.h"
#include "MODEL/VERSET.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

// The mode behind the set: any number but LINE_OR draws what drawing it again takes away.
LineMode ModeOf(std::int32_t argc, const DataCell* argv) {
    return argc > 1 && argv[1].integer == LINE_OR ? LINE_OR : LINE_XOR;
}

std::int32_t DrawVertex(std::int32_t, std::int32_t argc, DataCell* argv) {
    std::vector<ModelPoint> points;
    points.reserve(VertexSetElements(argv[0]).size());
    for (const VertexRecord& vertex : VertexSetElements(argv[0])) {
        points.push_back(ViewConverted(vertex));
    }
    OverlayModelMarks(points, ModeOf(argc, argv));
    return NO_RESULT;
}

ModelPoint DisplayPoint(const EdgeEnd& end) {
    return ViewConverted(VertexRecord{end.x, end.y, end.z, 0, 0, 0, 0, 0});
}

std::int32_t DrawEdge(std::int32_t, std::int32_t argc, DataCell* argv) {
    std::vector<ModelLine> lines;
    lines.reserve(EdgeElements(argv[0]).size());
    for (const EdgeRecord& edge : EdgeElements(argv[0])) {
        lines.push_back({DisplayPoint(edge.first), DisplayPoint(edge.second)});
    }
    OverlayModelLines(std::move(lines), ModeOf(argc, argv));
    return NO_RESULT;
}

// "DrawEdge" reports its arguments under a borrowed name: scripts know it so.
constexpr BuiltIn FUNCTIONS[] = {
    {"VertexSet", "DrawVertex", DrawVertex, Takes("DrawVertex", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"Edge", "DrawEdge", DrawEdge, Takes("EdgeSelectCount", {TYPE_OBJECT, TYPE_INT}, 1)},
};

}  // namespace

void SetDrawRegister() {
    RegisterBuiltIns(FUNCTIONS);
}

}  // namespace quelmark
