// The redraw: one walk over the data buffer draws every visible view. Only where a mask of some views keeps
// the rectangle of a perspective view that lies over others, that view comes after them in a walk of its own.
#include <vector>

#include "MODEL/ATR.h"
#include "view/FLAT.h"
#include "view/OVERLAY.h"
#include "view/PERS.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::uint8_t COLOUR_WITHOUT_ATTRIBUTE = 7;

bool drawing = false;
// During a redraw:
std::int32_t drawn = 0;  // mask of views
std::vector<const PolygonRecord*> selected;

void Prepare(std::int32_t mask) {
    drawn = mask;
    FlatPrepare(mask);
    PersPrepare(mask);
}

void DrawPolygon(const PolygonRecord& polygon, unsigned seen, std::uint8_t colour, Marks marks) {
    if (seen != 0) {
        FlatPolygon(polygon, seen, colour, marks);
    }
    if ((drawn & WIN_PERS) != 0) {
        PersPolygon(polygon, colour, marks);
    }
}
void DrawPolygon(const PolygonRecord& polygon, std::uint8_t colour, Marks marks) {
    DrawPolygon(polygon, FlatSees(polygon), colour, marks);
}

std::uint8_t AttributeColour(std::int16_t attribute) {
    return attribute >= 0 && attribute < AttributeCount && AttrTable[attribute].used != 0
               ? static_cast<std::uint8_t>(AttrTable[attribute].code & 7)
               : COLOUR_WITHOUT_ATTRIBUTE;
}

void DrawInvisiblePolygons() {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if ((polygon->flags & POLYGON_INVISIBLE) != 0) {
            DrawPolygon(*polygon, COLOUR_INVISIBLE, Marks::None);
        }
    }
}

// Selected polygons are only noted on the way, and drawn last, so that they lie on top.
void DrawModel() {
    if (ViewState.drawInvisible) {
        DrawInvisiblePolygons();
    }
    selected.clear();
    const bool perspective = (drawn & WIN_PERS) != 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        const unsigned seen = FlatSees(*polygon);
        if ((polygon->flags & POLYGON_INVISIBLE) != 0 || (seen == 0 && !perspective)) {
            continue;
        }
        if (polygon->select != 0) {
            selected.push_back(polygon);
        } else {
            DrawPolygon(*polygon, seen, AttributeColour(polygon->attr), Marks::AsSet);
        }
    }
    for (const PolygonRecord* polygon : selected) {
        DrawPolygon(*polygon, COLOUR_SELECTED, Marks::AsSet);
    }
}

// The perspective view lies over another of the mask, by more than the row that views of an odd height share.
bool PerspectiveCovers(std::int32_t mask) {
    const PixelRect pers = Views[ViewIndex(WIN_PERS)].Rect();
    for (std::int32_t view = WIN_XY; (mask & WIN_PERS) != 0 && view <= WIN_ZX; view <<= 1) {
        const PixelRect shared = Intersection(pers, Views[ViewIndex(view)].Rect());
        if ((mask & view) != 0 && !IsEmpty(shared) && shared.bottom - shared.top > 1) {
            return true;
        }
    }
    return false;
}

void DrawViews(std::int32_t mask, bool clear) {
    Prepare(mask);
    if (clear) {
        FlatGround();
        PersGround();
        ViewTextsDrop(mask);
    }
    DrawModel();
}

void DamageViews(std::int32_t mask) {
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        if ((mask & 1 << i) != 0) {
            ViewDamage(Views[i].Rect());
        }
    }
}

}  // namespace

void ViewEnableDrawing(bool on) {
    drawing = on;
}
bool ViewDrawingEnabled() {
    return drawing;
}

void ViewRedrawMask(std::int32_t mask, bool clear) {
    mask &= VisibleViews;
    if (!drawing || mask == 0) {
        return;
    }
    const OverlayPause pause;
    if (PerspectiveCovers(mask)) {
        DrawViews(mask & WIN_ORTHOGRAPHIC, clear);
        DrawViews(mask & WIN_PERS, clear);
    } else {
        DrawViews(mask, clear);
    }
    DamageViews(mask);
}

void ViewRedraw(const PixelRect& area, bool clear) {
    std::int32_t mask = 0;
    for (std::int32_t i = 0; i < VIEW_COUNT; ++i) {
        mask |= IsEmpty(Intersection(area, Views[i].Rect())) ? 0 : 1 << i;
    }
    ViewRedrawMask(mask, clear);
}

void ViewClear(bool fill) {
    const bool shown = CursorShow(false);
    if (fill) {
        FillRect(ViewFrame, ViewFrame.Bounds(), COLOUR_BACKGROUND);
        ViewDamage(ViewFrame.Bounds());
    } else {
        OverlayToggle();
    }
    OverlayReset();
    ViewTextsDrop(WIN_ALL);
    CursorShow(shown);
}

bool ViewDrawCurrent(bool exclusiveOr) {
    if (CurrentPolygon == nullptr || CurrentPolygon->vers < 1 || CurrentPolygon->vers > MaxVertex ||
        CurrentPolygon->vers >= VERTEX_LIMIT) {
        return false;
    }
    if (exclusiveOr) {
        std::vector<ModelLine> lines;
        const auto vertices = CurrentPolygon->Vertices();
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            lines.push_back({ViewConverted(vertices[i]), ViewConverted(vertices[(i + 1) % vertices.size()])});
        }
        OverlayModelLines(std::move(lines), LINE_XOR);
        return true;
    }
    if (drawing) {
        const OverlayPause pause;
        Prepare(VisibleViews);
        DrawPolygon(*CurrentPolygon, COLOUR_SELECTED, Marks::AsSet);
        DamageViews(VisibleViews);
    }
    return true;
}

}  // namespace quelmark
