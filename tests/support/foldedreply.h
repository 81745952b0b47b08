// SPDX-License-Identifier: MIT
// Reads a reply as the plug-in does: folded, ampersands escaped, parsed as XML. Written apart from
// the manager and the plug-in, from the rules alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

struct ReplyNode {
    std::string name;
    std::string text; ///< of the element and of all in it
    std::vector<ReplyNode> children;

    /// The text of the first child of this name; "(none)" without one.
    [[nodiscard]] std::string value(std::string_view child) const;
    [[nodiscard]] std::vector<const ReplyNode*> all(std::string_view child) const;
};

/// The text of the XML document that the plug-in makes of a reply.
std::string fold(std::string_view reply);

/// The root element of the folded reply. Throws std::runtime_error when it is no XML document.
ReplyNode parseFolded(std::string_view reply);

} // namespace testsupport
