// A fresh interpreter with the model functions and an empty model store for every test.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "MATLIB/SETVEC.h"
#include "MODEL/ATR.h"
#include "MODEL/EDGE.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/SELECT.h"
#include "MODEL/VERSET.h"
#include "MODEL/VERTEX.h"
#include "script_fixture.h"

namespace quelmark::test {

// Script functions that the tests share: `tri` appends a selected triangle, `quad` a selected quadrilateral,
// `line` prints a value and a line feed.
inline constexpr const char* PRELUDE = R"(
function tri(ax, ay, az, bx, by, bz, cx, cy, cz) {
    PolyVertexs(3);
    PolySetVertex(Vertex(ax, ay, az), 0);
    PolySetVertex(Vertex(bx, by, bz), 1);
    PolySetVertex(Vertex(cx, cy, cz), 2);
    PolyAppend(1);
}
function quad(a, b, c, d) {
    PolyVertexs(4);
    PolySetVertex(a, 0); PolySetVertex(b, 1); PolySetVertex(c, 2); PolySetVertex(d, 3);
    PolyAppend(1);
}
function line(value) { print(value); print("\n"); }
)";

class ModelTest : public ScriptTest {
  protected:
    void SetUp() override {
        ScriptTest::SetUp();
        sizes.functions = 2048;
        registerMore = [] {
            MatrixLibraryRegister();
            PolygonRegister();
            EdgeRegister();
            VertexSetRegister();
        };
        NewModel();
    }

    static void NewModel() {
        ModelExit();
        ModelInit(1 << 16, 4, 4, 32);
    }

    void TearDown() override {
        ModelExit();
        ScriptTest::TearDown();
    }

    // The shared functions run first, in a source of their own, so that positions in messages are the test's.
    std::string Script(std::string_view source) {
        if (hasStarted) {
            InterpreterExit();
        }
        hasStarted = true;
        Start();
        RunMore(PRELUDE);
        return RunMore(source);
    }
    std::string Failure(std::string_view source) {
        const std::string all = Script(source);
        const std::string prefix = "test.qms:1:  Error ";
        return message.empty()               ? "no error: " + all
               : message.starts_with(prefix) ? message.substr(prefix.size())
                                             : message;
    }

    // Appends a polygon of (x, y, z) triples.
    static void Add(std::initializer_list<VertexRecord> vertices, bool select = true,
                    std::uint16_t type = POLY_SIMPLE) {
        CurrentPolygon->type = type;
        CurrentPolygon->vers = static_cast<std::int16_t>(vertices.size());
        std::copy(vertices.begin(), vertices.end(), CurrentPolygon->vertex);
        PolygonAppend(select ? 1 : 0);
    }
    static VertexRecord At(int x, int y, int z) {
        VertexRecord v{};
        v.x = static_cast<std::int16_t>(x);
        v.y = static_cast<std::int16_t>(y);
        v.z = static_cast<std::int16_t>(z);
        return v;
    }
    static PolygonRecord& Polygon(int n) {
        PolygonRecord* polygon = PolygonTop();
        for (; n > 0; --n) {
            polygon = PolygonNext(polygon);
        }
        return *polygon;
    }
    bool hasStarted = false;
    // The selected state of every polygon, "1" or "0" each.
    static std::string Selected() {
        std::string text;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            text += polygon->select != 0 ? '1' : '0';
        }
        return text;
    }
};

}  // namespace quelmark::test
