// The `// expect: …` comments of test scripts.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace quelmark::test {

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        found.push_back(line);
    }
    return found;
}

// The texts behind `mark` in the source, one a line.
inline std::vector<std::string> Expected(const std::string& source, const std::string& mark) {
    std::vector<std::string> texts;
    for (const std::string& line : LinesOf(source)) {
        const std::size_t at = line.find(mark);
        if (at != std::string::npos) {
            texts.push_back(line.substr(at + mark.size()));
        }
    }
    return texts;
}

}  // namespace quelmark::test
