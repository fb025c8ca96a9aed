#include "text/cp932.h"

#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr char16_t REPLACEMENT = 0xFFFD;

// The Unicode character at the front of `text`, and how many bytes it takes.
char16_t Decode(std::string_view text, std::size_t& length) {
    const auto lead = static_cast<unsigned char>(text[0]);
    length = 1;
    if (!IsLeadByte(lead)) {
        const char16_t unicode = CP932_SINGLES[lead];
        return unicode == 0 && lead != 0 ? REPLACEMENT : unicode;
    }
    if (text.size() < 2) {
        return REPLACEMENT;
    }
    const auto trail = static_cast<unsigned char>(text[1]);
    if (trail < 0x40 || trail > 0xFC) {
        return REPLACEMENT;
    }
    const unsigned row = lead <= 0x9F ? lead - 0x81U : lead - 0xC1U;
    const char16_t unicode = CP932_DOUBLES[row * 189 + (trail - 0x40U)];
    length =
        unicode == 0 && trail < 0x80 ? 1 : 2;  // an ASCII byte after a broken lead byte stands for itself
    return unicode == 0 ? REPLACEMENT : unicode;
}

void AppendUtf8(std::string& out, char16_t unicode) {
    if (unicode < 0x80) {
        out += static_cast<char>(unicode);
    } else if (unicode < 0x800) {
        out += static_cast<char>(0xC0 | unicode >> 6);
        out += static_cast<char>(0x80 | (unicode & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | unicode >> 12);
        out += static_cast<char>(0x80 | (unicode >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (unicode & 0x3F));
    }
}

// The Unicode character at `at`, which moves behind it; nothing when the bytes are not well-formed UTF-8.
std::optional<std::uint32_t> DecodeUtf8(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80) {
        return lead;
    }
    const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4 || at + more > text.size()) {
        return std::nullopt;
    }
    std::uint32_t unicode = lead & (0x3FU >> more);
    for (std::size_t k = 0; k < more; ++k) {
        const auto byte = static_cast<unsigned char>(text[at + k]);
        if ((byte & 0xC0) != 0x80) {
            return std::nullopt;
        }
        unicode = unicode << 6 | (byte & 0x3FU);
    }
    constexpr std::uint32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
    if (unicode < LEAST[more] || unicode > 0x10FFFF || (unicode >= 0xD800 && unicode < 0xE000)) {
        return std::nullopt;
    }
    at += more;
    return unicode;
}

bool AppendCp932(std::string& out, std::uint32_t unicode) {
    const std::uint16_t code = Cp932Code(unicode);
    if (code == 0 && unicode != 0) {
        return false;
    }
    if (code > 0xFF) {
        out += static_cast<char>(code >> 8);
    }
    out += static_cast<char>(code & 0xFF);
    return true;
}

}  // namespace

std::string Cp932ToUtf8(std::string_view cp932) {
    std::string out;
    out.reserve(cp932.size() + cp932.size() / 2);
    while (!cp932.empty()) {
        std::size_t length = 0;
        AppendUtf8(out, Decode(cp932, length));
        cp932.remove_prefix(length);
    }
    return out;
}

std::optional<std::string> Utf8ToCp932(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto unicode = DecodeUtf8(utf8, at);
        if (!unicode || !AppendCp932(out, *unicode)) {
            return std::nullopt;
        }
    }
    return out;
}

std::string Utf8ToCp932Lossy(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        const auto unicode = DecodeUtf8(utf8, at);
        if (!unicode || !AppendCp932(out, *unicode)) {
            out += '?';
        }
    }
    return out;
}

std::string FileTextToCp932(std::string bytes) {
    if (!std::string_view(bytes).starts_with(UTF8_MARK)) {
        return bytes;
    }
    return Utf8ToCp932Lossy(std::string_view(bytes).substr(UTF8_MARK.size()));
}

std::size_t FindLastOf(std::string_view cp932, std::string_view anyOf) {
    std::size_t last = std::string_view::npos;
    for (std::size_t at = FindFirstOf(cp932, anyOf); at != std::string_view::npos;
         at = FindFirstOf(cp932, anyOf, at + 1)) {
        last = at;
    }
    return last;
}

std::size_t FindFirstOf(std::string_view cp932, std::string_view anyOf, std::size_t from) {
    for (std::size_t at = from; at < cp932.size(); ++at) {
        if (IsLeadByte(static_cast<unsigned char>(cp932[at]))) {
            ++at;
        } else if (anyOf.find(cp932[at]) != std::string_view::npos) {
            return at;
        }
    }
    return std::string_view::npos;
}

void ReplaceCharacter(std::string& cp932, char from, char to) {
    const std::string_view wanted(&from, 1);
    for (std::size_t at = FindFirstOf(cp932, wanted); at != std::string::npos;
         at = FindFirstOf(cp932, wanted, at + 1)) {
        cp932[at] = to;
    }
}

}  // namespace quelmark
