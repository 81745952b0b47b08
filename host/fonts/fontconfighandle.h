// SPDX-License-Identifier: MIT
// Owners of fontconfig's objects.
#pragma once

#include <fontconfig/fontconfig.h>

#include <memory>

namespace host {

struct FontconfigDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
    void operator()(FcObjectSet* objects) const { FcObjectSetDestroy(objects); }
    void operator()(FcFontSet* fonts) const { FcFontSetDestroy(fonts); }
    void operator()(FcCharSet* characters) const { FcCharSetDestroy(characters); }
    void operator()(FcConfig* config) const { FcConfigDestroy(config); }
    void operator()(FcChar8* text) const { FcStrFree(text); }
};
template <typename T>
using FontconfigHandle = std::unique_ptr<T, FontconfigDeleter>;

} // namespace host
