// The attribute table: named surface materials, indexed from 0.
#pragma once

#include <cstdint>
#include <string_view>

namespace quelmark {

// Three 4.12 fixed-point values (4096 = 1.0) and a reserved word.
struct ColourTriple {
    std::int16_t red, green, blue;
    std::int16_t reserved;
};

struct AttributeRecord {
    std::uint16_t used;
    std::uint16_t code;  // bit 1 red, bit 2 green, bit 0 blue: the palette index its polygons are drawn in
    ColourTriple col, amb, dif, spc, size, ref, tra, rfr, att;
    std::int16_t spcextra;
    std::int32_t map;
    char mapfile[512];
    std::int32_t mapsize[2][2], mapview[2][2], mapwind[2][2];  // 16.16 fixed point
    char name[17];
    char file[513];
};

extern AttributeRecord* AttrTable;
extern std::int32_t AttributeCount;  // records of the table, in use or not
extern std::int32_t AttrLast;        // highest index in use; 0 also when there is none
extern std::int32_t AttrCurrent;     // the attribute scripts give new polygons
// Grows with every change of what is shown of the attributes: panes compare it to know that they are stale.
extern std::uint32_t AttrRevision;

void AttrInit(std::int32_t count);
void AttrExit();
// A new attribute with default values in the lowest free slot, or -1 with the message
// "アトリビュートバッファがオーバーフローしました". Names are cut to 16 bytes.
std::int32_t AttrAlloc(std::string_view name);
// The record of a new attribute of that name.
void AttrDefaults(AttributeRecord& attribute, std::string_view name);
std::int32_t AttrFind(std::string_view name);
std::int32_t AttrSearchOrAlloc(std::string_view name);
// Registers the script functions.
void AttributeRegister();
// False when a polygon uses it. Higher numbers fall by one.
bool AttrDelete(std::int32_t attribute);
// Writes an attribute into a shape file; mode 1 appends. False when the slot is unused, the file cannot be
// opened (with a warning) or not written whole.
bool AttrWrite(std::string_view fileName, std::int32_t atrno, std::int32_t mode);
// The drawing colour that follows a surface colour: a bit for each component above 2457 (0.6).
std::uint16_t AttrCodeOfColour(const ColourTriple& colour);

}  // namespace quelmark
