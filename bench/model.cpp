// The model store over triangle meshes of 10,000, 100,000 and 1,000,000 polygons; "a_polygon" is the time for
// one of them. Two plain programs stand beside it: the loop that moves an array of the same vertices, and
// smooth shading over bare coordinates with an open-addressing table.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "MATLIB/SETMAT.h"
#include "MODEL/BULK.h"
#include "MODEL/EDGE.h"
#include "MODEL/OBJ.h"
#include "MODEL/SELECT.h"
#include "MODEL/SHADE.h"
#include "MODEL/SUFTEXT.h"
#include "MODEL/TRANSFORM.h"
#include "MODEL/VERSET.h"
#include "reader/objread.h"
#include "text/path.h"

namespace {

using namespace quelmark;

enum class Mesh { Terrain, Scattered, Flat };

VertexRecord At(std::int32_t x, std::int32_t y, std::int32_t z) {
    VertexRecord v{};
    v.x = CutTo16(x);
    v.y = CutTo16(y);
    v.z = CutTo16(z);
    return v;
}

// The corner (i, j) of a square mesh of `side` cells. A scattered mesh has the same neighbours at wild
// places, a flat one lies in a plane with a spacing of one unit, so that its coordinates repeat most.
VertexRecord Corner(Mesh mesh, std::int32_t side, std::int32_t i, std::int32_t j) {
    if (mesh == Mesh::Scattered) {
        std::uint64_t hash =
            (static_cast<std::uint64_t>(i) << 32 | static_cast<std::uint32_t>(j)) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 29;
        hash *= 0xBF58476D1CE4E5B9U;
        const auto word = [hash](int shift) {
            return static_cast<std::int32_t>(hash >> shift & 0xFFFF) - 32768;
        };
        return At(word(0), word(16), word(32));
    }
    if (mesh == Mesh::Flat) {
        return At(i - side / 2, j - side / 2, 0);
    }
    const std::int32_t step = std::max(1, 60000 / side);
    const double height = 3000 * std::sin(i * 0.05) * std::cos(j * 0.03);
    return At(i * step - 30000, j * step - 30000, static_cast<std::int32_t>(height));
}

constexpr std::int32_t OBJECTS = 256;

void MakeEmptyModel(std::int64_t n) {
    ModelExit();
    ModelInit(static_cast<std::int32_t>(n * 72 + 1024), OBJECTS, 4, 16);
}

// A new model of about n triangles, all selected.
void MakeModel(std::int64_t n, Mesh mesh) {
    MakeEmptyModel(n);
    const auto side = static_cast<std::int32_t>(std::sqrt(static_cast<double>(n) / 2));
    const auto add = [](const VertexRecord& a, const VertexRecord& b, const VertexRecord& c) {
        CurrentPolygon->vers = 3;
        CurrentPolygon->vertex[0] = a;
        std::memcpy(static_cast<void*>(CurrentPolygon->vertex + 1), &b, sizeof b);
        std::memcpy(static_cast<void*>(CurrentPolygon->vertex + 2), &c, sizeof c);
        PolygonAppend(1);
    };
    for (std::int32_t i = 0; i < side; ++i) {
        for (std::int32_t j = 0; j < side; ++j) {
            const VertexRecord a = Corner(mesh, side, i, j), b = Corner(mesh, side, i + 1, j);
            const VertexRecord c = Corner(mesh, side, i + 1, j + 1), d = Corner(mesh, side, i, j + 1);
            add(a, b, c);
            add(a, c, d);
        }
    }
}

void Report(benchmark::State& state, std::int64_t polygons) {
    state.counters["a_polygon"] =
        benchmark::Counter(static_cast<double>(polygons),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BenchSelectAll(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    for (auto _ : state) {
        SelectAll(true, SELECT_UPDATE);
    }
    Report(state, PolygonCount());
}

void BenchSelectArea(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    for (auto _ : state) {
        SelectArea(true, SELECT_UPDATE, At(-15000, -15000, -32767), At(15000, 15000, 32767));
    }
    Report(state, PolygonCount());
}

void BenchMove(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    if (state.range(1) != 0) {
        ShadeSelected(NORMAL_CREATE);
    }
    const Matrix turn = MatrixRotation(2, 1);
    for (auto _ : state) {
        PolygonMove(turn);
    }
    Report(state, PolygonCount());
}

// The same arithmetic over an array of the same vertices.
void BenchMoveArray(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    if (state.range(1) != 0) {
        ShadeSelected(NORMAL_CREATE);
    }
    std::vector<VertexRecord> vertices;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        vertices.insert(vertices.end(), polygon->Vertices().begin(), polygon->Vertices().end());
    }
    const Matrix turn = MatrixRotation(2, 1);
    for (auto _ : state) {
        const ModelTransform transform(turn);
        for (VertexRecord& v : vertices) {
            transform.MoveVertex(v);
        }
        benchmark::DoNotOptimize(vertices.data());
        benchmark::ClobberMemory();
    }
    Report(state, PolygonCount());
}

void BenchShade(benchmark::State& state, Mesh mesh) {
    MakeModel(state.range(0), mesh);
    for (auto _ : state) {
        ShadeSelected(NORMAL_ON);
    }
    Report(state, PolygonCount());
}

// Smooth shading as a plain program would do it: bare coordinates, three a triangle, and sums in a table that
// is probed one slot after the other.
struct BarePoint {
    std::int16_t x, y, z;
};
struct BareEntry {
    BarePoint point;
    std::uint16_t used;
    std::int16_t nx, ny, nz;
};

BareEntry& BareFind(std::vector<BareEntry>& table, int shift, const BarePoint& p) {
    std::uint64_t key = 0;
    std::memcpy(&key, &p, sizeof p);
    for (std::size_t at = (key * 0x9E3779B97F4A7C15U) >> shift;; at = (at + 1) & (table.size() - 1)) {
        BareEntry& entry = table[at];
        if (entry.used == 0 || std::memcmp(&entry.point, &p, sizeof p) == 0) {
            return entry;
        }
    }
}

void BareNormal(const BarePoint* p, std::int16_t normal[3]) {
    const float ax = static_cast<float>(p[1].x - p[0].x), ay = static_cast<float>(p[1].y - p[0].y),
                az = static_cast<float>(p[1].z - p[0].z);
    const float bx = static_cast<float>(p[2].x - p[0].x), by = static_cast<float>(p[2].y - p[0].y),
                bz = static_cast<float>(p[2].z - p[0].z);
    const float x = ay * bz - az * by, y = az * bx - ax * bz, z = ax * by - ay * bx;
    const float length = std::sqrt(x * x + y * y + z * z);
    const float scale = length > 0 ? 256 / length : 0;
    normal[0] = static_cast<std::int16_t>(x * scale);
    normal[1] = static_cast<std::int16_t>(y * scale);
    normal[2] = static_cast<std::int16_t>(z * scale);
}

void BenchShadeBare(benchmark::State& state, Mesh mesh) {
    MakeModel(state.range(0), mesh);
    std::vector<BarePoint> points;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        for (const VertexRecord& v : polygon->Vertices()) {
            points.push_back({v.x, v.y, v.z});
        }
    }
    std::vector<BarePoint> normals(points.size());
    for (auto _ : state) {
        const int bits = 64 - __builtin_clzll(points.size());
        std::vector<BareEntry> table(std::size_t{1} << bits);
        std::int16_t n[3];
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i % 3 == 0) {
                BareNormal(&points[i], n);
            }
            BareEntry& entry = BareFind(table, 64 - bits, points[i]);
            const int sign = entry.nx * n[0] + entry.ny * n[1] + entry.nz * n[2] < 0 ? -1 : 1;
            entry.point = points[i];
            entry.used = 1;
            entry.nx = CutTo16(entry.nx + sign * n[0]);
            entry.ny = CutTo16(entry.ny + sign * n[1]);
            entry.nz = CutTo16(entry.nz + sign * n[2]);
        }
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i % 3 == 0) {
                BareNormal(&points[i], n);
            }
            const BareEntry& sum = BareFind(table, 64 - bits, points[i]);
            const float x = sum.nx, y = sum.ny, z = sum.nz;
            const float side = x * n[0] + y * n[1] + z * n[2];
            const float length = std::sqrt(x * x + y * y + z * z);
            const float scale = length > 0 ? (side < 0 ? -256.0F : 256.0F) / length : 0;
            normals[i] = {static_cast<std::int16_t>(x * scale), static_cast<std::int16_t>(y * scale),
                          static_cast<std::int16_t>(z * scale)};
        }
        benchmark::DoNotOptimize(normals.data());
        benchmark::ClobberMemory();
    }
    Report(state, PolygonCount());
}

