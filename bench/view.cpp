// The four views, each measure beside those it is compared with, in one run on one core: redraws and lines
// against a plain Bresenham loop that writes the same lines, already projected, into an 8-bit buffer, and
// against the window library's painter with the same lines, in a 32-bit picture; a view of a small part
// against a bare walk over the records; what changes no polygon against the painter's way to do it. The limit
// of all is a copy of the frame, which is measured beside them.
// Times are the processor's, of all threads (the painter has its own), so that another program's turn does
// not count; figures are medians over the rounds, ratios the medians of what each round gives. A full redraw
// fills the views and draws; "lines" is the redraw without the filling, "fill" the filling alone.
//
//   taskset -c 1 bench_view [most quads [redraw | part | lines | cursor | picture]]
#include <time.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "ML/ML.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "painter/painter.h"
#include "view/OVERLAY.h"
#include "view/VIEW.h"

namespace {

using namespace quelmark;

constexpr int WIDTH = 1280, HEIGHT = 1000;
constexpr int LINES_OF_QUAD = 4;
unsigned seen = 0;  // what the loops made, so that none is left out

double Now() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) * 1e-6;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

using Work = std::function<void()>;

// Several works in turn, `rounds` times, each `repeats` times a round.
class Comparison {
  public:
    Comparison(int rounds, int repeats, std::initializer_list<Work> works) : times(works.size()) {
        for (const Work& work : works) {
            work();
        }
        for (int round = 0; round < rounds; ++round) {
            std::size_t i = 0;
            for (const Work& work : works) {
                const double from = Now();
                for (int turn = 0; turn < repeats; ++turn) {
                    work();
                }
                times[i++].push_back((Now() - from) / repeats);
            }
        }
    }
    double Time(std::size_t work) const { return Median(times[work]); }  // milliseconds
    double Ratio(std::size_t work, std::size_t measure) const {
        std::vector<double> ratios;
        for (std::size_t round = 0; round < times[work].size(); ++round) {
            ratios.push_back(times[work][round] / times[measure][round]);
        }
        return Median(ratios);
    }

  private:
    std::vector<std::vector<double>> times;
};

// The works of most rows, in this order.
enum : std::size_t { OURS, PAINTER, COPY, LOOP, LINES_ALONE, FILL };

