// SPDX-License-Identifier: MIT
// Folding by the rules, and libxml2.
#include "tests/support/foldedreply.h"

#include <libxml/parser.h>
#include <memory>
#include <stdexcept>

namespace testsupport {

namespace {

ReplyNode nodeOf(xmlNode* element) {
    ReplyNode node;
    node.name = reinterpret_cast<const char*>(element->name);
    const std::unique_ptr<xmlChar, void (*)(void*)> text(xmlNodeGetContent(element),
                                                         [](void* content) { xmlFree(content); });
    node.text = reinterpret_cast<const char*>(text.get());
    for (xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            node.children.push_back(nodeOf(child));
        }
    }
    return node;
}

} // namespace

std::string ReplyNode::value(std::string_view child) const {
    const auto found = all(child);
    return found.empty() ? "(none)" : found.front()->text;
}

std::vector<const ReplyNode*> ReplyNode::all(std::string_view child) const {
    std::vector<const ReplyNode*> found;
    for (const ReplyNode& node : children) {
        if (node.name == child) {
            found.push_back(&node);
        }
    }
    return found;
}

std::string fold(std::string_view reply) {
    constexpr std::string_view closing = "</cmd>";
    std::string folded;
    while (!reply.empty()) {
        const std::size_t end = reply.find('\n');
        std::string_view line = reply.substr(0, end);
        reply.remove_prefix(end == std::string_view::npos ? reply.size() : end + 1);
        if (line.size() > closing.size() && line.ends_with(closing)) {
            line.remove_suffix(closing.size());
        }
        folded += line;
    }
    std::string escaped;
    for (const char c : folded) {
        escaped += c == '&' ? std::string("&amp;") : std::string(1, c);
    }
    return escaped;
}

ReplyNode parseFolded(std::string_view reply) {
    const std::string text = fold(reply);
    const std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE),
        xmlFreeDoc);
    if (!document) {
        throw std::runtime_error("not XML: " + text.substr(0, 500));
    }
    return nodeOf(xmlDocGetRootElement(document.get()));
}

} // namespace testsupport
