// Texts over the views. The window draws them with its own font when it shows the frame; they are no part of
// the frame, and go with the next redraw that clears their view.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "view/RASTER.h"

namespace quelmark {

struct ViewText {
    std::int32_t views;  // those whose clearing takes it away; 0 for all
    PixelRect clip;      // where it shows
    PixelRect place;     // from its upper left corner
    std::string text;    // cp932, one line
    std::uint8_t colour;
};

// Shows a text from now on. One that lies outside its clip is forgotten at once, and so is the oldest of too
// many.
void ViewTextAdd(ViewText text);
const std::vector<ViewText>& ViewTexts();
// Takes away what belongs to any view of the mask.
void ViewTextsDrop(std::int32_t mask);

}  // namespace quelmark
