// SPDX-License-Identifier: MIT
// The protocol's messages as XML documents, and back. The event exchanges write their commands by
// hand and use only the helpers; the codec stands for itself.
#pragma once

#include "misc/xml/ixmlnode.h"
#include "protocol.h"

#include <string>

namespace Protocol {

/// Reads a number as a stream does: leading white space is skipped, and what follows the digits is
/// ignored. Not `ok` without digits (the result is 0) or out of range (the result is the limit).
template <typename T>
T safeParse(const std::string& text, bool& ok) = delete;
template <>
unsigned safeParse<unsigned>(const std::string& text, bool& ok);

/// Reading of the small parts of a reply. Threads: one at a time per document.
class HandlerHelpers {
public:
    HandlerHelpers() = delete;

    /// Reads a font element: the attribute syncID and the element children in any order; of
    /// several of one name the last counts. Throws Orvil::Exception for an unknown child, a type or
    /// a number that cannot be read.
    static Font parseFont(Orvil::IXmlNode* node);
    /// Reads an entry of the font infos: its first two element children, whatever they are called.
    /// Throws Orvil::Exception when there are fewer.
    static Font::Info parseFontInfo(Orvil::IXmlNode* node);
    /// True for exactly "true" and "1".
    static bool parseBoolean(const std::string& text);
};

} // namespace Protocol
