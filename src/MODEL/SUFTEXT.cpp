#include "MODEL/SUFTEXT.h"

#include <charconv>
#include <span>
#include <utility>
#include <vector>

#include "ML/ERROR.h"
#include "MODEL/OBJ.h"
#include "MODEL/POLY.h"
#include "MODEL/SUFWORD.h"
#include "text/cp932.h"
#include "text/number.h"
#include "text/savefile.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr double FIXED_12 = 4096;
constexpr double FIXED_16 = 65536;

// ---- names ----

// One word for the reader, and no number.
bool IsName(const std::string& name) {
    const char* at = name.c_str();
    while (!IsSufBlank(*at) && !IsSufBracket(*at) && !BeginsSufComment(at)) {
        at += SufCharacterBytes(at);
    }
    double number = 0;
    return !name.empty() && at == name.c_str() + name.size() && !IsSufNumber(name, number);
}

// False, with a warning, for a name that the reader would not take.
bool AppendName(std::string& text, std::string_view name) {
    if (name.size() > SUF_NAME_BYTES || !IsName(std::string(name))) {
        Warning(std::string("名前（"_sjis)
                    .append(name)
                    .append(name.size() > SUF_NAME_BYTES ? "）が長すぎます。（３１文字まで)"_sjis
                                                         : "）がおかしい"_sjis));
        return false;
    }
    text += name;
    return true;
}

// ---- numbers ----

void AppendReal(std::string& text, const char* format, double value) {
    char number[400];
    text.append(number, static_cast<std::size_t>(FormatReal(number, sizeof number, format, value)));
}

// ---- attributes ----

bool IsGrey(const ColourTriple& colour) {
    return colour.red == colour.green && colour.green == colour.blue;
}

void AppendColour(std::string& text, const ColourTriple& colour) {
    if (IsGrey(colour)) {
        return AppendReal(text, "%4.2lf", colour.red / FIXED_12);
    }
    AppendReal(text, "rgb ( %4.2lf ", colour.red / FIXED_12);
    AppendReal(text, "%4.2lf ", colour.green / FIXED_12);
    AppendReal(text, "%4.2lf )", colour.blue / FIXED_12);
}

void AppendColourLine(std::string& text, const char* word, const ColourTriple& colour) {
    text.append("\t").append(word).append(" ( ");
    AppendColour(text, colour);
    text += " )\n";
}

// Left out when the colour is black.
void AppendOptionalLine(std::string& text, const char* word, const ColourTriple& colour) {
    if (colour.red != 0 || colour.green != 0 || colour.blue != 0) {
        AppendColourLine(text, word, colour);
    }
}

void AppendRectangle(std::string& text, const char* word, const std::int32_t (&rectangle)[2][2]) {
    text.append("\t").append(word).append(" ( ");
    for (const auto& point : rectangle) {
        for (const std::int32_t value : point) {
            if ((value & 0xFFFF) == 0) {
                text.append(std::to_string(value / 65536)).append(" ");
            } else {
                AppendReal(text, "%8.4lf ", value / FIXED_16);
            }
        }
    }
    text += ")\n";
}

// ---- polygons ----

constexpr const char* KEYWORDS[] = {"poly", "shade", "uvpoly", "uvshade"};

void AppendWords(std::string& text, std::initializer_list<std::int16_t> words) {
    char number[8];
    for (const std::int16_t word : words) {
        const auto end = std::to_chars(number, number + sizeof number, word).ptr;
        text += '\t';
        text.append(number, end);
    }
}

// A number that names no attribute is written as the reader's attribute for polygons without one.
const char* AttributeName(std::int16_t attribute) {
    const bool named = 0 <= attribute && attribute < AttributeCount && AttrTable[attribute].name[0] != '\0';
    return named ? AttrTable[attribute].name : "no";
}

// A move may have wrapped to -32768, which the format does not have.
std::int16_t Position(std::int16_t value) {
    return value < VERTEX_MIN ? static_cast<std::int16_t>(VERTEX_MIN) : value;
}

void AppendPolygon(std::string& text, const PolygonRecord& polygon) {
    const std::uint16_t type = polygon.type & POLY_UVSHADE;
    text.append("prim\t").append(KEYWORDS[type]).append("\t(");
    bool first = true;
    for (const VertexRecord& vertex : polygon.Vertices()) {
        if (!first) {
            text += "\n\t\t ";
        }
        first = false;
        AppendWords(text, {Position(vertex.x), Position(vertex.y), Position(vertex.z)});
        if ((type & POLY_SHADE) != 0) {
            AppendWords(text, {vertex.nx, vertex.ny, vertex.nz});
        }
        if ((type & POLY_UV) != 0) {
            AppendWords(text, {vertex.u, vertex.v});
        }
    }
    text += " )\n\n";
}

// ---- objects ----

bool IsObject(std::int32_t object) {
    return 0 <= object && object < ObjectTableSize && ObjTable[object].used != 0;
}

template <typename Visit>
void ForEachPolygon(Visit visit) {
    for (PolygonRecord* polygon = PolygonTop(); polygon != nullptr; polygon = PolygonNext(polygon)) {
        visit(static_cast<const PolygonRecord&>(*polygon));
    }
}

using Polygons = std::span<const PolygonRecord* const>;

// The polygons, in this order, as a block of this name.
bool AppendObject(std::string& text, std::string_view name, Polygons polygons) {
    text += "obj suf ";
    bool good = AppendName(text, name);
    text += " {\n";
    std::int32_t attribute = INT32_MIN;  // the first polygon always differs
    for (const PolygonRecord* polygon : polygons) {
        if (polygon->attr != attribute) {
            attribute = polygon->attr;
            text += "atr ";
            good = good && AppendName(text, AttributeName(polygon->attr));
            text += "\n";
        }
        if (!good) {
            break;
        }
        AppendPolygon(text, *polygon);
    }
    text += "}\n";
    return good;
}

