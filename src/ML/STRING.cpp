#include "ML/STRING.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ML/ERROR.h"
#include "ML/OPERATE.h"
#include "ML/SPRINTF.h"
#include "text/cp932.h"
#include "text/number.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t StringClass = -1;

namespace {

void CheckObject(std::int32_t argc, const DataCell* argv) {
    Check(argc > 0 && argv[0].type == TYPE_OBJECT, "buf[0].type == TYPE_OBJECT");
}

// The text of a method's first argument, which may have come as an object of another class.
std::string_view SelfText(std::int32_t argc, const DataCell* argv) {
    CheckObject(argc, argv);
    return IsString(argv[0]) ? StringText(argv[0]) : std::string_view();
}

std::int32_t ToString(std::int32_t ident, std::int32_t argc, DataCell* argv) {
    CheckObject(argc, argv);
    if (argc == 1) {
        StackPush(argv[0]);
        return RESULT;
    }
    return CallInherited(StringClass, ident, argc, argv);
}

std::int32_t ToCode(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string_view text = SelfText(argc, argv);
    StackPushInt(text.empty() ? 0 : static_cast<signed char>(text[0]));
    return RESULT;
}

std::int32_t FromCode(std::int32_t, std::int32_t, DataCell* argv) {
    const auto byte = static_cast<char>(argv[0].integer & 0xFF);
    StackPushString({&byte, byte == '\0' ? 0U : 1U});
    return RESULT;
}

std::int32_t SubString(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string_view text = SelfText(argc, argv);
    const std::int64_t n = argv[1].integer;
    const auto length = std::min(static_cast<std::size_t>(n < 0 ? -n : n), text.size());
    StackPushString(n < 0 ? text.substr(text.size() - length) : text.substr(0, length));
    return RESULT;
}

// The byte offset of the first occurrence, -1 when there is none; an empty text occurs nowhere. The first
// byte is found fastest, as long as it makes few false starts; otherwise the search takes over that never
// compares a byte many times.
std::int32_t OffsetOf(std::string_view text, std::string_view wanted) {
    constexpr std::size_t BYTES_A_START = 16;
    constexpr std::size_t STARTS_FREE = 64;
    if (wanted.empty() || wanted.size() > text.size()) {
        return -1;
    }
    const std::size_t places = text.size() - wanted.size() + 1;
    std::size_t at = 0;
    for (std::size_t starts = 0; at < places && starts < STARTS_FREE + at / BYTES_A_START; ++starts, ++at) {
        const void* first = std::memchr(text.data() + at, wanted[0], places - at);
        if (first == nullptr) {
            return -1;
        }
        at = static_cast<std::size_t>(static_cast<const char*>(first) - text.data());
        if (std::memcmp(first, wanted.data(), wanted.size()) == 0) {
            return static_cast<std::int32_t>(at);
        }
    }
    const void* found =
        at < places ? memmem(text.data() + at, text.size() - at, wanted.data(), wanted.size()) : nullptr;
    return found == nullptr ? -1 : static_cast<std::int32_t>(static_cast<const char*>(found) - text.data());
}

std::int32_t Search(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string_view text = SelfText(argc, argv);
    if (!IsString(argv[1])) {
        RuntimeError("%s", "2番目の引数の型が不正です(String:search)"_sjis);
    }
    StackPushInt(OffsetOf(text, StringText(argv[1])));
    return RESULT;
}

std::string_view SkipBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::int32_t ToInt(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string_view text = SkipBlanks(SelfText(argc, argv));
    // Out of range as the C library's atoi: through a long, cut to 32 bits.
    const std::string digits(text.substr(0, text.find_first_not_of("+-0123456789")));
    StackPushInt(static_cast<std::int32_t>(std::strtol(digits.c_str(), nullptr, 10)));
    return RESULT;
}

std::int32_t ToReal(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushReal(ParseReal(SkipBlanks(SelfText(argc, argv))));
    return RESULT;
}

std::int32_t Environment(std::int32_t, std::int32_t argc, DataCell* argv) {
    const std::string name = Cp932ToUtf8(SelfText(argc, argv));
    const char* value = std::getenv(name.c_str());
    const auto text = Utf8ToCp932(value == nullptr ? "" : value);
    if (!text) {
        RuntimeError("環境変数 %s はシフトJISで表せないので使えません。"_sjis,
                     std::string(SelfText(argc, argv)).c_str());
    }
    StackPushString(*text);
    return RESULT;
}

std::int32_t Access(std::int32_t, std::int32_t argc, DataCell* argv) {
    const auto path = HostPath(SelfText(argc, argv));
    const int mode = argc > 1 ? argv[1].integer & (R_OK | W_OK | X_OK) : F_OK;
    StackPushBool(path && access(path->c_str(), mode) == 0);
    return RESULT;
}

template <char first, char last, int shift>
std::int32_t MapBytes(std::int32_t, std::int32_t argc, DataCell* argv) {
    std::string text(SelfText(argc, argv));
    for (char& byte : text) {
        byte = byte >= first && byte <= last ? static_cast<char>(byte + shift) : byte;
    }
    StackPushString(text);
    return RESULT;
}

std::int32_t Sprintf(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushString(FormatText(SelfText(argc, argv), argc - 1, argv + 1));
    return RESULT;
}

std::int32_t Concatenate(std::int32_t, std::int32_t argc, DataCell* argv) {
    CheckObject(argc, argv);
    if (!IsString(argv[1])) {
        PushText(argv[1]);
        std::swap(argv[1], *StackTop());
        StackPop();
    }
    const std::string_view left = StringText(argv[0]);
    const std::string_view right = StringText(argv[1]);
    ObjectBlock* block = StringAlloc(left.size() + right.size());
    auto* bytes = reinterpret_cast<char*>(block->Data());
    std::memcpy(bytes, left.data(), left.size());
    std::memcpy(bytes + left.size(), right.data(), right.size() + 1);
    StackPushObject(block);
    return RESULT;
}

std::int32_t Length(std::int32_t, std::int32_t argc, DataCell* argv) {
    StackPushInt(static_cast<std::int32_t>(SelfText(argc, argv).size()));
    return RESULT;
}

std::int32_t Compare(std::int32_t code, std::int32_t argc, DataCell* argv) {
    CheckObject(argc, argv);
    DataCell result = NoCell();
    if (argc < 2 || !StringOperate(code, argv[0], argv[1], result)) {
        RuntimeError("%s", "比較演算の型が違います。(String)"_sjis);
    }
    StackPush(result);
    return RESULT;
}

constexpr BuiltIn FUNCTIONS[] = {
    {"String", "tostring", ToString},
    {"String", "strtoasc", ToCode},
    {"String", "substr", SubString, Takes("String:substr", {TYPE_OBJECT, TYPE_INT})},
    {"String", "search", Search, Takes("String:search", {TYPE_OBJECT, TYPE_OBJECT})},
    {"String", "atoi", ToInt},
    {"String", "atof", ToReal},
    {"String", "getenv", Environment, Takes("getenv", {TYPE_OBJECT})},
    {"String", "access", Access, Takes("access", {TYPE_OBJECT, TYPE_INT}, 1)},
    {"String", "tolower", MapBytes<'A', 'Z', 'a' - 'A'>, Takes("tolower", {TYPE_OBJECT})},
    {"String", "toupper", MapBytes<'a', 'z', 'A' - 'a'>, Takes("toupper", {TYPE_OBJECT})},
    {"String", "sprintf", Sprintf},
    {"", "asctostr", FromCode, Takes("asctostr", {TYPE_INT})},
};

constexpr BuiltInOperator OPERATORS[] = {
    {"String", OP_ADD, Concatenate},    {"String", OP_NOT, Length},
    {"String", OP_LESS, Compare},       {"String", OP_GREATER, Compare},
    {"String", OP_LESS_EQUAL, Compare}, {"String", OP_GREATER_EQUAL, Compare},
    {"String", OP_EQUAL, Compare},      {"String", OP_NOT_EQUAL, Compare},
};

}  // namespace

