// SPDX-License-Identifier: MIT
// From the lines of a reply to one XML document.
#pragma once

#include <string>

namespace GLY {

/// Joins the lines of a reply (UTF-8) with nothing between them. A line of more than 6 characters
/// that ends with "</cmd>" loses that end; a line of exactly "</cmd>" stays. So the header line's
/// element stays open until the closing line. Works in place, in linear time. Any thread.
void foldReply(std::string& reply);

/// Every "&" becomes "&amp;", also that of an entity: replies are not escaped. Any thread.
std::string escapeAmpersands(std::string text);

} // namespace GLY