void BenchVertexSelect(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    for (auto _ : state) {
        benchmark::DoNotOptimize(VerticesOfSelected());
    }
    Report(state, PolygonCount());
}

void BenchEdgeSelect(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    for (auto _ : state) {
        benchmark::DoNotOptimize(EdgesOfSelected());
    }
    Report(state, PolygonCount());
}

// Every sixteenth polygon, and those that touch it.
void BenchAdjoint(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    const std::int32_t count = PolygonCount();
    std::vector<std::uint32_t> words(static_cast<std::size_t>(count / 32 + 1), 0x00010001);
    std::vector<std::uint32_t> result(words.size());
    for (auto _ : state) {
        SelectAdjoining({count, words}, {count, result});
    }
    Report(state, count);
}

void BenchDeleteSecond(benchmark::State& state) {
    std::int64_t count = 0;
    for (auto _ : state) {
        state.PauseTiming();
        MakeModel(state.range(0), Mesh::Terrain);
        count = PolygonCount();
        std::int16_t select = 0;
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            polygon->select = select ^= 1;
        }
        state.ResumeTiming();
        PolygonDelete();
    }
    Report(state, count);
}

// A shape file that goes with the benchmark.
struct ShapeFile {
    std::string host = "/tmp/quelmark-bench-" + std::to_string(getpid()) + ".suf";
    std::string name = *ScriptPath(host);
    ShapeFile() = default;
    ShapeFile(const ShapeFile&) = delete;
    ShapeFile& operator=(const ShapeFile&) = delete;
    ~ShapeFile() { std::remove(host.c_str()); }
};

