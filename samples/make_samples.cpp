// Writes the sample models: make_samples DIRECTORY.
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <numbers>
#include <string>
#include <vector>

#include "shapes.h"
#include "text/sjis.h"

namespace quelmark::samples {
namespace {

constexpr double PI = std::numbers::pi;

std::string directory;

void MakeCube() {
    ShapeFile file;
    file.Attribute("red", 1, 0, 0);
    file.Begin("cube");
    file.Use("red");
    file.Box({-500, -500, -500}, {500, 500, 500});
    file.End();
    file.Save(directory + "/cube.suf");
}

// ---- a house with a garden; all names are Japanese ----

void MakeTree(ShapeFile& file, const Point& foot) {
    file.Use("幹"_sjis);
    Lathe(file, Kind::poly, {{60, 0}, {45, 200}, {40, 420}}, 8, foot);
    file.Use("葉"_sjis);
    Lathe(file, Kind::shade, {{0, 380}, {260, 430}, {330, 600}, {250, 820}, {120, 980}, {0, 1040}}, 12, foot);
}

void MakeHouse() {
    ShapeFile file;
    file.Attribute("壁"_sjis, 0.9, 0.85, 0.7);
    file.Attribute("屋根"_sjis, 0.8, 0.2, 0.1);
    file.Attribute("窓"_sjis, 0.2, 0.5, 0.9, 0.8);
    file.Attribute("扉"_sjis, 0.7, 0.3, 0.1);
    file.Attribute("幹"_sjis, 0.7, 0.5, 0.3);
    file.Attribute("葉"_sjis, 0.1, 0.8, 0.2);
    file.Begin("家"_sjis);
    file.Use("壁"_sjis);
    file.Box({-900, -600, 0}, {900, 600, 700});
    file.Flat({{900, -600, 700}, {900, 600, 700}, {900, 0, 1250}});
    file.Flat({{-900, 600, 700}, {-900, -600, 700}, {-900, 0, 1250}});
    file.Box({450, 150, 700}, {650, 350, 1400});
    file.Use("屋根"_sjis);
    file.Flat({{-1000, -720, 590}, {1000, -720, 590}, {1000, 0, 1270}, {-1000, 0, 1270}});
    file.Flat({{1000, 720, 590}, {-1000, 720, 590}, {-1000, 0, 1270}, {1000, 0, 1270}});
    file.Use("扉"_sjis);
    file.Box({-120, -630, 0}, {120, -600, 450});
    file.Use("窓"_sjis);
    for (const double x : {-650.0, -350.0, 350.0, 650.0}) {
        file.Box({x - 110, -620, 280}, {x + 110, -600, 520});
        file.Box({x - 110, 600, 280}, {x + 110, 620, 520});
    }
    file.End();
    file.Begin("庭"_sjis);
    for (const Point& foot :
         {Point{-1500, -500, 0}, Point{-1350, 700, 0}, Point{1500, -700, 0}, Point{1400, 550, 0}}) {
        MakeTree(file, foot);
    }
    file.End();
    file.Save(directory + "/house.suf");
}

// ---- surfaces ----

// A tube around a curve that nowhere runs along `across`; `radius` may change on the way.
Surface Tube(const std::function<Point(double)>& curve, const Point& across,
             const std::function<double(double)>& radius) {
    return [curve, across, radius](double s, double t) {
        const Point middle = curve(t);
        const Point along = Unit(curve(t + 1e-3) - curve(t - 1e-3));
        const Point side = Unit(Cross(across, along));
        const Point up = Cross(along, side);
        const double angle = 2 * PI * s;
        return middle + side * (radius(t) * std::cos(angle)) + up * (radius(t) * std::sin(angle));
    };
}

Point Between(const std::array<Point, 4>& p, double t) {
    const double u = 1 - t;
    return p[0] * (u * u * u) + p[1] * (3 * u * u * t) + p[2] * (3 * u * t * t) + p[3] * (t * t * t);
}

void MakeTeapot() {
    ShapeFile file;
    file.Attribute("china", 0.4, 0.8, 1.0, 0.8);
    file.Attribute("lid", 1.0, 0.8, 0.2, 0.8);
    file.Attribute("handle", 1.0, 1.0, 1.0, 0.8);
    file.Begin("pot");
    file.Use("china");
    std::vector<Ring> body = {{0, 0}, {420, 0}, {480, 30}};
    for (int i = 1; i <= 16; ++i) {
        const double angle = -1.05 + i * (1.05 + 0.95) / 16;
        body.push_back({880 * std::cos(angle), 620 + 690 * std::sin(angle)});
    }
    Lathe(file, Kind::shade, body, 40);
    const std::array<Point, 4> spout = {Point{700, 0, 420}, {1250, 0, 380}, {1080, 0, 1050}, {1500, 0, 1180}};
    SurfaceGrid(file, Kind::shade,
                Tube([spout](double t) { return Between(spout, t); }, {0, 1, 0},
                     [](double t) { return 210 - 130 * t; }),
                20, 14);
    file.End();
    file.Begin("lid");
    file.Use("lid");
    Lathe(file, Kind::shade,
          {{540, 1170},
           {500, 1210},
           {380, 1270},
           {220, 1310},
           {90, 1330},
           {60, 1370},
           {110, 1430},
           {90, 1500},
           {0, 1530}},
          40);
    file.End();
    file.Begin("handle");
    file.Use("handle");
    const std::array<Point, 4> handle = {
        Point{-640, 0, 1040}, {-1500, 0, 1250}, {-1450, 0, 250}, {-760, 0, 350}};
    SurfaceGrid(
        file, Kind::shade,
        Tube([handle](double t) { return Between(handle, t); }, {0, 1, 0}, [](double) { return 85.0; }), 16,
        20);
    file.End();
    file.Save(directory + "/teapot.suf");
}

void MakeKnot() {
    ShapeFile file;
    file.MappedAttribute("rope", "rope.bmp", 256, 256);
    file.Begin("knot");
    file.Use("rope");
    const auto curve = [](double t) {
        const double angle = 2 * PI * t;
        const double radius = 1000 + 420 * std::cos(3 * angle);
        return Point{radius * std::cos(2 * angle), radius * std::sin(2 * angle), 520 * std::sin(3 * angle)};
    };
    SurfaceGrid(file, Kind::uvshade, Tube(curve, {0, 0, 1}, [](double) { return 170.0; }), 16, 180);
    file.End();
    file.Save(directory + "/knot.suf");
}

// ---- a geodesic sphere: an icosahedron cut four times ----

using Triangle = std::array<Point, 3>;

std::vector<Triangle> Icosahedron() {
    const double g = std::numbers::phi;
    const std::array<Point, 12> p = {Point{-1, g, 0}, {1, g, 0}, {-1, -g, 0}, {1, -g, 0},
                                     {0, -1, g},      {0, 1, g}, {0, -1, -g}, {0, 1, -g},
                                     {g, 0, -1},      {g, 0, 1}, {-g, 0, -1}, {-g, 0, 1}};
    constexpr int FACES[20][3] = {{0, 11, 5}, {0, 5, 1},  {0, 1, 7},   {0, 7, 10}, {0, 10, 11},
                                  {1, 5, 9},  {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
                                  {3, 9, 4},  {3, 4, 2},  {3, 2, 6},   {3, 6, 8},  {3, 8, 9},
                                  {4, 9, 5},  {2, 4, 11}, {6, 2, 10},  {8, 6, 7},  {9, 8, 1}};
    std::vector<Triangle> triangles;
    for (const auto& face : FACES) {
        triangles.push_back({Unit(p[static_cast<std::size_t>(face[0])]),
                             Unit(p[static_cast<std::size_t>(face[1])]),
                             Unit(p[static_cast<std::size_t>(face[2])])});
    }
    return triangles;
}

void MakeSphere() {
    std::vector<Triangle> triangles = Icosahedron();
    for (int level = 0; level < 4; ++level) {
        std::vector<Triangle> finer;
        for (const Triangle& t : triangles) {
            const Point a = Unit(t[0] + t[1]);
            const Point b = Unit(t[1] + t[2]);
            const Point c = Unit(t[2] + t[0]);
            finer.insert(finer.end(), {Triangle{t[0], a, c}, {t[1], b, a}, {t[2], c, b}, {a, b, c}});
        }
        triangles = std::move(finer);
    }
    ShapeFile file;
    file.Attribute("glass", 0.2, 0.9, 0.9, 1);
    file.Begin("sphere");
    file.Use("glass");
    for (const Triangle& t : triangles) {
        std::vector<Corner> corners;
        for (const Point& point : t) {
            corners.push_back({point * 1500, point, 0, 0});
        }
        file.Polygon(Kind::shade, corners);
    }
    file.End();
    file.Save(directory + "/sphere.suf");
}

// ---- an island of 30,000 triangles ----

double Height(double x, double y) {
    const double dome = 900 * std::exp(-(x * x / 1.3e6 + y * y / 6e5));
    const double hills = 190 * std::sin(x / 210) * std::cos(y / 170) + 110 * std::sin((x + 2 * y) / 150) +
                         60 * std::cos((2 * x - y) / 70);
    return std::max(0.0, dome + hills * dome / 900 - 130);
}

const char* Ground(double height) {
    return height <= 0    ? "sea"
           : height < 60  ? "sand"
           : height < 420 ? "grass"
           : height < 700 ? "rock"
                          : "snow";
}

void MakeTerrain() {
    constexpr int COLUMNS = 150;
    constexpr int ROWS = 100;
    ShapeFile file;
    file.Attribute("sea", 0, 0.2, 1, 0.8);
    file.Attribute("sand", 1, 0.9, 0.4);
    file.Attribute("grass", 0.1, 0.8, 0.1);
    file.Attribute("rock", 0.8, 0.3, 0.7);
    file.Attribute("snow", 1, 1, 1);
    std::map<std::string, std::vector<std::vector<Point>>> triangles;
    const auto at = [](int column, int row) {
        const double x = -1950 + 3900.0 * column / COLUMNS;
        const double y = -1300 + 2600.0 * row / ROWS;
        return Point{x, y, Height(x, y)};
    };
    for (int row = 0; row < ROWS; ++row) {
        for (int column = 0; column < COLUMNS; ++column) {
            const Point a = at(column, row), b = at(column + 1, row), c = at(column + 1, row + 1),
                        d = at(column, row + 1);
            const char* ground = Ground((a.z + b.z + c.z + d.z) / 4);
            triangles[ground].push_back({a, b, c});
            triangles[ground].push_back({a, c, d});
        }
    }
    file.Begin("island");
    for (const auto& [ground, list] : triangles) {
        file.Use(ground);
        for (const auto& triangle : list) {
            file.Flat(triangle);
        }
    }
    file.End();
    file.Save(directory + "/terrain.suf");
}

// ---- an aeroplane ----

void MakeWing(ShapeFile& file, const Point& root, const Point& tip, double rootChord, double tipChord,
              double thick) {
    const auto outline = [](const Point& at, double chord, double height) {
        return std::array<Point, 4>{at + Point{chord / 2, 0, 0}, at + Point{0, 0, height},
                                    at + Point{-chord / 2, 0, 0}, at + Point{0, 0, -height}};
    };
    const auto a = outline(root, rootChord, thick);
    const auto b = outline(tip, tipChord, thick / 3);
    const bool left = tip.y > root.y;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t j = (i + 1) % 4;
        if (left) {
            file.Flat({a[i], b[i], b[j], a[j]});
        } else {
            file.Flat({a[i], a[j], b[j], b[i]});
        }
    }
    if (left) {
        file.Flat({b[3], b[2], b[1], b[0]});
    } else {
        file.Flat({b[0], b[1], b[2], b[3]});
    }
}

void MakePlane() {
    ShapeFile file;
    file.Attribute("body", 1, 1, 1, 0.5);
    file.Attribute("wing", 0.9, 0.2, 0.1);
    file.Attribute("engine", 0.3, 0.7, 0.9);
    file.Attribute("canopy", 0.1, 0.9, 0.8, 1);
    file.Begin("body");
    file.Use("body");
    SurfaceGrid(
        file, Kind::shade,
        [](double s, double t) {
            const double radius = 210 * std::pow(std::sin(PI * std::pow(t, 0.6)), 0.6);
            const double angle = 2 * PI * s;
            return Point{1800 - 3600 * t, -radius * std::sin(angle), radius * std::cos(angle) + 120 * t};
        },
        24, 28);
    file.Use("canopy");
    SurfaceGrid(
        file, Kind::shade,
        [](double s, double t) {
            const double angle = PI * t;
            const double turn = 2 * PI * s;
            return Point{1050 + 330 * std::cos(angle), -130 * std::sin(angle) * std::sin(turn),
                         200 + 130 * std::sin(angle) * std::cos(turn)};
        },
        14, 10);
    file.End();
    file.Begin("wings");
    file.Use("wing");
    for (const double side : {1.0, -1.0}) {
        MakeWing(file, {150, 150 * side, -30}, {-450, 1900 * side, 180}, 850, 260, 55);
        MakeWing(file, {-1450, 60 * side, 150}, {-1650, 700 * side, 220}, 430, 180, 30);
    }
    MakeWing(file, {-1400, 20, 200}, {-1720, 20.5, 950}, 560, 260, 30);
    file.End();
    file.Begin("engines");
    file.Use("engine");
    for (const double y : {650.0, 1200.0, -650.0, -1200.0}) {
        SurfaceGrid(
            file, Kind::shade,
            [y](double s, double t) {
                const double radius = 110 * std::sqrt(std::sin(PI * (0.06 + 0.9 * t)));
                const double angle = 2 * PI * s;
                return Point{420 - std::fabs(y) * 0.25 - 560 * t, y - radius * std::sin(angle),
                             -40 + radius * std::cos(angle)};
            },
            14, 10);
    }
    file.End();
    file.Save(directory + "/plane.suf");
}

// ---- a chess set: every man is a part of its own, in a folder of its first two letters ----

const std::map<std::string, std::vector<Ring>>& ChessProfiles() {
    static const std::map<std::string, std::vector<Ring>> profiles = {
        {"pawn",
         {{0, 0},
          {90, 0},
          {95, 30},
          {70, 50},
          {45, 90},
          {35, 160},
          {60, 180},
          {35, 195},
          {58, 225},
          {62, 260},
          {45, 300},
          {0, 320}}},
        {"rook",
         {{0, 0},
          {105, 0},
          {110, 40},
          {80, 65},
          {65, 130},
          {60, 240},
          {90, 270},
          {95, 350},
          {65, 350},
          {60, 310},
          {0, 310}}},
        {"knight",
         {{0, 0}, {105, 0}, {110, 40}, {80, 65}, {75, 130}, {95, 220}, {85, 300}, {40, 370}, {0, 400}}},
        {"bishop",
         {{0, 0},
          {105, 0},
          {110, 40},
          {75, 65},
          {45, 130},
          {38, 270},
          {75, 290},
          {42, 305},
          {68, 350},
          {62, 400},
          {25, 460},
          {18, 490},
          {0, 500}}},
        {"queen",
         {{0, 0},
          {115, 0},
          {120, 45},
          {85, 75},
          {50, 150},
          {42, 370},
          {85, 395},
          {48, 410},
          {70, 500},
          {95, 550},
          {60, 555},
          {20, 575},
          {0, 600}}},
        {"king",
         {{0, 0},
          {120, 0},
          {125, 45},
          {90, 75},
          {55, 150},
          {48, 410},
          {90, 435},
          {52, 450},
          {80, 590},
          {40, 620},
          {0, 630}}},
    };
    return profiles;
}

void MakeChessman(const std::string& side, const std::string& man) {
    const std::string name = side + man;
    const std::string folder = directory + "/parts/" + name.substr(0, 2);
    std::filesystem::create_directories(folder);
    ShapeFile file;
    file.Begin(name);
    file.Use(side == "white" ? "ivory" : "ebony");
    Lathe(file, Kind::shade, ChessProfiles().at(man), 20);
    if (man == "king") {
        file.Box({-14, -14, 620}, {14, 14, 740});
        file.Box({-45, -13, 670}, {45, 13, 700});
    }
    if (man == "knight") {
        file.Box({-130, -38, 250}, {-20, 38, 350});
    }
    file.End();
    file.Save(folder + "/" + name + ".suf");
}

void MakeChess() {
    constexpr double SQUARE = 250;
    const std::array<const char*, 8> rank = {"rook", "knight", "bishop", "queen",
                                             "king", "bishop", "knight", "rook"};
    ShapeFile file;
    file.Attribute("light", 1, 0.9, 0.7);
    file.Attribute("dark", 0.7, 0.4, 0.1);
    file.Attribute("frame", 0.7, 0.1, 0.1);
    file.Attribute("ivory", 1, 1, 0.8, 0.7);
    file.Attribute("ebony", 0.1, 0.3, 0.9, 0.7);
    file.Begin("board");
    for (const bool light : {true, false}) {
        file.Use(light ? "light" : "dark");
        for (int i = 0; i < 64; ++i) {
            const double x = (i % 8 - 4) * SQUARE;
            const double y = (i / 8 - 4) * SQUARE;
            if (((i % 8 + i / 8) % 2 != 0) == light) {
                file.Flat({{x, y, 0}, {x + SQUARE, y, 0}, {x + SQUARE, y + SQUARE, 0}, {x, y + SQUARE, 0}});
            }
        }
    }
    file.Use("frame");
    file.Box({-1150, -1150, -90}, {1150, 1150, -10});
    file.End();
    for (const std::string side : {"white", "black"}) {
        const double row = side == "white" ? -1 : 1;
        file.Begin(side);
        for (int i = 0; i < 8; ++i) {
            char place[96];
            const int x = static_cast<int>((i - 3.5) * SQUARE);
            std::snprintf(place, sizeof place, "rotz ( %d ) mov ( %d %d 0 )", row < 0 ? 90 : -90, x,
                          static_cast<int>(row * 3.5 * SQUARE));
            file.Part(side + rank[static_cast<std::size_t>(i)], place);
            std::snprintf(place, sizeof place, "mov ( %d %d 0 )", x, static_cast<int>(row * 2.5 * SQUARE));
            file.Part(side + "pawn", place);
        }
        file.End();
        for (const auto& profile : ChessProfiles()) {
            MakeChessman(side, profile.first);
        }
    }
    file.Save(directory + "/chess.suf");
}

}  // namespace
}  // namespace quelmark::samples

int main(int argc, char** argv) {
    using namespace quelmark::samples;
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_samples DIRECTORY\n");
        return 2;
    }
    directory = argv[1];
    std::filesystem::create_directories(directory);
    MakeCube();
    MakeHouse();
    MakeTeapot();
    MakeKnot();
    MakeSphere();
    MakeTerrain();
    MakePlane();
    MakeChess();
    return 0;
}
