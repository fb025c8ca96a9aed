// The redraw of a dense model in the three orthographic views against a plain Bresenham loop that writes the
// same lines, already projected, into an 8-bit buffer: medians and the median of the pairs' ratios, in one
// run.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ML/ML.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "view/VIEW.h"

namespace {

using namespace quelmark;
using Clock = std::chrono::steady_clock;

constexpr int ROUNDS = 15;

struct Line {
    int x0, y0, x1, y1;
};

// `count` quads over a wavy sheet, coordinates within ±2000.
void MakeModel(int count) {
    const int side = static_cast<int>(std::sqrt(count));
    const auto set = [side](int i, int u, int v) {
        const double x = 4000.0 * u / side - 2000, y = 4000.0 * v / side - 2000;
        CurrentPolygon->vertex[i] = {
            static_cast<std::int16_t>(x),
            static_cast<std::int16_t>(y),
            static_cast<std::int16_t>(900 * std::sin(x * 0.003) * std::cos(y * 0.002)),
            0,
            0,
            0,
            0,
            0};
    };
    CurrentPolygon->vers = 4;
    for (int u = 0; u < side; ++u) {
        for (int v = 0; v < side; ++v) {
            set(0, u, v);
            set(1, u + 1, v);
            set(2, u + 1, v + 1);
            set(3, u, v + 1);
            PolygonAppend(0);
        }
    }
}

std::vector<Line> ProjectedLines() {
    std::vector<Line> lines;
    for (std::int32_t view = WIN_XY; view <= WIN_ZX; view <<= 1) {
        for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
            const auto vertices = polygon->Vertices();
            for (std::size_t i = 0; i < vertices.size(); ++i) {
                const PanePoint a = ViewProject(ViewConverted(vertices[i]), view);
                const PanePoint b = ViewProject(ViewConverted(vertices[(i + 1) % vertices.size()]), view);
                lines.push_back({static_cast<int>(a.x), static_cast<int>(a.y), static_cast<int>(b.x),
                                 static_cast<int>(b.y)});
            }
        }
    }
    return lines;
}

// The textbook loop: one pixel a turn, an error term for the minor axis.
void PlainLine(std::uint8_t* pixels, int stride, const Line& line, std::uint8_t colour) {
    const int dx = std::abs(line.x1 - line.x0), dy = -std::abs(line.y1 - line.y0);
    const int sx = line.x0 < line.x1 ? 1 : -1, sy = line.y0 < line.y1 ? 1 : -1;
    int x = line.x0, y = line.y0, error = dx + dy;
    for (;;) {
        pixels[y * stride + x] = colour;
        if (x == line.x1 && y == line.y1) {
            return;
        }
        const int twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x += sx;
        }
        if (twice <= dx) {
            error += dx;
            y += sy;
        }
    }
}

double Milliseconds(Clock::time_point from) {
    return std::chrono::duration<double, std::milli>(Clock::now() - from).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void Measure(int quads, std::int32_t zoom) {
    ModelInit(static_cast<std::int32_t>(quads) * 96 + 4096, 4, 4, 16);
    AttrAlloc("a");
    MakeModel(quads);
    ViewInit();
    ViewLayout(1280, 1000, 16);
    ViewEnableDrawing(true);
    ViewSetZoom(zoom, 0);
    const std::vector<Line> lines = ProjectedLines();
    const auto inside = std::all_of(lines.begin(), lines.end(), [](const Line& l) {
        return std::min({l.x0, l.y0, l.x1, l.y1}) >= 0 && std::max(l.x0, l.x1) < 1280 &&
               std::max(l.y0, l.y1) < 1000;
    });
    if (!inside) {
        std::printf("the model does not fit at zoom %d\n", zoom);
        return;
    }
    std::vector<std::uint8_t> plain(1280 * 1000);
    std::vector<double> ours, theirs, ratios;
    for (int round = 0; round < ROUNDS; ++round) {
        auto from = Clock::now();
        ViewRedrawMask(WIN_ORTHOGRAPHIC, true);
        ours.push_back(Milliseconds(from));
        from = Clock::now();
        for (const Line& line : lines) {
            PlainLine(plain.data(), 1280, line, 7);
        }
        theirs.push_back(Milliseconds(from));
        ratios.push_back(ours.back() / theirs.back());
    }
    std::printf("%8d quads: redraw %7.2f ms, plain loop %7.2f ms, ratio %.2f (%u)\n", quads, Median(ours),
                Median(theirs), Median(ratios), static_cast<unsigned>(plain[500 * 1280 + 300]));
    ViewExit();
    ModelExit();
}

}  // namespace

int main() {
    InterpreterInit({});
    for (const int quads : {1000, 10000, 100000, 1000000}) {
        Measure(quads, -10);
    }
    InterpreterExit();
    return 0;
}
