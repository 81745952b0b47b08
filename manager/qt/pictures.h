// SPDX-License-Identifier: MIT
// Pictures of the window's views, for the guide and for whoever wants to look at them all.
#pragma once

#include <filesystem>

namespace manager {

class FontFileWindow;
class LibraryWindow;

/// [main-thread] Writes a PNG of every view, in light and in dark, into `folder`, which is made if
/// need be. The window shows its library. False: something could not be written, which has been
/// told.
[[nodiscard]] bool takePictures(LibraryWindow& window, const std::filesystem::path& folder);
/// [main-thread] The same of font files that were opened by themselves, and have been read.
[[nodiscard]] bool takePictures(FontFileWindow& window, const std::filesystem::path& folder);

} // namespace manager
