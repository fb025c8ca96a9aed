// The object table: named groups of polygons, indexed from 0.
#pragma once

#include <cstdint>
#include <string_view>

namespace quelmark {

struct ObjectRecord {
    std::uint16_t used;
    std::uint16_t edit;  // 1 when a polygon of the object has changed
    char name[17];
    char file[513];
};

extern ObjectRecord* ObjTable;
extern std::int32_t ObjectTableSize;  // records of the table, in use or not
extern std::int32_t ObjLast;          // highest index in use; 0 also when there is none
extern std::int32_t ObjCurrent;       // the object scripts give new polygons
// As AttrRevision, of the objects.
extern std::uint32_t ObjRevision;
// 1 when the model has changed otherwise than an object: a change of it alone needs no object to be told.
extern std::int32_t ModelEdit;

void ObjInit(std::int32_t count);
void ObjExit();
// As the attribute table's; the message is "オブジェクトバッファがオーバーフローしました".
std::int32_t ObjAlloc(std::string_view name);
std::int32_t ObjFind(std::string_view name);
std::int32_t ObjSearchOrAlloc(std::string_view name);
// Registers the script functions.
void ObjectRegister();
bool ObjDelete(std::int32_t object);
// Sets the edit mark of an object; every change of a stored polygon goes through here. A number outside the
// table is ignored.
void ObjMarkEdited(std::int32_t object);

}  // namespace quelmark
