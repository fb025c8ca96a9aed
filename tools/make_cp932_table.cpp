// Writes src/text/cp932_table.h from the C library's converter "CP932":
//     g++ -std=c++20 -o /tmp/make_cp932_table tools/make_cp932_table.cpp && /tmp/make_cp932_table > src/text/cp932_table.h
#include <iconv.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

// The one code that `bytes` converts to, or 0 when the converter refuses.
std::uint32_t Convert(iconv_t converter, const unsigned char* bytes, std::size_t count, bool toUnicode) {
    char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes));
    unsigned char out[8] = {};
    char* outPointer = reinterpret_cast<char*>(out);
    std::size_t room = sizeof out;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &in, &count, &outPointer, &room) != 0 || count != 0) {
        return 0;
    }
    const std::size_t used = sizeof out - room;
    if (toUnicode) {
        return used == 2 ? static_cast<std::uint32_t>(out[0] | out[1] << 8) : 0;
    }
    return used == 1 ? out[0] : used == 2 ? static_cast<std::uint32_t>(out[0] << 8 | out[1]) : 0;
}

void WriteArray(const char* name, const std::vector<std::uint32_t>& values) {
    std::printf("inline constexpr char16_t %s[] =", name);
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::printf("%s\\x%04X", i % 16 == 0 ? (i == 0 ? "\n    u\"" : "\"\n    u\"") : "", values[i]);
    }
    std::printf("\";\n");
}

}  // namespace

int main() {
    const iconv_t decode = iconv_open("UTF-16LE", "CP932");
    const iconv_t encode = iconv_open("CP932", "UTF-16LE");
    std::vector<std::uint32_t> singles, doubles, keys, codes;
    for (int byte = 0; byte < 256; ++byte) {
        const auto value = static_cast<unsigned char>(byte);
        singles.push_back(Convert(decode, &value, 1, true));
    }
    for (int lead = 0x81; lead <= 0xFC; lead = lead == 0x9F ? 0xE0 : lead + 1) {
        for (int trail = 0x40; trail <= 0xFC; ++trail) {
            const unsigned char bytes[] = {static_cast<unsigned char>(lead), static_cast<unsigned char>(trail)};
            doubles.push_back(trail == 0x7F ? 0 : Convert(decode, bytes, 2, true));
        }
    }
    for (std::uint32_t code = 0x80; code < 0x10000; ++code) {
        if (code >= 0xD800 && code < 0xE000) {
            continue;
        }
        const unsigned char bytes[] = {static_cast<unsigned char>(code), static_cast<unsigned char>(code >> 8)};
        if (const std::uint32_t value = Convert(encode, bytes, 2, false)) {
            keys.push_back(code);
            codes.push_back(value);
        }
    }
    std::printf(
        "// Made by tools/make_cp932_table.cpp; do not edit.\n"
        "#pragma once\n\n"
        "namespace quelmark {\n\n"
        "// Unicode of each single byte; 0: none (a lead byte, or undefined).\n");
    WriteArray("CP932_SINGLES", singles);
    std::printf("// Unicode of each double-byte code: 189 trail bytes 0x40-0xFC for each lead byte 0x81-0x9F, 0xE0-0xFC.\n");
    WriteArray("CP932_DOUBLES", doubles);
    std::printf("// Unicode from 0x80 on that cp932 carries, in order, and the code of each.\n");
    WriteArray("CP932_UNICODES", keys);
    WriteArray("CP932_CODES", codes);
    std::printf("\n}  // namespace quelmark\n");
}
