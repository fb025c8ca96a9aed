// The one routine through which every fault of a shape, attribute or frame file is reported, and the readers'
// message tables.
#pragma once

#include <cstdint>
#include <string_view>

namespace quelmark {

inline constexpr std::int32_t SEVERITY_WARNING = 1;     // reading goes on
inline constexpr std::int32_t SEVERITY_CONSTRUCT = 10;  // the construct is dropped
inline constexpr std::int32_t SEVERITY_END = 20;        // the read ends

enum ObjectFault : std::int32_t {
    OBJECT_PRIVATE = 1,
    OBJECT_MISSING = 11,
    OBJECT_EXISTS = 12,
    OBJECT_SURFACE = 13,
    OBJECT_UNSUPPORTED = 14,
    OBJECT_FEW_VERTICES = 15,
    OBJECT_NO_ATTRIBUTE = 16,
    OBJECT_COMPLEX = 17,
    OBJECT_END = 21,
    OBJECT_KIND = 22,
};
enum AttributeFault : std::int32_t {
    ATTRIBUTE_BUMPMAP = 1,
    ATTRIBUTE_MISSING = 11,
    ATTRIBUTE_EXISTS = 12,
    ATTRIBUTE_MAPPING = 13,
    ATTRIBUTE_UNSUPPORTED = 14,
    ATTRIBUTE_END = 21,
    ATTRIBUTE_KIND = 22,
};
enum ScannerFault : std::int32_t {
    SCANNER_NUMBER = 11,
    SCANNER_COLOUR = 12,
    SCANNER_TRANSFORM = 13,
    SCANNER_ARGUMENT = 14,
    SCANNER_LONG_NAME = 15,
    SCANNER_NAME = 16,
    SCANNER_EXISTS = 17,
    SCANNER_MISSING = 18,
    SCANNER_END = 21,
    SCANNER_OPEN = 22,
    SCANNER_ESCAPE = 23,
    SCANNER_MEMORY = 24,
};

// Each shows "file line : message   next token=token" as a warning, `argument` in the place of the message's
// "%s", and returns the severity. A code that is not in the table has a message of its own.
std::int32_t ObjectReport(std::int32_t code, std::string_view argument = "");
// The messages of the second kind of model file.
std::int32_t DesignReport(std::int32_t code, std::string_view argument = "");
std::int32_t AttributeReport(std::int32_t code, std::string_view argument = "");
std::int32_t ScannerReport(std::int32_t code, std::string_view argument = "");
// A text without a code.
std::int32_t ReaderReport(std::string_view text, std::int32_t severity);

// The worst severity since ReaderBegin.
extern std::int32_t ReaderSeverity;
// A read begins: no fault yet. At its end the number of messages that were held back is shown: a file shows
// 200.
void ReaderBegin();
void ReaderEnd();

}  // namespace quelmark
