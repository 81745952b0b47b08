// SPDX-License-Identifier: MIT
// What of a drawing is shown at all: the conditions of elements, the choice that a switch makes,
// and the references by which definitions are shown.
#include "host/documents/svg/svgscanner.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <string>

namespace host::svg {

/// Whether a list of languages, as in systemLanguage, has one for the user's.
bool Scanner::speaks(std::string_view languages) const {
    const auto folded = [](std::string_view tag) {
        std::string result = css::foldFamily(css::trim(tag));
        std::replace(result.begin(), result.end(), '_', '-');
        return result + '-'; // so that a prefix is one of whole parts
    };
    const std::string own = folded(limits_.language);
    for (std::size_t start = 0; start <= languages.size();) {
        const std::size_t comma = std::min(languages.find(',', start), languages.size());
        const std::string tag = folded(languages.substr(start, comma - start));
        if (tag.size() > 1 && (own.starts_with(tag) || tag.starts_with(own))) {
            return true;
        }
        start = comma + 1;
    }
    return false;
}

void Scanner::readConditions(Element& element, bool& muted) const {
    for (std::size_t i = element.firstAttribute; i < tree_.attributes.size(); ++i) {
        const Attribute& attribute = tree_.attributes[i];
        if (attribute.name == AttributeName::RequiredExtensions) {
            muted = muted || !attribute.value.empty();
        } else if (attribute.name == AttributeName::SystemLanguage) {
            element.passedOver = element.passedOver || !speaks(attribute.value);
        }
    }
}

/// Of the children of a switch the first one is shown that can be shown and whose conditions hold.
void Scanner::choose(Element& element, Open& switching, bool muted) {
    const bool drawable = element.tag != Tag::Unknown && element.tag != Tag::FlowRegion &&
                          element.tag != Tag::Style && element.tag != Tag::Definitions;
    const bool fits = drawable && !muted && !element.passedOver;
    element.passedOver = element.passedOver || switching.chosen;
    switching.chosen = switching.chosen || fits;
}

void Scanner::noteReferences(const Element& element, References::Scope scope) {
    for (std::size_t i = element.firstAttribute; i < tree_.attributes.size(); ++i) {
        const Attribute& attribute = tree_.attributes[i];
        switch (attribute.name) {
        case AttributeName::Reference:
            // A link leads to its target and does not show it; of a text that a tref names only the
            // characters are taken.
            if (attribute.value.starts_with('#') && element.tag != Tag::Link &&
                element.tag != Tag::TextReference) {
                references_.addReference(scope, attribute.value.substr(1));
            }
            break;
        case AttributeName::Paint:
        case AttributeName::Style:
            noteUrls(attribute.value, scope, false);
            break;
        default:
            break;
        }
    }
}

/// `copy` when the text lives shorter than the tree.
void Scanner::noteUrls(std::string_view text, References::Scope scope, bool copy) {
    std::size_t position = 0;
    while ((position = text.find("url(", position)) != std::string_view::npos) {
        position = std::min(text.find_first_not_of("'\" ", position + 4), text.size());
        if (position == text.size() || text[position] != '#') {
            continue;
        }
        // At the end of the text any "url(" is closed. No id is read twice.
        const std::size_t end =
            std::min(text.find_first_of("()'\" \t\r\n\f", position), text.size());
        const std::string_view id = text.substr(position + 1, end - position - 1);
        if (!copy) {
            references_.addReference(scope, id);
        } else if (!references_.isShown(id)) {
            references_.addReference(scope, tree_.values.emplace_back(id));
        }
        position = end;
    }
}

/// The scope that an element's references are made from.
References::Scope Scanner::scopeOf(const Element& element, const Open* outer) {
    const References::Scope around = outer == nullptr ? References::shown : outer->scope;
    const bool definitions = element.tag == Tag::Definitions;
    if (!definitions && !element.passedOver && around == References::shown) {
        return around;
    }
    std::string_view id;
    for (std::size_t i = element.firstAttribute; i < tree_.attributes.size() && id.empty(); ++i) {
        id = tree_.attributes[i].name == AttributeName::Id ? tree_.attributes[i].value : id;
    }
    if (definitions || element.passedOver) {
        return references_.addDefinitions(id);
    }
    return id.empty() ? around : references_.addWithin(around, id);
}

} // namespace host::svg
