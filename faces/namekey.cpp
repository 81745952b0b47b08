// SPDX-License-Identifier: MIT
// Folds case as fontconfig does.
#include "faces/namekey.h"

#include <fontconfig/fontconfig.h>
#include <memory>

namespace faces {

std::string nameKey(std::string_view name) {
    std::string kept(name);
    std::erase_if(kept, [](char c) { return c == ' ' || c == '\t'; });
    const std::unique_ptr<FcChar8, void (*)(FcChar8*)> folded(
        FcStrDowncase(reinterpret_cast<const FcChar8*>(kept.c_str())), FcStrFree);
    return folded ? reinterpret_cast<const char*>(folded.get()) : kept;
}

} // namespace faces
