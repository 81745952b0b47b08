// SPDX-License-Identifier: MIT
// What every kind of node does by its neighbours.
#include "misc/xml/ixmlnode.h"

namespace Orvil {

namespace {

IXmlNode* firstTagFrom(IXmlNode* node) {
    while (node != nullptr && (node->isText() || node->isComment())) {
        node = node->getNextNode();
    }
    return node;
}

} // namespace

bool IXmlNode::isElement() const {
    return !isText() && !isComment();
}

IXmlNode* IXmlNode::getFirstTagChild() const {
    return firstTagFrom(getFirstChild());
}

IXmlNode* IXmlNode::getNextTagNode() const {
    return firstTagFrom(getNextNode());
}

IXmlNode* IXmlNode::getFirstChild(const std::string& name) const {
    IXmlNode* child = getFirstChild();
    while (child != nullptr && child->getName() != name) {
        child = child->getNextNode();
    }
    return child;
}

std::vector<IXmlNode*> IXmlNode::getChildren() const {
    std::vector<IXmlNode*> children;
    for (IXmlNode* child = getFirstChild(); child != nullptr; child = child->getNextNode()) {
        children.push_back(child);
    }
    return children;
}

std::vector<IXmlNode*> IXmlNode::getChildren(const std::string& name) const {
    std::vector<IXmlNode*> children;
    for (IXmlNode* child = getFirstChild(); child != nullptr; child = child->getNextNode()) {
        if (child->getName() == name) {
            children.push_back(child);
        }
    }
    return children;
}

} // namespace Orvil
