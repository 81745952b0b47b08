// SPDX-License-Identifier: MIT
// Edits values in the source of a drawing.
#include "host/documents/svg/faceedits.h"

#include "host/documents/css/css.h"
#include "host/documents/svg/xmlsource.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host::svg {
namespace {

using css::Property;

constexpr std::array<std::string_view, css::facePropertyCount> propertyNames{
    "font-family", "font-style", "font-weight", "font-stretch", "-inkscape-font-specification"};

struct StretchName {
    std::uint32_t stretch;
    std::string_view name;
};
constexpr std::array<StretchName, 9> stretchNames{{{50000, "ultra-condensed"},
                                                   {62500, "extra-condensed"},
                                                   {75000, "condensed"},
                                                   {87500, "semi-condensed"},
                                                   {100000, "normal"},
                                                   {112500, "semi-expanded"},
                                                   {125000, "expanded"},
                                                   {150000, "extra-expanded"},
                                                   {200000, "ultra-expanded"}}};

/// Words of letters, digits and hyphens need no quotes when none begins with a digit or a hyphen.
bool isPlainName(std::string_view name) {
    bool wordStart = true;
    for (const char c : name) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '-';
        if (c == ' ' ? wordStart : !letter && (wordStart || !other)) {
            return false;
        }
        wordStart = c == ' ';
    }
    return !wordStart && name != "inherit" && name != "initial" && name != "unset";
}

std::string_view spanName(Tag tag) {
    return tag == Tag::FlowRoot || tag == Tag::FlowPara || tag == Tag::FlowSpan ? "flowSpan"
                                                                                : "tspan";
}

} // namespace

struct FaceEdits::Context {
    char xmlQuote = 0; ///< the quote around the attribute; 0 in a style sheet
    bool cdata = false;

    char cssQuote() const { return xmlQuote == '\'' ? '"' : '\''; }
    std::string escape(std::string_view text) const {
        if (cdata) {
            return std::string(text);
        }
        std::string result;
        for (const char c : text) {
            if (c == '&') {
                result += "&amp;";
            } else if (c == '<') {
                result += "&lt;";
            } else if (c == xmlQuote && c != 0) {
                result += c == '"' ? "&quot;" : "&apos;";
            } else {
                result += c;
            }
        }
        return result;
    }
};

std::string FaceEdits::familyText(const NewValue& value, const Context& context,
                                  bool quoteAlways) const {
    const bool bare = isPlainName(value.family) &&
                      (value.generic || (!quoteAlways && !isGenericFamily(value.family)));
    return bare ? value.family : css::quoted(value.family, context.cssQuote(), !unicode_);
}

std::string FaceEdits::valueText(Property property, const NewValue& value,
                                 const Context& context) const {
    static constexpr std::array<std::string_view, 3> slants{"normal", "italic", "oblique"};
    switch (property) {
    case Property::Family:
        return value.family.empty() ? "initial" : familyText(value, context, true);
    case Property::Hint:
        return css::quoted(value.family, context.cssQuote(), !unicode_);
    case Property::Slant:
        return std::string(slants[value.number]);
    case Property::Weight:
        return value.number == 400   ? "normal"
               : value.number == 700 ? "bold"
                                     : std::to_string(value.number);
    case Property::Stretch: {
        const auto name =
            std::find_if(stretchNames.begin(), stretchNames.end(),
                         [&](const StretchName& s) { return s.stretch == value.number; });
        if (name != stretchNames.end()) {
            return std::string(name->name);
        }
        const std::string thousandths = std::to_string(1000 + value.number % 1000);
        return std::to_string(value.number / 1000) + "." + thousandths.substr(1) + "%";
    }
    case Property::Visibility:
    case Property::Size:
    case Property::Display:
        break;
    }
    return {};
}

bool FaceEdits::changeDeclaration(Property property, const Origin& origin, const NewValue& value) {
    if (origin.kind == Origin::Kind::Rule) {
        const css::RuleBlock& block = styles_.sheets.block(origin.block);
        const Sheet& sheet = tree_.sheets[block.sheet];
        if (sheet.sourceStart == noPlace || sheet.sourceEnd == noPlace) {
            return false;
        }
        // The block's place in the sheet leads back to its place in the source only if the sheet
        // is there as it was read.
        auto& known = sheets_[block.sheet];
        if (!known) {
            known = xml::decode(source_, sheet.sourceStart, sheet.sourceEnd);
        }
        const xml::DecodedText& decoded = *known;
        if (!decoded.complete || decoded.text != sheet.text || block.start >= block.end) {
            return false;
        }
        const auto& first = decoded.origins[block.start];
        return changeInBlock(first.start, decoded.origins[block.end - 1].end, property, origin,
                             value, {0, first.cdata});
    }
    const std::uint32_t tagStart = tree_.elements[origin.element].tagStart;
    const bool isInline = origin.kind == Origin::Kind::Inline;
    xml::AttributePlace place;
    if (tagStart == noPlace ||
        !xml::findAttribute(source_, tagStart,
                            isInline ? "style" : propertyNames[css::indexOf(property)], place)) {
        return false;
    }
    const Context context{place.quote, false};
    if (isInline) {
        return changeInBlock(place.start, place.end, property, origin, value, context);
    }
    const xml::DecodedText decoded = xml::decode(source_, place.start, place.end);
    std::string blanked;
    const auto families = css::readFamilies(css::blankComments(decoded.text, blanked));
    if (!decoded.complete) {
        return false;
    }
    if (property != Property::Family || families.empty()) {
        edits_.push_back(
            {place.start, place.end, context.escape(valueText(property, value, context))});
        return true;
    }
    const css::FamilyName& old = families.front();
    const bool wasQuoted = decoded.text[old.start] == '"' || decoded.text[old.start] == '\'';
    edits_.push_back({decoded.origins[old.start].start, decoded.origins[old.end - 1].end,
                      context.escape(familyText(value, context, wasQuoted))});
    return true;
}

