#include "host/IMAGE.h"

#include <zlib.h>

#include <cstdint>
#include <string_view>

#include "host/PALETTE.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

void PutWord(std::string& bytes, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(word >> shift & 0xFF);
    }
}

const Bytef* BytesOf(std::string_view text) {
    return reinterpret_cast<const Bytef*>(text.data());
}

// Length, type, data, and the checksum of type and data.
void PutChunk(std::string& png, std::string_view type, std::string_view data) {
    PutWord(png, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = png.size();
    png += type;
    png += data;
    const std::string_view checked = std::string_view(png).substr(start);
    PutWord(png, static_cast<std::uint32_t>(crc32(0, BytesOf(checked), static_cast<uInt>(checked.size()))));
}

std::string Header(const PixelRect& part) {
    constexpr char BIT_DEPTH = 8, INDEXED = 3;
    std::string header;
    PutWord(header, static_cast<std::uint32_t>(part.right - part.left));
    PutWord(header, static_cast<std::uint32_t>(part.bottom - part.top));
    header += {BIT_DEPTH, INDEXED, 0, 0, 0};
    return header;
}

std::string Colours() {
    std::string colours;
    for (const PaletteColour& colour : Palette) {
        colours +=
            {static_cast<char>(colour.red), static_cast<char>(colour.green), static_cast<char>(colour.blue)};
    }
    return colours;
}

// Every row behind a byte that says that it is not filtered.
std::string Rows(const PixelRect& part) {
    std::string rows;
    rows.reserve(static_cast<std::size_t>(part.right - part.left + 1) *
                 static_cast<std::size_t>(part.bottom - part.top));
    for (std::int32_t y = part.top; y < part.bottom; ++y) {
        rows += '\0';
        for (std::int32_t x = part.left; x < part.right; ++x) {
            rows += static_cast<char>(ViewFrame.Row(y)[x] & 15);
        }
    }
    return rows;
}

std::string Deflated(std::string_view bytes) {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::string packed(size, '\0');
    const int result = compress2(reinterpret_cast<Bytef*>(packed.data()), &size, BytesOf(bytes),
                                 static_cast<uLong>(bytes.size()), Z_BEST_COMPRESSION);
    packed.resize(result == Z_OK ? size : 0);
    return packed;
}

}  // namespace

std::string PngOf(const PixelRect& part) {
    const PixelRect inside = Intersection(part, ViewFrame.Bounds());
    if (IsEmpty(inside)) {
        return "";
    }
    std::string png = "\x89PNG\r\n\x1A\n";
    PutChunk(png, "IHDR", Header(inside));
    PutChunk(png, "PLTE", Colours());
    PutChunk(png, "IDAT", Deflated(Rows(inside)));
    PutChunk(png, "IEND", "");
    return png;
}

}  // namespace quelmark
