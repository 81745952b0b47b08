// SPDX-License-Identifier: MIT
// From the lines of a reply to one XML document.
#pragma once

#include <string>

namespace GLY {

/// Joins the lines of a reply (UTF-8) with nothing between them. A line of more than 6 characters
/// that ends with "</cmd>" loses that end; a line of exactly "</cmd>" stays. So the element of the
/// header line stays open until the closing line. In place, in linear time. [any-thread]
void foldReply(std::string& reply);

/// Writes every "&" as "&amp;", even that of an entity: replies are not escaped. [any-thread]
[[nodiscard]] std::string escapeAmpersands(std::string text);

} // namespace GLY
