// The window's pixels on a scaled screen. Everything that the host lays out and draws stands on a grid whose
// cells are whole squares of the screen's own pixels, so nothing is blurred or drawn in uneven widths: one
// screen pixel a cell up to 150 %, two from there to 250 %, and so on. Texts alone follow the scale exactly.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRect>
#include <QWidget>
#include <cstdint>

#include "view/RASTER.h"

namespace quelmark {

struct PixelGrid {
    double ratio = 1;                    // screen pixels of one of the library's units
    int cell = 1;                        // screen pixels of a cell's side
    double shiftX = 0, shiftY = 0;       // from the widget's corner to the grid's, in screen pixels
    std::int32_t width = 0, height = 0;  // in cells; the last ones may be cut
};

// The cell's side for a ratio: the nearest whole number, the smaller one half way.
int CellOf(double ratio);
PixelGrid GridOf(const QWidget& widget);
// The library's form of a rectangle of cells.
inline QRect ToRect(const PixelRect& rect) {
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}
// The cell that holds a point of the widget.
QPoint ToGrid(const PixelGrid& grid, QPointF point);
// The least rectangle of cells that covers one of the widget's, and the other way round.
QRect ToGrid(const PixelGrid& grid, const QRect& rect);
QRect FromGrid(const PixelGrid& grid, const QRect& cells);
// From here on the painter counts cells.
void PaintOnGrid(QPainter& painter, const PixelGrid& grid);
// The height of a font in cells whose half-width characters are whole cells wide.
int FontCells(const PixelGrid& grid, int units);

}  // namespace quelmark