void StringRegister() {
    StringClass = ClassRegister("String", 0);
    RegisterBuiltIns(FUNCTIONS);
    RegisterOperators(OPERATORS);
}

ObjectBlock* StringAlloc(std::size_t length) {
    ObjectBlock* block = ObjectAlloc(length + 1, StringClass);
    *reinterpret_cast<char*>(block->Data()) = '\0';
    return block;
}

ObjectBlock* StringNew(std::string_view text) {
    ObjectBlock* block = StringAlloc(text.size());
    auto* bytes = reinterpret_cast<char*>(block->Data());
    text.copy(bytes, text.size());  // the text may be one without an address
    bytes[text.size()] = '\0';
    return block;
}

void StackPushString(std::string_view text) {
    StackPushObject(StringNew(text));
}

bool StringAppend(DataCell& text, const DataCell& value) {
    if (!IsString(text) || ObjectOf(text)->references != 1 ||
        (value.type == TYPE_OBJECT && !IsString(value))) {
        return false;
    }
    char buffer[CELL_TEXT_BYTES];
    const bool doubled = value.type == TYPE_OBJECT && value.object == text.object;
    const std::size_t before = StringText(text).size();
    const std::size_t added = value.type == TYPE_OBJECT ? StringText(value).size()
                                                        : static_cast<std::size_t>(CellToText(buffer, value));
    auto* bytes = reinterpret_cast<char*>(ObjectGrow(ObjectOf(text), before + added + 1)->Data());
    // The block may have moved, so the text added is looked up only now.
    const char* source = doubled ? bytes : value.type == TYPE_OBJECT ? StringChars(value) : buffer;
    std::memmove(bytes + before, source, added);
    bytes[before + added] = '\0';
    return true;
}

bool StringOperate(std::int32_t code, const DataCell& left, const DataCell& right, DataCell& result) {
    if (!IsString(left)) {
        return false;
    }
    if (code == OP_NOT) {
        result = IntCell(static_cast<std::int32_t>(StringText(left).size()));
        return true;
    }
    if (!IsString(right)) {
        return false;
    }
    const auto truth = Compared(code, StringText(left).compare(StringText(right)), 0);
    if (truth) {
        result = BoolCell(*truth);
    }
    return truth.has_value();
}

const char* StringChars(const DataCell& cell) {
    return StringText(cell).data();
}

}  // namespace quelmark
