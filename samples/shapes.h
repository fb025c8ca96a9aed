// Building blocks of the sample models: polygons with normals and mapping in real coordinates, and the text
// of a shape file.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quelmark::samples {

struct Point {
    double x = 0, y = 0, z = 0;
};
Point operator+(const Point& a, const Point& b);
Point operator-(const Point& a, const Point& b);
Point operator*(const Point& a, double scale);
Point Cross(const Point& a, const Point& b);
Point Unit(const Point& a);

struct Corner {
    Point at;
    Point normal;
    double u = 0, v = 0;
};

enum class Kind { poly, shade, uvpoly, uvshade };

// The text of one shape file, in the form in which the editor itself writes.
class ShapeFile {
  public:
    // An attribute of one colour; shining ones get a specular line of their own.
    void Attribute(const std::string& name, double red, double green, double blue, double specular = 0);
    // The same with a colour map over the whole image.
    void MappedAttribute(const std::string& name, const std::string& image, int width, int height);
    void Begin(const std::string& object);
    void Use(const std::string& attribute);
    void Polygon(Kind kind, const std::vector<Corner>& corners);
    void Flat(const std::vector<Point>& points);
    // A box from its lowest to its highest corner.
    void Box(const Point& low, const Point& high);
    void Part(const std::string& name, const std::string& transformations);
    void End();
    void Save(const std::string& path) const;

  private:
    std::string text_;
    std::string attribute_;
};

// A closed or open grid of corners, (columns + 1) × (rows + 1) points of a surface; quadrilaterals, triangles
// where two corners meet. Normals come from the surface's own differences.
using Surface = std::function<Point(double s, double t)>;
void SurfaceGrid(ShapeFile& file, Kind kind, const Surface& surface, int columns, int rows);

// A profile of (radius, height) turned about the Z axis, from below upwards.
struct Ring {
    double radius, height;
};
void Lathe(ShapeFile& file, Kind kind, const std::vector<Ring>& profile, int columns, const Point& foot = {});

}  // namespace quelmark::samples
