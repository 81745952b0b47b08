// SPDX-License-Identifier: MIT
// Characters given as numbers, as style sheets and XML give them.
#pragma once

#include <cstdint>
#include <string>

namespace host {

/// Appends one Unicode character to a text in UTF-8; U+FFFD in the place of what is no character.
void appendUtf8(std::string& text, std::uint32_t code);

} // namespace host
