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

// Asking fontconfig for one face.

/// Bytes as fontconfig takes them; of `text`.
[[nodiscard]] inline const FcChar8* bytesOf(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}
/// What the desktop is asked for to draw in `face`.
[[nodiscard]] FontconfigHandle<FcPattern> patternOf(const Face& face);
/// The font that the desktop takes for `wanted`, which is filled with its settings. Empty when it
/// has none at all.
[[nodiscard]] FontconfigHandle<FcPattern> bestMatch(FcConfig& config, FcPattern& wanted);
/// Nothing for a font without a file.
[[nodiscard]] std::optional<FaceFile> fileOf(const FcPattern& found);

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
