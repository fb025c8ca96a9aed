#include "reader/report.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string>

#include "ML/ERROR.h"
#include "reader/scanner.h"
#include "text/cp932.h"
#include "text/sjis.h"

namespace quelmark {

std::int32_t ReaderSeverity = 0;

namespace {

constexpr std::int32_t MESSAGES_MOST = 200;  // of one read; a damaged file has as many faults as lines
constexpr std::size_t QUOTED_MOST = 128;     // bytes of a token or a name in a message

std::int32_t messages = 0;

// The last row of a table serves every code that it does not have.
struct Message {
    std::int32_t code;
    const char* text;
    std::int32_t severity;
};

constexpr Message OBJECT_MESSAGES[] = {
    {OBJECT_PRIVATE, "警告：private 処理はサポートしていません。"_sjis, 1},
    {OBJECT_MISSING, " %s がありません。"_sjis, 10},
    {OBJECT_EXISTS, " %s が存在します。"_sjis, 10},
    {OBJECT_SURFACE, "サーフィスモデルではありません。"_sjis, 10},
    {OBJECT_UNSUPPORTED, " %s はサポートしていません。"_sjis, 10},
    {OBJECT_FEW_VERTICES, "多角形の頂点が２つ以下しかありません。"_sjis, 10},
    {OBJECT_NO_ATTRIBUTE, "atr no があります。"_sjis, 1},
    {OBJECT_COMPLEX, "構造定義が複雑すぎます。"_sjis, 10},
    {OBJECT_END, "エンドオブファイルになりました"_sjis, 20},
    {OBJECT_KIND, "形状ファイルではありません。"_sjis, 20},
    {0, "エラーコードの誤り。( objread )"_sjis, 20},
};

// Code 13 shows the polygon message: users know this table so, though a text for the wrong kind of file was
// meant.
constexpr Message DESIGN_MESSAGES[] = {
    {11, " %s がありません。"_sjis, 10},
    {12, " %s が存在します。"_sjis, 10},
    {13, "多角形の頂点が２つ以下しかありません。"_sjis, 10},
    {14, " %s はサポートしていません。"_sjis, 10},
    {15, "多角形の頂点が２つ以下しかありません。"_sjis, 10},
    {17, "構造定義が複雑すぎます。"_sjis, 10},
    {21, "エンドオブファイルになりました"_sjis, 20},
    {0, "エラーコードの誤り。( objread )"_sjis, 20},
};

constexpr Message ATTRIBUTE_MESSAGES[] = {
    {ATTRIBUTE_BUMPMAP, "%s 処理はサポートしていません。"_sjis, 1},
    {ATTRIBUTE_MISSING, " %s がありません。"_sjis, 10},
    {ATTRIBUTE_EXISTS, " %s が存在します。"_sjis, 10},
    {ATTRIBUTE_MAPPING, "マッピングデータがおかしい。"_sjis, 10},
    {ATTRIBUTE_UNSUPPORTED, " %s はサポートしていません。"_sjis, 10},
    {ATTRIBUTE_END, "エンドオブファイルになりました"_sjis, 20},
    {ATTRIBUTE_KIND, "アトリビュートファイルではありません。"_sjis, 20},
    {0, "エラーコードの誤り。( atrread )"_sjis, 20},
};

constexpr Message SCANNER_MESSAGES[] = {
    {SCANNER_NUMBER, "数字が必要です。"_sjis, 10},
    {SCANNER_COLOUR, "色情報がおかしい。"_sjis, 10},
    {SCANNER_TRANSFORM, "座標変換指定がおかしい。"_sjis, 10},
    {SCANNER_ARGUMENT, "引数の処理はできません。"_sjis, 10},
    {SCANNER_LONG_NAME, "名前（%s）が長すぎます。（３１文字まで)"_sjis, 10},
    {SCANNER_NAME, "名前（%s）がおかしい"_sjis, 10},
    {SCANNER_EXISTS, " %s が存在します。"_sjis, 10},
    {SCANNER_MISSING, " %s がありません。"_sjis, 10},
    {SCANNER_END, "エンドオブファイルになりました。"_sjis, 20},
    {SCANNER_OPEN, "ファイル %s がオープンできません。"_sjis, 20},
    {SCANNER_ESCAPE, " ESC キーが押されました。"_sjis, 20},
    {SCANNER_MEMORY, "メモリが足りません。"_sjis, 20},
    {0, "エラーコードの誤り。( scanner )"_sjis, 20},
};

// The beginning of a text, not cut inside a double-byte character.
std::string_view Quoted(std::string_view text) {
    if (text.size() <= QUOTED_MOST) {
        return text;
    }
    std::size_t length = 0;
    while (length + 2 <= QUOTED_MOST) {
        length += IsLeadByte(static_cast<unsigned char>(text[length])) ? 2 : 1;
    }
    return text.substr(0, length);
}

std::int32_t Report(std::span<const Message> table, std::int32_t code, std::string_view argument) {
    const Message* row = table.data();
    while (row->code != code && row->code != 0) {
        ++row;
    }
    std::string text = row->text;
    if (const std::size_t place = text.find("%s"); place != std::string::npos) {
        text.replace(place, 2, Quoted(argument));
    }
    return ReaderReport(text, row->severity);
}

}  // namespace

std::int32_t ReaderReport(std::string_view text, std::int32_t severity) {
    ReaderSeverity = std::max(ReaderSeverity, severity);
    // What ends the read is always told.
    if (severity < SEVERITY_END && ++messages > MESSAGES_MOST) {
        return severity;
    }
    char number[16];
    std::snprintf(number, sizeof number, "%3d", Shape.line);
    std::string line = Shape.name;
    line.append(number).append(" : ").append(text).append("   next token=").append(Quoted(Shape.text));
    Warning(line);
    return severity;
}

std::int32_t ObjectReport(std::int32_t code, std::string_view argument) {
    return Report(OBJECT_MESSAGES, code, argument);
}

std::int32_t DesignReport(std::int32_t code, std::string_view argument) {
    return Report(DESIGN_MESSAGES, code, argument);
}

std::int32_t AttributeReport(std::int32_t code, std::string_view argument) {
    return Report(ATTRIBUTE_MESSAGES, code, argument);
}

std::int32_t ScannerReport(std::int32_t code, std::string_view argument) {
    return Report(SCANNER_MESSAGES, code, argument);
}

void ReaderBegin() {
    ReaderSeverity = 0;
    messages = 0;
}

void ReaderEnd() {
    if (messages > MESSAGES_MOST) {
        char text[64];
        std::snprintf(text, sizeof text, "ほかに %d 個のメッセージがあります。"_sjis,
                      messages - MESSAGES_MOST);
        Warning(text);
    }
}

}  // namespace quelmark
