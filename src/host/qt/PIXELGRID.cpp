#include "host/qt/PIXELGRID.h"

#include <algorithm>
#include <cmath>

namespace quelmark {
namespace {

// Quotients of whole numbers of screen pixels come back a little off them.
constexpr double ROUNDING = 0.001;

int Down(double value) {
    return static_cast<int>(std::floor(value + ROUNDING));
}
int Up(double value) {
    return static_cast<int>(std::ceil(value - ROUNDING));
}

}  // namespace

int CellOf(double ratio) {
    return std::max(static_cast<int>(std::ceil(ratio - 0.5)), 1);
}

// The widget's corner may lie between two screen pixels: a menu bar of 23 units is 34.5 pixels high at 150 %.
PixelGrid GridOf(const QWidget& widget) {
    PixelGrid grid;
    grid.ratio = widget.devicePixelRatioF();
    grid.cell = CellOf(grid.ratio);
    const QPoint corner = widget.mapTo(widget.window(), QPoint(0, 0));
    const double left = corner.x() * grid.ratio;
    const double top = corner.y() * grid.ratio;
    grid.shiftX = std::round(left) - left;
    grid.shiftY = std::round(top) - top;
    grid.width = Up((std::round(left + widget.width() * grid.ratio) - std::round(left)) / grid.cell);
    grid.height = Up((std::round(top + widget.height() * grid.ratio) - std::round(top)) / grid.cell);
    return grid;
}

QPoint ToGrid(const PixelGrid& grid, QPointF point) {
    return {Down((point.x() * grid.ratio - grid.shiftX) / grid.cell),
            Down((point.y() * grid.ratio - grid.shiftY) / grid.cell)};
}

QRect ToGrid(const PixelGrid& grid, const QRect& rect) {
    const int left = Down((rect.x() * grid.ratio - grid.shiftX) / grid.cell);
    const int top = Down((rect.y() * grid.ratio - grid.shiftY) / grid.cell);
    const int right = Up(((rect.x() + rect.width()) * grid.ratio - grid.shiftX) / grid.cell);
    const int bottom = Up(((rect.y() + rect.height()) * grid.ratio - grid.shiftY) / grid.cell);
    return {left, top, right - left, bottom - top};
}

QRect FromGrid(const PixelGrid& grid, const QRect& cells) {
    const int left = Down((cells.x() * grid.cell + grid.shiftX) / grid.ratio);
    const int top = Down((cells.y() * grid.cell + grid.shiftY) / grid.ratio);
    const int right = Up(((cells.x() + cells.width()) * grid.cell + grid.shiftX) / grid.ratio);
    const int bottom = Up(((cells.y() + cells.height()) * grid.cell + grid.shiftY) / grid.ratio);
    return {left, top, right - left, bottom - top};
}

void PaintOnGrid(QPainter& painter, const PixelGrid& grid) {
    painter.translate(grid.shiftX / grid.ratio, grid.shiftY / grid.ratio);
    painter.scale(grid.cell / grid.ratio, grid.cell / grid.ratio);
}

int FontCells(const PixelGrid& grid, int units) {
    return 2 * std::max(static_cast<int>(std::round(units * grid.ratio / (2 * grid.cell))), 1);
}

}  // namespace quelmark
