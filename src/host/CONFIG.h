// Quelmark.ini: found on the search path, read line by line, its entries kept for scripts and written back on
// request.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quelmark {

struct ConfigEntry {
    std::string key;
    std::string value;
};

// A line as key and value: the key up to the first blank or "=", the value without surrounding blanks.
// Nothing for an empty line or a comment ("#"); a line with a key alone has an empty value.
std::optional<ConfigEntry> ConfigSplit(std::string_view line);

// The search path that an environment variable gives: the value of MODELPATH as it stands; the directory of
// HOME or home, or none (""), before the program directory and its subdirectories.
std::string ConfigSearchPath(std::string_view variable, std::string_view value,
                             std::string_view programDirectory);
// A file as given (then with the current directory before it), else in the first directory of the
// ";"-separated list that has it.
std::optional<std::string> ConfigFind(std::string_view pathList, std::string_view name);

// Reads the lines of the file (cp932, or UTF-8 with a byte order mark); nothing when it cannot be read. An
// entry that cp932 cannot carry is a fatal error, a comment may hold anything.
std::optional<std::vector<std::string>> ConfigReadLines(std::string_view path);
// The entries of all lines that have a value, in file order; they become the configuration list.
void ConfigKeep(std::string_view path, const std::vector<std::string>& lines);
// The value of the first entry of that key, "" when there is none.
std::string ConfigValue(std::string_view key);
// Writes key and value into the file: replaces the first line of that key, else appends one, through a
// sibling that replaces the file only when it is complete. False when the file cannot be written, or when the
// entry could not be read back (a key with a blank or "=", a line feed); the file is then as it was.
bool ConfigWrite(std::string_view key, std::string_view value);

}  // namespace quelmark
