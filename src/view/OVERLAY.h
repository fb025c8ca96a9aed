// What lies over the model by exclusive-or: lines, boxes and marks of scripts, which a redraw draws again
// until they are drawn a second time or cleared, and the 3-D cursor. The model points here are display
// coordinates, but for the cursor's.
#pragma once

#include <cstdint>
#include <vector>

#include "view/VIEW.h"

namespace quelmark {

enum LineMode : std::int32_t { LINE_OR = 17, LINE_XOR = 18 };

struct ModelLine {
    ModelPoint from, to;

    friend auto operator<=>(const ModelLine&, const ModelLine&) = default;
};

// No overlay, the cursor hidden at (0, 0, 0); nothing is drawn.
void OverlayInit();
// Forgets the overlay without drawing; the cursor stays.
void OverlayReset();
// Lines in model space, in every visible view; a pixel of several lines of one call is drawn once. LINE_OR
// lines are part of the picture, LINE_XOR lines of the overlay: the same lines a second time take them away.
void OverlayModelLines(std::vector<ModelLine> lines, LineMode mode);
// Squares of 3 × 3 pixels at model points, likewise.
void OverlayModelMarks(const std::vector<ModelPoint>& points, LineMode mode);
// Lines between pane points (x and y of the points), across the whole pane, by exclusive-or.
void OverlayPaneLines(std::vector<ModelLine> lines);
// Draws everything there is, by exclusive-or, once: to show it and to take it away again.
void OverlayToggle();

ModelPoint CursorPosition();
// Coordinates are limited to the coordinate range.
void CursorMove(const ModelPoint& position);
// Shows or hides the cursor; whether it was shown before.
bool CursorShow(bool shown);
bool CursorShown();
// The cursor follows a pointer at a pane point, with the snap of the grid. False outside the views.
bool CursorTrack(std::int32_t x, std::int32_t y);

// Takes overlay and cursor off the frame while a setting changes, and puts them back where they then belong.
class OverlayPause {
  public:
    OverlayPause();
    ~OverlayPause();
    OverlayPause(const OverlayPause&) = delete;
    OverlayPause& operator=(const OverlayPause&) = delete;
};

}  // namespace quelmark
