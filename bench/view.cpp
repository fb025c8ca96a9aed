// The four views, each measure beside the one it is compared with, in one run on one core: redraws and lines
// against a plain Bresenham loop that writes the same lines, already projected, into an 8-bit buffer; a view
// of a small part against a bare walk over the records; what changes no polygon against a copy of the frame.
// Times are the thread's own, so that another program's turn does not count; figures are medians over the
// rounds, ratios the median of the pairs.
//
//   taskset -c 1 bench_view [most quads]
#include <time.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "ML/ML.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace {

using namespace quelmark;

constexpr int WIDTH = 1280, HEIGHT = 1000;
constexpr int LINES_OF_QUAD = 4;
unsigned seen = 0;  // what the loops made, so that none is left out

struct Line {
    int x0, y0, x1, y1;
};

double Now() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Pair {
    double ours, measure, ratio;  // milliseconds
};

// Both in turn, `rounds` times, each `repeats` times a round.
template <typename Ours, typename Measure>
Pair Compare(int rounds, int repeats, Ours ours, Measure measure) {
    std::vector<double> a, b, ratios;
    const auto time = [repeats](auto& what) {
        const double from = Now();
        for (int i = 0; i < repeats; ++i) {
            what();
        }
        return (Now() - from) / repeats;
    };
    ours();
    measure();
    for (int round = 0; round < rounds; ++round) {
        a.push_back(time(ours));
        b.push_back(time(measure));
        ratios.push_back(a.back() / b.back());
    }
    return {Median(a), Median(b), Median(ratios)};
}

int RepeatsFor(int quads) {
    return std::max(1, 20000 / quads);
}

// ---- models ----

void Corner(int i, double x, double y, double z) {
    CurrentPolygon->vertex[i] = {static_cast<std::int16_t>(x),
                                 static_cast<std::int16_t>(y),
                                 static_cast<std::int16_t>(z),
                                 0,
                                 0,
                                 0,
                                 0,
                                 0};
}

// `count` quads over a wavy sheet, coordinates within ±2000.
void MakeSheet(int count) {
    const int side = static_cast<int>(std::lround(std::sqrt(count)));
    const auto set = [side](int i, int u, int v) {
        const double x = 4000.0 * u / side - 2000, y = 4000.0 * v / side - 2000;
        Corner(i, x, y, 900 * std::sin(x * 0.003) * std::cos(y * 0.002));
    };
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

// Quads anywhere within ±450 and in any direction, their corners `size` from their middles.
void MakeScatter(int count, int size) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(size - 450.0, 450.0 - size), turn(0, 6.283), stretch(0.4, 1);
    for (int i = 0; i < count; ++i) {
        const double x = place(random), y = place(random), angle = turn(random),
                     part = stretch(random) * size;
        const double c = std::cos(angle), s = std::sin(angle);
        Corner(0, x + size * c, y + size * s, 0);
        Corner(1, x - part * s, y + part * c, 0);
        Corner(2, x - size * c, y - size * s, 0);
        Corner(3, x + part * s, y - part * c, 0);
        PolygonAppend(0);
    }
}

// From the front and above, the sheet within the view.
constexpr Matrix ABOVE{{{0, -1, 0}, {0.8F, 0, 0.6F}, {-0.6F, 0, 0.8F}, {7500, 0, 0}}};

template <typename Make>
void Begin(int quads, std::int32_t zoom, Make make) {
    ModelInit(static_cast<std::int32_t>(quads) * 96 + 4096, 4, 4, 16);
    AttrAlloc("a");
    CurrentPolygon->vers = LINES_OF_QUAD;
    make();
    ViewInit();
    ViewLayout(WIDTH, HEIGHT, 16);
    ViewSetPerspective(ABOVE);
    ViewSetZoom(zoom, 0);
    ViewEnableDrawing(true);
}

void End() {
    ViewExit();
    ModelExit();
}

// ---- the measures ----

