#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>

namespace quelmark::samples {
namespace {

const char* const KEYWORDS[] = {"poly", "shade", "uvpoly", "uvshade"};

int Whole(double value) {
    return static_cast<int>(std::lround(value));
}

bool SamePlace(const Corner& a, const Corner& b) {
    return Whole(a.at.x) == Whole(b.at.x) && Whole(a.at.y) == Whole(b.at.y) && Whole(a.at.z) == Whole(b.at.z);
}

template <class... Values>
void AppendFormatted(std::string& text, const char* format, Values... values) {
    char line[256];
    std::snprintf(line, sizeof line, format, values...);
    text += line;
}

std::string Colour(double red, double green, double blue) {
    std::string text;
    if (red == green && green == blue) {
        AppendFormatted(text, "%4.2f", red);
    } else {
        AppendFormatted(text, "rgb ( %4.2f %4.2f %4.2f )", red, green, blue);
    }
    return text;
}

}  // namespace

Point operator+(const Point& a, const Point& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Point operator-(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Point operator*(const Point& a, double scale) {
    return {a.x * scale, a.y * scale, a.z * scale};
}
Point Cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Point Unit(const Point& a) {
    const double length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return length > 0 ? a * (1 / length) : Point{0, 0, 1};
}

void ShapeFile::Attribute(const std::string& name, double red, double green, double blue, double specular) {
    text_ += "atr " + name + " {\n\tcol ( " + Colour(red, green, blue) + " )\n\ttra ( 0.00 )\n";
    text_ +=
        "\tamb ( 0.40 )\n\tdif ( 0.60 )\n\tspc ( " + Colour(specular, specular, specular) + " 0.50 0.00 )\n";
    text_ += "}\n";
}

void ShapeFile::MappedAttribute(const std::string& name, const std::string& image, int width, int height) {
    text_ += "atr " + name + " {\n\tcol ( 1.00 )\n\ttra ( 0.00 )\n\tamb ( 0.40 )\n\tdif ( 0.60 )\n";
    text_ += "\tspc ( 0.50 0.50 0.00 )\n\tcolormap ( " + image + " )\n";
    for (const char* word : {"mapsize", "mapview", "mapwind"}) {
        AppendFormatted(text_, "\t%s ( 0 0 %d %d )\n", word, width, height);
    }
    text_ += "}\n";
}

void ShapeFile::Begin(const std::string& object) {
    text_ += "obj suf " + object + " {\n";
    attribute_.clear();
}

void ShapeFile::Use(const std::string& attribute) {
    if (attribute_ != attribute) {
        text_ += "atr " + attribute + "\n";
        attribute_ = attribute;
    }
}

void ShapeFile::Polygon(Kind kind, const std::vector<Corner>& given) {
    std::vector<Corner> corners;
    for (const Corner& corner : given) {
        if (corners.empty() || !SamePlace(corners.back(), corner)) {
            corners.push_back(corner);
        }
    }
    while (corners.size() > 1 && SamePlace(corners.front(), corners.back())) {
        corners.pop_back();
    }
    if (corners.size() < 3) {
        return;
    }
    const int type = static_cast<int>(kind);
    text_ += std::string("prim\t") + KEYWORDS[type] + "\t(";
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Corner& c = corners[i];
        AppendFormatted(text_, "%s\t%d\t%d\t%d", i == 0 ? "" : "\n\t\t ", Whole(c.at.x), Whole(c.at.y),
                        Whole(c.at.z));
        if ((type & 1) != 0) {
            const Point n = Unit(c.normal) * 256;
            AppendFormatted(text_, "\t%d\t%d\t%d", Whole(n.x), Whole(n.y), Whole(n.z));
        }
        if ((type & 2) != 0) {
            AppendFormatted(text_, "\t%d\t%d", Whole(c.u), Whole(c.v));
        }
    }
    text_ += " )\n\n";
}

void ShapeFile::Flat(const std::vector<Point>& points) {
    std::vector<Corner> corners;
    for (const Point& point : points) {
        corners.push_back({point, {}, 0, 0});
    }
    Polygon(Kind::poly, corners);
}

void ShapeFile::Box(const Point& a, const Point& b) {
    Flat({{a.x, a.y, a.z}, {a.x, b.y, a.z}, {b.x, b.y, a.z}, {b.x, a.y, a.z}});
    Flat({{a.x, a.y, b.z}, {b.x, a.y, b.z}, {b.x, b.y, b.z}, {a.x, b.y, b.z}});
    Flat({{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, a.y, b.z}, {a.x, a.y, b.z}});
    Flat({{b.x, b.y, a.z}, {a.x, b.y, a.z}, {a.x, b.y, b.z}, {b.x, b.y, b.z}});
    Flat({{b.x, a.y, a.z}, {b.x, b.y, a.z}, {b.x, b.y, b.z}, {b.x, a.y, b.z}});
    Flat({{a.x, b.y, a.z}, {a.x, a.y, a.z}, {a.x, a.y, b.z}, {a.x, b.y, b.z}});
}

void ShapeFile::Part(const std::string& name, const std::string& transformations) {
    text_ += "parts " + name + " " + transformations + "\n";
}

void ShapeFile::End() {
    text_ += "}\n";
}

void ShapeFile::Save(const std::string& path) const {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(text_.data(), 1, text_.size(), file) != text_.size() ||
        std::fclose(file) != 0) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        std::exit(1);
    }
}

void SurfaceGrid(ShapeFile& file, Kind kind, const Surface& surface, int columns, int rows) {
    constexpr double STEP = 1e-4;
    constexpr double MAP_SIZE = 255;
    const auto corner = [&](int column, int row) {
        const double s = static_cast<double>(column) / columns;
        const double t = static_cast<double>(row) / rows;
        // Where the surface closes to a point, the normal is taken from a little beside it.
        const double inside = std::clamp(t, 1e-3, 1 - 1e-3);
        const Point along = surface(s + STEP, inside) - surface(s - STEP, inside);
        const Point across = surface(s, inside + STEP) - surface(s, inside - STEP);
        return Corner{surface(s, t), Cross(along, across), s * MAP_SIZE, t * MAP_SIZE};
    };
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            file.Polygon(kind, {corner(column, row), corner(column + 1, row), corner(column + 1, row + 1),
                                corner(column, row + 1)});
        }
    }
}

void Lathe(ShapeFile& file, Kind kind, const std::vector<Ring>& profile, int columns, const Point& foot) {
    const auto rows = static_cast<int>(profile.size()) - 1;
    const Surface surface = [&](double s, double t) {
        const double place = std::clamp(t, 0.0, 1.0) * rows;
        const int row = std::min(static_cast<int>(place), rows - 1);
        const Ring& a = profile[static_cast<std::size_t>(row)];
        const Ring& b = profile[static_cast<std::size_t>(row) + 1];
        const double f = place - row;
        const double radius = a.radius + (b.radius - a.radius) * f;
        const double angle = 2 * std::numbers::pi * s;
        return foot + Point{radius * std::cos(angle), radius * std::sin(angle),
                            a.height + (b.height - a.height) * f};
    };
    SurfaceGrid(file, kind, surface, columns, rows);
}

}  // namespace quelmark::samples
