// Texts over the views. The window draws them with its own font when it shows the frame; they are no part of
// the frame. Texts of scripts go with the next redraw that clears their view, titles stay.
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

// The title of every view of the mask, so many pixels wide and high: in the view's upper left corner while
// the view is shown, whatever is redrawn. An empty text takes it away.
void ViewTitleSet(std::int32_t mask, const std::string& text, std::int32_t width, std::int32_t height,
                  std::uint8_t colour);
// The titles of the views that are shown.
std::vector<ViewText> ViewTitles();

}  // namespace quelmark