void PrintAgainst(const char* name, const Comparison& c) {
    std::printf("%-36s %9.4f ms, painter %9.4f ms, copy %7.4f ms: painter / ours %6.2f, copies %6.3f\n", name,
                c.Time(OURS), c.Time(PAINTER), c.Time(COPY), c.Ratio(PAINTER, OURS), c.Ratio(OURS, COPY));
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

// One polygon of so many, from the first to the last.
void SelectEvery(int count) {
    int number = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->select = static_cast<std::int16_t>(number++ % count == 0);
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

void FillViews(std::int32_t mask) {
    for (std::int32_t view = WIN_XY; view <= WIN_PERS; view <<= 1) {
        if ((mask & view) != 0) {
            FillRect(ViewFrame, Views[ViewIndex(view)].Rect(), COLOUR_BACKGROUND);
        }
    }
}

void MeasureRedraw(const char* name, std::int32_t mask, int quads, int rounds) {
    const std::vector<Line> lines = ProjectedLines(mask);
    PainterBegin(WIDTH, HEIGHT, lines);
    const auto paint = [] {
        PainterFill();
        PainterDrawLines();
    };
    const Comparison c(rounds, RepeatsFor(quads),
                       {[mask] { ViewRedrawMask(mask, true); }, paint, CopyFrame, [&] { DrawPlain(lines); },
                        [mask] { ViewRedrawMask(mask, false); }, [mask] { FillViews(mask); }});
    PainterEnd();
    std::printf("%-12s %8d | %9.3f %9.3f %7.3f | %9.3f %9.3f %7.3f | %6.2f %6.2f | %6.2f %6.1f\n", name,
                quads, c.Time(OURS), c.Time(LINES_ALONE), c.Time(FILL), c.Time(LOOP), c.Time(PAINTER),
                c.Time(COPY), c.Ratio(OURS, LOOP), c.Ratio(LINES_ALONE, LOOP), c.Ratio(PAINTER, OURS),
                c.Ratio(OURS, COPY));
}

void MeasureRedraws(int quads, int rounds) {
    Begin(quads, -10, [=] { MakeSheet(quads); });
    MeasureRedraw("four views", WIN_ALL, quads, rounds);
    MeasureRedraw("three views", WIN_ORTHOGRAPHIC, quads, rounds);
    ViewSetMask(WIN_XY);
    ViewSetZoom(-5, 0);
    MeasureRedraw("one view", WIN_XY, quads, rounds);
    End();
}

void MeasureSmallPart(int quads, int rounds) {
    Begin(quads, 16, [=] { MakeSheet(quads); });
    ViewSetMask(WIN_XY);
    const Comparison c(rounds, RepeatsFor(quads),
                       {[] { ViewRedrawMask(WIN_XY, true); }, [] { ViewRedrawMask(WIN_XY, false); }, WalkBare,
                        [] { FillViews(WIN_XY); }});
    std::printf(
        "one view of a small part %8d quads %8.3f ms, unfilled %8.3f ms, fill %6.3f ms, bare walk %8.3f ms: "
        "unfilled / walk %5.2f\n",
        quads, c.Time(0), c.Time(1), c.Time(3), c.Time(2), c.Ratio(1, 2));
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
    PainterBegin(WIDTH, HEIGHT, lines);
    const Comparison c(
        rounds, RepeatsFor(quads),
        {[] { ViewRedrawMask(WIN_XY, false); }, PainterDrawLines, CopyFrame, [&] { DrawPlain(lines); }});
    PainterEnd();
    std::printf(
        "%s lines of %5.1f pixels: %7.2f million/s, plain loop %7.2f, painter %6.2f; time / loop's %5.2f, "
        "painter / ours %5.2f\n",
        name, pixels / count, count / c.Time(OURS) / 1e3, count / c.Time(LOOP) / 1e3,
        count / c.Time(PAINTER) / 1e3, c.Ratio(OURS, LOOP), c.Ratio(PAINTER, OURS));
    End();
}

// ---- what draws no polygon ----

// The cursor's lines as the painter would turn them: a cross over each flat view, a small one in the other.
std::vector<Line> CursorLines() {
    std::vector<Line> lines;
    for (const ViewRecord& view : Views) {
        const PixelRect rect = view.Rect();
        if (&view == &Views[ViewIndex(WIN_PERS)]) {
            for (const int turn : {-8, 0, 8}) {
                lines.push_back(
                    {view.centreX - 8, view.centreY - turn, view.centreX + 8, view.centreY + turn});
            }
        } else {
            lines.push_back({rect.left, view.centreY, rect.right - 1, view.centreY});
            lines.push_back({view.centreX, rect.top, view.centreX, rect.bottom - 1});
        }
    }
    return lines;
}

void MeasureCursor(int quads, int rounds) {
    Begin(quads, -10, [=] { MakeSheet(quads); });
    ViewRedraw(WHOLE_AREA, true);
    CursorShow(true);
    std::int32_t step = 0;
    const auto move = [&step] {
        step = (step + 37) % 1000;
        CursorMove({step, 500 - step, step / 2});
    };
    const auto paint = [] {
        PainterTurnLines();
        PainterTurnLines();
    };
    PainterBegin(WIDTH, HEIGHT, CursorLines());
    const Comparison c(rounds, 200, {move, paint, CopyFrame});
    PainterEnd();
    PrintAgainst(("cursor move, " + std::to_string(quads) + " quads").c_str(), c);
    End();
}

void MeasurePicture(int rounds) {
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
    std::vector<PixelRect> changed;
    const auto change = [&](std::uint8_t entry) -> Work {
        return [&, entry] {
            palette[entry] += 3;
            RecolourFrame(ViewFrame, entry, palette, picture.data(), WIDTH, changed);
            seen += changed.empty() ? 0 : picture[static_cast<std::size_t>(WIDTH * changed.front().top)];
        };
    };
    const Work paint = [] { PainterDrawIndexed(ViewFrame.pixels.data(), WIDTH, HEIGHT, ViewFrame.stride); };
    PainterBegin(WIDTH, HEIGHT, {});
    const Comparison fill(rounds, 20, {[&] {
                              std::fill(picture.begin(), picture.end(), palette[1]);
                              palette[1] += picture[1];
                          }});
    std::printf("a 32-bit picture filled with one colour %9.4f ms\n", fill.Time(0));
    PrintAgainst("frame to a 32-bit picture",
                 Comparison(rounds, 20, {[&] { expand(ViewFrame.Bounds()); }, paint, CopyFrame}));
    PrintAgainst("palette change, of the background",
                 Comparison(rounds, 20, {change(COLOUR_BACKGROUND), paint, CopyFrame}));
    PrintAgainst("palette change, of no pixel",
                 Comparison(rounds, 20, {change(COLOUR_SELECTED), paint, CopyFrame}));
    SelectEvery(20);
    ViewRedraw(WHOLE_AREA, true);
    PrintAgainst("palette change, 1 of 20 selected",
                 Comparison(rounds, 20, {change(COLOUR_SELECTED), paint, CopyFrame}));
    SelectEvery(1);
    ViewRedraw(WHOLE_AREA, true);
    PrintAgainst("palette change, all selected",
                 Comparison(rounds, 20, {change(COLOUR_SELECTED), paint, CopyFrame}));
    PainterEnd();
    End();
}

}  // namespace

int main(int argc, char** argv) {
    const int most = argc > 1 ? std::atoi(argv[1]) : 1000000;
    const auto wants = [&](const char* rows) { return argc < 3 || std::strcmp(argv[2], rows) == 0; };
    const auto each = [most](const auto& measure) {
        for (const int quads : {1000, 10000, 100000, 1000000}) {
            if (quads <= most) {
                measure(quads);
            }
        }
    };
    if (!PainterIsThere()) {
        std::printf("without the window library: what stands for the painter is nothing\n");
    }
    InterpreterInit({});
    if (wants("redraw")) {
        std::printf(
            "redraw          quads | ms:  full     lines    fill |   plain loop   painter    copy | "
            "full/loop "
            "lines/loop | painter/full  full/copy\n");
        each([](int quads) { MeasureRedraws(quads, quads < 1000000 ? 15 : 5); });
    }
    if (wants("part")) {
        each([](int quads) { MeasureSmallPart(quads, 15); });
    }
    if (wants("lines")) {
        MeasureLines("short", 20000, 4, 25);
        MeasureLines("long ", 2000, 200, 25);
    }
    if (wants("cursor")) {
        each([](int quads) { MeasureCursor(quads, 25); });
    }
    if (wants("picture")) {
        MeasurePicture(25);
    }
    InterpreterExit();
    std::printf("(%u)\n", seen);
    return 0;
}
