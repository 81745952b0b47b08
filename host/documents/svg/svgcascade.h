// SPDX-License-Identifier: MIT
// The cascade for one element. Presentation attributes yield to style sheet rules, those to
// style="", all of them to what is marked important; what nobody says is inherited.
#pragma once

#include "host/documents/svg/svgstyle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host::svg {

/// Keeps what it has read of attributes, which are often alike.
class Cascade {
public:
    /// `styles` has the sheets in it and takes the result. All outlive this. `maximumMatching`: of
    /// Matcher::work().
    Cascade(const Tree& tree, std::string_view name, std::size_t maximumMatching, Styles& styles)
        : tree_(tree), name_(name), maximumMatching_(maximumMatching), styles_(styles) {}

    /// `inheritsFrom` was resolved before; noElement for the root. Throws DocumentError when the
    /// style sheets ask for unreasonable work.
    void resolve(ElementId id, ElementId inheritsFrom);

private:
    struct Candidate {
        std::uint64_t rank = 0; ///< 0: no declaration; of equal ranks the later one wins
        css::Value value;
        Origin origin;
    };
    using Candidates = std::array<Candidate, css::propertyCount>;

    static void offer(Candidates& candidates, const css::PropertyDeclaration& declaration,
                      std::uint64_t rank, const Origin& origin);
    void offerAttribute(Candidates& candidates, css::Property property, std::string_view text,
                        ElementId id);
    const css::PropertyDeclarations& inlineDeclarations(std::string_view text);
    void collectAttributes(ElementId id, Candidates& candidates);
    void collectRules(ElementId id, Candidates& candidates);
    static void inherit(bool& flag, const Candidate& candidate);

    const Tree& tree_;
    std::string_view name_;
    std::size_t maximumMatching_;
    Styles& styles_;
    std::array<std::unordered_map<std::string_view, std::optional<css::Value>>, css::propertyCount>
        attributeValues_;
    std::unordered_map<std::string_view, css::PropertyDeclarations> inlineDeclarations_;
    std::vector<css::RuleMatch> matches_;
    css::Matcher matcher_{styles_.sheets, tree_};
};

} // namespace host::svg
