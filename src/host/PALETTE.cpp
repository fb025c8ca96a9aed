#include "host/PALETTE.h"

#include "host/HOST.h"
#include "host/WINDOW.h"

namespace quelmark {

std::array<PaletteColour, 16> Palette;

void PaletteInit() {
    constexpr std::array<PaletteColour, 16> START = {{
        {0, 0, 0},
        {0, 0, 255},
        {255, 0, 0},
        {255, 0, 255},
        {0, 255, 0},
        {0, 255, 255},
        {255, 255, 0},
        {255, 255, 255},
        {255, 0, 255},
        {0, 0, 127},
        {180, 180, 180},
        {127, 0, 127},
        {255, 0, 0},
        {100, 100, 100},
        {255, 255, 0},
        {255, 255, 255},
    }};
    for (std::size_t i = 0; i < START.size(); ++i) {
        PaletteSet(static_cast<std::int32_t>(i), START[i]);
    }
}

void PaletteSet(std::int32_t index, PaletteColour colour) {
    Palette[static_cast<std::size_t>(index)] = colour;
    HostWindow().SetPalette(index, colour.red, colour.green, colour.blue);
}

}  // namespace quelmark