PanePoint Projected(const VertexRecord& vertex, std::int32_t view) {
    const ModelPoint point = ViewConverted(vertex);
    return view == WIN_PERS ? ViewProjectEye(ViewToEye(point)) : ViewProject(point, view);
}

// The lines of the model in the views of a mask, each view's in one piece; all of them must lie in the frame.
std::vector<Line> ProjectedLines(std::int32_t mask) {
    std::vector<Line> lines;
    const auto inside = [](const PanePoint& p) {
        return p.x >= 0 && p.x < WIDTH && p.y >= 0 && p.y < HEIGHT;
    };
    for (std::int32_t view = WIN_XY; view <= WIN_PERS; view <<= 1) {
        for (PolygonRecord* polygon = PolygonTop(); (mask & view) != 0 && polygon != nullptr;
             polygon = PolygonNext(polygon)) {
            const auto vertices = polygon->Vertices();
            for (std::size_t i = 0; i < vertices.size(); ++i) {
                const PanePoint a = Projected(vertices[i], view);
                const PanePoint b = Projected(vertices[(i + 1) % vertices.size()], view);
                if (!inside(a) || !inside(b)) {
                    std::printf("a line of view %d leaves the frame\n", view);
                    std::exit(1);
                }
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

std::vector<std::uint8_t> plain(WIDTH* HEIGHT);

void DrawPlain(const std::vector<Line>& lines) {
    for (const Line& line : lines) {
        PlainLine(plain.data(), WIDTH, line, 7);
    }
    seen += plain[500 * WIDTH + 300];
}

void WalkBare() {
    unsigned count = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        count += static_cast<unsigned>(polygon->vers);
    }
    seen += count;
}

void CopyFrame() {
    static std::vector<std::uint8_t> copy;
    copy.resize(ViewFrame.pixels.size());
    std::memcpy(copy.data(), ViewFrame.pixels.data(), copy.size());
    seen += copy[700];
}

// ---- redraws ----

void MeasureRedraws(int quads, int rounds) {
    const int repeats = RepeatsFor(quads);
    Begin(quads, -10, [=] { MakeSheet(quads); });
    const auto redraw = [](std::int32_t mask) { return [mask] { ViewRedrawMask(mask, true); }; };
    std::vector<Line> lines = ProjectedLines(WIN_ALL);
    const Pair four = Compare(rounds, repeats, redraw(WIN_ALL), [&] { DrawPlain(lines); });
    std::printf("redraw of four views         %8d quads %9.3f ms, plain loop %9.3f ms, ratio %5.2f\n", quads,
                four.ours, four.measure, four.ratio);
    lines = ProjectedLines(WIN_ORTHOGRAPHIC);
    const Pair three = Compare(rounds, repeats, redraw(WIN_ORTHOGRAPHIC), [&] { DrawPlain(lines); });
    std::printf("redraw of three views        %8d quads %9.3f ms, plain loop %9.3f ms, ratio %5.2f\n", quads,
                three.ours, three.measure, three.ratio);
    ViewSetMask(WIN_XY);
    ViewSetZoom(-5, 0);
    lines = ProjectedLines(WIN_XY);
    const Pair one = Compare(rounds, repeats, redraw(WIN_XY), [&] { DrawPlain(lines); });
    std::printf("redraw of one view           %8d quads %9.3f ms, plain loop %9.3f ms, ratio %5.2f\n", quads,
                one.ours, one.measure, one.ratio);
    ViewSetZoom(16, 0);
    for (const bool clear : {true, false}) {
        const Pair part = Compare(
            rounds, repeats, [clear] { ViewRedrawMask(WIN_XY, clear); }, WalkBare);
        std::printf("one view of a small part%s%7d quads %9.3f ms, bare walk  %9.3f ms, ratio %5.2f\n",
                    clear ? ", fill" : "      ", quads, part.ours, part.measure, part.ratio);
    }
    End();
}

// ---- lines ----

void MeasureLines(const char* name, int quads, int size, int rounds) {
    Begin(quads, 1, [=] { MakeScatter(quads, size); });
    ViewSetMask(WIN_XY);
    const std::vector<Line> lines = ProjectedLines(WIN_XY);
    double pixels = 0;
    for (const Line& line : lines) {
        pixels += std::max(std::abs(line.x1 - line.x0), std::abs(line.y1 - line.y0)) + 1;
    }
    const auto count = static_cast<double>(lines.size());
    const Pair pair = Compare(
        rounds, RepeatsFor(quads), [] { ViewRedrawMask(WIN_XY, false); }, [&] { DrawPlain(lines); });
    std::printf(
        "%s lines of %5.1f pixels: %7.2f million/s, plain loop %7.2f million/s, ratio of times %5.2f\n", name,
        pixels / count, count / pair.ours / 1e3, count / pair.measure / 1e3, pair.ratio);
    End();
}

// ---- what draws no polygon ----

void MeasureCursor(int quads, int rounds) {
    Begin(quads, -10, [=] { MakeSheet(quads); });
    ViewRedraw(WHOLE_AREA, true);
    CursorShow(true);
    std::int32_t step = 0;
    const auto move = [&step] {
        step = (step + 37) % 1000;
        CursorMove({step, 500 - step, step / 2});
    };
    const Pair pair = Compare(rounds, 200, move, CopyFrame);
    std::printf("cursor move                  %8d quads %9.4f ms, frame copy %9.4f ms, ratio %5.2f\n", quads,
                pair.ours, pair.measure, pair.ratio);
    End();
}

void MeasurePalette(int rounds) {
    Begin(10000, -10, [] { MakeSheet(10000); });
    ViewRedraw(WHOLE_AREA, true);
    std::vector<std::uint32_t> picture(WIDTH * HEIGHT);
    FramePalette palette{};
    for (std::size_t i = 0; i < palette.size(); ++i) {
        palette[i] = static_cast<std::uint32_t>(0x0F1E2D * i);
    }
    const auto expand = [&](const PixelRect& area) {
        ExpandFrame(ViewFrame, area, palette, picture.data(), WIDTH);
        seen += picture[static_cast<std::size_t>(WIDTH * area.top)];
    };
    const Pair whole = Compare(
        rounds, 20, [&] { expand(ViewFrame.Bounds()); }, CopyFrame);
    std::printf("expansion to 32 bits                        %9.4f ms, frame copy %9.4f ms, ratio %5.2f\n",
                whole.ours, whole.measure, whole.ratio);
    const auto change = [&](std::uint8_t entry) {
        return [&, entry] {
            palette[entry] += 3;
            expand(RowsWith(ViewFrame, entry));
        };
    };
    const Pair all = Compare(rounds, 20, change(COLOUR_BACKGROUND), CopyFrame);
    std::printf("palette change, all rows                    %9.4f ms, frame copy %9.4f ms, ratio %5.2f\n",
                all.ours, all.measure, all.ratio);
    const Pair none = Compare(rounds, 20, change(COLOUR_SELECTED), CopyFrame);
    std::printf("palette change, no row                      %9.4f ms, frame copy %9.4f ms, ratio %5.2f\n",
                none.ours, none.measure, none.ratio);
    End();
}

}  // namespace

int main(int argc, char** argv) {
    const int most = argc > 1 ? std::atoi(argv[1]) : 1000000;
    InterpreterInit({});
    for (const int quads : {1000, 10000, 100000, 1000000}) {
        if (quads <= most) {
            MeasureRedraws(quads, 15);
        }
    }
    MeasureLines("short", 20000, 4, 25);
    MeasureLines("long ", 2000, 200, 25);
    for (const int quads : {1000, 1000000}) {
        if (quads <= most) {
            MeasureCursor(quads, 25);
        }
    }
    MeasurePalette(25);
    InterpreterExit();
    std::printf("(%u)\n", seen);
    return 0;
}
