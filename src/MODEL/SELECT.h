// Selection: the `select` word of each polygon, set by regions and properties in four modes, and what is done
// with a saved selection.
#pragma once

#include <cstdint>
#include <span>

#include "MODEL/POLY.h"

namespace quelmark {

enum SelectMode : std::int32_t {
    SELECT_ALL = 0,
    SELECT_UPDATE = 0,
    SELECT_AND = 1,
    SELECT_OR = 2,
    SELECT_XOR = 3,
    SELECT_SUB = 16,  // added to a mode: a part inside the region is a hit
};
inline constexpr std::int32_t SELECT_MODE_MASK = 3;

// Registers the class Select and every script function of selections.
void SelectRegister();

// Every selection begins so: the load walk starts again, SelectCount is 0.
void SelectBegin();
// Gives a polygon the flag for a hit and its negation for a miss, combined by the mode; invisible ones are
// left alone.
void SelectPolygon(PolygonRecord* polygon, bool hit, bool flag, std::int32_t mode);
// A whole selection, by a test of each polygon.
template <class Hit>
void SelectWhere(bool flag, std::int32_t mode, Hit hit) {
    SelectBegin();
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        SelectPolygon(polygon, hit(*polygon), flag, mode);
    }
}
void SelectAll(bool flag, std::int32_t mode);
// The box spanned by two positions; all vertices must be inside, or with SELECT_SUB in `mode` one.
void SelectArea(bool flag, std::int32_t mode, const VertexRecord& a, const VertexRecord& b);
// The corners of the selected polygons' box; false when none is selected.
bool SelectBounds(VertexRecord& low, VertexRecord& high);

// ---- saved selections ----

// One bit per polygon in buffer order, the least significant first.
struct SelectBits {
    std::int32_t count;  // polygons of the model when it was saved
    std::span<std::uint32_t> words;

    bool Has(std::int32_t i) const {
        const auto word = static_cast<std::size_t>(i / 32);
        return i < count && word < words.size() && (words[word] >> (i % 32) & 1) != 0;
    }
    void Add(std::int32_t i) { words[static_cast<std::size_t>(i / 32)] |= 1U << (i % 32); }
};

std::int32_t PolygonCount();
// Which one in buffer order; -1 of what is no record.
std::int32_t PolygonNumber(const PolygonRecord* wanted);
// Makes the members the selected polygons.
void SelectRestore(const SelectBits& members);
// Adds to `result` the visible polygons that share a position with a visible member.
void SelectAdjoining(const SelectBits& members, SelectBits result);
// The n-th member (from 0), or null.
PolygonRecord* SelectMember(const SelectBits& members, std::int32_t n);
// Selects one polygon, or with null none.
void SelectOnly(const PolygonRecord* wanted);
void SelectDelete(const SelectBits& members);

// ---- held selections: they follow their polygons through every change and undoing ----

inline constexpr std::int32_t SELECT_HOLDS = 10;
// Holds the selected polygons under a number; false when it is not 0 to 9.
bool SelectHold(std::int32_t number);
// Adds to `result` those that are still there.
void SelectHeld(std::int32_t number, SelectBits result);

}  // namespace quelmark
