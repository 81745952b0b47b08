// SPDX-License-Identifier: MIT
// The names of elements and attributes that matter in drawings.
#pragma once

#include "host/documents/svg/svgtree.h"

#include <cstdint>
#include <span>

namespace host::svg {

struct TagName {
    const char* name;
    Tag tag;
};
/// Elements in the namespace of SVG.
std::span<const TagName> tagNames();

/// Which namespace an attribute is in; Foreign stands for those of drawing programs.
enum class Space : std::uint8_t { None, Xlink, Xml, Foreign };
struct AttributeKey {
    const char* name;
    Space space;
    AttributeName attribute;
};
std::span<const AttributeKey> attributeKeys();

} // namespace host::svg