bool WriteSelected(const ShapeFile& file) {
    return SaveBlock(file.name, ObjectText("mesh"), FILE_OVERWRITE);
}

void BenchWrite(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    const ShapeFile file;
    for (auto _ : state) {
        if (!WriteSelected(file)) {
            state.SkipWithError("the file was not written");
        }
    }
    Report(state, PolygonCount());
}

// The whole model, its polygons spread over all objects.
void BenchWriteObjects(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    for (std::int32_t i = 0; i < OBJECTS; ++i) {
        ObjAlloc("part" + std::to_string(i));
    }
    std::int32_t next = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->obj = CutTo16(next++ % OBJECTS);
    }
    const ShapeFile file;
    for (auto _ : state) {
        if (!SaveBlock(file.name, ModelText(false), FILE_OVERWRITE)) {
            state.SkipWithError("the file was not written");
        }
    }
    Report(state, PolygonCount());
}

void BenchRead(benchmark::State& state) {
    MakeModel(state.range(0), Mesh::Terrain);
    const std::int32_t count = PolygonCount();
    const ShapeFile file;
    WriteSelected(file);
    for (auto _ : state) {
        state.PauseTiming();
        MakeEmptyModel(count);
        state.ResumeTiming();
        if (!ReadShapeFile(file.name, 0) || PolygonCount() != count) {
            state.SkipWithError("the file was not read");
        }
    }
    Report(state, count);
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}
// Plain polygons, and with a normal at every vertex.
void SizesAndNormals(benchmark::internal::Benchmark* bench) {
    bench->ArgsProduct({{10000, 100000, 1000000}, {0, 1}})->Unit(benchmark::kMillisecond);
}

BENCHMARK(BenchSelectAll)->Apply(Sizes);
BENCHMARK(BenchSelectArea)->Apply(Sizes);
BENCHMARK(BenchMove)->Apply(SizesAndNormals);
BENCHMARK(BenchMoveArray)->Apply(SizesAndNormals);
BENCHMARK_CAPTURE(BenchShade, Terrain, Mesh::Terrain)->Apply(Sizes);
BENCHMARK_CAPTURE(BenchShadeBare, Terrain, Mesh::Terrain)->Apply(Sizes);
BENCHMARK_CAPTURE(BenchShade, Scattered, Mesh::Scattered)->Apply(Sizes);
BENCHMARK_CAPTURE(BenchShadeBare, Scattered, Mesh::Scattered)->Apply(Sizes);
BENCHMARK_CAPTURE(BenchShade, Flat, Mesh::Flat)->Apply(Sizes);
BENCHMARK_CAPTURE(BenchShadeBare, Flat, Mesh::Flat)->Apply(Sizes);
BENCHMARK(BenchVertexSelect)->Apply(Sizes);
BENCHMARK(BenchEdgeSelect)->Apply(Sizes);
BENCHMARK(BenchAdjoint)->Apply(Sizes);
BENCHMARK(BenchDeleteSecond)->Apply(Sizes)->Iterations(5);
BENCHMARK(BenchWrite)->Apply(Sizes);
BENCHMARK(BenchWriteObjects)->Apply(Sizes);
BENCHMARK(BenchRead)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
