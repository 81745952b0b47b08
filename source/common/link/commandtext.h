// SPDX-License-Identifier: MIT
// The command texts that the font manager reads by lines.
#pragma once

#include "GLYFontInfo.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace GLY {

/// Writes one command: every element on a line of its own, its content as it stands. [any-thread]
class CommandText {
public:
    /// Begins the command `command`, with room for `fontCount` fonts.
    CommandText(std::string_view command, std::size_t fontCount);

    void element(std::string_view name, std::string_view content);
    void lines(std::string_view text) { text_ += text; }
    void beginFont() { text_ += "<font>\n"; }
    void endFont() { text_ += "</font>\n"; }
    /// The type's element, unless the type is not known.
    void type(const GLYFontInfo& info);
    /// Closes the command and returns its text.
    [[nodiscard]] std::string finish();

private:
    std::string text_;
};

/// Whether the user's choice of a container reads as a number of at least 1. [any-thread]
[[nodiscard]] bool hasChosenContainer(const GLYFontInfo& info);

} // namespace GLY
