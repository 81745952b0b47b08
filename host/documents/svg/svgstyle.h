// SPDX-License-Identifier: MIT
// The cascade: which declaration decides each font property of each element.
#pragma once

#include "host/documents/svg/svgtree.h"

#include <array>
#include <cstdint>
#include <vector>

namespace host::svg {

/// The declaration that decides a property.
struct Origin {
    enum class Kind : std::uint8_t { Initial, Attribute, Inline, Rule };
    Kind kind = Kind::Initial;
    bool shorthand = false;
    bool important = false;
    ElementId element = noElement; ///< where it applies; inherited from there
    std::uint32_t block = 0;       ///< of the style sheets, for rules

    bool operator==(const Origin&) const = default;
};

struct Style {
    /// By css::Property, absolute: text numbers for family and hint (0: none), the enumerator of
    /// the slant, the weight, the stretch in thousandths of a percent.
    std::array<std::uint32_t, css::facePropertyCount> values{0, 0, 400, 100000, 0};
    std::array<Origin, css::facePropertyCount> origins;
    bool hidden = false;     ///< display:none or passed over, here or further out
    bool invisible = false;  ///< visibility:hidden; an element within may be visible again
    bool sizeless = false;   ///< font-size:0
    bool unrendered = false; ///< in defs or the like, and nothing refers to it

    std::uint32_t value(css::Property property) const { return values[css::indexOf(property)]; }
    bool showsText() const { return !hidden && !unrendered && !invisible && !sizeless; }
    const Origin& origin(css::Property property) const { return origins[css::indexOf(property)]; }
};

struct Styles {
    css::TextTable texts;
    css::StyleSheets sheets;
    std::vector<Style> elements; ///< one per element of the tree
};

/// What stands in definitions, or in what is hidden, and is shown by a `use` inherits from the
/// first `use` that shows it.
/// Throws DocumentError when the style sheets ask for unreasonable work.
[[nodiscard]] Styles resolveStyles(const Tree& tree, std::string_view name,
                                   std::size_t maximumMatching);

} // namespace host::svg
