// SPDX-License-Identifier: MIT
// Making, reading, printing and releasing texts and URLs.
#include "coreobjects.h"

#include "glibhandles.h"
#include "macroman.h"

#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <optional>

using platform::CoreObject;

namespace {

std::optional<std::string> encoded(const std::string& text, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return text;
    case kCFStringEncodingMacRoman:
        return platform::utf8ToMacRoman(text);
    default:
        return std::nullopt;
    }
}

std::optional<std::string> decoded(const char* text, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return g_utf8_validate(text, -1, nullptr) != 0 ? std::optional<std::string>(text)
                                                       : std::nullopt;
    case kCFStringEncodingMacRoman:
        return platform::macRomanToUtf8(text);
    default:
        return std::nullopt;
    }
}

} // namespace

CFStringRef CFStringCreateWithCString(const void* /*allocator*/, const char* text,
                                      CFStringEncoding encoding) {
    auto value = text != nullptr ? decoded(text, encoding) : std::nullopt;
    if (!value) {
        return nullptr;
    }
    return std::unique_ptr<PLString>(new (std::nothrow) PLString(std::move(*value))).release();
}

bool CFStringGetCString(CFStringRef text, char* buffer, long size, CFStringEncoding encoding) {
    if (buffer == nullptr || size < 1) {
        return false;
    }
    buffer[0] = '\0';
    const auto bytes = text != nullptr ? encoded(text->text, encoding) : std::nullopt;
    if (!bytes || bytes->size() >= static_cast<std::size_t>(size)) {
        return false;
    }
    std::memcpy(buffer, bytes->c_str(), bytes->size() + 1);
    return true;
}

void CFShow(CFTypeRef object) {
    if (object == nullptr) {
        std::cout << "(null)\n" << std::flush;
        return;
    }
    const auto* shown = static_cast<const CoreObject*>(object);
    if (shown->kind == CoreObject::Kind::String) {
        std::cout << shown->text + "\n" << std::flush;
        return;
    }
    const platform::TextHandle uri(g_filename_to_uri(shown->text.c_str(), nullptr, nullptr));
    std::cout << std::string(uri ? uri.get() : shown->text.c_str()) + "\n" << std::flush;
}

void CFRelease(CFTypeRef object) {
    switch (static_cast<const CoreObject*>(object)->kind) {
    case CoreObject::Kind::String: {
        const std::unique_ptr<const PLString> released(static_cast<CFStringRef>(object));
        break;
    }
    case CoreObject::Kind::Url: {
        const std::unique_ptr<const PLUrl> released(static_cast<CFURLRef>(object));
        break;
    }
    }
}
