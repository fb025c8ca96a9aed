#include "reader/scanner.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <new>

#include "MODEL/SUFWORD.h"
#include "reader/report.h"
#include "text/cp932.h"
#include "text/path.h"

namespace quelmark {

ShapeText Shape;

namespace {

constexpr std::array<std::string_view, WORD_COUNT> WORDS = {
    "amb",    "atr",     "att",   "back",   "blu",     "bumpmap", "cmp",     "col",  "colormap", "cst",
    "deg",    "depth",   "dif",   "dst",    "env",     "eye",     "fram",    "frm",  "glad",     "hsv",
    "image",  "len",     "light", "map",    "mapsize", "mapview", "mapwind", "mat",  "mod",      "mov",
    "msk",    "non",     "obj",   "opt",    "pal",     "parts",   "plt",     "pnt",  "point",    "poly",
    "prim",   "private", "pxn",   "pxs",    "red",     "ref",     "rfr",     "rgb",  "rln",      "rotx",
    "roty",   "rotz",    "scal",  "scr",    "shade",   "spc",     "spot",    "star", "stop",     "suf",
    "target", "tra",     "trp",   "uvpoly", "uvshade", "vec",
};
static_assert(std::ranges::is_sorted(WORDS));

// Words packed into eight bytes and found by one multiplication: a number that sends no two of them to one
// place.
constexpr std::size_t WORD_BYTES = 8;
constexpr std::uint64_t PackWord(std::string_view word) {
    std::uint64_t packed = 0;
    for (const char character : word) {
        packed = packed << 8 | static_cast<unsigned char>(character);
    }
    return packed;
}

constexpr int TABLE_BITS = 10;
struct WordTable {
    std::array<std::uint64_t, 1 << TABLE_BITS> words{};
    std::array<std::uint8_t, 1 << TABLE_BITS> tokens{};
    std::uint64_t factor = 0;

