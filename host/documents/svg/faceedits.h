// SPDX-License-Identifier: MIT
// The small edits that changing a face is made of: a value in an attribute or a block of
// declarations, a style attribute made longer, a span put around text.
#pragma once

#include "host/documents/svg/facevalues.h"
#include "host/documents/svg/svgstyle.h"
#include "host/documents/svg/xmlsource.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::svg {

/// Collects edits of a source and applies them all at once.
class FaceEdits {
public:
    /// `unicode` when names may be written as they are; otherwise they are in CSS escapes.
    FaceEdits(const std::string& source, const Tree& tree, const Styles& styles, bool unicode)
        : source_(source), tree_(tree), styles_(styles), unicode_(unicode) {}

    /// Changes the declaration that `origin` tells of; false when it cannot be done there.
    [[nodiscard]] bool changeDeclaration(css::Property property, const Origin& origin,
                                         const NewValue& value);

    using Values = std::map<css::Property, NewValue>;
    /// Puts declarations into the style attribute of an element, after all others, so that they
    /// win over these.
    void addToElement(ElementId element, const Values& values, bool important);
    /// Puts a span with declarations around a piece.
    void wrap(const Piece& piece, const Values& values, bool important);

    /// Throws DocumentError with `name` when two edits overlap, which would lose text: each
    /// declaration, element and piece is to be edited once.
    [[nodiscard]] std::string apply(std::string_view name);

private:
    struct Edit {
        std::size_t start;
        std::size_t end;
        std::string text;
    };

    bool changeInRule(css::Property property, const Origin& origin, const NewValue& value);
    bool changeInBlock(std::size_t start, std::size_t end, css::Property property,
                       const Origin& origin, const NewValue& value, const TextPlace& place);
    /// `list` is a family list within the decoded text; false when it names no family.
    bool changeFirstFamily(const xml::DecodedText& decoded, std::size_t listStart,
                           std::string_view list, const NewValue& value, const TextPlace& place);
    /// `from` and `to` are places in the decoded text.
    void replace(const xml::DecodedText& decoded, std::size_t from, std::size_t to,
                 std::string text);
    std::string declarations(ElementId element, const Values& values, bool important,
                             const TextPlace& place) const;

    const std::string& source_;
    const Tree& tree_;
    const Styles& styles_;
    bool unicode_;
    std::vector<Edit> edits_;
    std::map<std::uint32_t, std::optional<xml::DecodedText>> sheets_; ///< decoded once each
};

} // namespace host::svg
