#include <QImage>
#include <QLine>
#include <QPainter>
#include <QPen>

#include "painter.h"

namespace quelmark {
namespace {

QImage picture;
std::vector<QLine> lines;

void Draw(QPainter::CompositionMode mode) {
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(mode);
    painter.setPen(QPen(Qt::white, 0));
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
}

}  // namespace

bool PainterIsThere() {
    return true;
}

void PainterBegin(int width, int height, const std::vector<Line>& wanted) {
    picture = QImage(width, height, QImage::Format_RGB32);
    picture.fill(Qt::black);
    lines.clear();
    lines.reserve(wanted.size());
    for (const Line& line : wanted) {
        lines.emplace_back(line.x0, line.y0, line.x1, line.y1);
    }
}

void PainterEnd() {
    picture = QImage();
    lines = {};
}

void PainterFill() {
    picture.fill(Qt::darkGray);
}

void PainterDrawLines() {
    Draw(QPainter::CompositionMode_SourceOver);
}

void PainterTurnLines() {
    Draw(QPainter::RasterOp_SourceXorDestination);
}

void PainterDrawIndexed(const std::uint8_t* pixels, int width, int height, std::ptrdiff_t stride) {
    QImage indexed(pixels, width, height, stride, QImage::Format_Indexed8);
    QList<QRgb> colours;
    for (unsigned i = 0; i < 16; ++i) {
        colours.append(0xFF000000U | 0x0F1E2DU * i);
    }
    indexed.setColorTable(colours);
    QPainter painter(&picture);
    painter.drawImage(0, 0, indexed);
}

}  // namespace quelmark
