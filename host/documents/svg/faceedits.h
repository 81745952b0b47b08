// SPDX-License-Identifier: MIT
// The small edits that changing a face is made of: a value in an attribute or a block of
// declarations, a style attribute made longer, a span put around text.
#pragma once

#include "host/documents/svg/svgstyle.h"
#include "host/documents/svg/xmlsource.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::svg {

/// What one property of some text is to become.
struct NewValue {
    /// Property::Family: the family, empty for the initial one; Property::Hint: the hint's text.
    std::string family;
    bool generic = false;
    std::uint32_t number = 0; ///< of the other properties, as in Style::values

    bool operator==(const NewValue&) const = default;
};

/// Collects edits of a source and applies them all at once.
class FaceEdits {
public:
    /// @param unicode whether names may be written as they are; otherwise in CSS escapes
    FaceEdits(const std::string& source, const Tree& tree, const Styles& styles, bool unicode)
        : source_(source), tree_(tree), styles_(styles), unicode_(unicode) {}

    /// Changes the declaration that `origin` tells of. @return false when it cannot be done there
    bool changeDeclaration(css::Property property, const Origin& origin, const NewValue& value);

    using Values = std::map<css::Property, NewValue>;
    /// Puts declarations into the style attribute of an element, after all others, so that they
    /// win over these.
    void addToElement(ElementId element, const Values& values, bool important);
    /// Puts a span with declarations around a piece.
    void wrap(const Piece& piece, const Values& values, bool important);

    std::string apply();

private:
    struct Edit {
        std::size_t start;
        std::size_t end;
        std::string text;
    };
    struct Context; ///< where a text goes, and what that demands of it

    bool changeInBlock(std::size_t start, std::size_t end, css::Property property,
                       const Origin& origin, const NewValue& value, const Context& context);
    std::string familyText(const NewValue& value, const Context& context, bool quoteAlways) const;
    std::string valueText(css::Property property, const NewValue& value,
                          const Context& context) const;
    std::string declarations(ElementId element, const Values& values, bool important,
                             const Context& context) const;

    const std::string& source_;
    const Tree& tree_;
    const Styles& styles_;
    bool unicode_;
    std::vector<Edit> edits_;
    std::map<std::uint32_t, std::optional<xml::DecodedText>> sheets_; ///< decoded once each
};

} // namespace host::svg
