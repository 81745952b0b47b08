// SPDX-License-Identifier: MIT
// Reading of numbers, truth values, font elements and their infos.
#include "protocolelements.h"
#include "protocolfailure.h"
#include "protocolfields.h"
#include "protocolhandler.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <utility>

namespace Protocol {

namespace {

std::uint32_t parseCount(const std::string& text, const std::string& element, std::uint32_t line) {
    bool ok = false;
    const unsigned value = safeParse<unsigned>(text, ok);
    if (!ok) {
        throw failure("could not parse <" + element + "> '" + text + "'", line);
    }
    return value;
}

void parseFontInfos(const Orvil::IXmlNode& node, std::list<Font::Info>& infos) {
    for (Orvil::IXmlNode* entry = firstElement(node); entry != nullptr;
         entry = nextElement(*entry)) {
        infos.push_back(HandlerHelpers::parseFontInfo(entry));
    }
}

void parseFontChild(const Orvil::IXmlNode& child, Font& font) {
    const std::string name = child.getName();
    const FontField field = findFontField(name);
    switch (field) {
    case FontField::Type:
        font.type = Font::stringToType(child.getContent());
        break;
    case FontField::Count:
        font.count = parseCount(child.getContent(), name, 1071);
        break;
    case FontField::TypeMatchingCount:
        font.typeMatchingCount = parseCount(child.getContent(), name, 1082);
        break;
    case FontField::FontInfos:
        parseFontInfos(child, font.fontInfos);
        break;
    default:
        if (!setPlainField(font, field, child.getContent())) {
            throw failure("could not parse node in <font> '" + name + "'", 1111);
        }
    }
}

} // namespace

template <>
unsigned safeParse<unsigned>(const std::string& text, bool& ok) {
    constexpr unsigned limit = std::numeric_limits<unsigned>::max();
    std::string_view rest = text;
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
    const bool isNegative = rest.starts_with('-');
    if (isNegative || rest.starts_with('+')) {
        rest.remove_prefix(1);
    }
    unsigned value = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    ok = error == std::errc();
    if (error == std::errc::result_out_of_range) {
        return limit;
    }
    return isNegative ? 0U - value : value; // streams take -1 for the greatest value
}

Font HandlerHelpers::parseFont(Orvil::IXmlNode* node) {
    Font font;
    font.syncID = node->getAttribute("syncID", "");
    for (Orvil::IXmlNode* child = firstElement(*node); child != nullptr;
         child = nextElement(*child)) {
        parseFontChild(*child, font);
    }
    return font;
}

Font::Info HandlerHelpers::parseFontInfo(Orvil::IXmlNode* node) {
    const Orvil::IXmlNode* const name = firstElement(*node);
    const Orvil::IXmlNode* const value = name == nullptr ? nullptr : nextElement(*name);
    if (value == nullptr) {
        throw failure("could not parse <" + node->getName() + ">: name and value expected",
                      __LINE__);
    }
    return {name->getContent(), value->getContent()};
}

bool HandlerHelpers::parseBoolean(const std::string& text) {
    return text == "true" || text == "1";
}

} // namespace Protocol