    constexpr std::size_t Place(std::uint64_t packed) const {
        return static_cast<std::size_t>(packed * factor >> (64 - TABLE_BITS));
    }
    constexpr bool Fill(std::uint64_t tried) {
        *this = WordTable{};
        factor = tried;
        for (std::size_t i = 0; i < WORDS.size(); ++i) {
            const std::size_t place = Place(PackWord(WORDS[i]));
            if (words[place] != 0) {
                return false;
            }
            words[place] = PackWord(WORDS[i]);
            tokens[place] = static_cast<std::uint8_t>(i);
        }
        return true;
    }
};
consteval WordTable MakeWordTable() {
    WordTable table;
    std::uint64_t factor = 0x9E3779B97F4A7C15;  // an odd number with well mixed bits
    while (!table.Fill(factor)) {
        factor = factor * 6364136223846793005 + 1442695040888963407;
    }
    return table;
}
constexpr WordTable WORD_TABLE = MakeWordTable();

// Behind the comment at `at`, or at the end of the file.
const char* SkipComment(const char* at) {
    for (at += 2; at < Shape.end; ++at) {
        if (at[0] == '*' && at[1] == '/') {
            return at + 2;
        }
        Shape.line += *at == '\n' ? 1 : 0;
    }
    return Shape.end;
}

// Moves to the first character of the next token, counting lines; comments are blanks.
void SkipBlanks() {
    const char* at = Shape.at;
    while (at < Shape.end) {
        if (BeginsSufComment(at)) {
            at = SkipComment(at);
        } else if (IsSufBlank(*at)) {
            Shape.line += *at++ == '\n' ? 1 : 0;
        } else {
            break;
        }
    }
    Shape.at = at;
}

// The word at Shape.at: up to a blank, a punctuation or a comment, none of which is looked for in second
// bytes.
std::string_view TakeWord() {
    const char* start = Shape.at;
    const char* at = start;
    while (at < Shape.end && !IsSufBlank(*at) && !IsSufBracket(*at) && !BeginsSufComment(at)) {
        at += SufCharacterBytes(at);
    }
    Shape.at = at;
    return {start, static_cast<std::size_t>(at - start)};
}

std::int32_t WordToken(std::string_view word) {
    if (word.size() > WORD_BYTES) {
        return TOKEN_NAME;
    }
    const std::uint64_t packed = PackWord(word);
    const std::size_t place = WORD_TABLE.Place(packed);
    return WORD_TABLE.words[place] == packed ? std::int32_t{WORD_TABLE.tokens[place]}
                                             : std::int32_t{TOKEN_NAME};
}

void ClassifyWord(std::string_view word) {
    Shape.text = word;
    Shape.token = IsSufNumber(word, Shape.number) ? static_cast<std::int32_t>(TOKEN_NUMBER) : WordToken(word);
}

// Reads the whole file into Shape.bytes, growing them when it has grown since it was looked at.
// False when it cannot be read.
bool Load(std::string_view path) {
    constexpr std::size_t ROOM_LEAST = 65536;
    const FilePtr file = OpenRegularFile(path);
    struct stat status {};
    if (!file || ::fstat(::fileno(file.get()), &status) != 0) {
        return false;
    }
    // One byte more than it promises shows that its end has been reached.
    std::size_t room = std::max(static_cast<std::size_t>(status.st_size) + 2, ROOM_LEAST);
    std::size_t size = 0;
    Shape.bytes = std::make_unique_for_overwrite<char[]>(room);
    for (;;) {
        const ssize_t count = ::read(::fileno(file.get()), Shape.bytes.get() + size, room - 1 - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        size += static_cast<std::size_t>(count);
        if (count == 0) {
            break;
        }
        if (size + 1 == room) {
            auto larger = std::make_unique_for_overwrite<char[]>(room * 2);
            std::copy_n(Shape.bytes.get(), size, larger.get());
            Shape.bytes = std::move(larger);
            room *= 2;
        }
    }
    Shape.bytes[size] = '\0';
    Shape.end = Shape.bytes.get() + size;
    return true;
}

// A file that begins with a byte order mark is UTF-8.
void ConvertText() {
    const std::string_view text(Shape.bytes.get(), static_cast<std::size_t>(Shape.end - Shape.bytes.get()));
    if (!text.starts_with(UTF8_MARK)) {
        return;
    }
    const std::string converted = FileTextToCp932(std::string(text));
    Shape.bytes = std::make_unique_for_overwrite<char[]>(converted.size() + 1);
    std::copy_n(converted.c_str(), converted.size() + 1, Shape.bytes.get());
    Shape.end = Shape.bytes.get() + converted.size();
}

}  // namespace

bool ShapeOpen(std::string_view path) {
    Shape = ShapeText{};
    Shape.name = path;
    Shape.directory = DirectoryPart(path);
    try {
        if (!Load(path)) {
            ScannerReport(SCANNER_OPEN, path);
            return false;
        }
        ConvertText();
    } catch (const std::bad_alloc&) {
        ScannerReport(SCANNER_MEMORY);
        return false;
    }
    Shape.at = Shape.bytes.get();
    ShapeNext();
    return true;
}

void ShapeClose() {
    Shape = ShapeText{};
}

void ShapeNext() {
    SkipBlanks();
    if (Shape.at == Shape.end) {
        Shape.token = TOKEN_END;
        Shape.text = {};
        return;
    }
    const char first = *Shape.at;
    if (!IsSufBracket(first)) {
        ClassifyWord(TakeWord());
        return;
    }
    Shape.text = {Shape.at++, 1};
    Shape.token = first == '('   ? TOKEN_LEFT_PAREN
                  : first == ')' ? TOKEN_RIGHT_PAREN
                  : first == '{' ? TOKEN_LEFT_BRACE
                                 : TOKEN_RIGHT_BRACE;
}

bool ShapeAccept(std::int32_t token) {
    if (Shape.token != token) {
        return false;
    }
    ShapeNext();
    return true;
}

void ShapeResume(const ShapeCursor& cursor) {
    Shape.at = cursor.at;
    Shape.line = cursor.line;
    ShapeNext();
}

bool TakeAnyCoordinate(ShapeCursor& cursor, std::int16_t& value, std::int16_t least, bool& limited) {
    constexpr double MOST = COORDINATE_MOST;
    ShapeResume(cursor);
    if (Shape.token != TOKEN_NUMBER) {
        return false;
    }
    const double whole = std::clamp(std::trunc(Shape.number), static_cast<double>(least), MOST);
    limited = limited || whole != std::trunc(Shape.number);
    value = static_cast<std::int16_t>(whole);
    cursor = ShapeCursor{};
    return true;
}

bool ShapeName(std::string& name) {
    if (Shape.token == TOKEN_END) {
        return false;
    }
    if (!ShapeAtWord()) {
        ScannerReport(SCANNER_NAME, Shape.text);
        return false;
    }
    if (Shape.text.size() > SUF_NAME_BYTES) {
        ScannerReport(SCANNER_LONG_NAME, Shape.text);
        ShapeNext();
        return false;
    }
    if (Shape.token == TOKEN_NUMBER) {
        ScannerReport(SCANNER_NAME, Shape.text);
        ShapeNext();
        return false;
    }
    name = Shape.text;
    ShapeNext();
    return true;
}

bool ShapeNumbers(std::span<double> numbers) {
    if (Shape.token == TOKEN_END) {
        return false;
    }
    if (!ShapeAccept(TOKEN_LEFT_PAREN)) {
        ScannerReport(SCANNER_MISSING, "(");
        return false;
    }
    for (double& number : numbers) {
        if (Shape.token != TOKEN_NUMBER) {
            if (Shape.token != TOKEN_END) {
                ScannerReport(SCANNER_NUMBER);
            }
            return false;
        }
        number = Shape.number;
        ShapeNext();
    }
    if (ShapeAccept(TOKEN_RIGHT_PAREN)) {
        return true;
    }
    if (Shape.token == TOKEN_NUMBER) {
        ScannerReport(SCANNER_EXISTS, Shape.text);
    } else if (Shape.token != TOKEN_END) {
        ScannerReport(SCANNER_MISSING, ")");
    }
    return false;
}

}  // namespace quelmark
