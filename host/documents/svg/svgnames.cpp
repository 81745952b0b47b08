// SPDX-License-Identifier: MIT
// The names of elements and attributes that matter in drawings.
#include "host/documents/svg/svgnames.h"

#include <array>

namespace host::svg {
namespace {

constexpr std::array<TagName, 49> tags{{
    {"svg", Tag::Svg},
    {"g", Tag::Group},
    {"a", Tag::Link},
    {"switch", Tag::Switch},
    {"use", Tag::Use},
    {"text", Tag::Text},
    {"tspan", Tag::Span},
    {"textPath", Tag::TextPath},
    {"tref", Tag::TextReference},
    {"altGlyph", Tag::AlternateGlyph},
    {"flowRoot", Tag::FlowRoot},
    {"flowPara", Tag::FlowPara},
    {"flowDiv", Tag::FlowPara},
    {"flowSpan", Tag::FlowSpan},
    {"flowRegion", Tag::FlowRegion},
    {"flowRegionExclude", Tag::FlowRegion},
    {"style", Tag::Style},
    {"defs", Tag::Definitions},
    {"symbol", Tag::Definitions},
    {"clipPath", Tag::Definitions},
    {"mask", Tag::Definitions},
    {"pattern", Tag::Definitions},
    {"marker", Tag::Definitions},
    {"filter", Tag::Definitions},
    {"path", Tag::Shape},
    {"rect", Tag::Shape},
    {"circle", Tag::Shape},
    {"ellipse", Tag::Shape},
    {"line", Tag::Shape},
    {"polyline", Tag::Shape},
    {"polygon", Tag::Shape},
    {"image", Tag::Shape},
    {"foreignObject", Tag::Ignored},
    {"metadata", Tag::Ignored},
    {"title", Tag::Ignored},
    {"desc", Tag::Ignored},
    {"script", Tag::Ignored},
    {"font", Tag::Ignored},
    {"font-face", Tag::Ignored},
    {"font-face-src", Tag::Ignored},
    {"font-face-uri", Tag::Ignored},
    {"glyph", Tag::Ignored},
    {"missing-glyph", Tag::Ignored},
    {"linearGradient", Tag::Ignored},
    {"radialGradient", Tag::Ignored},
    {"animate", Tag::Ignored},
    {"set", Tag::Ignored},
    {"view", Tag::Ignored},
    {"cursor", Tag::Ignored},
}};

constexpr std::array<AttributeKey, 31> attributes{{
    {"id", Space::None, AttributeName::Id},
    {"class", Space::None, AttributeName::Class},
    {"style", Space::None, AttributeName::Style},
    {"font-family", Space::None, AttributeName::FontFamily},
    {"font-style", Space::None, AttributeName::FontStyle},
    {"font-weight", Space::None, AttributeName::FontWeight},
    {"font-stretch", Space::None, AttributeName::FontStretch},
    {"font-size", Space::None, AttributeName::FontSize},
    {"visibility", Space::None, AttributeName::Visibility},
    {"display", Space::None, AttributeName::Display},
    {"href", Space::None, AttributeName::Reference},
    {"href", Space::Xlink, AttributeName::Reference},
    {"space", Space::Xml, AttributeName::Space},
    {"label", Space::Foreign, AttributeName::Label},
    {"groupmode", Space::Foreign, AttributeName::GroupMode},
    {"layer", Space::Foreign, AttributeName::Layer},
    {"extraneous", Space::Foreign, AttributeName::Extraneous},
    {"role", Space::Foreign, AttributeName::Role},
    {"clip-path", Space::None, AttributeName::Paint},
    {"mask", Space::None, AttributeName::Paint},
    {"fill", Space::None, AttributeName::Paint},
    {"stroke", Space::None, AttributeName::Paint},
    {"filter", Space::None, AttributeName::Paint},
    {"marker", Space::None, AttributeName::Paint},
    {"marker-start", Space::None, AttributeName::Paint},
    {"marker-mid", Space::None, AttributeName::Paint},
    {"marker-end", Space::None, AttributeName::Paint},
    {"requiredExtensions", Space::None, AttributeName::RequiredExtensions},
    {"systemLanguage", Space::None, AttributeName::SystemLanguage},
    {"media", Space::None, AttributeName::Media},
    {"type", Space::None, AttributeName::Type},
}};

} // namespace

std::span<const TagName> tagNames() {
    return tags;
}

std::span<const AttributeKey> attributeKeys() {
    return attributes;
}

} // namespace host::svg
