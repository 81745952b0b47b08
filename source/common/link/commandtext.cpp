// SPDX-License-Identifier: MIT
// Writing of command texts.
#include "commandtext.h"

#include "textutils.h"

#include <utility>

namespace GLY {

CommandText::CommandText(std::string_view command, std::size_t fontCount) {
    constexpr std::size_t frameSize = 192;
    constexpr std::size_t usualFontSize = 224;
    text_.reserve(frameSize + fontCount * usualFontSize);
    element("cmd", command); // closed at once; finish() closes it again
}

void CommandText::element(std::string_view name, std::string_view content) {
    text_.append("<").append(name).append(">").append(content);
    text_.append("</").append(name).append(">\n");
}

void CommandText::type(const GLYFontInfo& info) {
    if (info.font.type != Protocol::Font::all) {
        element("type", info.getTypeString());
    }
}

std::string CommandText::finish() {
    text_ += "</cmd>\n";
    return std::move(text_);
}

bool hasChosenContainer(const GLYFontInfo& info) {
    return parse<int>(info.chosenContainer) >= 1;
}

} // namespace GLY
