#include "host/TEXTCUT.h"

#include "text/cp932.h"

namespace quelmark {

std::string_view CutText(std::string_view text, std::size_t bytes) {
    std::size_t end = 0;
    while (end < text.size()) {
        const bool isDouble = IsLeadByte(static_cast<unsigned char>(text[end])) && end + 1 < text.size();
        const std::size_t next = end + (isDouble ? 2 : 1);
        if (next > bytes) {
            break;
        }
        end = next;
    }
    return text.substr(0, end);
}

std::vector<std::string> SplitLines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::string OneLineText(std::string_view text) {
    std::string line(text);
    for (char& character : line) {
        const auto byte = static_cast<unsigned char>(character);
        character = byte < ' ' || byte == 0x7F ? ' ' : character;
    }
    return line;
}

}  // namespace quelmark
