// The 16 colours that the views' palette indices are shown in.
#pragma once

#include <array>
#include <cstdint>

namespace quelmark {

struct PaletteColour {
    std::uint8_t red, green, blue;
};

extern std::array<PaletteColour, 16> Palette;
inline constexpr std::int32_t PULSE_ENTRY = 14;  // the highlight colour, which swells and fades

// The colours at the start.
void PaletteInit();
// Changes one colour and shows it in the window; nothing is drawn again.
void PaletteSet(std::int32_t index, PaletteColour colour);

}  // namespace quelmark
