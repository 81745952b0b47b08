// SPDX-License-Identifier: MIT
// Looking fonts up for plug-ins.
#include "host/suites/fontlist.h"

#include <cstdint>

namespace host {

AIFontKey FontList::handle(FontKey key) noexcept {
    return reinterpret_cast<AIFontKey>(static_cast<std::uintptr_t>(key));
}

const FontEntry* FontList::entry(AIFontKey key) const noexcept {
    const auto number = reinterpret_cast<std::uintptr_t>(key);
    const auto fontKey = static_cast<FontKey>(number);
    return fontKey == number ? catalogue_.entry(fontKey) : nullptr;
}

FontKey FontList::find(std::string_view name) {
    const FontKey key = catalogue_.findByName(name);
    if (key != noFont) {
        return key;
    }
    if (!indexed_) {
        for (const FontKey face : catalogue_.faces()) {
            const InstalledFace& names = catalogue_.entry(face)->face;
            byFamilyAndStyle_.emplace(names.family + " " + names.style, face);
            for (const InstalledFace::Alias& alias : names.aliases) {
                byFamilyAndStyle_.emplace(alias.family + " " + alias.style, face);
            }
        }
        indexed_ = true;
    }
    const auto found = byFamilyAndStyle_.find(std::string(name));
    return found == byFamilyAndStyle_.end() ? noFont : found->second;
}

bool FontList::refresh() {
    const bool changed = catalogue_.refresh();
    if (changed) {
        byFamilyAndStyle_.clear();
        indexed_ = false;
    }
    return changed;
}

} // namespace host
