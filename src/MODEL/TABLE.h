// What the attribute table and the object table share: used slots, names cut to 16 bytes, search, and the
// polygons' numbers when an entry goes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "MODEL/POLY.h"

namespace quelmark {

inline constexpr std::size_t TABLE_NAME_BYTES = 16;

// Copies at most `most` bytes and terminates them. Names are compared byte by byte, so the cut is at the
// byte.
template <std::size_t N>
void CopyText(char (&to)[N], std::string_view text, std::size_t most = N - 1) {
    const std::size_t length = std::min({text.size(), most, N - 1});
    text.copy(to, length);
    to[length] = '\0';
}

// The lowest free slot, or -1.
template <class Record>
std::int32_t TableFreeSlot(const Record* table, std::int32_t size) {
    for (std::int32_t i = 0; i < size; ++i) {
        if (table[i].used == 0) {
            return i;
        }
    }
    return -1;
}

// The lowest used slot of that name up to `last`, names compared in their first 16 bytes, or -1.
template <class Record>
std::int32_t TableFind(const Record* table, std::int32_t size, std::int32_t last, std::string_view name) {
    for (std::int32_t i = 0; i <= last && i < size; ++i) {
        if (table[i].used != 0 && table[i].name == name.substr(0, TABLE_NAME_BYTES)) {
            return i;
        }
    }
    return -1;
}

// Deletes entry n unless a polygon's `field` names it: higher numbers fall by one.
template <class Record>
bool TableDelete(Record* table, std::int32_t n, std::int32_t& last, std::int32_t& current,
                 std::int16_t PolygonRecord::*field) {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        if (polygon->*field == n) {
            return false;
        }
    }
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        polygon->*field = static_cast<std::int16_t>(polygon->*field - (polygon->*field > n ? 1 : 0));
    }
    for (std::int32_t i = n; i < last; ++i) {
        table[i] = table[i + 1];
    }
    table[last] = Record{};
    --last;
    if (last >= 0 && current > last) {
        current = last;
    }
    return true;
}

// The number of polygons, or of those whose `field` is n.
inline std::int32_t TablePolygons(std::int16_t PolygonRecord::*field, const std::int32_t* n) {
    std::int32_t count = 0;
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        count += n == nullptr || polygon->*field == *n ? 1 : 0;
    }
    return count;
}

}  // namespace quelmark
