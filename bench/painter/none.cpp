#include "painter.h"

namespace quelmark {

bool PainterIsThere() {
    return false;
}
void PainterBegin(int, int, const std::vector<Line>&) {}
void PainterEnd() {}
void PainterFill() {}
void PainterDrawLines() {}
void PainterTurnLines() {}
void PainterDrawIndexed(const std::uint8_t*, int, int, std::ptrdiff_t) {}

}  // namespace quelmark