// The attributes of these numbers, each as a block.
template <typename Wanted>
bool AppendAttributes(std::string& text, Wanted wanted) {
    for (std::int32_t i = 0; i < AttributeCount; ++i) {
        if (AttrTable[i].used != 0 && wanted(static_cast<std::size_t>(i))) {
            const SufText attribute = AttributeText(AttrTable[i]);
            if (!attribute) {
                return false;
            }
            text += *attribute;
        }
    }
    return true;
}

// What is appended to a file that begins with a UTF-8 byte order mark is read as UTF-8.
SaveResult Append(std::string_view fileName, const std::string& text) {
    return SaveAppending(fileName, BeginsWithUtf8Mark(fileName) ? Cp932ToUtf8(text) : text);
}

}  // namespace

SufText AttributeText(const AttributeRecord& attribute) {
    std::string text = "atr ";
    if (!AppendName(text, attribute.name)) {
        return {};
    }
    text += " {\n";
    AppendColourLine(text, "col", attribute.col);
    AppendColourLine(text, "tra", attribute.tra);
    AppendColourLine(text, "amb", attribute.amb);
    AppendColourLine(text, "dif", attribute.dif);
    text += "\tspc ( ";
    AppendColour(text, attribute.spc);
    text += " ";
    AppendColour(text, attribute.size);
    AppendReal(text, " %4.2lf )\n", attribute.spcextra / FIXED_12);
    AppendOptionalLine(text, "ref", attribute.ref);
    AppendOptionalLine(text, "rfr", attribute.rfr);
    AppendOptionalLine(text, "att", attribute.att);
    if (attribute.map == 1 && attribute.mapfile[0] != '\0') {
        text += "\tcolormap ( ";
        if (!AppendName(text, attribute.mapfile)) {
            return {};
        }
        text += " )\n";
        AppendRectangle(text, "mapsize", attribute.mapsize);
        AppendRectangle(text, "mapview", attribute.mapview);
        AppendRectangle(text, "mapwind", attribute.mapwind);
    }
    return text + "}\n";
}

SufText AttributesText() {
    std::string text;
    return AppendAttributes(text, [](std::size_t) { return true; }) ? SufText(std::move(text)) : SufText();
}

SufText ObjectText(std::string_view name) {
    std::vector<const PolygonRecord*> selected;
    ForEachPolygon([&selected](const PolygonRecord& polygon) {
        if (polygon.select == 1) {
            selected.push_back(&polygon);
        }
    });
    std::string text;
    return AppendObject(text, name, selected) ? SufText(std::move(text)) : SufText();
}

SufText ModelText(bool selectedOnly) {
    const auto objects = static_cast<std::size_t>(ObjectTableSize);
    std::vector<std::vector<const PolygonRecord*>> polygonsOf(objects + 1);  // the last ones have no object
    std::vector<bool> usesAttribute(static_cast<std::size_t>(AttributeCount));
    ForEachPolygon([&](const PolygonRecord& polygon) {
        if (selectedOnly && polygon.select != 1) {
            return;
        }
        polygonsOf[IsObject(polygon.obj) ? static_cast<std::size_t>(polygon.obj) : objects].push_back(
            &polygon);
        if (0 <= polygon.attr && polygon.attr < AttributeCount) {
            usesAttribute[static_cast<std::size_t>(polygon.attr)] = true;
        }
    });
    std::string text;
    if (!AppendAttributes(text,
                          [&](std::size_t attribute) { return !selectedOnly || usesAttribute[attribute]; })) {
        return {};
    }
    for (std::int32_t i = 0; i < ObjectTableSize; ++i) {
        const auto& polygons = polygonsOf[static_cast<std::size_t>(i)];
        if (IsObject(i) && (!selectedOnly || !polygons.empty()) &&
            !AppendObject(text, ObjTable[i].name, polygons)) {
            return {};
        }
    }
    const auto& others = polygonsOf[objects];
    if ((!others.empty() || text.empty()) && !AppendObject(text, "no", others)) {
        return {};
    }
    return text;
}

SufText FrameText(const Matrix& matrix, std::string_view object, const Vector& background,
                  std::int32_t angle) {
    std::string text;
    if (background.x != 0 || background.y != 0 || background.z != 0) {
        // No line end behind it: renderers have always been given it so.
        text += "env { back ( rgb ( ";
        AppendReal(text, "%8f ", background.x);
        AppendReal(text, "%8f ", background.y);
        AppendReal(text, "%8f ) ) }", background.z);
    }
    text += "fram {\n\tlight pal ( rgb ( 1 1 1 ) 4 2 -1 )\n";
    text.append("\teye deg ( ").append(std::to_string(angle)).append(" )\n\tmat(\n");
    for (int row = 0; row < 4; ++row) {
        text += "\t\t";
        for (const float element : matrix.row[row]) {
            AppendReal(text, "%8f ", element);
        }
        text += row == 3 ? "1.0\n" : "0.0\n";
    }
    text += "\t)\n\tobj ";
    if (!AppendName(text, object)) {
        return {};
    }
    return text += "\n}\n";
}

bool SaveBlock(std::string_view fileName, const SufText& text, std::int32_t mode) {
    if (!text) {
        return false;
    }
    const SaveResult result = mode == FILE_APPEND ? Append(fileName, *text) : SaveReplacing(fileName, *text);
    if (result == SaveResult::notOpened) {
        Warning("ファイルがオープンできません"_sjis);
    }
    return result == SaveResult::saved;
}

}  // namespace quelmark
