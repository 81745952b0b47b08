// SPDX-License-Identifier: MIT
// What a drawing looks like without a font: the faces that the desktop draws instead, and the
// characters that none of its fonts has.
#pragma once

#include "host/fonts/catalogue.h"
#include "host/fonts/desktopfonts.h"
#include "host/fonts/fontconfighandle.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

/// A face that the desktop draws in another's place.
struct Substitute {
    FaceFile face;
    std::string family;
    bool listed = false;      ///< the document names the family behind the one that is lacking
    bool sameMetrics = false; ///< the desktop's settings bind the family to the lacking one, as
                              ///< they bind those whose characters are as wide
};

/// [one-thread] The desktop's fonts as they were when it was made, through fontconfig.
class Substitutes {
public:
    Substitutes();

    /// What programs of the desktop draw `face` in when they lack it; `later` are the families that
    /// the document names behind it. Nothing when the desktop has no font at all.
    [[nodiscard]] std::optional<Substitute> of(const Face& face,
                                               std::span<const std::string> later) const;
    /// Whether a font of the desktop has the character.
    [[nodiscard]] bool canDraw(char32_t character);

private:
    FontconfigHandle<FcConfig> config_;
    FontconfigHandle<FcCharSet> characters_; ///< made when it is first needed
};

} // namespace host
