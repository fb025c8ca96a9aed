// cp932 text and the window library's text.
#pragma once

#include <QString>
#include <string_view>

#include "text/cp932.h"

namespace quelmark {

inline QString ToText(std::string_view cp932) {
    const std::string utf8 = Cp932ToUtf8(cp932);
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// The text of a control that would take "&" for the mark of a shortcut letter: shown as it is written.
inline QString ToLabel(std::string_view cp932) {
    return ToText(cp932).replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace quelmark
