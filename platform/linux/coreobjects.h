// SPDX-License-Identifier: MIT
// The objects behind CFStringRef and CFURLRef.
#pragma once

#include "platform/launchservices.h"

#include <string>
#include <type_traits>

namespace platform {

/// What every CFTypeRef points to, so that CFShow and CFRelease can tell the kinds apart.
struct CoreObject {
    enum class Kind { String, Url };
    const Kind kind;
    const std::string text; ///< UTF-8; of a URL, the file's absolute path
};

} // namespace platform

struct PLString : platform::CoreObject {
    explicit PLString(std::string value) : CoreObject{Kind::String, std::move(value)} {}
};
struct PLUrl : platform::CoreObject {
    explicit PLUrl(std::string path) : CoreObject{Kind::Url, std::move(path)} {}
};

// A pointer to either is a pointer to its CoreObject, also by way of const void*.
static_assert(std::is_standard_layout_v<PLString> && std::is_standard_layout_v<PLUrl>);
