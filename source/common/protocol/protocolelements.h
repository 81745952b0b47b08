// SPDX-License-Identifier: MIT
// Walks over the element children of a node. getFirstTagChild and getNextTagNode give processing
// instructions as well.
#pragma once

#include "misc/xml/ixmlnode.h"

namespace Protocol {

/// The node itself if it is an element, otherwise the next sibling that is one. Returns null if
/// there is none, as do the next two.
inline Orvil::IXmlNode* elementFrom(Orvil::IXmlNode* node) {
    while (node != nullptr && !node->isElement()) {
        node = node->getNextTagNode();
    }
    return node;
}

inline Orvil::IXmlNode* firstElement(const Orvil::IXmlNode& node) {
    return elementFrom(node.getFirstTagChild());
}

inline Orvil::IXmlNode* nextElement(const Orvil::IXmlNode& node) {
    return elementFrom(node.getNextTagNode());
}

} // namespace Protocol
