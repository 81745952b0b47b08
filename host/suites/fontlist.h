// SPDX-License-Identifier: MIT
// The catalogue's fonts as plug-ins know them: by key, and by the names that they may ask for.
#pragma once

#include "ai/suites.h"
#include "host/fonts/catalogue.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

/// [main-thread] Keys outlive what they stand for, so that a stale one is at worst not present.
class FontList {
public:
    explicit FontList(Catalogue::Lister lister) : catalogue_(std::move(lister)) {}

    Catalogue& catalogue() noexcept { return catalogue_; }
    const Catalogue& catalogue() const noexcept { return catalogue_; }

    static AIFontKey handle(FontKey key) noexcept;
    /// The entry of a plug-in's key; nullptr when it was never handed out.
    const FontEntry* entry(AIFontKey key) const noexcept;

    /// A present face with this PostScript name, else full name, else "family style"; else noFont.
    [[nodiscard]] FontKey find(std::string_view name);

    /// Asks the desktop again; true when anything has changed.
    bool refresh();

private:
    Catalogue catalogue_;
    /// Made when it is first needed; most names are PostScript names.
    std::unordered_map<std::string, FontKey> byFamilyAndStyle_;
    bool indexed_ = false;
};

} // namespace host