bool FaceEdits::changeInBlock(std::size_t start, std::size_t end, Property property,
                              const Origin& origin, const NewValue& value, const Context& context) {
    const xml::DecodedText decoded = xml::decode(source_, start, end);
    if (!decoded.complete) {
        return false;
    }
    std::string blanked;
    const std::string_view block = css::blankComments(decoded.text, blanked);
    // The last declaration of several is the one that counts.
    css::Declaration found;
    css::DeclarationCursor cursor(block);
    for (css::Declaration declaration; cursor.next(declaration);) {
        Property named{};
        const bool matches =
            origin.shorthand ? css::equalsIgnoringCase(declaration.name, "font")
                             : css::readPropertyName(declaration.name, named) && named == property;
        if (matches && declaration.important == origin.important) {
            found = declaration;
        }
    }
    if (found.whole.empty()) {
        return false;
    }
    const auto offsetOf = [&](std::string_view part) {
        return static_cast<std::size_t>(part.data() - block.data());
    };
    const auto replace = [&](std::size_t from, std::size_t to, std::string_view text) {
        edits_.push_back(
            {decoded.origins[from].start, decoded.origins[to - 1].end, context.escape(text)});
    };
    const std::size_t valueStart = offsetOf(found.value);
    if (property == Property::Family) {
        const std::size_t skipped =
            origin.shorthand ? css::familiesInShorthand(found.value) : std::size_t{0};
        if (skipped == std::string_view::npos) {
            return false;
        }
        const auto families = css::readFamilies(found.value.substr(skipped));
        if (families.empty()) {
            return false;
        }
        const std::size_t familyStart = valueStart + skipped + families.front().start;
        const char first = block[familyStart];
        replace(familyStart, valueStart + skipped + families.front().end,
                familyText(value, context, first == '"' || first == '\''));
        return true;
    }
    const std::string text = valueText(property, value, context);
    if (!origin.shorthand) {
        replace(valueStart, valueStart + found.value.size(), text);
        return true;
    }
    // What a shorthand says stays; a declaration behind it says better.
    const std::size_t after = decoded.origins[offsetOf(found.whole) + found.whole.size() - 1].end;
    edits_.push_back({after, after,
                      std::string(";")
                          .append(propertyNames[css::indexOf(property)])
                          .append(":")
                          .append(text)
                          .append(origin.important ? " !important" : "")});
    return true;
}

std::string FaceEdits::declarations(ElementId element, const Values& values, bool important,
                                    const Context& context) const {
    std::string result;
    for (const auto& [property, value] : values) {
        std::string text = valueText(property, value, context);
        if (property == Property::Family) {
            // The old list's further families go on standing in for the first one.
            const std::string_view list =
                styles_.texts[styles_.elements[element].value(Property::Family)];
            const auto families = css::readFamilies(list);
            for (std::size_t i = 1; i < families.size(); ++i) {
                const NewValue fallback{families[i].name, families[i].generic, 0};
                text.append(", ").append(familyText(fallback, context, false));
            }
        }
        result.append(result.empty() ? "" : ";")
            .append(propertyNames[css::indexOf(property)])
            .append(":")
            .append(text);
        result += important ? " !important" : "";
    }
    return context.escape(result);
}

void FaceEdits::addToElement(ElementId element, const Values& values, bool important) {
    const std::uint32_t tagStart = tree_.elements[element].tagStart;
    xml::AttributePlace place;
    if (!xml::findAttribute(source_, tagStart, "style", place)) {
        const std::size_t end = xml::tagEnd(source_, tagStart);
        edits_.push_back({end, end,
                          std::string(" style=\"")
                              .append(declarations(element, values, important, {'"', false}))
                              .append("\"")});
        return;
    }
    // A ';' too many does no harm, as one that only ends an entity would.
    const xml::DecodedText old = xml::decode(source_, place.start, place.end);
    const bool separated = old.complete && css::endsSeparated(old.text);
    edits_.push_back({place.end, place.end,
                      std::string(separated ? "" : ";") +
                          declarations(element, values, important, {place.quote, false})});
}

void FaceEdits::wrap(const Piece& piece, const Values& values, bool important) {
    const Element& element = tree_.elements[piece.element];
    const std::string_view outer = xml::tagName(source_, element.tagStart);
    // The span's name needs the same prefix as the element around it; npos + 1 is none.
    const std::string name =
        std::string(outer.substr(0, outer.find(':') + 1)).append(spanName(element.tag));
    edits_.push_back({piece.sourceStart, piece.sourceStart,
                      std::string("<").append(name).append(" style=\"") +
                          declarations(piece.element, values, important, {'"', false}) + "\">"});
    edits_.push_back(
        {piece.sourceEnd, piece.sourceEnd, std::string("</").append(name).append(">")});
}

std::string FaceEdits::apply() {
    std::stable_sort(edits_.begin(), edits_.end(),
                     [](const Edit& a, const Edit& b) { return a.start < b.start; });
    std::string result;
    result.reserve(source_.size() + edits_.size() * 40);
    std::size_t position = 0;
    for (const Edit& edit : edits_) {
        if (edit.start < position) {
            continue; // two edits of one place cannot both be made
        }
        result.append(source_, position, edit.start - position).append(edit.text);
        position = edit.end;
    }
    edits_.clear();
    return result.append(source_, position);
}

} // namespace host::svg
