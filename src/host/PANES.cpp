#include "host/PANES.h"

#include <algorithm>
#include <cstdio>

#include "ML/ERROR.h"
#include "MODEL/ATR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "host/BUTTONS.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/TEXTCUT.h"
#include "text/sjis.h"
#include "view/OVERLAY.h"

namespace quelmark {

PaneHandlers PaneEvents;

namespace {

constexpr std::int32_t LIST_CHARACTERS = 9;
constexpr std::int32_t TEXT_CHARACTERS = 8;
constexpr std::int32_t MARGIN = 7;
constexpr std::int32_t STATUS_MARGIN = 6;
constexpr std::int32_t FIELD_GAP = 5;
// Characters, with its margin, that field 0 keeps in a narrow window: a field that would take them is not
// shown.
constexpr std::int32_t FIRST_FIELD_LEAST = 16;
constexpr std::size_t STATUS_BYTES = 255;
constexpr std::size_t MESSAGE_LINES = 10;
constexpr std::uint32_t SCROLL_INTERVAL = 200;
constexpr std::int32_t OBJECT_ROWS = 6;
constexpr std::int32_t WHEEL_ROWS = 3;       // of a turn of the wheel
constexpr std::int32_t WHEEL_TURNS = 10000;  // more scroll any list to its end

// Rows counted from the bottom of the panel.
constexpr std::int32_t COORDINATES_UP = 5;
constexpr std::int32_t OBJECTS_TOP_UP = 13;    // heading
constexpr std::int32_t OBJECTS_BOTTOM_UP = 6;  // scroll mark
constexpr std::int32_t ATTRIBUTES_MARK_UP = 15;
constexpr std::int32_t ATTRIBUTES_LAST_UP = 16;
constexpr std::int32_t ATTRIBUTES_FIRST = 2;

std::array<StatusField, STATUS_FIELDS> fields;
std::vector<std::string> messageLines;
std::int32_t attributeTop = 0, objectTop = 0;  // first entry shown
std::int32_t attributeSeen = -1,
             objectSeen = -1;  // current entries when the lists were last scrolled to them
std::uint32_t attributeRevision = 0, objectRevision = 0;

std::int32_t Rows() {
    return HostWindow().ClientHeight() / std::max(HostWindow().LineHeight(), 1);
}
std::int32_t ListWidth() {
    return LIST_CHARACTERS * HostWindow().CharacterWidth() + MARGIN;
}
std::int32_t StatusHeight() {
    return HostWindow().LineHeight() + STATUS_MARGIN;
}
std::int32_t AttributeRows() {
    return std::max(Rows() - ATTRIBUTES_LAST_UP - ATTRIBUTES_FIRST + 1, 0);
}

std::string ListName(const char* name) {
    char text[64];
    std::snprintf(text, sizeof text, "%-10s", name);
    return text;
}

std::string Coordinate(const char* format, std::int32_t value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// The attribute whose name stands in a row, or -1.
std::int32_t AttributeOfRow(std::int32_t row) {
    if (row < ATTRIBUTES_FIRST || row >= ATTRIBUTES_FIRST + AttributeRows()) {
        return -1;
    }
    const std::int32_t n = attributeTop + row - ATTRIBUTES_FIRST;
    return n <= AttrLast && n < AttributeCount && AttrTable[n].used != 0 ? n : -1;
}

// The object whose name stands in a row, or -1.
std::int32_t ObjectOfRow(std::int32_t row) {
    const std::int32_t place = row - (Rows() - OBJECTS_TOP_UP) - 1;
    if (place < 0 || place >= OBJECT_ROWS) {
        return -1;
    }
    const std::int32_t n = objectTop + place;
    return n <= ObjLast && n < ObjectTableSize && ObjTable[n].used != 0 ? n : -1;
}

void AddAttributeRows(std::vector<PaneRow>& rows) {
    rows.push_back({0, "ｱﾄﾘﾋﾞｭｰﾄ"_sjis, false, true});
    rows.push_back({1, attributeTop > 0 ? "   ▲"_sjis : "", false, true});
    for (std::int32_t i = 0; i < AttributeRows(); ++i) {
        const std::int32_t row = ATTRIBUTES_FIRST + i;
        if (const std::int32_t n = AttributeOfRow(row); n >= 0) {
            rows.push_back({row, ListName(AttrTable[n].name), n == AttrCurrent, false});
        }
    }
    const bool more = attributeTop + AttributeRows() <= AttrLast;
    rows.push_back({Rows() - ATTRIBUTES_MARK_UP, more ? "   ▼"_sjis : "", false, true});
}

void AddObjectRows(std::vector<PaneRow>& rows) {
    const std::int32_t first = Rows() - OBJECTS_TOP_UP;
    rows.push_back({first, objectTop > 0 ? "ｵﾌﾞｼﾞｪ▲"_sjis : "ｵﾌﾞｼﾞｪｸﾄ"_sjis, false, true});
    for (std::int32_t i = 0; i < OBJECT_ROWS; ++i) {
        const std::int32_t row = first + 1 + i;
        if (const std::int32_t n = ObjectOfRow(row); n >= 0) {
            rows.push_back({row, ListName(ObjTable[n].name), n == ObjCurrent, false});
        }
    }
    const bool more = objectTop + OBJECT_ROWS <= ObjLast;
    rows.push_back({Rows() - OBJECTS_BOTTOM_UP, more ? "   ▼"_sjis : "", false, true});
}

void Scroll(std::int32_t& top, std::int32_t by, std::int32_t last, std::int32_t visible) {
    top = std::clamp(top + by, 0, std::max(last + 1 - visible, 0));
    HostWindow().Invalidate(Pane::List);
}

// Scrolls a list by one entry at once and again every 200 ms while a button is held.
void ScrollWhileHeld(std::int32_t& top, std::int32_t by, std::int32_t last, std::int32_t visible) {
    std::uint32_t next = HostWindow().Milliseconds();
    while (ButtonHeld() && !QuitFlag) {
        if (static_cast<std::int32_t>(HostWindow().Milliseconds() - next) >= 0) {
            Scroll(top, by, last, visible);
            next += SCROLL_INTERVAL;
        }
        HostDeliverHeld();
    }
}

void PressAttributes(std::int32_t row) {
    if (row == 1 || row >= Rows() - ATTRIBUTES_MARK_UP) {
        return ScrollWhileHeld(attributeTop, row == 1 ? -1 : 1, AttrLast, AttributeRows());
    }
    WaitRelease();
    const std::int32_t n = AttributeOfRow(row);
    if (n < 0) {
        return;
    }
    if (PaneEvents.attribute >= 0) {
        CallHandler(PaneEvents.attribute, {n});
    } else {
        AttrCurrent = n;
    }
    ++AttrRevision;
}

void PressObjects(std::int32_t row) {
    const std::int32_t first = Rows() - OBJECTS_TOP_UP;
    if (row == first || row == Rows() - OBJECTS_BOTTOM_UP) {
        return ScrollWhileHeld(objectTop, row == first ? -1 : 1, ObjLast, OBJECT_ROWS);
    }
    WaitRelease();
    const std::int32_t n = ObjectOfRow(row);  // -1 below the last object
    if (PaneEvents.object >= 0) {
        CallHandler(PaneEvents.object, {n});
    } else if (n >= 0) {
        ObjCurrent = n;
    }
    ++ObjRevision;
}

void PressList(std::int32_t y) {
    const std::int32_t row = y / std::max(HostWindow().LineHeight(), 1);
    if (row >= Rows() - COORDINATES_UP) {
        WaitRelease();
        CallHandler(PaneEvents.control, {row - (Rows() - COORDINATES_UP)});
    } else if (row >= Rows() - OBJECTS_TOP_UP) {
        PressObjects(row);
    } else if (row >= 1) {
        PressAttributes(row);
    } else {
        WaitRelease();
    }
}

// A list scrolls to its current entry only when that has changed, and never shows less than it could.
void FollowCurrent(std::int32_t current, std::int32_t last, std::int32_t& seen, std::int32_t& top,
                   std::int32_t visible) {
    top = std::min(top, std::max(last + 1 - visible, 0));
    if (current == seen || visible < 1) {
        return;
    }
    seen = current;
    top = std::clamp(top, std::max(current - visible + 1, 0), std::max(current, 0));
}

}  // namespace

PixelRect ViewsRect() {
    return {0, 0, ButtonsRect().left, HostWindow().ClientHeight()};
}

PixelRect ButtonsRect() {
    const PixelRect list = ListRect();
    return {std::max(list.left - ButtonAreaWidth(), 0), 0, list.left, list.bottom};
}

PixelRect ListRect() {
    const std::int32_t width = HostWindow().ClientWidth();
    return {std::max(width - ListWidth(), 0), 0, width,
            std::max(HostWindow().ClientHeight() - StatusHeight(), 0)};
}

PixelRect StatusRect() {
    const std::int32_t height = HostWindow().ClientHeight();
    return {0, std::max(height - StatusHeight(), 0), HostWindow().ClientWidth(), height};
}

PixelRect MessageRect() {
    const PixelRect status = StatusRect();
    if (messageLines.empty()) {
        return {0, status.top, 0, status.top};
    }
    const auto rows = static_cast<std::int32_t>(messageLines.size()) + 1;
    return {0, std::max(status.top - rows * HostWindow().LineHeight(), 0), ViewsRect().right, status.top};
}

std::int32_t ListTextLeft() {
    return HostWindow().ClientWidth() - TEXT_CHARACTERS * HostWindow().CharacterWidth() - MARGIN;
}

PixelRect StatusFieldRect(std::int32_t field) {
    const PixelRect bar = StatusRect();
    const std::int32_t cw = HostWindow().CharacterWidth();
    std::int32_t right = bar.right - 1;
    for (std::int32_t i = STATUS_FIELDS - 1; i >= 1; --i) {
        const std::int32_t width = fields[static_cast<std::size_t>(i)].width;
        const std::int32_t left = right - width * cw - 2;
        const bool shown = width > 0 && left - FIELD_GAP >= FIRST_FIELD_LEAST * cw;
        if (i == field) {
            return shown ? PixelRect{left, bar.top + 2, right, bar.bottom - 1} : PixelRect{0, 0, 0, 0};
        }
        if (shown) {
            right = left - FIELD_GAP;
        }
    }
    return {cw, bar.top + 2, right, bar.bottom - 1};
}

std::vector<PaneRow> ListRows() {
    std::vector<PaneRow> rows;
    AddAttributeRows(rows);
    AddObjectRows(rows);
    const ModelPoint cursor = CursorPosition();
    const std::int32_t first = Rows() - COORDINATES_UP;
    rows.push_back({first, Coordinate("X:%6d", cursor.x), false, false});
    rows.push_back({first + 1, Coordinate("Y:%6d", cursor.y), false, false});
    rows.push_back({first + 2, Coordinate("Z:%6d", cursor.z), false, false});
    return rows;
}

const std::array<StatusField, STATUS_FIELDS>& StatusFields() {
    return fields;
}
const std::vector<std::string>& MessageLines() {
    return messageLines;
}

void PanesReset() {
    fields = {};
    messageLines.clear();
    attributeTop = objectTop = 0;
    attributeSeen = objectSeen = -1;
    PaneEvents = PaneHandlers{};
}

void StatusSet(std::int32_t field, std::string_view text) {
    if (0 <= field && field < STATUS_FIELDS) {
        fields[static_cast<std::size_t>(field)].text = CutText(text, STATUS_BYTES);
        HostWindow().Invalidate(Pane::Status);
    }
}

void StatusSetWidth(std::int32_t field, std::int32_t width) {
    constexpr std::int32_t WIDTH_MOST = 1000;
    if (0 <= field && field < STATUS_FIELDS) {
        fields[static_cast<std::size_t>(field)].width = std::clamp(width, 0, WIDTH_MOST);
    }
    HostWindow().Invalidate(Pane::Status);
}

namespace {

void LogAndAppend(std::string_view text) {
    std::string line(text);
    line += '\n';
    OutputLog(line);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        messageLines.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    HostWindow().Invalidate(Pane::Message);
}

}  // namespace

void MessageShow(std::string_view text) {
    MessageHide();
    LogAndAppend(text);
}

void MessageAdd(std::string_view text) {
    HostWindow().Invalidate(Pane::Message);
    LogAndAppend(text);
    if (messageLines.size() > MESSAGE_LINES) {
        messageLines.erase(messageLines.begin(), messageLines.end() - MESSAGE_LINES);
    }
}

void MessageHide() {
    if (!messageLines.empty()) {
        HostWindow().Invalidate(Pane::Message);
        messageLines.clear();
    }
}

void PanesRefresh() {
    if (attributeRevision == AttrRevision && objectRevision == ObjRevision) {
        return;
    }
    attributeRevision = AttrRevision;
    objectRevision = ObjRevision;
    FollowCurrent(AttrCurrent, AttrLast, attributeSeen, attributeTop, AttributeRows());
    FollowCurrent(ObjCurrent, ObjLast, objectSeen, objectTop, OBJECT_ROWS);
    HostWindow().Invalidate(Pane::List);
}

void PanesCursorMoved() {
    HostWindow().Invalidate(Pane::List);
}

std::string PaneTip(std::int32_t x, std::int32_t y) {
    if (y >= StatusRect().top || x < ButtonsRect().left) {
        return "";
    }
    if (x < ListRect().left) {
        return ButtonTipAt(x, y);
    }
    const std::int32_t row = y / std::max(HostWindow().LineHeight(), 1);
    if (const std::int32_t n = AttributeOfRow(row); n >= 0) {
        return AttrTable[n].name;
    }
    const std::int32_t n = ObjectOfRow(row);
    return n >= 0 ? ObjTable[n].name : "";
}

bool PanePress(std::int32_t x, std::int32_t y) {
    if (y >= StatusRect().top) {
        WaitRelease();
        return true;
    }
    if (x >= ListRect().left) {
        PressList(y);
        return true;
    }
    if (x >= ButtonsRect().left) {
        ButtonPanelPress(x, y);
        return true;
    }
    return false;
}

bool PaneWheel(std::int32_t x, std::int32_t y, std::int32_t turns) {
    if (y >= StatusRect().top || x < ListRect().left) {
        return false;
    }
    const std::int32_t row = y / std::max(HostWindow().LineHeight(), 1);
    const std::int32_t by = -std::clamp(turns, -WHEEL_TURNS, WHEEL_TURNS) * WHEEL_ROWS;
    if (row < Rows() - OBJECTS_TOP_UP) {
        Scroll(attributeTop, by, AttrLast, AttributeRows());
    } else if (row < Rows() - COORDINATES_UP) {
        Scroll(objectTop, by, ObjLast, OBJECT_ROWS);
    }
    return true;
}

}  // namespace quelmark
