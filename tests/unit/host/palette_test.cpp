#include "host/PALETTE.h"

#include <map>

#include "host_fixture.h"

namespace quelmark::test {

class PaletteTest : public HostTest {};

TEST_F(PaletteTest, TheWindowIsToldOfSixteenColours) {
    std::map<int, std::array<int, 3>> told;
    Run([&] {
        for (const auto& [index, red, green, blue] : window.palette) {
            told[index] = {red, green, blue};
        }
    });
    using Colour = std::array<int, 3>;
    const std::map<int, Colour> wanted = {
        {0, Colour{0, 0, 0}},        {1, Colour{0, 0, 255}},      {2, Colour{255, 0, 0}},
        {3, Colour{255, 0, 255}},    {4, Colour{0, 255, 0}},      {5, Colour{0, 255, 255}},
        {6, Colour{255, 255, 0}},    {7, Colour{255, 255, 255}},  {8, Colour{255, 0, 255}},
        {9, Colour{0, 0, 127}},      {10, Colour{180, 180, 180}}, {11, Colour{127, 0, 127}},
        {12, Colour{255, 0, 0}},     {13, Colour{100, 100, 100}}, {14, Colour{255, 255, 0}},
        {15, Colour{255, 255, 255}},
    };
    EXPECT_EQ(told, wanted);
}

}  // namespace quelmark::test
