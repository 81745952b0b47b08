// SPDX-License-Identifier: MIT
// What the desktop makes of faces that it lacks, and what is in those that it has.
#pragma once

#include "host/documents/face.h"
#include "host/fonts/catalogue.h"
#include "host/fonts/fontconfighandle.h"
#include "host/fonts/fontsource.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

[[nodiscard]] FaceFile fileOf(const InstalledFace& face);

/// [one-thread] The desktop's fonts as they were when it was made, through fontconfig.
class DesktopFonts {
public:
    DesktopFonts();

    /// What programs of the desktop draw `text` in when they lack `face`. Nothing when the desktop
    /// has no font at all.
    [[nodiscard]] std::optional<FaceFile> standIn(const Face& face, std::string_view text) const;
    /// As FontSource::someCharacters.
    [[nodiscard]] std::string someCharacters(const FaceFile& face) const;

private:
    FontconfigHandle<FcConfig> config_;
};

} // namespace host
